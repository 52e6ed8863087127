#include "model/CPendingWork.h"

#include <algorithm>
#include <utility>

void CPendingWork::Post(int code) {
  if (m_iNext != Operation::kNone && m_iNext != code) Remember(m_iNext);
  m_iNext = code;
}

void CPendingWork::Remember(int code) {
  if (!m_aiOverwritten.empty() && Operation::IsEdit(m_aiOverwritten.back()) && Operation::IsEdit(code)) {
    m_aiOverwritten.back() = std::max(m_aiOverwritten.back(), code);
  } else {
    m_aiOverwritten.push_back(code);
  }
}

void CPendingWork::Clear() {
  m_iNext = Operation::kNone;
  m_aiOverwritten.clear();
}

std::vector<int> CPendingWork::Take() {
  if (m_iNext != Operation::kNone) Remember(m_iNext);
  m_iNext = Operation::kNone;
  return std::exchange(m_aiOverwritten, {});
}
