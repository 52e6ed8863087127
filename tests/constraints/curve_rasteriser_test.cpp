// The bits that curves leave in the cells and points of the tree.

#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CurveRasteriser.h"
#include "constraints/FinestCells.h"
#include "constraints/GridSegment.h"
#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"
#include "support/TreeBuilders.h"

namespace {

using CCells = std::map<std::array<int, 2>, std::uint32_t>;  ///< marks by column and row

// A tree of one leaf over 16 x 16 steps; model units are lattice steps, so that 2.5 lies amid column 2.
struct CRasterTree : CTestTree {
  CRasterTree() : CTestTree(4, 0, CExtent{0, 16, 0, 16}) {}

  void Draw(const CPlaces& places, CurveType type, bool closed = false) {
    CTestCurve curve(places, closed, type);
    CCurveRasteriser rasteriser(m_Tree);
    rasteriser.Rasterise(curve.m_Curve);
    rasteriser.MarkCreaseDiagonals();
  }
  CCells Marked(std::uint32_t mask = CellFlag::kTriangles) const {
    CCells cells;
    m_Tree.ForEachLeaf([&](const CQuadT& cell) {
      if (!cell.HasFlag(mask)) return;
      EXPECT_EQ(cell.Size(), 1);
      cells[{cell.X0(), cell.Y0()}] = cell.Flags() & mask;
    });
    return cells;
  }
  std::vector<std::array<int, 2>> CreasePoints() const {
    std::vector<std::array<int, 2>> points;
    for (int row = 0; row < 17; ++row) {
      for (int column = 0; column < 17; ++column) {
        if (m_Lattice.Has(m_Lattice.Index(column, row), PointFlag::kCrease)) points.push_back({column, row});
      }
    }
    return points;
  }

  ConsoleCapture m_Console;
};

CCells Torn(const CPlaces& places, bool closed = false) {
  CRasterTree tree;
  tree.Draw(places, CurveType::kPosition, closed);
  return tree.Marked();
}
std::vector<std::array<int, 2>> Creased(const CPlaces& places, bool closed = false) {
  CRasterTree tree;
  tree.Draw(places, CurveType::kNormal, closed);
  return tree.CreasePoints();
}

// One segment, and the marks it leaves.
struct CTear {
  const char* m_Name;
  CPlaces m_Places;
  CCells m_Marks;
};
void PrintTo(const CTear& tear, std::ostream* out) { *out << tear.m_Name; }

class TearMarksTest : public testing::TestWithParam<CTear> {};

TEST_P(TearMarksTest, AreThoseOfTheCellsPassed) { EXPECT_EQ(Torn(GetParam().m_Places), GetParam().m_Marks); }
TEST_P(TearMarksTest, DoNotDependOnTheDirectionOfTravel) {
  CPlaces reversed(GetParam().m_Places.rbegin(), GetParam().m_Places.rend());
  EXPECT_EQ(Torn(reversed), GetParam().m_Marks);
}

// Bottom 1, right 2, top 4, left 8.
INSTANTIATE_TEST_SUITE_P(
    Segments, TearMarksTest,
    testing::Values(
        CTear{"horizontal",
              {{2.1, 5.5}, {6.9, 5.5}},
              {{{2, 5}, 10}, {{3, 5}, 15}, {{4, 5}, 15}, {{5, 5}, 15}, {{6, 5}, 10}}},
        CTear{"horizontal, ends within cells", {{2.7, 5.6}, {4.3, 5.6}}, {{{2, 5}, 2}, {{3, 5}, 15}, {{4, 5}, 8}}},
        CTear{"vertical", {{5.5, 2.7}, {5.5, 5.3}}, {{{5, 2}, 4}, {{5, 3}, 15}, {{5, 4}, 15}, {{5, 5}, 1}}},
        CTear{"vertical on a lattice line", {{5, 2.5}, {5, 4.5}}, {{{5, 2}, 12}, {{5, 3}, 15}, {{5, 4}, 9}}},
        CTear{"rising, longer in x",
              {{2.5, 5.45}, {5.5, 6.65}},
              {{{2, 5}, 3}, {{3, 5}, 12}, {{3, 6}, 3}, {{4, 6}, 15}, {{5, 6}, 12}}},
        CTear{"falling, longer in x",
              {{2.5, 6.55}, {5.5, 5.35}},
              {{{2, 6}, 6}, {{3, 6}, 15}, {{3, 5}, 15}, {{4, 5}, 15}, {{5, 5}, 9}}},
        CTear{"rising, longer in y",
              {{5.45, 2.5}, {6.65, 5.5}},
              {{{5, 2}, 12}, {{5, 3}, 15}, {{6, 3}, 15}, {{6, 4}, 15}, {{6, 5}, 3}}},
        CTear{"falling, longer in y",
              {{6.55, 2.5}, {5.35, 5.5}},
              {{{6, 2}, 6}, {{6, 3}, 9}, {{5, 3}, 6}, {{5, 4}, 15}, {{5, 5}, 9}}},
        CTear{"within one triangle", {{2.4, 5.1}, {2.6, 5.2}}, {{{2, 5}, 1}}},
        CTear{"within one cell", {{2.1, 5.4}, {2.9, 5.4}}, {{{2, 5}, 11 | 4}}},
        CTear{"from triangle to triangle", {{2.5, 5.2}, {2.8, 5.45}}, {{{2, 5}, 3}}}));

TEST(TearTest, EqualLegsAreWalkedAlongY) {
  // Through lattice points the walk along y changes column first: each cell is left to the right and the next entered
  // from the left.
  EXPECT_EQ(Torn({{2.5, 5.5}, {4.5, 7.5}}),
            (CCells{{{2, 5}, 6}, {{3, 5}, 15}, {{3, 6}, 15}, {{4, 6}, 15}, {{4, 7}, 9}}));
}

TEST(TearTest, FineCellsStandAlongTheCurve) {
  CRasterTree tree;
  tree.Draw({{2.1, 5.5}, {6.9, 5.5}}, CurveType::kPosition);
  for (int column = 2; column <= 6; ++column) EXPECT_TRUE(tree.m_Tree.CellAt(0, column, 5).IsActive()) << column;
  EXPECT_FALSE(tree.m_Tree.CellAt(0, 12, 12).IsActive());
}

TEST(TearTest, ClosingSegmentIsTorn) {
  const CPlaces triangle{{2.5, 2.5}, {8.5, 2.5}, {8.5, 8.4}};
  EXPECT_EQ(Torn(triangle).contains({5, 5}), false);
  EXPECT_EQ(Torn(triangle, true).contains({5, 5}), true);
}

TEST(TearTest, EndOnTheBorderReachesIt) {
  EXPECT_EQ(Torn({{0, 5.5}, {1.5, 5.5}}), (CCells{{{0, 5}, 10}, {{1, 5}, 8}}));
  EXPECT_EQ(Torn({{16, 5.5}, {14.5, 5.5}}), (CCells{{{15, 5}, 10}, {{14, 5}, 2}}));
  EXPECT_EQ(Torn({{5, 0}, {5, 1.5}}), (CCells{{{5, 0}, 15}, {{5, 1}, 9}}));
}

TEST(TearTest, OpenEndAsFarOutAsTheCursorGoesReachesTheBorder) {
  EXPECT_EQ(Torn({{0.1, 5.05}, {1.5, 5.05}}).at({0, 5}) & 8U, 8U);
  EXPECT_EQ(Torn({{0.3, 5.05}, {1.5, 5.05}}).at({0, 5}) & 8U, 8U) << "nearer than half a step";
  EXPECT_EQ(Torn({{0.6, 5.05}, {1.5, 5.05}}).at({0, 5}) & 8U, 0U);
  EXPECT_EQ(Torn({{15.9, 5.05}, {14.5, 5.05}}).at({15, 5}) & 2U, 2U);
  EXPECT_EQ(Torn({{5.05, 0.1}, {5.05, 1.5}}).at({5, 0}) & 1U, 1U);
  EXPECT_EQ(Torn({{5.05, 15.9}, {5.05, 14.5}}).at({5, 15}) & 4U, 4U);
}

TEST(TearTest, ClosedCurveBesideTheBorderStaysOffIt) {
  const CPlaces ring{{0.1, 5.05}, {3.5, 3.2}, {3.5, 7.4}};
  EXPECT_EQ(Torn(ring).at({0, 5}) & 8U, 8U);
  EXPECT_EQ(Torn(ring, true).at({0, 5}) & 8U, 0U);
}

// How near to the border an open end is continued to it. The other side of the model is ten times as long.
struct CReach {
  double m_fSide;
  int m_iLevel;
  double m_fDistance;
  bool m_bReaches;
  friend void PrintTo(const CReach& reach, std::ostream* out) {
    *out << reach.m_fDistance << " of " << reach.m_fSide << " at level " << reach.m_iLevel;
  }
};
class TearReachTest : public testing::TestWithParam<CReach> {
 protected:
  // Whether a tear across the short side that ends so far from one of its borders is marked up to there.
  bool Reaches(bool across, bool far) {
    const CReach& reach = GetParam();
    const double end = far ? reach.m_fSide - reach.m_fDistance : reach.m_fDistance;
    CPlaces places{{end, 4.3 * reach.m_fSide}, {reach.m_fSide / 2, 4.3 * reach.m_fSide}};
    CExtent extent{0, reach.m_fSide, 0, 10 * reach.m_fSide};
    if (!across) {
      for (auto& [x, y] : places) std::swap(x, y);
      std::swap(extent.x1, extent.y1);
    }
    m_Torn.m_Lattice.SetExtent(extent);
    m_Torn.m_Tree.Reset(0);
    const ConsoleCapture console;
    const CTestCurve curve(places);
    CCurveRasteriser(m_Torn.m_Tree).Rasterise(curve.m_Curve);
    const int last = m_Torn.m_Lattice.PointsPerSide() - 2;
    const int along = static_cast<int>(0.43 * (last + 1));
    const int border = far ? last : 0;
    const CQuadT& cell = across ? m_Torn.m_Tree.CellAt(0, border, along) : m_Torn.m_Tree.CellAt(0, along, border);
    return cell.HasFlag(across ? (far ? 2U : 8U) : (far ? 4U : 1U));
  }

  CTestTree m_Torn{GetParam().m_iLevel, 0};
};
TEST_P(TearReachTest, IsTheSameAtEveryBorder) {
  for (const bool across : {true, false}) {
    for (const bool far : {true, false}) {
      EXPECT_EQ(Reaches(across, far), GetParam().m_bReaches)
          << (across ? "across" : "upwards") << (far ? ", at the far border" : "");
    }
  }
}
// A pixel of a picture with 128 of them.
INSTANTIATE_TEST_SUITE_P(Pixel, TearReachTest,
                         testing::Values(CReach{100, 7, 0.05, true}, CReach{100, 7, 0.116, true},
                                         CReach{150, 7, 0.174, true}, CReach{100, 7, 0.39, true},
                                         CReach{100, 7, 100.0 / 256, true}, CReach{100, 8, 100.0 / 256, true},
                                         CReach{100, 8, 0.394, false}, CReach{100, 7, 0.394, false},
                                         CReach{1000, 7, 3.9, true}, CReach{1000, 7, 3.94, false},
                                         CReach{10, 7, 0.039, true}, CReach{1, 7, 0.0039, true},
                                         CReach{1, 7, 0.00394, false}));
// As a file with six digits keeps a pixel of a picture that wide.
INSTANTIATE_TEST_SUITE_P(SavedPixel, TearReachTest,
                         testing::Values(CReach{150, 7, 0.586, true}, CReach{1000, 7, 3.907, true}));
INSTANTIATE_TEST_SUITE_P(HalfAStep, TearReachTest,
                         testing::Values(CReach{100, 5, 1.56, true}, CReach{100, 5, 1.6, false},
                                         CReach{100, 6, 0.78, true}, CReach{100, 6, 0.8, false},
                                         CReach{0.5, 4, 0.0156, true}, CReach{0.5, 4, 0.016, false}));
// As far out as the cursor goes, but no other place between there and the border.
INSTANTIATE_TEST_SUITE_P(HeldCursor, TearReachTest,
                         testing::Values(CReach{20, 7, 0.1, true}, CReach{20, 7, 0.099, false},
                                         CReach{20, 7, 0.101, false}, CReach{25, 7, 0.1, true},
                                         CReach{10, 7, 0.1, true}, CReach{10, 7, 0.05, false}, CReach{1, 7, 0.1, true},
                                         CReach{1, 7, 0.05, false}, CReach{0.5, 4, 0.05, true},
                                         CReach{0.5, 4, 0.08, false}, CReach{0.5, 4, 0.03, false}));

TEST(TearTest, OpenEndInACornerIsContinuedTheShortestWay) {
  const CCells lower = Torn({{0.3, 0.2}, {3.5, 3.1}});
  EXPECT_EQ(lower.at({0, 0}) & 1U, 1U);
  const CCells left = Torn({{0.2, 0.3}, {3.1, 3.5}});
  EXPECT_EQ(left.at({0, 0}) & 8U, 8U);
}

TEST(TearTest, PartOutsideTheModelIsLeftOut) {
  EXPECT_EQ(Torn({{-5, 5.5}, {1.5, 5.5}}), Torn({{0, 5.5}, {1.5, 5.5}}));
  EXPECT_EQ(Torn({{-5, 5.5}, {-1, 9.5}}), CCells{});
  EXPECT_EQ(Torn({{-5, 20}, {20, 21}}), CCells{});
  EXPECT_EQ(Torn({{-1e9, 5.5}, {1e9, 5.5}}).size(), 16U);
}

TEST(TearTest, TwoCurvesAddTheirMarks) {
  CRasterTree tree;
  tree.Draw({{2.5, 5.1}, {2.6, 5.1}}, CurveType::kPosition);
  tree.Draw({{2.1, 5.5}, {2.1, 5.6}}, CurveType::kPosition);
  EXPECT_EQ(tree.Marked(), (CCells{{{2, 5}, 9}}));
  tree.Draw({{2.9, 5.5}, {2.9, 5.6}}, CurveType::kPosition);
  EXPECT_EQ(tree.Marked(), (CCells{{{2, 5}, 15}})) << "three of four make all";
}

// Messages.

std::string Said(const CPlaces& places, CurveType type) {
  CRasterTree tree;
  CTestCurve curve(places, false, type);
  tree.m_Console.Take();
  CCurveRasteriser(tree.m_Tree).Rasterise(curve.m_Curve);
  EXPECT_TRUE(tree.Marked().empty());
  return tree.m_Console.Take();
}

TEST(RasteriserMessagesTest, CurveWithoutNodesIsSilent) {
  EXPECT_EQ(Said({}, CurveType::kPosition), "");
  EXPECT_EQ(Said({}, CurveType::kNormal), "");
}
TEST(RasteriserMessagesTest, OnePointIsABigProblem) {
  EXPECT_EQ(Said({{3, 3}}, CurveType::kPosition), "Error : there shouldn't be a one point curve\t\t'BIG' PROBLEM\n");
  EXPECT_EQ(Said({{3, 3}}, CurveType::kNormal),
            "Error : There shouldn't be a one point curve (Normal discontinuity)\n");
}
TEST(RasteriserMessagesTest, SegmentWithoutLengthIsSkipped) {
  EXPECT_EQ(Said({{3, 3}, {3, 3}}, CurveType::kPosition), "Error scan_conv_line0_y : y0==y1\n");
  EXPECT_EQ(Said({{3, 3}, {3, 3}}, CurveType::kNormal), "y0==y1 in scan_conv_line_y\n");
}
TEST(RasteriserMessagesTest, NodeAtNoPlaceIsSkipped) {
  EXPECT_EQ(Said({{3, 3}, {NAN, 4}}, CurveType::kPosition), "Error ScanTear : a node is not at a finite place\n");
  EXPECT_EQ(Said({{3, 3}, {HUGE_VAL, 4}}, CurveType::kNormal), "Error ScanCrease : a node is not at a finite place\n");
}
TEST(RasteriserMessagesTest, ScansRefuseSegmentsWithoutExtentAlongTheirAxis) {
  CRasterTree tree;
  CCurveRasteriser rasteriser(tree.m_Tree);
  rasteriser.scan_conv_line0_x({2, 3, 2, 5});
  rasteriser.scan_conv_line0_y({2, 3, 4, 3});
  rasteriser.scan_conv_line_x({2, 3, 2, 5});
  rasteriser.scan_conv_line_y({2, 3, 4, 3});
  EXPECT_EQ(tree.m_Console.Take(),
            "Error scan_conv_line0_x : x0==x1\nError scan_conv_line0_y : y0==y1\n"
            "x0==x1 in scan_conv_line_x\ny0==y1 in scan_conv_line_y\n");
}
TEST(RasteriserMessagesTest, RestOfTheCurveIsRasterisedAllTheSame) {
  EXPECT_EQ(Torn({{2.5, 5.5}, {2.5, 5.5}, {4.5, 5.5}}), Torn({{2.5, 5.5}, {4.5, 5.5}}));
}

TEST(RasteriserTest, FairnessCurveLeavesNoTrace) {
  CRasterTree tree;
  tree.Draw({{2, 2}, {9, 9}}, CurveType::kFairness);
  EXPECT_TRUE(tree.Marked(~0U).empty());
  EXPECT_TRUE(tree.CreasePoints().empty());
  EXPECT_EQ(tree.m_Tree.LeafCount(), 1);
}

TEST(RasteriserTest, TearComesBeforeCrease) {
  CRasterTree tree;
  tree.Draw({{2.1, 5.5}, {6.9, 5.5}}, CurveType::kPosition | CurveType::kNormal);
  EXPECT_EQ(tree.Marked().size(), 5U);
  EXPECT_TRUE(tree.CreasePoints().empty());
}

// Creases.

using CPoints = std::vector<std::array<int, 2>>;

TEST(CreaseTest, PointsAreThoseNearestToTheLine) {
  EXPECT_EQ(Creased({{2.1, 5.4}, {5.3, 5.4}}), (CPoints{{2, 5}, {3, 5}, {4, 5}, {5, 5}}));
  EXPECT_EQ(Creased({{5.6, 2}, {5.6, 4}}), (CPoints{{6, 2}, {6, 3}, {6, 4}}));
  EXPECT_EQ(Creased({{2, 3}, {6, 4}}), (CPoints{{2, 3}, {3, 3}, {4, 4}, {5, 4}, {6, 4}}));
  EXPECT_EQ(Creased({{3, 2}, {4, 6}}), (CPoints{{3, 2}, {3, 3}, {4, 4}, {4, 5}, {4, 6}}));
}
TEST(CreaseTest, DirectionOfTravelMakesNoDifference) {
  EXPECT_EQ(Creased({{6, 4}, {2, 3}}), Creased({{2, 3}, {6, 4}}));
  EXPECT_EQ(Creased({{4, 2}, {3, 6}}), Creased({{3, 6}, {4, 2}}));
}
TEST(CreaseTest, CurveWithinOnePointMarksIt) { EXPECT_EQ(Creased({{2.1, 5.1}, {2.3, 5.2}}), (CPoints{{2, 5}})); }
TEST(CreaseTest, ClosingSegmentIsCreased) {
  EXPECT_EQ(Creased({{2, 2}, {4, 2}, {4, 4}}).size(), 5U);
  EXPECT_EQ(Creased({{2, 2}, {4, 2}, {4, 4}}, true).size(), 6U);
}
TEST(CreaseTest, PartOutsideTheModelIsLeftOut) {
  EXPECT_EQ(Creased({{-5, 3}, {2, 3}}), (CPoints{{0, 3}, {1, 3}, {2, 3}}));
  EXPECT_EQ(Creased({{14, 3}, {1e9, 3}}), (CPoints{{14, 3}, {15, 3}, {16, 3}}));
  EXPECT_EQ(Creased({{-5, -3}, {20, -3}}), CPoints{});
}
TEST(CreaseTest, CellsOnBothSidesAreFine) {
  CRasterTree tree;
  tree.Draw({{2, 5}, {5, 5}}, CurveType::kNormal);
  for (int row = 4; row <= 5; ++row) {
    for (int column = 1; column <= 5; ++column) EXPECT_TRUE(tree.m_Tree.CellAt(0, column, row).IsActive());
  }
  for (const auto& [column, row] : tree.CreasePoints())
    EXPECT_TRUE(tree.m_Lattice.Has(tree.m_Lattice.Index(column, row), PointFlag::kInUse));
}
TEST(CreaseTest, CellsOnBothSidesAreFineAlsoWhereTheyHaveNoParentInCommon) {
  CRasterTree across;
  across.Draw({{2, 8}, {5, 8}}, CurveType::kNormal);
  CRasterTree upwards;
  upwards.Draw({{8, 2}, {8, 5}}, CurveType::kNormal);
  for (const int beside : {7, 8}) {
    for (int along = 1; along <= 5; ++along) {
      EXPECT_TRUE(across.m_Tree.CellAt(0, along, beside).IsActive()) << along << ", " << beside;
      EXPECT_TRUE(upwards.m_Tree.CellAt(0, beside, along).IsActive()) << beside << ", " << along;
    }
  }
}
TEST(CreaseTest, DiagonalOfACellIsMarked) {
  constexpr std::uint32_t kBothCreases = CellFlag::kRisingCrease | CellFlag::kFallingCrease;
  CRasterTree rising;
  rising.Draw({{2, 5}, {4, 7}}, CurveType::kNormal);
  EXPECT_EQ(rising.Marked(kBothCreases), (CCells{{{2, 5}, 16}, {{3, 6}, 16}}));
  CRasterTree falling;
  falling.Draw({{2, 7}, {4, 5}}, CurveType::kNormal);
  EXPECT_EQ(falling.Marked(kBothCreases), (CCells{{{2, 6}, 32}, {{3, 5}, 32}}));
  CRasterTree straight;
  straight.Draw({{2, 7}, {6, 7}}, CurveType::kNormal);
  EXPECT_TRUE(straight.Marked(kBothCreases).empty());
}
TEST(CreaseTest, PointsOfTwoCurvesMarkTheCellBetweenThem) {
  CRasterTree tree;
  CTestCurve first({{2, 5}, {2, 3}}, false, CurveType::kNormal);
  CTestCurve second({{3, 6}, {3, 8}}, false, CurveType::kNormal);
  CCurveRasteriser rasteriser(tree.m_Tree);
  rasteriser.Rasterise(first.m_Curve);
  rasteriser.Rasterise(second.m_Curve);
  rasteriser.MarkCreaseDiagonals();
  EXPECT_EQ(tree.Marked(CellFlag::kRisingCrease), (CCells{{{2, 5}, 16}}));
}
TEST(CreaseTest, BorderPointsHaveNoCellBeyond) {
  CRasterTree tree;
  tree.Draw({{0, 0}, {0, 16}, {16, 16}, {16, 0}}, CurveType::kNormal, true);
  EXPECT_EQ(tree.CreasePoints().size(), 64U);
  EXPECT_EQ(tree.Marked(CellFlag::kRisingCrease | CellFlag::kFallingCrease).size(), 4U) << "across the corners";
}

// Single cells.

TEST(FinestCellsTest, MaskIsSetAndCleared) {
  CRasterTree tree;
  RefineToPoint(tree.m_Tree, 3.5, 4.5);
  SetGridCellMask2(tree.m_Tree, 3, 4, 48, 1);
  EXPECT_EQ(tree.Marked(63), (CCells{{{3, 4}, 48}}));
  SetGridCellMask2(tree.m_Tree, 3, 4, 16, 0);
  EXPECT_EQ(tree.Marked(63), (CCells{{{3, 4}, 32}}));
  EXPECT_EQ(tree.m_Console.Take(), "");
}
TEST(FinestCellsTest, MaskOfACellThatIsNotThereIsRefused) {
  CRasterTree tree;
  const std::string refusal = "Error SetGridCellMask2 : trying to mark a cell that is not currently subdivided\n";
  for (const auto& [column, row] : CPoints{{3, 4}, {-1, 2}, {2, -1}, {16, 2}, {2, 16}}) {
    SetGridCellMask2(tree.m_Tree, column, row, 16, 1);
    EXPECT_EQ(tree.m_Console.Take(), refusal);
  }
  EXPECT_TRUE(tree.Marked(~0U).empty());
}
TEST(FinestCellsTest, RefinementReachesTheCellOfThePoint) {
  CRasterTree tree;
  RefineToPoint(tree.m_Tree, 16, 16);
  EXPECT_TRUE(tree.m_Tree.CellAt(0, 15, 15).IsActive());
  const int leaves = tree.m_Tree.LeafCount();
  RefineToPoint(tree.m_Tree, 15.2, 15.9);
  for (const auto& [gx, gy] : CPlaces{{-0.1, 3}, {3, 16.1}, {NAN, 3}}) RefineToPoint(tree.m_Tree, gx, gy);
  EXPECT_EQ(tree.m_Tree.LeafCount(), leaves);
}

TEST(GridSegmentTest, ClippingKeepsEndsInside) {
  CGridSegment s{-2, 4, 6, 8};
  ASSERT_TRUE(s.Clip(16));
  EXPECT_EQ((std::array{s.x0, s.y0, s.x1, s.y1}), (std::array{0.0, 5.0, 6.0, 8.0}));
  CGridSegment touching{-1, 1, 1, -1};
  EXPECT_FALSE(touching.Clip(16)) << "a corner has no length";
  CGridSegment along{0, 2, 0, 30};
  ASSERT_TRUE(along.Clip(16));
  EXPECT_EQ(along.y1, 16);
}

}  // namespace
