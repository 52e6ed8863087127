#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "scissors/MinimumPathTree.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"

namespace {

std::size_t PixelCount(const CLinkCosts& costs) {
  return static_cast<std::size_t>(costs.m_iWidth) * static_cast<std::size_t>(costs.m_iHeight);
}

std::size_t PixelIndex(const CLinkCosts& costs, CPixelPosition p) {
  return static_cast<std::size_t>(p.m_iRow) * static_cast<std::size_t>(costs.m_iWidth) +
         static_cast<std::size_t>(p.m_iColumn);
}

CPixelPosition Neighbour(CPixelPosition p, int link) {
  const CPixelPosition& step = kLinkSteps[static_cast<std::size_t>(link)];
  return {p.m_iColumn + step.m_iColumn, p.m_iRow + step.m_iRow};
}

// The heap as it is described: entries exchanged with their parents and children, places kept in the nodes.
class CPlainTree {
 public:
  CPlainTree(const CLinkCosts& costs, CPixelPosition seed) : m_Costs(costs), m_aNodes(PixelCount(costs)) {
    m_aHeap.push_back(PixelIndex(costs, seed));
    m_aNodes[m_aHeap[0]].m_iState = 1;
    while (!m_aHeap.empty()) Expand(Pop());
  }

  const std::vector<std::size_t>& Order() const { return m_aOrder; }
  // Link that led to a pixel, -1 at the seed.
  int LinkTo(std::size_t index) const { return m_aNodes[index].m_iLink; }

 private:
  struct CNode {
    int m_iState = 0;
    float m_fTotal = 0;
    int m_iLink = -1;
    std::size_t m_uPlace = 0;
  };

  float KeyAt(std::size_t place) const { return m_aNodes[m_aHeap[place]].m_fTotal; }
  void Exchange(std::size_t a, std::size_t b) {
    std::swap(m_aHeap[a], m_aHeap[b]);
    m_aNodes[m_aHeap[a]].m_uPlace = a;
    m_aNodes[m_aHeap[b]].m_uPlace = b;
  }
  void Rise(std::size_t place) {
    while (place > 0 && KeyAt(place) < KeyAt((place - 1) / 2)) {
      Exchange(place, (place - 1) / 2);
      place = (place - 1) / 2;
    }
  }
  std::size_t Pop() {
    const std::size_t minimum = m_aHeap.front();
    Exchange(0, m_aHeap.size() - 1);
    m_aHeap.pop_back();
    for (std::size_t place = 0; 2 * place + 1 < m_aHeap.size();) {
      std::size_t child = 2 * place + 1;
      if (child + 1 < m_aHeap.size() && KeyAt(child + 1) < KeyAt(child)) ++child;
      if (KeyAt(child) >= KeyAt(place)) break;
      Exchange(place, child);
      place = child;
    }
    return minimum;
  }
  void Expand(std::size_t index) {
    m_aNodes[index].m_iState = 2;
    m_aOrder.push_back(index);
    const CPixelPosition p{static_cast<int>(index) % m_Costs.m_iWidth, static_cast<int>(index) / m_Costs.m_iWidth};
    for (int link = 0; link < kLinkCount; ++link) {
      if (!m_Costs.Contains(Neighbour(p, link))) continue;
      CNode& node = m_aNodes[PixelIndex(m_Costs, Neighbour(p, link))];
      const float candidate = m_aNodes[index].m_fTotal + m_Costs.Cost(p, link);
      if (node.m_iState == 2 || (node.m_iState == 1 && candidate >= node.m_fTotal)) continue;
      const bool isNew = std::exchange(node.m_iState, 1) == 0;
      node.m_fTotal = candidate;
      node.m_iLink = link;
      if (isNew) {
        node.m_uPlace = m_aHeap.size();
        m_aHeap.push_back(PixelIndex(m_Costs, Neighbour(p, link)));
      }
      Rise(node.m_uPlace);
    }
  }

  const CLinkCosts& m_Costs;
  std::vector<CNode> m_aNodes;
  std::vector<std::size_t> m_aHeap;
  std::vector<std::size_t> m_aOrder;
};

template <typename Visit>
void ForEachPixel(const CLinkCosts& costs, Visit&& visit) {
  for (int row = 0; row < costs.m_iHeight; ++row) {
    for (int column = 0; column < costs.m_iWidth; ++column) visit(CPixelPosition{column, row});
  }
}

bool AreSame(const CLinkCosts& costs, const CMinimumPathTree& a, const CMinimumPathTree& b) {
  bool same = a.ExpandedCount() == b.ExpandedCount();
  ForEachPixel(costs, [&](CPixelPosition p) { same = same && a.Previous(p) == b.Previous(p); });
  return same;
}

class MinimumPathTreeTest : public ::testing::Test {
 protected:
  ConsoleCapture m_Console;
};

}  // namespace

TEST_F(MinimumPathTreeTest, PathsAddUpToTheirCosts) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(25, 22, 8));
  const CMinimumPathTree tree = CompleteTree(costs, {4, 9});
  ForEachPixel(costs, [&](CPixelPosition p) {
    const auto previous = tree.Previous(p);
    if (!previous.has_value()) return;
    int link = 0;
    while (!(Neighbour(*previous, link) == p)) ++link;
    EXPECT_EQ(tree.TotalCost(p), tree.TotalCost(*previous) + costs.Cost(*previous, link));
  });
}

// Two levels of grey give equal costs in plenty.
TEST_F(MinimumPathTreeTest, TiesFallAsInTheDescribedHeap) {
  for (const int levels : {2, 3, 256}) {
    for (unsigned seed = 0; seed < 6; ++seed) {
      const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(31, 24, seed, levels));
      const CPixelPosition start{static_cast<int>(5 * seed), static_cast<int>(4 * seed)};
      const CPlainTree plain(costs, start);
      const CMinimumPathTree tree = CompleteTree(costs, start);
      ForEachPixel(costs, [&](CPixelPosition p) {
        const int link = plain.LinkTo(PixelIndex(costs, p));
        const auto previous = tree.Previous(p);
        ASSERT_EQ(previous.has_value(), link >= 0);
        if (!previous.has_value()) return;
        ASSERT_EQ(Neighbour(*previous, link), p);
      });
    }
  }
}

TEST_F(MinimumPathTreeTest, PixelsAreExpandedInTheOrderOfTheDescribedHeap) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(18, 15, 1, 2));
  const CPlainTree plain(costs, {3, 2});
  CMinimumPathTree tree(costs);
  tree.Start({3, 2}, PixelCount(costs));
  for (const std::size_t index : plain.Order()) {
    const CPixelPosition next{static_cast<int>(index) % costs.m_iWidth, static_cast<int>(index) / costs.m_iWidth};
    EXPECT_FALSE(tree.IsExpanded(next));
    tree.Advance(1);
    EXPECT_TRUE(tree.IsExpanded(next));
  }
  EXPECT_TRUE(tree.IsComplete());
}

TEST_F(MinimumPathTreeTest, SlicesGrowTheSameTree) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(40, 30, 4, 3));
  CMinimumPathTree tree(costs);
  tree.Start({7, 7}, PixelCount(costs));
  for (std::size_t slice = 1; !tree.IsComplete(); slice = slice % 7 + 1) tree.Advance(slice);
  EXPECT_TRUE(AreSame(costs, tree, CompleteTree(costs, {7, 7})));
}

TEST_F(MinimumPathTreeTest, SecondTreeForgetsTheFirst) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(16, 16, 4));
  CMinimumPathTree tree(costs);
  tree.Start({2, 3}, PixelCount(costs));
  tree.Advance(100);
  tree.Start({9, 12}, PixelCount(costs));
  EXPECT_EQ(tree.ExpandedCount(), 0U);
  EXPECT_FALSE(tree.IsExpanded({2, 3}));
  tree.Advance(PixelCount(costs));
  EXPECT_TRUE(AreSame(costs, tree, CompleteTree(costs, {9, 12})));
}

TEST_F(MinimumPathTreeTest, CompleteTreeNamesItsSizeOnce) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(12, 10, 4));
  CMinimumPathTree tree(costs);
  tree.Start({2, 3}, 120);
  tree.Advance(119);
  EXPECT_EQ(m_Console.Text(), "");
  tree.Advance(50);
  EXPECT_EQ(m_Console.Take(), "120 nodes expanded.");
  EXPECT_EQ(tree.ExpandedCount(), 120U);
  tree.Advance(50);
  EXPECT_EQ(m_Console.Text(), "");
}

TEST_F(MinimumPathTreeTest, LimitEndsTheTree) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(12, 10, 4));
  CMinimumPathTree tree(costs);
  tree.Start({2, 3}, 30);
  tree.Advance(1000);
  EXPECT_TRUE(tree.IsComplete());
  EXPECT_EQ(m_Console.Take(), "30 nodes expanded.");
  tree.Start({2, 3}, 0);
  EXPECT_TRUE(tree.IsComplete());
  EXPECT_EQ(m_Console.Take(), "0 nodes expanded.");
}

TEST_F(MinimumPathTreeTest, AdvanceToEndsWithThePixel) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(30, 30, 4));
  CMinimumPathTree tree(costs);
  tree.Start({2, 3}, PixelCount(costs));
  tree.AdvanceTo({12, 12});
  EXPECT_TRUE(tree.IsExpanded({12, 12}));
  const std::size_t expanded = tree.ExpandedCount();
  EXPECT_LT(expanded, PixelCount(costs));
  tree.AdvanceTo({12, 12});
  EXPECT_EQ(tree.ExpandedCount(), expanded);
  EXPECT_EQ(PathTo(tree, {12, 12}), PathTo(CompleteTree(costs, {2, 3}), {12, 12}));
}

TEST_F(MinimumPathTreeTest, AdvanceToStopsAtTheLimit) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(30, 30, 4));
  CMinimumPathTree tree(costs);
  tree.Start({2, 3}, 10);
  tree.AdvanceTo({25, 25});
  EXPECT_EQ(tree.ExpandedCount(), 10U);
  EXPECT_FALSE(tree.IsExpanded({25, 25}));
}

TEST_F(MinimumPathTreeTest, TreeWithoutASeedHasNothingToDo) {
  const CLinkCosts costs = ComputeLinkCosts(GreyPicture(8, 8));
  CMinimumPathTree tree(costs);
  tree.Advance(10);
  EXPECT_TRUE(tree.IsComplete());
  EXPECT_EQ(tree.ExpandedCount(), 0U);
  EXPECT_FALSE(tree.Previous({3, 3}).has_value());
}

TEST_F(MinimumPathTreeTest, SeedsInTheCornersReachEveryPixel) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(11, 9, 6));
  for (const CPixelPosition seed : {CPixelPosition{0, 0}, {10, 0}, {0, 8}, {10, 8}, {1, 1}}) {
    const CMinimumPathTree tree = CompleteTree(costs, seed);
    EXPECT_EQ(tree.ExpandedCount(), 99U);
    EXPECT_EQ(tree.TotalCost(seed), 0.0F);
    ForEachPixel(costs, [&](CPixelPosition p) { EXPECT_EQ(PathTo(tree, p).front(), seed); });
  }
}

TEST_F(MinimumPathTreeTest, SmallestPicturesHaveATree) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 6}, {6, 1}, {2, 2}}) {
    const CLinkCosts costs = ComputeLinkCosts(GreyPicture(width, height));
    EXPECT_EQ(CompleteTree(costs, {0, 0}).ExpandedCount(), PixelCount(costs));
  }
}

TEST_F(MinimumPathTreeTest, UniformPictureHasTheStraightestPaths) {
  const CLinkCosts costs = ComputeLinkCosts(GreyPicture(15, 13));
  const CPixelPosition seed{3, 10};
  const CMinimumPathTree tree = CompleteTree(costs, seed);
  ForEachPixel(costs, [&](CPixelPosition p) {
    const int columns = std::abs(p.m_iColumn - seed.m_iColumn);
    const int rows = std::abs(p.m_iRow - seed.m_iRow);
    EXPECT_EQ(PathTo(tree, p).size(), static_cast<std::size_t>(std::max(columns, rows)) + 1);
  });
}

TEST_F(MinimumPathTreeTest, PathRunsAlongTheEdge) {
  const CLinkCosts costs = ComputeLinkCosts(StepPicture(40, 40, 20));
  const CMinimumPathTree tree = CompleteTree(costs, {20, 4});
  for (const CPixelPosition p : PathTo(tree, {20, 35})) EXPECT_NEAR(p.m_iColumn, 19.5, 1.5);
  EXPECT_LT(tree.TotalCost({20, 35}), costs.PlainCost(0));
}

// Costs are never negative; a negative one is the only way to a cheaper path for a pixel that is done with.
TEST_F(MinimumPathTreeTest, ExpandedPixelIsNeverImproved) {
  CLinkCosts costs = ComputeLinkCosts(GreyPicture(9, 9));
  costs.m_aLinks[costs.NodeAt({5, 4})][0] = -5.0F;
  const CMinimumPathTree tree = CompleteTree(costs, {6, 4});
  EXPECT_EQ(m_Console.Text().find("wrong node state 2!\n"), 0U);
  EXPECT_EQ(tree.ExpandedCount(), 81U);
  EXPECT_FALSE(tree.Previous({6, 4}).has_value());
}
