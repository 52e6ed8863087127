// The document of a grid as a value: what it holds, what it leaves out, and that another grid makes the same of it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "quadtree/SubdivisionText.h"
#include "support/UpdateBuilders.h"

namespace {

using CLeafPlaces = std::vector<std::tuple<int, int, int, std::uint32_t>>;

CLeafPlaces LeavesOf(const CGrid& grid) {
  CLeafPlaces leaves;
  grid.Tree().ForEachLeaf([&leaves](const CQuadT& leaf) {
    leaves.emplace_back(leaf.X0(), leaf.Y0(), leaf.Size(), leaf.HasFlag(CellFlag::kTriangles) ? 1 : 0);
  });
  return leaves;
}

void ExpectSameRows(const CCompressedRows& a, const CCompressedRows& b) {
  ASSERT_EQ(a.RowCount(), b.RowCount());
  for (std::size_t row = 0; row < a.RowCount(); ++row) {
    EXPECT_TRUE(std::ranges::equal(a.Columns(row), b.Columns(row))) << row;
    EXPECT_TRUE(std::ranges::equal(a.Values(row), b.Values(row))) << row;
  }
}

void ExpectSameModel(const CGrid& a, const CGrid& b) {
  EXPECT_EQ(a.Lattice().Extent(), b.Lattice().Extent());
  EXPECT_EQ(LeavesOf(a), LeavesOf(b));
  const CConstraintSystem& first = a.Solver().System();
  const CConstraintSystem& second = b.Solver().System();
  ExpectSameRows(first.Smoothness(), second.Smoothness());
  ExpectSameRows(first.Constraints().Rows(), second.Constraints().Rows());
  EXPECT_TRUE(std::ranges::equal(first.Constraints().Targets(), second.Constraints().Targets()));
}

CPtCstr PlaceAt(double x, double y) {
  CPtCstr place;
  place.m_fX = x;
  place.m_fY = y;
  return place;
}

class SketchTest : public testing::Test {
 protected:
  SketchTest() {
    CPtCstr height = PlaceAt(1, 22);
    height.m_uKind = PtCstrKind::kPosition;
    height.m_fZ = 3;
    Grid().AddPtCstr(height);
    CPtCstr slope = PlaceAt(6.5, 23.5);
    slope.m_uKind = PtCstrKind::kNormal;
    slope.m_fP = 0.5;
    Grid().AddPtCstr(slope);
    const std::array tear{PlaceAt(-1, 21), PlaceAt(3, 24), PlaceAt(5, 25)};
    Grid().AddCurve(tear, CurveType::kPosition, false);
    const std::array loop{PlaceAt(7, 21), PlaceAt(11, 21.5), PlaceAt(9, 25)};
    Grid().AddCurve(loop, CurveType::kFairness, true);
    for (CCntrCtrl& curve : Grid().Curves()) curve.SetAllWeights(1, 2, 3, 4);
    Grid().Curves().back().SetOption(CurveOption::kLeftAutoBump, true);
    Grid().PendingCurve().Append(2, 22);
    Grid().Subdivision().Root().Child(1).Child(2).subdiv();
    MakeSavedLeaf(Grid().Subdivision().Root().Child(3));
    Grid().ListHeaders() = {3, 1, 4};
    Grid().PerformPendingWork();
  }

  CGrid& Grid() { return m_Test.m_Grid; }

  CTestGrid m_Test{4, 2};
};

TEST_F(SketchTest, HoldsWhatTheUserHasMade) {
  const CSketch sketch = Grid().Sketch();
  EXPECT_EQ(sketch.m_Extent, kOblong);
  EXPECT_EQ(sketch.m_iBaseLevel, 2);
  EXPECT_EQ(sketch.m_iMaxLevel, 4);
  EXPECT_FALSE(sketch.m_bHighRes);
  EXPECT_EQ(sketch.m_Points.size(), 2U);
  EXPECT_EQ(sketch.m_Curves.size(), 2U);
  EXPECT_EQ(sketch.m_PendingCurve.Points().size(), 1U);
  EXPECT_EQ(sketch.m_ListHeaders, (CListHeaders{3, 1, 4}));
}

TEST_F(SketchTest, CopiesAreEqualAndWriteNothing) {
  const CSketch sketch = Grid().Sketch();
  m_Test.m_Console.Take();
  CSketch copy = sketch;
  EXPECT_EQ(m_Test.m_Console.Take(), "");
  EXPECT_EQ(copy, sketch);
  copy.m_Curves.begin()->Nodes().front().m_Weights.m_fLeftTorsion += 1;
  EXPECT_NE(copy, sketch);
  EXPECT_EQ(sketch.m_Curves.begin()->Nodes().front().m_Weights.m_fLeftTorsion, 2);
}

TEST_F(SketchTest, EveryEditMakesAnother) {
  const CSketch before = Grid().Sketch();
  std::vector<CSketch> sketches{before};
  const auto expectAnother = [&] {
    sketches.push_back(Grid().Sketch());
    EXPECT_NE(sketches.back(), *(sketches.end() - 2)) << sketches.size();
  };
  Grid().PointConstraints().begin()->m_fZ = 4;
  expectAnother();
  Grid().PendingCurve().Append(4, 22);
  expectAnother();
  Grid().Curves().begin()->SetType(CurveType::kNormal);
  expectAnother();
  Grid().Curves().begin()->Nodes().back().m_fX += 0.25;
  expectAnother();
  Grid().Subdivision().Root().Child(0).subdiv();
  Grid().Subdivision().Root().Child(0).Child(0).subdiv();
  expectAnother();
  Grid().SetRectangle(kOblong.x0, kOblong.x1 + 1, kOblong.y0, kOblong.y1);
  expectAnother();
}

TEST_F(SketchTest, NeitherSolvingNorPointingMakesAnother) {
  const CSketch before = Grid().Sketch();
  for (int tick = 0; tick < 3; ++tick) Grid().UpdateGrid();
  EXPECT_EQ(Grid().Sketch(), before);
  EXPECT_TRUE(Grid().HighlightPtCstrs(1, 22, PtCstrKind::kPosition));
  Grid().SelectPtCstr(1, 22, PtCstrKind::kPosition);
  EXPECT_NE(Grid().PickCurve(3, 24, CurveType::kAll), 0U);
  EXPECT_EQ(Grid().Sketch(), before);
}

TEST_F(SketchTest, AnotherGridMakesTheSameModelOfIt) {
  const CSketch sketch = Grid().Sketch();
  CTestGrid other(6, 3);
  other.m_Grid.TakeOver(sketch);
  EXPECT_EQ(other.m_Grid.Sketch(), sketch);
  EXPECT_EQ(other.m_Grid.MaxLevel(), 4);
  EXPECT_EQ(other.m_Grid.BaseLevel(), 2);
  ExpectSameModel(Grid(), other.m_Grid);
}

TEST_F(SketchTest, TheOtherResolutionComesAlong) {
  Grid().Post(Operation::kTransferToHigh);
  Grid().PerformPendingWork();
  MakeSavedLeaf(Grid().Subdivision().Root().Child(0));
  Grid().SetDiscMap();
  const CSketch sketch = Grid().Sketch();
  EXPECT_TRUE(sketch.m_bHighRes);
  CTestGrid other(4, 2);
  other.m_Grid.TakeOver(sketch);
  EXPECT_EQ(other.m_Grid.Sketch(), sketch);
  ExpectSameModel(Grid(), other.m_Grid);
  for (CGrid* grid : {&Grid(), &other.m_Grid}) {
    g_bHighRes = 1;
    grid->Post(Operation::kRestoreNormal);
    grid->PerformPendingWork();
  }
  ExpectSameModel(Grid(), other.m_Grid);
}

TEST_F(SketchTest, AGridMayTakeItsOwnBack) {
  const CSketch sketch = Grid().Sketch();
  const CLeafPlaces leaves = LeavesOf(Grid());
  Grid().PointConstraints().clear();
  Grid().Curves().clear();
  Grid().Subdivision().SetStartLevel(1);
  Grid().SetDiscMap();
  ASSERT_NE(LeavesOf(Grid()), leaves);
  Grid().TakeOver(sketch);
  EXPECT_EQ(Grid().Sketch(), sketch);
  EXPECT_EQ(LeavesOf(Grid()), leaves);
}

TEST(SubdivisionBitsTest, TakeABitPerNodeThatCouldBeSplit) {
  CSubdivisionRecord record(2);
  record.SetStartLevel(0);
  EXPECT_EQ(SubdivisionBits(record), (std::vector<bool>{false}));
  record.SetStartLevel(2);
  EXPECT_EQ(SubdivisionBits(record), (std::vector<bool>{true, true, true, true, true}));
  record.SetStartLevel(1);
  record.Root().Child(2).subdiv();
  EXPECT_EQ(SubdivisionBits(record), (std::vector<bool>{true, false, false, true, false}));
}

TEST(SubdivisionBitsTest, ComeBackWithNothingSelected) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  record.Root().Child(2).subdiv();
  record.Root().Child(2).Child(3).subdiv();
  CSubdivisionRecord copy(3);
  copy.SetStartLevel(2);
  copy.Root().Child(1).Child(1).SetSelected(true);
  SetSubdivision(copy, SubdivisionBits(record));
  EXPECT_EQ(SubdivisionBits(copy), SubdivisionBits(record));
  EXPECT_FALSE(copy.Root().Child(1).Child(1).IsSelected());
  EXPECT_FALSE(copy.Root().Child(1).Child(1).IsLeaf());
}

}  // namespace
