#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/CSideHeights.h"
#include "mesh/SidePlanes.h"

class CTearPatch;
class CTearSides;

/// Finds what the heights beside the cuts of a patch are continued from: the terms of a CSideHeights.
///
/// From each copy it goes through the triangles of its side that come near enough. Linear in the length of the cuts.
class CSideSearch {
 public:
  /// Fills `found`, which must be empty; `sides` must have been found in `patch` as it is.
  CSideSearch(const CTearPatch& patch, const CTearSides& sides, CSideHeights& found)
      : m_Patch(patch), m_Sides(sides), m_Found(found) {}

  /// `FindAll` or `Raise`, once. `planes` also for the copies at cuts, with slopes.
  void FindAll(bool planes, const CExportSteps& steps);
  /// Sets the heights of some copies to be continued for one surface, whose known heights are in place: both by copy.
  /// What is found for one does not serve the next; CSideRaiser does that. Not all where `steps` do not go on.
  void Raise(std::span<const std::uint32_t> copies, std::span<double> heights, const CExportSteps& steps);

 private:
  // All that a search reads of a triangle on its way: small, as it meets some hundred of them, and never in two lines
  // of the processor's memory.
  struct alignas(32) CNode {
    std::array<std::uint32_t, 3> m_auBeyond{};  ///< the triangles that it leads on to; NoNode() for none
    std::array<float, 2> m_afLeast{};           ///< corners of the rectangle around it
    std::array<float, 2> m_afMost{};
    std::uint32_t m_uSeen = 0;  ///< the last search that has seen it
  };
  // What a triangle gives to those that it is near.
  struct CGift {
    std::array<std::uint32_t, 3> m_auKnown{};  ///< its heights that the solver has; kNone for none
    std::uint32_t m_uPlane = 0;                ///< that it gives, itself or with a neighbour; kNone for none
  };
  // What a height counts in the mean of the planes on either side of the line on which a cut ends at the point in hand.
  struct CTerm {
    std::uint32_t m_uKnown = 0;
    std::array<double, 2> m_afWeight{};
    std::array<double, 2> m_afSlopeX{};
    std::array<double, 2> m_afSlopeY{};
  };

  // The same for one surface.
  struct alignas(64) CRaised {
    CSidePoint m_Middle;
    double m_fZ = 0.0;  ///< of the plane at its middle
    double m_fSlopeX = 0.0;
    double m_fSlopeY = 0.0;
    CSideHeights::CRange m_Range;  ///< of the heights that it has or its plane goes through
    double m_fCounts = 0.0;        ///< 0 where it gives no plane, else 1
  };

  // The planes near a point on either side of the line on which a cut ends there, and the range around it.
  struct CSum {
    std::array<double, 2> m_afWeights{};
    std::array<double, 2> m_afSums{};
    CSideHeights::CRange m_Range;
  };

  static constexpr std::uint32_t kNone = CSideHeights::kNone;

  bool Prepare(const CExportSteps& steps);
  void RaiseGifts(std::size_t begin, std::size_t end, std::span<const double> heights);
  static void RaisePlane(const CSidePlane& plane, std::span<const double> heights, CRaised& raised);
  double HeightAt(std::uint32_t copy);
  CSum SumOfPlanes() const;
  std::uint32_t NoNode() const { return static_cast<std::uint32_t>(m_aNodes.size() - 1); }
  void NumberKnown();
  void FindPlanes(std::size_t begin, std::size_t end);
  void FindFosters();
  void MakeNodes(std::size_t begin, std::size_t end);
  std::vector<bool> CopiesAtCuts() const;
  void Continue(std::uint32_t copy, bool slopes);
  void StartFrom(std::uint32_t copy);
  std::size_t HandOf(double dx, double dy) const;
  void FindNear(std::uint32_t copy, double reach);
  void LookAround(std::uint32_t copy, double reach);
  CTerm& TermOf(std::uint32_t known);
  void Count(const CSidePlane& plane);
  void AddRow(std::uint32_t copy, bool slopes);

  const CTearPatch& m_Patch;
  const CTearSides& m_Sides;
  CSideHeights& m_Found;
  std::vector<CSidePoint> m_aPoints;  ///< by vertex
  std::vector<CSidePlane> m_aPlanes;
  std::vector<CNode> m_aNodes;             ///< by triangle, and one for none
  std::vector<CGift> m_aGifts;             ///< by triangle
  std::vector<std::uint32_t> m_auFosters;  ///< by piece: that which lends it planes; kNone where it needs none
  std::vector<std::uint32_t> m_auBefore;   ///< by vertex: the vertex before an open end; kNone elsewhere

  std::vector<CRaised> m_aRaised;  ///< by triangle, for one surface

  // The search in hand.
  std::uint32_t m_uSearch = 0;
  std::vector<std::uint32_t> m_auQueue;
  std::span<const std::uint32_t> m_auNear;  ///< what it has found, in m_auQueue
  CSidePoint m_Point;
  std::uint32_t m_uBefore = kNone;      ///< the vertex before an open end
  std::array<double, 2> m_afWeights{};  ///< of the planes on either side
  std::vector<CTerm> m_aTerms;
  std::vector<std::uint32_t> m_auTermAt;  ///< by known height, where one of m_aTerms is its own
};
