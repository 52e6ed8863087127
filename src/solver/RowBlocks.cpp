#include "solver/RowBlocks.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

constexpr unsigned kBits = 16;

// Column and row of a place on a fine lattice, bit by bit in turn, so that what is close in this order is close by.
std::uint64_t Interleaved(const CRowPlace& place) {
  const auto whole = [](double share) {
    return static_cast<std::uint64_t>(std::clamp(share, 0.0, 1.0) * ((1U << kBits) - 1));
  };
  const std::uint64_t column = whole(place.m_fX);
  const std::uint64_t row = whole(place.m_fY);
  std::uint64_t bits = 0;
  for (unsigned bit = 0; bit < kBits; ++bit)
    bits |= ((column >> bit) & 1U) << (2 * bit) | ((row >> bit) & 1U) << (2 * bit + 1);
  return bits;
}

// How often the model must be quartered until two places are in different parts.
int Depth(std::uint64_t a, std::uint64_t b) {
  const int same = std::countl_zero(a ^ b) - static_cast<int>(64 - 2 * kBits);
  return same / 2;
}

// The rows in their order, and where a new level begins.
struct COrder {
  std::vector<std::uint32_t> m_auRows;
  std::vector<std::pair<bool, int>> m_aLevels;  ///< by position
};

// The first row of a part of the model, in the order of interleaved places, stands for it.
COrder FromCoarseToFine(std::span<const CRowPlace> places) {
  std::vector<std::uint64_t> keys(places.size());
  std::ranges::transform(places, keys.begin(), Interleaved);
  std::vector<std::uint32_t> sorted(places.size());
  std::iota(sorted.begin(), sorted.end(), 0U);
  std::ranges::stable_sort(sorted, {}, [&](std::uint32_t j) { return std::pair(places[j].m_bSlope, keys[j]); });
  std::vector<std::pair<bool, int>> levels(places.size());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const std::uint32_t j = sorted[i];
    const bool first = i == 0 || places[j].m_bSlope != places[sorted[i - 1]].m_bSlope;
    levels[j] = {places[j].m_bSlope, first ? 0 : 1 + Depth(keys[j], keys[sorted[i - 1]])};
  }
  std::ranges::stable_sort(sorted, {}, [&](std::uint32_t j) { return levels[j]; });
  COrder order{sorted, {}};
  for (const std::uint32_t j : sorted) order.m_aLevels.push_back(levels[j]);
  return order;
}

// The box around some places.
class CBox {
 public:
  CBox(std::span<const CRowPlace> places, std::span<const std::uint32_t> rows) {
    for (const std::uint32_t j : rows) {
      m_fX0 = std::min(m_fX0, places[j].m_fX);
      m_fX1 = std::max(m_fX1, places[j].m_fX);
      m_fY0 = std::min(m_fY0, places[j].m_fY);
      m_fY1 = std::max(m_fY1, places[j].m_fY);
    }
  }
  // Squared distance.
  double DistanceTo(const CRowPlace& place) const {
    const double dx = std::max({m_fX0 - place.m_fX, place.m_fX - m_fX1, 0.0});
    const double dy = std::max({m_fY0 - place.m_fY, place.m_fY - m_fY1, 0.0});
    return dx * dx + dy * dy;
  }

 private:
  double m_fX0 = 2.0;
  double m_fX1 = -1.0;
  double m_fY0 = 2.0;
  double m_fY1 = -1.0;
};

class CChoice {
 public:
  CChoice(std::span<const CRowPlace> places, const CRowBlockSizes& sizes)
      : m_aPlaces(places), m_Sizes(sizes), m_Order(FromCoarseToFine(places)) {}

  std::vector<CRowBlock> Choose() {
    const std::size_t count = m_Order.m_auRows.size();
    for (std::size_t first = 0; first < count;) {
      std::size_t end = std::min(count, first + m_Sizes.m_uFirst);
      if (first > 0) end = EndOfLevel(first, std::min(count, first + m_Sizes.m_uOwn));
      // Where many earlier rows lie in between, those that count for the one are not those for the other.
      while (end - first > 1 && CountInside(first, end) > m_Sizes.m_uEarlier / 2) end = first + (end - first) / 2;
      Add(first, end);
      first = end;
    }
    return std::move(m_aBlocks);
  }

 private:
  std::span<const std::uint32_t> Rows(std::size_t first, std::size_t end) const {
    return std::span(m_Order.m_auRows).subspan(first, end - first);
  }
  // A block of two levels would be all over the model.
  std::size_t EndOfLevel(std::size_t first, std::size_t end) const {
    for (std::size_t i = first + 1; i < end; ++i) {
      if (m_Order.m_aLevels[i] != m_Order.m_aLevels[first]) return i;
    }
    return end;
  }
  // Notes how far the earlier rows are away, too.
  std::size_t CountInside(std::size_t first, std::size_t end) {
    const CBox box(m_aPlaces, Rows(first, end));
    m_aEarlier.clear();
    std::size_t inside = 0;
    for (const std::uint32_t j : Rows(0, first)) {
      const double distance = box.DistanceTo(m_aPlaces[j]);
      if (distance == 0) ++inside;
      m_aEarlier.emplace_back(distance, j);
    }
    return inside;
  }
  void Add(std::size_t first, std::size_t end) {
    CountInside(first, end);
    CRowBlock block{{}, std::min(m_Sizes.m_uEarlier, first)};
    std::ranges::nth_element(m_aEarlier, m_aEarlier.begin() + static_cast<std::ptrdiff_t>(block.m_uEarlier));
    for (std::size_t k = 0; k < block.m_uEarlier; ++k) block.m_auRows.push_back(m_aEarlier[k].second);
    block.m_auRows.insert(block.m_auRows.end(), m_Order.m_auRows.begin() + static_cast<std::ptrdiff_t>(first),
                          m_Order.m_auRows.begin() + static_cast<std::ptrdiff_t>(end));
    m_aBlocks.push_back(std::move(block));
  }

  std::span<const CRowPlace> m_aPlaces;
  CRowBlockSizes m_Sizes;
  COrder m_Order;
  std::vector<std::pair<double, std::uint32_t>> m_aEarlier;
  std::vector<CRowBlock> m_aBlocks;
};

}  // namespace

std::vector<CRowBlock> ChooseRowBlocks(std::span<const CRowPlace> places, const CRowBlockSizes& sizes) {
  return CChoice(places, sizes).Choose();
}
