#include <string>

#include <gtest/gtest.h>

#include "lattice/CLattice.h"
#include "scissors/CScissorsTool.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"

namespace {

constexpr const char* kSnapLine = "SeedSnap in iScissor: to be implemented for extra credits!\n";

class ScissorsToolTest : public ::testing::Test {
 protected:
  ScissorsToolTest() {
    m_View.Resize(30, 20);
    m_Console.Take();
  }
  void Press(CPixelPosition p, bool begin = false) { m_Tool.Press(p, begin, m_View); }
  void Build() {
    while (m_Tool.IsBuilding()) m_Tool.Advance(50);
  }

  ConsoleCapture m_Console;
  CScissorsTool m_Tool{RandomTopDownImage(30, 20, 1)};
  CPixelViewport m_View{30, 20};
};

}  // namespace

TEST(ScissorsToolOpeningTest, LogsTheSizeOfThePicture) {
  EXPECT_EQ(ConsoleTextOf([] { const CScissorsTool tool(GreyPicture(12, 7)); }), "Width 12\nHeight 7\n");
}

TEST_F(ScissorsToolTest, FirstClickStartsAContourAndItsTree) {
  Press({7, 11});
  EXPECT_EQ(m_Console.Take(), std::string(kSnapLine) + "current seed position: (    7 ,   11 ).\n");
  EXPECT_TRUE(m_Tool.IsBuilding());
  EXPECT_EQ(m_Tool.Contours().Seed(), (CPixelPosition{7, 11}));
  Build();
  EXPECT_EQ(m_Console.Take(), "600 nodes expanded.minimun path tree is finished\n");
}

TEST_F(ScissorsToolTest, NextClickCommitsTheSegmentAndMovesTheSeed) {
  Press({7, 11});
  Build();
  const std::vector<CPixelPosition> path = PathTo(m_Tool.Tree(), {20, 5});
  m_Console.Take();
  Press({20, 5});
  EXPECT_EQ(m_Console.Take(), "current seed position: (   20 ,    5 ).\n");
  EXPECT_EQ(m_Tool.Contours().InProgress().m_aPixels.size(), path.size());
  EXPECT_EQ(m_Tool.Contours().Seed(), (CPixelPosition{20, 5}));
  EXPECT_EQ(m_Tool.Tree().ExpandedCount(), 0U);
  Build();
  EXPECT_EQ(m_Console.Take(), "600 nodes expanded.minimun path tree is finished\n");
}

TEST_F(ScissorsToolTest, ClickOnAPixelWithoutAPathFindsItFirst) {
  Press({7, 11});
  ASSERT_FALSE(m_Tool.HasPath({20, 5}));
  Press({20, 5});
  std::vector<CPathPixel> hasty = m_Tool.Contours().InProgress().m_aPixels;
  Press({7, 11}, true);
  Build();
  Press({20, 5});
  EXPECT_EQ(hasty, m_Tool.Contours().InProgress().m_aPixels);
  EXPECT_GT(hasty.size(), 2U);
}

TEST_F(ScissorsToolTest, PathThatTakesTheWholeTreeFinishesIt) {
  Press({7, 11});
  CPixelPosition last{};
  float farthest = 0.0F;
  const CLinkCosts costs = ComputeLinkCosts(m_Tool.Image());
  const CMinimumPathTree tree = CompleteTree(costs, {7, 11});
  for (int i = 0; i < 600; ++i) {
    const CPixelPosition p{i % 30, i / 30};
    if (tree.TotalCost(p) > farthest) {
      farthest = tree.TotalCost(p);
      last = p;
    }
  }
  m_Console.Take();
  Press(last);
  EXPECT_EQ(m_Console.Take().substr(0, 50), "600 nodes expanded.minimun path tree is finished\nc");
}

TEST_F(ScissorsToolTest, ClickWithControlStartsANewContour) {
  Press({7, 11});
  Press({20, 5});
  m_Console.Take();
  Press({3, 4}, true);
  EXPECT_EQ(m_Console.Take(), std::string(kSnapLine) + "current seed position: (    3 ,    4 ).\n");
  EXPECT_EQ(m_Tool.Contours().InProgress().m_aPixels, (std::vector<CPathPixel>{{3, 4, true}}));
}

TEST_F(ScissorsToolTest, EnterEndsTheContourAtTheCursor) {
  Press({7, 11});
  EXPECT_TRUE(m_Tool.Enter(CPixelPosition{9, 11}, false));
  ASSERT_EQ(m_Tool.Contours().Traced().size(), 1U);
  EXPECT_FALSE(m_Tool.Contours().Traced()[0].m_bClosed);
  EXPECT_EQ(m_Tool.Contours().Traced()[0].m_aPixels.back(), (CPathPixel{9, 11, true}));
  EXPECT_FALSE(m_Tool.Contours().IsInProgress());
  EXPECT_FALSE(m_Tool.IsBuilding());
}

TEST_F(ScissorsToolTest, EnterWithControlClosesTheContour) {
  Press({7, 11});
  Press({20, 5});
  EXPECT_TRUE(m_Tool.Enter(CPixelPosition{9, 11}, true));
  EXPECT_TRUE(m_Tool.Contours().Traced()[0].m_bClosed);
  EXPECT_EQ(m_Tool.Contours().Traced()[0].m_aPixels.back(), (CPathPixel{7, 11, true}));
}

TEST_F(ScissorsToolTest, EnterOutsideThePictureLeavesTheContourInProgress) {
  Press({7, 11});
  EXPECT_TRUE(m_Tool.Enter(std::nullopt, false));
  EXPECT_TRUE(m_Tool.Enter(std::nullopt, true));
  EXPECT_TRUE(m_Tool.Contours().IsInProgress());
  EXPECT_TRUE(m_Tool.Contours().Traced().empty());
}

TEST_F(ScissorsToolTest, EnterWithoutAContourDoesNothing) {
  EXPECT_FALSE(m_Tool.Enter(CPixelPosition{9, 11}, false));
  EXPECT_TRUE(m_Tool.Contours().Traced().empty());
}

TEST_F(ScissorsToolTest, TakesKeyPointsBackOneByOne) {
  for (const CPixelPosition pixel : {CPixelPosition{7, 11}, {20, 5}, {25, 15}}) Press(pixel);
  m_Console.Take();
  EXPECT_TRUE(m_Tool.TakeBack());
  EXPECT_EQ(m_Console.Take(), "current seed position: (   20 ,    5 ).\n");
  EXPECT_EQ(m_Tool.Contours().Seed(), (CPixelPosition{20, 5}));
  EXPECT_TRUE(m_Tool.IsBuilding());
  EXPECT_TRUE(m_Tool.TakeBack());
  EXPECT_EQ(m_Tool.Contours().InProgress().m_aPixels.size(), 1U);
  EXPECT_TRUE(m_Tool.TakeBack());
  EXPECT_FALSE(m_Tool.Contours().IsInProgress());
  EXPECT_FALSE(m_Tool.IsBuilding());
  EXPECT_FALSE(m_Tool.TakeBack());
}

TEST_F(ScissorsToolTest, AfterAKeyPointTakenBackTheContourGoesOnFromTheOneBefore) {
  Press({7, 11});
  Press({20, 5});
  const CTracedContour wanted = m_Tool.Contours().InProgress();
  Press({25, 15});
  m_Tool.TakeBack();
  EXPECT_EQ(m_Tool.Contours().InProgress().m_aPixels, wanted.m_aPixels);
  EXPECT_TRUE(m_Tool.Enter(CPixelPosition{22, 9}, false));
  EXPECT_EQ(m_Tool.Contours().Traced().back().m_aPixels.back().Position(), (CPixelPosition{22, 9}));
}

TEST_F(ScissorsToolTest, PathsAreThereBeforeTheTreeIsComplete) {
  Press({7, 11});
  EXPECT_FALSE(m_Tool.HasPath({7, 11}));
  m_Tool.Advance(1);
  EXPECT_TRUE(m_Tool.HasPath({7, 11}));
  EXPECT_FALSE(m_Tool.HasPath({29, 19}));
  EXPECT_EQ(m_Tool.PercentBuilt(), 0);
  m_Tool.Advance(299);
  EXPECT_EQ(m_Tool.PercentBuilt(), 50);
  Build();
  EXPECT_EQ(m_Tool.PercentBuilt(), 100);
  EXPECT_TRUE(m_Tool.HasPath({29, 19}));
}

TEST_F(ScissorsToolTest, NothingIsBuiltWithoutAContour) {
  m_Tool.Advance(10);
  EXPECT_EQ(m_Tool.Tree().ExpandedCount(), 0U);
  EXPECT_FALSE(m_Tool.HasPath({3, 3}));
}

TEST_F(ScissorsToolTest, StatusNamesPlaceAndColour) {
  CScissorsTool tool(TopDownImageOf(5, 5, [](int x, int y) { return std::array{10 * x, 20 * y, 7}; }));
  EXPECT_EQ(tool.StatusText(31, 42, CPixelPosition{2, 4}), "x = 31 y = 42 r = 20 g = 80 b = 7");
  EXPECT_EQ(tool.StatusText(-3, 500, std::nullopt), "x = -3 y = 500 r = 212 g = 208 b = 200");
}

TEST_F(ScissorsToolTest, SnappedSeedMustBeVisible) {
  EXPECT_EQ(ConsoleTextOf([] { EXPECT_EQ(SeedSnap({3, 4}), (CPixelPosition{3, 4})); }), kSnapLine);
  EXPECT_EQ(ChooseSeed({3, 4}, {5, 6}, m_View), (CPixelPosition{5, 6}));
  EXPECT_EQ(m_Console.Take(), "");
  EXPECT_EQ(ChooseSeed({3, 4}, {30, 6}, m_View), (CPixelPosition{3, 4}));
  EXPECT_EQ(m_Console.Take(), "the result of SeedSnap is out of current view port, still use un-snapped seed!\n");
}

TEST(PlanePointsTest, PixelCentresAreStretchedOverTheRectangleUpsideUp) {
  const CTracedContour contour{{{0, 0, true}, {19, 9, false}, {4, 6, true}}, false};
  const std::vector<CPlanePoint> points = PlanePointsOf(contour, {10, 30, -5, 5}, 20, 10);
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[0], (CPlanePoint{10.5, 4.5}));
  EXPECT_EQ(points[1], (CPlanePoint{29.5, -4.5}));
  EXPECT_EQ(points[2], (CPlanePoint{14.5, -1.5}));
}

TEST(PlanePointsTest, SinglePixelGivesASingleNode) {
  EXPECT_EQ(PlanePointsOf({{{1, 1, true}}, false}, {}, 4, 4), (std::vector<CPlanePoint>{{37.5, 62.5}}));
}
