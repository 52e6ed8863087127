// The finished models that come with the program, in other units.

#include <algorithm>
#include <cmath>
#include <string>
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

// A sample in other units, with a flat surface to begin with.
struct CEnlargedSample : CTestGrid {
  CEnlargedSample(const std::string& name, double factor) : CTestGrid(7, 5), m_fFactor(factor) {
    EXPECT_EQ(m_Grid.Load(RELIEVO_SAMPLES "/" + name), GridFileState::Whole);
    CSketch sketch = m_Grid.Sketch();
    Enlarge(sketch, factor);
    m_Grid.TakeOver(sketch);
    m_Grid.SetDiscMap();
    m_Grid.Run().SetRunning(true);
  }
  // Ticks until the surface is no farther from those heights, both in the sample's own units.
  int TicksTo(const std::vector<double>& heights, double distance) {
    int ticks = 0;
    for (; LargestDifference(Heights(), heights) > distance && m_Grid.Run().IsRunning(); ++ticks) m_Grid.UpdateGrid();
    return ticks;
  }
  bool Converge() {
    const bool paused = RunUntilPaused(m_Grid, kTicks);
    m_Console.Take();
    return paused && m_Grid.Solver().HasConverged();
  }
  std::vector<double> Heights() const {
    std::vector<double> heights = NodalHeights(m_Grid);
    for (double& z : heights) z /= m_fFactor;
    return heights;
  }
  double Range() const { return (m_Grid.Surface().MaxHeight() - m_Grid.Surface().MinHeight()) / m_fFactor; }

  double m_fFactor;
};

class SampleUnitsTest : public testing::TestWithParam<const char*> {
 protected:
  CEnlargedSample m_Plain{GetParam(), 1};
};

INSTANTIATE_TEST_SUITE_P(All, SampleUnitsTest, testing::Values("coffee.grid", "cat.grid"));

// Chance in the multipliers makes a difference of some iterations, that is of a tick.
TEST_P(SampleUnitsTest, PowersOfTwoLeaveSurfaceAndIterationsAsTheyAre) {
  ASSERT_TRUE(m_Plain.Converge());
  const std::vector<double> wanted = m_Plain.Heights();
  const double range = m_Plain.Range();
  CEnlargedSample again(GetParam(), 1);
  const int toPercent = again.TicksTo(wanted, 1e-2 * range);
  const int toPermille = toPercent + again.TicksTo(wanted, 1e-3 * range);
  for (const int power : {-10, -7, 7, 13}) {
    CEnlargedSample sample(GetParam(), std::ldexp(1.0, power));
    const int percent = sample.TicksTo(wanted, 1e-2 * range);
    EXPECT_NEAR(percent, toPercent, 1) << power;
    EXPECT_NEAR(percent + sample.TicksTo(wanted, 1e-3 * range), toPermille, 1) << power;
    EXPECT_TRUE(sample.Converge()) << power;
    EXPECT_LT(LargestDifference(sample.Heights(), wanted), 1e-6 * range) << power;
  }
}

// Rounding may put a curve's mark elsewhere, so that surfaces are only about the same.
TEST_P(SampleUnitsTest, OtherFactorsEndAtAboutTheSameSurface) {
  ASSERT_TRUE(m_Plain.Converge());
  for (const double factor : {0.01, 100.0}) {
    CEnlargedSample sample(GetParam(), factor);
    EXPECT_TRUE(sample.Converge()) << factor;
    EXPECT_NEAR(sample.Range(), m_Plain.Range(), 0.01 * m_Plain.Range()) << factor;
  }
}

}  // namespace
