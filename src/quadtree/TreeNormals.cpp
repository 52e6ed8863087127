#include "quadtree/TreeNormals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/CentreWeights.h"

namespace {

struct CCorners {
  std::array<std::size_t, 4> m_auPoints;
  std::array<double, 4> m_afZ;
};

CCorners CornersAt(std::size_t lowerLeft, std::size_t size, std::size_t side, std::span<const double> heights) {
  const std::size_t up = size * side;
  const std::array<std::size_t, 4> points{lowerLeft, lowerLeft + size, lowerLeft + size + up, lowerLeft + up};
  return {points, {heights[points[0]], heights[points[1]], heights[points[2]], heights[points[3]]}};
}

// Unit normals of the four triangles of a cell, component by component: the pass over all leaves keeps them in
// registers.
struct CTriangleNormals {
  std::array<double, 4> m_afX;
  std::array<double, 4> m_afY;
  std::array<double, 4> m_afZ;

  Vector3 Of(std::size_t k) const { return {m_afX[k], m_afY[k], m_afZ[k]}; }
  Vector3 Sum() const {
    return {m_afX[0] + m_afX[1] + m_afX[2] + m_afX[3], m_afY[0] + m_afY[1] + m_afY[2] + m_afY[3],
            m_afZ[0] + m_afZ[1] + m_afZ[2] + m_afZ[3]};
  }
  // (0, 0, 0) in place of the normals of marked triangles, which count nowhere.
  void Drop(std::uint32_t marked) {
    for (std::size_t k = 0; k < 4; ++k) {
      if ((marked >> k & 1U) != 0) m_afX[k] = m_afY[k] = m_afZ[k] = 0.0;
    }
  }
};

// From the heights of the corners and of the centre; (hx, hy): half the cell's size in model units. Each normal is the
// cross product of two spokes (+-hx, +-hy, a), whose terms reduce to these; all have the same z before they are scaled.
CTriangleNormals TriangleNormals(const std::array<double, 4>& z, double centre, double hx, double hy) {
  const std::array<double, 4> a{z[0] - centre, z[1] - centre, z[2] - centre, z[3] - centre};
  CTriangleNormals n{{hy * (a[0] - a[1]), -hy * (a[1] + a[2]), hy * (a[3] - a[2]), hy * (a[3] + a[0])},
                     {hx * (a[0] + a[1]), hx * (a[1] - a[2]), -hx * (a[2] + a[3]), hx * (a[0] - a[3])},
                     {}};
  // Twice the area of a triangle seen from above, model units squared; then all three over their length.
  const double nz = 2 * hx * hy;
  for (std::size_t k = 0; k < 4; ++k) {
    const double scale = 1.0 / std::sqrt(n.m_afX[k] * n.m_afX[k] + n.m_afY[k] * n.m_afY[k] + nz * nz);
    n.m_afX[k] *= scale;
    n.m_afY[k] *= scale;
    n.m_afZ[k] = scale * nz;
  }
  return n;
}

}  // namespace

CCellSurface CellSurface(const CQuadT& leaf, const CLattice& lattice) {
  const CCorners corners = CornersAt(lattice.Index(leaf.X0(), leaf.Y0()), static_cast<std::size_t>(leaf.Size()),
                                     static_cast<std::size_t>(lattice.PointsPerSide()), lattice.Heights());
  const std::array<double, 4>& z = corners.m_afZ;
  const double centre = CentreWeightsOf(leaf, lattice).Of(lattice.Heights());
  CTriangleNormals n = TriangleNormals(z, centre, lattice.StepX() / 2 * leaf.Size(), lattice.StepY() / 2 * leaf.Size());
  CCellSurface surface;
  for (std::size_t k = 0; k < 4; ++k) {
    // At the centre of gravity, model units.
    surface.m_afTriangleZ[k] = (centre + z[k] + z[(k + 1) % 4]) / 3;
    surface.m_aTriangleNormals[k] = n.Of(k);
  }
  n.Drop(leaf.Flags());
  surface.m_CellNormal = Normalised(n.Sum());
  return surface;
}

void ComputeNormals(CQuadTree& tree) {
  CLattice& lattice = tree.Lattice();
  const std::span<const double> z = lattice.Heights();
  const std::span<Vector3> pointNormals = lattice.PointNormals();
  const std::span<Vector3> cellNormals = lattice.CellNormals();
  std::fill(pointNormals.begin(), pointNormals.end(), Vector3{});
  const auto side = static_cast<std::size_t>(lattice.PointsPerSide());
  const double halfStepX = lattice.StepX() / 2;
  const double halfStepY = lattice.StepY() / 2;
  for (const CLeaf& leaf : tree.Leaves()) {
    const CCorners corners = CornersAt(leaf.m_uPoint, leaf.m_uSize, side, z);
    const std::array<double, 4>& c = corners.m_afZ;
    const double centre =
        leaf.m_uCentre == CLeaf::kMeanOfCorners ? 0.25 * (c[0] + c[1] + c[2] + c[3]) : tree.CentreOf(leaf).Of(z);
    CTriangleNormals n = TriangleNormals(c, centre, halfStepX * leaf.m_uSize, halfStepY * leaf.m_uSize);
    if (leaf.m_uMarked != 0) n.Drop(leaf.m_uMarked);
    cellNormals[leaf.m_uCell] = Normalised(n.Sum());
    // Corner k lies on the triangles k and k - 1. Every triangle counts alike, whatever its size; the factor goes when
    // the sums are scaled below.
    for (std::size_t k = 0; k < 4; ++k) {
      Vector3& normal = pointNormals[corners.m_auPoints[k]];
      normal.x += 0.125 * (n.m_afX[k] + n.m_afX[(k + 3) % 4]);
      normal.y += 0.125 * (n.m_afY[k] + n.m_afY[(k + 3) % 4]);
      normal.z += 0.125 * (n.m_afZ[k] + n.m_afZ[(k + 3) % 4]);
    }
  }
  // A point on the border of the model or of a discontinuity has fewer triangles around it; unit length gives all
  // points equal weight when normals are blended.
  for (Vector3& normal : pointNormals) {
    if (normal != Vector3{}) normal = Normalised(normal);
  }
}
