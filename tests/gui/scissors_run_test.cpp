// The rim of the cup, traced with the scissors by mouse and keyboard, and the tear that it makes.

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "support/SamplePhotograph.h"
#include "support/UpdateBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"

namespace {

struct CPlace {
  double m_fX;
  double m_fY;
};

// The outer edge of the white rim on the photograph, outlined by hand: every ten degrees clockwise from the right.
constexpr std::array<CPlace, 36> kRim{{
    {407, 113},    {405.2, 129.7}, {401, 146},    {393, 162},     {381, 176},    {366, 187.5},
    {349, 196},    {330, 202},     {310, 206},    {290, 206},     {270, 204},    {251, 200},
    {233, 193},    {217.8, 183.6}, {203, 172},    {191.7, 159.6}, {181, 145},    {175.5, 129.5},
    {172.5, 113},  {173.5, 96},    {177.9, 79.5}, {186, 64},      {198.5, 50},   {213.5, 38},
    {230.5, 28.5}, {249, 21.5},    {270, 18.5},   {290, 17.5},    {310, 19.5},   {329, 24.5},
    {347, 31.5},   {363.5, 41},    {378, 52.5},   {389.5, 66},    {398.3, 80.7}, {404.1, 96.5},
}};
constexpr CPlace kMiddle{290, 113};

double DistanceToSegment(CPlace p, CPlace a, CPlace b) {
  const double length2 = std::pow(b.m_fX - a.m_fX, 2) + std::pow(b.m_fY - a.m_fY, 2);
  const double along = ((p.m_fX - a.m_fX) * (b.m_fX - a.m_fX) + (p.m_fY - a.m_fY) * (b.m_fY - a.m_fY)) / length2;
  const double t = std::clamp(along, 0.0, 1.0);
  return std::hypot(p.m_fX - a.m_fX - t * (b.m_fX - a.m_fX), p.m_fY - a.m_fY - t * (b.m_fY - a.m_fY));
}

double DistanceToRim(CPlace p) {
  double least = DistanceToSegment(p, kRim.back(), kRim.front());
  for (std::size_t k = 1; k < kRim.size(); ++k) least = std::min(least, DistanceToSegment(p, kRim[k - 1], kRim[k]));
  return least;
}

// Towards the rim (1) or beyond it from the middle of the cup.
CPlace AcrossRim(std::size_t k, double factor) {
  return {kMiddle.m_fX + factor * (kRim[k].m_fX - kMiddle.m_fX), kMiddle.m_fY + factor * (kRim[k].m_fY - kMiddle.m_fY)};
}

class ScissorsRunTest : public RunTest {
 protected:
  void TraceRim() const {
    m_User.ClickOn(Control::Scissors);
    const auto window = m_Program.WaitForWindow("Click to set key points - Press Enter set the last point and finish");
    ASSERT_TRUE(window.has_value() && m_Program.Rests());
    const CArea canvas = m_Program.Screen().AreaOf(*window);
    for (std::size_t k = 0; k < kRim.size(); k += kRim.size() / 6) {
      m_User.ClickAt(canvas.At({static_cast<int>(kRim[k].m_fX), static_cast<int>(kRim[k].m_fY)}));
    }
    m_User.Type("ctrl+Return");
    EXPECT_EQ(m_User.Times("CScissorsView::ExportContour()"), 1U);
    m_User.ClickOn(Control::Scissors);
  }

  static CPlace OnPhotograph(const CPtCstr& node) {
    return {node.m_fX / 100 * kPhotographWidth - 0.5, (100 - node.m_fY) / 100 * kPhotographHeight - 0.5};
  }
  static double HeightAt(const CGrid& grid, CPlace place) {
    return SurfaceHeight(grid, (place.m_fX + 0.5) / kPhotographWidth * 100,
                         100 - (place.m_fY + 0.5) / kPhotographHeight * 100);
  }
};

}  // namespace

TEST_F(ScissorsRunTest, SixClicksFollowTheRim) {
  TraceRim();
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  ASSERT_EQ(saved.m_Grid.Constraints().Curves().size(), 1U);
  const CCntrCtrl& curve = *saved.m_Grid.Constraints().Curves().begin();
  EXPECT_EQ(curve.Type(), CurveType::kPosition);
  double length = 0;
  double near = 0;
  curve.ForEachSegment([&](const CPtCstr& from, const CPtCstr& to) {
    const CPlace a = OnPhotograph(from);
    const CPlace b = OnPhotograph(to);
    constexpr int kParts = 100;
    const double part = std::hypot(b.m_fX - a.m_fX, b.m_fY - a.m_fY) / kParts;
    for (int k = 0; k < kParts; ++k, length += part) {
      const double t = (k + 0.5) / kParts;
      if (DistanceToRim({a.m_fX + t * (b.m_fX - a.m_fX), a.m_fY + t * (b.m_fY - a.m_fY)}) <= 3) near += part;
    }
  });
  EXPECT_NEAR(length, 671, 40) << "once around";
  EXPECT_GE(near, 0.9 * length) << near << " of " << length;
}

TEST_F(ScissorsRunTest, SurfaceTearsAlongTheRim) {
  TraceRim();
  m_User.ClickOn(Control::PositionConstraint);
  for (const CPixel inside : {CPixel{230, 110}, CPixel{350, 110}, CPixel{290, 60}}) PlaceHeight(inside, 86);
  for (const CPixel outside : {CPixel{60, 60}, CPixel{540, 60}, CPixel{290, 340}}) PlaceHeight(outside, 0);
  m_User.ClickOn(Control::ResumeSolver);
  ASSERT_TRUE(m_Program.Rests());
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  for (std::size_t k = 0; k < kRim.size(); ++k) {
    EXPECT_NEAR(HeightAt(saved.m_Grid, AcrossRim(k, 0.85)), 20, 0.5) << k;
    EXPECT_NEAR(HeightAt(saved.m_Grid, AcrossRim(k, 1.15)), 0, 0.5) << k;
  }
}
