#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "insight/CPieces.h"
#include "insight/SmallMatrix.h"

class CConstraintRows;
class CEnergyTerms;

/// A plane z = m_fZ + m_fP (x - m_Place.x) + m_fQ (y - m_Place.y), model units.
struct CPlane {
  CPlanePoint m_Place{};
  double m_fZ = 0.0;
  double m_fP = 0.0;
  double m_fQ = 0.0;

  /// Its height at a place.
  double At(const CPlanePoint& place) const {
    return m_fZ + m_fP * (place.x - m_Place.x) + m_fQ * (place.y - m_Place.y);
  }
};

/// Regions that can move without that any constraint, or any fairness curve, would notice, each as a plane. Curves may
/// join them, so that they can move only together, and may tie points to them that tears have left over.
struct CFreeGroup {
  std::vector<std::uint32_t> m_auPieces;  ///< its regions, ascending, and then other pieces that go along, ascending
  std::size_t m_uRegions = 0;             ///< how many of them are regions, above 0; these are in no other group
  /// By direction, and within one in step with the pieces. Directions are perpendicular and of length 1 in the heights
  /// of the planes at the middles of the regions, and over half their longer sides.
  std::vector<CPlane> m_aPlanes;
  bool m_bFollowsAnyPlane = false;  ///< whether all its regions can follow any one plane

  /// How many directions there are, and what one of them does to a piece, counted within the group.
  std::size_t DirectionCount() const { return m_aPlanes.size() / m_auPieces.size(); }
  const CPlane& PlaneOf(std::size_t direction, std::size_t piece) const {
    return m_aPlanes[direction * m_auPieces.size() + piece];
  }
  std::span<const std::uint32_t> Regions() const { return std::span(m_auPieces).first(m_uRegions); }
};

/// A connected piece of the grid with a triangle that is drawn, and the planes by which it may move.
struct CRegion {
  std::uint32_t m_uPiece = 0;
  /// None where its heights are settled, three where nothing holds it. They span what it can do, whatever else moves
  /// with it.
  std::vector<CPlane> m_aFree;
};

/// Which regions of the surface have heights that nothing settles, and how they can move.
///
/// The energy of the grid is 0 on every plane, so that only the rows of the constraints and the fairness curves can
/// settle offset and tilt of a piece. What they make of the planes of all pieces is decomposed. A free direction is one
/// that they take for 0: less than 1e-7 of the most that they make of any, where each of them is scaled to make 1 of
/// the planes of its pieces. Rounding is smaller by three orders, and three heights almost in line still settle a tilt.
class CFreedom {
 public:
  /// The terms are those of fairness curves; both are over the points of `order`. Linear in the number of points, rows
  /// and terms, and cubic in the number of pieces that curves and rows join.
  void Build(const CQuadTree& tree, const CPointOrder& order, const CConstraintRows& rows, const CEnergyTerms& terms);

  /// The pieces that all of it is about.
  const CPieces& Pieces() const { return m_Pieces; }
  /// All regions, in the order of their pieces.
  std::span<const CRegion> Regions() const { return m_aRegions; }
  /// The groups that can move, in the order of their first regions.
  std::span<const CFreeGroup> Groups() const { return m_aGroups; }

 private:
  static constexpr std::size_t kOfPlane = 3;

  /// What a row or term makes of the plane of one piece: of its height in the middle, and of its slopes in x and in y
  /// as heights over half of the longer side of the box.
  struct CPart {
    std::uint32_t m_uPiece;
    std::array<double, kOfPlane> m_afOf;
  };
  struct CSystem {
    std::vector<std::uint32_t> m_auPieces;
    std::vector<std::size_t> m_auEquations;
  };

  double ScaleOf(std::uint32_t piece) const;
  template <typename Columns>
  void AddEquation(const Columns& points, std::span<const double> coefs, double magnitude);
  std::span<const CPart> PartsOf(std::size_t equation) const;
  std::vector<CSystem> Systems() const;
  CSmallMatrix TriangleOf(const CSystem& system) const;
  CSmallMatrix NullVectors(const CSystem& system) const;
  std::vector<std::size_t> RegionsOf(const CSystem& system) const;
  CSmallMatrix VisibleDirections(const CSystem& system) const;
  CFreeGroup GroupOf(const CSystem& system, std::span<const std::size_t> regions, const CSmallMatrix& visible) const;
  bool FollowsAnyPlane(const CFreeGroup& group) const;
  void AddGroups(const CSystem& system);
  void DropSettled();
  void FindGroups();
  std::vector<CPlane> FreePlanesOf(const CFreeGroup& group, std::size_t k) const;
  void FindRegions();

  CPieces m_Pieces;
  std::vector<std::size_t> m_auEquationStart{0};
  std::vector<CPart> m_aParts;
  std::vector<bool> m_abSettled;  ///< by piece
  std::vector<CFreeGroup> m_aGroups;
  std::vector<CRegion> m_aRegions;
};
