// The image view in true proportions: what the mouse does in a view that is panned and whose shape is not the model's.

#include <optional>
#include <string>

#include "support/gui/EditingTest.h"
#include "support/gui/ImageViewDrawingTest.h"

namespace {

// Over 0..200 by 0..100 the view shows 200 x 200, moved by a tenth to the right and up: places with odd numbers lie
// under the middle of a pixel.
void MakeWide(CGrid& grid, CImageView& view) {
  grid.Initialize(2, false, 0, 0, 200, 100);
  view.SetDisplayFlags(ImageFlag::kAtStart | ImageFlag::kProportions);
  for (const int key : {FL_Right, FL_Up}) {
    Fl::e_state = FL_CTRL;
    Fl::e_keysym = key;
    view.handle(FL_KEYBOARD);
  }
  Fl::e_state = 0;
}

// What the fixtures of the view are told of a place, for which it is a square of 100.
CPlanePoint Told(double x, double y) { return {(x - 20) / 2, (y + 30) / 2}; }

class ProportionsTest : public EditingTest {
 protected:
  ProportionsTest() : EditingTest(EditingMode::Position) {
    MakeWide(Grid(), View());
    Settle();
  }
  void AddHeights() {
    for (const CPlanePoint& place : {CPlanePoint{51, 25}, {91, 25}, {151, 75}})
      Add({place.x, place.y, PtCstrKind::kPosition, 5});
  }
  void PushAt(int button, double x, double y) { Push(button, Told(x, y).x, Told(x, y).y); }
  void DragTo(double x, double y) { Drag(Told(x, y).x, Told(x, y).y); }
  // The points of the grid lie 50 apart across, and 25 upwards.
  bool IsFrozen(int column, int row) {
    const CLattice& lattice = Grid().Surface().Lattice();
    return lattice.Has(lattice.Index(4 * column, 4 * row), PointFlag::kFrozen);
  }
  std::size_t FrozenCount() { return Grid().Surface().Lattice().Count(PointFlag::kFrozen); }
};

class ProportionsDrawingTest : public ImageViewDrawingTest {
 protected:
  ProportionsDrawingTest() { MakeWide(Grid(), View()); }
};

}  // namespace

TEST_F(ProportionsTest, BrushFreezesWhatLiesUnderIt) {
  View().SetDebugFlags(DebugFlag::kFreeze);
  PushAt(kLeftButton, 51, 25);
  EXPECT_TRUE(IsFrozen(1, 1));
  DragTo(101, 51);
  EXPECT_TRUE(IsFrozen(2, 2));
  DragTo(151, 61);
  Release();
  EXPECT_EQ(FrozenCount(), 2U) << "the last place was off the points";
  PushAt(kRightButton, 99, 49);
  EXPECT_FALSE(IsFrozen(2, 2));
  EXPECT_TRUE(IsFrozen(1, 1));
}

TEST_F(ProportionsTest, RectangleOfAGroupHoldsWhatLiesInIt) {
  AddHeights();
  View().SetChoosing(true);
  PushAt(kLeftButton, 45, 19);
  DragTo(95, 31);
  Release();
  EXPECT_EQ(States(List(), PtCstrState::kChosen), "110");
  PushAt(kLeftButton, 151, 75);
  Release();
  EXPECT_EQ(States(List(), PtCstrState::kChosen), "111");
  PushAt(kLeftButton, 57, 19);
  DragTo(87, 81);
  Release();
  EXPECT_EQ(States(List(), PtCstrState::kChosen), "000") << "between them";
}

TEST_F(ProportionsTest, RectangleOfCellsHoldsWhatLiesInIt) {
  View().SetDebugFlags(DebugFlag::kSelectCells);
  Settle();
  PushAt(kLeftButton, 57, 29);
  DragTo(93, 45);
  Release();
  Grid().PerformPendingWork();
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      const bool inside = i == 1 && j == 1;
      EXPECT_EQ(Grid().Surface().Tree().CellAt(2, i, j).HasFlag(CellFlag::kSelected), inside) << i << ' ' << j;
    }
  }
}

TEST_F(ProportionsTest, DragsFollowTheMouse) {
  AddHeights();
  PushAt(kLeftButton, 51, 25);
  DragTo(71, 37);
  Release();
  ExpectPlace(At(0), 71, 37);
  PushAt(kRightButton, 151, 75);
  DragTo(161, 81);
  Release(kRightButton);
  EXPECT_NEAR(At(2).m_fZ, 5 + 10 + 6, 1e-9);
  ExpectPlace(At(2), 151, 75);
}

TEST_F(ProportionsDrawingTest, BrushIsDrawnUnderTheMouse) {
  // It reaches 4 model units, a fifth of the view now.
  Grid().Initialize(2, false, 0, 0, 20, 10);
  View().ResetView();
  View().SetDebugFlags(DebugFlag::kFreeze);
  Move(30.5, 60.5);
  Shoot(ImageFlag::kProportions);
  const CPixels ring = Box();
  EXPECT_NEAR((ring.m_iLeft + ring.m_iRight) / 2.0, 30, 0.5);
  EXPECT_NEAR((ring.m_iBottom + ring.m_iTop) / 2.0, 60, 0.5);
  EXPECT_NEAR(ring.m_iRight - ring.m_iLeft + 1, 40, 1);
  EXPECT_NEAR(ring.m_iTop - ring.m_iBottom + 1, 40, 1) << "as high as wide";
}

TEST_F(ProportionsDrawingTest, FramesShowWhatTheViewShows) {
  LoadPicture(Quarters(64));
  Shoot(ImageFlag::kImage | ImageFlag::kProportions);
  const auto expectPicture = [&] {
    const CPixels box = Box();
    EXPECT_EQ(box.m_iLeft, 0) << "the left edge is beside the view";
    EXPECT_EQ(box.m_iRight, 89);
    EXPECT_EQ(box.m_iBottom, 15);
    EXPECT_EQ(box.m_iTop, 64);
    EXPECT_EQ(At(37, 37), kRed);
    EXPECT_EQ(At(42, 37), kGreen);
    EXPECT_EQ(At(37, 42), kBlue);
    EXPECT_EQ(At(42, 42), kYellow);
  };
  expectPicture();
  const std::optional<CPicture> drawn = View().DrawnPicture();
  ASSERT_TRUE(drawn.has_value());
  m_Frame = *drawn;
  expectPicture();
}
