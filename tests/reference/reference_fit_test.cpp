#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"
#include "reference/CDepthMap.h"
#include "reference/CReferenceFit.h"
#include "support/AllocationCount.h"
#include "support/ConstraintBuilders.h"
#include "support/DepthBuilders.h"

namespace {

// Over a map whose values grow from 0 to 1 along x.
class ReferenceFitTest : public testing::Test {
 protected:
  CReferenceFit Fit(ResponseChoice choice = ResponseChoice::Anew) {
    CollectHeights(m_Points, m_Extent, m_Reading, m_aHeights);
    return FitReference(m_aHeights, m_Settings, m_Reading, m_Extent, choice);
  }
  // `count` heights of a function of the share of the map's range that is under them.
  template <typename Field>
  void AddHeights(int count, const Field& field, double noise = 0.0) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> anywhere(0.0, 1.0);
    std::normal_distribution<double> normal(0.0, 1.0);
    for (int k = 0; k < count; ++k) {
      const double x = anywhere(random);
      m_Points.Add(HeightCstr(100 * x, 100 * anywhere(random), field(ShareAt(x)) + noise * normal(random)));
    }
  }
  double ShareAt(double x) const { return (m_Reading.Bilinear(m_Reading.ColumnOf(x), 3) + 1) / 2; }
  double HeightAt(const CReferenceFit& fit, double share) const { return fit.HeightOver(2 * share - 1); }

  CDepthMap m_Map = DepthMapOf(64, 64, [](double u, double) { return u; });
  CDepthReading m_Reading{m_Map, false};
  CExtent m_Extent;
  CPtCstrList m_Points;
  CReferenceSettings m_Settings;
  std::vector<CHeightOverMap> m_aHeights;
};

TEST_F(ReferenceFitTest, ScaleAndOffsetAreThoseOfTheHeights) {
  AddHeights(5, [](double share) { return 30 - 12 * share; });
  const CReferenceFit fit = Fit();
  EXPECT_TRUE(fit.m_bFitted);
  EXPECT_FALSE(fit.m_bBent);
  EXPECT_FALSE(fit.m_bNearIsBright) << "the heights say so";
  EXPECT_EQ(fit.m_iHeights, 5);
  EXPECT_NEAR(HeightAt(fit, 0.0), 30, 1e-9);
  EXPECT_NEAR(HeightAt(fit, 1.0), 18, 1e-9);
  EXPECT_NEAR(fit.Scale(m_Reading) * (m_Reading.High() - m_Reading.Low()), -12, 1e-9);
  EXPECT_NEAR(fit.OffsetAtZero(m_Reading) + fit.Scale(m_Reading) * m_Reading.High(), 18, 1e-9);
  EXPECT_LT(fit.m_fRms, 1e-9);
}

TEST_F(ReferenceFitTest, MisfitNamesTheWorstHeight) {
  m_Points.Add(SlopeCstr(50, 50, 1, 1));
  AddHeights(6, [](double share) { return 10 * share; });
  RecordAt(m_Points, 4).m_fZ -= 3;
  const CReferenceFit fit = Fit();
  EXPECT_EQ(fit.m_iWorst, 4);
  EXPECT_LT(fit.m_fWorst, -1);
  EXPECT_GT(fit.m_fRms, 0.5);
}

TEST_F(ReferenceFitTest, WithFewerHeightsTheSceneHasTheDepthThatItIsSaidToHave) {
  CReferenceFit fit = Fit();
  EXPECT_FALSE(fit.m_bFitted);
  EXPECT_EQ(fit.m_iWorst, -1);
  EXPECT_NEAR(HeightAt(fit, 1) - HeightAt(fit, 0), 100.0 / 3, 1e-9);
  EXPECT_NEAR(HeightAt(fit, 0.5), 0, 1e-6) << "the mean of the map";
  m_Settings.m_SceneDepth = 8;
  m_Settings.m_bNearIsBright = false;
  m_Points.Add(HeightCstr(20, 50, 40));
  m_Points.Add(HeightCstr(60, 50, 44));
  fit = Fit();
  EXPECT_FALSE(fit.m_bNearIsBright);
  EXPECT_NEAR(HeightAt(fit, 1) - HeightAt(fit, 0), -8, 1e-9);
  EXPECT_NEAR((HeightAt(fit, ShareAt(0.2)) + HeightAt(fit, ShareAt(0.6))) / 2, 42, 1e-9);
}

TEST_F(ReferenceFitTest, HeightsOnOneValueTellNoScale) {
  for (const double y : {10, 30, 50, 70}) m_Points.Add(HeightCstr(25, y, y));
  EXPECT_FALSE(Fit().m_bFitted);
  m_Points.Add(HeightCstr(75, 10, 3));
  EXPECT_TRUE(Fit().m_bFitted);
}

TEST_F(ReferenceFitTest, OnlyEnabledHeightsOverValuesCount) {
  std::vector<float> values(m_Map.Values().begin(), m_Map.Values().end());
  for (std::size_t k = 0; k < values.size() / 2; ++k) values[k] = std::nanf("");
  const CDepthMap half(64, 64, 32, std::move(values));
  AddHeights(4, [](double share) { return 10 * share; });
  for (CPtCstr& point : m_Points) point.m_fY = 80;
  m_Points.Add(HeightCstr(50, 20, 1000));
  m_Points.Add(HeightCstr(50, 80, 1000)).SetKind(PtCstrKind::kDisabled, true);
  m_Points.Add(HeightCstr(150, 80, 1000));
  CollectHeights(m_Points, m_Extent, CDepthReading(half, false), m_aHeights);
  EXPECT_EQ(m_aHeights.size(), 4U);
}

TEST_F(ReferenceFitTest, AGammaTakesTheBentResponse) {
  AddHeights(25, [](double share) { return 40 * std::pow(share, 1 / 1.5); });
  const CReferenceFit fit = Fit();
  EXPECT_TRUE(fit.m_bBent);
  EXPECT_TRUE(fit.m_bChoosesBent);
  m_Settings.m_Response = ReferenceResponse::Straight;
  EXPECT_FALSE(Fit().m_bBent);
  EXPECT_LT(fit.m_fRms, 0.5 * Fit().m_fRms);
}

TEST_F(ReferenceFitTest, AStraightMapDoesNot) {
  AddHeights(
      25, [](double share) { return 40 * share; }, 1.5);
  EXPECT_FALSE(Fit().m_bBent);
  m_Settings.m_Response = ReferenceResponse::Bent;
  EXPECT_TRUE(Fit().m_bBent);
  EXPECT_FALSE(Fit().m_bChoosesBent);
}

TEST_F(ReferenceFitTest, BentNeedsTwelveHeightsOnSixValues) {
  const auto square = [](double share) { return 40 * share * share; };
  AddHeights(11, square);
  EXPECT_FALSE(Fit().m_bBent);
  m_Points.Add(HeightCstr(5, 5, square(ShareAt(0.05))));
  EXPECT_TRUE(Fit().m_bBent);
  m_Points.clear();
  for (int k = 0; k < 20; ++k) m_Points.Add(HeightCstr(10 + 20 * (k % 5), 50, square(ShareAt(0.1 + 0.2 * (k % 5)))));
  EXPECT_FALSE(Fit().m_bBent) << "five values";
}

// Less than a thousandth of the range is not worth a bend.
TEST_F(ReferenceFitTest, BentMustBeWorthwhile) {
  AddHeights(25, [](double share) { return 40 * share + 0.1 * share * share; });
  EXPECT_FALSE(Fit().m_bBent);
}

TEST_F(ReferenceFitTest, ABentResponseNeverTurnsBack) {
  m_Settings.m_Response = ReferenceResponse::Bent;
  AddHeights(30, [](double share) { return 20 * std::min(share, 0.55); });
  const CReferenceFit fit = Fit();
  ASSERT_TRUE(fit.m_bBent);
  EXPECT_NEAR(fit.m_fLinear + 2 * fit.m_fSquare, 0, 1e-9) << "no slope at the upper end";
  EXPECT_GT(fit.m_fLinear - 2 * fit.m_fSquare, 0);
  m_Points.clear();
  AddHeights(30, [](double share) { return -20 * std::max(share, 0.45); });
  EXPECT_NEAR(Fit().m_fLinear - 2 * Fit().m_fSquare, 0, 1e-9) << "nor at the lower one";
}

TEST_F(ReferenceFitTest, WhileItIsKeptTheResponseOnlySaysWhatItWouldBe) {
  AddHeights(25, [](double share) { return 40 * share * share; });
  const CReferenceFit kept = Fit(ResponseChoice::KeepStraight);
  EXPECT_FALSE(kept.m_bBent);
  EXPECT_TRUE(kept.m_bChoosesBent);
  EXPECT_TRUE(Fit(ResponseChoice::KeepBent).m_bBent);
}

TEST_F(ReferenceFitTest, AllocatesNothingOnceHeightsHaveHadTheirPlace) {
  AddHeights(40, [](double share) { return 40 * share * share; });
  Fit();
  const std::size_t before = AllocationCount();
  Fit();
  EXPECT_EQ(AllocationCount(), before);
}

// As the heights of a far away mountain: their differences must not drown.
TEST_F(ReferenceFitTest, HeightsFarFromZeroAreFittedAsWell) {
  AddHeights(25, [](double share) { return 1e7 + 40 * std::sqrt(share); });
  EXPECT_TRUE(Fit().m_bBent);
  EXPECT_LT(Fit().m_fRms, 2);
}

}  // namespace
