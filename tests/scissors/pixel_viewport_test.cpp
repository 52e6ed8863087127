#include <gtest/gtest.h>

#include "scissors/CPixelViewport.h"

namespace {

// A picture of 600 x 400 in an area of 300 x 200.
CPixelViewport View() {
  CPixelViewport view(600, 400);
  view.Resize(300, 200);
  return view;
}

CPixelViewport PannedTo(CPixelPosition first) {
  CPixelViewport view = View();
  view.BeginPan(0, 0);
  view.PanTo(-first.m_iColumn, -first.m_iRow);
  return view;
}

}  // namespace

TEST(PixelViewportTest, StartsAtTheUpperLeftCornerAtZoomOne) {
  const CPixelViewport view = View();
  EXPECT_EQ(view.Zoom(), 1);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0}));
  EXPECT_EQ(view.VisibleSize(), (CPixelPosition{300, 200}));
  EXPECT_EQ(view.PixelAt(17, 23), (CPixelPosition{17, 23}));
}

TEST(PixelViewportTest, PlacesOutsideTheAreaShowNoPixel) {
  const CPixelViewport view = PannedTo({100, 100});
  for (const CPixelPosition place : {CPixelPosition{-1, 5}, {5, -1}, {300, 5}, {5, 200}}) {
    EXPECT_FALSE(view.PixelAt(place.m_iColumn, place.m_iRow).has_value());
  }
  EXPECT_TRUE(view.PixelAt(299, 199).has_value());
}

TEST(PixelViewportTest, PlacesBesideTheSmallPictureShowNoPixel) {
  CPixelViewport view(20, 10);
  view.Resize(300, 200);
  EXPECT_EQ(view.PixelAt(19, 9), (CPixelPosition{19, 9}));
  EXPECT_FALSE(view.PixelAt(20, 5).has_value());
  EXPECT_FALSE(view.PixelAt(5, 10).has_value());
  view.ZoomBy(3, 0, 0);
  EXPECT_EQ(view.PixelAt(79, 39), (CPixelPosition{19, 9}));
  EXPECT_FALSE(view.PixelAt(80, 39).has_value());
}

TEST(PixelViewportTest, ZoomStaysWithinOneAndSixteen) {
  CPixelViewport view = View();
  view.ZoomBy(-1, 10, 10);
  EXPECT_EQ(view.Zoom(), 1);
  for (int zoom = 2; zoom <= 16; ++zoom) {
    view.ZoomBy(1, 10, 10);
    EXPECT_EQ(view.Zoom(), zoom);
  }
  view.ZoomBy(1, 10, 10);
  EXPECT_EQ(view.Zoom(), 16);
}

TEST(PixelViewportTest, ZoomKeepsThePixelUnderTheCursor) {
  CPixelViewport view = PannedTo({150, 100});
  const auto pixel = view.PixelAt(140, 90);
  for (int step = 0; step < 15; ++step) {
    view.ZoomBy(1, 140, 90);
    EXPECT_EQ(view.PixelAt(140, 90), pixel);
  }
  for (int step = 0; step < 15; ++step) {
    view.ZoomBy(-1, 140, 90);
    EXPECT_EQ(view.PixelAt(140, 90), pixel);
  }
}

TEST(PixelViewportTest, WholePictureIsReducedAsLittleAsItTakes) {
  CPixelViewport view = PannedTo({150, 100});
  view.ToggleWhole(10, 10);
  EXPECT_EQ(view.Reduction(), 2);
  EXPECT_EQ(view.Zoom(), 1);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0}));
  EXPECT_EQ(view.VisibleSize(), (CPixelPosition{600, 400}));
  view.Resize(300, 100);
  EXPECT_EQ(view.Reduction(), 4);
  view.Resize(599, 400);
  EXPECT_EQ(view.Reduction(), 2);
  view.Resize(600, 400);
  EXPECT_EQ(view.Reduction(), 1) << "it fits";
  view.Resize(100, 100);
  EXPECT_EQ(view.Reduction(), 6);
}

TEST(PixelViewportTest, PlacesOfTheReducedPictureAreThePixelsInTheirMiddle) {
  CPixelViewport view(601, 403);
  view.Resize(151, 200);
  view.ToggleWhole(0, 0);
  ASSERT_EQ(view.Reduction(), 4);
  EXPECT_EQ(view.PixelAt(0, 0), (CPixelPosition{2, 2}));
  EXPECT_EQ(view.PixelAt(149, 99), (CPixelPosition{598, 398}));
  EXPECT_EQ(view.PixelAt(150, 100), (CPixelPosition{600, 402})) << "the last ones share it with none or one";
  EXPECT_FALSE(view.PixelAt(150, 101).has_value());
  EXPECT_TRUE(view.Shows({600, 402}));
  view.BeginPan(100, 100);
  view.PanTo(20, 30);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0})) << "there is nowhere to move it";
}

TEST(PixelViewportTest, FromTheWholePictureItGoesBackToTheZoomBeforeAtThePlace) {
  CPixelViewport view = View();
  view.ZoomBy(4, 0, 0);
  view.ToggleWhole(10, 10);
  const auto pixel = view.PixelAt(120, 90);
  view.ToggleWhole(120, 90);
  EXPECT_EQ(view.Zoom(), 5);
  EXPECT_EQ(view.Reduction(), 1);
  EXPECT_EQ(view.PixelAt(120, 90), pixel);
}

TEST(PixelViewportTest, FromTheReducedPictureZoomLeadsToOneAndNoFartherAway) {
  CPixelViewport view = View();
  view.ZoomBy(4, 0, 0);
  view.ToggleWhole(10, 10);
  view.ZoomBy(-1, 120, 90);
  EXPECT_EQ(view.Reduction(), 2);
  const auto pixel = view.PixelAt(120, 90);
  view.ZoomBy(1, 120, 90);
  EXPECT_EQ(view.Zoom(), 1);
  EXPECT_EQ(view.Reduction(), 1);
  EXPECT_EQ(view.PixelAt(120, 90), pixel);
  view.ToggleWhole(0, 0);
  EXPECT_EQ(view.Reduction(), 2) << "the way back is forgotten";
}

TEST(PixelViewportTest, PictureThatFitsIsShownWholeAtZoomOne) {
  CPixelViewport view(200, 100);
  view.Resize(300, 200);
  view.ZoomBy(3, 0, 0);
  view.ToggleWhole(50, 50);
  EXPECT_EQ(view.Zoom(), 1);
  EXPECT_EQ(view.Reduction(), 1);
  view.ToggleWhole(50, 50);
  EXPECT_EQ(view.Zoom(), 4);
  view.ToggleWhole(50, 50);
  view.ZoomBy(1, 50, 50);
  EXPECT_EQ(view.Zoom(), 2);
}

TEST(PixelViewportTest, EachPixelIsASquareOfTheZoom) {
  CPixelViewport view = View();
  view.ZoomBy(4, 0, 0);
  EXPECT_EQ(view.PixelAt(4, 4), (CPixelPosition{0, 0}));
  EXPECT_EQ(view.PixelAt(5, 9), (CPixelPosition{1, 1}));
  EXPECT_EQ(view.VisibleSize(), (CPixelPosition{60, 40}));
}

TEST(PixelViewportTest, PixelsCutByTheEdgeAreVisible) {
  CPixelViewport view = View();
  view.ZoomBy(6, 0, 0);
  EXPECT_EQ(view.VisibleSize(), (CPixelPosition{43, 29}));
  EXPECT_EQ(view.PixelAt(299, 199), (CPixelPosition{42, 28}));
  EXPECT_TRUE(view.Shows({42, 28}));
  EXPECT_FALSE(view.Shows({43, 28}));
}

TEST(PixelViewportTest, PanMovesByTheMouseOverTheZoom) {
  CPixelViewport view = View();
  view.ZoomBy(3, 0, 0);
  view.BeginPan(200, 150);
  view.PanTo(160, 146);
  EXPECT_EQ(view.First(), (CPixelPosition{10, 1}));
  view.PanTo(198, 150);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0}));
}

TEST(PixelViewportTest, PanInSmallStepsLosesNothing) {
  CPixelViewport view = View();
  view.ZoomBy(3, 0, 0);
  view.BeginPan(200, 150);
  for (int x = 199; x >= 160; --x) view.PanTo(x, 150);
  EXPECT_EQ(view.First(), (CPixelPosition{10, 0}));
}

TEST(PixelViewportTest, PanGoesOnFromAZoomOnItsWay) {
  CPixelViewport view = View();
  view.ZoomBy(3, 0, 0);
  view.BeginPan(200, 150);
  view.PanTo(120, 70);
  const auto pixel = view.PixelAt(120, 70);
  view.ZoomBy(2, 120, 70);
  view.PanTo(120, 70);
  EXPECT_EQ(view.PixelAt(120, 70), pixel);
}

TEST(PixelViewportTest, PanStaysWithinThePicture) {
  CPixelViewport view = View();
  view.BeginPan(0, 0);
  view.PanTo(500, 500);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0}));
  view.PanTo(-5000, -5000);
  EXPECT_EQ(view.First(), (CPixelPosition{300, 200}));
  EXPECT_EQ(view.PixelAt(299, 199), (CPixelPosition{599, 399}));
}

TEST(PixelViewportTest, LargerAreaMovesThePictureBackIntoIt) {
  CPixelViewport view = PannedTo({300, 200});
  view.Resize(500, 250);
  EXPECT_EQ(view.First(), (CPixelPosition{100, 150}));
  view.Resize(700, 500);
  EXPECT_EQ(view.First(), (CPixelPosition{0, 0}));
}
