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

// The view from +z with y up, 10 away.
CViewTurn Turn(double dx, double dy) { return {{0, 0, 10}, {0, 10, 0}, dx, dy}; }

Vector3 Turned(const Vector3& direction, const CViewTurn& turn) {
  CLight light;
  light.SetDirection(direction);
  TurnLight(light, turn);
  EXPECT_EQ(light.m_afDirection[3], 0.0);
  return light.Direction();
}

TEST(TurnLight, ALightFromTheEyeGoesWhereTheEyeGoes) {
  // side = (0, 0, 10) x (0, 10, 0) / 10 = (-10, 0, 0): one radian of it is 200 pixels.
  ExpectNear(Turned({0, 0, 1}, Turn(20, 0)), Normalised({1, 0, 10}), 1e-12);
  ExpectNear(Turned({0, 0, 1}, Turn(0, 20)), Normalised({0, -1, 10}), 1e-12);
  ExpectNear(Turned({0, 0, 1}, Turn(-20, 40)), Normalised({-1, -2, 10}), 1e-12);
}

TEST(TurnLight, TheAxisOfTheTurnStays) {
  ExpectNear(Turned({0, 1, 0}, Turn(57, 0)), {0, 1, 0}, 1e-12);
  ExpectNear(Turned({1, 0, 0}, Turn(0, -31)), {1, 0, 0}, 1e-12);
}

TEST(TurnLight, AllLightsTurnByTheSameAngle) {
  // 20 pixels aside: tan = 0.1 about the y axis.
  const double a = std::atan(0.1);
  ExpectNear(Turned({1, 0, 0}, Turn(20, 0)), {std::cos(a), 0, -std::sin(a)}, 1e-12);
  ExpectNear(Turned({0.6, 0.8, 0}, Turn(20, 0)), {0.6 * std::cos(a), 0.8, -0.6 * std::sin(a)}, 1e-12);
}

TEST(TurnLight, ItsStepIsTheCameras) {
  CViewTurn turn = Turn(5, 0);
  turn.m_fStepDivisor = 50;
  ExpectNear(Turned({0, 0, 1}, turn), Turned({0, 0, 1}, Turn(20, 0)), 1e-12);
}

TEST(TurnLight, TheLengthStays) { EXPECT_NEAR(Length(Turned({1, 2, 2}, Turn(33, -71))), 3.0, 1e-12); }

TEST(TurnLight, WithoutAViewNothingHappens) {
  EXPECT_EQ(Turned({1, 2, 2}, {{}, {0, 1, 0}, 5, 5}), (Vector3{1, 2, 2}));
  EXPECT_EQ(Turned({1, 2, 2}, {{0, 0, 1}, {}, 5, 5}), (Vector3{1, 2, 2}));
}

}  // namespace
