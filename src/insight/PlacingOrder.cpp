#include "insight/PlacingOrder.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include "insight/CFreedom.h"
#include "insight/CGroups.h"

namespace {

// The regions as nodes, those that move together as one, each known by its first piece; and tears between them.
class CTearGraph {
 public:
  explicit CTearGraph(const CFreedom& freedom);

  std::vector<std::uint32_t> Ranks();

 private:
  void Walk();

  const CFreedom& m_Freedom;
  CGroups m_Nodes;
  std::vector<bool> m_abFree;            ///< by piece
  std::vector<std::size_t> m_auPoints;   ///< by node
  std::vector<std::uint32_t> m_auTears;  ///< by node: how many lie between it and where the walk began
  std::vector<std::pair<std::uint32_t, std::uint32_t>> m_aTears;
  std::vector<std::uint32_t> m_auOpen;
};

CTearGraph::CTearGraph(const CFreedom& freedom)
    : m_Freedom(freedom),
      m_Nodes(freedom.Pieces().Count()),
      m_abFree(freedom.Pieces().Count(), false),
      m_auPoints(freedom.Pieces().Count(), 0),
      m_auTears(freedom.Pieces().Count(), kNotPlaced) {
  const CPieces& pieces = freedom.Pieces();
  for (const CFreeGroup& group : freedom.Groups()) {
    for (const std::uint32_t piece : group.Regions()) {
      m_abFree[piece] = true;
      m_Nodes.Join(group.m_auPieces.front(), piece);
    }
  }
  for (const CRegion& region : freedom.Regions()) {
    m_auPoints[m_Nodes.Of(region.m_uPiece)] += pieces[region.m_uPiece].PointCount();
    if (m_abFree[region.m_uPiece]) continue;
    m_auTears[region.m_uPiece] = 0;
    m_auOpen.push_back(region.m_uPiece);
  }
  for (const CPieces::CJoint& cut : pieces.Cuts()) {
    const std::uint32_t a = pieces.PieceAt(cut.m_uA);
    const std::uint32_t b = pieces.PieceAt(cut.m_uB);
    if (!pieces[a].IsDrawn() || !pieces[b].IsDrawn()) continue;
    m_aTears.emplace_back(m_Nodes.Of(a), m_Nodes.Of(b));
    m_aTears.emplace_back(m_Nodes.Of(b), m_Nodes.Of(a));
  }
  std::ranges::sort(m_aTears);
}

// From all nodes that are open at once, so that each is reached over the fewest tears.
void CTearGraph::Walk() {
  for (std::size_t k = 0; k < m_auOpen.size(); ++k) {
    const std::uint32_t from = m_auOpen[k];
    auto tear = std::ranges::lower_bound(m_aTears, std::pair(from, 0U));
    for (; tear != m_aTears.end() && tear->first == from; ++tear) {
      if (m_auTears[tear->second] != kNotPlaced) continue;
      m_auTears[tear->second] = m_auTears[from] + 1;
      m_auOpen.push_back(tear->second);
    }
  }
}

std::vector<std::uint32_t> CTearGraph::Ranks() {
  if (m_auOpen.empty() && !m_auPoints.empty()) {
    const auto largest = std::ranges::max_element(m_auPoints) - m_auPoints.begin();
    m_auTears[static_cast<std::size_t>(largest)] = 0;
    m_auOpen.push_back(static_cast<std::uint32_t>(largest));
  }
  Walk();
  std::vector<std::uint32_t> nodes;
  for (std::uint32_t node = 0; node < m_auPoints.size(); ++node) {
    if (m_auPoints[node] > 0 && m_auTears[node] != 0) nodes.push_back(node);
  }
  std::ranges::stable_sort(nodes, [this](std::uint32_t a, std::uint32_t b) {
    return std::tuple(m_auTears[a], m_auPoints[b]) < std::tuple(m_auTears[b], m_auPoints[a]);
  });
  std::vector<std::uint32_t> rankOfNode(m_auPoints.size(), 0);
  for (std::uint32_t k = 0; k < nodes.size(); ++k) rankOfNode[nodes[k]] = k + 1;
  std::vector<std::uint32_t> ranks(m_auPoints.size(), kNotPlaced);
  for (const CRegion& region : m_Freedom.Regions()) ranks[region.m_uPiece] = rankOfNode[m_Nodes.Of(region.m_uPiece)];
  return ranks;
}

}  // namespace

std::vector<std::uint32_t> RanksOfPieces(const CFreedom& freedom) { return CTearGraph(freedom).Ranks(); }
