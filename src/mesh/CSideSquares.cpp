#include "mesh/CSideSquares.h"

#include <algorithm>

#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

// Whether the triangles of a leaf begin there, once around it and as they were.
bool IsSquare(const CTearPatch& patch, std::uint32_t t) {
  const std::span<const CCutTriangulation::CTriangle> triangles = patch.Triangles().Triangles();
  const auto& origin = patch.Origin(t);
  if (!origin.m_bUnit || !origin.m_bWholeLeaf || origin.m_uPlace != 0) return false;
  const auto fan = triangles.subspan(t, SideFacing::kCount);
  for (std::size_t k = 0; k < fan.size(); ++k) {
    if (fan[k].m_uOrigin != t + k || fan[k].m_auVertices[2] != fan[0].m_auVertices[2] ||
        fan[k].m_auVertices[1] != fan[(k + 1) % SideFacing::kCount].m_auVertices[0] ||
        std::ranges::find(fan[k].m_abCut, true) != fan[k].m_abCut.end())
      return false;
  }
  return true;
}

// What the sums of SidePlaneOf come to for triangles of half a square: steps along its side, and inwards.
void Raise(const CTearSides& sides, std::span<const double> heights, CSideSquares::CSquare& square) {
  const auto heightAt = [&](std::uint32_t t, std::uint32_t k) { return heights[sides.CopyOf(t, k)]; };
  const std::uint32_t t = square.m_uFirst;
  const double centre = heightAt(t, 2);
  const std::array corners{heightAt(t, 0), heightAt(t + 1, 0), heightAt(t + 2, 0), heightAt(t + 3, 0)};
  square.m_Range.Add(centre);
  for (const double z : corners) square.m_Range.Add(z);
  const double x = square.m_iColumn;
  const double y = square.m_iRow;
  CSideSquares::CBlock& planes = square.m_Planes;
  planes.m_afX = {x + 0.5, (3.0 * x + 2.5) / 3.0, x + 0.5, (3.0 * x + 0.5) / 3.0};
  planes.m_afY = {(3.0 * y + 0.5) / 3.0, y + 0.5, (3.0 * y + 2.5) / 3.0, y + 0.5};
  for (std::size_t k = 0; k < SideFacing::kCount; ++k) {
    const double from = corners[k];
    const double to = corners[(k + 1) % SideFacing::kCount];
    const double along = to - from;
    const double inwards = 2.0 * centre - (from + to);
    planes.m_afZ[k] = from / 3.0 + to / 3.0 + centre / 3.0;
    planes.m_afSlopeX[k] = k == SideFacing::kDown   ? along
                           : k == SideFacing::kUp   ? -along
                           : k == SideFacing::kLeft ? inwards
                                                    : -inwards;
    planes.m_afSlopeY[k] = k == SideFacing::kRight  ? along
                           : k == SideFacing::kLeft ? -along
                           : k == SideFacing::kDown ? inwards
                                                    : -inwards;
  }
}

}  // namespace

CSideSquares::CSideSquares(const CTearPatch& patch, const CTearSides& sides, std::span<const double> heights)
    : m_uTiles((static_cast<std::size_t>(patch.Plane().Cells()) + kTile - 1) / kTile),
      m_auTileAt(m_uTiles * m_uTiles, kNone) {
  m_aSquares.reserve(patch.OriginCount() / SideFacing::kCount);
  for (std::uint32_t t = 0; t < patch.OriginCount(); ++t) {
    if (!IsSquare(patch, t)) continue;
    const auto number = static_cast<std::uint32_t>(m_aSquares.size());
    const std::uint32_t corner = patch.Triangles().Triangle(t).m_auVertices[0];
    CSquare& square = m_aSquares.emplace_back();
    square.m_uFirst = t;
    square.m_iColumn = static_cast<int>(patch.ColumnOf(corner));
    square.m_iRow = static_cast<int>(patch.RowOf(corner));
    Raise(sides, heights, square);
    Put(number);
  }
}

void CSideSquares::Put(std::uint32_t number) {
  const auto column = static_cast<std::size_t>(m_aSquares[number].m_iColumn);
  const auto row = static_cast<std::size_t>(m_aSquares[number].m_iRow);
  std::uint32_t& tile = m_auTileAt[row / kTile * m_uTiles + column / kTile];
  if (tile == kNone) {
    tile = static_cast<std::uint32_t>(m_aTiles.size());
    m_aTiles.emplace_back().fill(kNone);
  }
  m_aTiles[tile][row % kTile * kTile + column % kTile] = number;
}
