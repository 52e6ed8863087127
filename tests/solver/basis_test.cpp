#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "solver/CHierarchicalBasis.h"
#include "support/ConsoleCapture.h"
#include "support/GridBuilders.h"
#include "support/TreeBuilders.h"

namespace {

using Values = std::vector<double>;

// A numbered tree with the transforms compiled for it.
struct CTestBasis : CTestTree {
  CTestBasis(int level, int startLevel, WaveletMode mode) : CTestTree(level, startLevel) { Compile(mode); }

  void Compile(WaveletMode mode) {
    Settle();
    m_Basis.Compile(m_Order, m_Tree, mode);
  }
  // Marks triangles of the cell one step wide in column `i` and row `j`.
  void Mark(int i, int j, std::uint32_t triangles) { m_Tree.CellAt(0, i, j).SetFlags(triangles); }

  Values W(const Values& heights) const {
    Values coefs(heights.size());
    m_Basis.W(ByScan(m_Order, heights), coefs);
    return coefs;
  }
  Values invW(const Values& coefs) const {
    Values heights(coefs.size());
    m_Basis.invW(coefs, heights);
    return ByUnknown(m_Order, heights);
  }
  Values Transposed(const Values& v) const {
    Values heights = ByScan(m_Order, v);
    Values coefs(v.size());
    m_Basis.invWTransposeTimes(heights, coefs);
    return coefs;
  }
  std::size_t At(int column, int row) const {
    return static_cast<std::size_t>(m_Order.NumberOf(m_Lattice.Index(column, row)));
  }

  CHierarchicalBasis m_Basis;
};

// A root split once: the corners 1, 2, 4, 8 round the lattice, then bottom, right, top and left midpoint and centre.
const Values kHeightsOfNine{1, 2, 4, 8, 10, 20, 30, 40, 50};

TEST(BasisTest, CoefficientIsHeightMinusMeanOfParents) {
  const CTestBasis basis(1, 1, WaveletMode::Simple);
  const Values expected{1, 2, 4, 8, 10 - 1.5, 20 - 3.0, 30 - 6.0, 40 - 4.5, 50 - 25.0};
  EXPECT_EQ(basis.W(kHeightsOfNine), expected);
}

TEST(BasisTest, HeightIsCoefficientPlusMeanOfReconstructedParents) {
  const CTestBasis basis(1, 1, WaveletMode::Simple);
  EXPECT_EQ(basis.invW({1, 2, 4, 8, 10 - 1.5, 20 - 3.0, 30 - 6.0, 40 - 4.5, 50 - 25.0}), kHeightsOfNine);
}

TEST(BasisTest, TransposePassesEachEntryOnToItsParents) {
  const CTestBasis basis(1, 1, WaveletMode::Simple);
  // The centre gives a quarter to each midpoint, which hands it on in halves to the two corners beside it.
  const Values expected{0.25, 0.25, 0.25, 0.25, 0.25, 0.25, 0.25, 0.25, 1};
  EXPECT_EQ(basis.Transposed({0, 0, 0, 0, 0, 0, 0, 0, 1}), expected);
}

TEST(BasisTest, TransposeOfAMidpointReachesTheEndsOfItsSide) {
  const CTestBasis basis(1, 1, WaveletMode::Simple);
  const Values expected{0, 0.5, 0.5, 0, 0, 1, 0, 0, 0};
  EXPECT_EQ(basis.Transposed({0, 0, 0, 0, 0, 1, 0, 0, 0}), expected);
}

TEST(BasisTest, FinerPointsHangOnTheMidpointsOfTheirOwnCell) {
  CTestBasis basis(2, 1, WaveletMode::Simple);
  basis.Root().Child(2).subdiv(false);
  basis.Compile(WaveletMode::Simple);
  Values coefs(basis.m_Order.Count());
  coefs[basis.At(2, 2)] = 8;
  const Values heights = basis.invW(coefs);
  EXPECT_EQ(heights[basis.At(3, 2)], 4);
  EXPECT_EQ(heights[basis.At(2, 3)], 4);
  EXPECT_EQ(heights[basis.At(4, 3)], 0);
  EXPECT_EQ(heights[basis.At(3, 3)], 2);
}

TEST(BasisTest, WithoutWaveletsBothTransformsAreCopies) {
  const CTestBasis basis(1, 1, WaveletMode::None);
  EXPECT_EQ(basis.W(kHeightsOfNine), kHeightsOfNine);
  EXPECT_EQ(basis.invW(kHeightsOfNine), kHeightsOfNine);
}

TEST(BasisTest, WithoutWaveletsTheTransposeDoesNothing) {
  const CTestBasis basis(1, 1, WaveletMode::None);
  EXPECT_EQ(basis.Transposed(kHeightsOfNine), kHeightsOfNine);
}

TEST(BasisTest, FourUnknownsAreLeftAsTheyAre) {
  const Values corners{3, -1, 4, 1.5};
  for (const WaveletMode mode : kAllModes) {
    const CTestBasis basis(2, 0, mode);
    EXPECT_EQ(basis.Transposed(corners), corners);
    EXPECT_EQ(basis.W(corners), corners);
    EXPECT_EQ(basis.invW(corners), corners);
  }
}

TEST(BasisTest, WithoutMarksTheNewModeIsTheSimpleOne) {
  const CTestBasis simple(3, 2, WaveletMode::Simple);
  const CTestBasis unmarked(3, 2, WaveletMode::New);
  const Values heights = RandomValues(3, simple.m_Order.Count());
  EXPECT_EQ(simple.W(heights), unmarked.W(heights));
}

// The bottom triangle of a cell on the model's border closes the border edge below it, which counts as marked from
// outside.
TEST(BasisTest, MidpointPredictsFromTheJoinedEndAlone) {
  CTestBasis basis(1, 1, WaveletMode::New);
  basis.Mark(0, 0, 1U << kBottom);
  basis.Compile(WaveletMode::New);
  const Values coefs = basis.W(kHeightsOfNine);
  EXPECT_EQ(coefs[4], 10 - 2.0);
  EXPECT_EQ(basis.invW(coefs), kHeightsOfNine);
  EXPECT_EQ(basis.Transposed({0, 0, 0, 0, 1, 0, 0, 0, 0}), (Values{0, 1, 0, 0, 1, 0, 0, 0, 0}));
}

TEST(BasisTest, PointCutOffFromAllParentsKeepsItsCoefficientAsHeight) {
  CTestBasis basis(1, 1, WaveletMode::New);
  basis.Mark(0, 0, 1U << kBottom);
  basis.Mark(1, 0, 1U << kBottom);
  basis.Compile(WaveletMode::New);
  EXPECT_EQ(basis.W(kHeightsOfNine)[4], 10);
  EXPECT_EQ(basis.invW(kHeightsOfNine)[4], 10);
  EXPECT_EQ(basis.Transposed({0, 0, 0, 0, 1, 0, 0, 0, 0}), (Values{0, 0, 0, 0, 1, 0, 0, 0, 0}));
}

TEST(BasisTest, CentrePredictsFromTheSidesThatAreJoined) {
  CTestBasis basis(1, 1, WaveletMode::New);
  // The inner edge between the two lower cells is cut from both sides.
  basis.Mark(0, 0, 1U << kRight);
  basis.Mark(1, 0, 1U << kLeft);
  basis.Compile(WaveletMode::New);
  EXPECT_DOUBLE_EQ(basis.W(kHeightsOfNine)[8], 50 - (20 + 30 + 40) / 3.0);
}

TEST(BasisTest, CentreInsideADiscontinuityIsCutOff) {
  CTestBasis basis(1, 1, WaveletMode::New);
  for (const auto& [i, j] : {std::array{0, 0}, {1, 0}, {1, 1}, {0, 1}}) basis.Mark(i, j, CellFlag::kTriangles);
  basis.Compile(WaveletMode::New);
  EXPECT_EQ(basis.W(kHeightsOfNine), kHeightsOfNine);
}

TEST(BasisTest, OneMarkDoesNotCut) {
  CTestBasis basis(1, 1, WaveletMode::New);
  const Values before = basis.W(kHeightsOfNine);
  basis.Mark(0, 0, 1U << kRight);
  basis.Mark(1, 1, 1U << kBottom);
  basis.Compile(WaveletMode::New);
  EXPECT_EQ(basis.W(kHeightsOfNine), before);
}

// The side from (0, 0) to (8, 0) is cut between columns 5 and 6: whatever spans that piece is not predicted across it.
TEST(BasisTest, SplitEdgeCountsOnlyWhenBothHalvesDo) {
  CTestBasis basis(3, 3, WaveletMode::New);
  basis.Mark(5, 0, 1U << kBottom);
  basis.Compile(WaveletMode::New);
  const Values z = RandomValues(11, basis.m_Order.Count());
  const Values coefs = basis.W(z);
  const auto height = [&](int column) { return z[basis.At(column, 0)]; };
  EXPECT_DOUBLE_EQ(coefs[basis.At(4, 0)], height(4) - height(0));
  EXPECT_DOUBLE_EQ(coefs[basis.At(6, 0)], height(6) - height(8));
  EXPECT_DOUBLE_EQ(coefs[basis.At(5, 0)], height(5) - height(4));
  EXPECT_DOUBLE_EQ(coefs[basis.At(7, 0)], height(7) - (height(6) + height(8)) / 2);
}

TEST(BasisTest, SimpleModeIgnoresMarks) {
  CTestBasis basis(1, 1, WaveletMode::Simple);
  const Values before = basis.W(kHeightsOfNine);
  for (const auto& [i, j] : {std::array{0, 0}, {1, 0}, {1, 1}, {0, 1}}) basis.Mark(i, j, CellFlag::kTriangles);
  basis.Compile(WaveletMode::Simple);
  EXPECT_EQ(basis.W(kHeightsOfNine), before);
}

TEST(BasisTest, EntriesBeyondTheUnknownsAreNotTouched) {
  for (const WaveletMode mode : kAllModes) {
    const CTestBasis basis(1, 1, mode);
    const Values heights = RandomValues(5, 12);
    Values coefs(12, -7);
    basis.m_Basis.W(heights, coefs);
    Values back(12, -7);
    basis.m_Basis.invW(coefs, back);
    for (std::size_t k = 9; k < 12; ++k) EXPECT_EQ(coefs[k], -7);
    for (std::size_t k = 9; k < 12; ++k) EXPECT_EQ(back[k], -7);
  }
}

TEST(BasisTest, RemembersSizeAndMode) {
  CTestBasis basis(3, 2, WaveletMode::Simple);
  EXPECT_EQ(basis.m_Basis.Size(), 25U);
  EXPECT_EQ(basis.m_Basis.Mode(), WaveletMode::Simple);
  basis.m_Tree.SetStartLevel(1);
  basis.Compile(WaveletMode::New);
  EXPECT_EQ(basis.m_Basis.Size(), 9U);
  EXPECT_EQ(basis.m_Basis.Mode(), WaveletMode::New);
}

TEST(BasisTest, ModesAreBitsOfTheOptionWord) {
  EXPECT_EQ(static_cast<std::uint32_t>(WaveletMode::None), 512U);
  EXPECT_EQ(static_cast<std::uint32_t>(WaveletMode::Simple), 1024U);
  EXPECT_EQ(static_cast<std::uint32_t>(WaveletMode::New), 2048U);
}

// The nine points of a root split once, in the order of the given positions after the corners: 0 to 3 the midpoints
// bottom, right, top, left, 4 the centre.
CPointOrder ShuffledNine(const std::vector<std::size_t>& positions) {
  constexpr std::array<std::array<int, 3>, 5> kPoints{{{1, 0, 2}, {2, 1, -2}, {1, 2, 2}, {0, 1, -2}, {1, 1, 3}}};
  CPointOrder order;
  order.Reset(1);
  for (const auto& [column, row] : {std::array{0, 0}, {2, 0}, {2, 2}, {0, 2}}) order.Append(column, row, 1);
  for (const std::size_t p : positions) order.Append(kPoints[p][0], kPoints[p][1], kPoints[p][2]);
  order.EndNumbering();
  return order;
}

std::string CompileMessages(const CPointOrder& order, WaveletMode mode) {
  const CTestTree tree(1, 1);
  CHierarchicalBasis basis;
  return ConsoleTextOf([&] { basis.Compile(order, tree.m_Tree, mode); });
}

TEST(BasisTest, LevelThatDecreasesIsReportedWithBothCodes) {
  EXPECT_EQ(CompileMessages(ShuffledNine({0, 1, 2, 4, 3}), WaveletMode::Simple),
            "CGrid::invWTransposeTimes Error : level not decreasing 3 -2\n");
  EXPECT_EQ(CompileMessages(ShuffledNine({4, 0, 1, 2, 3}), WaveletMode::New),
            "CGrid::invWTransposeTimes Error : level not decreasing 3 2\n");
}

TEST(BasisTest, SignOfTheCodeIsNoChangeOfLevel) {
  EXPECT_EQ(CompileMessages(ShuffledNine({1, 0, 3, 2, 4}), WaveletMode::Simple), "");
}

TEST(BasisTest, WithoutWaveletsTheOrderOfLevelsDoesNotMatter) {
  EXPECT_EQ(CompileMessages(ShuffledNine({0, 1, 2, 4, 3}), WaveletMode::None), "");
}

TEST(BasisTest, ScheduleIsLaidOutInSpiteOfADecreasingLevel) {
  const CTestTree tree(1, 1);
  CHierarchicalBasis basis;
  const CPointOrder order = ShuffledNine({1, 2, 3, 4, 0});
  EXPECT_NE(ConsoleTextOf([&] { basis.Compile(order, tree.m_Tree, WaveletMode::Simple); }), "");
  Values coefs(9);
  basis.W(ByScan(order, Values{1, 2, 4, 8, 20, 30, 40, 50, 10}), coefs);
  EXPECT_EQ(coefs, (Values{1, 2, 4, 8, 20 - 3.0, 30 - 6.0, 40 - 4.5, 50 - 25.0, 10 - 1.5}));
}

}  // namespace
