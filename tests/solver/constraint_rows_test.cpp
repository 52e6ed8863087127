#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <Eigen/Core>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CConstraintRows.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Targets = std::vector<double>;

constexpr double kWeight = 10.0;

// A tree, the user's constraints and those of curves, and the rows that they make.
struct CRowsTree : CTestTree {
  using CTestTree::CTestTree;

  const CConstraintRows& Rows() {
    Settle();
    m_Rows.Clear();
    m_Rows.Add(Lists(), m_Tree, m_Surface);
    return m_Rows;
  }
  Matrix C() { return Dense(Rows().Rows(), m_Order.Count()); }
  Targets D() {
    Rows();
    return {m_Rows.Targets().begin(), m_Rows.Targets().end()};
  }
  // What the rows say of the heights of a field.
  template <typename Field>
  Targets Applied(const Field& field) {
    std::vector<double> heights(m_Lattice.PointCount());
    FillHeights(m_Lattice, heights, field);
    Targets values(Rows().Count());
    m_Rows.Rows().Times(InUse(m_Lattice, heights), values);
    return values;
  }
  std::array<const CPtCstrList*, 2> Lists() const { return {&m_Points, &m_Generated}; }
  // The column of the matrix that a lattice point in use has.
  std::size_t PlaceOf(int column, int row) const {
    return m_Order.ScanOf(static_cast<std::size_t>(m_Order.NumberOf(m_Lattice.Index(column, row))));
  }
  double XAt(double column) const { return m_Lattice.XOf(column); }
  double YAt(double row) const { return m_Lattice.YOf(row); }

  CPtCstrList m_Points;
  CPtCstrList m_Generated;
  CConstraintRows m_Rows;
};

std::vector<double> RowOf(const Matrix& m, Eigen::Index row) {
  const Eigen::VectorXd values = m.row(row);
  return {values.data(), values.data() + values.size()};
}

void ExpectNear(const Targets& values, const Targets& wanted, double tolerance) {
  EXPECT_LE(LargestDifference(values, wanted), tolerance);
}

TEST(ConstraintRowsTest, HeightAtALatticePointIsTenTimesItsUnknown) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightCstr(tree.XAt(8), tree.YAt(4), -2.5));
  std::vector<double> wanted(tree.m_Order.Count(), 0.0);
  wanted[tree.PlaceOf(8, 4)] = kWeight;
  ASSERT_EQ(tree.Rows().Count(), 1U);
  EXPECT_EQ(RowOf(tree.C(), 0), wanted);
  EXPECT_EQ(tree.D(), (Targets{kWeight * -2.5}));
}

TEST(ConstraintRowsTest, HeightRowIsTenTimesTheStencil) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightCstr(tree.XAt(5), tree.YAt(4.5), 3));
  CStencil stencil;
  ASSERT_TRUE(tree.m_Surface.GetBilinearInterpolation(tree.XAt(5), tree.YAt(4.5), stencil));
  std::vector<double> wanted(tree.m_Order.Count(), 0.0);
  for (std::size_t k = 0; k < 8; ++k) {
    if (stencil.m_auNodes[k] == CStencil::kEmptySlot) continue;
    wanted[tree.m_Order.ScanOf(stencil.m_auNodes[k])] += kWeight * stencil.m_afCoefs[k];
  }
  ExpectNear(RowOf(tree.C(), 0), wanted, 1e-14);
}

TEST(ConstraintRowsTest, SlopeInYComesBeforeSlopeInX) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(9), 0.75, -0.125));
  EXPECT_EQ(tree.D(), (Targets{kWeight * -0.125, kWeight * 0.75}));
  ExpectNear(tree.Applied(CRamp{0.75, -0.125, 40}), tree.D(), 1e-7);
}

TEST(ConstraintRowsTest, SlopeIsTheDifferenceOfProbesHalfACellAway) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(10)));
  // The middle of the cell of the points 4 and 8, 8 and 12: the probes are the middles of its sides.
  const auto bump = [&](int column, int row) {
    return tree.Applied([&, column, row](double x, double y) {
      return std::hypot(x - tree.XAt(column), y - tree.YAt(row)) < 1e-6 ? 1.0 : 0.0;
    });
  };
  const double width = 4 * tree.m_Lattice.StepX();
  const double height = 4 * tree.m_Lattice.StepY();
  ExpectNear(bump(4, 8), {kWeight * -0.5 / height, kWeight * -0.5 / width}, 1e-12);
  ExpectNear(bump(8, 8), {kWeight * -0.5 / height, kWeight * 0.5 / width}, 1e-12);
  ExpectNear(bump(4, 12), {kWeight * 0.5 / height, kWeight * -0.5 / width}, 1e-12);
  ExpectNear(bump(12, 8), {0, 0}, 0);
}

// The cell of the points 8 to 12 is split, so that its lower left part is half as wide as the cells round it. The size
// of a slope's cell shows in whether its probes come beyond the middle of a whole side.
struct CDividedTree : CRowsTree {
  CDividedTree() : CRowsTree(4, 2) { m_Tree.CellAt(2, 2, 2).subdiv(false); }
};

TEST(ConstraintRowsTest, SlopeOnADividingLineBelongsToTheRightCell) {
  CDividedTree tree;
  tree.m_Points.Add(SlopeCstr(tree.XAt(8), tree.YAt(9)));
  tree.m_Points.Add(SlopeCstr(tree.XAt(12), tree.YAt(9)));
  const Targets slopes = tree.Applied([&](double, double y) { return y > tree.YAt(11) ? 1.0 : 0.0; });
  EXPECT_NEAR(slopes[0], 0.0, 1e-9);
  EXPECT_NEAR(slopes[2], kWeight * 0.5 / (4 * tree.m_Lattice.StepY()), 1e-9);
}

TEST(ConstraintRowsTest, SlopeOnADividingLineBelongsToTheUpperCell) {
  CDividedTree tree;
  tree.m_Points.Add(SlopeCstr(tree.XAt(9), tree.YAt(8)));
  tree.m_Points.Add(SlopeCstr(tree.XAt(9), tree.YAt(12)));
  const Targets slopes = tree.Applied([&](double x, double) { return x > tree.XAt(11) ? 1.0 : 0.0; });
  EXPECT_NEAR(slopes[1], 0.0, 1e-9);
  EXPECT_NEAR(slopes[3], kWeight * 0.5 / (4 * tree.m_Lattice.StepX()), 1e-9);
}

TEST(ConstraintRowsTest, HeightsOfBothListsComeBeforeSlopes) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(6), 1, 2));
  tree.m_Points.Add(HeightCstr(tree.XAt(3), tree.YAt(3), 3));
  tree.m_Generated.Add(SlopeCstr(tree.XAt(9), tree.YAt(9), 4, 5));
  tree.m_Generated.Add(HeightCstr(tree.XAt(11), tree.YAt(3), 6));
  EXPECT_EQ(tree.D(), (Targets{30, 60, 20, 10, 50, 40}));
  EXPECT_EQ(tree.Rows().Rows().RowCount(), 6U);
}

TEST(ConstraintRowsTest, RecordOfBothKindsMakesThreeRows) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightAndSlopeCstr(tree.XAt(6), tree.YAt(6), 1, 2, 3));
  EXPECT_EQ(tree.D(), (Targets{10, 30, 20}));
  const CRamp plane{2, 3, 1 - 2 * tree.XAt(6) - 3 * tree.YAt(6)};
  ExpectNear(tree.Applied(plane), tree.D(), 1e-7);
}

TEST(ConstraintRowsTest, DisabledRecordMakesNoRow) {
  CRowsTree tree(4, 2);
  for (const std::uint32_t kind : {1U, 2U, 3U}) {
    tree.m_Points.Add({tree.XAt(6), tree.YAt(6), kind | PtCstrKind::kDisabled, 1, 2, 3});
    tree.m_Generated.Add({tree.XAt(6), tree.YAt(6), kind | PtCstrKind::kDisabled, 1, 2, 3});
  }
  EXPECT_EQ(tree.Rows().Count(), 0U);
  tree.m_Points.Add({tree.XAt(6), tree.YAt(6), 0, 1, 2, 3});
  EXPECT_EQ(tree.Rows().Count(), 0U);
}

TEST(ConstraintRowsTest, RecordOutsideTheModelMakesNoRow) {
  CRowsTree tree(4, 2);
  for (const auto& [column, row] : {std::array{-1.0, 5.0}, {17.0, 5.0}, {5.0, -0.001}, {5.0, 16.001}})
    tree.m_Points.Add(HeightAndSlopeCstr(tree.XAt(column), tree.YAt(row), 1));
  tree.m_Points.Add(HeightAndSlopeCstr(std::numeric_limits<double>::quiet_NaN(), tree.YAt(3), 1));
  const ConsoleCapture console;
  EXPECT_EQ(tree.Rows().Count(), 0U);
  EXPECT_EQ(tree.Rows().Rows().RowCount(), 0U);
}

TEST(ConstraintRowsTest, HeightOnTheBorderMakesARow) {
  CRowsTree tree(4, 2);
  for (const auto& [column, row] : {std::array{0, 5}, {16, 5}, {5, 0}, {5, 16}, {16, 16}})
    tree.m_Points.Add(HeightCstr(tree.XAt(column), tree.YAt(row), 1));
  EXPECT_EQ(tree.Rows().Count(), 5U);
}

TEST(ConstraintRowsTest, SlopeWithAProbeOutsideMakesNoRow) {
  CRowsTree tree(4, 2);
  for (const auto& [column, row] : {std::array{1.9, 6.0}, {14.1, 6.0}, {6.0, 1.9}, {6.0, 14.1}, {16.0, 6.0}})
    tree.m_Points.Add(SlopeCstr(tree.XAt(column), tree.YAt(row)));
  EXPECT_EQ(tree.Rows().Count(), 0U);
}

TEST(ConstraintRowsTest, RecordOfBothKindsAtTheBorderKeepsItsHeight) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightAndSlopeCstr(tree.XAt(1), tree.YAt(6), 7));
  EXPECT_EQ(tree.D(), (Targets{70}));
}

TEST(ConstraintRowsTest, SlopeWithAProbeOnTheBorderMakesItsRows) {
  CRowsTree tree(4, 2);
  for (const auto& [column, row] : {std::array{2, 6}, {14, 6}, {6, 2}, {6, 14}, {14, 14}})
    tree.m_Points.Add(SlopeCstr(tree.XAt(column), tree.YAt(row)));
  EXPECT_EQ(tree.Rows().Count(), 10U);
}

// How far beyond the border, as a share of the extent, the probe of a slope may lie.
TEST(ConstraintRowsTest, ProbeThatRoundingPutsOutsideIsOnTheBorder) {
  for (const double share : {1e-16, 5e-13}) {
    CRowsTree tree(4, 2);
    const double dx = share * (kOblong.x1 - kOblong.x0);
    const double dy = share * (kOblong.y1 - kOblong.y0);
    tree.m_Points.Add(SlopeCstr(tree.XAt(2) - dx, tree.YAt(6), 0.5, 1.5));
    tree.m_Points.Add(SlopeCstr(tree.XAt(14) + dx, tree.YAt(6), 0.5, 1.5));
    tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(2) - dy, 0.5, 1.5));
    tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(14) + dy, 0.5, 1.5));
    ASSERT_EQ(tree.Rows().Count(), 8U) << share;
    ExpectNear(tree.Applied(CRamp{0.5, 1.5, -20}), tree.D(), 1e-7);
  }
}

TEST(ConstraintRowsTest, ProbeFurtherOutsideIsOutside) {
  CRowsTree tree(4, 2);
  const double dx = 3e-12 * (kOblong.x1 - kOblong.x0);
  const double dy = 3e-12 * (kOblong.y1 - kOblong.y0);
  tree.m_Points.Add(SlopeCstr(tree.XAt(2) - dx, tree.YAt(6)));
  tree.m_Points.Add(SlopeCstr(tree.XAt(14) + dx, tree.YAt(6)));
  tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(2) - dy));
  tree.m_Points.Add(SlopeCstr(tree.XAt(6), tree.YAt(14) + dy));
  EXPECT_EQ(tree.Rows().Count(), 0U);
}

TEST(ConstraintRowsTest, CoefficientsOfZeroAreLeftOut) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightCstr(tree.XAt(8), tree.YAt(4), 1));
  tree.m_Points.Add(HeightCstr(tree.XAt(9), tree.YAt(4), 1));
  EXPECT_EQ(tree.Rows().Rows().Columns(0).size(), 1U);
  EXPECT_EQ(tree.Rows().Rows().Columns(1).size(), 2U);
}

// One step of the rounding of coefficients away from the lattice point.
TEST(ConstraintRowsTest, SmallCoefficientsAreKept) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightCstr(tree.XAt(8 + 4e-10), tree.YAt(4), 1));
  const auto columns = tree.Rows().Rows().Columns(0);
  EXPECT_EQ(columns.size(), 2U);
  const std::vector<double> row = RowOf(tree.C(), 0);
  EXPECT_NEAR(row[tree.PlaceOf(12, 4)], kWeight * 1e-10, 1e-15);
}

TEST(ConstraintRowsTest, RowsAddToThoseThatAreThereUntilCleared) {
  CRowsTree tree(4, 2);
  tree.m_Points.Add(HeightCstr(tree.XAt(8), tree.YAt(4), 1));
  tree.Rows();
  tree.m_Rows.Add(tree.Lists(), tree.m_Tree, tree.m_Surface);
  EXPECT_EQ(tree.m_Rows.Count(), 2U);
  tree.m_Rows.Clear();
  EXPECT_EQ(tree.m_Rows.Count(), 0U);
  EXPECT_EQ(tree.m_Rows.Rows().RowCount(), 0U);
}

constexpr int kLevel = 4;

// Anywhere, and often on lattice points, on cell borders and near the rim.
double GenCoordinate() {
  const double coarse = *rc::gen::inRange(-1, 4 * ((1 << kLevel) + 1)) / 4.0;
  return *rc::gen::arbitrary<bool>() ? coarse : coarse + *rc::gen::inRange(1, 1000) / 4000.0;
}

RC_GTEST_PROP(ConstraintRowsProperty, RowsFollowFromTheDefinitions, ()) {
  CRowsTree tree(kLevel, *rc::gen::inRange(0, kLevel + 1));
  ApplyAll(tree.m_Tree, *GenTreeOps());
  for (CPtCstrList* list : {&tree.m_Points, &tree.m_Generated}) {
    for (int count = *rc::gen::inRange(0, 8); count > 0; --count) {
      list->Add({tree.XAt(GenCoordinate()), tree.YAt(GenCoordinate()), *rc::gen::inRange(0U, 8U),
                 *rc::gen::inRange(-80, 80) / 8.0, *rc::gen::inRange(-80, 80) / 8.0, *rc::gen::inRange(-80, 80) / 8.0});
    }
  }
  tree.Settle();
  CDirectSystem direct(tree.m_Tree);
  direct.SetConstraints(tree.Lists());
  RC_ASSERT(static_cast<Eigen::Index>(tree.Rows().Count()) == direct.C().rows());
  if (tree.Rows().Count() == 0) return;
  RC_ASSERT((tree.C() - Matrix(direct.C())).cwiseAbs().maxCoeff() <= 1e-7);
  const Eigen::VectorXd& targets = direct.Targets();
  RC_ASSERT(tree.D() == Targets(targets.data(), targets.data() + targets.size()));
}

RC_GTEST_PROP(ConstraintRowsProperty, PlanesSatisfyTheirOwnConstraints, ()) {
  CRowsTree tree(kLevel, *rc::gen::inRange(0, kLevel + 1));
  for (CTreeOp op : *GenTreeOps()) {
    if (op.m_Kind == CTreeOp::Kind::kMark) op.m_Kind = CTreeOp::Kind::kMakeLeaf;
    Apply(tree.m_Tree, op);
  }
  const CRamp plane{*rc::gen::inRange(-40, 40) / 8.0, *rc::gen::inRange(-40, 40) / 8.0, 3.0};
  for (int count = *rc::gen::inRange(1, 8); count > 0; --count) {
    const double x = tree.XAt(GenCoordinate());
    const double y = tree.YAt(GenCoordinate());
    tree.m_Points.Add(HeightAndSlopeCstr(x, y, plane(x, y), plane.m_fA, plane.m_fB));
  }
  RC_ASSERT(LargestDifference(tree.Applied(plane), tree.D()) <= 1e-6);
}

}  // namespace
