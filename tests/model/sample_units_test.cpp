// The finished models that come with the program, in other units.

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/CSketch.h"
#include "support/GridBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr int kTicks = 2000;

// All lengths times a factor. Fairness weights go the other way, so that curves stay as heavy beside the rest.
void Enlarge(CSketch& sketch, double factor) {
  const auto enlarge = [factor](CPtCstr& c) {
    c.m_fX *= factor;
    c.m_fY *= factor;
    c.m_fZ *= factor;
  };
  CExtent& e = sketch.m_Extent;
  for (double* side : {&e.x0, &e.x1, &e.y0, &e.y1}) *side *= factor;
  std::ranges::for_each(sketch.m_Points, enlarge);
  for (CCntrCtrl& curve : sketch.m_Curves) {
    for (CCntrNode& node : curve.Nodes()) {
      enlarge(node);
      for (double* weight : {&node.m_Weights.m_fLeftCurvature, &node.m_Weights.m_fRightCurvature,
                             &node.m_Weights.m_fLeftTorsion, &node.m_Weights.m_fRightTorsion})
        *weight /= factor;
    }
    for (const CurveSide side : {CurveSide::Left, CurveSide::Right})
      curve.SetDistance(side, factor * curve.AutoBump(side).m_fDistance);
  }
}

// A sample in other units, solved from a flat surface.
struct CEnlargedSample : CTestGrid {
  CEnlargedSample(const std::string& name, double factor) : CTestGrid(7, 5), m_fFactor(factor) {
    EXPECT_EQ(m_Grid.Load(RELIEVO_SAMPLES "/" + name), GridFileState::Whole);
    CSketch sketch = m_Grid.Sketch();
    Enlarge(sketch, factor);
    m_Grid.TakeOver(sketch);
    m_Grid.SetDiscMap();
    m_Grid.Run().SetRunning(true);
    m_Console.Take();
    m_bPaused = RunUntilPaused(m_Grid, kTicks);
  }
  // In the sample's own units.
  std::vector<double> Heights() const {
    std::vector<double> heights = NodalHeights(m_Grid);
    for (double& z : heights) z /= m_fFactor;
    return heights;
  }
  double Range() const { return (m_Grid.Surface().MaxHeight() - m_Grid.Surface().MinHeight()) / m_fFactor; }
  int Iterations() const { return m_Grid.Solver().Counter(); }

  double m_fFactor;
  bool m_bPaused = false;
};

class SampleUnitsTest : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(All, SampleUnitsTest, testing::Values("coffee.grid", "cat.grid"));

TEST_P(SampleUnitsTest, PowersOfTwoLeaveSurfaceAndIterationsAsTheyAre) {
  const CEnlargedSample plain(GetParam(), 1);
  ASSERT_TRUE(plain.m_bPaused && plain.m_Grid.Solver().HasConverged());
  const std::vector<double> wanted = plain.Heights();
  for (const int power : {-10, -7, 7, 13}) {
    const CEnlargedSample sample(GetParam(), std::ldexp(1.0, power));
    EXPECT_TRUE(sample.m_bPaused && sample.m_Grid.Solver().HasConverged()) << power;
    EXPECT_LT(LargestDifference(sample.Heights(), wanted), 1e-6 * plain.Range()) << power;
    EXPECT_NEAR(sample.Iterations(), plain.Iterations(), 10) << power;
  }
}

// Rounding may put a curve's mark elsewhere, so that surfaces are only about the same.
TEST_P(SampleUnitsTest, OtherFactorsEndAtAboutTheSameSurface) {
  const CEnlargedSample plain(GetParam(), 1);
  for (const double factor : {0.01, 100.0}) {
    const CEnlargedSample sample(GetParam(), factor);
    EXPECT_TRUE(sample.m_bPaused && sample.m_Grid.Solver().HasConverged()) << factor;
    EXPECT_NEAR(sample.Range(), plain.Range(), 0.01 * plain.Range()) << factor;
  }
}

}  // namespace
