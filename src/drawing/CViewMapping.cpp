#include "drawing/CViewMapping.h"

#include <algorithm>

#include "model/Globals.h"

namespace {

constexpr double kStartZoom = 1.0;
constexpr double kMinZoom = 1e-6;
constexpr double kMaxZoom = 1e6;
constexpr double kZoomPerPixel = 0.005;
constexpr int kMaxZoomStep = 20;

double ClampedTo(double value, double low, double high) {
  const double margin = BorderMargin(low, high);
  return std::clamp(value, low + margin, high - margin);
}

}  // namespace

void CViewMapping::SetSize(int width, int height) {
  m_iWidth = std::max(width, 1);
  m_iHeight = std::max(height, 1);
}

CPlanePoint CViewMapping::HalfSizes() const {
  const double width = (m_Extent.x1 - m_Extent.x0) * g_fZoom;
  const double height = (m_Extent.y1 - m_Extent.y0) * g_fZoom;
  if (!m_bProportional) return {width / 2, height / 2};
  const double perPixel = std::max(width / m_iWidth, height / m_iHeight);
  return {perPixel * m_iWidth / 2, perPixel * m_iHeight / 2};
}

CExtent CViewMapping::Visible() const {
  const double cx = (m_Extent.x0 + m_Extent.x1) / 2 + m_Pan.x;
  const double cy = (m_Extent.y0 + m_Extent.y1) / 2 + m_Pan.y;
  const CPlanePoint half = HalfSizes();
  return {cx - half.x, cx + half.x, cy - half.y, cy + half.y};
}

CPlanePoint CViewMapping::ToModelPanned(double x, double y, const CPlanePoint& pan) const {
  const double cx = (m_Extent.x0 + m_Extent.x1) / 2 + pan.x;
  const double cy = (m_Extent.y0 + m_Extent.y1) / 2 + pan.y;
  const CPlanePoint half = HalfSizes();
  return {cx + 2 * half.x * ((x + 0.5) / m_iWidth - 0.5), cy + 2 * half.y * (0.5 - (y + 0.5) / m_iHeight)};
}

CPlanePoint CViewMapping::ToModel(double x, double y) const { return ToModelPanned(x, y, m_Pan); }

CPlanePoint CViewMapping::ToModelUnpanned(double x, double y) const { return ToModelPanned(x, y, {}); }

CPlanePoint CViewMapping::Clamped(const CPlanePoint& place) const {
  return {ClampedTo(place.x, m_Extent.x0, m_Extent.x1), ClampedTo(place.y, m_Extent.y0, m_Extent.y1)};
}

bool CViewMapping::IsInside(const CPlanePoint& place) const {
  return place.x >= m_Extent.x0 && place.x <= m_Extent.x1 && place.y >= m_Extent.y0 && place.y <= m_Extent.y1;
}

void CViewMapping::Zoom(int dx, int dy) {
  const int step = std::clamp(dx - dy, -kMaxZoomStep, kMaxZoomStep);
  g_fZoom = std::clamp(g_fZoom * (1 + kZoomPerPixel * step), kMinZoom, kMaxZoom);
}

void CViewMapping::ZoomAbout(double factor, double x, double y) {
  const CPlanePoint before = ToModel(x, y);
  g_fZoom = std::clamp(g_fZoom * factor, kMinZoom, kMaxZoom);
  const CPlanePoint after = ToModel(x, y);
  Pan(before.x - after.x, before.y - after.y);
}

void CViewMapping::Pan(double dx, double dy) {
  m_Pan.x += dx;
  m_Pan.y += dy;
}

void CViewMapping::Set(double zoom, const CPlanePoint& pan) {
  g_fZoom = std::clamp(zoom, kMinZoom, kMaxZoom);
  m_Pan = pan;
}

void CViewMapping::Reset() {
  g_fZoom = kStartZoom;
  m_Pan = {};
}
