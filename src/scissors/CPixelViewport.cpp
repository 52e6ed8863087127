#include "scissors/CPixelViewport.h"

#include <algorithm>

void CPixelViewport::Resize(int width, int height) {
  m_Area = {width, height};
  if (m_iZoomBefore != 0) FitWhole();
  MoveTo(m_First);
}

void CPixelViewport::FitWhole() {
  const auto needed = [](int picture, int area) { return (picture - 1) / std::max(area, 1) + 1; };
  m_iZoom = kMinZoom;
  m_iReduction = std::max(needed(m_Picture.m_iColumn, m_Area.m_iColumn), needed(m_Picture.m_iRow, m_Area.m_iRow));
}

CPixelPosition CPixelViewport::VisibleSize() const {
  if (m_iReduction > 1) return m_Picture;
  const auto visible = [this](int area, int first, int picture) {
    return std::min((area + m_iZoom - 1) / m_iZoom, picture - first);
  };
  return {visible(m_Area.m_iColumn, m_First.m_iColumn, m_Picture.m_iColumn),
          visible(m_Area.m_iRow, m_First.m_iRow, m_Picture.m_iRow)};
}

bool CPixelViewport::Shows(CPixelPosition pixel) const {
  const CPixelPosition size = VisibleSize();
  const int column = pixel.m_iColumn - m_First.m_iColumn;
  const int row = pixel.m_iRow - m_First.m_iRow;
  return column >= 0 && column < size.m_iColumn && row >= 0 && row < size.m_iRow;
}

std::optional<CPixelPosition> CPixelViewport::PixelAt(int x, int y) const {
  if (!Covers(x, y)) return std::nullopt;
  const CPixelPosition pixel = NearestPixel(x, y);
  if (!Shows(pixel)) return std::nullopt;
  return pixel;
}

// The last pixels of a row and a column may share a screen pixel with fewer others.
CPixelPosition CPixelViewport::NearestPixel(int x, int y) const {
  if (m_iReduction == 1) return {x / m_iZoom + m_First.m_iColumn, y / m_iZoom + m_First.m_iRow};
  const auto middle = [this](int place, int picture) {
    const int first = place * m_iReduction;
    return first < picture ? std::min(first + m_iReduction / 2, picture - 1) : first;
  };
  return {middle(x, m_Picture.m_iColumn), middle(y, m_Picture.m_iRow)};
}

void CPixelViewport::ZoomBy(int steps, int x, int y) {
  if (m_iReduction > 1) {
    if (steps > 0) ZoomTo(steps, x, y);
    return;
  }
  ZoomTo(m_iZoom + steps, x, y);
}

void CPixelViewport::ZoomTo(int zoom, int x, int y) {
  const CPixelPosition kept = NearestPixel(x, y);
  m_iReduction = 1;
  m_iZoomBefore = 0;
  m_iZoom = std::clamp(zoom, kMinZoom, kMaxZoom);
  MoveTo({kept.m_iColumn - x / m_iZoom, kept.m_iRow - y / m_iZoom});
  // A drag under way goes on from here.
  BeginPan(x, y);
}

void CPixelViewport::ToggleWhole(int x, int y) {
  if (m_iZoomBefore != 0) return ZoomTo(m_iZoomBefore, x, y);
  m_iZoomBefore = m_iZoom;
  FitWhole();
  MoveTo({0, 0});
  BeginPan(x, y);
}

void CPixelViewport::BeginPan(int x, int y) {
  m_PanStart = {x, y};
  m_FirstAtPanStart = m_First;
}

void CPixelViewport::PanTo(int x, int y) {
  MoveTo({m_FirstAtPanStart.m_iColumn - (x - m_PanStart.m_iColumn) / m_iZoom,
          m_FirstAtPanStart.m_iRow - (y - m_PanStart.m_iRow) / m_iZoom});
}

void CPixelViewport::MoveTo(CPixelPosition first) {
  const auto within = [this](int wanted, int area, int picture) {
    return std::clamp(wanted, 0, m_iReduction > 1 ? 0 : std::max(0, picture - area / m_iZoom));
  };
  m_First = {within(first.m_iColumn, m_Area.m_iColumn, m_Picture.m_iColumn),
             within(first.m_iRow, m_Area.m_iRow, m_Picture.m_iRow)};
}
