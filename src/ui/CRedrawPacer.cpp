#include "ui/CRedrawPacer.h"

#include <chrono>
#include <limits>
#include <utility>

#include <FL/Fl.H>

namespace {

constexpr double kInterval = 1.0 / 60;

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
  RedrawWhenDue();
}

void CRedrawPacer::cb_Check(void* pacer) { static_cast<CRedrawPacer*>(pacer)->RedrawWhenDue(); }

void CRedrawPacer::RedrawWhenDue() {
  const double now = m_Now();
  if (now < m_fNext && m_IsBusy()) return;
  m_fNext = now + kInterval;
  m_bOwed = false;
  Fl::remove_check(cb_Check, this);
  m_Redraw();
}

double CRedrawPacer::SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
