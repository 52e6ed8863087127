#include "quadtree/TreeNormals.h"

#include <algorithm>
#include <array>
#include <span>

#include "model/CLattice.h"
#include "quadtree/CQuadTree.h"

namespace {

struct CCorners {
  std::array<std::size_t, 4> m_auPoints;
  std::array<double, 4> m_afZ;
};

CCorners CornersOf(const CLeaf& leaf, std::size_t side, std::span<const double> heights) {
  const auto step = static_cast<std::size_t>(leaf.m_pCell->Size());
  const std::size_t p = leaf.m_uPoint;
  const std::array<std::size_t, 4> points{p, p + step, p + step + step * side, p + step * side};
  return {points, {heights[points[0]], heights[points[1]], heights[points[2]], heights[points[3]]}};
}

// (hx, hy): half the cell's size in model units.
CCellSurface CellSurface(const CQuadT& cell, const CCorners& corners, double centreZ, double hx, double hy) {
  const std::array<double, 4>& z = corners.m_afZ;
  const std::array<Vector3, 4> spoke{Vector3{-hx, -hy, z[0] - centreZ}, Vector3{hx, -hy, z[1] - centreZ},
                                     Vector3{hx, hy, z[2] - centreZ}, Vector3{-hx, hy, z[3] - centreZ}};
  CCellSurface surface;
  Vector3 sum;
  for (std::size_t k = 0; k < 4; ++k) {
    const std::size_t next = (k + 1) % 4;
    surface.m_aTriangleNormals[k] = Normalised(Cross(spoke[k], spoke[next]));
    surface.m_afTriangleZ[k] = (centreZ + z[k] + z[next]) / 3;
    if (!cell.HasFlag(1U << k)) sum += surface.m_aTriangleNormals[k];
  }
  surface.m_CellNormal = Normalised(sum);
  return surface;
}

void AddToPointNormals(const CQuadT& cell, const CCellSurface& surface, const CCorners& corners,
                       std::span<Vector3> pointNormals) {
  for (std::size_t k = 0; k < 4; ++k) {
    if (cell.HasFlag(1U << k)) continue;
    const Vector3 share = 0.125 * surface.m_aTriangleNormals[k];
    pointNormals[corners.m_auPoints[k]] += share;
    pointNormals[corners.m_auPoints[(k + 1) % 4]] += share;
  }
}

}  // namespace

void ComputeNormals(CQuadTree& tree) {
  CLattice& lattice = tree.Lattice();
  const std::span<const double> z = lattice.Heights();
  const std::span<Vector3> pointNormals = lattice.PointNormals();
  std::fill(pointNormals.begin(), pointNormals.end(), Vector3{});
  const auto side = static_cast<std::size_t>(lattice.PointsPerSide());
  const double halfStepX = lattice.StepX() / 2;
  const double halfStepY = lattice.StepY() / 2;
  const std::span<const CLeaf> leaves = tree.Leaves();
  for (std::size_t k = 0; k < leaves.size(); ++k) {
    const CLeaf& leaf = leaves[k];
    const CQuadT& cell = *leaf.m_pCell;
    const CCorners corners = CornersOf(leaf, side, z);
    const std::array<double, 4>& c = corners.m_afZ;
    const double centre =
        leaf.m_uCentre == CLeaf::kMeanOfCorners ? 0.25 * (c[0] + c[1] + c[2] + c[3]) : tree.CentreOf(leaf).Of(z);
    CCellSurface& surface = tree.Surfaces()[k];
    surface = CellSurface(cell, corners, centre, halfStepX * cell.Size(), halfStepY * cell.Size());
    lattice.CellNormals()[lattice.CellIndex(cell.X0(), cell.Y0())] = surface.m_CellNormal;
    AddToPointNormals(cell, surface, corners, pointNormals);
  }
  // A point on the border of the model or of a discontinuity has fewer triangles around it; unit length gives all
  // points equal weight when normals are blended.
  for (Vector3& normal : pointNormals) {
    if (normal != Vector3{}) normal = Normalised(normal);
  }
}
