#include "quadtree/SightLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "lattice/CLattice.h"
#include "quadtree/CEdge.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/Interpolation.h"

namespace {

// All in lattice columns and rows, and model units upwards: `m_Point` plus a multiple of `m_Direction`.
using CLatticeLine = CSightLine;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// How far beyond the border of a leaf the next one is looked for, in lattice steps; and how far outside of a triangle
// (as barycentric coordinates count) it is still met, which must be more, so that no line slips through between two.
constexpr double kStepOver = 1e-7;
constexpr double kTolerance = 1e-6;

Vector3 At(const CLatticeLine& line, double t) { return line.m_Point + t * line.m_Direction; }

// Multiples between which a line is inside of something.
struct CSpan {
  double m_fFrom = -kInfinity;
  double m_fTo = kInfinity;
  bool IsEmpty() const { return !(m_fFrom <= m_fTo); }
};

void Clip(CSpan& span, double start, double direction, double low, double high) {
  if (direction == 0) {
    if (start < low || start > high) span.m_fTo = -kInfinity;
    return;
  }
  const double a = (low - start) / direction;
  const double b = (high - start) / direction;
  span.m_fFrom = std::max(span.m_fFrom, std::min(a, b));
  span.m_fTo = std::min(span.m_fTo, std::max(a, b));
}

// The multiple at which a line meets a triangle [MollerTrumbore1997]; infinity where it does not.
double Meet(const CLatticeLine& line, const Vector3& a, const Vector3& b, const Vector3& c) {
  const Vector3 ab = b - a;
  const Vector3 ac = c - a;
  const Vector3 normal = Cross(ab, ac);
  const double slope = Dot(line.m_Direction, normal);
  if (slope == 0) return kInfinity;
  const Vector3 from = a - line.m_Point;
  const Vector3 side = Cross(line.m_Direction, from);
  const double u = -Dot(ac, side) / slope;
  const double v = Dot(ab, side) / slope;
  if (!(u >= -kTolerance && v >= -kTolerance && u + v <= 1 + kTolerance)) return kInfinity;
  return Dot(from, normal) / slope;
}

// A leaf as its place and size, in lattice steps.
struct CLeafSquare {
  int m_iX0;
  int m_iY0;
  int m_iSize;
};

// The leaves under the places of a line, one after the other. Most of what lies above a leaf lies above the next one,
// too, and is not looked at again. The narrowest cells are not looked at at all, as these are leaves wherever what is
// above them is none: there are three times as many of them as of all others, and memory is what a line waits for.
class CLeavesAlong {
 public:
  explicit CLeavesAlong(const CQuadTree& tree) { m_apPath.front() = &tree.Root(); }
  // Goes to the one of `PointInCell_g`; the place must be in the tree.
  const CLeafSquare& At(double x, double y) {
    while (m_uDepth > 0 && !IsIn(*m_apPath[m_uDepth], x, y)) --m_uDepth;
    for (;;) {
      const CQuadT& cell = *m_apPath[m_uDepth];
      m_iChild = -1;
      m_Square = {cell.X0(), cell.Y0(), cell.Size()};
      if (cell.IsActive()) return m_Square;
      const bool right = x >= cell.XMid();
      const bool upper = y >= cell.YMid();
      m_iChild = upper ? (right ? 2 : 3) : (right ? 1 : 0);
      if (cell.Level() == 1) {
        m_Square = {cell.X0() + (right ? 1 : 0), cell.Y0() + (upper ? 1 : 0), 1};
        return m_Square;
      }
      m_apPath[++m_uDepth] = &cell.Child(m_iChild);
    }
  }
  // The cell of the leaf that it has gone to.
  const CQuadT& Leaf() const {
    const CQuadT& cell = *m_apPath[m_uDepth];
    return m_iChild < 0 ? cell : cell.Child(m_iChild);
  }

 private:
  static bool IsIn(const CQuadT& cell, double x, double y) {
    return x >= cell.X0() && x < cell.X1() && y >= cell.Y0() && y < cell.Y1();
  }

  std::array<const CQuadT*, CLattice::kMaxLevel + 1> m_apPath{};
  std::size_t m_uDepth = 0;
  int m_iChild = -1;  // of the last one of the path; below 0 where this is the leaf itself
  CLeafSquare m_Square{};
};

// Whether all sides of a leaf are plain, so that its triangles lie between its corners: no centre lies outside of what
// it is a mean of.
bool HasPlainSides(const CQuadT& leaf) {
  return leaf.Edge(kBottom).IsLeaf() && leaf.Edge(kRight).IsLeaf() && leaf.Edge(kTop).IsLeaf() &&
         leaf.Edge(kLeft).IsLeaf();
}

// Whether the line, which is over the leaf between two multiples, passes above or below all that lies between its
// corners. `perStep` is the multiple that takes it one lattice step to the side.
bool PassesCorners(const CLattice& lattice, const CLatticeLine& line, const CLeafSquare& leaf, const CSpan& over,
                   double perStep) {
  const std::vector<double>& heights = lattice.Heights();
  const std::size_t lower = lattice.Index(leaf.m_iX0, leaf.m_iY0);
  const std::size_t upper = lattice.Index(leaf.m_iX0, leaf.m_iY0 + leaf.m_iSize);
  const auto size = static_cast<std::size_t>(leaf.m_iSize);
  const auto [a, b] = std::minmax(heights[lower], heights[lower + size]);
  const auto [c, d] = std::minmax(heights[upper], heights[upper + size]);
  const double low = std::min(a, c);
  const double high = std::max(b, d);
  // As far as the triangles are met outside of themselves, and twice that for rounding.
  const double beyond = 4 * kTolerance * leaf.m_iSize * perStep;
  const double from = line.m_Point.z + (over.m_fFrom - beyond) * line.m_Direction.z;
  const double to = line.m_Point.z + (over.m_fTo + beyond) * line.m_Direction.z;
  const double margin = 4 * kTolerance * (high - low) + 1e-12 * (std::abs(low) + std::abs(high));
  return std::max(from, to) < low - margin || std::min(from, to) > high + margin;
}

// The leaf under one place of the line, which its triangles are tried against.
class CLeafTriangles {
 public:
  CLeafTriangles(const CInterpolation& surface, const CLatticeLine& line, const CQuadT& leaf)
      : m_pLattice(&surface.Lattice()),
        m_Line(line),
        m_Centre{0.5 * (leaf.X0() + leaf.X1()), 0.5 * (leaf.Y0() + leaf.Y1()), surface.CentreHeight(leaf)} {
    for (int k = 0; k < 4; ++k) {
      if (!leaf.HasFlag(1U << k)) TrySide(leaf.Edge(k));
    }
  }
  double First() const { return m_fFirst; }

 private:
  void TrySide(const CEdge& edge) {
    if (!edge.IsLeaf() && edge.HasHalves()) {
      TrySide(edge.Half(0));
      TrySide(edge.Half(1));
      return;
    }
    const double t = Meet(m_Line, PointAt(edge.Xa(), edge.Ya()), PointAt(edge.Xb(), edge.Yb()), m_Centre);
    m_fFirst = std::min(m_fFirst, t);
  }
  Vector3 PointAt(int x, int y) const {
    return {static_cast<double>(x), static_cast<double>(y), m_pLattice->Heights()[m_pLattice->Index(x, y)]};
  }

  const CLattice* m_pLattice;
  CLatticeLine m_Line;
  Vector3 m_Centre;
  double m_fFirst = kInfinity;
};

CLatticeLine InLattice(const CSightLine& line, const CLattice& lattice) {
  const Vector3& p = line.m_Point;
  const Vector3& d = line.m_Direction;
  return {{lattice.ColumnOf(p.x), lattice.RowOf(p.y), p.z}, {d.x / lattice.StepX(), d.y / lattice.StepY(), d.z}};
}

// Where the line is over the lattice and between the heights, or as far outside of these as triangles are met.
CSpan OverSurface(const CLatticeLine& line, const CLattice& lattice, double lowest, double highest) {
  const double last = lattice.PointsPerSide() - 1;
  const double margin = kTolerance * (4 * (highest - lowest) + std::max(std::abs(lowest), std::abs(highest)));
  CSpan span;
  Clip(span, line.m_Point.x, line.m_Direction.x, 0, last);
  Clip(span, line.m_Point.y, line.m_Direction.y, 0, last);
  Clip(span, line.m_Point.z, line.m_Direction.z, lowest - margin, highest + margin);
  return span;
}

// The multiple at which the line leaves a leaf to the side.
double ExitOf(const CLatticeLine& line, const CLeafSquare& leaf) {
  CSpan span;
  Clip(span, line.m_Point.x, line.m_Direction.x, leaf.m_iX0, leaf.m_iX0 + leaf.m_iSize);
  Clip(span, line.m_Point.y, line.m_Direction.y, leaf.m_iY0, leaf.m_iY0 + leaf.m_iSize);
  return span.m_fTo;
}

// A line along the surface and level with it has no end in height, and one straight down none to the side.
double FirstMultiple(const CInterpolation& surface, const CLatticeLine& line, double length) {
  const CLattice& lattice = surface.Lattice();
  const double last = lattice.PointsPerSide() - 1;
  const double perStep = 1 / std::hypot(line.m_Direction.x, line.m_Direction.y);
  CLeavesAlong leaves(surface.Tree());
  for (double t = 0; t <= length;) {
    const Vector3 place = At(line, t);
    const CLeafSquare& leaf = leaves.At(std::clamp(place.x, 0.0, last), std::clamp(place.y, 0.0, last));
    const double exit = std::max(t, ExitOf(line, leaf));
    // The narrowest leaves have no smaller neighbours.
    if (!PassesCorners(lattice, line, leaf, {t, exit}, perStep) ||
        (leaf.m_iSize > 1 && !HasPlainSides(leaves.Leaf()))) {
      const double first = CLeafTriangles(surface, line, leaves.Leaf()).First();
      if (first < kInfinity) return first;
    }
    t = exit + kStepOver * perStep;
  }
  return kInfinity;
}

}  // namespace

std::optional<Vector3> FirstSeen(const CInterpolation& surface, const CSightLine& line, double lowest, double highest) {
  CLatticeLine inLattice = InLattice(line, surface.Lattice());
  const CSpan span = OverSurface(inLattice, surface.Lattice(), lowest, highest);
  if (span.IsEmpty()) return std::nullopt;
  // Counted from where it comes over the surface, as it may begin far away.
  inLattice.m_Point = At(inLattice, span.m_fFrom);
  // A camera that is zoomed to nothing looks nowhere, and a surface without a bound ends no line.
  if (!std::isfinite(inLattice.m_Point.x + inLattice.m_Point.y + span.m_fTo)) return std::nullopt;
  const double t = FirstMultiple(surface, inLattice, span.m_fTo - span.m_fFrom);
  if (t == kInfinity) return std::nullopt;
  const Vector3 met = At(inLattice, t);
  return Vector3{surface.Lattice().XOf(met.x), surface.Lattice().YOf(met.y), met.z};
}
