#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/CPlanePoint.h"
#include "constraints/CCntrCtrl.h"
#include "constraints/CContourAttributes.h"

class CGrid;
struct CPtCstr;

/// A number of the selected constraint, or of the selected node and its curve.
enum class ConstraintValue : std::uint8_t {
  X,  ///< model units, as Y, Z and the distances
  Y,
  Z,          ///< the height wanted
  P,          ///< dz/dx wanted
  Q,          ///< dz/dy wanted
  Tilt,       ///< of the slope wanted, degrees from level
  Direction,  ///< in which it rises, degrees from the x axis towards the y axis, 0 to 360
  LeftCurvature,
  LeftTorsion,
  LeftDistance,
  LeftOrientation,  ///< degrees
  RightCurvature,
  RightTorsion,
  RightDistance,
  RightOrientation,
};
inline constexpr std::size_t kConstraintValues = 15;

/// The numbers of what is selected in a model, one by one, and setting them by hand. At most one point constraint or
/// one node is selected; a point constraint comes first.
class CSelectedValues {
 public:
  /// What there may be.
  enum class Selection : std::uint8_t { Nothing, Point, Node };
  /// What is selected, so that it is found again when something else is: until it is moved, or others before it come or
  /// go.
  struct CSubject {
    Selection m_What = Selection::Nothing;
    std::size_t m_uNumber = kNone;     ///< of the constraint, or of the node on its curve
    CurveId m_Curve = CurveId::kNone;  ///< that is selected, with or without a node
    CPlanePoint m_Place{};
    bool operator==(const CSubject&) const = default;

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  };

  /// The grid must outlive the object.
  explicit CSelectedValues(CGrid& grid) : m_Grid(grid) {}

  /// What is selected now.
  Selection What() const;
  CSubject Subject() const;
  /// Nothing where what is selected has no such number.
  std::optional<double> Value(ConstraintValue which) const;
  /// The size that matters for a number: the larger side of the model, 1 for slopes, a degree.
  double Unit(ConstraintValue which) const;
  /// By how much a key or the wheel changes it.
  double Step(ConstraintValue which) const;
  /// Changes it, as one step of its own. Why not, in words that begin as a sentence does, where it cannot be that;
  /// empty where it can, and where what is selected has no such number.
  std::string Set(ConstraintValue which, double number);
  /// The same for what was selected, whatever is now and stays so; nothing where it is not found any more.
  std::string SetOf(const CSubject& subject, ConstraintValue which, double number);
  /// As `Set` by so many steps; one right after another makes one step to the user, as keys in the views do.
  std::string StepBy(ConstraintValue which, double steps);

  /// What the selected node's curve has, and giving it others; nothing without a node.
  std::optional<CContourAttributes> Attributes() const;
  CurveType Type() const;
  void SetAttributes(const CContourAttributes& attributes, CurveType type);

  /// The selected constraint takes the height of the position constraint within reach of a place; false where there is
  /// none, or where it has no height to take one. `reach` as for CPtCstrList.
  bool TakeHeightOf(double x, double y, double reach);

 private:
  const CPtCstr* Point() const;
  double DirectionOf(const CPtCstr& constraint) const;
  bool IsThere(const CSubject& subject) const;
  void Select(const CSubject& subject);
  std::string Change(ConstraintValue which, double number);
  std::string ChangeSelected(ConstraintValue which, double number);
  std::string Place(double x, double y);
  std::string SetSlope(ConstraintValue which, double number);
  std::string SetOfCurve(ConstraintValue which, double number);

  CGrid& m_Grid;
  // A level constraint, never looked into, the direction that has been chosen for it, and the number of edits up to
  // which both hold: another record may come to lie where that one was.
  const CPtCstr* m_pLevel = nullptr;
  double m_fDirection = 0.0;
  std::uint64_t m_uLevelEdits = 0;
};
