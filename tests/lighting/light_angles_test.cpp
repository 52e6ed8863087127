#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "lighting/CLight.h"
#include "lighting/LightAngles.h"

namespace {

void ExpectNear(const Vector3& a, const Vector3& b, double tolerance = 1e-7) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

struct CCase {
  CLightAngles angles;
  Vector3 direction;
};

class LightAnglesTest : public testing::TestWithParam<CCase> {};

INSTANTIATE_TEST_SUITE_P(Directions, LightAnglesTest,
                         testing::Values(CCase{{0, 0}, {0, 0, 1}}, CCase{{90, 0}, {1, 0, 0}},
                                         CCase{{90, 90}, {0, 1, 0}}, CCase{{90, 180}, {-1, 0, 0}},
                                         CCase{{90, 270}, {0, -1, 0}}, CCase{{180, 0}, {0, 0, -1}},
                                         CCase{{45, 0}, {std::sqrt(0.5), 0, std::sqrt(0.5)}},
                                         CCase{{60, 300}, {std::sqrt(3) / 4, -0.75, 0.5}}));

TEST_P(LightAnglesTest, GiveTheDirection) { ExpectNear(DirectionOf(GetParam().angles), GetParam().direction); }

TEST_P(LightAnglesTest, AreReadBackFromADirectionOfAnyLength) {
  const CLightAngles angles = AnglesOf(3.5 * GetParam().direction);
  EXPECT_NEAR(angles.m_fTheta, GetParam().angles.m_fTheta, 1e-5);
  EXPECT_NEAR(angles.m_fPhi, GetParam().angles.m_fPhi, 1e-5);
}

TEST(LightAngles, CountWithSevenDecimalsOfPi) {
  const Vector3 down = DirectionOf({180, 0});
  EXPECT_EQ(down.x, std::sin(3.1415926));
  EXPECT_EQ(AnglesOf({1, 0, 0}).m_fTheta, std::acos(0.0) * 180 / 3.1415926);
}

TEST(LightAngles, ThetaZeroPointsUpWhateverPhi) {
  for (const double phi : {0.0, 90.0, 123.0, 360.0}) {
    EXPECT_EQ(DirectionOf({0, phi}), (Vector3{0, 0, 1}));
    EXPECT_EQ(AnglesOf(DirectionOf({0, phi})).m_fPhi, 0.0);
  }
}

TEST(LightAngles, ThetaReadsBackAsExactlyZeroAndExactly180) {
  EXPECT_EQ(AnglesOf({0, 0, 2}).m_fTheta, 0.0);
  EXPECT_EQ(AnglesOf({0, 0, -1}).m_fTheta, 180.0);
  for (const double phi : {0.0, 77.0, 250.0}) EXPECT_EQ(AnglesOf(DirectionOf({180, phi})).m_fTheta, 180.0);
}

TEST(LightAngles, ANegativeYReadsBackAsPhiAbove180) {
  EXPECT_GT(AnglesOf({1, -1e-3, 0}).m_fPhi, 180);
  EXPECT_GT(AnglesOf({-1, -1e-3, 0}).m_fPhi, 180);
}

TEST(LightAngles, NoDirectionHasNoAngles) {
  EXPECT_EQ(AnglesOf({}).m_fTheta, 0.0);
  EXPECT_EQ(AnglesOf({}).m_fPhi, 0.0);
}

TEST(LightAngles, PhiIsFreeButForThetaZeroAnd180) {
  EXPECT_FALSE(IsPhiFree(0));
  EXPECT_FALSE(IsPhiFree(180));
  EXPECT_TRUE(IsPhiFree(1e-9));
  EXPECT_TRUE(IsPhiFree(179.999));
}

RC_GTEST_PROP(LightAnglesProperty, SlidersComeBackWhereTheyWere, ()) {
  const double theta = *rc::gen::inRange(1, 180);
  const double phi = *rc::gen::inRange(1, 360);
  const CLightAngles angles = AnglesOf(DirectionOf({theta, phi}));
  RC_ASSERT(std::abs(angles.m_fTheta - theta) < 1e-6);
  RC_ASSERT(std::abs(angles.m_fPhi - phi) < 1e-5);
}

}  // namespace
