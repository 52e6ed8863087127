#include "editing/CSelectedValues.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "editing/TypedNumber.h"
#include "model/CGrid.h"

namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;

struct CCurveNumber {
  ConstraintValue m_Which;
  double& (*m_pOf)(CContourAttributes& attributes);
};

template <double CNodeWeights::*kWeight>
constexpr double& Weight(CContourAttributes& a) {
  return a.m_Weights.*kWeight;
}

template <CurveSide kSide, double CAutoBump::*kValue>
constexpr double& Bump(CContourAttributes& a) {
  return a.m_aAutoBumps[static_cast<std::size_t>(kSide)].*kValue;
}

constexpr std::array kCurveNumbers{
    CCurveNumber{ConstraintValue::LeftCurvature, Weight<&CNodeWeights::m_fLeftCurvature>},
    CCurveNumber{ConstraintValue::LeftTorsion, Weight<&CNodeWeights::m_fLeftTorsion>},
    CCurveNumber{ConstraintValue::LeftDistance, Bump<CurveSide::Left, &CAutoBump::m_fDistance>},
    CCurveNumber{ConstraintValue::LeftOrientation, Bump<CurveSide::Left, &CAutoBump::m_fOrientation>},
    CCurveNumber{ConstraintValue::RightCurvature, Weight<&CNodeWeights::m_fRightCurvature>},
    CCurveNumber{ConstraintValue::RightTorsion, Weight<&CNodeWeights::m_fRightTorsion>},
    CCurveNumber{ConstraintValue::RightDistance, Bump<CurveSide::Right, &CAutoBump::m_fDistance>},
    CCurveNumber{ConstraintValue::RightOrientation, Bump<CurveSide::Right, &CAutoBump::m_fOrientation>},
};

double& NumberOf(CContourAttributes& attributes, ConstraintValue which) {
  const auto* row = std::ranges::find(kCurveNumbers, which, &CCurveNumber::m_Which);
  return row->m_pOf(attributes);
}

double LargerSide(const CExtent& extent) { return std::max(extent.x1 - extent.x0, extent.y1 - extent.y0); }

bool IsAngle(ConstraintValue which) {
  return which == ConstraintValue::Tilt || which == ConstraintValue::Direction ||
         which == ConstraintValue::LeftOrientation || which == ConstraintValue::RightOrientation;
}

bool IsSlope(ConstraintValue which) { return which >= ConstraintValue::P && which <= ConstraintValue::Direction; }

bool IsLength(ConstraintValue which) {
  return which <= ConstraintValue::Z || which == ConstraintValue::LeftDistance ||
         which == ConstraintValue::RightDistance;
}

// A power of ten.
double TenthsBelow(double value) { return std::pow(10.0, std::floor(std::log10(value))); }

std::string Range(const char* subject, double from, double to, double unit) {
  return subject + (" goes from " + ShownNumber(from, unit)) + " to " + ShownNumber(to, unit);
}

// What a direction along an axis leaves of the other slope is rounding.
double Cleaned(double slope, double steepness) { return std::abs(slope) < 1e-12 * steepness ? 0.0 : slope; }

}  // namespace

const CPtCstr* CSelectedValues::Point() const { return m_Grid.Constraints().Points().FirstSelected(); }

CSelectedValues::Selection CSelectedValues::What() const {
  if (Point() != nullptr) return Selection::Point;
  return m_Grid.Constraints().Curves().SelectedNode().m_pNode != nullptr ? Selection::Node : Selection::Nothing;
}

CSelectedValues::CSubject CSelectedValues::Subject() const {
  CSubject subject;
  std::size_t number = 0;
  for (const CPtCstr& c : m_Grid.Constraints().Points()) {
    if (&c == Point()) return {Selection::Point, number, CurveId::kNone, {c.m_fX, c.m_fY}};
    ++number;
  }
  const CCntrCtrlList::CHit hit = m_Grid.Constraints().Curves().SelectedNode();
  if (hit.m_pNode != nullptr)
    return {Selection::Node,
            hit.m_pCurve->NumberOf(*hit.m_pNode),
            hit.m_pCurve->Id(),
            {hit.m_pNode->m_fX, hit.m_pNode->m_fY}};
  for (const CCntrCtrl& curve : m_Grid.Constraints().Curves()) {
    if (curve.HasState(PtCstrState::kSelected)) subject.m_Curve = curve.Id();
  }
  return subject;
}

bool CSelectedValues::IsThere(const CSubject& subject) const {
  const auto is = [&](const auto& records) {
    if (subject.m_uNumber >= records.size()) return false;
    const CPtCstr& c = *std::next(records.begin(), static_cast<std::ptrdiff_t>(subject.m_uNumber));
    return CPlanePoint{c.m_fX, c.m_fY} == subject.m_Place;
  };
  const CConstraints& constraints = m_Grid.Constraints();
  if (subject.m_What == Selection::Point) return is(constraints.Points());
  const CCntrCtrl* curve = constraints.Curves().Find(subject.m_Curve);
  return curve != nullptr && is(curve->Nodes());
}

void CSelectedValues::Select(const CSubject& subject) {
  if (subject.m_What == Selection::Point) return m_Grid.PointEdits().SelectNumber(subject.m_uNumber);
  const CCntrCtrlList& curves = m_Grid.Constraints().Curves();
  const auto curve = std::ranges::find(curves, subject.m_Curve, &CCntrCtrl::Id);
  if (curve == curves.end()) return m_Grid.UnselectAll();
  m_Grid.CurveEdits().SelectNumber(static_cast<std::size_t>(std::distance(curves.begin(), curve)), subject.m_uNumber);
}

double CSelectedValues::DirectionOf(const CPtCstr& constraint) const {
  if (constraint.m_fP == 0.0 && constraint.m_fQ == 0.0)
    return m_pLevel == &constraint && m_uLevelEdits == m_Grid.Gate().Edits() ? m_fDirection : 0.0;
  const double degrees = std::atan2(constraint.m_fQ, constraint.m_fP) * kDegrees;
  return degrees < 0.0 ? degrees + 360.0 : degrees;
}

std::optional<double> CSelectedValues::Value(ConstraintValue which) const {
  const CPtCstr* point = Point();
  const CCntrNode* node = point == nullptr ? m_Grid.Constraints().Curves().SelectedNode().m_pNode : nullptr;
  const CPtCstr* record = point != nullptr ? point : node;
  if (record == nullptr) return std::nullopt;
  if (which == ConstraintValue::X) return record->m_fX;
  if (which == ConstraintValue::Y) return record->m_fY;
  if (point == nullptr) {
    std::optional<CContourAttributes> attributes = Attributes();
    return which < ConstraintValue::LeftCurvature ? std::nullopt : std::optional(NumberOf(*attributes, which));
  }
  if (which == ConstraintValue::Z)
    return point->HasKind(PtCstrKind::kPosition) ? std::optional(point->m_fZ) : std::nullopt;
  if (!IsSlope(which) || !point->HasKind(PtCstrKind::kNormal)) return std::nullopt;
  if (which == ConstraintValue::P) return point->m_fP;
  if (which == ConstraintValue::Q) return point->m_fQ;
  if (which == ConstraintValue::Direction) return DirectionOf(*point);
  return std::atan(std::hypot(point->m_fP, point->m_fQ)) * kDegrees;
}

double CSelectedValues::Unit(ConstraintValue which) const {
  return IsLength(which) ? LargerSide(m_Grid.Surface().Lattice().Extent()) : 1.0;
}

double CSelectedValues::Step(ConstraintValue which) const {
  constexpr double kStepsAcross = 500.0;
  constexpr double kDistancesAcross = 100.0;
  if (IsAngle(which)) return 1.0;
  if (which <= ConstraintValue::Z) return TenthsBelow(Unit(which) / kStepsAcross);
  if (IsLength(which)) return TenthsBelow(Unit(which) / kDistancesAcross);
  return IsSlope(which) ? 0.01 : 0.1;
}

std::string CSelectedValues::Set(ConstraintValue which, double number) {
  m_Grid.Gate().BeginGesture(CEditGate::Hold::Other);
  std::string refusal = Change(which, number);
  m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Interrupted);
  return refusal;
}

std::string CSelectedValues::SetOf(const CSubject& subject, ConstraintValue which, double number) {
  const CSubject present = Subject();
  if (subject == present) return Set(which, number);
  if (!IsThere(subject)) return {};
  Select(subject);
  std::string refusal = Set(which, number);
  Select(present);
  return refusal;
}

// Steps of a direction go round.
std::string CSelectedValues::StepBy(ConstraintValue which, double steps) {
  const std::optional<double> present = Value(which);
  return present.has_value() ? Change(which, *present + steps * Step(which)) : std::string();
}

std::string CSelectedValues::Change(ConstraintValue which, double number) {
  const std::optional<double> present = Value(which);
  if (!present.has_value() || *present == number) return {};
  if (m_uLevelEdits != m_Grid.Gate().Edits()) m_pLevel = nullptr;
  std::string refusal = ChangeSelected(which, number);
  m_uLevelEdits = m_Grid.Gate().Edits();
  return refusal;
}

std::string CSelectedValues::ChangeSelected(ConstraintValue which, double number) {
  if (which == ConstraintValue::X) return Place(number, *Value(ConstraintValue::Y));
  if (which == ConstraintValue::Y) return Place(*Value(ConstraintValue::X), number);
  if (IsSlope(which)) return SetSlope(which, number);
  if (which != ConstraintValue::Z) return SetOfCurve(which, number);
  m_Grid.SetSelectedHeight(number);
  return {};
}

// Where the mouse could have moved it.
std::string CSelectedValues::Place(double x, double y) {
  const CExtent& extent = m_Grid.Surface().Lattice().Extent();
  const double marginX = BorderMargin(extent.x0, extent.x1);
  const double marginY = BorderMargin(extent.y0, extent.y1);
  const double unit = Unit(ConstraintValue::X);
  if (x < extent.x0 + marginX || x > extent.x1 - marginX)
    return Range("x", extent.x0 + marginX, extent.x1 - marginX, unit);
  if (y < extent.y0 + marginY || y > extent.y1 - marginY)
    return Range("y", extent.y0 + marginY, extent.y1 - marginY, unit);
  if (Point() != nullptr) {
    m_Grid.PointEdits().PlaceSelected(x, y);
  } else {
    m_Grid.Gate().BeginGesture(CEditGate::Hold::Curve);
    m_Grid.CurveEdits().PlaceSelectedNode(x, y);
    m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  }
  return {};
}

std::string CSelectedValues::SetSlope(ConstraintValue which, double number) {
  const CPtCstr& point = *Point();
  double p = point.m_fP;
  double q = point.m_fQ;
  if (which == ConstraintValue::P) {
    p = number;
  } else if (which == ConstraintValue::Q) {
    q = number;
  } else {
    const bool tilt = which == ConstraintValue::Tilt;
    if (tilt && (number < 0.0 || number >= 90.0)) return "The tilt goes from 0 to less than 90 degrees";
    const double steepness = tilt ? std::tan(number / kDegrees) : std::hypot(p, q);
    const double direction = tilt ? DirectionOf(point) : number - 360.0 * std::floor(number / 360.0);
    // A level slope rises nowhere, but may be about to.
    m_pLevel = &point;
    m_fDirection = direction;
    p = Cleaned(steepness * std::cos(direction / kDegrees), steepness);
    q = Cleaned(steepness * std::sin(direction / kDegrees), steepness);
  }
  if (p != point.m_fP || q != point.m_fQ) m_Grid.PointEdits().SetSelectedNormal(p, q);
  return {};
}

std::string CSelectedValues::SetOfCurve(ConstraintValue which, double number) {
  if (IsAngle(which) && std::abs(number) > CCntrCtrl::kMaxOrientation)
    return Range("The orientation", -CCntrCtrl::kMaxOrientation, CCntrCtrl::kMaxOrientation, 1.0);
  if (IsLength(which) && number <= 0.0) return "The distance must be more than 0";
  std::optional<CContourAttributes> attributes = Attributes();
  NumberOf(*attributes, which) = number;
  SetAttributes(*attributes, CurveType::kNone);
  return {};
}

std::optional<CContourAttributes> CSelectedValues::Attributes() const {
  const CCntrCtrlList::CHit hit = m_Grid.Constraints().Curves().SelectedNode();
  return hit.m_pNode == nullptr ? std::nullopt : std::optional(CContourAttributes::Of(*hit.m_pCurve, *hit.m_pNode));
}

CurveType CSelectedValues::Type() const {
  const CCntrCtrlList::CHit hit = m_Grid.Constraints().Curves().SelectedNode();
  return hit.m_pCurve == nullptr ? CurveType::kNone : hit.m_pCurve->Type();
}

void CSelectedValues::SetAttributes(const CContourAttributes& attributes, CurveType type) {
  const CCntrCtrlList::CHit hit = m_Grid.Constraints().Curves().SelectedNode();
  if (hit.m_pNode == nullptr) return;
  m_Grid.CurveEdits().SetAttributes(hit.m_pCurve->Id(), hit.m_pCurve->NumberOf(*hit.m_pNode), attributes, type, false);
}

bool CSelectedValues::TakeHeightOf(double x, double y, double reach) {
  if (!Value(ConstraintValue::Z).has_value()) return false;
  const CPtCstr* nearest = nullptr;
  double least = reach;
  for (const CPtCstr& c : m_Grid.Constraints().Points()) {
    const double distance = std::abs(x - c.m_fX) + std::abs(y - c.m_fY);
    if (&c == Point() || distance > least || !c.HasKind(PtCstrKind::kPosition)) continue;
    nearest = &c;
    least = distance;
  }
  if (nearest == nullptr) return false;
  m_Grid.SetSelectedHeight(nearest->m_fZ);
  return true;
}
