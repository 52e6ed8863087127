#include "ui/imageview/CRubberBand.h"

#include <algorithm>
#include <cstdlib>

#include <FL/Fl.H>

namespace {

// A hand that clicks moves the mouse a little.
constexpr int kClickPixels = 3;

}  // namespace

bool CRubberBand::IsFarFrom(const CPress& press) {
  return std::max(std::abs(Fl::event_x() - press.m_iX), std::abs(Fl::event_y() - press.m_iY)) > kClickPixels;
}

void CRubberBand::Begin(const CPlanePoint& place) {
  m_Press = {place, Fl::event_x(), Fl::event_y()};
  m_Opposite.reset();
}

bool CRubberBand::Drag(const CPlanePoint& place) {
  if (!m_Press) return false;
  m_Opposite = IsFarFrom(*m_Press) ? std::optional(place) : std::nullopt;
  return true;
}

std::optional<CRubberBand::CResult> CRubberBand::End(const CPlanePoint& place) {
  if (!m_Press) return std::nullopt;
  const CResult result{!IsFarFrom(*m_Press), m_Press->m_Place, place};
  Forget();
  return result;
}

void CRubberBand::Forget() {
  m_Press.reset();
  m_Opposite.reset();
}

std::optional<CExtent> CRubberBand::Rectangle() const {
  if (!m_Press || !m_Opposite) return std::nullopt;
  const CPlanePoint& a = m_Press->m_Place;
  const CPlanePoint& b = *m_Opposite;
  return CExtent{std::min(a.x, b.x), std::max(a.x, b.x), std::min(a.y, b.y), std::max(a.y, b.y)};
}
