#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include <Eigen/Core>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CConstraintSystem.h"
#include "solver/CEnergyTerms.h"
#include "solver/GridTerms.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Values = std::vector<double>;

constexpr int kSystemLevel = 4;

// A tree with a system over it.
struct CSystemTree : CTestTree {
  explicit CSystemTree(int level, int startLevel, WaveletMode mode) : CTestTree(level, startLevel), m_Mode(mode) {}

  void SetUp() {
    Settle();
    m_Basis.Compile(m_Order, m_Tree, m_Mode);
    CEnergyTerms terms;
    AddGridTerms(m_Tree, m_Order, terms);
    terms.Assemble(m_Order.Count(), m_System.Smoothness());
    m_System.Constraints().Clear();
    m_System.Constraints().Add(Lists(), m_Tree, m_Surface);
    m_System.Prepare();
  }
  Values Product(const Values& v) {
    Values out(m_System.Size(), 1e9);
    m_System.ApplySystem(v, out);
    return out;
  }
  std::array<const CPtCstrList*, 1> Lists() const { return {&m_Points}; }
  // The basis' inverse transform and, in the lower right corner, the identity on the multipliers.
  Matrix BasisMatrix() const {
    const auto size = static_cast<Eigen::Index>(m_System.Size());
    Matrix basis = Matrix::Identity(size, size);
    Values unit(m_System.UnknownCount(), 0.0);
    for (std::size_t k = 0; k < unit.size(); ++k) {
      unit[k] = 1.0;
      m_Basis.invW(unit, {basis.col(static_cast<Eigen::Index>(k)).data(), unit.size()});
      unit[k] = 0.0;
    }
    return basis;
  }
  // The whole system, formed from the definitions.
  Matrix WantedMatrix() const {
    CDirectSystem direct(m_Tree);
    direct.SetConstraints(Lists());
    const Matrix basis = BasisMatrix();
    return basis.transpose() * Matrix(direct.Bordered()) * basis;
  }

  WaveletMode m_Mode;
  CPtCstrList m_Points;
  CHierarchicalBasis m_Basis;
  CConstraintSystem m_System{m_Basis};
};

struct CRandomSystem : CSystemTree {
  CRandomSystem()
      : CSystemTree(kSystemLevel, *rc::gen::inRange(0, kSystemLevel + 1),
                    *rc::gen::elementOf(std::vector(kAllModes.begin(), kAllModes.end()))) {
    ApplyAll(m_Tree, *GenTreeOps());
    for (int count = *rc::gen::inRange(0, 8); count > 0; --count) {
      m_Points.Add({m_Lattice.XOf(*rc::gen::inRange(0, 161) / 10.0), m_Lattice.YOf(*rc::gen::inRange(0, 161) / 10.0),
                    *rc::gen::inRange(1U, 4U), 1, 2, 3});
    }
    SetUp();
  }
  Values Random() const { return RandomValues(*rc::gen::arbitrary<std::uint32_t>(), m_System.Size()); }
};

double Dot(const Values& a, const Values& b) { return std::inner_product(a.begin(), a.end(), b.begin(), 0.0); }
double Length(const Values& a) { return std::sqrt(Dot(a, a)); }

TEST(ConstraintSystemTest, SizeIsThatOfTheUnknownsAndTheRows) {
  CSystemTree tree(3, 2, WaveletMode::New);
  tree.m_Points.Add(HeightAndSlopeCstr(tree.m_Lattice.XOf(3), tree.m_Lattice.YOf(4), 1));
  tree.SetUp();
  EXPECT_EQ(tree.m_System.UnknownCount(), 25U);
  EXPECT_EQ(tree.m_System.ConstraintCount(), 3U);
  EXPECT_EQ(tree.m_System.Size(), 28U);
}

TEST(ConstraintSystemTest, WithoutConstraintsOnlyTheSmoothnessIsLeft) {
  CSystemTree tree(2, 2, WaveletMode::None);
  tree.SetUp();
  ASSERT_EQ(tree.m_System.Size(), 25U);
  const Values v = RandomValues(3, 25);
  Values wanted(25);
  tree.m_System.Smoothness().Times(ByScan(tree.m_Order, v), wanted);
  EXPECT_EQ(tree.Product(v), ByUnknown(tree.m_Order, wanted));
}

// In plain heights, so that each part of the product stands alone.
TEST(ConstraintSystemTest, MultipliersActThroughTheTransposedRows) {
  CSystemTree tree(2, 2, WaveletMode::None);
  tree.m_Points.Add(HeightCstr(tree.m_Lattice.XOf(2), tree.m_Lattice.YOf(1), 5));
  tree.SetUp();
  Values v(26, 0.0);
  v[25] = 3.0;
  Values wanted(26, 0.0);
  wanted[static_cast<std::size_t>(tree.m_Order.NumberOf(tree.m_Lattice.Index(2, 1)))] = 30.0;
  EXPECT_EQ(tree.Product(v), wanted);
}

TEST(ConstraintSystemTest, ConstraintsActOnTheHeightsOfTheCoefficients) {
  CSystemTree tree(2, 2, WaveletMode::Simple);
  tree.m_Points.Add(HeightCstr(tree.m_Lattice.XOf(2), tree.m_Lattice.YOf(0), 5));
  tree.SetUp();
  Values v(26, 0.0);
  v[0] = 1.0;  // the lower left corner, of which the middle of the lowest row is half
  EXPECT_DOUBLE_EQ(tree.Product(v)[25], 5.0);
}

TEST(ConstraintSystemTest, PlanesThatMeetNoConstraintGiveNothing) {
  for (const WaveletMode mode : kAllModes) {
    CSystemTree tree(3, 2, mode);
    tree.m_Tree.CellAt(1, 1, 2).subdiv(false);
    tree.SetUp();
    Values heights(tree.m_Lattice.PointCount());
    FillHeights(tree.m_Lattice, heights, CRamp{});
    Values coefs(tree.m_Order.Count());
    tree.m_Basis.W(InUse(tree.m_Lattice, heights), coefs);
    EXPECT_LT(Length(tree.Product(coefs)), 1e-12);
  }
}

RC_GTEST_PROP(ConstraintSystemProperty, ProductIsSymmetric, ()) {
  CRandomSystem tree;
  const Values v = tree.Random();
  const Values w = tree.Random();
  const Values av = tree.Product(v);
  const Values aw = tree.Product(w);
  const double scale = std::max(Length(av) * Length(w), Length(v) * Length(aw));
  RC_ASSERT(std::abs(Dot(av, w) - Dot(v, aw)) <= 1e-12 * scale);
}

RC_GTEST_PROP(ConstraintSystemProperty, ProductIsThatOfTheBorderedMatrix, ()) {
  CRandomSystem tree;
  const Values v = tree.Random();
  const Matrix matrix = tree.WantedMatrix();
  const Eigen::VectorXd wanted = matrix * Eigen::Map<const Eigen::VectorXd>(v.data(), matrix.rows());
  RC_ASSERT(LargestDifference(tree.Product(v), Values(wanted.data(), wanted.data() + wanted.size())) <=
            1e-8 * (1.0 + wanted.cwiseAbs().maxCoeff()));
}

RC_GTEST_PROP(ConstraintSystemProperty, ProductIsLinear, ()) {
  CRandomSystem tree;
  const Values v = tree.Random();
  const Values w = tree.Random();
  Values sum(v.size());
  for (std::size_t k = 0; k < v.size(); ++k) sum[k] = 2.0 * v[k] - w[k];
  const Values av = tree.Product(v);
  const Values aw = tree.Product(w);
  const Values image = tree.Product(sum);
  for (std::size_t k = 0; k < v.size(); ++k)
    RC_ASSERT(std::abs(image[k] - (2.0 * av[k] - aw[k])) <= 1e-12 * (1.0 + Length(av) + Length(aw)));
}

// What an edit of the constraints rebuilds, seen on a grid.

struct CMatrices {
  Matrix m_H;
  Matrix m_C;
  Values m_Targets;
};

CMatrices MatricesOf(const CGrid& grid) {
  const CConstraintSystem& system = grid.Solver().System();
  const std::span<const double> targets = system.Constraints().Targets();
  return {Dense(system.Smoothness(), system.UnknownCount()),
          Dense(system.Constraints().Rows(), system.UnknownCount()),
          {targets.begin(), targets.end()}};
}

double Distance(const Matrix& a, const Matrix& b) { return (a - b).cwiseAbs().maxCoeff(); }

// A crease that appears behind the solver's back tells whether the smoothness is formed again.
struct CEditedGrid : CSolverGrid {
  CEditedGrid() : CSolverGrid(3, 3) {
    m_Grid.AddPtCstr(HeightCstr(20, 30, 4));
    m_Grid.AddPtCstr(SlopeCstr(60, 70, 0.5, 0.25));
    m_Grid.UpdateGrid();
    m_Before = MatricesOf(m_Grid);
    m_Grid.Surface().Lattice().Set(m_Grid.Surface().Lattice().Index(4, 4), PointFlag::kCrease);
  }
  CMatrices m_Before;
};

TEST(ConstraintSystemTest, ChangedTargetKeepsTheMatrices) {
  CEditedGrid grid;
  SetSelection(CStaging::Constraints(grid.m_Grid).Points(), "10");
  grid.m_Grid.SetSelectedHeight(7);
  SetSelection(CStaging::Constraints(grid.m_Grid).Points(), "01");
  grid.m_Grid.ChangeSelectedNormal(1, 2);
  grid.m_Grid.UpdateGrid();
  const CMatrices after = MatricesOf(grid.m_Grid);
  EXPECT_EQ(Distance(after.m_H, grid.m_Before.m_H), 0);
  EXPECT_EQ(Distance(after.m_C, grid.m_Before.m_C), 0);
  EXPECT_EQ(after.m_Targets, (Values{70, 22.5, 15}));
}

TEST(ConstraintSystemTest, MovedConstraintKeepsTheSmoothnessAndRebuildsTheRows) {
  CEditedGrid grid;
  SetSelection(CStaging::Constraints(grid.m_Grid).Points(), "10");
  grid.m_Grid.MoveSelectedPtCstr(30, -20);
  grid.m_Grid.UpdateGrid();
  const CMatrices after = MatricesOf(grid.m_Grid);
  EXPECT_EQ(Distance(after.m_H, grid.m_Before.m_H), 0);
  EXPECT_EQ(Distance(after.m_C.bottomRows(2), grid.m_Before.m_C.bottomRows(2)), 0);
  EXPECT_DOUBLE_EQ(after.m_C(0, 9 * 1 + 4), 8.0);
}

TEST(ConstraintSystemTest, AddedConstraintRebuildsTheSmoothnessToo) {
  CEditedGrid grid;
  grid.m_Grid.AddPtCstr(HeightCstr(80, 20, 1));
  grid.m_Grid.UpdateGrid();
  const CMatrices after = MatricesOf(grid.m_Grid);
  EXPECT_GT(Distance(after.m_H, grid.m_Before.m_H), 1e-6);
  EXPECT_LT(Distance(after.m_H, Matrix(CDirectSystem(grid.m_Grid.Surface().Tree()).H())), 1e-15);
  EXPECT_EQ(after.m_Targets, (Values{40, 10, 2.5, 5}));
}

}  // namespace
