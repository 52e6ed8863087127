#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <Eigen/QR>
#include <gtest/gtest.h>

#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"
#include "reference/CDepthMap.h"
#include "reference/StraightFit.h"
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
  // RMS of what each height is missed by where a polynomial of that degree is fitted to all others.
  double ForetoldBy(int degree) const {
    const auto count = static_cast<Eigen::Index>(m_aHeights.size());
    double sum = 0.0;
    for (Eigen::Index out = 0; out < count; ++out) {
      Eigen::MatrixXd powers(count, degree + 1);
      Eigen::VectorXd z(count);
      for (Eigen::Index k = 0; k < count; ++k) {
        const CHeightOverMap& height = m_aHeights[static_cast<std::size_t>(k)];
        for (int power = 0; power <= degree; ++power) powers(k, power) = std::pow(height.m_fValue, power);
        z[k] = height.m_fZ;
      }
      const Eigen::VectorXd left = powers.row(out);
      const double height = z[out];
      powers.row(out).setZero();
      z[out] = 0;
      const double missed = height - left.dot(powers.colPivHouseholderQr().solve(z));
      sum += missed * missed;
    }
    return std::sqrt(sum / static_cast<double>(count));
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

TEST_F(ReferenceFitTest, BesideABentResponseThereIsTheStraightOne) {
  AddHeights(25, [](double share) { return 200 + 40 * std::pow(share, 1 / 1.5); });
  ASSERT_TRUE(Fit().m_bBent);
  const CReferenceFit beside = StraightFit(m_Points, m_Extent, m_Reading, m_Settings);
  EXPECT_FALSE(beside.m_bBent);
  EXPECT_EQ(m_Settings.m_Response, ReferenceResponse::Automatic);
  EXPECT_NEAR(beside.OffsetAtZero(m_Reading) + beside.Scale(m_Reading) * m_Reading.Low(),
              beside.HeightOver(m_Reading.Normalised(m_Reading.Low())), 1e-9);
  m_Settings.m_Response = ReferenceResponse::Straight;
  EXPECT_EQ(beside.OffsetAtZero(m_Reading), Fit().OffsetAtZero(m_Reading));
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

// Values that differ by rounding are one.
TEST_F(ReferenceFitTest, SixValuesAreSixThatDiffer) {
  const auto square = [](double v) { return 20 * v * v + 30 * v; };
  const auto fit = [&](int values, double apart) {
    m_aHeights.clear();
    for (int k = 0; k < 18; ++k) {
      const double v = 0.3 * (k % values) - 0.8 + apart * k;
      m_aHeights.push_back({v, square(v), k});
    }
    return FitReference(m_aHeights, m_Settings, m_Reading, m_Extent, ResponseChoice::Anew);
  };
  EXPECT_FALSE(fit(5, 0).m_bBent);
  EXPECT_FALSE(fit(5, 1e-12).m_bBent);
  EXPECT_TRUE(fit(6, 0).m_bBent);
  m_Settings.m_Response = ReferenceResponse::Bent;
  EXPECT_FALSE(fit(5, 0).m_bBent) << "whatever is asked for";
  EXPECT_TRUE(fit(6, 0).m_bBent);
}

// From a bend that is not worth it to one that is, and from noise that hides one to noise that does not: the choice is
// what the rule says of errors that are computed here from its words.
TEST_F(ReferenceFitTest, BothThresholdsAreThoseOfTheForetellingErrors) {
  int taken = 0;
  int tooSmall = 0;
  int notBetter = 0;
  for (const double noise : {0.0, 0.001, 0.1, 1.0, 3.0}) {
    for (double bend = 0.02; bend < 40; bend *= 1.3) {
      m_Points.clear();
      AddHeights(
          25, [&](double share) { return 40 * share + bend * share * share; }, noise);
      const CReferenceFit fit = Fit();
      const double straight = ForetoldBy(1);
      const double bent = ForetoldBy(2);
      const auto [low, high] = std::ranges::minmax(m_aHeights, {}, &CHeightOverMap::m_fZ);
      const bool worthwhile = straight > 0.001 * (high.m_fZ - low.m_fZ);
      const bool better = bent <= 0.9 * straight;
      ASSERT_EQ(fit.m_bBent, worthwhile && better) << noise << ' ' << bend << ' ' << bent / straight;
      taken += worthwhile && better ? 1 : 0;
      tooSmall += better && !worthwhile ? 1 : 0;
      notBetter += worthwhile && !better ? 1 : 0;
    }
  }
  EXPECT_GT(taken, 10);
  EXPECT_GT(tooSmall, 3);
  EXPECT_GT(notBetter, 10);
}

// 12 heights are left out one by one, so that each of the parabolas there has 11.
TEST_F(ReferenceFitTest, ElevenHeightsAreTooFewWhateverIsAskedFor) {
  m_Settings.m_Response = ReferenceResponse::Bent;
  AddHeights(11, [](double share) { return 40 * share * share; });
  EXPECT_FALSE(Fit().m_bBent);
  EXPECT_FALSE(Fit(ResponseChoice::KeepBent).m_bBent);
  m_Points.Add(HeightCstr(5, 5, 40 * ShareAt(0.05) * ShareAt(0.05)));
  EXPECT_TRUE(Fit().m_bBent);
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

// The parabola with no slope at an end is fitted to all heights again: no other one of that kind misses them by less.
// With either sign of the scale.
TEST_F(ReferenceFitTest, AtAnEndWithoutSlopeItIsFittedAgain) {
  m_Settings.m_Response = ReferenceResponse::Bent;
  for (const double sign : {1.0, -1.0}) {
    for (const bool upper : {true, false}) {
      m_Points.clear();
      AddHeights(
          30, [&](double share) { return sign * 20 * (upper ? std::min(share, 0.55) : std::max(share, 0.45)); }, 0.3);
      const CReferenceFit fit = Fit();
      ASSERT_TRUE(fit.m_bBent);
      const double end = upper ? 1.0 : -1.0;
      EXPECT_NEAR(fit.m_fLinear + 2 * end * fit.m_fSquare, 0, 1e-9);
      EXPECT_GT(sign * (fit.m_fLinear - 2 * end * fit.m_fSquare), 0);
      // In (v - end)^2: a straight line by least squares.
      const auto count = static_cast<Eigen::Index>(m_aHeights.size());
      Eigen::MatrixXd forms(count, 2);
      Eigen::VectorXd z(count);
      for (Eigen::Index k = 0; k < count; ++k) {
        const CHeightOverMap& height = m_aHeights[static_cast<std::size_t>(k)];
        forms(k, 0) = 1;
        forms(k, 1) = (height.m_fValue - end) * (height.m_fValue - end);
        z[k] = height.m_fZ;
      }
      const Eigen::VectorXd best = forms.colPivHouseholderQr().solve(z);
      EXPECT_NEAR(fit.m_fSquare, best[1], 1e-9);
      EXPECT_NEAR(fit.m_fOffset, best[0] + best[1], 1e-9);
    }
  }
}

// With the sign kept inside, ends are not touched.
TEST_F(ReferenceFitTest, ASlopeThatKeepsItsSignIsFree) {
  m_Settings.m_Response = ReferenceResponse::Bent;
  AddHeights(30, [](double share) { return 10 + 7 * share - 3 * share * share; });
  const CReferenceFit fit = Fit();
  ASSERT_TRUE(fit.m_bBent);
  EXPECT_NEAR(HeightAt(fit, 0), 10, 1e-9);
  EXPECT_NEAR(HeightAt(fit, 1), 14, 1e-9);
  EXPECT_NEAR(HeightAt(fit, 0.5), 12.75, 1e-9);
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
