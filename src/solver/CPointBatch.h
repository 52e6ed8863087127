#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

class CPointOrder;
class CPointSites;

/// Unknowns of which none is a parent of another: the centres of the split cells of one level, or the midpoints of
/// their sides. All points up to them lie on a lattice of half such a side, where a bit for either direction tells what
/// a point at a site is.
class CPointBatch {
 public:
  /// The last of those that lie before the unknown `end`; there must be more than the four corners.
  CPointBatch(const CPointOrder& order, const CPointSites& sites, std::uint32_t end);

  /// From the first to before the end, by unknown.
  std::uint32_t First() const { return m_uFirst; }
  std::uint32_t End() const { return m_uEnd; }
  /// The two bits; both are 0 in the sites of coarser levels.
  std::uint32_t OddBits() const { return m_uRight | m_uUp; }
  /// 0 for points of coarser levels, 1 and 2 for midpoints of horizontal and of vertical sides, 3 for centres.
  std::uint32_t Shape(std::uint32_t site) const {
    return ((site & m_uRight) != 0 ? 1U : 0U) + ((site & m_uUp) != 0 ? 2U : 0U);
  }
  /// Whether a point of those up to the end of the batch belongs to it.
  bool Has(std::uint32_t site) const {
    const std::uint32_t odd = site & OddBits();
    return m_bCentres ? odd == OddBits() : odd != 0;
  }
  /// From the site of a point of the batch to those of all its parents, cut off or not.
  std::span<const std::uint32_t> ParentSteps(std::uint32_t site) const {
    return m_bCentres ? Steps(true, true) : Steps(Shape(site) == 2, Shape(site) == 1);
  }
  /// From the site of one before it to those of all whose parent it may be, empty or not.
  std::span<const std::uint32_t> ChildSteps(std::uint32_t site) const {
    return m_bCentres ? Steps(Shape(site) == 1, Shape(site) == 2) : Steps(true, true);
  }

 private:
  std::span<const std::uint32_t> Steps(bool vertical, bool horizontal) const {
    return std::span(m_auSteps).subspan(vertical ? 0 : 2, (vertical ? 2U : 0U) + (horizontal ? 2U : 0U));
  }

  std::uint32_t m_uFirst;
  std::uint32_t m_uEnd;
  bool m_bCentres = false;
  std::uint32_t m_uRight = 0;                ///< half a side, as a difference of sites, which is a bit of them
  std::uint32_t m_uUp = 0;                   ///< the same
  std::array<std::uint32_t, 4> m_auSteps{};  ///< down, up, left, right
};
