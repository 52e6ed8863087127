#include "solver/RowBlocks.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

namespace {

// How often the model must be quartered until two places are in different parts.
int Depth(std::uint64_t a, std::uint64_t b) {
  const int same = std::countl_zero(a ^ b) - static_cast<int>(64 - 2 * kPlaceBits);
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

std::vector<CRowPlace> Ranked(std::span<const CRowPlace> places, std::span<const std::uint32_t> rows) {
  std::vector<CRowPlace> ranked;
  ranked.reserve(rows.size());
  for (const std::uint32_t j : rows) ranked.push_back(places[j]);
  return ranked;
}

// The rank of a row is its place in the order.
class CChoice {
 public:
  CChoice(std::span<const CRowPlace> places, const CRowBlockSizes& sizes)
      : m_Sizes(sizes),
        m_Order(FromCoarseToFine(places)),
        m_aPlaces(Ranked(places, m_Order.m_auRows)),
        m_Tree(m_aPlaces) {}

  std::vector<CRowBlock> Choose() {
    const std::size_t count = m_aPlaces.size();
    for (std::size_t first = 0; first < count;) {
      std::size_t end = std::min(count, first + m_Sizes.m_uFirst);
      if (first > 0) end = EndOfLevel(first, std::min(count, first + m_Sizes.m_uOwn));
      FindEarlier(first, end);
      // Where many earlier rows lie in between, those that count for the one are not those for the other.
      for (; end - first > 1 && FoundInside() > m_Sizes.m_uEarlier / 2; FindEarlier(first, end))
        end = first + (end - first) / 2;
      Add(first, end);
      first = end;
    }
    return std::move(m_aBlocks);
  }

 private:
  // A block of two levels would be all over the model.
  std::size_t EndOfLevel(std::size_t first, std::size_t end) const {
    for (std::size_t i = first + 1; i < end; ++i) {
      if (m_Order.m_aLevels[i] != m_Order.m_aLevels[first]) return i;
    }
    return end;
  }
  // The nearest to the box around some rows among those before them.
  void FindEarlier(std::size_t first, std::size_t end) {
    CRowBox box;
    for (std::size_t i = first; i < end; ++i) box.Add(m_aPlaces[i]);
    m_Tree.FindNearest(box, static_cast<std::uint32_t>(first), m_Sizes.m_uEarlier, m_aEarlier);
  }
  std::size_t FoundInside() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_aEarlier, [](const CRowTree::CFound& row) { return row.m_fDistance == 0.0; }));
  }
  void Add(std::size_t first, std::size_t end) {
    CRowBlock block{{}, m_aEarlier.size()};
    block.m_auRows.reserve(m_aEarlier.size() + end - first);
    for (const CRowTree::CFound& row : m_aEarlier) block.m_auRows.push_back(m_Order.m_auRows[row.m_uRank]);
    for (std::size_t i = first; i < end; ++i) block.m_auRows.push_back(m_Order.m_auRows[i]);
    m_aBlocks.push_back(std::move(block));
  }

  CRowBlockSizes m_Sizes;
  COrder m_Order;
  std::vector<CRowPlace> m_aPlaces;  ///< by rank
  CRowTree m_Tree;
  std::vector<CRowTree::CFound> m_aEarlier;
  std::vector<CRowBlock> m_aBlocks;
};

}  // namespace

std::vector<CRowBlock> ChooseRowBlocks(std::span<const CRowPlace> places, const CRowBlockSizes& sizes) {
  return CChoice(places, sizes).Choose();
}
