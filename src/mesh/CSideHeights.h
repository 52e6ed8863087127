#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "base/ExportProgress.h"

class CTearPatch;
class CTearSides;

/// The heights of all copies of the vertices of a cut patch.
///
/// Those that the solver has are kept. The others are continued from the triangles of their own side that have three
/// such heights: the mean of their planes, the nearest counting most. They stay within the range of that side's heights
/// in the cells that come nearer than `kRing`, widened at both ends by half its length. Where a cut ends inside the
/// surface its end gets the mean of what both sides give. A piece without a triangle of that kind takes the planes of
/// the one that it has the longest cut in common with.
///
/// All of that but the heights is found out once: a continued height is a sum of heights with weights. Other heights on
/// the same cuts cost no more than these sums, linear in the length of the cuts.
class CSideHeights {
 public:
  /// In cells one lattice step wide. A point of a cut may lie nearly a cell beyond the last height of its side, which
  /// the widened range of three lattice points in a row just holds.
  static constexpr double kRing = 3.0;

  /// How the surface of a side goes on beyond the edge that it has at a cut.
  struct CPlane {
    double m_fZ = 0.0;       ///< at the copy
    double m_fSlopeX = 0.0;  ///< what it grows by per cell, along columns and rows
    double m_fSlopeY = 0.0;
    double m_fLow = 0.0;  ///< where it stops falling or rising
    double m_fHigh = 0.0;
  };

  /// The heights of one surface, without finding out the weights: a fraction of the time. `meshHeights` gives the
  /// height of a vertex of the mesh. Not all where `steps` do not go on.
  static std::vector<double> RaisedOnce(const CTearPatch& patch, const CTearSides& sides,
                                        const std::function<double(std::uint32_t)>& meshHeights,
                                        const CExportSteps& steps);

  /// `sides` must have been found in `patch` as it is; neither is needed afterwards. Planes cost as much again.
  /// Not all is found where `steps` do not go on.
  CSideHeights(const CTearPatch& patch, const CTearSides& sides, bool planes = false, const CExportSteps& steps = {});

  /// The vertices of the mesh whose heights all others are found from.
  std::span<const std::uint32_t> KnownVertices() const { return m_auKnown; }
  /// Sets the heights of all copies; `known` are those of `KnownVertices`, in their order. Allocates nothing.
  void Raise(std::span<const double> known, std::span<double> heights) const;
  /// The heights that it sets.
  std::vector<double> Raised(std::span<const double> known) const;

  /// The planes at cuts are the rows of what is continued there, in no order: how many there are, and which is that of
  /// a copy; kNone for none.
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  std::size_t PlaneCount() const { return m_aRows.size(); }
  std::uint32_t PlaneOf(std::uint32_t copy) const { return m_auRows[copy]; }
  /// Sets the planes at cuts, after `Raise` has set `heights`. Allocates nothing.
  void RaisePlanes(std::span<const double> known, std::span<const double> heights, std::span<CPlane> planes) const;
  std::vector<CPlane> RaisedPlanes(std::span<const double> known, std::span<const double> heights) const;

 private:
  friend class CSideRaiser;
  friend class CSideSearch;
  friend class CSideSquares;

  CSideHeights() = default;

  // What a copy is continued from: its terms, and where its slopes begin.
  struct CRow {
    std::uint32_t m_uCopy = 0;
    std::uint32_t m_uEnd = 0;         ///< of its terms, which begin where those of the row before end
    std::uint32_t m_uSlopes = kNone;  ///< kNone where it lies at no cut, or no planes were asked for
  };
  // A height that the solver has, by its place in m_auKnown, and what it counts; nothing where it only widens the
  // range.
  struct CTerm {
    std::uint32_t m_uKnown = 0;
    double m_fWeight = 0.0;
  };
  struct CSlope {
    double m_fX = 0.0;
    double m_fY = 0.0;
  };
  struct CRange {
    double m_fLow = HUGE_VAL;
    double m_fHigh = -HUGE_VAL;

    void Add(double z) {
      m_fLow = std::min(m_fLow, z);
      m_fHigh = std::max(m_fHigh, z);
    }
    void Add(const CRange& range) {
      m_fLow = std::min(m_fLow, range.m_fLow);
      m_fHigh = std::max(m_fHigh, range.m_fHigh);
    }
    // At both ends by half its length; 0 where nothing is known.
    CRange Widened() const {
      if (m_fLow > m_fHigh) return {0.0, 0.0};
      const double more = (m_fHigh - m_fLow) / 2.0;
      return {m_fLow - more, m_fHigh + more};
    }
    // In this order, so that what is no number stays none.
    double Within(double z) const { return z < m_fLow ? m_fLow : z > m_fHigh ? m_fHigh : z; }
  };
  static CRange RangeOf(std::span<const CTerm> terms, std::span<const double> known);
  std::span<const CTerm> Terms(std::size_t row) const;

  std::vector<std::uint32_t> m_auKnown;    ///< vertices of the mesh
  std::vector<std::uint32_t> m_auKnownAt;  ///< place in m_auKnown by copy; kNone for those that are continued
  std::vector<std::uint32_t> m_auRows;     ///< by copy
  std::vector<CRow> m_aRows;
  std::vector<CTerm> m_aTerms;
  std::vector<CSlope> m_aSlopes;
};
