// The model view with the gaps of tears closed, and with what runs on behind them.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/DisplayFlags.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/gui/ModelViewTest.h"

namespace {

// A tear slanting through the surface, from border to border: red and high on its left, green and low on its right.
class ModelTearsTest : public ModelViewTest {
 protected:
  static constexpr double kHigh = 3.0;

  static double TearAt(double y) { return 2.1 + 0.55 * (y - kOblong.y0); }
  static bool IsHigh(double x, double y) { return x < TearAt(y); }

  void SetUp() override {
    ModelViewTest::SetUp();
    CStaging::Constraints(Grid()).Curves().Add(
        PointsAt({{TearAt(kOblong.y0), kOblong.y0}, {TearAt(kOblong.y1), kOblong.y1}}), kTear, false);
    Grid().SetDiscMap();
    Grid().BuildHNumerotation();
    SetSurface(Grid(), [](double x, double y) { return IsHigh(x, y) ? kHigh : 0.0; });
    constexpr int kPixelsPerUnit = 32;
    const double width = kOblong.x1 - kOblong.x0;
    const double height = kOblong.y1 - kOblong.y0;
    LoadPicture(PictureOf(static_cast<int>(width) * kPixelsPerUnit, static_cast<int>(height) * kPixelsPerUnit,
                          [](int x, int y) {
                            const double column = kOblong.x0 + (x + 0.5) / kPixelsPerUnit;
                            return IsHigh(column, kOblong.y0 + (y + 0.5) / kPixelsPerUnit) ? kRed : kGreen;
                          }));
  }
  CPicture FrameWith(std::uint32_t flags) {
    ShowOnly(ModelFlag::kTexturedModel | flags);
    return FrameOf(View());
  }
  // So that the gap is seen into past the high side, over the whole height of the window.
  void Turn(int pixels) {
    Fl::e_state = 0;
    View().EnableEvents();
    for (const auto& [event, x] : {std::pair{FL_PUSH, 200}, {FL_DRAG, 200 + pixels}}) {
      Fl::e_x = x;
      Fl::e_y = 100;
      Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
      View().handle(event);
    }
  }
  static bool IsRed(CRgb c) { return c.m_uRed > 2 * c.m_uGreen; }
  static bool IsGreen(CRgb c) { return c.m_uGreen > 2 * c.m_uRed; }
  // In each row of the surface, where the red ends and where the green begins, away from the borders, where the picture
  // repeats. Of the lower side the first pixel may be red, too.
  struct CEdges {
    std::vector<double> m_afRed;
    int m_iGap = 0;  ///< pixels of the background between both, in all rows
  };
  static CEdges EdgesOf(const CPicture& frame) {
    CEdges edges;
    for (int y = 0; y < frame.m_iHeight; ++y) {
      const int last = frame.m_iWidth * 7 / 8;
      int red = frame.m_iWidth / 8;
      if (!IsRed(PixelOf(frame, red, y))) continue;
      while (red + 1 < last && IsRed(PixelOf(frame, red + 1, y))) ++red;
      int green = red + 1;
      while (green < last && !IsGreen(PixelOf(frame, green, y))) ++green;
      edges.m_afRed.push_back(red);
      for (int x = red + 1; x < green; ++x) edges.m_iGap += PixelOf(frame, x, y) == kBlack ? 1 : 0;
    }
    EXPECT_GT(edges.m_afRed.size(), 100U);
    return edges;
  }
  // The farthest that an edge lies from the straight line between its ends, in pixels.
  static double FarthestFromStraight(const std::vector<double>& edge) {
    double farthest = 0.0;
    const auto last = static_cast<double>(edge.size() - 1);
    for (std::size_t k = 0; k < edge.size(); ++k) {
      const double straight = edge.front() + (edge.back() - edge.front()) * static_cast<double>(k) / last;
      farthest = std::max(farthest, std::abs(edge[k] - straight));
    }
    return farthest;
  }
};

}  // namespace

TEST_F(ModelTearsTest, ClosedBothSidesReachTheCurveAndNeitherShowsTheOther) {
  EXPECT_GT(EdgesOf(FrameWith(0)).m_iGap, 1000);
  const CPicture closed = FrameWith(ModelFlag::kClosedTears);
  EXPECT_EQ(EdgesOf(closed).m_iGap, 0);
  for (double y = kOblong.y0 + 0.1; y < kOblong.y1 - 0.1; y += 0.1) {
    EXPECT_TRUE(IsRed(ColourAt(closed, TearAt(y) - 0.1, y))) << y;
    EXPECT_TRUE(IsGreen(ColourAt(closed, TearAt(y) + 0.1, y))) << y;
  }
}

TEST_F(ModelTearsTest, EdgeBeforeTheBackgroundIsStraightWhereTheCurveIs) {
  Turn(60);
  const CEdges stairs = EdgesOf(FrameWith(0));
  const CEdges closed = EdgesOf(FrameWith(ModelFlag::kClosedTears));
  EXPECT_GT(closed.m_iGap, 1000) << "the gap is still there, seen from the side";
  EXPECT_GT(FarthestFromStraight(stairs.m_afRed), 10);
  EXPECT_LE(FarthestFromStraight(closed.m_afRed), 1.5);
}

TEST_F(ModelTearsTest, NoBackgroundIsSeenBehindAnEdgeWhereTheLowerSideRunsOn) {
  Turn(60);
  const CPicture frame = FrameWith(ModelFlag::kClosedTears | ModelFlag::kBehindTears);
  const CEdges behind = EdgesOf(frame);
  EXPECT_EQ(behind.m_iGap, 0);
  EXPECT_LE(FarthestFromStraight(behind.m_afRed), 1.5);
}
