// The freeze brush in the image view.

#include <cstddef>

#include "support/gui/EditingTest.h"

namespace {

class FreezeBrushTest : public EditingTest {
 protected:
  FreezeBrushTest() : EditingTest(EditingMode::Position) { View().SetDebugFlags(DebugFlag::kFreeze); }
  std::size_t FrozenCount() { return Grid().Surface().Lattice().Count(PointFlag::kFrozen); }
  // The points of the grid lie 25 apart, the brush reaches 4.
  bool IsFrozen(int column, int row) {
    return Grid().Surface().Lattice().Has(Grid().Surface().Lattice().Index(4 * column, 4 * row), PointFlag::kFrozen);
  }
};

}  // namespace

TEST_F(FreezeBrushTest, LeftStrokeFreezesAndRightStrokeFrees) {
  EXPECT_EQ(Push(kLeftButton, 25.5, 25.5), 1);
  EXPECT_TRUE(IsFrozen(1, 1));
  EXPECT_EQ(Drag(50.5, 25.5), 1);
  EXPECT_TRUE(IsFrozen(2, 1));
  Release();
  Push(kRightButton, 25.5, 25.5);
  EXPECT_FALSE(IsFrozen(1, 1));
  EXPECT_TRUE(IsFrozen(2, 1));
}

TEST_F(FreezeBrushTest, StrokeIsNoEdit) {
  Push(kLeftButton, 25.5, 25.5);
  Drag(30.5, 30.5);
  Release();
  EXPECT_TRUE(List().empty());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(FreezeBrushTest, MovingPaintsNothingAndGoesOn) {
  Add(HeightCstr(25.5, 25.5, 0));
  Move(25.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
  EXPECT_EQ(Highlights(List()), "1");
}

TEST_F(FreezeBrushTest, MiddleButtonPaintsNothing) {
  Push(kMiddleButton, 25.5, 25.5);
  Drag(50.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
}

TEST_F(FreezeBrushTest, StrokeEndsWithTheRelease) {
  Push(kLeftButton, 10.5, 10.5);
  Release();
  Drag(25.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
}

TEST_F(FreezeBrushTest, DialogEndsTheStroke) {
  Push(kLeftButton, 10.5, 10.5);
  View().EndDrag();
  Drag(25.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
}

TEST_F(FreezeBrushTest, ShiftStrokeDragsTheViewInstead) {
  Push(kLeftButton, 25.5, 25.5, FL_SHIFT);
  Drag(50.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
  EXPECT_EQ(m_Host.m_iPauses, 1);
}

TEST_F(FreezeBrushTest, BrushReachesTwiceAsFarAtTwiceTheZoom) {
  g_fZoom = 2;
  // The pixel of (50.5, 53.5) lies at (51, 57) now: 7 from the point.
  PushWithoutHovering(kLeftButton, 50.5, 53.5);
  EXPECT_TRUE(IsFrozen(2, 2));
}

TEST_F(FreezeBrushTest, WithoutTheToolNothingIsPainted) {
  View().SetDebugFlags(0);
  Push(kLeftButton, 25.5, 25.5);
  EXPECT_EQ(FrozenCount(), 0U);
  EXPECT_EQ(List().size(), 1U);
}
