#include "ui/imageview/CDebugOverlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include <FL/gl.h>

#include "base/Console.h"
#include "drawing/DisplayFlags.h"
#include "model/CGrid.h"
#include "model/PointProbe.h"
#include "ui/seams/ViewHost.h"

namespace {

constexpr std::array<double, 3> kColour{1, 0.5, 0};
constexpr float kPointSize = 5.0F;
constexpr int kFontSize = 11;

CPlanePoint PlaceOf(const CLattice& lattice, std::size_t point) {
  const auto side = static_cast<std::size_t>(lattice.PointsPerSide());
  const std::size_t column = point % side;
  const std::size_t row = point / side;
  return {lattice.XOf(static_cast<double>(column)), lattice.YOf(static_cast<double>(row))};
}

void LogNormal(const CGrid& grid, const CPlanePoint& place) {
  const Vector3 n = grid.Surface().Interpolation().GetNormal(place.x, place.y);
  Console() << "CImageView::handle\t\tnormal : " << n.x << ", " << n.y << ", " << n.z << '\n';
}

// The texel of `count` along a side from `low` to `high` that `place` lies in, or the nearest.
int TexelAt(double place, double low, double high, int count) {
  const double texel = std::floor((place - low) / (high - low) * count);
  return static_cast<int>(std::clamp(texel, 0.0, count - 1.0));
}

// All is 0 until the map has been computed.
void LogAlbedo(const CGrid& grid, const CPlanePoint& place) {
  const CTextureImages& images = grid.Relighting().Textures();
  if (!images.HasPicture()) return;
  const CExtent& e = grid.Surface().Lattice().Extent();
  const int xt = TexelAt(place.x, e.x0, e.x1, images.PictureWidth());
  const int yt = TexelAt(place.y, e.y0, e.y1, images.PictureHeight());
  std::array<double, 3> kd{};
  const std::size_t at = 3 * (static_cast<std::size_t>(yt) * static_cast<std::size_t>(images.PictureWidth()) +
                              static_cast<std::size_t>(xt));
  if (at + 3 <= grid.Relighting().Albedo().Kd().size())
    std::ranges::copy(grid.Relighting().Albedo().Kd().subspan(at, 3), kd.begin());
  std::array<char, 1100> line{};
  std::snprintf(line.data(), line.size(), "xt : %d , yt : %d , kdr : %f , kdg : %f , kdb : %f", xt, yt, kd[0], kd[1],
                kd[2]);
  Console() << line.data() << '\n';
}

}  // namespace

void CDebugOverlay::Look(CGrid& grid, std::uint32_t flags, const CPlanePoint& place, ViewHost& host) {
  if ((flags & DebugFlag::kNormalTest) != 0) LogNormal(grid, place);
  if ((flags & (DebugFlag::kNormalTest | DebugFlag::kReadOuts)) != 0) LogAlbedo(grid, place);
  if ((flags & DebugFlag::kInterpolation) != 0 && !grid.Marks().TraceInterpolation(place.x, place.y)) m_uTraced = 0;
  m_Place = place;
  LookUpTerms(grid, flags, host);
}

void CDebugOverlay::SwitchOff(const CGrid& grid, std::uint32_t flags, ViewHost& host) {
  if ((flags & DebugFlag::kInterpolation) == 0) m_uTraced = 0;
  LookUpTerms(grid, flags, host);
}

void CDebugOverlay::LookUpTerms(const CGrid& grid, std::uint32_t flags, ViewHost& host) {
  m_uLabels = 0;
  m_uLabelTree = grid.Surface().Tree().Revision();
  if ((flags & DebugFlag::kReadOuts) == 0) m_Place.reset();
  if (!m_Place) return;
  const CPointProbe probe(grid);
  const std::size_t point = probe.NearestPoint(m_Place->x, m_Place->y);
  const auto show = [&](std::uint32_t flag, const CProbedTerm& term) {
    if ((flags & flag) == 0) return;
    LabelTerm(grid, term);
    host.ShowInfluence(term.m_fWeight);
  };
  show(DebugFlag::kHorizontalCoefs, probe.SecondDifference(point, true));
  show(DebugFlag::kVerticalCoefs, probe.SecondDifference(point, false));
  show(DebugFlag::kTorsionCells, probe.MixedDifference(probe.LeafAt(m_Place->x, m_Place->y)));
  if ((flags & DebugFlag::kPointArea) != 0) host.ShowInfluence(probe.Area(point));
  host.ShowNumber(probe.NumberOf(point), probe.LevelCodeOf(point));
}

void CDebugOverlay::LabelTerm(const CGrid& grid, const CProbedTerm& term) {
  for (std::size_t k = 0; k < term.m_uCount; ++k)
    m_aLabels[m_uLabels++] = {PlaceOf(grid.Surface().Lattice(), term.m_auPoints[k]), term.m_afCoefs[k]};
}

void CDebugOverlay::ShowInterpolation(const CGrid& grid, const CInterpolationTrace& trace) {
  const CCellRect cell = trace.m_Triangle.m_pCell->ModelRect();
  m_TracedCell = {cell.x, cell.x + cell.width, cell.y, cell.y + cell.height};
  m_uTracedTree = grid.Surface().Tree().Revision();
  m_uTraced = 0;
  if (!trace.m_Triangle.IsCentre()) {
    m_aTraced[m_uTraced++] = PlaceOf(grid.Surface().Lattice(), trace.m_Triangle.m_uA);
    m_aTraced[m_uTraced++] = PlaceOf(grid.Surface().Lattice(), trace.m_Triangle.m_uB);
  }
  for (std::size_t k = 0; k < trace.m_Centre.m_uCount; ++k)
    m_aTraced[m_uTraced++] = PlaceOf(grid.Surface().Lattice(), trace.m_Centre.m_auPoints[k]);
}

void CDebugOverlay::Draw(const CGrid& grid, std::uint32_t flags) const {
  const std::uint64_t tree = grid.Surface().Tree().Revision();
  glColor3dv(kColour.data());
  if ((flags & DebugFlag::kInterpolation) != 0 && m_uTraced > 0 && m_uTracedTree == tree) DrawTrace();
  if ((flags & DebugFlag::kReadOuts) != 0 && m_uLabels > 0 && m_uLabelTree == tree) DrawLabels();
  glColor3d(1, 1, 1);
}

void CDebugOverlay::DrawTrace() const {
  glLineWidth(1);
  glBegin(GL_LINE_LOOP);
  glVertex2d(m_TracedCell.x0, m_TracedCell.y0);
  glVertex2d(m_TracedCell.x1, m_TracedCell.y0);
  glVertex2d(m_TracedCell.x1, m_TracedCell.y1);
  glVertex2d(m_TracedCell.x0, m_TracedCell.y1);
  glEnd();
  glPointSize(kPointSize);
  glBegin(GL_POINTS);
  for (std::size_t k = 0; k < m_uTraced; ++k) glVertex2d(m_aTraced[k].x, m_aTraced[k].y);
  glEnd();
}

void CDebugOverlay::DrawLabels() const {
  glPointSize(kPointSize);
  glBegin(GL_POINTS);
  for (std::size_t k = 0; k < m_uLabels; ++k) glVertex2d(m_aLabels[k].m_Place.x, m_aLabels[k].m_Place.y);
  glEnd();
  gl_font(FL_HELVETICA, kFontSize);
  for (std::size_t k = 0; k < m_uLabels; ++k) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), " %.4g", m_aLabels[k].m_fValue);
    gl_draw(text.data(), static_cast<float>(m_aLabels[k].m_Place.x), static_cast<float>(m_aLabels[k].m_Place.y));
  }
}
