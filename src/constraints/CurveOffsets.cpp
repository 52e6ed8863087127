// The parallels of a curve, and the constraints that it generates along them.

#include <cmath>

#include "base/Console.h"
#include "constraints/CCntrCtrl.h"
#include "constraints/CPtCstrList.h"

namespace {

constexpr const char* kSinglePoint = "CCntrCtrl::UpdateNormals() Error : dealing with a single-point curve\n";

// A vector shorter than this has no direction worth scaling.
constexpr double kShortest = 1e-30;
// Sine of half a bend below which there is none: what rounding leaves of a straight line must not split its parallel in
// three.
constexpr double kStraightSine = 1e-9;
// Cosine of half a bend that the sharpest one is held to. Without it the parallels of a hairpin would meet at infinity
// and fill the model with generated constraints.
constexpr double kSharpestCosine = 1e-3;
// Degrees of tilt per unit of slope.
constexpr double kDegreesPerSlope = 45.0;
// More constraints than this along one segment come from a mistyped distance between them.
constexpr double kMostPerSegment = 10000.0;

COffset operator+(const COffset& a, const COffset& b) { return {a.m_fX + b.m_fX, a.m_fY + b.m_fY}; }
COffset operator*(double factor, const COffset& v) { return {factor * v.m_fX, factor * v.m_fY}; }
double LengthOf(const COffset& v) { return std::hypot(v.m_fX, v.m_fY); }

COffset Scaled(const COffset& v, double length) {
  const double old = LengthOf(v);
  return old < kShortest ? v : length / old * v;
}

// The vector of the given length to the right of the way from a to b: (dx, dy) turned by -90 degrees, model units.
COffset RightNormal(const CPtCstr& a, const CPtCstr& b, double length) {
  return Scaled({b.m_fY - a.m_fY, a.m_fX - b.m_fX}, length);
}

// `in` and `out` are the right-hand normals of the segments that meet at the node, zero where there is none.
void SetOffsets(CCntrNode& node, const COffset& in, const COffset& out, double length) {
  CNodeOffsets& left = node.m_aOffsets[static_cast<std::size_t>(CurveSide::Left)];
  CNodeOffsets& right = node.m_aOffsets[static_cast<std::size_t>(CurveSide::Right)];
  const COffset bisector = Scaled(in + out, length);
  right = {bisector, {}, {}};
  left = {-1.0 * bisector, {}, {}};
  if (in.IsZero() || out.IsZero() || LengthOf(bisector) < kShortest) return;
  // Sine and cosine of half the angle by which the curve turns at the node, above 0 where it turns left.
  const double cross = bisector.m_fY * in.m_fX - bisector.m_fX * in.m_fY;
  const double sine = cross / (LengthOf(in) * LengthOf(bisector));
  if (std::abs(sine) <= kStraightSine) return;
  const double cosine = std::sqrt(std::fmax(1.0 - sine * sine, kSharpestCosine * kSharpestCosine));
  // On the inner side the parallels meet length / cosine from the node; on the outer one the parallel goes by both
  // normals.
  if (cross > 0) {
    left.m_A = Scaled(left.m_A, length / cosine);
    right = {bisector, in, out};
  } else {
    right.m_A = Scaled(right.m_A, length / cosine);
    left = {-1.0 * bisector, -1.0 * in, -1.0 * out};
  }
}

// One side's path along one segment: up to four points.
struct CSidePath {
  std::array<COffset, 4> m_aPoints;
  std::size_t m_uCount = 0;
  double m_fLength = 0.0;

  void Add(const CPtCstr& node, const COffset& offset) {
    m_aPoints[m_uCount] = COffset{node.m_fX, node.m_fY} + offset;
    if (m_uCount > 0) m_fLength += PieceLength(m_uCount - 1);
    ++m_uCount;
  }
  double PieceLength(std::size_t k) const { return LengthOf(m_aPoints[k + 1] + -1.0 * m_aPoints[k]); }
  COffset At(std::size_t k, double share) const {
    return m_aPoints[k] + share * (m_aPoints[k + 1] + -1.0 * m_aPoints[k]);
  }
};

CSidePath PathAlong(const CCntrNode& a, const CCntrNode& b, CurveSide side) {
  CSidePath path;
  path.Add(a, a.Offsets(side).m_A);
  if (!a.Offsets(side).m_C.IsZero()) path.Add(a, a.Offsets(side).m_C);
  if (!b.Offsets(side).m_B.IsZero()) path.Add(b, b.Offsets(side).m_B);
  path.Add(b, b.Offsets(side).m_A);
  return path;
}

bool CanBeDivided(const CSidePath& path, double distance) {
  return distance > 0 && std::isfinite(distance) && path.m_fLength > 0 && std::isfinite(path.m_fLength) &&
         path.m_fLength / distance <= kMostPerSegment;
}

// A row of generated constraints as it grows from segment to segment.
class CBumpRow {
 public:
  CBumpRow(const CAutoBump& bump, CPtCstrList& target, const std::function<void(double, double)>& refine)
      : m_Bump(bump), m_pTarget(&target), m_pRefine(&refine) {}

  /// Along one side of the segment from `a` to `b`.
  void Extend(const CCntrNode& a, const CCntrNode& b, CurveSide side);

 private:
  void Add(const COffset& place, const COffset& direction);

  CAutoBump m_Bump;
  CPtCstrList* m_pTarget;
  const std::function<void(double, double)>* m_pRefine;
  double m_fToNext = 0.0;  ///< from the start of the next piece to its first constraint: spacing runs on past its end
};

void CBumpRow::Extend(const CCntrNode& a, const CCntrNode& b, CurveSide side) {
  const CSidePath path = PathAlong(a, b, side);
  if (!CanBeDivided(path, m_Bump.m_fDistance)) {
    Console() << "CCntrCtrl::AddAutoBumpConstraints : no constraints along a path of length " << path.m_fLength
              << " at distance " << m_Bump.m_fDistance << '\n';
    return;
  }
  const COffset& first = a.Offsets(CurveSide::Right).m_A;
  const COffset& second = b.Offsets(CurveSide::Right).m_A;
  double covered = m_fToNext;
  for (std::size_t k = 0; k + 1 < path.m_uCount; ++k) {
    const double length = path.PieceLength(k);
    // Slopes point along the right-hand normals of the two nodes, blended by the share of the path covered.
    for (; m_fToNext < length; m_fToNext += m_Bump.m_fDistance, covered += m_Bump.m_fDistance) {
      const double share = covered / path.m_fLength;
      Add(path.At(k, m_fToNext / length), (1.0 - share) * first + share * second);
    }
    m_fToNext -= length;
  }
}

void CBumpRow::Add(const COffset& place, const COffset& direction) {
  // 45 degrees are a slope of 1, and other tilts in proportion, not by their tangent.
  const COffset slope = Scaled(direction, std::abs(m_Bump.m_fOrientation) / kDegreesPerSlope);
  const double sign = m_Bump.m_fOrientation < 0 ? -1.0 : 1.0;
  m_pTarget->Add({place.m_fX, place.m_fY, PtCstrKind::kNormal, 0.0, sign * slope.m_fX, sign * slope.m_fY, 0});
  if (*m_pRefine) (*m_pRefine)(place.m_fX, place.m_fY);
}

}  // namespace

void CCntrCtrl::UpdateNormals(double length) {
  if (m_aNodes.empty()) return;
  if (m_aNodes.size() == 1) {
    Console() << kSinglePoint;
    m_aNodes.front().m_fP = 0.0;
    m_aNodes.front().m_fQ = 0.0;
    return;
  }
  if (m_aNodes.size() == 2) m_bClosed = false;
  COffset in = m_bClosed ? RightNormal(m_aNodes.back(), m_aNodes.front(), length) : COffset{};
  for (auto node = m_aNodes.begin(); node != m_aNodes.end(); ++node) {
    const auto next = std::next(node);
    COffset out;
    if (next != m_aNodes.end()) {
      out = RightNormal(*node, *next, length);
    } else if (m_bClosed) {
      out = RightNormal(*node, m_aNodes.front(), length);
    }
    SetOffsets(*node, in, out, length);
    in = out;
  }
}

double CCntrCtrl::GeneratedCount() const {
  double count = 0.0;
  for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
    if (!HasOption(side == CurveSide::Left ? CurveOption::kLeftAutoBump : CurveOption::kRightAutoBump)) continue;
    const double distance = AutoBump(side).m_fDistance;
    ForEachSegment([&count, side, distance](const CCntrNode& a, const CCntrNode& b) {
      const CSidePath path = PathAlong(a, b, side);
      if (CanBeDivided(path, distance)) count += path.m_fLength / distance;
    });
  }
  return count;
}

void CCntrCtrl::AddAutoBumpConstraints(CPtCstrList& target, const std::function<void(double, double)>& refine) const {
  if (HasOption(CurveOption::kLeftAutoBump)) AddAutoBumpConstraintsLeft(target, refine);
  if (HasOption(CurveOption::kRightAutoBump)) AddAutoBumpConstraintsRight(target, refine);
}

void CCntrCtrl::AddAutoBumpConstraintsLeft(CPtCstrList& target,
                                           const std::function<void(double, double)>& refine) const {
  AddAutoBumpSide(CurveSide::Left, target, refine);
}

void CCntrCtrl::AddAutoBumpConstraintsRight(CPtCstrList& target,
                                            const std::function<void(double, double)>& refine) const {
  AddAutoBumpSide(CurveSide::Right, target, refine);
}

void CCntrCtrl::AddAutoBumpSide(CurveSide side, CPtCstrList& target,
                                const std::function<void(double, double)>& refine) const {
  Console() << "CCntrCtrl::AddAutoBumpConstraintsLeft\n";
  if (m_aNodes.empty()) return;
  if (m_aNodes.size() == 1) {
    Console() << kSinglePoint;
    return;
  }
  Console() << "DistanceLeft() : " << AutoBump(side).m_fDistance << '\n';
  CBumpRow row(AutoBump(side), target, refine);
  ForEachSegment([&row, side](const CCntrNode& a, const CCntrNode& b) { row.Extend(a, b, side); });
}
