#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

#include <Eigen/Core>
#include <gtest/gtest.h>

#include "solver/CConjugateResidual.h"
#include "solver/CConstraintSystem.h"
#include "solver/CEnergyTerms.h"
#include "solver/CRestForces.h"
#include "solver/CScaledSystem.h"
#include "solver/GridTerms.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"
#include "support/TreeBuilders.h"

namespace {

using Outcome = CConjugateResidual::Outcome;
using Values = std::vector<double>;
using Vector = Eigen::VectorXd;

// A small system in the hierarchical basis, with start values and the iteration on it.
struct CIteration : CTestTree {
  explicit CIteration(const std::vector<CPtCstr>& constraints, const CExtent& extent = kOblong)
      : CTestTree(2, 2, extent) {
    for (const CPtCstr& c : constraints) m_Points.Add(c);
    m_Basis.Compile(m_Order, m_Tree, WaveletMode::New);
    CEnergyTerms terms;
    AddGridTerms(m_Tree, m_Order, terms);
    terms.Assemble(m_Order.Count(), m_System.Smoothness());
    m_System.Constraints().Add(Lists(), m_Tree, m_Surface);
    m_afX.assign(m_System.UnknownCount(), 0.0);
    m_afMultipliers.assign(m_System.ConstraintCount(), 0.0);
  }
  void Randomise() {
    m_afX = RandomValues(1, m_afX.size());
    m_afMultipliers = RandomValues(2, m_afMultipliers.size());
  }
  // The energy counts from a shape at random.
  void FollowRandomShape() {
    CEnergyTerms terms;
    AddGridTerms(m_Tree, m_Order, terms);
    m_afShape = RandomValues(4, m_afX.size());
    CRestForces forces;
    forces.Collect(terms, m_afShape);
    forces.MakeLoad({1.0, 0.0}, m_System.Load());
  }
  void Restart() {
    m_Scaled.Prepare();
    m_Residual.Restart(m_Scaled, m_afX, m_afMultipliers, m_System.Constraints().Targets());
  }
  Outcome Step() {
    Values way(m_afMultipliers.size(), 0.0);
    const Outcome outcome = m_Residual.Step(m_Scaled, m_afX, way);
    m_Scaled.AddStep(way, m_afMultipliers);
    return outcome;
  }

  std::array<const CPtCstrList*, 1> Lists() const { return {&m_Points}; }
  Values State() const {
    Values state = m_afX;
    state.insert(state.end(), m_afMultipliers.begin(), m_afMultipliers.end());
    return state;
  }
  Vector Product(const Vector& v) {
    Vector out(v.size());
    m_System.Prepare();
    m_System.ApplySystem({v.data(), static_cast<std::size_t>(v.size())},
                         {out.data(), static_cast<std::size_t>(out.size())});
    return out;
  }
  // Right-hand side minus the product with the present state.
  Vector Residual() {
    const Values state = State();
    Vector right = Vector::Zero(static_cast<Eigen::Index>(state.size()));
    for (std::size_t j = 0; j < m_afMultipliers.size(); ++j)
      right[static_cast<Eigen::Index>(m_afX.size() + j)] = m_System.Constraints().Targets()[j];
    if (!m_System.Load().empty()) right.head(static_cast<Eigen::Index>(m_afX.size())) = LoadInBasis();
    return right - Product(Eigen::Map<const Vector>(state.data(), right.size()));
  }

  // What the forces do to each function of the basis.
  Vector LoadInBasis() const {
    Vector forces(static_cast<Eigen::Index>(m_afX.size()));
    Values unit(m_afX.size(), 0.0);
    Values function(m_afX.size());
    for (std::size_t k = 0; k < unit.size(); ++k) {
      unit[k] = 1.0;
      m_Basis.invW(unit, function);
      unit[k] = 0.0;
      forces[static_cast<Eigen::Index>(k)] =
          std::inner_product(function.begin(), function.end(), m_System.Load().begin(), 0.0);
    }
    return forces;
  }

  CPtCstrList m_Points;
  CHierarchicalBasis m_Basis;
  CConstraintSystem m_System{m_Basis};
  CScaledSystem m_Scaled{m_System};
  CConjugateResidual m_Residual;
  Values m_afX;
  Values m_afMultipliers;
  Values m_afShape;
};

std::vector<CPtCstr> FourHeightsAndASlope() {
  return {HeightCstr(-3, 20.5, 1), HeightCstr(11, 21, -2), HeightCstr(2, 25.5, 3), HeightCstr(5, 22, 0),
          SlopeCstr(8, 24, 0.25, -0.5)};
}

Vector AsVector(const Values& values) {
  return Eigen::Map<const Vector>(values.data(), static_cast<Eigen::Index>(values.size()));
}

// Whether the energy counts from a shape.
class ConjugateResidualShapeTest : public testing::TestWithParam<bool> {
 protected:
  ConjugateResidualShapeTest() {
    if (GetParam()) m_Iteration.FollowRandomShape();
    m_Iteration.Randomise();
  }
  CIteration m_Iteration{FourHeightsAndASlope()};
};

INSTANTIATE_TEST_SUITE_P(Shapes, ConjugateResidualShapeTest, testing::Bool());

TEST_P(ConjugateResidualShapeTest, RestartTakesTheResidualOfTheStartValues) {
  CIteration& iteration = m_Iteration;
  iteration.Restart();
  const Vector r = iteration.Residual();
  EXPECT_NEAR(iteration.m_Residual.StartNorm(), r.norm(), 1e-12 * r.norm());
  EXPECT_NEAR(iteration.m_Residual.ResidualNorm(), r.norm(), 1e-12 * r.norm());
  EXPECT_NEAR(iteration.m_Residual.Rho(), r.dot(iteration.Product(r)), 1e-12 * r.squaredNorm());
  EXPECT_NEAR(iteration.m_Residual.Pi(), iteration.Product(r).squaredNorm(), 1e-11 * r.squaredNorm());
}

TEST_P(ConjugateResidualShapeTest, StepsAreThoseOfTheMethod) {
  CIteration& iteration = m_Iteration;
  iteration.Restart();
  Vector v = AsVector(iteration.State());
  Vector r = iteration.Residual();
  Vector p = r;
  Vector s = iteration.Product(r);
  Vector q = s;
  for (int step = 0; step < 8; ++step) {
    ASSERT_EQ(iteration.Step(), Outcome::Stepped);
    const double rho = r.dot(s);
    const double alpha = rho / q.dot(q);
    v += alpha * p;
    r -= alpha * q;
    s = iteration.Product(r);
    const double beta = s.dot(r) / rho;
    p = beta * p + r;
    q = beta * q + s;
    EXPECT_LT((AsVector(iteration.State()) - v).norm(), 1e-9 * v.norm()) << step;
    EXPECT_NEAR(iteration.m_Residual.Rho(), s.dot(r), 1e-9 * r.squaredNorm()) << step;
    EXPECT_NEAR(iteration.m_Residual.Pi(), q.squaredNorm(), 1e-9 * q.squaredNorm()) << step;
  }
}

TEST_P(ConjugateResidualShapeTest, NoStepLengthensTheResidual) {
  CIteration& iteration = m_Iteration;
  iteration.Restart();
  const double start = iteration.m_Residual.StartNorm();
  for (int step = 0; step < 150; ++step) {
    const double before = iteration.m_Residual.ResidualNorm();
    if (iteration.Step() != Outcome::Stepped) break;
    EXPECT_LE(iteration.m_Residual.ResidualNorm(), before * (1 + 1e-9)) << step;
  }
  EXPECT_LT(iteration.m_Residual.ResidualNorm(), 1e-6 * start);
  EXPECT_EQ(iteration.m_Residual.StartNorm(), start);
}

TEST_P(ConjugateResidualShapeTest, ComesToTheDirectSolution) {
  CIteration& iteration = m_Iteration;
  iteration.Restart();
  for (int step = 0; step < 500 && iteration.Step() == Outcome::Stepped; ++step) continue;
  CDirectSystem direct(iteration.m_Tree);
  direct.SetConstraints(iteration.Lists());
  if (GetParam()) direct.SetShape(iteration.m_afShape);
  Values heights(iteration.m_afX.size());
  iteration.m_Basis.invW(iteration.m_afX, heights);
  EXPECT_LT(LargestDifference(heights, direct.Solve()), 1e-7);
}

TEST(ConjugateResidualTest, SolvedSystemStopsAtOnce) {
  CIteration iteration({});
  iteration.Restart();
  EXPECT_EQ(iteration.m_Residual.Rho(), 0.0);
  EXPECT_EQ(iteration.Step(), Outcome::SmallRho);
  EXPECT_EQ(iteration.m_afX, Values(25, 0.0));
}

// The residual of targets alone has no part in the heights, so that r . A r vanishes: who starts the iteration must
// give it one.
TEST(ConjugateResidualTest, TargetsAloneStopAtOnceAndChangeNothing) {
  CIteration iteration(FourHeightsAndASlope());
  iteration.Restart();
  EXPECT_GT(iteration.m_Residual.StartNorm(), 10.0);
  EXPECT_EQ(iteration.Step(), Outcome::SmallRho);
  EXPECT_EQ(iteration.State(), Values(31, 0.0));
}

// On a wide model the smoothness is about 1e-9, its square below the limit while it is still above.
TEST(ConjugateResidualTest, SmallImageOfTheDirectionStopsAndChangesNothing) {
  CIteration iteration({}, CExtent{0, 560, 0, 560});
  iteration.Randomise();
  iteration.Restart();
  const Values before = iteration.State();
  ASSERT_GT(std::abs(iteration.m_Residual.Rho()), CConjugateResidual::kBreakdown);
  ASSERT_LT(iteration.m_Residual.Pi(), CConjugateResidual::kBreakdown);
  EXPECT_EQ(iteration.Step(), Outcome::SmallPi);
  EXPECT_EQ(iteration.State(), before);
}

TEST(ConjugateResidualTest, LimitsAreThoseOfTheMethod) { EXPECT_EQ(CConjugateResidual::kBreakdown, 1e-30); }

TEST(ConjugateResidualTest, LeavingTheFiniteNumbersShows) {
  CIteration iteration({HeightCstr(3, 23, std::numeric_limits<double>::infinity())});
  iteration.Randomise();
  iteration.Restart();
  iteration.Step();
  EXPECT_FALSE(iteration.m_Residual.IsFinite());
  CIteration tame(FourHeightsAndASlope());
  tame.Randomise();
  tame.Restart();
  tame.Step();
  EXPECT_TRUE(tame.m_Residual.IsFinite());
}

TEST(ConjugateResidualTest, RestartForgetsTheDirectionsSoFar) {
  CIteration iteration(FourHeightsAndASlope());
  iteration.Randomise();
  iteration.Restart();
  for (int step = 0; step < 5; ++step) iteration.Step();
  CIteration fresh(FourHeightsAndASlope());
  fresh.m_afX = iteration.m_afX;
  fresh.m_afMultipliers = iteration.m_afMultipliers;
  for (CIteration* each : {&iteration, &fresh}) {
    each->Restart();
    each->Step();
    each->Step();
  }
  EXPECT_EQ(iteration.State(), fresh.State());
}

}  // namespace
