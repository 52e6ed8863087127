// Proposed tears in the image view: what the mouse does to them, and how they look.

#include <algorithm>
#include <string>

#include "drawing/DrawingSettings.h"
#include "io/Bmp.h"
#include "reference/CTearProposals.h"
#include "support/CTemporaryDirectory.h"
#include "support/gui/EditingTest.h"
#include "support/gui/Pictures.h"

namespace {

class TearProposalsTest : public EditingTest {
 protected:
  TearProposalsTest() : EditingTest(EditingMode::Position) {
    // Along the middles of pixels.
    m_Proposals.Set({{{{30.5, 20}, {30.5, 80}}, false}, {{{70.5, 20}, {70.5, 80}}, false}});
  }
  void Show() { View().ShowProposals(&m_Proposals); }
  bool IsTaken(std::size_t tear) const { return m_Proposals.Items()[tear].m_bTaken; }
  void Click(double x, double y, int button = kLeftButton, int state = 0) {
    Push(button, x, y, state);
    Drag(x + 5, y + 5);
    Release(button);
  }
  CPicture Shoot() {
    View().SetDisplayFlags(0);
    Grid().Surface().Tree().ListLeaves();
    EXPECT_TRUE(View().SaveFrame(m_Scratch.File("frame.bmp")));
    return Global::LoadBMP(m_Scratch.File("frame.bmp"), 1)->m_Picture;
  }
  void OpenWindow() {
    m_Window.show();
    ASSERT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
  }
  /// Pixels of column `x` that are not the background.
  static int Drawn(const CPicture& frame, int x) {
    int drawn = 0;
    for (int y = 0; y < kSize; ++y) {
      const std::size_t pixel = 3 * (static_cast<std::size_t>(y) * kSize + static_cast<std::size_t>(x));
      if (!std::equal(&frame.m_aPixels[pixel], &frame.m_aPixels[pixel] + 3, frame.m_aPixels.data())) ++drawn;
    }
    return drawn;
  }

  CTemporaryDirectory m_Scratch;
  CTearProposals m_Proposals;
};

}  // namespace

TEST_F(TearProposalsTest, APressWithinReachSwitchesAndDoesNothingElse) {
  Show();
  Click(31, 50);
  EXPECT_FALSE(IsTaken(0));
  EXPECT_TRUE(IsTaken(1));
  EXPECT_TRUE(List().empty());
  Click(31, 50);
  EXPECT_TRUE(IsTaken(0));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(TearProposalsTest, OtherPressesAreTheModes) {
  Show();
  Click(50, 50);
  EXPECT_EQ(List().size(), 1U);
  const CExtent before = View().Mapping().Visible();
  Click(31, 50, kLeftButton, FL_SHIFT);
  EXPECT_NE(View().Mapping().Visible().x0, before.x0) << "Shift moves the view";
  EXPECT_EQ(m_Proposals.TakenCount(), 2U);
}

TEST_F(TearProposalsTest, RightPressesAreTheModes) {
  Show();
  Click(31, 50, kRightButton);
  Click(31, 50, kMiddleButton);
  EXPECT_EQ(m_Proposals.TakenCount(), 2U);
}

TEST_F(TearProposalsTest, WhatIsNotShownIsNotFound) {
  Click(31, 50);
  EXPECT_EQ(List().size(), 1U);
  Show();
  View().ShowProposals(nullptr);
  Click(71, 50);
  EXPECT_EQ(List().size(), 2U);
  EXPECT_EQ(m_Proposals.TakenCount(), 2U);
}

TEST_F(TearProposalsTest, NoneIsFoundWhileACurveIsInProgress) {
  Show();
  View().SetMode(EditingMode::Curve);
  View().SetCurveType(CurveType::kPosition);
  Click(50, 20);
  Click(31, 50);
  EXPECT_EQ(Grid().Constraints().PendingCurve().Points().size(), 2U);
  EXPECT_EQ(m_Proposals.TakenCount(), 2U);
  Key(FL_Escape);
  Click(31, 50);
  EXPECT_EQ(m_Proposals.TakenCount(), 1U);
}

TEST_F(TearProposalsTest, NoneIsFoundWhileCellsAreSelected) {
  Show();
  View().SetDebugFlags(DebugFlag::kSelectCells);
  Click(31, 50);
  EXPECT_EQ(m_Proposals.TakenCount(), 2U);
}

TEST_F(TearProposalsTest, TheyAreThinAndDashed) {
  OpenWindow();
  const CPicture without = Shoot();
  Show();
  const CPicture with = Shoot();
  EXPECT_EQ(Drawn(without, 30), 0);
  EXPECT_GT(Drawn(with, 30), 20);
  EXPECT_LT(Drawn(with, 30), 40) << "of 60 pixels";
  EXPECT_EQ(Drawn(with, 29) + Drawn(with, 31), 0);
}

TEST_F(TearProposalsTest, OneThatIsDroppedIsPaler) {
  OpenWindow();
  Show();
  Click(31, 50);
  const CPicture frame = Shoot();
  EXPECT_LT(Drawn(frame, 30), Drawn(frame, 70));
  EXPECT_GT(Drawn(frame, 30), 5);
}

TEST_F(TearProposalsTest, NoneIsDrawnWhileCellsAreSelectedOrACurveIsInProgress) {
  OpenWindow();
  Show();
  View().SetDebugFlags(DebugFlag::kSelectCells);
  EXPECT_EQ(Drawn(Shoot(), 30), 0);
  View().SetDebugFlags(0);
  EXPECT_GT(Drawn(Shoot(), 30), 0);
  View().SetMode(EditingMode::Curve);
  Click(50, 20);
  EXPECT_EQ(Drawn(Shoot(), 30), 0);
}
