// What curves make of the solved surface: plateaus on the two sides of a tear, sharp creases, and never nonsense.

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/SanitizerShare.h"
#include "support/UpdateBuilders.h"

namespace {

// A silent grid over 0..100 by 0..100.
struct CSurfaceGrid {
  explicit CSurfaceGrid(int maxLevel = 6, int baseLevel = 4) : m_Scope(maxLevel, baseLevel) {
    m_Grid.Initialize(baseLevel, false, 0, 0, 100, 100);
  }
  void AddCurve(const CPlaces& places, CurveType type, bool closed = false) {
    m_Grid.AddCurve(PointsAt(places), type, closed);
  }
  void AddHeights(const CPlaces& places, double z) {
    for (const auto& [x, y] : places) m_Grid.AddPtCstr(HeightCstr(x, y, z));
  }
  template <typename Field>
  void AddHeights(const CPlaces& places, const Field& field) {
    for (const auto& [x, y] : places) m_Grid.AddPtCstr(HeightCstr(x, y, field(x, y)));
  }
  double At(double x, double y) const { return SurfaceHeight(m_Grid, x, y); }
  double MeanAt(const CPlaces& places) const {
    double sum = 0.0;
    for (const auto& [x, y] : places) sum += At(x, y);
    return sum / static_cast<double>(places.size());
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

// A tear, three heights on each of its sides, and places there where no height was asked for.
struct CTornModel {
  const char* m_Name;
  CPlaces m_Curve;
  bool m_bClosed;
  CPlaces m_High;
  CPlaces m_Low;
  CPlaces m_HighElsewhere;
  CPlaces m_LowElsewhere;
};
void PrintTo(const CTornModel& model, std::ostream* out) { *out << model.m_Name; }

const CPlaces kWest{{10, 20}, {20, 80}, {30, 45}};
const CPlaces kEast{{90, 20}, {80, 80}, {70, 45}};
const CPlaces kNorth{{20, 90}, {80, 80}, {45, 75}};
const CPlaces kSouth{{20, 10}, {80, 20}, {45, 25}};
const CPlaces kNorthWest{{20, 90}, {10, 60}, {30, 75}};
const CPlaces kSouthEast{{80, 10}, {90, 40}, {70, 25}};
const CPlaces kSouthWest{{20, 10}, {10, 40}, {30, 25}};
const CPlaces kNorthEast{{80, 90}, {90, 60}, {70, 75}};
const CPlaces kAround{{10, 10}, {90, 15}, {50, 90}};
const CPlaces kWithin{{45, 45}, {55, 45}, {50, 56}};

class TornPlateausTest : public testing::TestWithParam<CTornModel> {};
INSTANTIATE_TEST_SUITE_P(
    Curves, TornPlateausTest,
    testing::Values(
        CTornModel{
            "straight", {{50.3, 0.1}, {50.3, 99.9}}, false, kWest, kEast, {{5, 5}, {40, 90}}, {{60, 5}, {95, 95}}},
        CTornModel{"straight, on a lattice line",
                   {{50, 0}, {50, 100}},
                   false,
                   kWest,
                   kEast,
                   {{5, 5}, {40, 90}},
                   {{60, 5}, {95, 95}}},
        CTornModel{"flat, on a lattice line",
                   {{0, 50}, {100, 50}},
                   false,
                   kNorth,
                   kSouth,
                   {{5, 95}, {60, 60}},
                   {{5, 5}, {60, 40}}},
        CTornModel{
            "steep, rising", {{40, 0.1}, {60, 99.9}}, false, kWest, kEast, {{5, 5}, {35, 90}}, {{65, 5}, {95, 95}}},
        CTornModel{
            "steep, falling", {{60, 0.1}, {40, 99.9}}, false, kWest, kEast, {{5, 5}, {30, 90}}, {{65, 5}, {95, 95}}},
        CTornModel{
            "flat, rising", {{0.1, 40}, {99.9, 60}}, false, kNorth, kSouth, {{5, 95}, {60, 65}}, {{5, 5}, {60, 35}}},
        CTornModel{
            "flat, falling", {{0.1, 60}, {99.9, 40}}, false, kNorth, kSouth, {{5, 95}, {60, 65}}, {{5, 5}, {60, 35}}},
        CTornModel{"diagonal, rising",
                   {{0, 0}, {100, 100}},
                   false,
                   kNorthWest,
                   kSouthEast,
                   {{5, 95}, {40, 60}},
                   {{95, 5}, {60, 40}}},
        CTornModel{"diagonal, falling",
                   {{0.1, 99.9}, {99.9, 0.1}},
                   false,
                   kSouthWest,
                   kNorthEast,
                   {{5, 5}, {40, 40}},
                   {{95, 95}, {60, 60}}},
        CTornModel{"bent",
                   {{50, 0.1}, {35, 40}, {70, 60}, {50, 99.9}},
                   false,
                   kWest,
                   {{90, 20}, {85, 80}, {65, 35}},
                   {{5, 95}},
                   {{95, 5}}},
        CTornModel{"closed",
                   {{30, 30}, {70, 33}, {66, 70}, {35, 66}},
                   true,
                   kWithin,
                   kAround,
                   {{40, 40}, {60, 60}},
                   {{5, 50}, {80, 80}}},
        CTornModel{"closed, on the lattice",
                   {{25, 25}, {75, 25}, {75, 75}, {25, 75}},
                   true,
                   kWithin,
                   kAround,
                   {{30, 30}, {70, 70}},
                   {{5, 50}, {90, 90}}}));

TEST_P(TornPlateausTest, GapIsTheDifferenceOfTheHeights) {
  const CTornModel& model = GetParam();
  CSurfaceGrid test;
  test.AddCurve(model.m_Curve, CurveType::kPosition, model.m_bClosed);
  test.AddHeights(model.m_High, 10.0);
  test.AddHeights(model.m_Low, -2.0);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  EXPECT_NEAR(test.MeanAt(model.m_HighElsewhere) - test.MeanAt(model.m_LowElsewhere), 12.0, 0.12);
  for (const auto& [x, y] : model.m_HighElsewhere) EXPECT_NEAR(test.At(x, y), 10.0, 0.06) << x << ", " << y;
  for (const auto& [x, y] : model.m_LowElsewhere) EXPECT_NEAR(test.At(x, y), -2.0, 0.06) << x << ", " << y;
}

TEST(TornSurfaceTest, EverythingIsSewnTogetherWithoutTheTear) {
  CSurfaceGrid test;
  test.AddHeights(kWest, 10.0);
  test.AddHeights(kEast, -2.0);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  EXPECT_LT(test.At(49, 50) - test.At(51, 50), 1.0);
}

TEST(TornSurfaceTest, OpenTearGapsInTheMiddleAndClosesAtItsEnd) {
  CSurfaceGrid test;
  test.AddCurve({{50.3, 30}, {50.3, 70}}, CurveType::kPosition);
  test.AddHeights({{45, 50}, {20, 50}}, 5.0);
  test.AddHeights({{56, 50}, {80, 50}}, -5.0);
  test.AddHeights({{50, 5}, {50, 95}}, 0.0);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  EXPECT_GT(test.At(48, 50) - test.At(53, 50), 6.0);
  EXPECT_LT(std::abs(test.At(49, 15) - test.At(51, 15)), 1.5);
}

// A roof whose two slopes meet on the crease: the surface takes it exactly where the crease follows the lattice.
struct CRoof {
  const char* m_Name;
  CPlaces m_Crease;
  double (*m_Height)(double x, double y);
  CPlaces m_Heights;
  CPlaces m_Elsewhere;
};
void PrintTo(const CRoof& roof, std::ostream* out) { *out << roof.m_Name; }

class CreasedSurfaceTest : public testing::TestWithParam<CRoof> {};
INSTANTIATE_TEST_SUITE_P(Creases, CreasedSurfaceTest,
                         testing::Values(CRoof{"upright",
                                               {{50, 0}, {50, 100}},
                                               [](double x, double /*y*/) { return 20 - std::abs(x - 50) * 0.4; },
                                               {{10, 20}, {20, 80}, {40, 50}, {90, 20}, {80, 80}, {60, 50}},
                                               {{50, 50}, {49, 20}, {51, 80}, {5, 95}, {95, 5}}},
                                         CRoof{"level",
                                               {{0, 50}, {100, 50}},
                                               [](double /*x*/, double y) { return 20 - std::abs(y - 50) * 0.4; },
                                               {{20, 10}, {80, 20}, {50, 40}, {20, 90}, {80, 80}, {50, 60}},
                                               {{50, 50}, {20, 49}, {80, 51}, {95, 5}, {5, 95}}},
                                         CRoof{"rising diagonal",
                                               {{0, 0}, {100, 100}},
                                               [](double x, double y) { return 20 - std::abs(x - y) * 0.3; },
                                               {{20, 90}, {10, 60}, {40, 60}, {80, 10}, {90, 40}, {60, 40}},
                                               {{50, 50}, {49, 51}, {51, 49}, {5, 95}, {95, 5}}},
                                         CRoof{"falling diagonal",
                                               {{0, 100}, {100, 0}},
                                               [](double x, double y) { return 20 - std::abs(x + y - 100) * 0.3; },
                                               {{20, 10}, {10, 40}, {40, 40}, {80, 90}, {90, 60}, {60, 60}},
                                               {{50, 50}, {49, 49}, {51, 51}, {5, 5}, {95, 95}}}));

TEST_P(CreasedSurfaceTest, IsContinuousAndSharp) {
  const CRoof& roof = GetParam();
  CSurfaceGrid test;
  test.AddCurve(roof.m_Crease, CurveType::kNormal);
  test.AddHeights(roof.m_Heights, roof.m_Height);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  for (const auto& [x, y] : roof.m_Elsewhere) EXPECT_NEAR(test.At(x, y), roof.m_Height(x, y), 0.02) << x << ", " << y;
}
TEST_P(CreasedSurfaceTest, IsRoundWithoutTheCrease) {
  const CRoof& roof = GetParam();
  CSurfaceGrid test;
  test.AddHeights(roof.m_Heights, roof.m_Height);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  EXPECT_LT(test.At(50, 50), 19.5);
}

TEST(CreasedSurfaceTest, CreaseAtAnyAngleStaysContinuous) {
  CSurfaceGrid test;
  test.AddCurve({{5, 37}, {95, 64}}, CurveType::kNormal);
  test.AddHeights({{20, 90}, {80, 80}, {20, 10}, {80, 20}}, 0.0);
  test.AddHeights({{50, 51}}, 20.0);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 5000));
  double largestStep = 0.0;
  for (int quarter = 4; quarter < 396; ++quarter) {
    const double y = 0.25 * quarter;
    largestStep = std::fmax(largestStep, std::abs(test.At(50, y + 0.25) - test.At(50, y)));
  }
  EXPECT_LT(largestStep, 0.5);
}

TEST(FairSurfaceTest, StrongFairnessStraightensTheSurfaceAlongTheCurve) {
  const auto bendAlongCurve = [](double weight) {
    CSurfaceGrid test;
    test.AddCurve({{10, 50.5}, {90, 50.5}}, CurveType::kFairness);
    CStaging::Constraints(test.m_Grid).Curves().back().SetAllWeights(weight, weight, 0, 0);
    test.AddHeights({{50, 40}}, 20.0);
    test.AddHeights({{5, 50}, {95, 50}, {50, 95}, {50, 5}}, 0.0);
    EXPECT_TRUE(RunUntilPaused(test.m_Grid, 5000));
    return test.At(50, 50.5) - (test.At(20, 50.5) + test.At(80, 50.5)) / 2;
  };
  const double free = bendAlongCurve(0.0);
  EXPECT_GT(free, 2.0);
  EXPECT_LT(std::abs(bendAlongCurve(1e4)), 0.1 * free);
}

// Polylines of every kind: repeated nodes, nodes on lattice lines and on the border, two nodes, no length, outside.
class CRandomCurve {
 public:
  explicit CRandomCurve(std::uint32_t seed) : m_Random(seed) {}

  CPlaces Places() {
    const std::size_t count = 1 + m_Random() % 8;
    CPlaces places;
    while (places.size() < count) places.push_back(!places.empty() && m_Random() % 5 == 0 ? places.back() : Place());
    return places;
  }
  bool Flip() { return m_Random() % 2 == 0; }
  int UpTo(int limit) { return static_cast<int>(m_Random() % static_cast<unsigned>(limit + 1)); }
  double Value(double low, double high) { return std::uniform_real_distribution(low, high)(m_Random); }

 private:
  double Coordinate() {
    switch (m_Random() % 8) {
      case 0:
        return 100.0 / 16 * UpTo(16);
      case 1:
        return Flip() ? 0.0 : 100.0;
      case 2:
        return Flip() ? 0.1 : 99.9;
      case 3:
        return Value(-30, 130);
      default:
        return Value(0, 100);
    }
  }
  std::array<double, 2> Place() { return {Coordinate(), Coordinate()}; }

  std::mt19937 m_Random;
};

TEST(RandomCurvesTest, NeverLeaveAHeightThatIsNotFinite) {
  CRandomCurve random(11);
  CSurfaceGrid test(4, 2);
  test.AddHeights({{20, 20}, {80, 30}, {40, 85}}, CRamp{0.1, 0.2, 1});
  for (int k = 0; k < RepetitionsOf(1000); ++k) {
    if (test.m_Grid.Constraints().Curves().size() > 3) CStaging::Constraints(test.m_Grid).Curves().clear();
    test.AddCurve(random.Places(), static_cast<CurveType>(1U << random.UpTo(2)), random.Flip());
    CCntrCtrl& curve = CStaging::Constraints(test.m_Grid).Curves().back();
    curve.SetAllWeights(random.Value(-1, 5), random.Value(0, 5), 1, 1);
    curve.SetOption(static_cast<std::uint32_t>(random.UpTo(3)), true);
    curve.SetDistance(CurveSide::Left, random.Value(-1, 20));
    curve.SetDistance(CurveSide::Right, random.Value(0.5, 20));
    curve.SetOrientation(CurveSide::Left, random.Value(-100, 100));
    test.m_Grid.UpdateGrid();
    test.m_Console.Take();
    const std::vector<double> heights = NodalHeights(test.m_Grid);
    ASSERT_TRUE(std::ranges::all_of(heights, [](double z) { return std::isfinite(z); })) << k;
  }
}

}  // namespace
