#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class CPointOrder;

/// The points in use by sites: numbers whose differences, modulo 2^32, tell how far apart two points lie in either
/// direction, wherever they are. A row of sites is four times as long as a side of the lattice and empty beyond it.
class CPointSites {
 public:
  /// Of the points of `order`. Linear in their number.
  explicit CPointSites(const CPointOrder& order);

  /// All sites, empty or not, are less than this.
  std::size_t End() const { return static_cast<std::size_t>(m_uSide) << m_uShift; }
  /// From a site to those so many lattice steps above it; to the right they count as they are.
  std::uint32_t Up(std::uint32_t steps) const { return steps << m_uShift; }
  /// By scan position, and by unknown.
  std::uint32_t AtPlace(std::size_t place) const { return m_auAtPlace[place]; }
  std::uint32_t OfUnknown(std::size_t k) const { return m_auOfUnknown[k]; }
  /// Lattice index (row * n + column) of a point.
  std::size_t PointAt(std::uint32_t site) const {
    const std::uint32_t row = site >> m_uShift;
    return row * m_uSide + (site - (row << m_uShift));
  }

 private:
  std::uint32_t m_uSide;
  std::uint32_t m_uShift;
  std::vector<std::uint32_t> m_auAtPlace;
  std::vector<std::uint32_t> m_auOfUnknown;
};
