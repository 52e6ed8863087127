// The document of a grid as a value: what it holds, what makes another of it, and that every grid makes the same model
// of it.

#include <algorithm>
#include <array>
#include <functional>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/CSketch.h"
#include "support/ConsoleCapture.h"
#include "support/UpdateBuilders.h"

namespace {

/// Corners, size and torn triangles of the leaves.
using CLeafPlaces = std::vector<std::tuple<int, int, int, bool>>;

CLeafPlaces LeavesOf(const CGrid& grid) {
  CLeafPlaces leaves;
  grid.Surface().Tree().ForEachLeaf([&leaves](const CQuadT& leaf) {
    leaves.emplace_back(leaf.X0(), leaf.Y0(), leaf.Size(), leaf.HasFlag(CellFlag::kTriangles));
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
  EXPECT_EQ(a.Surface().Lattice().Extent(), b.Surface().Lattice().Extent());
  EXPECT_EQ(LeavesOf(a), LeavesOf(b));
  const CConstraintSystem& first = a.Solver().System();
  const CConstraintSystem& second = b.Solver().System();
  ExpectSameRows(first.Smoothness(), second.Smoothness());
  ExpectSameRows(first.Constraints().Rows(), second.Constraints().Rows());
  EXPECT_TRUE(std::ranges::equal(first.Constraints().Targets(), second.Constraints().Targets()));
}

CPtCstr PlaceAt(double x, double y) { return {x, y}; }

/// Of level 4, at the normal resolution; something in every member.
CSketch SomeSketch() {
  const ConsoleCapture console;
  CSketch sketch;
  sketch.m_Extent = kOblong;
  sketch.m_iBaseLevel = 2;
  sketch.m_iNewBaseLevel = 3;
  sketch.m_iMaxLevel = 4;
  CSubdivisionRecord record(4);
  record.SetStartLevel(2);
  record.Root().Child(1).Child(2).subdiv();
  MakeSavedLeaf(record.Root().Child(3));
  sketch.m_aSubdivisions.front() = CSubdivisionBits(record);
  RandomiseRecord(record, 1);
  sketch.m_aSubdivisions.back() = CSubdivisionBits(record);
  sketch.m_ListHeaders = {3, 1, 4};
  for (const CPtCstr& constraint : SomeConstraints()) sketch.m_Points.Add(constraint);
  const std::array tear{PlaceAt(-1, 21), PlaceAt(3, 24), PlaceAt(5, 25)};
  sketch.m_Curves.Add(tear, CurveType::kPosition, false).SetOption(CurveOption::kLeftAutoBump, true);
  const std::array loop{PlaceAt(7, 21), PlaceAt(11, 21.5), PlaceAt(9, 25)};
  sketch.m_Curves.Add(loop, CurveType::kFairness, true).SetAllWeights(1, 2, 3, 4);
  sketch.m_PendingCurve.Append(2, 22);
  return sketch;
}

void Begin(CGrid& grid, const CSketch& sketch) {
  grid.TakeOver(sketch);
  grid.SetDiscMap();
  grid.Surface().Reconstruct();
}

TEST(Sketch, OfAGridThatHasTakenOneOverIsTheSame) {
  const CSketch sketch = SomeSketch();
  CTestGrid test(6, 3);
  Begin(test.m_Grid, sketch);
  EXPECT_EQ(test.m_Grid.Sketch(), sketch);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Level(), 4);
  EXPECT_EQ(test.m_Grid.Wanted().BaseLevel(), 2);
  EXPECT_EQ(g_iBaseLevel, 3);
  EXPECT_EQ(g_iMaxLevel, 4);
  EXPECT_EQ(test.m_Grid.Constraints().Points().size(), SomeConstraints().size());
  EXPECT_EQ(test.m_Grid.Surface().MaxHeight(), 0.0);
}

TEST(Sketch, WithoutSubdivisionsBeginsAsANewGrid) {
  CTestGrid test(3, 2);
  const CSketch whole = test.m_Grid.Sketch();
  CSketch sketch = whole;
  sketch.m_aSubdivisions = {};
  EXPECT_NE(sketch, whole);
  CTestGrid other(5, 4);
  other.m_Grid.TakeOver(sketch);
  EXPECT_EQ(other.m_Grid.Sketch(), whole);
}

TEST(Sketch, IsACopyThatWritesNothing) {
  const CSketch sketch = SomeSketch();
  CSketch copy;
  EXPECT_EQ(ConsoleTextOf([&] { copy = sketch; }), "");
  EXPECT_EQ(copy, sketch);
  copy.m_Curves.back().Nodes().front().m_fX += 1;
  EXPECT_NE(copy, sketch);
  EXPECT_EQ(sketch.m_Curves.begin()->Nodes().front().m_fX, -1);
}

TEST(Sketch, WithAnythingElseInItIsAnother) {
  const std::vector<std::function<void(CSketch&)>> edits{
      [](CSketch& s) { s.m_Extent.y1 += 1; },
      [](CSketch& s) { s.m_iBaseLevel = 1; },
      [](CSketch& s) { s.m_iNewBaseLevel = 1; },
      [](CSketch& s) { s.m_iMaxLevel = 5; },
      [](CSketch& s) { s.m_bHighRes = true; },
      [](CSketch& s) { s.m_aSubdivisions.front() = s.m_aSubdivisions.back(); },
      [](CSketch& s) { s.m_aSubdivisions.back() = s.m_aSubdivisions.front(); },
      [](CSketch& s) { s.m_ListHeaders.m_iRegions = 0; },
      [](CSketch& s) { s.m_Points.begin()->m_fZ += 1; },
      [](CSketch& s) { s.m_Points.begin()->m_fX += 1; },
      [](CSketch& s) { std::prev(s.m_Points.end())->m_fQ += 1; },
      [](CSketch& s) { s.m_Points.begin()->SetKind(PtCstrKind::kNormal, true); },
      [](CSketch& s) { s.m_Points.Add(HeightCstr(1, 22, 0)); },
      [](CSketch& s) { s.m_Curves.back().SetType(CurveType::kNormal); },
      [](CSketch& s) { s.m_Curves.back().SetClosed(false); },
      [](CSketch& s) { s.m_Curves.back().SetOption(CurveOption::kRightAutoBump, true); },
      [](CSketch& s) { s.m_Curves.back().SetDistance(CurveSide::Right, 1); },
      [](CSketch& s) { s.m_Curves.back().Nodes().front().m_Weights.m_fLeftTorsion = 0; },
      [](CSketch& s) { s.m_Curves.back().Nodes().pop_back(); },
      [](CSketch& s) { s.m_Curves.clear(); },
      [](CSketch& s) { s.m_PendingCurve.Append(4, 22); },
      [](CSketch& s) { s.m_PendingCurve.Drop(); },
  };
  const CSketch sketch = SomeSketch();
  for (std::size_t k = 0; k < edits.size(); ++k) {
    CSketch edited = sketch;
    edits[k](edited);
    EXPECT_NE(edited, sketch) << k;
  }
}

TEST(Sketch, StaysTheSameWhileTheSolverRunsAndTheMousePoints) {
  CTestGrid test;
  Begin(test.m_Grid, SomeSketch());
  const CSketch before = test.m_Grid.Sketch();
  for (int tick = 0; tick < 3; ++tick) test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Grid.Sketch(), before);
  EXPECT_TRUE(test.m_Grid.HighlightPtCstrs(0.5, 21.25, PtCstrKind::kPosition));
  test.m_Grid.SelectPtCstr(0.5, 21.25, PtCstrKind::kPosition);
  EXPECT_NE(test.m_Grid.PickCurve(3, 24, CurveType::kAll), CurveType::kNone);
  EXPECT_EQ(test.m_Grid.Sketch(), before);
  CSketch hovered = before;
  hovered.m_PendingCurve.Hover(2, 22, 1);
  EXPECT_EQ(hovered, before);
}

TEST(Sketch, MakesTheSameModelOfEveryGrid) {
  CTestGrid test;
  Begin(test.m_Grid, SomeSketch());
  for (int tick = 0; tick < 3; ++tick) test.m_Grid.UpdateGrid();
  CTestGrid other(6, 3);
  AddAll(other.m_Grid, SomeConstraints());
  other.m_Grid.UpdateGrid();
  Begin(other.m_Grid, test.m_Grid.Sketch());
  ExpectSameModel(test.m_Grid, other.m_Grid);
}

TEST(Sketch, BringsTheOtherResolutionAlong) {
  CTestGrid test;
  Begin(test.m_Grid, SomeSketch());
  test.m_Grid.Run().Post(Operation::kTransferToHigh);
  test.m_Grid.PerformPendingWork();
  const CSketch sketch = test.m_Grid.Sketch();
  EXPECT_TRUE(sketch.m_bHighRes);
  EXPECT_EQ(sketch.m_aSubdivisions.front(), SomeSketch().m_aSubdivisions.back());
  CTestGrid other;
  Begin(other.m_Grid, sketch);
  EXPECT_EQ(g_bHighRes, 1);
  ExpectSameModel(test.m_Grid, other.m_Grid);
  for (CGrid* grid : {&test.m_Grid, &other.m_Grid}) {
    grid->Run().Post(Operation::kTransferToNormal);
    grid->PerformPendingWork();
  }
  ExpectSameModel(test.m_Grid, other.m_Grid);
}

TEST(Sketch, GivesItsOwnGridBackWhatWasThere) {
  CTestGrid test;
  Begin(test.m_Grid, SomeSketch());
  const CLeafPlaces leaves = LeavesOf(test.m_Grid);
  const CSketch sketch = test.m_Grid.Sketch();
  test.Initialize(3);
  test.m_Grid.PerformPendingWork();
  ASSERT_NE(LeavesOf(test.m_Grid), leaves);
  Begin(test.m_Grid, sketch);
  EXPECT_EQ(test.m_Grid.Sketch(), sketch);
  EXPECT_EQ(LeavesOf(test.m_Grid), leaves);
}

}  // namespace
