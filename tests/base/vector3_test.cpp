#include "base/Vector3.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(Vector3Test, StartsAtTheOrigin) { EXPECT_EQ(Vector3{}, (Vector3{0, 0, 0})); }

TEST(Vector3Test, SumDifferenceAndMultipleGoComponentByComponent) {
  const Vector3 a{1, 2, 3};
  const Vector3 b{10, 20, 40};
  EXPECT_EQ(a + b, (Vector3{11, 22, 43}));
  EXPECT_EQ(b - a, (Vector3{9, 18, 37}));
  EXPECT_EQ(-2.0 * a, (Vector3{-2, -4, -6}));
}

TEST(Vector3Test, AddingInPlaceChangesTheLeftOperand) {
  Vector3 a{1, 2, 3};
  a += {10, 20, 40};
  EXPECT_EQ(a, (Vector3{11, 22, 43}));
}

TEST(Vector3Test, CrossProductIsRightHanded) {
  EXPECT_EQ(Cross({1, 0, 0}, {0, 1, 0}), (Vector3{0, 0, 1}));
  EXPECT_EQ(Cross({0, 1, 0}, {0, 0, 1}), (Vector3{1, 0, 0}));
  EXPECT_EQ(Cross({1, 2, 3}, {4, 5, 7}), (Vector3{-1, 5, -3}));
}

TEST(Vector3Test, LengthIsEuclidean) { EXPECT_DOUBLE_EQ(Length({2, 3, 6}), 7.0); }

TEST(Vector3Test, NormalisedKeepsTheDirection) {
  const Vector3 n = Normalised({2, -3, 6});
  EXPECT_DOUBLE_EQ(n.x, 2.0 / 7);
  EXPECT_DOUBLE_EQ(n.y, -3.0 / 7);
  EXPECT_DOUBLE_EQ(n.z, 6.0 / 7);
}

TEST(Vector3Test, VectorWithoutLengthHasNoDirection) { EXPECT_FALSE(IsFinite(Normalised({0, 0, 0}))); }

TEST(Vector3Test, OneComponentThatIsNoNumberMakesItNotFinite) {
  EXPECT_TRUE(IsFinite({1, -2, 3e300}));
  for (const double bad : {kInfinity, -kInfinity, kNotANumber}) {
    EXPECT_FALSE(IsFinite({bad, 0, 0}));
    EXPECT_FALSE(IsFinite({0, bad, 0}));
    EXPECT_FALSE(IsFinite({0, 0, bad}));
  }
}

}  // namespace
