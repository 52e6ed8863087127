#include <string>

#include <gtest/gtest.h>

#include "scissors/CScissorsContours.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"

namespace {

class ScissorsContoursTest : public ::testing::Test {
 protected:
  void CommitFrom(CPixelPosition seed, CPixelPosition p) { m_Contours.Commit(CompleteTree(m_Costs, seed), p); }
  // A finished contour of two key points on a row.
  void Trace(int row, int first, int last) {
    m_Contours.Begin({first, row});
    CommitFrom({first, row}, {last, row});
    m_Contours.Finish(false);
  }
  // First columns of the traced contours.
  std::vector<int> Firsts() const {
    std::vector<int> firsts;
    for (const CTracedContour& contour : m_Contours.Traced()) firsts.push_back(contour.m_aPixels.front().m_iColumn);
    return firsts;
  }

  ConsoleCapture m_Console;
  CLinkCosts m_Costs = ComputeLinkCosts(GreyPicture(20, 20));
  CScissorsContours m_Contours;
};

}  // namespace

TEST_F(ScissorsContoursTest, StartsWithNothing) {
  EXPECT_FALSE(m_Contours.IsInProgress());
  EXPECT_TRUE(m_Contours.Traced().empty());
  EXPECT_EQ(m_Contours.Selected(), -1);
  EXPECT_FALSE(m_Contours.RemoveSelected());
}

TEST_F(ScissorsContoursTest, FirstClickIsFirstPixelKeyPointAndSeed) {
  m_Contours.Begin({4, 7});
  EXPECT_TRUE(m_Contours.IsInProgress());
  EXPECT_EQ(m_Contours.InProgress().m_aPixels, (std::vector<CPathPixel>{{4, 7, true}}));
  EXPECT_EQ(m_Contours.Seed(), (CPixelPosition{4, 7}));
}

TEST_F(ScissorsContoursTest, SegmentIsAddedInPathOrderWithoutItsSeed) {
  m_Contours.Begin({4, 7});
  CommitFrom({4, 7}, {7, 7});
  EXPECT_EQ(m_Contours.InProgress().m_aPixels,
            (std::vector<CPathPixel>{{4, 7, true}, {5, 7, false}, {6, 7, false}, {7, 7, true}}));
  EXPECT_EQ(m_Contours.Seed(), (CPixelPosition{7, 7}));
  EXPECT_EQ(m_Contours.FirstPixel(), (CPixelPosition{4, 7}));
}

TEST_F(ScissorsContoursTest, SegmentToTheSeedAddsNothing) {
  m_Contours.Begin({4, 7});
  CommitFrom({4, 7}, {4, 7});
  EXPECT_EQ(m_Contours.InProgress().m_aPixels.size(), 1U);
}

TEST_F(ScissorsContoursTest, BeginDropsTheContourInProgress) {
  m_Contours.Begin({4, 7});
  CommitFrom({4, 7}, {7, 7});
  m_Contours.Begin({1, 2});
  EXPECT_EQ(m_Contours.InProgress().m_aPixels, (std::vector<CPathPixel>{{1, 2, true}}));
  EXPECT_TRUE(m_Contours.Traced().empty());
}

TEST_F(ScissorsContoursTest, FinishedContourJoinsTheTracedOnes) {
  Trace(3, 2, 6);
  EXPECT_FALSE(m_Contours.IsInProgress());
  ASSERT_EQ(m_Contours.Traced().size(), 1U);
  EXPECT_EQ(m_Contours.Traced()[0].m_aPixels.size(), 5U);
  EXPECT_FALSE(m_Contours.Traced()[0].m_bClosed);
}

TEST_F(ScissorsContoursTest, ClosedContourEndsOnItsFirstPixel) {
  m_Contours.Begin({4, 7});
  CommitFrom({4, 7}, {7, 7});
  CommitFrom({7, 7}, m_Contours.FirstPixel());
  m_Contours.Finish(true);
  EXPECT_TRUE(m_Contours.Traced()[0].m_bClosed);
  EXPECT_EQ(m_Contours.Traced()[0].m_aPixels.back(), (CPathPixel{4, 7, true}));
}

TEST_F(ScissorsContoursTest, FirstContourUnderTheCursorIsSelected) {
  Trace(3, 2, 6);
  Trace(3, 5, 9);
  EXPECT_FALSE(m_Contours.SelectAt({5, 4}));
  EXPECT_EQ(m_Contours.Selected(), -1);
  EXPECT_TRUE(m_Contours.SelectAt({5, 3}));
  EXPECT_EQ(m_Contours.Selected(), 0);
  EXPECT_FALSE(m_Contours.SelectAt({6, 3}));
  EXPECT_TRUE(m_Contours.SelectAt({9, 3}));
  EXPECT_EQ(m_Contours.Selected(), 1);
  EXPECT_FALSE(m_Contours.SelectAt({0, 0}));
  EXPECT_EQ(m_Contours.Selected(), 1);
}

TEST_F(ScissorsContoursTest, LastContourTakesThePlaceOfTheRemovedOne) {
  for (int first = 1; first <= 4; ++first) Trace(2 * first, first, 8);
  ASSERT_TRUE(m_Contours.SelectAt({2, 4}));
  EXPECT_TRUE(m_Contours.RemoveSelected());
  EXPECT_EQ(Firsts(), (std::vector<int>{1, 4, 3}));
  EXPECT_EQ(m_Contours.Selected(), -1);
  EXPECT_FALSE(m_Contours.RemoveSelected());
}

TEST_F(ScissorsContoursTest, TheOnlyContourCanBeRemoved) {
  Trace(2, 1, 8);
  ASSERT_TRUE(m_Contours.SelectAt({1, 2}));
  EXPECT_TRUE(m_Contours.RemoveSelected());
  EXPECT_TRUE(m_Contours.Traced().empty());
}

TEST_F(ScissorsContoursTest, HandedOverContoursAreGoneAndTheSelectionWithThem) {
  for (int first = 1; first <= 3; ++first) Trace(2 * first, first, 8);
  ASSERT_TRUE(m_Contours.SelectAt({3, 6}));
  m_Contours.HandOver([](const CTracedContour& contour) { return contour.m_aPixels.front().m_iColumn != 2; });
  EXPECT_EQ(Firsts(), (std::vector<int>{2}));
  EXPECT_EQ(m_Contours.Selected(), -1);
}
