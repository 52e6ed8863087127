#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/CCutTriangulation.h"

class CTearPatch;
class CTearSides;

/// The heights of all copies of the vertices of a cut patch.
///
/// Those that the solver has are kept. The others are continued from the triangles of their own side that have three
/// such heights: the mean of their planes, the nearest counting most. They stay within the range of that side's heights
/// in the cells that come nearer than `kRing`, widened at both ends by half its length. Where a cut ends inside the
/// surface its end gets the mean of what both sides give. A piece without a triangle of that kind takes the planes of
/// the one that it has the longest cut in common with.
class CSideHeights {
 public:
  /// In cells one lattice step wide. A point of a cut may lie nearly a cell beyond the last height of its side, which
  /// the widened range of three lattice points in a row just holds.
  static constexpr double kRing = 3.0;

  /// `sides` must have been found in `patch` as it is.
  CSideHeights(const CTearPatch& patch, const CTearSides& sides) : m_Patch(patch), m_Sides(sides) {}

  /// By copy; `known` holds the heights of the vertices of the mesh. Linear in the length of the cuts.
  std::vector<double> Compute(std::span<const double> known);

 private:
  // A vertex, in lattice coordinates.
  struct CPoint {
    double x = 0.0;
    double y = 0.0;
  };
  // Through three heights of one side: the middle between them, the height there, and what it grows by per cell.
  struct CPlane {
    bool m_bKnown = false;
    CPoint m_Middle;
    double m_fZ = 0.0;
    double m_fSlopeX = 0.0;
    double m_fSlopeY = 0.0;
  };
  // All that a search reads of one triangle.
  struct CNode {
    std::array<std::uint32_t, 3> m_auBeyond{};  ///< the triangles that it leads on to; kNone for none
    CPlane m_Plane;                             ///< that it gives, itself or with a neighbour
    CPoint m_Least;                             ///< corners of the rectangle around it
    CPoint m_Most;
    double m_fLow = HUGE_VAL;  ///< least and greatest of its heights that the solver has
    double m_fHigh = -HUGE_VAL;
  };
  // Weighted heights that planes have at the point in hand, on either side of the line on which a cut ends there.
  struct CSum {
    double m_fWeight = 0.0;
    double m_fValue = 0.0;
  };
  // What has been seen around the point in hand.
  struct CView {
    CPoint m_Point;
    CSum m_Left;
    CSum m_Right;
    double m_fLow = HUGE_VAL;
    double m_fHigh = -HUGE_VAL;
    std::uint32_t m_uBefore = CCutTriangulation::kNone;  ///< the vertex before an open end
  };

  void FindPlanes();
  void MakeNodes();
  void FindFosters();
  void FindEnds();
  std::array<std::uint32_t, 3> CopiesOf(std::uint32_t t) const;
  double Continue(std::uint32_t copy);
  void LookAround(std::uint32_t copy, double reach, CView& view);
  CPlane PlaneThrough(const std::array<std::uint32_t, 3>& copies) const;
  void AddPlane(const CPlane& plane, CView& view) const;

  const CTearPatch& m_Patch;
  const CTearSides& m_Sides;
  std::vector<double> m_afHeights;         ///< by copy
  std::vector<CPoint> m_aPoints;           ///< by vertex
  std::vector<CNode> m_aNodes;             ///< by triangle
  std::vector<std::uint32_t> m_auFosters;  ///< by piece: that which lends it planes; kNone where it needs none
  std::vector<std::uint32_t> m_auBefore;   ///< by vertex: the vertex before an open end; kNone elsewhere
  std::vector<std::uint32_t> m_auSeen;     ///< by triangle: the last search that has seen it
  std::uint32_t m_uSearch = 0;
  std::vector<std::uint32_t> m_auQueue;
};
