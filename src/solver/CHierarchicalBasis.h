#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lattice/WaveletMode.h"

class CPointOrder;
class CQuadTree;

/// The hierarchical basis [Yserentant1986]: a coefficient is a point's height minus the mean of its counted parents'
/// heights.
///
/// The parents of an edge midpoint are the two ends of the edge, those of a cell centre the midpoints of the four
/// sides; corners have none. `Compile` lays the transforms out as a flat schedule in the point order; applying them
/// walks no tree and allocates nothing. Coefficients are indexed by unknown number, heights by scan position (see
/// CPointOrder); all vectors have at least `Size()` entries. Every transform is one pass, linear in the number of
/// unknowns.
class CHierarchicalBasis {
 public:
  /// Schedule for the points of `order` in the subdivision of `tree` (marks included) under `mode`. Must be repeated
  /// whenever one of the three changes. A level code that decreases along the order is reported with a console line and
  /// the schedule is laid out all the same.
  void Compile(const CPointOrder& order, const CQuadTree& tree, WaveletMode mode);

  /// The number of unknowns, and the mode it was compiled for.
  std::size_t Size() const { return m_uSize; }
  /// Another one after every compilation that ended in another schedule.
  std::uint64_t Revision() const { return m_uRevision; }
  WaveletMode Mode() const { return m_Mode; }

  /// Heights to coefficients. The vectors must not overlap.
  void W(std::span<const double> heights, std::span<double> coefs) const;
  /// Coefficients to heights; the inverse of `W`.
  void invW(std::span<const double> coefs, std::span<double> heights) const;
  /// The transpose of `invW`: from a vector over the heights, which is used up, to one over the coefficients.
  void invWTransposeTimes(std::span<double> heights, std::span<double> coefs) const;
  /// The same two with every coefficient multiplied by its entry of `scale`, before the one and after the other.
  void ScaledInvW(std::span<const double> coefs, std::span<const double> scale, std::span<double> heights) const;
  void ScaledInvWTransposeTimes(std::span<double> heights, std::span<const double> scale,
                                std::span<double> coefs) const;

  /// Scan position of unknown `k`, and the unknown at a scan position.
  std::uint32_t PlaceOf(std::size_t k) const { return m_auPlace[k]; }
  std::uint32_t UnknownAt(std::size_t place) const { return m_auUnknown[place]; }
  /// Scan positions of the counted parents of unknown `k`, whose unknowns have smaller numbers; each has an equal share
  /// in the mean. Those of the next unknown follow in memory.
  std::span<const std::uint32_t> ParentsOf(std::size_t k) const;

 private:
  /// A maximal range of consecutive unknowns with the same number of counted parents, so that each range is one tight
  /// loop.
  struct CRun {
    std::uint32_t m_uFirst;
    std::uint32_t m_uEnd;
    std::uint32_t m_uParents;    ///< counted parents per unknown, 0 to 4
    std::size_t m_uFirstParent;  ///< position in m_auParents of the first parent of the first unknown
    bool operator==(const CRun&) const = default;
  };

  void LayOut(const CPointOrder& order, const CQuadTree& tree);
  void AddUnknown(std::uint32_t k, std::span<const std::uint32_t> parents);
  template <typename Coefficient>
  void Reconstruct(const Coefficient& coefficient, std::span<double> heights) const;
  template <typename Store>
  void Collect(std::span<double> heights, const Store& store) const;

  std::size_t m_uSize = 0;
  std::uint64_t m_uRevision = 0;
  WaveletMode m_Mode = WaveletMode::None;
  std::vector<CRun> m_aRuns;               ///< in the point order, from 0 to Size()
  std::vector<std::uint32_t> m_auPlace;    ///< scan position of each unknown
  std::vector<std::uint32_t> m_auUnknown;  ///< unknown at each scan position
  std::vector<std::uint32_t>
      m_auParents;  ///< scan positions of the counted parents of all unknowns, in the point order
};
