// Mouse and keys in the image view tell the heights and slopes that they select and drag.

#include <string>
#include <vector>

#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/gui/ImageViewTest.h"
#include "ui/seams/HelpTexts.h"

namespace {

using Texts = std::vector<std::string>;

constexpr CRamp kRamp{0.25, -0.5, 4};

// Over the ramp, on 0..100 by 0..100.
class DraggedValuesTest : public ImageViewTest {
 protected:
  DraggedValuesTest() {
    SetSurface(Grid(), kRamp);
    Attach();
    View().SetMode(EditingMode::Position);
  }
  void Add(const CPtCstr& record) {
    Grid().AddPtCstr(record);
    Grid().PerformPendingWork();
    m_Host = {};
    TakeConsole();
  }
  std::string Shown() const { return m_Host.m_aMessages.empty() ? "" : m_Host.m_aMessages.back(); }
  const Texts& Told() const { return m_Host.m_aTold; }
};

std::string HeightText(double height, double was) {
  return "height " + HelpNumber(height, 1) + ", was " + HelpNumber(was, 1);
}

}  // namespace

TEST_F(DraggedValuesTest, AClickShowsTheHeightOfTheNewConstraintAndOfOneThatIsThere) {
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  EXPECT_EQ(Shown(), "height " + HelpNumber(kRamp(20.5, 20.5), 1));
  Release();
  Add(HeightCstr(60.5, 60.5, 44.8));
  for (const int button : {FL_LEFT_MOUSE, FL_MIDDLE_MOUSE, FL_RIGHT_MOUSE}) {
    m_Host = {};
    Push(button, 60.5, 60.5);
    Release(button);
    EXPECT_EQ(Shown(), "height 44.8") << button;
    EXPECT_TRUE(Told().empty()) << "nothing was dragged";
  }
}

TEST_F(DraggedValuesTest, TabAndWheelShowTheHeightSelected) {
  Add(HeightCstr(20.5, 20.5, 1.5));
  Add(HeightCstr(60.5, 20.5, -7));
  Key(FL_Tab);
  EXPECT_EQ(Shown(), "height 1.5");
  Key(FL_Tab);
  EXPECT_EQ(Shown(), "height -7");
  Key(FL_Tab, FL_SHIFT);
  EXPECT_EQ(Shown(), "height 1.5");
  Wheel(1);
  EXPECT_EQ(Shown(), "height -7");
}

TEST_F(DraggedValuesTest, DeletionShowsTheNextOneAndEscapeTheHelp) {
  Add(HeightCstr(20.5, 20.5, 1.5));
  Add(HeightCstr(60.5, 20.5, -7));
  Key(FL_Tab);
  Key(FL_Delete);
  EXPECT_EQ(Shown(), "height -7");
  EXPECT_EQ(m_Host.m_iHelpsRestored, 0);
  Key(FL_Escape);
  EXPECT_EQ(m_Host.m_iHelpsRestored, 1);
}

TEST_F(DraggedValuesTest, NewHeightIsShownBesideThatOfTheSurface) {
  const double was = kRamp(20.5, 20.5);
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  for (const double up : {10.0, 38.0}) {
    Drag(20.5, 20.5 + up);
    EXPECT_EQ(Shown(), HeightText(was + up, was));
  }
  EXPECT_TRUE(Told().empty()) << "the drag goes on";
  Release();
  EXPECT_EQ(Told(), Texts{HeightText(was + 38, was)});
}

TEST_F(DraggedValuesTest, HeightDraggedLaterIsShownBesideThatOfTheSurfaceToo) {
  Add(HeightCstr(20.5, 20.5, 44.8));
  Push(FL_RIGHT_MOUSE, 20.5, 20.5);
  Drag(25.5, 20.5);
  Release(FL_RIGHT_MOUSE);
  EXPECT_EQ(Told(), Texts{HeightText(49.8, kRamp(20.5, 20.5))});
  Push(FL_RIGHT_MOUSE, 20.5, 20.5);
  Release(FL_RIGHT_MOUSE);
  EXPECT_EQ(Told().size(), 1U);
}

TEST_F(DraggedValuesTest, MovingKeepsTheValueOnShow) {
  Add(HeightCstr(20.5, 20.5, 44.8));
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  Drag(50.5, 50.5);
  Release();
  EXPECT_EQ(Shown(), "height 44.8");
  EXPECT_TRUE(Told().empty());
}

TEST_F(DraggedValuesTest, HoveringLeavesTheMessage) {
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  Release();
  Move(60.5, 60.5);
  SendAt(FL_ENTER, 70.5, 60.5);
  EXPECT_EQ(m_Host.m_iHelpsRestored, 0);
  EXPECT_TRUE(m_Host.m_aiHelps.empty());
}

// Along x = 40.5 the surface is torn.
TEST_F(DraggedValuesTest, AHeightMovedIntoATearSaysThatItHasNoEffect) {
  Grid().AddCurve(std::vector{HeightCstr(40.5, 0, 0), HeightCstr(40.5, 100, 0)}, CurveType::kPosition, false);
  Grid().AddPtCstr(HeightCstr(60.5, 50.5, 44.8));
  Grid().PerformPendingWork();
  Push(FL_LEFT_MOUSE, 60.5, 50.5);
  Drag(40.5, 50.5);
  EXPECT_EQ(Shown(), "height 44.8. It has no effect, because it lies in a tear");
  Drag(30.5, 50.5);
  EXPECT_EQ(Shown(), "height 44.8");
}

TEST_F(DraggedValuesTest, SlopesAreShownBesideThoseOfTheSurface) {
  View().SetMode(EditingMode::Normal);
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  EXPECT_EQ(Shown(), "slope (0, 0)");
  Drag(25.5, 18.5);
  EXPECT_EQ(Shown(), "slope (-2, 0.8), was (0.25, -0.5)");
  Release();
  EXPECT_EQ(Told(), Texts{"slope (-2, 0.8), was (0.25, -0.5)"});
}

TEST_F(DraggedValuesTest, KeysAndDialogsEndADragWithItsLine) {
  for (const int key : {FL_Escape, FL_Tab, FL_Delete, 0}) {
    CStaging::Constraints(Grid()).Points().clear();
    Add(HeightCstr(20.5, 20.5, 44.8));
    Push(FL_RIGHT_MOUSE, 20.5, 20.5);
    Drag(25.5, 20.5);
    if (key == 0) {
      View().EndDrag();
    } else {
      Key(key);
    }
    Drag(30.5, 20.5);
    Release(FL_RIGHT_MOUSE);
    EXPECT_EQ(Told(), Texts{HeightText(49.8, kRamp(20.5, 20.5))}) << key;
  }
}
