#include "quadtree/Interpolation.h"

#include <algorithm>
#include <cmath>

#include "base/Console.h"
#include "lattice/CLattice.h"
#include "quadtree/CEdge.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"

namespace {

// Barycentric coordinates are rounded to multiples of this, so that a point on a side of its triangle gets exactly 0
// and not a tiny negative number that would have it refused.
constexpr double kCoefficientStep = 1e-10;

double RoundedCoefficient(double c) { return std::floor(c * 1e10 + 0.5) * kCoefficientStep; }

struct Point {
  double x;
  double y;
};

Point CentreOf(const CQuadT& leaf) { return {(leaf.X0() + leaf.X1()) / 2.0, (leaf.Y0() + leaf.Y1()) / 2.0}; }

// The leaf sub-edge of the bottom or top side that the ray from the centre through (gx, gy) meets; null if it leaves
// through another side.
const CEdge* MeetHorizontalSide(const CQuadT& leaf, double gx, double gy) {
  const Point c = CentreOf(leaf);
  if (gy == c.y) return nullptr;
  // c + t (g - c) lies on the line of the bottom side. Where the ray goes up, t is below 0, and the point on the top
  // side is the mirror image of that one through the centre.
  const double t = (leaf.Y0() - c.y) / (gy - c.y);
  const double xb = c.x + t * (gx - c.x);
  return t > 0 ? leaf.Edge(kBottom).FindLeaf(xb) : leaf.Edge(kTop).FindLeaf(leaf.X0() + leaf.X1() - xb);
}

const CEdge* MeetVerticalSide(const CQuadT& leaf, double gx, double gy) {
  const Point c = CentreOf(leaf);
  // The same with the left and the right side.
  const double t = (leaf.X0() - c.x) / (gx - c.x);
  const double yl = c.y + t * (gy - c.y);
  const CEdge* edge = t > 0 ? leaf.Edge(kLeft).FindLeaf(yl) : leaf.Edge(kRight).FindLeaf(leaf.Y0() + leaf.Y1() - yl);
  if (edge == nullptr) Console() << "CQuadT::GetBilinearInterpolation Problem...\n";
  return edge;
}

CTriangleStencil InTriangle(const CQuadT& leaf, const CEdge& edge, const CLattice& lattice, Point p) {
  const Point c = CentreOf(leaf);
  const Point a{static_cast<double>(edge.Xa()), static_cast<double>(edge.Ya())};
  const Point b{static_cast<double>(edge.Xb()), static_cast<double>(edge.Yb())};
  // Barycentric coordinates, without a unit: areas of the triangles that p makes with two corners, as cross products in
  // lattice steps squared, over that of a, b and c.
  const double d = (b.y - a.y) * (c.x - a.x) - (c.y - a.y) * (b.x - a.x);
  const double cc = ((p.x - a.x) * (b.y - a.y) - (p.y - a.y) * (b.x - a.x)) / d;
  const double cb = -((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / d;
  const double ca = 1 - cb - cc;
  return {&leaf,
          lattice.Index(edge.Xa(), edge.Ya()),
          lattice.Index(edge.Xb(), edge.Yb()),
          RoundedCoefficient(ca),
          RoundedCoefficient(cb),
          RoundedCoefficient(cc)};
}

bool IsCentre(const CQuadT& leaf, double gx, double gy) {
  const Point c = CentreOf(leaf);
  return gx == c.x && gy == c.y;
}

// At the centre itself no sub-edge is met; the ends named are those of the bottom side, with coefficient 0.
CTriangleStencil AtCentre(const CQuadT& leaf, const CLattice& lattice) {
  return {&leaf, lattice.Index(leaf.X0(), leaf.Y0()), lattice.Index(leaf.X1(), leaf.Y0()), 0.0, 0.0, 1.0};
}

std::optional<CTriangleStencil> CheckedShortForm(const CTriangleStencil& triangle, const char* method) {
  if (!triangle.HasNegative()) return triangle;
  Console() << "Error CQuadT::" << method << " : negative coefficients in triangle interpolation\n"
            << "ca = " << triangle.m_fCa << ", cb = " << triangle.m_fCb << ", cCenter = " << triangle.m_fCCenter
            << '\n';
  return std::nullopt;
}

// Offers the leaves that hold the point (closed bounds) to `attempt` in child order until one succeeds.
template <typename Attempt>
bool TryLeaves(const CQuadT& cell, double gx, double gy, Attempt& attempt) {
  if (!cell.Contains(gx, gy)) return false;
  if (cell.IsActive() || !cell.HasChildren()) return attempt(cell);
  for (int k = 0; k < 4; ++k) {
    if (TryLeaves(cell.Child(k), gx, gy, attempt)) return true;
  }
  return false;
}

}  // namespace

const CLattice& CInterpolation::Lattice() const { return m_pTree->Lattice(); }

std::optional<CTriangleStencil> CInterpolation::LocateInLeaf(const CQuadT& leaf, double gx, double gy) const {
  if (IsCentre(leaf, gx, gy)) return AtCentre(leaf, Lattice());
  const CEdge* edge = MeetHorizontalSide(leaf, gx, gy);
  if (edge == nullptr) edge = MeetVerticalSide(leaf, gx, gy);
  if (edge == nullptr) return std::nullopt;
  return InTriangle(leaf, *edge, Lattice(), {gx, gy});
}

bool CInterpolation::InterpolateInLeaf(const CQuadT& leaf, double gx, double gy, CStencil& stencil,
                                       CInterpolationTrace* trace) const {
  stencil = CStencil{};
  const std::optional<CTriangleStencil> triangle = LocateInLeaf(leaf, gx, gy);
  if (!triangle) return false;
  const CCentreWeights centre = CentreWeightsOf(leaf, Lattice());
  if (trace != nullptr) *trace = {*triangle, centre};
  const auto number = [this](std::size_t point) { return static_cast<std::uint32_t>(m_pOrder->NumberOf(point)); };
  for (std::size_t k = 0; k < centre.m_uCount; ++k) {
    stencil.m_auNodes[k] = number(centre.m_auPoints[k]);
    // The share of the centre, handed on to the points that make its height.
    stencil.m_afCoefs[k] = centre.m_afWeights[k] * triangle->m_fCCenter;
  }
  if (!IsCentre(leaf, gx, gy)) {
    stencil.m_auNodes[6] = number(triangle->m_uA);
    stencil.m_afCoefs[6] = triangle->m_fCa;
    stencil.m_auNodes[7] = number(triangle->m_uB);
    stencil.m_afCoefs[7] = triangle->m_fCb;
  }
  if (!triangle->HasNegative()) return true;
  Console() << "Error CQuadT::GetBilinearInterpolation : negative coefficients in triangle interpolation\n";
  return false;
}

bool CInterpolation::GetBilinearInterpolation(double x, double y, CStencil& stencil, CInterpolationTrace* trace) const {
  stencil = CStencil{};
  const double gx = Lattice().ColumnOf(x);
  const double gy = Lattice().RowOf(y);
  auto attempt = [&](const CQuadT& leaf) { return InterpolateInLeaf(leaf, gx, gy, stencil, trace); };
  return TryLeaves(m_pTree->Root(), gx, gy, attempt);
}

std::optional<CTriangleStencil> CInterpolation::GetBilinearInterpolation2a(const CQuadT& leaf, double gx,
                                                                           double gy) const {
  const CEdge* edge = MeetHorizontalSide(leaf, gx, gy);
  if (edge == nullptr) return std::nullopt;
  return CheckedShortForm(InTriangle(leaf, *edge, Lattice(), {gx, gy}), "GetBilinearInterpolation2a");
}

std::optional<CTriangleStencil> CInterpolation::GetBilinearInterpolation2b(const CQuadT& leaf, double gx,
                                                                           double gy) const {
  const CEdge* edge = MeetVerticalSide(leaf, gx, gy);
  if (edge == nullptr) return std::nullopt;
  return CheckedShortForm(InTriangle(leaf, *edge, Lattice(), {gx, gy}), "GetBilinearInterpolation2b");
}

std::optional<CTriangleStencil> CInterpolation::ShortStencil(double gx, double gy, const CQuadT* near) const {
  std::optional<CTriangleStencil> found;
  auto attempt = [&](const CQuadT& leaf) {
    if (IsCentre(leaf, gx, gy)) {
      found = AtCentre(leaf, Lattice());
    } else if (const CEdge* edge = MeetHorizontalSide(leaf, gx, gy); edge != nullptr) {
      found = CheckedShortForm(InTriangle(leaf, *edge, Lattice(), {gx, gy}), "GetBilinearInterpolation2a");
    } else {
      found = GetBilinearInterpolation2b(leaf, gx, gy);
    }
    return found.has_value();
  };
  // On its border the leaf shares the point with others, and which of them comes first is for the tree to say.
  if (near != nullptr && near->X0() < gx && gx < near->X1() && near->Y0() < gy && gy < near->Y1()) {
    attempt(*near);
  } else {
    TryLeaves(m_pTree->Root(), gx, gy, attempt);
  }
  return found;
}

double CInterpolation::CentreHeight(const CQuadT& leaf) const {
  return CentreWeightsOf(leaf, Lattice()).Of(Lattice().Heights());
}

double CInterpolation::HeightOf(const CTriangleStencil& triangle) const {
  const std::vector<double>& z = Lattice().Heights();
  // Ca z_a + Cb z_b + Cc z_centre, model units; the centre costs a walk round the cell.
  const double border = triangle.m_fCa * z[triangle.m_uA] + triangle.m_fCb * z[triangle.m_uB];
  return triangle.m_fCCenter == 0 ? border : border + triangle.m_fCCenter * CentreHeight(*triangle.m_pCell);
}

double CInterpolation::HeightAt(double gx, double gy) const {
  const std::optional<CTriangleStencil> triangle = ShortStencil(gx, gy);
  return triangle ? HeightOf(*triangle) : 0.0;
}

void CInterpolation::SampleLattice(std::span<double> heights) const {
  const CLattice& lattice = Lattice();
  const std::vector<double>& z = lattice.Heights();
  m_pTree->ForEachLeaf([&](const CQuadT& leaf) {
    const double centre = CentreHeight(leaf);
    for (int row = leaf.Y0(); row <= leaf.Y1(); ++row) {
      for (int column = leaf.X0(); column <= leaf.X1(); ++column) {
        const std::size_t point = lattice.Index(column, row);
        if (lattice.Has(point, PointFlag::kInUse)) {
          heights[point] = z[point];
        } else if (const auto triangle = LocateInLeaf(leaf, column, row)) {
          heights[point] =
              triangle->m_fCa * z[triangle->m_uA] + triangle->m_fCb * z[triangle->m_uB] + triangle->m_fCCenter * centre;
        }
      }
    }
  });
}

Vector3 CInterpolation::NormalOf(const CTriangleStencil& triangle) const {
  const std::span<const Vector3> points = Lattice().PointNormals();
  const std::size_t cell = Lattice().CellIndex(triangle.m_pCell->X0(), triangle.m_pCell->Y0());
  return BlendedNormal(triangle.m_fCa, points[triangle.m_uA], triangle.m_fCb, points[triangle.m_uB],
                       triangle.m_fCCenter, Lattice().CellNormals()[cell]);
}

Vector3 CInterpolation::GetNormal(double x, double y) const {
  const std::optional<CTriangleStencil> triangle = ShortStencil(Lattice().ColumnOf(x), Lattice().RowOf(y));
  if (triangle) return NormalOf(*triangle);
  Console() << "CQuadT::GetNormal\t\tcell == NULL)\n";
  return {0, 0, 1};
}
