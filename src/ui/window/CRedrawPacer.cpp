#include "ui/window/CRedrawPacer.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include <FL/Fl.H>

namespace {

constexpr double kInterval = 1.0 / 60;
constexpr double kLongestPause = 0.1;  // after a drawing; a tick may have waited for a dialog

}  // namespace

CRedrawPacer::CRedrawPacer(std::function<void()> redraw, std::function<bool()> isBusy, std::function<double()> now)
    : m_Redraw(std::move(redraw)),
      m_IsBusy(std::move(isBusy)),
      m_Now(std::move(now)),
      m_fNext(-std::numeric_limits<double>::infinity()) {}

CRedrawPacer::~CRedrawPacer() { Fl::remove_check(cb_Check, this); }

void CRedrawPacer::Request() {
  if (!m_bOwed) {
    m_bOwed = true;
    Fl::add_check(cb_Check, this);
  }
  // The toolkit draws before the solver's next tick.
  if (m_bDrawing) m_fNext = std::max(m_fNext, m_Now() + std::min(m_Now() - m_fLast, kLongestPause));
  m_bDrawing = false;
  RedrawWhenDue();
}

void CRedrawPacer::cb_Check(void* pacer) { static_cast<CRedrawPacer*>(pacer)->RedrawWhenDue(); }

void CRedrawPacer::RedrawWhenDue() {
  const double now = m_Now();
  const bool busy = m_IsBusy();
  if (now < m_fNext && busy) return;
  m_fLast = now;
  m_fNext = now + kInterval;
  m_bDrawing = busy;
  m_bOwed = false;
  Fl::remove_check(cb_Check, this);
  m_Redraw();
}

double CRedrawPacer::SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
