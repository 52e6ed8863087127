// The curves as the model view shows them.

#include <string>

#include <gtest/gtest.h>

#include "drawing/DrawingSettings.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/ModelViewTest.h"

namespace {

const CPlaces kAcross{{0, 23}, {9, 23}};

// Over -3.5..12.5 by 20..26, seen from the front.
class ModelCurvesTest : public ModelViewTest {
 protected:
  CPicture Frame() {
    ShowOnly(ModelFlag::kCurves);
    return FrameOf(View());
  }
  CCntrCtrl& Add(const CPlaces& places, CurveType type, bool closed = false) {
    CCntrCtrl& curve = CStaging::Constraints(Grid()).Curves().Add(PointsAt(places), type, closed);
    m_Grid.m_Console.Take();
    return curve;
  }
  // What drawing once says, without a word of the frame being read back.
  std::string DrawingLines() {
    ShowOnly(ModelFlag::kCurves);
    const CTemporaryDirectory directory;
    m_Grid.m_Console.Take();
    EXPECT_TRUE(View().SaveFrame((directory.Path() / "frame.bmp").string()));
    return m_Grid.m_Console.Take();
  }

  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
};

}  // namespace

TEST_F(ModelCurvesTest, NeedTheirFlag) {
  Add(kAcross, CurveType::kFairness);
  ShowOnly(0);
  EXPECT_EQ(CountPixels(FrameOf(View()), kBlack), kSize * kSize);
  EXPECT_LT(CountPixels(Frame(), kBlack), kSize * kSize);
}

TEST_F(ModelCurvesTest, LieOnTheSurface) {
  SetSurface(Grid(), CRamp{0, 0, 2});
  Add(kAcross, CurveType::kFairness);
  View().ResetCamera();
  const CPicture frame = Frame();
  for (const double x : {0.0, 3.0, 6.0, 9.0}) EXPECT_NE(ColourAt(frame, x, 23), kBlack) << x;
  EXPECT_EQ(ColourAt(frame, 4.5, 24), kBlack);
  EXPECT_EQ(ColourAt(frame, 10, 23), kBlack);
}

TEST_F(ModelCurvesTest, AreSeenOnTheModel) {
  SetSurface(Grid(), CRamp{-0.5, 0.25, 2});
  Add(kAcross, CurveType::kNormal);
  View().ResetCamera();
  const CRgb curve = ColourAt(Frame(), 4.5, 23);
  ShowOnly(ModelFlag::kTexturedModel | ModelFlag::kCurves);
  EXPECT_EQ(ColourAt(FrameOf(View()), 4.5, 23), curve);
}

TEST_F(ModelCurvesTest, ClosedOnesReturnToTheirFirstNode) {
  CCntrCtrl& curve = Add({{0, 22}, {8, 22}, {8, 25}}, CurveType::kFairness, true);
  EXPECT_NE(ColourAt(Frame(), 4, 23.5), kBlack);
  curve.SetClosed(false);
  EXPECT_EQ(ColourAt(Frame(), 4, 23.5), kBlack);
}

TEST_F(ModelCurvesTest, TypesAndStatesAreToldApart) {
  CCntrCtrl& curve = Add(kAcross, CurveType::kPosition);
  std::vector<CRgb> colours;
  for (const CurveType type : {CurveType::kPosition, CurveType::kNormal, CurveType::kFairness}) {
    curve.SetType(type);
    colours.push_back(ColourAt(Frame(), 4.5, 23));
  }
  EXPECT_FALSE(colours[0] == colours[1] || colours[1] == colours[2] || colours[0] == colours[2]);
  curve.SetState(PtCstrState::kHighlighted, true);
  EXPECT_GT(CountPixels(Frame(), kBlue), 100);
  EXPECT_EQ(ColourAt(Frame(), 4.5, 23), colours[2]) << "the type still shows";
  curve.SetState(PtCstrState::kSelected, true);
  EXPECT_GT(CountPixels(Frame(), kGreen), 100);
}

TEST_F(ModelCurvesTest, SelectedNodeIsSeen) {
  CCntrCtrl& curve = Add(kAcross, CurveType::kPosition);
  EXPECT_EQ(CountPixels(Frame(), kGreen), 0);
  curve.Nodes().back().SetState(PtCstrState::kSelected, true);
  EXPECT_EQ(ColourAt(Frame(), 9, 23), kGreen);
  EXPECT_NE(ColourAt(Frame(), 0, 23), kGreen);
}

TEST_F(ModelCurvesTest, MovedNodesAreFollowed) {
  CCntrCtrl& curve = Add(kAcross, CurveType::kFairness);
  Frame();
  curve.Nodes().back().m_fY = 25;
  EXPECT_NE(ColourAt(Frame(), 8.95, 24.98), kBlack);
  EXPECT_EQ(ColourAt(Frame(), 7, 23), kBlack);
}

TEST_F(ModelCurvesTest, CurvesThatCannotBeDrawnAreReported) {
  Add({}, CurveType::kPosition);
  EXPECT_EQ(DrawingLines(), "Error CGrid::Draw3DCntr : attempt to draw an empty curve\n");
  CStaging::Constraints(Grid()).Curves().clear();
  Add({{3, 23}}, CurveType::kPosition);
  EXPECT_EQ(DrawingLines(),
            "Error CGrid::Draw3DCntr : attempt to draw a one-point-curve :\n"
            "\t\t\t\t\t\t   There should'n be a one-point curve\n");
  CStaging::Constraints(Grid()).Curves().clear();
  Add(kAcross, CurveType::kNone);
  EXPECT_EQ(DrawingLines(), "one unknown type contour founed!\n");
  EXPECT_EQ(ColourAt(Frame(), 4.5, 23), kWhite);
}

TEST_F(ModelCurvesTest, CurvesBehindOthersThatCannotBeDrawnAreDrawn) {
  Add({}, CurveType::kPosition);
  Add({{3, 23}}, CurveType::kPosition);
  Add(kAcross, CurveType::kFairness);
  EXPECT_NE(ColourAt(Frame(), 4.5, 23), kBlack);
  EXPECT_EQ(DrawingLines().find("unknown"), std::string::npos);
}
