#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "scissors/CLinkCosts.h"

/// The cheapest paths from all pixels of a picture to one of them, the seed [Dijkstra1959].
///
/// Pixels are expanded in the order of their cost, from a binary min-heap [Williams1964] in which of two equal children
/// the first one wins and nothing moves past its equal; links are tried in their order, and a path gives way to a
/// cheaper one only. So the tree is the same however its growth was cut into slices. It takes 9 bytes a pixel and 8 for
/// each pixel in the heap.
class CMinimumPathTree {
 public:
  /// A tree with no seed. The costs must outlive it.
  explicit CMinimumPathTree(const CLinkCosts& costs);
  explicit CMinimumPathTree(CLinkCosts&& costs) = delete;

  /// Begins a new tree that will grow to `limit` pixels at most; the seed must be a pixel of the picture. Nothing is
  /// expanded yet.
  void Start(CPixelPosition seed, std::size_t limit);
  /// Expands up to `count` pixels. Says "%d nodes expanded." when there is nothing left to expand, once a tree.
  void Advance(std::size_t count);
  /// Expands until the cheapest path of `p` is known, if it lies within the limit.
  void AdvanceTo(CPixelPosition p);

  /// Whether every pixel within the limit is expanded; how many are.
  bool IsComplete() const { return m_bComplete; }
  std::size_t ExpandedCount() const { return m_uExpanded; }
  /// Whether the cheapest path of a pixel is known.
  bool IsExpanded(CPixelPosition p) const { return m_aiPlaces[m_Costs.NodeAt(p)] == kExpanded; }
  /// Cost of the best path of `p` known so far, infinite where none is.
  float TotalCost(CPixelPosition p) const { return m_afTotal[m_Costs.NodeAt(p)]; }
  /// The next pixel towards the seed on that path; nothing at the seed and where no path is known.
  std::optional<CPixelPosition> Previous(CPixelPosition p) const;

 private:
  struct CEntry {
    float m_fKey;
    std::uint32_t m_uNode;
  };
  using Place = std::int32_t;
  static constexpr Place kInitial = -1;
  static constexpr Place kExpanded = -2;
  static constexpr std::uint8_t kNoLink = 15;
  static constexpr std::uint8_t kLinkBits = 15;
  static constexpr std::uint8_t kMarginBit = 16;

  void MarkMargin();
  void Expand(std::uint32_t node, float total);
  std::array<float, kLinkCount> LinksOf(std::uint32_t node) const;
  void Improve(std::uint32_t node, float total, int link);
  void Put(std::size_t place, CEntry entry);
  void SiftUp(std::size_t hole, CEntry entry);
  CEntry PopMinimum();
  void ReportWhenComplete();

  const CLinkCosts& m_Costs;
  std::array<std::ptrdiff_t, kLinkCount> m_aiSteps{};  ///< from a node to its neighbours
  std::array<float, kLinkCount> m_afPlain{};           ///< links of the pixels in the margin
  // A node of the border around the picture is cheaper than any path, so that none ever enters it.
  std::vector<float> m_afTotal;
  std::vector<Place> m_aiPlaces;  ///< place in the heap, or one of the two marks
  // The link of the previous node that led here, and whether the node lies in the margin.
  std::vector<std::uint8_t> m_auLinks;
  std::vector<CEntry> m_aHeap;
  std::size_t m_uExpanded = 0;
  std::size_t m_uLimit = 0;
  bool m_bComplete = true;
};
