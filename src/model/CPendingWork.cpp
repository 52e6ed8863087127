#include "model/CPendingWork.h"

#include <algorithm>
#include <utility>

void CPendingWork::Post(int code) {
  const bool another = Next_Operation != code || Operation::Repeats(code);
  if (Next_Operation != Operation::kNone && another) Remember(Next_Operation);
  Next_Operation = code;
}

void CPendingWork::Remember(int code) {
  if (!m_aiOverwritten.empty() && Operation::IsEdit(m_aiOverwritten.back()) && Operation::IsEdit(code)) {
    m_aiOverwritten.back() = std::max(m_aiOverwritten.back(), code);
  } else {
    m_aiOverwritten.push_back(code);
  }
}

void CPendingWork::Clear() {
  Next_Operation = Operation::kNone;
  m_aiOverwritten.clear();
}

std::vector<int> CPendingWork::Take() {
  if (Next_Operation != Operation::kNone) Remember(Next_Operation);
  Next_Operation = Operation::kNone;
  return std::exchange(m_aiOverwritten, {});
}
