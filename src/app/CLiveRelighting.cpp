#include "app/CLiveRelighting.h"

#include <algorithm>
#include <utility>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/CRedrawPacer.h"

namespace {

// Seconds: between two answers, and what a piece may take. A few rows more than that are finished.
constexpr double kBetweenAnswers = 1.0 / 60;
constexpr double kPiece = 0.015;

}  // namespace

CLiveRelighting::CLiveRelighting(CImageViewUI& window, CGrid& grid, std::function<void(bool)> ended)
    : m_Window(window), m_Grid(grid), m_Ended(std::move(ended)) {}

CLiveRelighting::~CLiveRelighting() { Stop(); }

void CLiveRelighting::Request() {
  m_bChanged = true;
  if (m_bIdle) return;
  m_bIdle = true;
  Fl::add_idle(cb_Idle, this);
}

void CLiveRelighting::Stop() {
  if (!m_bIdle) return;
  m_bIdle = false;
  m_bChanged = false;
  Fl::remove_idle(cb_Idle, this);
}

void CLiveRelighting::cb_Idle(void* live) { static_cast<CLiveRelighting*>(live)->Continue(); }

// The toolkit comes again at once as long as the handler is set.
void CLiveRelighting::Continue() {
  const double begin = CRedrawPacer::SteadySeconds();
  if (m_bChanged) {
    if (begin >= m_fNext) Preview();
    return;
  }
  const auto progress =
      m_Grid.Relighting().ContinueKd([end = begin + kPiece] { return CRedrawPacer::SteadySeconds() < end; });
  if (progress == CRelighting::KdProgress::Going) return;
  Stop();
  if (progress == CRelighting::KdProgress::NoMemory) return m_Ended(false);
  if (progress == CRelighting::KdProgress::None) return;
  m_fNext = CRedrawPacer::SteadySeconds() + kBetweenAnswers;
  m_Window.RequestRedraw();
  m_Ended(true);
}

// At most half of the time, as drawing and the mouse need the rest.
void CLiveRelighting::Preview() {
  m_bChanged = false;
  const double begin = CRedrawPacer::SteadySeconds();
  if (!m_Grid.Relighting().PreviewKd()) return;
  const double end = CRedrawPacer::SteadySeconds();
  m_fNext = end + std::max(end - begin, kBetweenAnswers);
  m_Window.RequestRedraw();
}
