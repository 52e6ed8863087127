// What the line of coordinates says.

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/PlaceText.h"
#include "support/UpdateBuilders.h"

namespace {

std::string TextAt(const CGrid& grid, const CPlanePoint& place, double reach = 0.1) {
  std::string text = "what was there before";
  DescribePlace(grid, place, reach, text);
  return text;
}

TEST(PlaceText, SaysHeightAndSlopesOfTheSurface) {
  CTestGrid test;
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(TextAt(test.m_Grid, {3.5, 23}), "x 3.5   y 23   z 0   dz/dx 0   dz/dy 0");
  SetSurface(test.m_Grid, CRamp{});
  test.m_Grid.Surface().Reconstruct();
  const std::string text = TextAt(test.m_Grid, {3.5, 23});
  const std::string z = text.substr(text.find("z ") + 2);
  EXPECT_NEAR(std::stod(z), SurfaceHeight(test.m_Grid, 3.5, 23), 1e-3);
}

// What stands behind a name.
double NumberAfter(const std::string& text, const std::string& name) {
  const std::size_t at = text.find(name);
  EXPECT_NE(at, std::string::npos) << text;
  return at == std::string::npos ? 0 : std::stod(text.substr(at + name.size()));
}

TEST(PlaceText, SaysTheSlopesOfAPlane) {
  CTestGrid test(4, 4);
  test.m_Grid.PerformPendingWork();
  SetSurface(test.m_Grid, CRamp{1.5, -0.25, 3});
  test.m_Grid.Surface().Reconstruct();
  test.m_Grid.ComputeNormalsOnly();
  const std::string text = TextAt(test.m_Grid, {3.7, 23.2});
  EXPECT_NEAR(NumberAfter(text, "   z "), 1.5 * 3.7 - 0.25 * 23.2 + 3, 1e-4);
  EXPECT_NEAR(NumberAfter(text, "dz/dx "), 1.5, 1e-4);
  EXPECT_NEAR(NumberAfter(text, "dz/dy "), -0.25, 1e-4);
}

TEST(PlaceText, SaysTheSlopesOfAParaboloid) {
  CTestGrid test(4, 4);
  test.m_Grid.PerformPendingWork();
  SetSurface(test.m_Grid, [](double x, double y) { return 0.2 * (x - 4) * (x - 4) - 0.5 * (y - 22) * (y - 22); });
  test.m_Grid.Surface().Reconstruct();
  test.m_Grid.ComputeNormalsOnly();
  for (const CPlanePoint place : {CPlanePoint{6.1, 23.2}, {1.3, 24.3}, {8.8, 21.1}}) {
    const std::string text = TextAt(test.m_Grid, place);
    EXPECT_NEAR(NumberAfter(text, "dz/dx "), 0.4 * (place.x - 4), 0.1) << text;
    EXPECT_NEAR(NumberAfter(text, "dz/dy "), -(place.y - 22), 0.1) << text;
  }
}

TEST(PlaceText, OutsideThereIsNothingButThePlace) {
  CTestGrid test;
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(TextAt(test.m_Grid, {-1000, 23}), "x -1000   y 23");
}

TEST(PlaceText, SaysThePixelFromTheUpperLeftCornerAndItsColour) {
  CTestGrid test;
  test.m_Grid.PerformPendingWork();
  // 4 by 2 pixels: red counts the columns, green the rows from below.
  CPicture picture{4, 2, {}};
  for (std::uint8_t row = 0; row < 2; ++row) {
    for (std::uint8_t column = 0; column < 4; ++column)
      picture.m_aPixels.insert(picture.m_aPixels.end(), {column, row, std::uint8_t{7}});
  }
  ASSERT_TRUE(test.m_Grid.Relighting().SetPicture(picture));
  const CExtent& e = test.m_Grid.Surface().Lattice().Extent();
  const auto at = [&](double u, double v) {
    const std::string text = TextAt(test.m_Grid, {e.x0 + u * (e.x1 - e.x0), e.y0 + v * (e.y1 - e.y0)});
    return text.substr(text.find("pixel"));
  };
  EXPECT_EQ(at(0.3, 0.2), "pixel (1, 1) of 1 0 7");
  EXPECT_EQ(at(0.9, 0.9), "pixel (3, 0) of 3 1 7");
  EXPECT_EQ(at(1.0, 1.0), "pixel (3, 0) of 3 1 7");
}

TEST(PlaceText, SaysWhatAConstraintWantsAndWhatTheSurfaceHas) {
  CConvergedGrid test;
  const std::string height = TextAt(test.m_Grid, {10.05, 22});
  EXPECT_NE(height.find("   height wanted -2, kept -2"), std::string::npos) << height;
  const std::string slope = TextAt(test.m_Grid, {6, 23.5});
  EXPECT_NE(slope.find("   slope wanted (0.25, -0.5), kept (0.25, -0.5)"), std::string::npos) << slope;
  EXPECT_EQ(TextAt(test.m_Grid, {10.2, 22}).find("wanted"), std::string::npos);
}

TEST(PlaceText, OfSeveralConstraintsTheNearestIsTold) {
  CConvergedGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(10.1, 22, 77));
  EXPECT_NE(TextAt(test.m_Grid, {10.08, 22}, 0.5).find("wanted 77"), std::string::npos);
  EXPECT_NE(TextAt(test.m_Grid, {10.02, 22}, 0.5).find("wanted -2"), std::string::npos);
}

}  // namespace
