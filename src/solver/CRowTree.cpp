#include "solver/CRowTree.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>

namespace {

// So many places are looked at one by one.
constexpr std::uint32_t kLeaf = 8;

// What lies between two intervals, 0 where they meet.
double Gap(double a0, double a1, double b0, double b1) { return std::max({b0 - a1, a0 - b1, 0.0}); }

}  // namespace

std::uint64_t Interleaved(const CRowPlace& place) {
  const auto whole = [](double share) {
    return static_cast<std::uint64_t>(std::clamp(share, 0.0, 1.0) * ((1U << kPlaceBits) - 1));
  };
  const std::uint64_t column = whole(place.m_fX);
  const std::uint64_t row = whole(place.m_fY);
  std::uint64_t bits = 0;
  for (unsigned bit = 0; bit < kPlaceBits; ++bit)
    bits |= ((column >> bit) & 1U) << (2 * bit) | ((row >> bit) & 1U) << (2 * bit + 1);
  return bits;
}

void CRowBox::Add(const CRowPlace& place) {
  m_fX0 = std::min(m_fX0, place.m_fX);
  m_fX1 = std::max(m_fX1, place.m_fX);
  m_fY0 = std::min(m_fY0, place.m_fY);
  m_fY1 = std::max(m_fY1, place.m_fY);
}

void CRowBox::Add(const CRowBox& box) {
  m_fX0 = std::min(m_fX0, box.m_fX0);
  m_fX1 = std::max(m_fX1, box.m_fX1);
  m_fY0 = std::min(m_fY0, box.m_fY0);
  m_fY1 = std::max(m_fY1, box.m_fY1);
}

double CRowBox::DistanceTo(const CRowPlace& place) const {
  const double dx = Gap(m_fX0, m_fX1, place.m_fX, place.m_fX);
  const double dy = Gap(m_fY0, m_fY1, place.m_fY, place.m_fY);
  return dx * dx + dy * dy;
}

double CRowBox::DistanceTo(const CRowBox& box) const {
  const double dx = Gap(m_fX0, m_fX1, box.m_fX0, box.m_fX1);
  const double dy = Gap(m_fY0, m_fY1, box.m_fY0, box.m_fY1);
  return dx * dx + dy * dy;
}

CRowTree::CRowTree(std::span<const CRowPlace> places) : m_aPlaces(places), m_auRanks(places.size()) {
  std::iota(m_auRanks.begin(), m_auRanks.end(), 0U);
  // A half is at most half a place larger than the other, so that the leaves fill at most one level more than they
  // need.
  const std::size_t leaves = std::bit_ceil(places.size() / kLeaf + 1);
  m_aNodes.resize(2 * leaves);
  Build(0, 0, static_cast<std::uint32_t>(places.size()));
}

void CRowTree::Build(std::uint32_t node, std::uint32_t first, std::uint32_t end) {
  CNode made{{}, first, end, std::numeric_limits<std::uint32_t>::max()};
  CRowPlace low{2.0, 2.0, false};
  CRowPlace high{-1.0, -1.0, false};
  for (std::uint32_t i = first; i < end; ++i) {
    const CRowPlace& place = m_aPlaces[m_auRanks[i]];
    made.m_Box.Add(place);
    made.m_uLowest = std::min(made.m_uLowest, m_auRanks[i]);
    low = {std::min(low.m_fX, place.m_fX), std::min(low.m_fY, place.m_fY), false};
    high = {std::max(high.m_fX, place.m_fX), std::max(high.m_fY, place.m_fY), false};
  }
  m_aNodes[node] = made;
  if (end - first <= kLeaf) return;
  const std::uint32_t middle = first + (end - first) / 2;
  const auto side = high.m_fX - low.m_fX > high.m_fY - low.m_fY ? &CRowPlace::m_fX : &CRowPlace::m_fY;
  std::nth_element(m_auRanks.begin() + first, m_auRanks.begin() + middle, m_auRanks.begin() + end,
                   [&](std::uint32_t a, std::uint32_t b) { return m_aPlaces[a].*side < m_aPlaces[b].*side; });
  Build(2 * node + 1, first, middle);
  Build(2 * node + 2, middle, end);
}

void CRowTree::Push(const COpen& open) {
  m_aOpen.push_back(open);
  std::push_heap(m_aOpen.begin(), m_aOpen.end());
}

void CRowTree::Open(const CRowBox& box, std::uint32_t limit, std::uint32_t node) {
  const CNode& opened = m_aNodes[node];
  if (opened.m_uLowest < limit) Push({{box.DistanceTo(opened.m_Box), opened.m_uLowest}, node});
}

void CRowTree::OpenPlaces(const CRowBox& box, std::uint32_t limit, const CNode& node) {
  for (std::uint32_t i = node.m_uFirst; i < node.m_uEnd; ++i) {
    const std::uint32_t rank = m_auRanks[i];
    if (rank < limit) Push({{box.DistanceTo(m_aPlaces[rank]), rank}, kPlace});
  }
}

void CRowTree::FindNearest(const CRowBox& box, std::uint32_t limit, std::size_t count, std::vector<CFound>& found) {
  found.clear();
  m_aOpen.clear();
  Open(box, limit, 0);
  while (found.size() < count && !m_aOpen.empty()) {
    std::pop_heap(m_aOpen.begin(), m_aOpen.end());
    const COpen nearest = m_aOpen.back();
    m_aOpen.pop_back();
    if (nearest.m_uNode == kPlace) {
      found.push_back(nearest.m_Bound);
    } else if (const CNode& node = m_aNodes[nearest.m_uNode]; node.m_uEnd - node.m_uFirst > kLeaf) {
      Open(box, limit, 2 * nearest.m_uNode + 1);
      Open(box, limit, 2 * nearest.m_uNode + 2);
    } else {
      OpenPlaces(box, limit, node);
    }
  }
}
