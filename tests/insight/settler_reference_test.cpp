// Where regions that nothing settles are placed with a reference that covers all of them, a part, or nothing.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "insight/CSettler.h"
#include "support/TornGrids.h"

namespace {

// The reference has no value over a corner of the right half.
TEST(SettlerReference, FollowsAReferenceWhereThereIsOne) {
  CHalves test;
  test.Solve();
  std::vector<double> reference(test.m_Grid.Surface().Order().Count());
  const auto side = static_cast<std::uint32_t>(test.m_Grid.Surface().Lattice().PointsPerSide());
  for (std::size_t k = 0; k < reference.size(); ++k) {
    const std::uint32_t point = test.m_Grid.Surface().Order().PointAtScan(k);
    const std::uint32_t column = point % side;
    const std::uint32_t row = point / side;
    reference[k] = column > 28 && row > 28 ? std::nan("") : 0.5 * row - 1.0 * column;
  }
  CSettler settler;
  settler.Prepare(test.m_Grid.Surface().Tree(), test.m_Grid.Surface().Order(), test.m_Grid.Solver());
  settler.Follow(reference, 3, 0.5, 0);
  settler.Settle(test.m_Grid.Surface().Basis(), test.m_Grid.Surface().Coefficients());
  test.m_Grid.Surface().Reconstruct();
  EXPECT_NEAR(test.At(20, 50), 19, kSettled);
  EXPECT_NEAR(test.At(75, 50), 3 - 0.5 * 24 + 0.25 * 16, 1e-6);
  EXPECT_NEAR(test.At(100, 100), 3 - 0.5 * 32 + 0.25 * 32, 1e-6);
  settler.Follow({}, 0, 0, 0);
  settler.Settle(test.m_Grid.Surface().Basis(), test.m_Grid.Surface().Coefficients());
  test.m_Grid.Surface().Reconstruct();
  EXPECT_NEAR(test.At(60, 50), 22, 0.01);
}

// With a height over each point where `has` says so, and none elsewhere.
template <typename Has>
void SettleOnReference(CTornGrid& test, const CRamp& ramp, const Has& has) {
  std::vector<double> reference(test.m_Grid.Surface().Order().Count());
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  for (std::size_t k = 0; k < reference.size(); ++k) {
    const std::uint32_t point = test.m_Grid.Surface().Order().PointAtScan(k);
    const std::uint32_t row = point / side;
    const double x = lattice.XOf(point % side);
    const double y = lattice.YOf(row);
    reference[k] = has(x, y) ? ramp(x, y) : std::nan("");
  }
  CSettler settler;
  settler.Prepare(test.m_Grid.Surface().Tree(), test.m_Grid.Surface().Order(), test.m_Grid.Solver());
  settler.Follow(reference, 0, 1, 0);
  settler.Settle(test.m_Grid.Surface().Basis(), test.m_Grid.Surface().Coefficients());
  test.m_Grid.Surface().Reconstruct();
}

// A closed tear about the middle of a surface that is settled around it.
struct CCup : CTornGrid {
  explicit CCup(const std::vector<CPtCstr>& inside = {}) {
    Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
    AddAll(m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30)});
    AddAll(m_Grid, inside);
    Solve();
  }
};

TEST(SettlerReference, PlacesARegionWithoutAReferenceAsIfThereWereNone) {
  for (const std::vector<CPtCstr>& inside :
       {std::vector<CPtCstr>{}, {HeightCstr(45, 52, -7)}, {SlopeCstr(50, 50, 0.25, 0)}}) {
    CCup without(inside);
    without.m_Grid.SetSettling(true);
    CCup with(inside);
    SettleOnReference(with, CRamp{1, 2, 3}, [](double x, double y) { return x < 25 && y < 25; });
    EXPECT_LT(LargestDifference(without.Heights(), with.Heights()), 1e-9);
  }
}

// What the line says counts; the tilt about it is what gaps and slopes are least with.
TEST(SettlerReference, TiltsAboutASingleLineOfReferenceAsItWouldWithoutOne) {
  CCup test;
  SettleOnReference(test, CRamp{0.5, 0, 10}, [](double /*x*/, double y) { return y == 50; });
  for (const double x : {40.0, 50.0, 60.0}) EXPECT_NEAR(test.At(x, 50), 10 + 0.5 * x, kSettled) << x;
  const CRamp move{0, 0.01, -0.5};
  const double least = Misplacement(test, {0, 0, 0});
  const double forth = Misplacement(test, move) - least;
  EXPECT_GT(forth, 0);
  EXPECT_NEAR(forth, Misplacement(test, {0, -0.01, 0.5}) - least, 1e-6 * forth);
}

TEST(SettlerReference, FollowsASingleValueAndItsSurroundings) {
  CCup test;
  SettleOnReference(test, CRamp{0, 0, 25}, [](double x, double y) { return x == 50 && y == 50; });
  EXPECT_NEAR(test.At(50, 50), 25, kSettled);
  EXPECT_NEAR(test.At(60, 50) - test.At(40, 50), 2.2, 0.1);
  EXPECT_NEAR(test.At(50, 60) - test.At(50, 40), 6.6, 0.3);
}

// There is nothing around: it is level across the line.
TEST(SettlerReference, LevelsTheWholeSurfaceAboutASingleLineOfReference) {
  CTornGrid test;
  test.Solve();
  SettleOnReference(test, CRamp{0.5, 0, 10}, [](double /*x*/, double y) { return y == 50; });
  for (const double y : {0.0, 30.0, 100.0}) EXPECT_NEAR(test.At(20, y), 20, 1e-6) << y;
}

}  // namespace
