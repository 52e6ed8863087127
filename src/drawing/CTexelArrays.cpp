#include "drawing/CTexelArrays.h"

#include <cstddef>

#include "model/CGrid.h"

namespace {

void AppendRectangle(std::vector<float>& vertices, int left, int right, int row) {
  const auto x0 = static_cast<float>(left);
  const auto x1 = static_cast<float>(right);
  const auto y0 = static_cast<float>(row);
  const float y1 = y0 + 1;
  vertices.insert(vertices.end(), {x0, y0, x1, y0, x1, y1, x0, y1});
}

void AppendSegment(std::vector<float>& segments, const Vector3& from, const Vector3& to) {
  for (const double c : {from.x, from.y, from.z, to.x, to.y, to.z}) segments.push_back(static_cast<float>(c));
}

}  // namespace

void CTexelArrays::RefreshMasked(const CGrid& grid) {
  const CTexelMap& texels = grid.Relighting().Texels();
  CStamp now;
  now.m_uPicture = grid.Relighting().Textures().Revision(CTextureImages::kPhotograph);
  now.m_uTexels = texels.MaskRevision();
  if (now == m_MaskStamp) return;
  m_MaskStamp = now;
  m_afMasked.clear();
  const std::span<const std::uint8_t> mask = texels.Mask();
  if (mask.empty()) return;
  const auto width = static_cast<std::size_t>(texels.Width());
  for (int row = 0; row < texels.Height(); ++row) {
    const std::span<const std::uint8_t> line = mask.subspan(static_cast<std::size_t>(row) * width, width);
    for (int first = 0; first < texels.Width(); ++first) {
      if (line[static_cast<std::size_t>(first)] == 0) continue;
      int end = first + 1;
      while (end < texels.Width() && line[static_cast<std::size_t>(end)] != 0) ++end;
      AppendRectangle(m_afMasked, first, end, row);
      first = end;
    }
  }
}

void CTexelArrays::RaiseCentres(const CGrid& grid) {
  const CLattice& lattice = grid.Surface().Lattice();
  const CInterpolation surface = grid.Surface().Interpolation();
  m_afCentres.resize(lattice.PointCount());
  for (const CLeaf& leaf : grid.Surface().Tree().Leaves())
    m_afCentres[leaf.m_uCell] = surface.CentreHeight(*leaf.m_pCell);
}

void CTexelArrays::RefreshNormals(const CGrid& grid, double length) {
  const CTexelMap& texels = grid.Relighting().Texels();
  const CLattice& lattice = grid.Surface().Lattice();
  const CStamp now{grid.Relighting().Textures().Revision(CTextureImages::kPhotograph),
                   texels.Revision(),
                   grid.Surface().Tree().Revision(),
                   grid.Surface().Revision(),
                   length,
                   lattice.Extent()};
  if (now == m_NormalStamp) return;
  m_NormalStamp = now;
  RaiseCentres(grid);
  m_afNormals.clear();
  const std::span<const double> z = lattice.Heights();
  for (std::size_t k = 0; k < texels.Records().size(); ++k) {
    const CInterpCoefs& record = texels.Records()[k];
    const Vector3& normal = texels.Normals()[k];
    // In a discontinuity there may be no normal.
    if (!record.IsLocated() || !IsFinite(normal)) continue;
    const int side = lattice.PointsPerSide();
    const Vector3 place{
        lattice.XOf(CInterpCoefs::Coordinate(record.Column(), texels.Width(), side)),
        lattice.YOf(CInterpCoefs::Coordinate(record.Row(), texels.Height(), side)),
        record.Ca() * z[record.A()] + record.Cb() * z[record.B()] + record.CCenter() * m_afCentres[record.Cell()]};
    AppendSegment(m_afNormals, place, place + length * normal);
  }
}
