#include "scissors/MinimumPathTree.h"

#include <algorithm>
#include <limits>

#include "base/Console.h"

CMinimumPathTree::CMinimumPathTree(const CLinkCosts& costs) : m_Costs(costs) {
  const auto stride = static_cast<std::ptrdiff_t>(costs.Stride());
  for (int link = 0; link < kLinkCount; ++link) {
    const auto k = static_cast<std::size_t>(link);
    m_aiSteps[k] = kLinkSteps[k].m_iRow * stride + kLinkSteps[k].m_iColumn;
    m_afPlain[k] = costs.PlainCost(link);
  }
  m_afTotal.resize(costs.NodeCount());
  m_aiPlaces.resize(costs.NodeCount());
  m_auLinks.resize(costs.NodeCount());
  MarkMargin();
}

void CMinimumPathTree::MarkMargin() {
  for (int row = 0; row < m_Costs.m_iHeight; ++row) {
    for (int column = 0; column < m_Costs.m_iWidth; ++column) {
      const bool marked = m_Costs.IsInMargin({column, row});
      m_auLinks[m_Costs.NodeAt({column, row})] = kNoLink | (marked ? kMarginBit : 0);
    }
  }
}

void CMinimumPathTree::Start(CPixelPosition seed, std::size_t limit) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  std::fill(m_afTotal.begin(), m_afTotal.end(), -kInfinity);
  for (int row = 0; row < m_Costs.m_iHeight; ++row) {
    std::fill_n(m_afTotal.begin() + static_cast<std::ptrdiff_t>(m_Costs.NodeAt({0, row})), m_Costs.m_iWidth, kInfinity);
  }
  std::fill(m_aiPlaces.begin(), m_aiPlaces.end(), kInitial);
  for (std::uint8_t& link : m_auLinks) link |= kNoLink;
  m_aHeap.clear();
  m_uExpanded = 0;
  m_uLimit = limit;
  m_bComplete = false;
  const auto node = static_cast<std::uint32_t>(m_Costs.NodeAt(seed));
  m_afTotal[node] = 0.0F;
  m_aHeap.push_back({0.0F, node});
  m_aiPlaces[node] = 0;
  ReportWhenComplete();
}

void CMinimumPathTree::Advance(std::size_t count) {
  if (m_bComplete) return;
  const std::size_t end = std::min(m_uLimit, m_uExpanded + std::min(count, m_uLimit));
  while (m_uExpanded < end && !m_aHeap.empty()) {
    const CEntry cheapest = PopMinimum();
    ++m_uExpanded;
    Expand(cheapest.m_uNode, cheapest.m_fKey);
  }
  ReportWhenComplete();
}

void CMinimumPathTree::AdvanceTo(CPixelPosition p) {
  while (!m_bComplete && !IsExpanded(p)) Advance(1);
}

void CMinimumPathTree::ReportWhenComplete() {
  if (m_uExpanded < m_uLimit && !m_aHeap.empty()) return;
  m_bComplete = true;
  Console() << m_uExpanded << " nodes expanded.";
}

std::optional<CPixelPosition> CMinimumPathTree::Previous(CPixelPosition p) const {
  const std::uint8_t link = m_auLinks[m_Costs.NodeAt(p)] & kLinkBits;
  if (link == kNoLink) return std::nullopt;
  return CPixelPosition{p.m_iColumn - kLinkSteps[link].m_iColumn, p.m_iRow - kLinkSteps[link].m_iRow};
}

std::array<float, kLinkCount> CMinimumPathTree::LinksOf(std::uint32_t node) const {
  if ((m_auLinks[node] & kMarginBit) != 0) return m_afPlain;
  const CLinkCosts::Forward* const here = m_Costs.m_aLinks.data() + node;
  return {here[0][0],
          here[0][1],
          here[0][2],
          here[0][3],
          here[m_aiSteps[4]][0],
          here[m_aiSteps[5]][1],
          here[m_aiSteps[6]][2],
          here[m_aiSteps[7]][3]};
}

void CMinimumPathTree::Expand(std::uint32_t node, float total) {
  const std::array<float, kLinkCount> links = LinksOf(node);
  for (int link = 0; link < kLinkCount; ++link) {
    const auto k = static_cast<std::size_t>(link);
    const auto neighbour = static_cast<std::uint32_t>(static_cast<std::ptrdiff_t>(node) + m_aiSteps[k]);
    const float candidate = total + links[k];
    // Neither an expanded node nor one outside the picture costs more than the node being expanded.
    if (candidate < m_afTotal[neighbour]) Improve(neighbour, candidate, link);
  }
}

void CMinimumPathTree::Improve(std::uint32_t node, float total, int link) {
  const Place place = m_aiPlaces[node];
  if (place == kExpanded) {
    Console() << "wrong node state 2!\n";
    return;
  }
  m_afTotal[node] = total;
  m_auLinks[node] = static_cast<std::uint8_t>((m_auLinks[node] & ~kLinkBits) | link);
  const CEntry entry{total, node};
  if (place == kInitial) m_aHeap.push_back(entry);
  SiftUp(place == kInitial ? m_aHeap.size() - 1 : static_cast<std::size_t>(place), entry);
}

void CMinimumPathTree::Put(std::size_t place, CEntry entry) {
  m_aHeap[place] = entry;
  m_aiPlaces[entry.m_uNode] = static_cast<Place>(place);
}

void CMinimumPathTree::SiftUp(std::size_t hole, CEntry entry) {
  while (hole > 0) {
    const std::size_t parent = (hole - 1) / 2;
    if (!(entry.m_fKey < m_aHeap[parent].m_fKey)) break;
    Put(hole, m_aHeap[parent]);
    hole = parent;
  }
  Put(hole, entry);
}

// The hole at the root goes down to a leaf along the smaller children, then the last entry comes up from there
// [Wegener1993]. It ends where sifting it down from the root would have put it, but a last entry mostly belongs near
// the leaves.
CMinimumPathTree::CEntry CMinimumPathTree::PopMinimum() {
  const CEntry minimum = m_aHeap.front();
  const CEntry last = m_aHeap.back();
  m_aHeap.pop_back();
  m_aiPlaces[minimum.m_uNode] = kExpanded;
  const std::size_t size = m_aHeap.size();
  if (size == 0) return minimum;
  std::size_t hole = 0;
  while (2 * hole + 2 < size) {
    const std::size_t left = 2 * hole + 1;
    const std::size_t child = left + (m_aHeap[left + 1].m_fKey < m_aHeap[left].m_fKey ? 1 : 0);
    Put(hole, m_aHeap[child]);
    hole = child;
  }
  if (2 * hole + 1 < size) {
    Put(hole, m_aHeap[2 * hole + 1]);
    hole = 2 * hole + 1;
  }
  while (hole > 0) {
    const std::size_t parent = (hole - 1) / 2;
    if (m_aHeap[parent].m_fKey < last.m_fKey) break;
    Put(hole, m_aHeap[parent]);
    hole = parent;
  }
  Put(hole, last);
  return minimum;
}
