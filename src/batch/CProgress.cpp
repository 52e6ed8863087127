#include "batch/CProgress.h"

#include <iostream>

#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kInterval(100);
constexpr const char* kEraseLine = "\r\x1b[K";

}  // namespace

CProgress::CProgress(bool wanted) : m_bShown(wanted && isatty(STDERR_FILENO) == 1) {}

void CProgress::Update(long iterations) {
  const auto now = std::chrono::steady_clock::now();
  if (!m_bShown || now < m_Next) return;
  m_Next = now + kInterval;
  m_bOnScreen = true;
  std::cerr << kEraseLine << iterations << " iterations" << std::flush;
}

void CProgress::Erase() {
  if (m_bOnScreen) std::cerr << kEraseLine << std::flush;
  m_bOnScreen = false;
}
