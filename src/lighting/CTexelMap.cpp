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
  m_aNormals.clear();
  WriteCoords();
  m_uTreeOfRecords.reset();
  m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

// Goes on where pieces have ended.
void CTexelMap::WriteCoords() {
  if (m_aNormals.size() == TexelCount()) return;
  Reserve();
  for (int row = 0; row < m_iHeight; ++row) WriteCoordsOfRow(row);
}

void CTexelMap::WriteCoordsOfRow(int row) {
  const std::size_t end = (static_cast<std::size_t>(row) + 1) * static_cast<std::size_t>(m_iWidth);
  if (m_aNormals.size() >= end) return;
  for (int column = 0; column < m_iWidth; ++column) m_aRecords.emplace_back(column, row);
  m_aNormals.resize(end, {0, 0, 1});
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
  m_bRecordsDue = !HasRecordsOf(surface);
  const CLattice& lattice = surface.Lattice();
  for (int row = 0; row < m_iHeight; ++row)
    ComputeCoefsOfRow(surface, row, lattice.PointNormals(), lattice.CellNormals());
  m_uTreeOfRecords = m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

void CTexelMap::ComputeCoefsOfRow(const CInterpolation& surface, int row, std::span<const Vector3> points,
                                  std::span<const Vector3> cells) {
  const CQuadT* leaf = nullptr;
  const std::size_t first = static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iWidth);
  for (std::size_t i = first; i < first + static_cast<std::size_t>(m_iWidth); ++i) {
    CInterpCoefs& record = m_aRecords[i];
    if (m_bRecordsDue) record = CInterpCoefs(record.Column(), record.Row());
    if (!IsMasked(i)) {
      if (record.Locate(surface, m_iWidth, m_iHeight, leaf)) m_aNormals[i] = record.NormalOn(points, cells);
    } else if (m_bRecordsDue) {
      // Its normal stays, but the normals-only pass will read its coefficients.
      record.Locate(surface, m_iWidth, m_iHeight, leaf);
    }
  }
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

bool CTexelMap::HasNormalsOf(const CInterpolation& surface) const {
  return m_aNormals.size() == TexelCount() && m_uTreeOfNormals == surface.Tree().Revision();
}

// What the pieces have only half done is as good as never done.
void CTexelMap::BeginNormals(const CInterpolation& surface) {
  Reserve();
  m_bNormalsDue = m_uTreeOfNormals != surface.Tree().Revision();
  if (!m_bNormalsDue) return;
  UpdateMask(surface);
  m_bRecordsDue = !HasRecordsOf(surface);
  if (m_bRecordsDue) m_uTreeOfRecords.reset();
  m_uTreeOfNormals.reset();
}

void CTexelMap::UpdateNormalsOfRow(const CInterpolation& surface, int row, std::span<const Vector3> points,
                                   std::span<const Vector3> cells) {
  WriteCoordsOfRow(row);
  if (!m_bNormalsDue) return;
  ComputeCoefsOfRow(surface, row, points, cells);
  if (row + 1 < m_iHeight) return;
  m_uTreeOfRecords = m_uTreeOfNormals = surface.Tree().Revision();
  ++m_uRevision;
}

Vector3 CTexelMap::NextNormalAt(int column, int row, const CInterpolation& surface, const CQuadT*& leaf) const {
  const std::size_t texel = IndexOf(column, row);
  const Vector3 present = texel < m_aNormals.size() ? m_aNormals[texel] : Vector3{0, 0, 1};
  if (IsMasked(texel) || m_uTreeOfNormals == surface.Tree().Revision()) return present;
  Vector3 normal;
  CInterpCoefs record(column, row);
  return record.GetNormalTexPoint(&surface, m_iWidth, m_iHeight, leaf, normal) != nullptr ? normal : present;
}
