#include "model/CPendingWork.h"

#include <algorithm>
#include <utility>

void CPendingWork::Post(Operation code) {
  const std::size_t posted = m_aOverwritten.size() + (MergesInto(Next_Operation) ? 0 : 1);
  const bool afterStep = HasStep() && m_aSteps.back().m_uAfter == posted;
  const bool another = Next_Operation != code || Repeats(code) || afterStep;
  if (Next_Operation != Operation::kNone && another) Remember(Next_Operation);
  Next_Operation = code;
}

bool CPendingWork::MergesInto(Operation code) const {
  return !m_aOverwritten.empty() && IsEdit(m_aOverwritten.back()) && IsEdit(code);
}

void CPendingWork::Remember(Operation code) {
  if (MergesInto(code)) {
    m_aOverwritten.back() = std::max(m_aOverwritten.back(), code);
  } else {
    m_aOverwritten.push_back(code);
  }
}

void CPendingWork::RequestStep(UserStep step) {
  const bool counts = Next_Operation != Operation::kNone && !MergesInto(Next_Operation);
  m_aSteps.push_back({step, m_aOverwritten.size() + (counts ? 1 : 0)});
}

void CPendingWork::Clear() {
  Next_Operation = Operation::kNone;
  m_aOverwritten.clear();
  m_aSteps.clear();
}

std::vector<Operation> CPendingWork::Take() {
  if (Next_Operation != Operation::kNone) Remember(Next_Operation);
  Next_Operation = Operation::kNone;
  m_aSteps.clear();
  return std::exchange(m_aOverwritten, {});
}

std::vector<CPendingRound> CPendingWork::TakeRounds() {
  const std::vector<CWaitingStep> steps = std::exchange(m_aSteps, {});
  const std::vector<Operation> codes = Take();
  std::vector<CPendingRound> rounds;
  auto code = codes.begin();
  for (const CWaitingStep& step : steps) {
    const auto end = codes.begin() + static_cast<std::ptrdiff_t>(std::min(step.m_uAfter, codes.size()));
    rounds.push_back({{code, end}, step.m_Step});
    code = end;
  }
  if (code != codes.end()) rounds.push_back({{code, codes.end()}, UserStep::None});
  return rounds;
}
