#include "scissors/CPixelViewport.h"

#include <algorithm>

void CPixelViewport::Resize(int width, int height) {
  m_Area = {width, height};
  MoveTo(m_First);
}

CPixelPosition CPixelViewport::VisibleSize() const {
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
  const CPixelPosition pixel{x / m_iZoom + m_First.m_iColumn, y / m_iZoom + m_First.m_iRow};
  if (!Shows(pixel)) return std::nullopt;
  return pixel;
}

void CPixelViewport::ZoomBy(int steps, int x, int y) {
  const CPixelPosition kept{x / m_iZoom + m_First.m_iColumn, y / m_iZoom + m_First.m_iRow};
  m_iZoom = std::clamp(m_iZoom + steps, kMinZoom, kMaxZoom);
  MoveTo({kept.m_iColumn - x / m_iZoom, kept.m_iRow - y / m_iZoom});
  // A drag under way goes on from here.
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
    return std::clamp(wanted, 0, std::max(0, picture - area / m_iZoom));
  };
  m_First = {within(first.m_iColumn, m_Area.m_iColumn, m_Picture.m_iColumn),
             within(first.m_iRow, m_Area.m_iRow, m_Picture.m_iRow)};
}
