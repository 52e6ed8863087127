#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

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

  /// The grid must outlive the object.
  explicit CSelectedValues(CGrid& grid) : m_Grid(grid) {}

  /// What is selected now.
  Selection What() const;
  /// Nothing where what is selected has no such number.
  std::optional<double> Value(ConstraintValue which) const;
  /// The size that matters for a number: the larger side of the model, 1 for slopes, a degree.
  double Unit(ConstraintValue which) const;
  /// By how much a key or the wheel changes it.
  double Step(ConstraintValue which) const;
  /// Changes it, as one step of its own. Why not, in words that begin as a sentence does, where it cannot be that;
  /// empty where it can, and where what is selected has no such number.
  std::string Set(ConstraintValue which, double number);
  /// The same by so many steps; one right after another makes one step to the user, as keys in the views do.
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
  std::string Change(ConstraintValue which, double number);
  std::string Place(double x, double y);
  std::string SetSlope(ConstraintValue which, double number);
  std::string SetOfCurve(ConstraintValue which, double number);

  CGrid& m_Grid;
  const CPtCstr* m_pLevel = nullptr;  ///< a level constraint, never looked into, for which
  double m_fDirection = 0.0;          ///< this direction has been chosen
};
