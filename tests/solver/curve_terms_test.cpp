// The energy along fairness curves, compared with terms formed a second time from the leaves.

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include <Eigen/LU>
#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/DirectSolution.h"
#include "support/UpdateBuilders.h"

namespace {

using Matrix = Eigen::MatrixXd;

struct CPoint {
  double x;
  double y;
};

// Where the segment crosses the outline of an active leaf, by share of its way, with both ends; near repetitions once.
std::vector<double> SharesOfPlaces(const CQuadTree& tree, const CPoint& a, const CPoint& b) {
  std::vector<double> shares{0.0, 1.0};
  const CLattice& lattice = tree.Lattice();
  tree.ForEachLeaf([&](const CQuadT& leaf) {
    const CCellRect r = leaf.ModelRect();
    const auto add = [&](double t) {
      const double x = a.x + t * (b.x - a.x);
      const double y = a.y + t * (b.y - a.y);
      const double slackX = 1e-9 * lattice.StepX();
      const double slackY = 1e-9 * lattice.StepY();
      const bool onLeaf =
          x > r.x - slackX && x < r.x + r.width + slackX && y > r.y - slackY && y < r.y + r.height + slackY;
      if (onLeaf && t > 0 && t < 1) shares.push_back(t);
    };
    for (const double x : {r.x, r.x + r.width}) {
      if (b.x != a.x) add((x - a.x) / (b.x - a.x));
    }
    for (const double y : {r.y, r.y + r.height}) {
      if (b.y != a.y) add((y - a.y) / (b.y - a.y));
    }
  });
  std::ranges::sort(shares);
  std::vector<double> distinct;
  for (const double t : shares) {
    if (distinct.empty() || t - distinct.back() > 1e-8) distinct.push_back(t);
  }
  distinct.back() = 1.0;
  return distinct;
}

Matrix SegmentEnergy(const CQuadTree& tree, const CDirectSystem& system, const CCntrNode& a, const CCntrNode& b) {
  const auto weight = [](const CCntrNode& n) {
    return (n.m_Weights.m_fLeftCurvature + n.m_Weights.m_fLeftTorsion) / 2;
  };
  const std::vector<double> shares = SharesOfPlaces(tree, {a.m_fX, a.m_fY}, {b.m_fX, b.m_fY});
  const double length = std::hypot(b.m_fX - a.m_fX, b.m_fY - a.m_fY);
  const CExtent& e = tree.Lattice().Extent();
  const auto row = [&](double t) {
    Eigen::RowVectorXd height = Eigen::RowVectorXd::Zero(system.H().rows());
    const auto form = system.HeightForm(std::clamp(a.m_fX + t * (b.m_fX - a.m_fX), e.x0, e.x1),
                                        std::clamp(a.m_fY + t * (b.m_fY - a.m_fY), e.y0, e.y1));
    for (const auto& [unknown, coef] : form.value()) height[unknown] = coef;
    return height;
  };
  Matrix energy = Matrix::Zero(system.H().rows(), system.H().rows());
  for (std::size_t k = 1; k + 1 < shares.size(); ++k) {
    const double d1 = (shares[k] - shares[k - 1]) * length;
    const double d2 = (shares[k + 1] - shares[k]) * length;
    const double w = (1 - shares[k]) * weight(a) + shares[k] * weight(b);
    const Eigen::RowVectorXd form = d2 * row(shares[k - 1]) - (d1 + d2) * row(shares[k]) + d1 * row(shares[k + 1]);
    energy += w / ((d1 + d2) * std::pow(d1 * d2, 2) * 0.5) * form.transpose() * form;
  }
  return energy;
}

struct CFairGrid : CSolverGrid {
  CFairGrid(int maxLevel, int baseLevel, std::uint32_t refinement) : CSolverGrid(maxLevel, baseLevel, kOblong) {
    if (refinement != 0) RandomiseRecord(CStaging::Subdivision(m_Grid), refinement);
    m_Grid.SetDiscMap();
  }
  CCntrCtrl& Add(const CPlaces& places, bool closed = false, CurveType type = CurveType::kFairness) {
    m_Grid.AddCurve(PointsAt(places), type, closed);
    return CStaging::Constraints(m_Grid).Curves().back();
  }
  Matrix Assembled() {
    m_Grid.SetDiscMap();
    return Dense(m_Grid.Solver().System().Smoothness(), m_Grid.Surface().Order().Count());
  }
  Matrix Expected() {
    const CDirectSystem system(m_Grid.Surface().Tree());
    Matrix sum(system.H());
    for (const CCntrCtrl& curve : m_Grid.Constraints().Curves()) {
      if (!curve.HasType(CurveType::kFairness)) continue;
      curve.ForEachSegment(
          [&](const CCntrNode& a, const CCntrNode& b) { sum += SegmentEnergy(m_Grid.Surface().Tree(), system, a, b); });
    }
    return sum;
  }
  void ExpectAssembledAsExpected() {
    const Matrix assembled = Assembled();
    const Matrix expected = Expected();
    ASSERT_EQ(assembled.rows(), expected.rows());
    EXPECT_LT((assembled - expected).cwiseAbs().maxCoeff(), 1e-6 * expected.cwiseAbs().maxCoeff());
    EXPECT_EQ((assembled - assembled.transpose()).cwiseAbs().maxCoeff(), 0.0);
  }
};

void SetNodeWeights(CCntrCtrl& curve, std::uint32_t seed) {
  std::mt19937 random(seed);
  for (CCntrNode& node : curve.Nodes()) {
    node.m_Weights.m_fLeftCurvature = static_cast<double>(random() % 10);
    node.m_Weights.m_fLeftTorsion = 1.0 + static_cast<double>(random() % 10);
    node.m_Weights.m_fRightCurvature = 1e6;
    node.m_Weights.m_fRightTorsion = 1e6;
  }
}

class FairTermsTest : public testing::TestWithParam<std::uint32_t> {};
INSTANTIATE_TEST_SUITE_P(Refinements, FairTermsTest, testing::Values(0, 1, 2, 3));

TEST_P(FairTermsTest, AreThoseOfTheCrossings) {
  CFairGrid test(4, 2, GetParam());
  SetNodeWeights(test.Add({{-3.1, 20.3}, {4.2, 25.1}, {11.9, 22.4}}), 1);
  test.ExpectAssembledAsExpected();
}
TEST_P(FairTermsTest, ClosedCurveHasTheLastSegmentToo) {
  CFairGrid test(4, 2, GetParam());
  SetNodeWeights(test.Add({{-3.1, 20.3}, {4.2, 25.1}, {11.9, 22.4}}, true), 2);
  test.ExpectAssembledAsExpected();
}
TEST_P(FairTermsTest, NodesOnBordersAndLinesThroughCornersAreNoPlacesTwice) {
  // Steps are 1 and 0.375; a cell of the base level measures 4 by 1.5.
  CFairGrid test(4, 2, GetParam());
  SetNodeWeights(test.Add({{-3.5, 20}, {12.5, 26}}), 3);
  SetNodeWeights(test.Add({{0.5, 21.5}, {4.5, 21.5}, {4.5, 24.1}}), 4);
  test.ExpectAssembledAsExpected();
}
TEST_P(FairTermsTest, StandBesideTearsAndCreases) {
  CFairGrid test(4, 2, GetParam());
  test.Add({{-2, 24.3}, {9, 25.1}}, false, CurveType::kPosition);
  test.Add({{0, 21}, {6, 23}}, false, CurveType::kNormal);
  SetNodeWeights(test.Add({{-3.1, 20.3}, {11.9, 20.9}}), 5);
  test.ExpectAssembledAsExpected();
}

TEST(FairTermsRuleTest, TearsAndCreasesAloneMakeTheGridTermsOfTheirMarks) {
  CFairGrid test(4, 2, 2);
  test.Add({{-2, 24.3}, {9, 21.1}, {4, 25.5}}, true, CurveType::kPosition);
  test.Add({{0, 21}, {6, 23}, {11, 20.5}}, false, CurveType::kNormal);
  test.ExpectAssembledAsExpected();
}

TEST(FairTermsRuleTest, WithoutWeightThereIsNoTerm) {
  CFairGrid test(3, 2, 0);
  const Matrix plain = test.Assembled();
  test.Add({{-3.1, 20.3}, {4.2, 25.1}});
  EXPECT_EQ(test.Assembled(), plain);
  for (const double weight : {-1.0, std::nan(""), HUGE_VAL}) {
    CStaging::Constraints(test.m_Grid).Curves().back().SetAllWeights(weight, weight, 0, 0);
    EXPECT_EQ(test.Assembled(), plain) << weight;
  }
  CStaging::Constraints(test.m_Grid).Curves().back().SetAllWeights(1, 1, 0, 0);
  EXPECT_NE(test.Assembled(), plain);
}

TEST(FairTermsRuleTest, OneWeightedNodeIsEnough) {
  for (const bool first : {true, false}) {
    CFairGrid test(4, 2, 1);
    CCntrCtrl& curve = test.Add({{-3.1, 20.3}, {11.9, 22.4}});
    const Matrix plain = test.Assembled();
    (first ? curve.Nodes().front() : curve.Nodes().back()).m_Weights.m_fLeftCurvature = 4;
    test.ExpectAssembledAsExpected();
    EXPECT_NE(test.Assembled(), plain) << first;
  }
}

TEST(FairTermsRuleTest, OtherCurvesMakeNone) {
  CFairGrid test(3, 2, 0);
  CCntrCtrl& curve = test.Add({{-3.1, 20.3}, {4.2, 25.1}}, false, CurveType::kNormal);
  const Matrix creased = test.Assembled();
  curve.SetAllWeights(1, 1, 1, 1);
  EXPECT_EQ(test.Assembled(), creased);
}

TEST(FairTermsRuleTest, SegmentsWithoutCrossingOrLengthMakeNone) {
  CFairGrid test(3, 2, 0);
  const Matrix plain = test.Assembled();
  for (const CPlaces& places :
       {CPlaces{{1, 20.2}, {2, 20.4}}, CPlaces{{1, 20.2}, {1, 20.2}}, CPlaces{{NAN, 21}, {5, 25}}}) {
    CStaging::Constraints(test.m_Grid).Curves().clear();
    test.Add(places).SetAllWeights(1, 1, 0, 0);
    EXPECT_EQ(test.Assembled(), plain);
  }
}

TEST(FairTermsRuleTest, PartOutsideTheModelMakesNone) {
  CFairGrid test(3, 2, 0);
  const Matrix plain = test.Assembled();
  test.Add({{-30, 21}, {-20, 40}}).SetAllWeights(1, 1, 0, 0);
  EXPECT_EQ(test.Assembled(), plain);
  CStaging::Constraints(test.m_Grid).Curves().clear();
  test.Add({{-30, 21}, {12, 21}}).SetAllWeights(1, 1, 0, 0);
  const Matrix fair = test.Assembled();
  EXPECT_NE(fair, plain);
  EXPECT_TRUE(fair.allFinite());
}

TEST(FairTermsRuleTest, StraightSurfacesCostNothing) {
  CFairGrid test(4, 2, 1);
  SetNodeWeights(test.Add({{-3.1, 20.3}, {4.2, 25.1}, {11.9, 22.4}}), 6);
  const Matrix energy = test.Assembled();
  std::vector<double> plane(test.m_Grid.Surface().Lattice().PointCount());
  FillHeights(test.m_Grid.Surface().Lattice(), plane, CRamp{});
  const std::vector<double> z = InUse(test.m_Grid.Surface().Lattice(), plane);
  const Eigen::Map<const Eigen::VectorXd> heights(z.data(), static_cast<Eigen::Index>(z.size()));
  EXPECT_LT(std::abs(heights.dot(energy * heights)), 1e-6);
}

TEST(FairTermsRuleTest, SolvedSurfaceIsTheDirectMinimiser) {
  CFairGrid test(4, 3, 0);
  AddAll(test.m_Grid, SomeConstraints());
  SetNodeWeights(test.Add({{-3.1, 20.3}, {4.2, 25.1}, {11.9, 22.4}}), 7);
  ASSERT_TRUE(test.Converge());
  const Matrix energy = test.Expected();
  CDirectSystem system(test.m_Grid.Surface().Tree());
  system.SetConstraints(std::array<const CPtCstrList*, 1>{&test.m_Grid.Constraints().Points()});
  const Eigen::Index n = energy.rows();
  const Eigen::Index m = system.C().rows();
  Matrix bordered = Matrix::Zero(n + m, n + m);
  bordered.topLeftCorner(n, n) = energy;
  bordered.bottomLeftCorner(m, n) = Matrix(system.C());
  bordered.topRightCorner(n, m) = Matrix(system.C()).transpose();
  Eigen::VectorXd right = Eigen::VectorXd::Zero(n + m);
  right.tail(m) = system.Targets();
  const Eigen::VectorXd solution = bordered.fullPivLu().solve(right);
  EXPECT_LT(test.ErrorAgainst({solution.data(), solution.data() + n}), 1e-6);
}

}  // namespace
