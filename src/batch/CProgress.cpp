#include "batch/CProgress.h"

#include <iostream>

#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kInterval(100);
constexpr const char* kEraseLine = "\r\x1b[K";

}  // namespace

CProgress::CProgress(bool wanted) : m_bShown(wanted && isatty(STDERR_FILENO) == 1) {}

bool CProgress::IsDue() {
  const auto now = std::chrono::steady_clock::now();
  if (!m_bShown || now < m_Next) return false;
  m_Next = now + kInterval;
  return true;
}

void CProgress::Show(const std::string& text) {
  m_bOnScreen = true;
  std::cerr << kEraseLine << text << std::flush;
}

void CProgress::Update(long iterations) {
  if (IsDue()) Show(std::to_string(iterations) + " iterations");
}

void CProgress::Update(const std::string& filename, double share) {
  if (IsDue()) Show(filename + ": " + std::to_string(static_cast<int>(100 * share)) + " %");
}

void CProgress::Erase() {
  if (m_bOnScreen) std::cerr << kEraseLine << std::flush;
  m_bOnScreen = false;
}
