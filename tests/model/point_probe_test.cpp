#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "model/PointProbe.h"
#include "solver/CCompressedRows.h"
#include "solver/CEnergyTerms.h"
#include "support/GridBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

// A grid with hanging points, marked triangles and a crease, and its system set up.
class PointProbeTest : public ::testing::TestWithParam<std::uint32_t> {
 protected:
  void SetUp() override {
    Randomise(Grid().Surface().Tree(), GetParam());
    Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(8, 8), PointFlag::kCrease);
    Grid().SetSparseH();
  }
  CGrid& Grid() { return m_Grid.m_Grid; }
  CPointProbe Probe() { return CPointProbe(Grid()); }
  void AddTo(CEnergyTerms& terms, const CProbedTerm& term) {
    std::vector<CEnergyTerms::CEntry> form;
    for (std::size_t k = 0; k < term.m_uCount; ++k) {
      const std::int32_t number = Grid().Surface().Order().NumberOf(term.m_auPoints[k]);
      form.emplace_back(Grid().Surface().Order().ScanOf(static_cast<std::size_t>(number)), term.m_afCoefs[k]);
    }
    if (!form.empty()) terms.Add(term.m_fWeight, form.data(), form.data() + form.size());
  }
  std::size_t NearestOfAll(double x, double y) {
    const CLattice& lattice = Grid().Surface().Lattice();
    std::size_t nearest = 0;
    double shortest = HUGE_VAL;
    for (int row = 0; row < lattice.PointsPerSide(); ++row) {
      for (int column = 0; column < lattice.PointsPerSide(); ++column) {
        const double distance = std::hypot(lattice.ColumnOf(x) - column, lattice.RowOf(y) - row);
        if (!lattice.Has(lattice.Index(column, row), PointFlag::kInUse) || distance >= shortest) continue;
        shortest = distance;
        nearest = lattice.Index(column, row);
      }
    }
    return nearest;
  }

  CTestGrid m_Grid;
};

}  // namespace

TEST_P(PointProbeTest, AllTermsTogetherAreTheMatrix) {
  CEnergyTerms terms;
  for (std::size_t k = 0; k < Grid().Surface().Order().Count(); ++k) {
    AddTo(terms, Probe().SecondDifference(Grid().Surface().Order().PointOf(k), true));
    AddTo(terms, Probe().SecondDifference(Grid().Surface().Order().PointOf(k), false));
  }
  for (const CLeaf& leaf : Grid().Surface().Tree().Leaves()) AddTo(terms, Probe().MixedDifference(*leaf.m_pCell));
  CCompressedRows matrix;
  terms.Assemble(Grid().Surface().Order().Count(), matrix);
  const std::vector<double> v = RandomValues(GetParam(), Grid().Surface().Order().Count());
  std::vector<double> probed(v.size());
  std::vector<double> expected(v.size());
  matrix.Times(v, probed);
  Grid().Solver().System().Smoothness().Times(v, expected);
  const double scale = LargestDifference(expected, std::vector<double>(v.size()));
  EXPECT_GT(scale, 0);
  EXPECT_LT(LargestDifference(probed, expected), 1e-12 * scale);
}

TEST_P(PointProbeTest, NearestPointIsTheNearestOfAllPointsInUse) {
  const std::vector<double> chance = RandomValues(GetParam() + 1, 400);
  for (std::size_t k = 0; k < chance.size(); k += 2) {
    const double x = kOblong.x0 + (kOblong.x1 - kOblong.x0) * (chance[k] + 1) / 2;
    const double y = kOblong.y0 + (kOblong.y1 - kOblong.y0) * (chance[k + 1] + 1) / 2;
    EXPECT_EQ(Probe().NearestPoint(x, y), NearestOfAll(x, y)) << x << ", " << y;
  }
}

INSTANTIATE_TEST_SUITE_P(Trees, PointProbeTest, ::testing::Values(1U, 2U, 3U, 4U, 5U, 7U));

namespace {

class UniformProbeTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  CPointProbe Probe() { return CPointProbe(Grid()); }
  std::size_t At(int column, int row) { return Grid().Surface().Lattice().Index(column, row); }

  CTestGrid m_Grid;
};

}  // namespace

TEST_F(UniformProbeTest, PlacesOutsideCountAsOnTheBorder) {
  EXPECT_EQ(Probe().NearestPoint(-1000, -1000), At(0, 0));
  EXPECT_EQ(Probe().NearestPoint(1000, 1000), At(16, 16));
  EXPECT_EQ(Probe().LeafAt(1000, -1000).X0(), 12);
}

TEST_F(UniformProbeTest, BorderPointHasATermAlongTheBorderOnly) {
  EXPECT_EQ(Probe().SecondDifference(At(4, 0), true).m_uCount, 3U);
  EXPECT_EQ(Probe().SecondDifference(At(4, 0), false).m_uCount, 0U);
  EXPECT_EQ(Probe().SecondDifference(At(4, 0), false).m_fWeight, 0);
}

TEST_F(UniformProbeTest, TermNamesItsPointsInOrder) {
  const CProbedTerm term = Probe().SecondDifference(At(4, 8), false);
  EXPECT_EQ(term.m_auPoints[0], At(4, 4));
  EXPECT_EQ(term.m_auPoints[1], At(4, 8));
  EXPECT_EQ(term.m_auPoints[2], At(4, 12));
  const double h = 4 * Grid().Surface().Lattice().StepY();
  EXPECT_DOUBLE_EQ(term.m_afCoefs[0], h);
  EXPECT_DOUBLE_EQ(term.m_afCoefs[1], -2 * h);
  EXPECT_DOUBLE_EQ(term.m_afCoefs[2], h);
}

TEST_F(UniformProbeTest, CreasePointAndMarkedLeafHaveNoTerm) {
  Grid().Surface().Lattice().Set(At(4, 4), PointFlag::kCrease);
  EXPECT_EQ(Probe().SecondDifference(At(4, 4), true).m_uCount, 0U);
  CQuadT& leaf = *MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, CellFlag::kRisingCrease);
  EXPECT_EQ(Probe().MixedDifference(leaf).m_uCount, 0U);
}

TEST_F(UniformProbeTest, NumberAndLevelCodeAreThoseOfTheOrder) {
  EXPECT_EQ(Probe().NumberOf(At(16, 0)), 1);
  EXPECT_EQ(Probe().LevelCodeOf(At(16, 0)), 1);
  EXPECT_EQ(Probe().LevelCodeOf(At(8, 0)), 2);
  EXPECT_EQ(Probe().LevelCodeOf(At(0, 8)), -2);
  EXPECT_EQ(Probe().NumberOf(At(1, 1)), -1);
  EXPECT_EQ(Probe().LevelCodeOf(At(1, 1)), 0);
}

TEST_F(UniformProbeTest, AreaIsTheSmoothnessWeight) {
  EXPECT_EQ(Probe().Area(At(4, 4)), Grid().Surface().Lattice().Smoothness()[At(4, 4)]);
  EXPECT_GT(Probe().Area(At(4, 4)), Probe().Area(At(0, 0)));
}
