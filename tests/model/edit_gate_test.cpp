// What edits and gestures leave for the next tick, and that they have it shown.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CurveGrid.h"

namespace {

using Hold = CEditGate::Hold;
using GestureEnd = CEditGate::GestureEnd;

struct CGateGrid : CCurveGrid {
  CGateGrid() {
    Add(kPath);
    m_Grid.PerformPendingWork();
    m_Host.m_iRedraws = 0;
  }
};

struct CEditCase {
  std::string m_Name;
  std::function<void(CGrid&)> m_Edit;
  Operation m_Posted;
};

TEST(EditGateTest, EveryEditChangesTheSketchPostsItsCodeAndIsShown) {
  const auto select = [](CGrid& grid) { grid.PickCurve(4, 22, CurveType::kAll); };
  const std::vector<CEditCase> cases{
      {"add", [](CGrid& g) { g.AddPtCstr(HeightCstr(7, 21.5, 2)); }, Operation::kRebuild},
      {"point of a curve", [](CGrid& g) { g.CurveEdits().AppendPending(1, 22); }, Operation::kNone},
      {"curve",
       [](CGrid& g) {
         g.AddCurve(PointsAt({{1, 21}, {2, 25}}), kCrease, false);
       },
       Operation::kNewCurve},
      {"node", [&](CGrid& g) { select(g), g.MoveSelectedCurve(1, 0, CurveType::kAll); }, Operation::kNone},
      {"type", [&](CGrid& g) { select(g), g.CurveEdits().SetSelectedType(kCrease); }, Operation::kNone},
      {"node deleted", [&](CGrid& g) { select(g), g.DeleteSelectedCurveNode(); }, Operation::kRebuildMaps},
      {"curve deleted", [&](CGrid& g) { select(g), g.DeleteSelectedCurve(); }, Operation::kRebuildMaps},
      {"cell", [](CGrid& g) { g.CellEdits().RefineAt(8.2, 22.1); }, Operation::kRebuildMaps},
  };
  for (const CEditCase& c : cases) {
    SCOPED_TRACE(c.m_Name);
    CGateGrid test;
    const CSketch before = test.m_Grid.Sketch();
    c.m_Edit(test.m_Grid);
    EXPECT_NE(test.m_Grid.Sketch(), before);
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), c.m_Posted);
    EXPECT_EQ(test.m_Host.m_iRedraws, 1);
  }
}

TEST(EditGateTest, ALightIsSetOnceAndShown) {
  CGateGrid test;
  CLight light = *test.m_Grid.GetLightSource(2, kAddedLights);
  light.m_bActive = true;
  for (int k = 0; k < 2; ++k) test.m_Grid.SetLight(2, kAddedLights, light);
  EXPECT_EQ(*test.m_Grid.GetLightSource(2, kAddedLights), light);
  EXPECT_EQ(test.m_Host.m_iRedraws, 1);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
  test.m_Grid.SetLight(5, kAddedLights, CLight{});
  EXPECT_EQ(test.m_Host.m_iRedraws, 1);
}

TEST(EditGateTest, ACurveHeldTakesEffectWhenItIsLetGo) {
  for (const bool moved : {false, true}) {
    for (const GestureEnd end : {GestureEnd::Released, GestureEnd::Interrupted}) {
      CGateGrid test;
      test.m_Grid.PickCurve(4, 22, CurveType::kAll);
      test.m_Grid.Gate().BeginGesture(Hold::Curve);
      if (moved) test.m_Grid.MoveSelectedCurve(1, 0, CurveType::kAll);
      EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
      test.m_Grid.Gate().EndGesture(end);
      const bool posts = moved || end == GestureEnd::Released;
      EXPECT_EQ(test.m_Grid.Run().NextOperation(), posts ? Operation::kRebuildMaps : Operation::kNone);
    }
  }
}

TEST(EditGateTest, AGestureEndsOnceAndHandsNothingToTheNext) {
  CGateGrid test;
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.Gate().BeginGesture(Hold::Curve);
  test.m_Grid.MoveSelectedCurve(1, 0, CurveType::kAll);
  test.m_Grid.Gate().EndGesture(GestureEnd::Interrupted);
  test.m_Grid.PerformPendingWork();
  test.m_Grid.Gate().EndGesture(GestureEnd::Released);
  test.m_Grid.Gate().BeginGesture(Hold::Curve);
  test.m_Grid.Gate().EndGesture(GestureEnd::Interrupted);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(EditGateTest, WhatIsNoCurvePostsNothingWhenItIsLetGo) {
  CGateGrid test;
  test.m_Grid.Gate().BeginGesture(Hold::Other);
  test.m_Grid.Gate().EndGesture(GestureEnd::Released);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(EditGateTest, ReleasedForItsAttributesACurvePostsNothingOverThem) {
  CGateGrid test;
  test.m_Grid.Gate().BeginGesture(Hold::Curve);
  test.m_Grid.Run().Post(Operation::kContourAttributes);
  test.m_Grid.Gate().EndGesture(GestureEnd::Released);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kContourAttributes);
}

}  // namespace
