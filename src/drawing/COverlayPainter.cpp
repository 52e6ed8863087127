#include "drawing/COverlayPainter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include "base/Memory.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"

namespace {

constexpr int kMapTexels = 256;
// More than a view has pixels is seen by nobody.
constexpr int kMostTexels = 1024;

// The mean of the numbers in a rectangle of a raster; not a number where there are none.
double MeanOf(const COverlay::CRaster& raster, int x0, int x1, int y0, int y1) {
  double sum = 0.0;
  int count = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      const float value = raster.m_afValues[static_cast<std::size_t>(y) * static_cast<std::size_t>(raster.m_iWidth) +
                                            static_cast<std::size_t>(x)];
      if (std::isnan(value)) continue;
      sum += value;
      ++count;
    }
  }
  return count > 0 ? sum / count : std::numeric_limits<double>::quiet_NaN();
}

// The pixels of a side of `size` that texel `k` of `side` covers in part, at least one.
std::pair<int, int> PixelsUnder(int k, int side, int size) {
  const auto from = static_cast<int>(static_cast<long long>(k) * size / side);
  const auto to = static_cast<int>(static_cast<long long>(k + 1) * size / side);
  return {from, std::max(to, from + 1)};
}

void SetSmoothTexture(GLenum target) {
  glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

}  // namespace

void COverlayPainter::Set(std::shared_ptr<const COverlay> overlay, const CQuadTree& tree, const CPointOrder& order) {
  Clear();
  m_pOverlay = std::move(overlay);
  if (m_pOverlay == nullptr) {
    m_Mesh = {};
    m_uMeshOf.reset();
    for (std::vector<float>* floats : {&m_afPositions, &m_afPlaces}) Release(*floats);
    Release(m_auWithValues);
    return;
  }
  if (!m_pOverlay->m_Raster.m_afValues.empty()) MakeTexels();
  if (m_pOverlay->m_uTree != tree.Revision()) return;
  const std::vector<double>& values = m_pOverlay->m_afAtPoints;
  const bool due = values.empty() && m_pOverlay->m_Raster.m_afValues.empty();
  const bool any =
      values.size() == order.Count() && std::ranges::any_of(values, [](double value) { return !std::isnan(value); });
  if (due || any) MakeMesh(tree);
  if (!any) return;
  MakePlaces(tree, order);
  ChooseTriangles();
}

void COverlayPainter::Clear() {
  m_auTriangles = {};
  m_afPlaces.clear();
  m_auWithValues.clear();
  m_auTexels.clear();
  m_iTexelSide = 0;
}

void COverlayPainter::MakeMesh(const CQuadTree& tree) {
  const bool otherTree = m_uMeshOf != tree.Revision();
  if (!otherTree && m_Extent == tree.Lattice().Extent()) return;
  if (otherTree) m_Mesh.Build(tree);
  m_Mesh.Place(tree, m_afPositions);
  m_uMeshOf = tree.Revision();
  m_Extent = tree.Lattice().Extent();
}

// The values of the vertices are made of those at the points as the heights of the surface are.
void COverlayPainter::MakePlaces(const CQuadTree& tree, const CPointOrder& order) {
  std::vector<double> values(tree.Lattice().PointCount(), std::numeric_limits<double>::quiet_NaN());
  for (std::size_t k = 0; k < order.Count(); ++k) values[order.PointAtScan(k)] = m_pOverlay->m_afAtPoints[k];
  m_afPlaces.reserve(m_Mesh.VertexCount());
  const auto add = [this](double value) {
    m_afPlaces.push_back(static_cast<float>(std::clamp(m_pOverlay->PlaceOf(value), 0.0, 1.0)));
  };
  for (const std::uint32_t point : m_Mesh.Points()) add(values[point]);
  for (const CLeaf& leaf : tree.Leaves()) add(CSurfaceMesh::CentreHeight(tree, leaf, values));
}

void COverlayPainter::ChooseTriangles() {
  m_auTriangles = m_Mesh.Triangles();
  const auto hasValue = [this](std::uint32_t vertex) { return !std::isnan(m_afPlaces[vertex]); };
  if (std::ranges::none_of(m_afPlaces, [](float place) { return std::isnan(place); })) return;
  for (std::size_t t = 0; t + 2 < m_auTriangles.size(); t += 3) {
    const auto corners = m_auTriangles.subspan(t, 3);
    if (std::ranges::all_of(corners, hasValue))
      m_auWithValues.insert(m_auWithValues.end(), corners.begin(), corners.end());
  }
  m_auTriangles = m_auWithValues;
}

void COverlayPainter::MakeTexels() {
  const COverlay::CRaster& raster = m_pOverlay->m_Raster;
  const auto longer = static_cast<unsigned>(std::max(raster.m_iWidth, raster.m_iHeight));
  m_iTexelSide = std::min(kMostTexels, static_cast<int>(std::bit_ceil(longer)));
  m_auTexels.clear();
  m_auTexels.reserve(static_cast<std::size_t>(m_iTexelSide) * static_cast<std::size_t>(m_iTexelSide) * 4);
  const auto opacity = static_cast<std::uint8_t>(std::lround(255 * m_pOverlay->m_fOpacity));
  for (int row = 0; row < m_iTexelSide; ++row) {
    const auto [y0, y1] = PixelsUnder(row, m_iTexelSide, raster.m_iHeight);
    for (int column = 0; column < m_iTexelSide; ++column) {
      const auto [x0, x1] = PixelsUnder(column, m_iTexelSide, raster.m_iWidth);
      const double value = MeanOf(raster, x0, x1, y0, y1);
      const std::array<std::uint8_t, 3> colour = ColourAt(m_pOverlay->m_Map, m_pOverlay->PlaceOf(value));
      m_auTexels.insert(m_auTexels.end(), colour.begin(), colour.end());
      m_auTexels.push_back(std::isnan(value) ? std::uint8_t{0} : opacity);
    }
  }
  m_bTexelsDue = true;
}

void COverlayPainter::Draw(const CExtent& extent) {
  if (m_pOverlay == nullptr) return;
  // The texture matrix and the mode of the context are those of others.
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  if (!m_auTriangles.empty()) DrawTriangles();
  if (!m_auTexels.empty()) DrawRaster(extent);
  glColor3d(1, 1, 1);
}

// The map is a texture, so that values and not colours are interpolated.
void COverlayPainter::DrawTriangles() const {
  std::array<std::uint8_t, std::size_t{3} * kMapTexels> map{};
  for (std::size_t k = 0; k < kMapTexels; ++k) {
    const double place = static_cast<double>(k) / (kMapTexels - 1.0);
    std::ranges::copy(ColourAt(m_pOverlay->m_Map, place), map.begin() + static_cast<std::ptrdiff_t>(3 * k));
  }
  // Its own texture: the driver keeps what contexts that have gone had made of the nameless one.
  unsigned texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_1D, texture);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage1D(GL_TEXTURE_1D, 0, GL_RGB, kMapTexels, 0, GL_RGB, GL_UNSIGNED_BYTE, map.data());
  SetSmoothTexture(GL_TEXTURE_1D);
  glMatrixMode(GL_TEXTURE);
  glPushMatrix();
  // The ends of the map are the middles of the outer texels.
  glLoadIdentity();
  glTranslated(0.5 / kMapTexels, 0, 0);
  glScaled((kMapTexels - 1.0) / kMapTexels, 1, 1);
  glEnable(GL_TEXTURE_1D);
  glColor4d(1, 1, 1, m_pOverlay->m_fOpacity);
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_TEXTURE_COORD_ARRAY);
  constexpr GLsizei kStride = 3 * sizeof(float);
  glVertexPointer(2, GL_FLOAT, kStride, m_afPositions.data());
  glTexCoordPointer(1, GL_FLOAT, 0, m_afPlaces.data());
  glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(m_auTriangles.size()), GL_UNSIGNED_INT, m_auTriangles.data());
  glDisableClientState(GL_TEXTURE_COORD_ARRAY);
  glDisableClientState(GL_VERTEX_ARRAY);
  glDisable(GL_TEXTURE_1D);
  glDeleteTextures(1, &texture);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
}

void COverlayPainter::DrawRaster(const CExtent& extent) {
  if (m_uTexture == 0) {
    glGenTextures(1, &m_uTexture);
    m_bTexelsDue = true;
  }
  glBindTexture(GL_TEXTURE_2D, m_uTexture);
  if (std::exchange(m_bTexelsDue, false)) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, m_iTexelSide, m_iTexelSide, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 m_auTexels.data());
    SetSmoothTexture(GL_TEXTURE_2D);
  }
  glEnable(GL_TEXTURE_2D);
  glColor4d(1, 1, 1, 1);
  glBegin(GL_QUADS);
  glTexCoord2d(0, 0), glVertex2d(extent.x0, extent.y0);
  glTexCoord2d(1, 0), glVertex2d(extent.x1, extent.y0);
  glTexCoord2d(1, 1), glVertex2d(extent.x1, extent.y1);
  glTexCoord2d(0, 1), glVertex2d(extent.x0, extent.y1);
  glEnd();
  glDisable(GL_TEXTURE_2D);
}
