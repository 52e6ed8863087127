#include <array>
#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/Globals.h"
#include "support/MappingBuilders.h"
#include "support/TreeBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

class ViewMappingTest : public ::testing::Test {
 protected:
  ViewMappingTest() {
    m_Mapping.SetExtent(kOblong);
    m_Mapping.SetSize(400, 300);
  }
  static void ExpectPlace(const CPlanePoint& place, double x, double y) {
    EXPECT_NEAR(place.x, x, 1e-12);
    EXPECT_NEAR(place.y, y, 1e-12);
  }

  CGlobalScope<double> m_Zoom{g_fZoom, 1.0};
  CViewMapping m_Mapping;
};

}  // namespace

TEST_F(ViewMappingTest, ExtentFillsTheViewAtTheStart) {
  const CExtent shown = m_Mapping.Visible();
  EXPECT_EQ(shown.x0, kOblong.x0);
  EXPECT_EQ(shown.x1, kOblong.x1);
  EXPECT_EQ(shown.y0, kOblong.y0);
  EXPECT_EQ(shown.y1, kOblong.y1);
}

TEST_F(ViewMappingTest, PixelsStandForTheirCentres) {
  ExpectPlace(m_Mapping.ToModel(0, 0), -3.5 + 0.5 / 400 * 16, 26 - 0.5 / 300 * 6);
  ExpectPlace(m_Mapping.ToModel(399, 299), 12.5 - 0.5 / 400 * 16, 20 + 0.5 / 300 * 6);
  ExpectPlace(m_Mapping.ToModel(199.5, 149.5), 4.5, 23);
}

TEST_F(ViewMappingTest, ZoomAndPanGoIntoTheMapping) {
  g_fZoom = 0.5;
  m_Mapping.Pan(1, -2);
  const CExtent shown = m_Mapping.Visible();
  ExpectPlace({shown.x0, shown.y0}, 5.5 - 4, 21 - 1.5);
  ExpectPlace({shown.x1, shown.y1}, 5.5 + 4, 21 + 1.5);
  ExpectPlace(m_Mapping.ToModel(0, 0), shown.x0 + 0.5 / 400 * 16 * 0.5, shown.y1 - 0.5 / 300 * 6 * 0.5);
  ExpectPlace(m_Mapping.ToModelUnpanned(199.5, 149.5), 4.5, 23);
}

TEST_F(ViewMappingTest, ToPixelIsTheOpposite) {
  g_fZoom = 1.7;
  m_Mapping.Pan(0.3, 0.4);
  ExpectPlace(ToPixel(m_Mapping, 400, 300, m_Mapping.ToModel(37, 251)), 37, 251);
}

TEST_F(ViewMappingTest, ZoomFollowsTheMovementWithinItsLimit) {
  struct CCase {
    int m_iDx;
    int m_iDy;
    double m_fFactor;
  };
  for (const CCase& c : {CCase{10, 0, 1.05},
                         {0, -10, 1.05},
                         {-10, 0, 0.95},
                         {0, 10, 0.95},
                         {5, 5, 1.0},
                         {7, -3, 1.05},
                         {100, 0, 1.1},
                         {20, 0, 1.1},
                         {21, 0, 1.1},
                         {0, 100, 0.9},
                         {-1000, 0, 0.9}}) {
    g_fZoom = 2;
    CViewMapping::Zoom(c.m_iDx, c.m_iDy);
    EXPECT_DOUBLE_EQ(g_fZoom, 2 * c.m_fFactor) << c.m_iDx << ", " << c.m_iDy;
  }
}

TEST_F(ViewMappingTest, ZoomNeverSpoilsTheMapping) {
  for (const int step : {-20, 20}) {
    for (int k = 0; k < 2000; ++k) CViewMapping::Zoom(step, 0);
    const CExtent shown = m_Mapping.Visible();
    EXPECT_GT(shown.x1, shown.x0);
    EXPECT_NE(m_Mapping.ToModel(10, 0).x, m_Mapping.ToModel(11, 0).x);
  }
}

TEST_F(ViewMappingTest, ResetUndoesZoomAndPan) {
  g_fZoom = 3;
  m_Mapping.Pan(5, 6);
  m_Mapping.Reset();
  EXPECT_EQ(g_fZoom, 1.0);
  EXPECT_EQ(PanOf(m_Mapping), (CPlanePoint{0, 0}));
}

TEST_F(ViewMappingTest, PlacesAreHeldOffTheBorder) {
  const CExtent& e = kOblong;
  ExpectPlace(m_Mapping.Clamped({-100, 100}), e.x0 + 0.1, e.y1 - 0.1);
  ExpectPlace(m_Mapping.Clamped({100, -100}), e.x1 - 0.1, e.y0 + 0.1);
  ExpectPlace(m_Mapping.Clamped({3, 22}), 3, 22);
}

TEST_F(ViewMappingTest, MarginOfSmallExtentsIsATenthOfThem) {
  m_Mapping.SetExtent({0, 0.5, 0, 50});
  ExpectPlace(m_Mapping.Clamped({-1, -1}), 0.05, 0.1);
  ExpectPlace(m_Mapping.Clamped({1, 51}), 0.45, 49.9);
}

TEST_F(ViewMappingTest, PictureIncludesItsBorder) {
  EXPECT_TRUE(m_Mapping.IsInside({kOblong.x0, kOblong.y1}));
  for (const CPlanePoint& outside : {CPlanePoint{-3.6, 22}, {12.6, 22}, {3, 19.9}, {3, 26.1}})
    EXPECT_FALSE(m_Mapping.IsInside(outside));
}

TEST_F(ViewMappingTest, ViewWithoutPixelsIsHarmless) {
  m_Mapping.SetSize(0, -5);
  ExpectPlace(m_Mapping.ToModel(0, 0), 4.5, 23);
}

TEST_F(ViewMappingTest, InTrueProportionsTheNarrowerDirectionShowsMore) {
  m_Mapping.KeepProportions(true);
  ExpectPlace({m_Mapping.Visible().x0, m_Mapping.Visible().x1}, -3.5, 12.5);
  ExpectPlace({m_Mapping.Visible().y0, m_Mapping.Visible().y1}, 23 - 6, 23 + 6);
  m_Mapping.SetSize(800, 100);
  ExpectPlace({m_Mapping.Visible().x0, m_Mapping.Visible().x1}, 4.5 - 24, 4.5 + 24);
  ExpectPlace({m_Mapping.Visible().y0, m_Mapping.Visible().y1}, 20, 26);
  m_Mapping.KeepProportions(false);
  ExpectPlace({m_Mapping.Visible().x0, m_Mapping.Visible().x1}, -3.5, 12.5);
}

RC_GTEST_PROP(ViewMappingProperty, PlacesStayUnderTheirPixels, ()) {
  const CGlobalScope<double> zoom{g_fZoom, *rc::gen::map(rc::gen::inRange(1, 500), [](int z) { return z / 100.0; })};
  CViewMapping mapping;
  mapping.SetExtent(kOblong);
  const int width = *rc::gen::inRange(1, 3000);
  const int height = *rc::gen::inRange(1, 3000);
  mapping.SetSize(width, height);
  const bool proportional = *rc::gen::arbitrary<bool>();
  mapping.KeepProportions(proportional);
  mapping.Pan(*rc::gen::inRange(-20, 20), *rc::gen::inRange(-20, 20));
  const int x = *rc::gen::inRange(0, width);
  const int y = *rc::gen::inRange(0, height);
  const CPlanePoint place = mapping.ToModel(x, y);

  const auto isUnderThePixel = [&] {
    const CPlanePoint pixel = ToPixel(mapping, width, height, place);
    return std::abs(pixel.x - x) < 1e-6 && std::abs(pixel.y - y) < 1e-6;
  };
  RC_ASSERT(isUnderThePixel());
  mapping.ZoomAbout(*rc::gen::element(0.8, 1.25, 0.1, 7.0), x, y);
  RC_ASSERT(isUnderThePixel());
  const CExtent shown = mapping.Visible();
  if (proportional)
    RC_ASSERT(std::abs((shown.x1 - shown.x0) / width - (shown.y1 - shown.y0) / height) < 1e-9 * (shown.x1 - shown.x0));
}

TEST_F(ViewMappingTest, ZoomAboutAPixelIsHeldToItsBounds) {
  m_Mapping.ZoomAbout(1e-9, 10, 10);
  EXPECT_EQ(g_fZoom, 1e-6);
  m_Mapping.ZoomAbout(1e20, 10, 10);
  EXPECT_EQ(g_fZoom, 1e6);
}
