#include "scissors/CScissorsTool.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "base/Console.h"
#include "lattice/CLattice.h"

CScissorsTool::CScissorsTool(CTopDownImage image)
    : m_Image(std::move(image)), m_Costs(ComputeLinkCosts(m_Image)), m_Tree(m_Costs) {
  Console() << "Width " << m_Image.m_iWidth << '\n';
  Console() << "Height " << m_Image.m_iHeight << '\n';
}

void CScissorsTool::Press(CPixelPosition pixel, bool begin, const CPixelViewport& view) {
  if (begin || !m_Contours.IsInProgress()) {
    pixel = ChooseSeed(pixel, SeedSnap(pixel), view);
    m_Contours.Begin(pixel);
  } else {
    CommitTo(pixel);
  }
  BuildFrom(pixel);
}

bool CScissorsTool::Enter(std::optional<CPixelPosition> cursor, bool close) {
  if (!m_Contours.IsInProgress()) return false;
  if (cursor.has_value()) {
    CommitTo(close ? m_Contours.FirstPixel() : *cursor);
    m_Contours.Finish(close);
  }
  return true;
}

bool CScissorsTool::TakeBack() {
  if (!m_Contours.TakeBack()) return false;
  if (m_Contours.IsInProgress()) BuildFrom(m_Contours.Seed());
  return true;
}

int CScissorsTool::PercentBuilt() const {
  const std::size_t pixels = m_Image.m_aPixels.size() / 3;
  return static_cast<int>(100 * m_Tree.ExpandedCount() / pixels);
}

void CScissorsTool::Advance(std::size_t count) {
  if (!IsBuilding()) return;
  GrowTree([&] { m_Tree.Advance(count); });
}

std::string CScissorsTool::StatusText(int x, int y, std::optional<CPixelPosition> pixel) const {
  constexpr std::array<std::uint8_t, 3> kBackground{212, 208, 200};
  const std::array<std::uint8_t, 3> colour = pixel.has_value() ? m_Image.ColourAt(*pixel) : kBackground;
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "x = %d y = %d r = %d g = %d b = %d", x, y, colour[0], colour[1], colour[2]);
  return text.data();
}

void CScissorsTool::BuildFrom(CPixelPosition seed) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "current seed position: ( %4d , %4d ).\n", seed.m_iColumn, seed.m_iRow);
  Console() << text.data();
  m_Tree.Start(seed, m_Image.m_aPixels.size() / 3);
}

void CScissorsTool::CommitTo(CPixelPosition pixel) {
  GrowTree([&] { m_Tree.AdvanceTo(pixel); });
  m_Contours.Commit(m_Tree, pixel);
}

template <typename Grow>
void CScissorsTool::GrowTree(Grow&& grow) {
  const bool wasComplete = m_Tree.IsComplete();
  grow();
  if (!wasComplete && m_Tree.IsComplete()) Console() << "minimun path tree is finished\n";
}

CPixelPosition SeedSnap(CPixelPosition clicked) {
  Console() << "SeedSnap in iScissor: to be implemented for extra credits!\n";
  return clicked;
}

CPixelPosition ChooseSeed(CPixelPosition clicked, CPixelPosition snapped, const CPixelViewport& view) {
  if (view.Shows(snapped)) return snapped;
  Console() << "the result of SeedSnap is out of current view port, still use un-snapped seed!\n";
  return clicked;
}

std::vector<CPlanePoint> PlanePointsOf(const CTracedContour& contour, const CExtent& extent, int width, int height) {
  std::vector<CPlanePoint> points;
  points.reserve(contour.m_aPixels.size());
  for (const CPathPixel& pixel : contour.m_aPixels) {
    points.push_back({extent.x0 + (extent.x1 - extent.x0) * (pixel.m_iColumn + 0.5) / width,
                      extent.y0 + (extent.y1 - extent.y0) * ((height - pixel.m_iRow - 1) + 0.5) / height});
  }
  return points;
}
