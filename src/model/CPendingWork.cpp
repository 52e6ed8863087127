#include "model/CPendingWork.h"

#include <algorithm>
#include <utility>

void CPendingWork::Post(Operation code) {
  const bool another = Next_Operation != code || Repeats(code);
  if (Next_Operation != Operation::kNone && another) Remember(Next_Operation);
  Next_Operation = code;
}

void CPendingWork::Remember(Operation code) {
  if (!m_aOverwritten.empty() && IsEdit(m_aOverwritten.back()) && IsEdit(code)) {
    m_aOverwritten.back() = std::max(m_aOverwritten.back(), code);
  } else {
    m_aOverwritten.push_back(code);
  }
}

void CPendingWork::Clear() {
  Next_Operation = Operation::kNone;
  m_aOverwritten.clear();
}

std::vector<Operation> CPendingWork::Take() {
  if (Next_Operation != Operation::kNone) Remember(Next_Operation);
  Next_Operation = Operation::kNone;
  return std::exchange(m_aOverwritten, {});
}
