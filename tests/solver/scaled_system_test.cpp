// How the unknowns of the iteration are scaled, compared with the definitions as full matrices.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/QR>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/BasisEnergies.h"
#include "solver/CEnergyTerms.h"
#include "solver/CScaledSystem.h"
#include "solver/ConsistentTargets.h"
#include "solver/GridTerms.h"
#include "support/AllocationCount.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;
using Values = std::vector<double>;

constexpr int kLevel = 4;

// A system over a tree, and the same as full matrices.
struct CScaledTree : CTestTree {
  CScaledTree(int startLevel, WaveletMode mode, const CExtent& extent = kOblong)
      : CTestTree(kLevel, startLevel, extent), m_Mode(mode) {}

  void SetUp() {
    Settle();
    m_Basis.Compile(m_Order, m_Tree, m_Mode);
    CEnergyTerms terms;
    AddGridTerms(m_Tree, m_Order, terms);
    terms.Assemble(m_Order.Count(), m_System.Smoothness());
    m_System.Constraints().Clear();
    m_System.Constraints().Add(std::array<const CPtCstrList*, 1>{&m_Points}, m_Tree, m_Surface);
    m_Scaled.ScaleBasis(m_Order);
    m_Scaled.ScaleRows(m_Order, kSlopeUnit);
    m_Scaled.Prepare();
  }
  Matrix BasisMatrix() const {
    const auto size = static_cast<Eigen::Index>(m_Basis.Size());
    Matrix basis(size, size);
    Values unit(m_Basis.Size(), 0.0);
    for (std::size_t k = 0; k < unit.size(); ++k) {
      unit[k] = 1.0;
      m_Basis.invW(unit, {basis.col(static_cast<Eigen::Index>(k)).data(), unit.size()});
      unit[k] = 0.0;
    }
    return basis;
  }
  Vector D() const {
    return Eigen::Map<const Vector>(m_Scaled.BasisScale().data(), static_cast<Eigen::Index>(m_Basis.Size()));
  }
  Matrix ScaledRows() const {
    Matrix rows = Dense(m_System.Constraints().Rows(), m_Basis.Size());
    for (std::size_t j = 0; j < m_System.ConstraintCount(); ++j)
      if (m_System.Constraints().IsSlope(j)) rows.row(static_cast<Eigen::Index>(j)) *= kSlopeUnit;
    return rows * BasisMatrix() * D().asDiagonal();
  }
  Vector Product(const Vector& v) {
    Vector out(v.size());
    m_Scaled.ApplySystem({v.data(), static_cast<std::size_t>(v.size())},
                         {out.data(), static_cast<std::size_t>(out.size())});
    return out;
  }

  static constexpr double kSlopeUnit = 0.25;

  WaveletMode m_Mode;
  CPtCstrList m_Points;
  CHierarchicalBasis m_Basis;
  CConstraintSystem m_System{m_Basis};
  CScaledSystem m_Scaled{m_System};
};

struct CRandomScaledTree : CScaledTree {
  CRandomScaledTree()
      : CScaledTree(*rc::gen::inRange(0, kLevel + 1), *rc::gen::elementOf(std::vector<WaveletMode>{
                                                          WaveletMode::None, WaveletMode::Simple, WaveletMode::New})) {
    ApplyAll(m_Tree, *GenTreeOps());
    for (int count = *rc::gen::inRange(0, 8); count > 0; --count) {
      m_Points.Add({m_Lattice.XOf(*rc::gen::inRange(0, 161) / 10.0), m_Lattice.YOf(*rc::gen::inRange(0, 161) / 10.0),
                    *rc::gen::inRange(1U, 4U), 1, 2, 3});
    }
    SetUp();
  }
};

RC_GTEST_PROP(BasisEnergiesProperty, AreTheDiagonalOfTheSmoothnessInTheBasis, ()) {
  const CRandomScaledTree tree;
  const Matrix basis = tree.BasisMatrix();
  const Matrix h = Dense(tree.m_System.Smoothness(), tree.m_Basis.Size());
  const Matrix wanted = basis.transpose() * h * basis;
  const Matrix magnitudes = basis.transpose() * h.cwiseAbs() * basis;
  const Values energies = BasisEnergies(tree.m_System.Smoothness(), tree.m_Basis, tree.m_Order);
  for (Eigen::Index k = 0; k < wanted.rows(); ++k) {
    const double energy = energies[static_cast<std::size_t>(k)];
    RC_ASSERT(energy == 0.0 || energy > 1e-12 * magnitudes(k, k));
    RC_ASSERT(std::abs(energy - wanted(k, k)) <= 1e-11 * magnitudes(k, k));
  }
}

RC_GTEST_PROP(ScaledSystemProperty, EveryFunctionWithEnergyWeighsTheSame, ()) {
  const CRandomScaledTree tree;
  const Values energies = BasisEnergies(tree.m_System.Smoothness(), tree.m_Basis, tree.m_Order);
  const std::size_t first = tree.m_Mode == WaveletMode::None ? 0 : 4;
  double largest = 0.0;
  for (std::size_t k = first; k < energies.size(); ++k) {
    if (energies[k] > 0) largest = std::max(largest, 1.0 / std::sqrt(energies[k]));
  }
  const double rest = largest > 0 ? largest : 1.0;
  for (std::size_t k = 0; k < energies.size(); ++k) {
    const bool own = k >= first && energies[k] > 0;
    RC_ASSERT(tree.m_Scaled.BasisScale()[k] == (own ? 1.0 / std::sqrt(energies[k]) : rest));
  }
}

// The smoothness part entry for entry; of the rest what does not depend on the order in which L takes the rows.
RC_GTEST_PROP(ScaledSystemProperty, ProductIsThatOfTheScaledMatrix, ()) {
  CRandomScaledTree tree;
  const Matrix rows = tree.ScaledRows();
  const Eigen::Index n = rows.cols();
  const Eigen::Index m = rows.rows();
  const Values random = RandomValues(*rc::gen::arbitrary<std::uint32_t>(), 2 * tree.m_System.Size());
  Vector v = Eigen::Map<const Vector>(random.data(), n + m);
  const Vector w = Eigen::Map<const Vector>(random.data() + n + m, n + m);
  const Vector av = tree.Product(v);
  RC_ASSERT(std::abs(w.dot(av) - v.dot(tree.Product(w))) <= 1e-7 * (1.0 + av.norm() * w.norm()));
  v.tail(m).setZero();
  const Vector image = tree.Product(v);
  const Matrix basis = tree.BasisMatrix() * tree.D().asDiagonal();
  const Matrix smoothness = basis.transpose() * Dense(tree.m_System.Smoothness(), tree.m_Basis.Size()) * basis;
  RC_ASSERT((image.head(n) - smoothness * v.head(n)).norm() <= 1e-7 * (1.0 + image.norm()));
  if (m == 0) return;
  Matrix s = rows * rows.transpose();
  s.diagonal().array() += 1e-8 * s.diagonal().maxCoeff();
  const Vector values = rows * v.head(n);
  RC_ASSERT(std::abs(image.tail(m).squaredNorm() - values.dot(s.llt().solve(values))) <=
            1e-5 * (1.0 + v.squaredNorm()));
}

TEST(ScaledSystemTest, StepOfTheMultipliersIsTakenBackToThem) {
  CScaledTree tree(3, WaveletMode::New);
  for (const double x : {-3.0, 2.0, 11.0}) tree.m_Points.Add(HeightAndSlopeCstr(x, 22.5 + x / 8, 1));
  tree.SetUp();
  tree.m_Scaled.SetFactor(4.0);
  const std::size_t m = tree.m_System.ConstraintCount();
  Values multipliers(m, 0.0);
  Values step = RandomValues(5, m);
  Vector scaled = Vector::Zero(static_cast<Eigen::Index>(tree.m_System.Size()));
  scaled.tail(static_cast<Eigen::Index>(m)) = Eigen::Map<const Vector>(step.data(), static_cast<Eigen::Index>(m));
  const Vector forces = tree.Product(scaled);
  tree.m_Scaled.AddStep(step, multipliers);
  Values wanted(tree.m_Basis.Size());
  tree.m_System.ApplyTransposedRows(multipliers, wanted);
  for (std::size_t k = 0; k < wanted.size(); ++k)
    EXPECT_NEAR(forces[static_cast<Eigen::Index>(k)] / 4.0, wanted[k] * tree.m_Scaled.BasisScale()[k], 1e-9);
}

TEST(ScaledSystemTest, FactorGivesTheTargetsTheirLength) {
  CScaledTree tree(3, WaveletMode::New);
  tree.m_Points.Add(HeightCstr(2, 22, 5));
  tree.m_Points.Add(HeightCstr(8, 25, -3));
  tree.SetUp();
  const double norm = tree.m_Scaled.TargetNorm(tree.m_System.Constraints().Targets());
  tree.m_Scaled.SetFactor(1.0 / norm);
  const Values x(tree.m_Basis.Size(), 0.0);
  const Values multipliers(2, 0.0);
  EXPECT_NEAR(tree.m_Scaled.ResidualNorm(x, multipliers, tree.m_System.Constraints().Targets()), 1.0, 1e-12);
}

// As full matrices: with forces at random, what a state leaves of them, and the length of what is asked for.
RC_GTEST_PROP(ScaledSystemProperty, ForcesOfAShapeCountInResidualAndRightSide, ()) {
  CRandomScaledTree tree;
  const auto n = static_cast<Eigen::Index>(tree.m_Basis.Size());
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  tree.m_System.Load() = RandomValues(seed, tree.m_Basis.Size());
  const Values x = RandomValues(seed + 1, tree.m_Basis.Size());
  const Values multipliers(tree.m_System.ConstraintCount(), 0.0);
  const Values targets(tree.m_System.ConstraintCount(), 0.0);
  tree.m_Scaled.SetFactor(3.0);
  const Matrix scaled = (tree.BasisMatrix() * tree.D().asDiagonal()).transpose();
  const Vector load = Eigen::Map<const Vector>(tree.m_System.Load().data(), n);
  const Matrix h = Dense(tree.m_System.Smoothness(), tree.m_Basis.Size());
  const Vector z = tree.BasisMatrix() * Eigen::Map<const Vector>(x.data(), n);
  const Vector forces = 3.0 * scaled * (load - h * z);
  const double magnitude = 3.0 * (scaled.cwiseAbs() * (load.cwiseAbs() + h.cwiseAbs() * z.cwiseAbs())).norm();
  Values r(tree.m_System.Size());
  tree.m_Scaled.TakeResidual(x, multipliers, targets, r);
  RC_ASSERT((Eigen::Map<const Vector>(r.data(), n) - forces).norm() <= 1e-12 * magnitude);
  const double asked = 3.0 * (scaled * load).norm();
  RC_ASSERT(std::abs(tree.m_Scaled.RightSideNorm(targets) - asked) <= 1e-12 * magnitude);
  RC_ASSERT(tree.m_Scaled.TargetNorm(targets) == 0.0);
  const CImbalance found = tree.m_Scaled.Measure(x, multipliers, targets);
  RC_ASSERT(std::abs(found.m_fForces - forces.norm()) <= 1e-12 * magnitude);
  RC_ASSERT(std::abs(found.m_fLoad - asked) <= 1e-12 * magnitude);
  const Vector parts = 3.0 * scaled * (load.cwiseAbs() + h.cwiseAbs() * z.cwiseAbs());
  RC_ASSERT(std::abs(found.m_fMagnitude - parts.norm()) <= 1e-12 * magnitude);
}

TEST(ScaledSystemTest, UnitsChangeNothingThatIsScaled) {
  CScaledTree one(4, WaveletMode::New, CExtent{0, 16, 0, 16});
  CScaledTree thousand(4, WaveletMode::New, CExtent{0, 16 * 1024, 0, 16 * 1024});
  for (const auto& [x, y] : {std::array{3.5, 4.25}, {11.0, 7.75}, {6.5, 13.5}}) {
    one.m_Points.Add(HeightCstr(x, y, 1));
    thousand.m_Points.Add(HeightCstr(1024 * x, 1024 * y, 1024));
  }
  one.SetUp();
  thousand.SetUp();
  const Values random = RandomValues(9, one.m_System.Size());
  const Vector v = Eigen::Map<const Vector>(random.data(), static_cast<Eigen::Index>(random.size()));
  EXPECT_EQ((one.Product(v) - thousand.Product(v)).norm(), 0.0) << "powers of two";
}

class ScaleIsKeptTest : public testing::Test {
 protected:
  ScaleIsKeptTest() {
    for (const double x : {-3.0, 2.0, 11.0}) m_Tree.m_Points.Add(HeightAndSlopeCstr(x, 22.5 + x / 8, 1));
    m_Tree.SetUp();
  }
  void Assemble(double weight = 1.0) {
    CEnergyTerms terms;
    AddGridTerms(m_Tree.m_Tree, m_Tree.m_Order, terms);
    terms.Add(weight, {{3, 1.0}, {4, -1.0}});
    terms.Add(-1.0, {{3, 1.0}, {4, -1.0}});
    CCompressedRows matrix;
    terms.Assemble(m_Tree.m_Order.Count(), matrix);
    m_Tree.m_Scaled.SetSmoothness(std::move(matrix));
  }
  void MakeRows() {
    m_Tree.m_System.Constraints().Clear();
    m_Tree.m_System.Constraints().Add(std::array<const CPtCstrList*, 1>{&m_Tree.m_Points}, m_Tree.m_Tree,
                                      m_Tree.m_Surface);
  }
  // Whatever is made anew takes memory.
  bool IsBasisKept() {
    const std::size_t before = AllocationCount();
    m_Tree.m_Scaled.ScaleBasis(m_Tree.m_Order);
    return AllocationCount() == before;
  }
  bool AreRowsKept() {
    const std::size_t before = AllocationCount();
    m_Tree.m_Scaled.ScaleRows(m_Tree.m_Order, CScaledTree::kSlopeUnit);
    return AllocationCount() == before;
  }

  CScaledTree m_Tree{3, WaveletMode::New};
};

TEST_F(ScaleIsKeptTest, WhereOnlyTargetsChange) {
  for (CPtCstr& c : m_Tree.m_Points) c.m_fZ = c.m_fP = 7;
  MakeRows();
  EXPECT_TRUE(IsBasisKept());
  EXPECT_TRUE(AreRowsKept());
}

TEST_F(ScaleIsKeptTest, ForTheBasisWhereAConstraintComesMovesOrGoes) {
  const auto expectOtherRows = [this] {
    m_Tree.m_Basis.Compile(m_Tree.m_Order, m_Tree.m_Tree, m_Tree.m_Mode);
    Assemble();
    MakeRows();
    EXPECT_TRUE(IsBasisKept());
    EXPECT_FALSE(AreRowsKept());
    EXPECT_TRUE(AreRowsKept());
  };
  Assemble();
  IsBasisKept();
  m_Tree.m_Points.Add(HeightCstr(5, 24, 2));
  expectOtherRows();
  m_Tree.m_Points.begin()->m_fX += 0.5;
  expectOtherRows();
  m_Tree.m_Points.begin()->SetState(PtCstrState::kSelected, true);
  ASSERT_TRUE(m_Tree.m_Points.DeleteSelected());
  expectOtherRows();
}

TEST_F(ScaleIsKeptTest, ButNotWithAnotherMatrixOrBasis) {
  Assemble(3.0);
  EXPECT_FALSE(IsBasisKept());
  EXPECT_FALSE(AreRowsKept());
  m_Tree.m_Basis.Compile(m_Tree.m_Order, m_Tree.m_Tree, WaveletMode::None);
  EXPECT_FALSE(IsBasisKept());
  EXPECT_FALSE(AreRowsKept());
}

// A row matrix from full entries.
CCompressedRows RowsOf(const Matrix& matrix) {
  CCompressedRows rows;
  for (Eigen::Index j = 0; j < matrix.rows(); ++j) {
    for (Eigen::Index i = 0; i < matrix.cols(); ++i)
      if (matrix(j, i) != 0.0) rows.Append(static_cast<std::uint32_t>(i), matrix(j, i));
    rows.EndRow();
  }
  return rows;
}

// All in one block, or each row with the two before it.
void MakeConsistent(const CCompressedRows& rows, const Values& scale, Values& targets, bool whole = true) {
  std::vector<CRowBlock> blocks;
  for (std::uint32_t j = 0; j < scale.size(); ++j) {
    if (blocks.empty() || !whole) blocks.push_back({});
    if (!whole && j > 1) blocks.back().m_auRows.push_back(j - 2);
    if (!whole && j > 0) blocks.back().m_auRows.push_back(j - 1);
    blocks.back().m_uEarlier = blocks.back().m_auRows.size() * (whole ? 0 : 1);
    blocks.back().m_auRows.push_back(j);
  }
  CConsistentTargets consistent;
  consistent.SetRows(rows, scale, blocks);
  consistent.Apply(targets);
}

TEST(ConsistentTargetsTest, TargetsThatCanBeMetStayToTheLastBit) {
  Matrix c(3, 4);
  c << 1, 2, 0, 0, 0, 1, 1, 0, 2, 0, 0, 3;
  Values targets{0.1, -7.3, 22.9};
  const Values before = targets;
  MakeConsistent(RowsOf(c), Values{1, 1, 1}, targets);
  EXPECT_EQ(targets, before);
}

TEST(ConsistentTargetsTest, ContradictedTargetsBecomeTheNearestOfTheScaledRows) {
  Matrix c(5, 3);
  c << 1, 0, 0, 1, 0, 0, 0, 1, 2, 0, 2, 4, 3, 0, 1;
  const Vector scale = (Vector(5) << 1, 1, 2, 0.5, 1).finished();
  const Vector d = (Vector(5) << 1, 4, 2, -3, 5).finished();
  const Matrix scaled = scale.asDiagonal() * c;
  const Vector best = Eigen::CompleteOrthogonalDecomposition<Matrix>(scaled).solve(scale.cwiseProduct(d));
  for (const bool whole : {true, false}) {
    Values targets(d.data(), d.data() + 5);
    MakeConsistent(RowsOf(c), Values{1, 1, 2, 0.5, 1}, targets, whole);
    EXPECT_LT((Eigen::Map<const Vector>(targets.data(), 5) - c * best).norm(), 1e-10) << whole;
  }
}

TEST(ConsistentTargetsTest, NothingAskedForStays) {
  Matrix c(2, 2);
  c << 1, 0, 1, 0;
  Values targets{0, 0};
  MakeConsistent(RowsOf(c), Values{1, 1}, targets);
  EXPECT_EQ(targets, (Values{0, 0}));
}

// Blocks of a row each, in which no row depends on another.
TEST(ConsistentTargetsTest, RowsThatDependOnEachOtherAcrossBlocksAreFound) {
  Matrix c(4, 3);
  c << 1, 2, 0, 0, 1, 0, 1, 2, 0, 0, 1, 5;
  const CCompressedRows rows = RowsOf(c);
  const std::vector<CRowBlock> blocks{{{0}, 0}, {{1}, 0}, {{2}, 0}, {{3}, 0}};
  CConsistentTargets consistent;
  consistent.SetRows(rows, Values{1, 1, 1, 1}, blocks);
  for (const Values& free : {Values{0.1, -7.3, 0.1, 2}, Values{3, 1, 3, 1}}) {
    Values targets = free;
    consistent.Apply(targets);
    EXPECT_EQ(targets, free);
    targets[2] += 4;
    consistent.Apply(targets);
    EXPECT_NEAR(targets[0], free[0] + 2, 1e-12);
    EXPECT_NEAR(targets[1], free[1], 1e-12);
    EXPECT_NEAR(targets[2], free[2] + 2, 1e-12);
    EXPECT_NEAR(targets[3], free[3], 1e-12);
  }
}

// Three rows over two columns: each two of them are independent.
TEST(ConsistentTargetsTest, MoreRowsThanColumnsAreContradictoryAcrossBlocks) {
  Matrix c(3, 2);
  c << 1, 0, 0, 1, 1, 1;
  const Vector d = (Vector(3) << 1, 2, 9).finished();
  const Vector best = Eigen::CompleteOrthogonalDecomposition<Matrix>(c).solve(d);
  CConsistentTargets consistent;
  consistent.SetRows(RowsOf(c), Values{1, 1, 1}, std::vector<CRowBlock>{{{0}, 0}, {{1}, 0}, {{2}, 0}});
  Values targets(d.data(), d.data() + 3);
  consistent.Apply(targets);
  EXPECT_LT((Eigen::Map<const Vector>(targets.data(), 3) - c * best).norm(), 1e-10);
  const Values met = targets;
  consistent.Apply(targets);
  EXPECT_LT(LargestDifference(targets, met), 1e-10);
}

}  // namespace
