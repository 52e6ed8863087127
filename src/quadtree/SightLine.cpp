#include "quadtree/SightLine.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

// The multiple at which the line leaves a leaf to the side.
double ExitOf(const CLatticeLine& line, const CQuadT& leaf) {
  CSpan span;
  Clip(span, line.m_Point.x, line.m_Direction.x, leaf.X0(), leaf.X1());
  Clip(span, line.m_Point.y, line.m_Direction.y, leaf.Y0(), leaf.Y1());
  return span.m_fTo;
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

// Whether the line passes a leaf with four plain sides above or below all of its triangles, so that none need be tried.
bool PassesBy(const CInterpolation& surface, const CLatticeLine& line, const CQuadT& leaf, double from, double to) {
  double low = surface.CentreHeight(leaf);
  double high = low;
  for (int k = 0; k < 4; ++k) {
    if (!leaf.Edge(k).IsLeaf()) return false;
    const auto [column, row] = leaf.Corner(k);
    const double height = surface.Lattice().Heights()[surface.Lattice().Index(column, row)];
    low = std::min(low, height);
    high = std::max(high, height);
  }
  // As far as the triangles are met outside of themselves, and twice that for rounding.
  const double beyond = 4 * kTolerance * (leaf.X1() - leaf.X0()) / std::hypot(line.m_Direction.x, line.m_Direction.y);
  const auto [lower, upper] = std::minmax(
      {line.m_Point.z + (from - beyond) * line.m_Direction.z, line.m_Point.z + (to + beyond) * line.m_Direction.z});
  const double margin = 4 * kTolerance * (high - low) + 1e-12 * (std::abs(low) + std::abs(high));
  return upper < low - margin || lower > high + margin;
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

// Where the line is over the lattice and between the heights, as widely as a centre may lie outside of these.
CSpan OverSurface(const CLatticeLine& line, const CLattice& lattice, double lowest, double highest) {
  const double last = lattice.PointsPerSide() - 1;
  const double margin = highest - lowest + std::max(std::abs(lowest), std::abs(highest)) * kTolerance;
  CSpan span;
  Clip(span, line.m_Point.x, line.m_Direction.x, 0, last);
  Clip(span, line.m_Point.y, line.m_Direction.y, 0, last);
  Clip(span, line.m_Point.z, line.m_Direction.z, lowest - margin, highest + margin);
  return span;
}

// A line along the surface and level with it has no end in height, and one straight down none to the side.
double FirstMultiple(const CInterpolation& surface, const CLatticeLine& line, double length) {
  const double last = surface.Lattice().PointsPerSide() - 1;
  const double stepOver = kStepOver / std::hypot(line.m_Direction.x, line.m_Direction.y);
  for (double t = 0; t <= length;) {
    const Vector3 place = At(line, t);
    const CQuadT* leaf = surface.Tree().PointInCell_g(std::clamp(place.x, 0.0, last), std::clamp(place.y, 0.0, last));
    const double exit = std::max(t, ExitOf(line, *leaf));
    if (!PassesBy(surface, line, *leaf, t, exit)) {
      const double first = CLeafTriangles(surface, line, *leaf).First();
      if (first < kInfinity) return first;
    }
    t = exit + stepOver;
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
