// Tears drawn or traced from one edge of the picture to the other cut the model in two: no way leads round their ends.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CurveRasteriser.h"
#include "scissors/CScissorsTool.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/FileBuilders.h"
#include "support/ScissorsBuilders.h"
#include "support/TearFlood.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr std::array kSides{1.0, 10.0, 20.0, 100.0, 1000.0};

// A square model with that side, or one `stretch` times as wide; not at the origin.
CExtent ModelOf(double side, double stretch = 1.0) { return {-3, -3 + stretch * side, 7, 7 + side}; }

// Where a click on a pixel, counted from the lower left corner, is taken to be in a view of the whole model.
std::array<double, 2> ClickedAt(const CExtent& e, int width, int height, int column, int row) {
  const double mx = BorderMargin(e.x0, e.x1);
  const double my = BorderMargin(e.y0, e.y1);
  return {std::clamp(e.x0 + (e.x1 - e.x0) * (column + 0.5) / width, e.x0 + mx, e.x1 - mx),
          std::clamp(e.y0 + (e.y1 - e.y0) * (row + 0.5) / height, e.y0 + my, e.y1 - my)};
}

// The points in use next to a polyline where it passes the middle row, or the middle column.
struct CBanks {
  std::array<int, 2> m_aLow;
  std::array<int, 2> m_aHigh;
};
CBanks BanksOf(const CLattice& lattice, const CPlaces& tear, bool upright) {
  const int middle = (lattice.PointsPerSide() - 1) / 2;
  double at = 0.0;
  for (std::size_t k = 0; k + 1 < tear.size(); ++k) {
    std::array a{lattice.ColumnOf(tear[k][0]), lattice.RowOf(tear[k][1])};
    std::array b{lattice.ColumnOf(tear[k + 1][0]), lattice.RowOf(tear[k + 1][1])};
    if (!upright) {
      std::swap(a[0], a[1]);
      std::swap(b[0], b[1]);
    }
    if ((a[1] <= middle) != (b[1] <= middle)) at = a[0] + (middle - a[1]) / (b[1] - a[1]) * (b[0] - a[0]);
  }
  constexpr double kOnTheLine = 1e-6;
  const auto next = [&](double from, int step) {
    int along = static_cast<int>(from);
    const auto point = [&] { return upright ? std::array{along, middle} : std::array{middle, along}; };
    while (!lattice.Has(lattice.Index(point()[0], point()[1]), PointFlag::kInUse)) along += step;
    return point();
  };
  return {next(std::ceil(at - kOnTheLine) - 1, -1), next(std::floor(at + kOnTheLine) + 1, 1)};
}

void ExpectDivided(const CQuadTree& tree, const CPlaces& tear, bool upright) {
  const auto& [low, high] = BanksOf(tree.Lattice(), tear, upright);
  EXPECT_FALSE(ReachableFrom(tree, low[0], low[1]).contains(high)) << "a way round";
}

// Clicks.

// The first and the last row of a view, joined from column to column.
struct CLine {
  int m_iPixels;  ///< of the view, along and across
  int m_iFrom;
  int m_iTo;
};
void ExpectLineDivides(CTestTree& torn, const CExtent& extent, const CLine& line, bool upright) {
  SCOPED_TRACE(testing::Message() << extent.x1 - extent.x0 << " by " << extent.y1 - extent.y0 << ", " << line.m_iPixels
                                  << " pixels, from " << line.m_iFrom << " to " << line.m_iTo
                                  << (upright ? " upwards" : " across"));
  const int last = line.m_iPixels - 1;
  const auto click = [&](int along, int row) {
    return ClickedAt(extent, line.m_iPixels, line.m_iPixels, upright ? along : row, upright ? row : along);
  };
  const CPlaces places{click(line.m_iFrom, 0), click(line.m_iTo, last)};
  torn.m_Lattice.SetExtent(extent);
  torn.m_Tree.Reset(3);
  const ConsoleCapture console;
  const CTestCurve curve(places);
  CCurveRasteriser(torn.m_Tree).Rasterise(curve.m_Curve);
  torn.m_Tree.RefreshEdgeMarks();
  ExpectDivided(torn.m_Tree, places, upright);
}

class ClickedTearTest : public testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Sides, ClickedTearTest, testing::ValuesIn(kSides));

TEST_P(ClickedTearTest, FromTheFirstToTheLastPixelDividesTheModel) {
  CTestTree torn(7, 3);
  for (const int pixels : {128, 203, 430}) {
    // Upright, at slants between, and at 45 degrees from corner to corner.
    for (const int slant : {0, pixels / 11, pixels / 2, pixels - 1}) {
      const int room = pixels - 1 - slant;
      for (const int from : {0, room / 3, room / 2 + 1, room}) {
        if (from > room) continue;
        for (const CLine& line : {CLine{pixels, from, from + slant}, CLine{pixels, from + slant, from}}) {
          ExpectLineDivides(torn, ModelOf(GetParam()), line, true);
          ExpectLineDivides(torn, ModelOf(GetParam()), line, false);
        }
      }
    }
  }
}

TEST_P(ClickedTearTest, DividesAModelThatIsNotSquare) {
  CTestTree torn(7, 3);
  for (const double stretch : {1.5, 0.4}) {
    for (const CLine& line : {CLine{128, 0, 127}, CLine{128, 40, 40}, CLine{300, 299, 10}}) {
      ExpectLineDivides(torn, ModelOf(GetParam(), stretch), line, true);
      ExpectLineDivides(torn, ModelOf(GetParam(), stretch), line, false);
    }
  }
}

TEST_P(ClickedTearTest, DividesTheModelAtEveryResolution) {
  for (const int level : {4, 5, 6, 8, 9}) {
    CTestTree torn(level, 3);
    for (const CLine& line : {CLine{128, 31, 90}, CLine{430, 215, 215}})
      ExpectLineDivides(torn, ModelOf(GetParam()), line, true);
  }
}

// The scissors.

// Contours traced over a picture without edges, where they run straight, and exported to a model.
class CTracer {
 public:
  CTracer(int width, int height, double side)
      : m_Scope(7, 3), m_View(width, height), m_pTool(std::make_unique<CScissorsTool>(GreyPicture(width, height))) {
    const CExtent e = ModelOf(side, static_cast<double>(width) / height);
    m_Grid.Initialize(3, false, e.x0, e.y0, e.x1, e.y1);
    m_View.Resize(width, height);
  }
  // The exported curve from pixel to pixel, the only one in the model.
  CPlaces Trace(CPixelPosition from, CPixelPosition to) {
    m_pTool->Press(from, true, m_View);
    EXPECT_TRUE(m_pTool->Enter(to, false));
    CStaging::Constraints(m_Grid).Curves().clear();
    m_pTool->Contours().HandOver([this](const CTracedContour& contour) {
      const CTopDownImage& image = m_pTool->Image();
      CPlaces places;
      for (const CPlanePoint& p :
           PlanePointsOf(contour, m_Grid.Surface().Lattice().Extent(), image.m_iWidth, image.m_iHeight))
        places.push_back({p.x, p.y});
      m_Grid.AddTracedCurve(PointsAt(places), CurveType::kPosition, false);
      return true;
    });
    m_Grid.PerformPendingWork();
    m_Console.Take();
    return PlacesOf(m_Grid.Constraints().Curves().back());
  }
  void ExpectDividedAlong(CPixelPosition from, CPixelPosition to, bool upright) {
    SCOPED_TRACE(testing::Message() << "from " << from.m_iColumn << ", " << from.m_iRow << " to " << to.m_iColumn
                                    << ", " << to.m_iRow);
    const CPlaces tear = Trace(from, to);
    ExpectDivided(m_Grid.Surface().Tree(), tear, upright);
  }

 private:
  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CPixelViewport m_View;
  std::unique_ptr<CScissorsTool> m_pTool;
  CGrid m_Grid;
};

class TracedTearTest : public testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Sides, TracedTearTest, testing::ValuesIn(kSides));

// 32 columns of the lattice to 50 of the picture, and 32 rows to 35.
constexpr int kWidth = 200;
constexpr int kHeight = 140;

TEST_P(TracedTearTest, FromTheFirstToTheLastRowDividesTheModelInEveryPhaseOfTheColumns) {
  CTracer tracer(kWidth, kHeight, GetParam());
  for (int column = 0; column < 25; ++column) tracer.ExpectDividedAlong({column, 0}, {column, kHeight - 1}, true);
  tracer.ExpectDividedAlong({kWidth - 1, 0}, {kWidth - 1, kHeight - 1}, true);
}

TEST_P(TracedTearTest, FromTheFirstToTheLastColumnDividesTheModel) {
  CTracer tracer(kWidth, kHeight, GetParam());
  for (int row = 0; row < kHeight; row += 9) tracer.ExpectDividedAlong({kWidth - 1, row}, {0, row}, false);
}

TEST_P(TracedTearTest, OnASlantDividesTheModel) {
  CTracer tracer(kWidth, kHeight, GetParam());
  for (const int slant : {1, 30, 77, kHeight - 1}) {
    tracer.ExpectDividedAlong({20, 0}, {20 + slant, kHeight - 1}, true);
    tracer.ExpectDividedAlong({kWidth - 30, 0}, {kWidth - 30 - slant, kHeight - 1}, true);
  }
  CTracer square(128, 128, GetParam());
  square.ExpectDividedAlong({0, 0}, {127, 127}, true);
  square.ExpectDividedAlong({0, 127}, {127, 0}, true);
}

TEST(TracedTearTest, EveryColumnOfTheSmallestPictureDividesTheModel) {
  CTracer tracer(128, 128, 100);
  for (int column = 0; column < 128; ++column) tracer.ExpectDividedAlong({column, 0}, {column, 127}, true);
}

// Surfaces.

// What a tear of a view of 430 pixels leaves of the step from 10 above it to -2 below.
struct CGap {
  double m_fSide;
  int m_iFirst;  ///< row of the tear in the first and in the last column of the view
  int m_iLast;
  friend void PrintTo(const CGap& gap, std::ostream* out) {
    *out << gap.m_fSide << ", from row " << gap.m_iFirst << " to row " << gap.m_iLast;
  }
};
class TornGapTest : public testing::TestWithParam<CGap> {};
// Rows whose ends lie next to a lattice line: amid a step even an end off the border opens it.
INSTANTIATE_TEST_SUITE_P(Level, TornGapTest,
                         testing::Values(CGap{1, 218, 218}, CGap{10, 218, 218}, CGap{20, 218, 218}, CGap{100, 218, 218},
                                         CGap{1000, 218, 218}));
INSTANTIATE_TEST_SUITE_P(Slanting, TornGapTest,
                         testing::Values(CGap{100, 147, 302}, CGap{100, 399, 30}, CGap{100, 0, 429},
                                         CGap{1000, 429, 0}));

TEST_P(TornGapTest, IsTheWholeStepRightToTheBorder) {
  constexpr int kPixels = 430;
  const double side = GetParam().m_fSide;
  const int first = GetParam().m_iFirst;
  const int last = GetParam().m_iLast;
  const CResolutionScope scope(7, 4);
  const ConsoleCapture console;
  CGrid grid;
  grid.Initialize(4, false, 0, 0, side, side);
  const CExtent& e = grid.Surface().Lattice().Extent();
  grid.AddCurve(PointsAt({ClickedAt(e, kPixels, kPixels, 0, first), ClickedAt(e, kPixels, kPixels, kPixels - 1, last)}),
                CurveType::kPosition, false);
  const auto tearAt = [&](double x) { return (first + (last - first) * x + 0.5) / kPixels; };
  for (const double x : {0.2, 0.5, 0.8}) {
    const double away = x == 0.5 ? 0.2 : 0.1;
    grid.AddPtCstr(HeightCstr(x * side, (tearAt(x) + away) * side, 10));
    grid.AddPtCstr(HeightCstr(x * side, (tearAt(x) - away) * side, -2));
  }
  ASSERT_TRUE(RunUntilPaused(grid, 20000));
  // A slanting tear is nearer than it looks straight up or down.
  const double rim = first == last ? 0.01 : 0.03;
  const double away = first == last ? 0.01 : 0.03;
  for (const double x : {rim, 0.1, 0.5, 1 - rim}) {
    const double gap = SurfaceHeight(grid, x * side, (tearAt(x) + away) * side) -
                       SurfaceHeight(grid, x * side, (tearAt(x) - away) * side);
    EXPECT_NEAR(gap, 12, 0.01) << x;
  }
}

// Files.

TEST(TearToTheBorderTest, NumbersTheSamePointsWithAPictureAndWithout) {
  CTestGrid drawn(7, 3);
  const CExtent& e = drawn.m_Grid.Surface().Lattice().Extent();
  drawn.m_Grid.AddCurve(PointsAt({ClickedAt(e, 430, 430, 100, 0), ClickedAt(e, 430, 430, 300, 429)}),
                        CurveType::kPosition, false);
  drawn.m_Grid.PerformPendingWork();
  const std::string file = GridText(drawn.m_Grid);
  CTestGrid plain(7, 3);
  ASSERT_EQ(ReadText(plain.m_Grid, file), GridFileState::Whole);
  EXPECT_EQ(GridText(plain.m_Grid), file);
  for (const int pixels : {2, 128, 400}) {
    CTestGrid pictured(7, 3);
    const CPicture picture{pixels, pixels + 1,
                           std::vector<std::uint8_t>(3 * static_cast<std::size_t>(pixels * (pixels + 1)))};
    ASSERT_TRUE(pictured.m_Grid.Relighting().SetPicture(picture));
    ASSERT_EQ(ReadText(pictured.m_Grid, file), GridFileState::Whole);
    EXPECT_EQ(GridText(pictured.m_Grid), file) << pixels;
    for (std::size_t k = 0; k < plain.m_Grid.Surface().Order().Count(); ++k)
      ASSERT_EQ(pictured.m_Grid.Surface().Order().PointOf(k), plain.m_Grid.Surface().Order().PointOf(k)) << pixels;
  }
}

}  // namespace
