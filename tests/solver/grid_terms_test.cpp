#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <Eigen/Core>
#include <Eigen/Eigenvalues>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CCompressedRows.h"
#include "solver/CEnergyTerms.h"
#include "solver/GridTerms.h"
#include "support/DirectSolution.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;
using Kind = CTreeOp::Kind;

// Of the lattice of level 2 over kOblong, in model units.
constexpr double kStepX = 4.0;
constexpr double kStepY = 1.5;

// A tree and the matrix of its smoothness energy.
struct CEnergyTree : CTestTree {
  using CTestTree::CTestTree;

  Matrix H() {
    Settle();
    CEnergyTerms terms;
    AddGridTerms(m_Tree, m_Order, terms);
    CCompressedRows rows;
    terms.Assemble(m_Order.Count(), rows);
    return Dense(rows, m_Order.Count());
  }
  Matrix WantedH() {
    Settle();
    return Matrix(CDirectSystem(m_Tree).H());
  }
  double Entry(std::array<int, 2> a, std::array<int, 2> b) {
    const Matrix h = H();
    const auto place = [this](const std::array<int, 2>& point) {
      return m_Order.ScanOf(static_cast<std::size_t>(m_Order.NumberOf(m_Lattice.Index(point[0], point[1]))));
    };
    return h(place(a), place(b));
  }
  template <typename Field>
  Vector Sampled(const Field& field) const {
    std::vector<double> heights(m_Lattice.PointCount());
    FillHeights(m_Lattice, heights, field);
    const std::vector<double> z = InUse(m_Lattice, heights);
    return Eigen::Map<const Vector>(z.data(), static_cast<Eigen::Index>(z.size()));
  }
  template <typename Field>
  double Energy(const Field& field) {
    const Matrix h = H();
    const Vector z = Sampled(field);
    return z.dot(h * z);
  }
};

double Largest(const Matrix& m) { return m.size() == 0 ? 0.0 : m.cwiseAbs().maxCoeff(); }

// The second derivatives of x^2 and of y^2 are 2, the mixed one of xy is 1; each square is weighted by the area in
// lattice steps over 16. Points of the first and last column (row) have none in x (y).

TEST(GridTermsTest, SecondDifferenceInXIsWeightedByTheAreaOverSixteen) {
  CEnergyTree tree(2, 2);
  EXPECT_NEAR(tree.Energy([](double x, double) { return x * x; }), 4.0 * (3 * 4) / 16, 1e-9);
}

TEST(GridTermsTest, SecondDifferenceInYIsWeightedByTheAreaOverSixteen) {
  CEnergyTree tree(3, 3);
  EXPECT_NEAR(tree.Energy([](double, double y) { return y * y; }), 4.0 * (7 * 8) / 16, 1e-8);
}

TEST(GridTermsTest, MixedDifferenceIsWeightedByTheAreaOverSixteen) {
  CEnergyTree tree(3, 3);
  EXPECT_NEAR(tree.Energy([](double x, double y) { return x * y; }), 64.0 / 16, 1e-9);
}

TEST(GridTermsTest, AreasAreInLatticeStepsWhateverTheSizeOfTheCells) {
  CEnergyTree tree(3, 2);
  EXPECT_NEAR(tree.Energy([](double x, double) { return x * x; }), 4.0 * (3 * 4) * 4 / 16, 1e-8);
  EXPECT_NEAR(tree.Energy([](double x, double y) { return x * y; }), 64.0 / 16, 1e-9);
}

TEST(GridTermsTest, OneCellHasItsMixedDifferenceOnly) {
  CEnergyTree tree(2, 0);
  const Vector form{{1.0, -1.0, -1.0, 1.0}};
  const Matrix wanted = form * form.transpose();
  EXPECT_LT(Largest(tree.H() - wanted * (16.0 / std::pow(16.0 * 6.0, 2) / 16)), 1e-18);
}

TEST(GridTermsTest, BorderPointsKeepTheTermAlongTheBorder) {
  CEnergyTree tree(2, 2);
  // Of the points 0 and 2 of the lowest row only the term in x of the point between holds both; its area is one half.
  EXPECT_NEAR(tree.Entry({0, 0}, {2, 0}), 0.5 / 16 / std::pow(kStepX, 4), 1e-15);
  EXPECT_NEAR(tree.Entry({4, 1}, {4, 3}), 0.5 / 16 / std::pow(kStepY, 4), 1e-15);
  EXPECT_NEAR(tree.Entry({1, 1}, {3, 1}), 1.0 / 16 / std::pow(kStepX, 4), 1e-15);
}

// Level 2, four cells of which the lower left one is split:
//
//   4 o-------o-------o      The points (2, 1) and (1, 2) hang.
//     |       |       |
//   2 o---o---o-------o
//     o---o---o       |
//   0 o---o---o-------o
//     0       2       4
struct CHangingTree : CEnergyTree {
  CHangingTree() : CEnergyTree(2, 1) { m_Tree.CellAt(1, 0, 0).subdiv(false); }
};

TEST(GridTermsTest, CornerOfASplitSideHasTheHangingPointAsItsNeighbour) {
  CHangingTree tree;
  // The term in y of (2, 2): one step down to (2, 1), two up to (2, 4), area 2.75.
  const double d = kStepY;
  EXPECT_NEAR(tree.Entry({2, 1}, {2, 4}), (2 * d) * d / (std::pow(1.5 * d, 2) * std::pow(2 * d * d, 2)) * 2.75 / 16,
              1e-15);
  EXPECT_EQ(tree.Entry({2, 0}, {2, 4}), 0.0);
}

// The ends of the split sides are corners of a whole cell, which joins them by its mixed difference too.
TEST(GridTermsTest, HangingPointHasTheTermAlongItsEdge) {
  CHangingTree tree;
  const double mixed = -4.0 / 16 / std::pow(4 * kStepX * kStepY, 2);
  EXPECT_NEAR(tree.Entry({2, 0}, {2, 2}), 1.0 / 16 / std::pow(kStepY, 4) + mixed, 1e-15);
  EXPECT_NEAR(tree.Entry({0, 2}, {2, 2}), 1.0 / 16 / std::pow(kStepX, 4) + mixed, 1e-15);
}

// The whole cell between two split ones has a hanging point on either side, in the same row.
TEST(GridTermsTest, HangingPointHasNoTermAcrossItsEdge) {
  CEnergyTree tree(3, 2);
  tree.m_Tree.CellAt(1, 0, 0).subdiv(false);
  tree.m_Tree.CellAt(1, 2, 0).subdiv(false);
  EXPECT_EQ(tree.Entry({1, 1}, {4, 1}), 0.0);
  EXPECT_EQ(tree.Entry({2, 1}, {4, 1}), 0.0);
  EXPECT_EQ(tree.Entry({2, 1}, {5, 1}), 0.0);
  EXPECT_GT(tree.Entry({0, 1}, {2, 1}), 0.0);
}

TEST(GridTermsTest, SmoothnessWeightsAreTheAreasAroundThePoints) {
  CHangingTree tree;
  tree.H();
  const auto area = [&](int column, int row) { return tree.m_Lattice.Smoothness()[tree.m_Lattice.Index(column, row)]; };
  EXPECT_DOUBLE_EQ(area(0, 0), 0.25);
  EXPECT_DOUBLE_EQ(area(1, 1), 1.0);
  EXPECT_DOUBLE_EQ(area(2, 1), 1.0);
  EXPECT_DOUBLE_EQ(area(2, 2), 2.75);
  EXPECT_DOUBLE_EQ(area(4, 4), 1.0);
  EXPECT_EQ(area(3, 3), 0.0);
}

TEST(GridTermsTest, SmoothnessWeightsAreClearedBeforeTheyAreSummed) {
  CHangingTree tree;
  tree.H();
  tree.H();
  tree.m_Tree.Root().subdiv_t2();
  tree.H();
  const auto weights = tree.m_Lattice.Smoothness();
  EXPECT_DOUBLE_EQ(weights[tree.m_Lattice.Index(0, 0)], 4.0);
  EXPECT_EQ(weights[tree.m_Lattice.Index(2, 2)], 0.0);
}

TEST(GridTermsTest, CreasePointHasNoSecondDifferences) {
  CEnergyTree tree(2, 2);
  tree.m_Lattice.Set(tree.m_Lattice.Index(2, 2), PointFlag::kCrease);
  EXPECT_EQ(tree.Entry({1, 2}, {3, 2}), 0.0);
  EXPECT_EQ(tree.Entry({2, 1}, {2, 3}), 0.0);
  EXPECT_GT(tree.Entry({0, 2}, {2, 2}), 0.0);
  // The mixed differences of the cells round it stay.
  EXPECT_NEAR(tree.Entry({1, 2}, {2, 3}), 1.0 / 16 / std::pow(kStepX * kStepY, 2), 1e-15);
}

TEST(GridTermsTest, EachMarkTakesTheMixedDifferenceOfItsCell) {
  for (std::uint32_t bit = 1; bit <= 32; bit *= 2) {
    CEnergyTree tree(2, 2);
    EXPECT_LT(tree.Entry({1, 1}, {1, 2}), 0.0);
    MakeLeaf(tree.m_Tree, 0, 1, 1, bit);
    tree.m_Tree.CellAt(0, 0, 0).SetFlags(CellFlag::kSelected);
    EXPECT_EQ(tree.Entry({1, 2}, {2, 1}), 0.0) << bit;
    EXPECT_GT(tree.Entry({0, 1}, {1, 0}), 0.0) << bit;
  }
}

// The horizontal edges between the columns 1 and 2 lie inside the discontinuity.
TEST(GridTermsTest, MarkedColumnOfCellsTearsTheSurface) {
  CEnergyTree tree(2, 2);
  for (int j = 0; j < 4; ++j) MakeLeaf(tree.m_Tree, 0, 1, j, CellFlag::kTriangles);
  const Matrix h = tree.H();
  const Vector left = tree.Sampled([](double x, double) { return x < 1.0 ? 1.0 : 0.0; });
  const Vector right = Vector::Ones(left.size()) - left;
  EXPECT_EQ(Largest(left.asDiagonal() * h * right.asDiagonal()), 0.0);
  EXPECT_NEAR(tree.Energy([](double x, double) { return x < 1.0 ? 0.0 : 5.0; }), 0.0, 1e-12);
  // The columns on its sides keep their terms in y.
  EXPECT_GT(tree.Entry({1, 0}, {1, 2}), 0.0);
}

TEST(GridTermsTest, EdgeMarkedFromOneSideOnlyJoins) {
  CEnergyTree tree(2, 2);
  MakeLeaf(tree.m_Tree, 0, 1, 1, 1U << kBottom);
  EXPECT_GT(tree.Entry({0, 1}, {2, 1}), 0.0);
  MakeLeaf(tree.m_Tree, 0, 1, 0, 1U << kTop);
  EXPECT_EQ(tree.Entry({0, 1}, {2, 1}), 0.0);
  EXPECT_EQ(tree.Entry({1, 1}, {3, 1}), 0.0);
}

TEST(GridTermsTest, BorderCountsAsMarkedFromOutside) {
  CEnergyTree tree(2, 2);
  EXPECT_GT(tree.Entry({0, 0}, {2, 0}), 0.0);
  MakeLeaf(tree.m_Tree, 0, 1, 0, 1U << kBottom);
  EXPECT_EQ(tree.Entry({0, 0}, {2, 0}), 0.0);
}

TEST(GridTermsTest, TermsAreAddedToThoseThatAreThere) {
  CEnergyTree tree(2, 2);
  CEnergyTerms terms;
  terms.Add(100.0, {{0, 1.0}});
  AddGridTerms(tree.m_Tree, tree.m_Order, terms);
  CCompressedRows rows;
  terms.Assemble(tree.m_Order.Count(), rows);
  Matrix wanted = tree.H();
  wanted(0, 0) += 100.0;
  EXPECT_LT(Largest(Dense(rows, tree.m_Order.Count()) - wanted), 1e-12);
}

constexpr int kTermsLevel = 4;

CExtent GenExtent() {
  const double x0 = *rc::gen::inRange(-200, 200) / 8.0;
  const double y0 = *rc::gen::inRange(-200, 200) / 8.0;
  return {x0, x0 + *rc::gen::inRange(8, 800) / 8.0, y0, y0 + *rc::gen::inRange(8, 800) / 8.0};
}

// Refined and coarsened at random, without marks.
struct CRandomTree : CEnergyTree {
  explicit CRandomTree(int level = kTermsLevel) : CEnergyTree(level, *rc::gen::inRange(0, level + 1), GenExtent()) {
    for (CTreeOp op : *GenTreeOps()) {
      if (op.m_Kind == Kind::kMark) op.m_Kind = Kind::kMakeLeaf;
      Apply(m_Tree, op);
    }
  }
};

// The same with marks and creases.
struct CRandomMarkedTree : CEnergyTree {
  CRandomMarkedTree() : CEnergyTree(kTermsLevel, *rc::gen::inRange(0, kTermsLevel + 1), GenExtent()) {
    ApplyAll(m_Tree, *GenTreeOps());
    for (const std::size_t point : *rc::gen::container<std::vector<std::size_t>>(
             *rc::gen::inRange<std::size_t>(0, 30), rc::gen::inRange<std::size_t>(0, m_Lattice.PointCount())))
      m_Lattice.Set(point, PointFlag::kCrease);
  }
};

RC_GTEST_PROP(GridTermsProperty, MatrixFollowsFromTheDefinitions, ()) {
  CRandomTree tree;
  const Matrix wanted = tree.WantedH();
  RC_ASSERT(Largest(tree.H() - wanted) <= 1e-12 * Largest(wanted));
}

RC_GTEST_PROP(GridTermsProperty, MatrixFollowsFromTheDefinitionsInDiscontinuities, ()) {
  CRandomMarkedTree tree;
  const Matrix wanted = tree.WantedH();
  RC_ASSERT(Largest(tree.H() - wanted) <= 1e-12 * Largest(wanted));
}

RC_GTEST_PROP(GridTermsProperty, SmoothnessWeightsFollowFromTheLeaves, ()) {
  CRandomMarkedTree tree;
  tree.H();
  const CDirectSystem direct(tree.m_Tree);
  const auto weights = tree.m_Lattice.Smoothness();
  RC_ASSERT(LargestDifference(weights, direct.Areas()) <= 1e-12);
  RC_ASSERT(std::abs(Eigen::Map<const Vector>(weights.data(), static_cast<Eigen::Index>(weights.size())).sum() -
                     (1 << 2 * kTermsLevel)) <= 1e-9);
}

RC_GTEST_PROP(GridTermsProperty, MatrixIsExactlySymmetric, ()) {
  CRandomMarkedTree tree;
  const Matrix h = tree.H();
  RC_ASSERT(h == h.transpose());
}

RC_GTEST_PROP(GridTermsProperty, PlanesHaveNoEnergy, ()) {
  CRandomMarkedTree tree;
  const Matrix h = tree.H();
  const CRamp plane{*rc::gen::inRange(-40, 40) / 8.0, *rc::gen::inRange(-40, 40) / 8.0, 3.0};
  const Vector z = tree.Sampled(plane);
  RC_ASSERT(Largest(h * z) <= 1e-12 * Largest(h) * Largest(z));
}

Vector Eigenvalues(const Matrix& h) {
  return Eigen::SelfAdjointEigenSolver<Matrix>(h, Eigen::EigenvaluesOnly).eigenvalues();
}

RC_GTEST_PROP(GridTermsProperty, MatrixIsPositiveSemidefinite, ()) {
  CRandomMarkedTree tree;
  const Vector eigenvalues = Eigenvalues(tree.H());
  RC_ASSERT(eigenvalues.minCoeff() >= -1e-12 * std::max(1e-300, eigenvalues.maxCoeff()));
}

// Over a square, where the smallest curvature is not lost beside the largest.
struct CSquareTree : CEnergyTree {
  explicit CSquareTree(int level) : CEnergyTree(level, *rc::gen::inRange(0, level + 1), CExtent{-8, 8, 30, 46}) {
    for (CTreeOp op : *GenTreeOps()) {
      if (op.m_Kind == Kind::kMark) op.m_Kind = Kind::kMakeLeaf;
      Apply(m_Tree, op);
    }
  }
};

RC_GTEST_PROP(GridTermsProperty, OnlyPlanesHaveNoEnergy, ()) {
  CSquareTree tree(3);
  const Vector eigenvalues = Eigenvalues(tree.H());
  RC_ASSERT(eigenvalues[2] <= 1e-12 * eigenvalues.maxCoeff());
  RC_ASSERT(eigenvalues[3] >= 1e-8 * eigenvalues.maxCoeff());
}

TEST(GridTermsTest, OnlyPlanesHaveNoEnergyOnUniformGrids) {
  for (int level = 0; level <= 4; ++level) {
    CEnergyTree tree(4, level);
    const Vector eigenvalues = Eigenvalues(tree.H());
    EXPECT_LE(eigenvalues[2], 1e-12 * eigenvalues.maxCoeff());
    EXPECT_GE(eigenvalues[3], 1e-8 * eigenvalues.maxCoeff());
  }
}

}  // namespace
