#include "lighting/CTexelMap.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lattice/CLattice.h"
#include "quadtree/CQuadT.h"
#include "quadtree/CQuadTree.h"

namespace {

// The first of `count` texels along a side whose centre lies at or beyond lattice line `line`; `count` if none does.
int FirstTexelFrom(int line, int count, int pointsPerSide) {
  const auto before = [=](int texel) { return CInterpCoefs::Coordinate(texel, count, pointsPerSide) < line; };
  // The inverse of the texel's coordinate is off by one rounding at most, which the steps below undo.
  const double place = static_cast<double>(line) / (pointsPerSide - 1) * count - 0.5;
  int texel = std::clamp(static_cast<int>(std::ceil(place)), 0, count);
  while (texel < count && before(texel)) ++texel;
  while (texel > 0 && !before(texel - 1)) --texel;
  return texel;
}

}  // namespace

CTexelMap::CTexelMap(int width, int height, const CInterpolation& surface)
    : m_iWidth(width), m_iHeight(height), m_uTreeOfNormals(surface.Tree().Revision()) {}

double CTexelMap::Missing() const {
  const std::size_t records = m_aRecords.capacity() == 0 ? sizeof(CInterpCoefs) : 0;
  const std::size_t normals = m_aNormals.capacity() == 0 ? sizeof(Vector3) : 0;
  return static_cast<double>(records + normals) * static_cast<double>(TexelCount());
}

void CTexelMap::Reserve() {
  if (Missing() == 0) return;
  std::vector<CInterpCoefs> records;
  std::vector<Vector3> normals;
  records.reserve(TexelCount());
  normals.reserve(TexelCount());
  m_aRecords = std::move(records);
  m_aNormals = std::move(normals);
}

void CTexelMap::InitializeCoords(const CInterpolation& surface) {
  Reserve();
  m_aRecords.clear();
  WriteCoords();
  m_uTreeOfRecords.reset();
  m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

void CTexelMap::WriteCoords() {
  if (!m_aRecords.empty()) return;
  Reserve();
  for (int row = 0; row < m_iHeight; ++row) {
    for (int column = 0; column < m_iWidth; ++column) m_aRecords.emplace_back(column, row);
  }
  m_aNormals.assign(m_aRecords.size(), {0, 0, 1});
}

// A texel belongs to the leaf that `CQuadT::IsPointInsideDiscontinuity` descends to, which owns its lower and left
// border; so the texels of a leaf are a rectangle and unmarked leaves need no look at all.
void CTexelMap::TestDiscontinuities(const CInterpolation& surface) {
  const int side = surface.Lattice().PointsPerSide();
  m_uTreeOfMask.reset();
  std::fill(m_auMask.begin(), m_auMask.end(), std::uint8_t{0});
  surface.Tree().ForEachLeaf([&](const CQuadT& leaf) {
    if (!leaf.HasFlag(CellFlag::kTriangles)) return;
    if (m_auMask.empty()) m_auMask.resize(TexelCount());
    const int left = FirstTexelFrom(leaf.X0(), m_iWidth, side);
    const int right = FirstTexelFrom(leaf.X1(), m_iWidth, side);
    const int top = FirstTexelFrom(leaf.Y1(), m_iHeight, side);
    for (int row = FirstTexelFrom(leaf.Y0(), m_iHeight, side); row < top; ++row) {
      const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(row) * m_iWidth;
      std::fill(m_auMask.begin() + start + left, m_auMask.begin() + start + right, std::uint8_t{1});
    }
  });
  m_uTreeOfMask = surface.Tree().Revision();
  ++m_uMaskRevision;
}

void CTexelMap::UpdateMask(const CInterpolation& surface) {
  if (m_uTreeOfMask != surface.Tree().Revision()) TestDiscontinuities(surface);
}

bool CTexelMap::HasRecordsOf(const CInterpolation& surface) const {
  return m_uTreeOfRecords == surface.Tree().Revision();
}

// The walk hands each texel's leaf to the next one in the row, which mostly lies in the same one.
void CTexelMap::UpdateRecords(const CInterpolation& surface) {
  if (HasRecordsOf(surface)) return;
  WriteCoords();
  const CQuadT* leaf = nullptr;
  for (CInterpCoefs& record : m_aRecords) {
    record = CInterpCoefs(record.Column(), record.Row());
    record.Locate(surface, m_iWidth, m_iHeight, leaf);
  }
  m_uTreeOfRecords = surface.Tree().Revision();
}

void CTexelMap::ComputeCoefs(const CInterpolation& surface) {
  UpdateMask(surface);
  WriteCoords();
  const bool outOfDate = !HasRecordsOf(surface);
  const CQuadT* leaf = nullptr;
  for (std::size_t i = 0; i < m_aRecords.size(); ++i) {
    CInterpCoefs& record = m_aRecords[i];
    if (outOfDate) record = CInterpCoefs(record.Column(), record.Row());
    Vector3 normal;
    if (!IsMasked(i)) {
      if (record.GetNormalTexPoint(&surface, m_iWidth, m_iHeight, leaf, normal) != nullptr) m_aNormals[i] = normal;
    } else if (outOfDate) {
      // Its normal stays, but the normals-only pass will read its coefficients.
      record.Locate(surface, m_iWidth, m_iHeight, leaf);
    }
  }
  m_uTreeOfRecords = m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

void CTexelMap::ComputeNormals(const CInterpolation& surface) {
  UpdateMask(surface);
  UpdateRecords(surface);
  const std::span<const Vector3> points = surface.Lattice().PointNormals();
  const std::span<const Vector3> cells = surface.Lattice().CellNormals();
  for (std::size_t i = 0; i < m_aRecords.size(); ++i) {
    if (m_aRecords[i].IsLocated()) m_aNormals[i] = m_aRecords[i].NormalOn(points, cells);
  }
  m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

void CTexelMap::UpdateNormals(const CInterpolation& surface) {
  WriteCoords();
  if (m_uTreeOfNormals != surface.Tree().Revision()) ComputeCoefs(surface);
}
