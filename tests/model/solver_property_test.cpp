#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <Eigen/QR>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"
#include "support/UpdateBuilders.h"

namespace {

// Of the height range: for surfaces, and for those that cannot meet their constraints.
constexpr double kTolerance = 1e-7;
constexpr double kContradicted = 1e-4;

bool AllFinite(const std::vector<double>& values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

// Seven heights and three slopes, at least kApart units from each other, edited at random.
class CEditedModel : public CSolverGrid {
 public:
  CEditedModel(int maxLevel, int baseLevel, std::uint32_t seed)
      : CSolverGrid(maxLevel, baseLevel),
        m_Random(seed),
        m_Direct(m_Grid.Surface().Tree()),
        m_fRim(100.0 / (1 << baseLevel)) {
    for (int k = 0; k < kHeights + kSlopes; ++k) {
      const auto [x, y] = FreePlace(nullptr);
      m_Grid.AddPtCstr(k < kHeights ? HeightCstr(x, y, Uniform(-30, 30))
                                    : SlopeCstr(x, y, Uniform(-1, 1), Uniform(-1, 1)));
    }
  }

  void EditAtRandom() {
    const auto place = static_cast<int>(m_Random() % (kHeights + kSlopes));
    CPtCstr& edited = RecordAt(CStaging::Constraints(m_Grid).Points(), place);
    m_Grid.UnselectAll();
    edited.SetState(PtCstrState::kSelected, true);
    if (m_Random() % 3 == 0) {
      const auto [x, y] = FreePlace(&edited);
      m_Grid.MoveSelectedPtCstr(x - edited.m_fX, y - edited.m_fY);
    } else if (place < kHeights) {
      m_Grid.SetSelectedHeight(Uniform(-30, 30));
    } else {
      m_Grid.ChangeSelectedNormal(Uniform(-0.5, 0.5), Uniform(-0.5, 0.5));
    }
  }
  std::vector<double> ExactHeights() {
    m_Direct.SetConstraints(std::array<const CPtCstrList*, 1>{&m_Grid.Constraints().Points()});
    const std::vector<double> shape = ShapeHeights(m_Grid);
    if (!shape.empty()) m_Direct.SetShape(shape);
    return m_Direct.Solve();
  }

 private:
  static constexpr int kHeights = 7;
  static constexpr int kSlopes = 3;
  static constexpr double kApart = 3.0;

  double Uniform(double low, double high) { return std::uniform_real_distribution(low, high)(m_Random); }
  // A place far enough from all constraints but `moved`, and from the border for the probes of a slope.
  std::array<double, 2> FreePlace(const CPtCstr* moved) {
    for (;;) {
      const double x = Uniform(m_fRim, 100 - m_fRim);
      const double y = Uniform(m_fRim, 100 - m_fRim);
      const auto near = [&](const CPtCstr& c) { return &c != moved && std::hypot(c.m_fX - x, c.m_fY - y) < kApart; };
      if (std::ranges::none_of(m_Grid.Constraints().Points(), near)) return {x, y};
    }
  }

  std::mt19937 m_Random;
  CDirectSystem m_Direct;
  double m_fRim;
};

#ifdef __SANITIZE_ADDRESS__
constexpr int kEdits = 2;
#else
constexpr int kEdits = 20;
#endif

// The maximum level, the base level, and the seed.
class SolverEditTest : public testing::TestWithParam<std::tuple<int, int, std::uint32_t>> {};

INSTANTIATE_TEST_SUITE_P(AllPoints, SolverEditTest,
                         testing::Combine(testing::Values(5), testing::Values(5), testing::Range(1U, 11U)));
INSTANTIATE_TEST_SUITE_P(EveryOtherPoint, SolverEditTest,
                         testing::Combine(testing::Values(5), testing::Values(4), testing::Range(2U, 11U)));
INSTANTIATE_TEST_SUITE_P(LargeGrid, SolverEditTest,
                         testing::Combine(testing::Values(7), testing::Values(7), testing::Values(1U)));

void ExpectExactEdits(CEditedModel& model) {
  ASSERT_TRUE(model.Converge());
  for (int edit = 0; edit < kEdits; ++edit) {
    model.EditAtRandom();
    ASSERT_TRUE(model.m_Grid.Run().IsRunning()) << edit;
    ASSERT_TRUE(model.Converge()) << edit;
    ASSERT_LT(model.ErrorAgainst(model.ExactHeights()), kTolerance) << edit;
  }
}

TEST_P(SolverEditTest, EveryEditReachesTheExactSurface) {
  CEditedModel model(std::get<0>(GetParam()), std::get<1>(GetParam()), std::get<2>(GetParam()));
  ExpectExactEdits(model);
}

// Over a random map, which every edit of a height scales anew; and the strength changes, too.
class SolverEditOverMapTest : public SolverEditTest {};

INSTANTIATE_TEST_SUITE_P(AllPoints, SolverEditOverMapTest,
                         testing::Combine(testing::Values(5), testing::Values(5), testing::Range(1U, 4U)));
INSTANTIATE_TEST_SUITE_P(EveryOtherPoint, SolverEditOverMapTest,
                         testing::Combine(testing::Values(5), testing::Values(4), testing::Range(2U, 5U)));

TEST_P(SolverEditOverMapTest, EveryEditReachesTheExactSurface) {
  const std::uint32_t seed = std::get<2>(GetParam());
  CEditedModel model(std::get<0>(GetParam()), std::get<1>(GetParam()), seed);
  FollowRandomMap(model.m_Grid, seed);
  ExpectExactEdits(model);
  for (const double strength : {0.3, 0.0, 0.8}) {
    model.m_Grid.ReferenceEdits().SetStrength(strength);
    ASSERT_TRUE(model.Converge()) << strength;
    EXPECT_LT(model.ErrorAgainst(model.ExactHeights()), kTolerance) << strength;
  }
}

// How a mirrored or transposed model comes about: where a place, a slope and a child of a cell go.
struct CSymmetry {
  const char* m_Name;
  bool m_bTransposed;
  bool m_bMirroredInX;
  bool m_bMirroredInY;
  std::array<int, 4> m_aiChildren;
};

constexpr auto kSymmetries = std::to_array<CSymmetry>({{"MirroredInX", false, true, false, {1, 0, 3, 2}},
                                                       {"MirroredInY", false, false, true, {3, 2, 1, 0}},
                                                       {"Turned", false, true, true, {2, 3, 0, 1}},
                                                       {"Transposed", true, false, false, {0, 3, 2, 1}}});

CPtCstr Image(const CSymmetry& symmetry, const CExtent& e, CPtCstr c) {
  if (symmetry.m_bMirroredInX) {
    c.m_fX = e.x0 + e.x1 - c.m_fX;
    c.m_fP = -c.m_fP;
  }
  if (symmetry.m_bMirroredInY) {
    c.m_fY = e.y0 + e.y1 - c.m_fY;
    c.m_fQ = -c.m_fQ;
  }
  if (symmetry.m_bTransposed) {
    std::swap(c.m_fX, c.m_fY);
    std::swap(c.m_fP, c.m_fQ);
  }
  return c;
}

void CopyImage(const CSymmetry& symmetry, const CSaveQuadT& from, CSaveQuadT& to) {
  to.SetLeaf(from.IsLeaf());
  for (int k = 0; k < 4 && !from.IsLeaf(); ++k)
    CopyImage(symmetry, from.Child(k), to.Child(symmetry.m_aiChildren[static_cast<std::size_t>(k)]));
}

class SolverSymmetryTest : public testing::TestWithParam<CSymmetry> {
 protected:
  // The solved surface at all lattice points.
  static std::vector<double> Solved(CSolverGrid& solver, const std::vector<CPtCstr>& constraints) {
    solver.m_Grid.SetDiscMap();
    for (const CPtCstr& c : constraints) solver.m_Grid.AddPtCstr(c);
    EXPECT_TRUE(solver.Converge());
    return SurfaceOnLattice(solver.m_Grid);
  }
  static std::vector<double> SurfaceImage(const CLattice& lattice, const std::vector<double>& surface) {
    const int last = lattice.PointsPerSide() - 1;
    std::vector<double> image(surface.size());
    for (int row = 0; row <= last; ++row) {
      for (int column = 0; column <= last; ++column) {
        const int c = GetParam().m_bMirroredInX ? last - column : column;
        const int r = GetParam().m_bMirroredInY ? last - row : row;
        image[GetParam().m_bTransposed ? lattice.Index(r, c) : lattice.Index(c, r)] =
            surface[lattice.Index(column, row)];
      }
    }
    return image;
  }
};

INSTANTIATE_TEST_SUITE_P(Symmetries, SolverSymmetryTest, testing::ValuesIn(kSymmetries),
                         [](const auto& test) { return std::string(test.param.m_Name); });

TEST_P(SolverSymmetryTest, ImageOfTheConstraintsGivesTheImageOfTheSurface) {
  const CSymmetry& symmetry = GetParam();
  const CExtent extent{-20, 60, 10, 70};
  const std::vector<CPtCstr> constraints{
      HeightCstr(-15, 13, 10), HeightCstr(41, 19, -25),      HeightCstr(3, 61, 40),     HeightCstr(33, 51, 5),
      HeightCstr(55, 66, 0),   SlopeCstr(-3, 37, 0.4, -0.6), SlopeCstr(44, 43, -0.2, 1)};
  std::vector<CPtCstr> images;
  images.reserve(constraints.size());
  for (const CPtCstr& c : constraints) images.push_back(Image(symmetry, extent, c));
  CSolverGrid solver(5, 3, extent);
  CSolverGrid mirrored(5, 3, symmetry.m_bTransposed ? CExtent{10, 70, -20, 60} : extent);
  RandomiseRecord(CStaging::Subdivision(solver.m_Grid), 21, 40);
  CopyImage(symmetry, CStaging::Subdivision(solver.m_Grid).Root(), CStaging::Subdivision(mirrored.m_Grid).Root());
  const std::vector<double> surface = Solved(solver, constraints);
  const std::vector<double> wanted = SurfaceImage(solver.m_Grid.Surface().Lattice(), surface);
  const auto [lowest, highest] = std::ranges::minmax(surface);
  EXPECT_LT(LargestDifference(Solved(mirrored, images), wanted), kTolerance * (highest - lowest));
}

// Constraints anywhere on a random subdivision, and again at some of their places with other targets.
class CContradictoryModel : public CSolverGrid {
 public:
  CContradictoryModel(std::uint32_t seed, int contradictions, WaveletMode mode)
      : CSolverGrid(4, 1 + static_cast<int>(seed % 3), CExtent{}, mode), m_Random(seed) {
    if (seed % 2 == 0) RandomiseRecord(CStaging::Subdivision(m_Grid), seed, 15);
    m_Grid.SetDiscMap();
    const auto heights = 3 + static_cast<int>(m_Random() % 6);
    const auto slopes = static_cast<int>(m_Random() % 3);
    for (int k = 0; k < heights; ++k) m_Grid.AddPtCstr(HeightCstr(Uniform(0, 100), Uniform(0, 100), Uniform(-30, 30)));
    for (int k = 0; k < slopes; ++k) {
      m_Grid.AddPtCstr(SlopeCstr(Uniform(0, 100), Uniform(0, 100), Uniform(-0.3, 0.3), Uniform(-0.3, 0.3)));
    }
    for (int k = 0; k < contradictions; ++k) Contradict();
  }

 private:
  void Contradict() {
    CPtCstr c =
        RecordAt(m_Grid.Constraints().Points(), static_cast<int>(m_Random() % m_Grid.Constraints().Points().size()));
    c.m_fZ = Uniform(-30, 30);
    c.m_fP = Uniform(-0.3, 0.3);
    m_Grid.AddPtCstr(c);
  }
  double Uniform(double low, double high) { return std::uniform_real_distribution(low, high)(m_Random); }

  std::mt19937 m_Random;
};

class SolverContradictionTest : public testing::TestWithParam<std::tuple<int, WaveletMode>> {};

INSTANTIATE_TEST_SUITE_P(Models, SolverContradictionTest,
                         testing::Combine(testing::Values(1, 4), testing::ValuesIn(kAllModes)));

TEST_P(SolverContradictionTest, IterationEndsOnAFiniteSurface) {
  constexpr int kTicks = 5000;
  for (std::uint32_t seed = 1; seed <= 24; ++seed) {
    CContradictoryModel model(seed, std::get<int>(GetParam()), std::get<WaveletMode>(GetParam()));
    EXPECT_TRUE(model.Converge(kTicks)) << seed;
    EXPECT_TRUE(AllFinite(model.m_Grid.Surface().Lattice().Heights())) << seed;
  }
}

class SolverLimitsTest : public testing::TestWithParam<WaveletMode> {
 protected:
  CGrid& Grid() { return m_Solver.m_Grid; }
  void Add(const std::vector<CPtCstr>& constraints) {
    for (const CPtCstr& c : constraints) Grid().AddPtCstr(c);
  }
  // Heights of a hilly surface, away from (50, 50).
  void AddSurroundings() {
    Add({HeightCstr(12, 17, 10), HeightCstr(83, 22, -25), HeightCstr(31, 81, 40), HeightCstr(91, 93, 0),
         SlopeCstr(23, 46, 0.5, -0.5)});
  }
  std::vector<double> Heights() { return InUse(Grid().Surface().Lattice(), Grid().Surface().Lattice().Heights()); }
  double HeightAt(double x, double y) {
    return Grid().GetHeightAt(Grid().Surface().Lattice().ColumnOf(x), Grid().Surface().Lattice().RowOf(y));
  }

  // The heights that come nearest to satisfying everything, in the sense of least squares.
  std::vector<double> LeastSquaresHeights() {
    CDirectSystem direct(Grid().Surface().Tree());
    direct.SetConstraints(std::array<const CPtCstrList*, 1>{&Grid().Constraints().Points()});
    const Eigen::MatrixXd matrix(direct.Bordered());
    Eigen::VectorXd right = Eigen::VectorXd::Zero(matrix.rows());
    right.tail(direct.Targets().size()) = direct.Targets();
    const std::vector<double> shape = ShapeHeights(Grid());
    if (!shape.empty()) {
      direct.SetShape(shape);
      right.head(direct.Load().size()) = direct.Load();
    }
    Eigen::CompleteOrthogonalDecomposition<Eigen::MatrixXd> factors;
    factors.setThreshold(1e-11);
    const Eigen::VectorXd solution = factors.compute(matrix).solve(right);
    return {solution.data(), solution.data() + direct.H().rows()};
  }

  CSolverGrid m_Solver{3, 3, CExtent{}, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Modes, SolverLimitsTest, testing::ValuesIn(kAllModes), [](const auto& test) {
  return std::string(test.param == WaveletMode::None ? "None" : test.param == WaveletMode::New ? "New" : "Simple");
});

TEST_P(SolverLimitsTest, WithoutConstraintsTheFlatSurfaceIsConvergedAtOnce) {
  Grid().UpdateGrid();
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_EQ(Heights(), std::vector<double>(81, 0.0));
}

TEST_P(SolverLimitsTest, OneHeightLeavesAPlaneThroughIt) {
  Add({HeightCstr(30, 70, 12)});
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_NEAR(HeightAt(30, 70), 12, 1e-6);
  const CDirectSystem direct(Grid().Surface().Tree());
  const std::vector<double> heights = Heights();
  const Eigen::Map<const Eigen::VectorXd> z(heights.data(), 81);
  EXPECT_LT(z.dot(direct.H() * z), 1e-12);
}

TEST_P(SolverLimitsTest, TwoHeightsAtOnePointEndAtTheirMean) {
  AddSurroundings();
  Add({HeightCstr(50, 50, 13)});
  const std::vector<double> wanted = m_Solver.DirectHeights();
  RecordAt(CStaging::Constraints(Grid()).Points(), 5).m_fZ = 6;
  Add({HeightCstr(50, 50, 20)});
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_NEAR(HeightAt(50, 50), 13, 1e-5);
  EXPECT_LT(m_Solver.ErrorAgainst(wanted), kContradicted);
}

TEST_P(SolverLimitsTest, ContradictionAfterConvergenceEndsAtTheMean) {
  AddSurroundings();
  Add({HeightCstr(50, 50, 6)});
  ASSERT_TRUE(m_Solver.Converge());
  Add({HeightCstr(50, 50, 20)});
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_NEAR(HeightAt(50, 50), 13, 1e-5);
}

TEST_P(SolverLimitsTest, TwoSlopesAtOnePointEndAtTheirMean) {
  AddSurroundings();
  Add({SlopeCstr(57, 52, 0.25, -0.125)});
  const std::vector<double> wanted = m_Solver.DirectHeights();
  RecordAt(CStaging::Constraints(Grid()).Points(), 5).m_fP = -0.75;
  Add({SlopeCstr(57, 52, 1.25, -0.125)});
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(wanted), kContradicted);
}

TEST_P(SolverLimitsTest, ManyContradictionsEndNearestToAllOfThem) {
  AddSurroundings();
  for (int k = 0; k < 10; ++k) {
    const double x = 15 + 7 * k;
    Add({HeightCstr(x, 60 - 3 * k, 5), HeightCstr(x, 60 - 3 * k, -k), HeightCstr(50 + 0.1 * k, 70 - 0.2 * k, 3 * k)});
  }
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(LeastSquaresHeights()), kContradicted);
}

TEST_P(SolverLimitsTest, ContradictionsOverAMapEndNearestToAllOfThem) {
  AddSurroundings();
  FollowRandomMap(Grid(), 5);
  for (int k = 0; k < 5; ++k) {
    const double x = 15 + 14 * k;
    Add({HeightCstr(x, 60 - 3 * k, 5), HeightCstr(x, 60 - 3 * k, -k)});
  }
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(LeastSquaresHeights()), kContradicted);
}

// Nothing is asked for but the map's own bends: the surface has them, and is soon there.
TEST_P(SolverLimitsTest, AMapAloneIsTakenAsItIs) {
  FollowRandomMap(Grid(), 6);
  ASSERT_TRUE(m_Solver.Converge());
  const std::vector<double> shape = ShapeHeights(Grid());
  const CDirectSystem direct(Grid().Surface().Tree());
  const std::vector<double> heights = Heights();
  const Eigen::VectorXd z = Eigen::Map<const Eigen::VectorXd>(heights.data(), 81);
  const Eigen::VectorXd missed = z - Eigen::Map<const Eigen::VectorXd>(shape.data(), 81);
  EXPECT_LT(missed.dot(direct.H() * missed), 1e-12 * z.dot(direct.H() * z));
}

TEST_P(SolverLimitsTest, SurfaceIsExactAgainOnceAContradictionIsGone) {
  AddSurroundings();
  Add({HeightCstr(50, 50, 6), HeightCstr(50, 50, 20)});
  ASSERT_TRUE(m_Solver.Converge());
  SetSelection(CStaging::Constraints(Grid()).Points(), "0000001");
  Grid().DeleteSelectedPtCstr();
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kTolerance);
}

TEST_P(SolverLimitsTest, HeightThatIsNoNumberLeavesTheSurfaceFinite) {
  AddSurroundings();
  Add({HeightCstr(50, 50, 13)});
  ASSERT_TRUE(m_Solver.Converge());
  for (const double z : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
    SetSelection(CStaging::Constraints(Grid()).Points(), "000001");
    Grid().SetSelectedHeight(z);
    ASSERT_TRUE(RunUntilPaused(Grid())) << z;
    EXPECT_TRUE(AllFinite(Heights())) << z;
    Grid().SetSelectedHeight(-7);
    ASSERT_TRUE(m_Solver.Converge()) << z;
    EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kTolerance) << z;
  }
}

// Anything at all, on any subdivision: on lattice points, in one place, outside, contradictory.
RC_GTEST_PROP(SolverProperty, AnyConstraintsEndOnAFiniteSurface, ()) {
  CSolverGrid solver(3, *rc::gen::inRange(0, 4), kOblong,
                     *rc::gen::elementOf(std::vector(kAllModes.begin(), kAllModes.end())));
  RandomiseRecord(CStaging::Subdivision(solver.m_Grid), *rc::gen::arbitrary<std::uint32_t>());
  solver.m_Grid.SetDiscMap();
  const CLattice& lattice = solver.m_Grid.Surface().Lattice();
  for (int count = *rc::gen::inRange(0, 12); count > 0; --count) {
    solver.m_Grid.AddPtCstr({lattice.XOf(*rc::gen::inRange(-1, 34) / 4.0), lattice.YOf(*rc::gen::inRange(-1, 34) / 4.0),
                             *rc::gen::inRange(1U, 4U), *rc::gen::inRange(-80, 80) / 8.0,
                             *rc::gen::inRange(-16, 16) / 8.0, *rc::gen::inRange(-16, 16) / 8.0});
  }
  RC_ASSERT(solver.Converge());
  RC_ASSERT(AllFinite(SurfaceOnLattice(solver.m_Grid)));
}

}  // namespace
