#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "quadtree/CentreWeights.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

using Weights = std::vector<std::pair<std::array<int, 2>, double>>;  // (column, row) and weight

Weights WeightsOf(const CTestTree& test, const CQuadT& leaf) {
  const CCentreWeights centre = CentreWeightsOf(leaf, test.m_Lattice);
  const auto n = static_cast<std::size_t>(test.m_Lattice.PointsPerSide());
  Weights weights;
  for (std::size_t k = 0; k < centre.m_uCount; ++k) {
    const std::size_t point = centre.m_auPoints[k];
    weights.push_back({{static_cast<int>(point % n), static_cast<int>(point / n)}, centre.m_afWeights[k]});
  }
  return weights;
}

// A tree of level 4 at start level 2; the cell looked at is 4..8 by 4..8, and its neighbours beyond `sides` are split.
struct CSplitSides : CTestTree {
  explicit CSplitSides(const std::vector<Side>& sides) : CTestTree(4, 2) {
    for (const Side side : sides) {
      const int i = side == kRight ? 2 : side == kLeft ? 0 : 1;
      const int j = side == kTop ? 2 : side == kBottom ? 0 : 1;
      m_Tree.CellAt(2, i, j).subdiv(false);
    }
    Settle();
  }
  CQuadT& Cell() { return m_Tree.CellAt(2, 1, 1); }
};

CStencil StencilAt(const CTestTree& test, double gx, double gy) {
  CStencil stencil;
  EXPECT_TRUE(test.m_Surface.GetBilinearInterpolation(test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy), stencil));
  return stencil;
}

std::uint32_t NumberAt(const CTestTree& test, int column, int row) {
  return static_cast<std::uint32_t>(test.m_Order.NumberOf(test.m_Lattice.Index(column, row)));
}

TEST(CentreWeights, OfAWholeCellAreAQuarterPerCorner) {
  CSplitSides test({});
  EXPECT_EQ(WeightsOf(test, test.Cell()), (Weights{{{4, 4}, 0.25}, {{8, 4}, 0.25}, {{8, 8}, 0.25}, {{4, 8}, 0.25}}));
}

TEST(CentreWeights, TakeTheMidpointOfASplitSide) {
  CSplitSides test({kBottom});
  EXPECT_EQ(WeightsOf(test, test.Cell()),
            (Weights{{{4, 4}, 0.125}, {{6, 4}, 0.25}, {{8, 4}, 0.125}, {{8, 8}, 0.25}, {{4, 8}, 0.25}}));
}

TEST(CentreWeights, OfOppositeSplitSidesAreSix) {
  CSplitSides test({kRight, kLeft});
  EXPECT_EQ(
      WeightsOf(test, test.Cell()),
      (Weights{{{4, 4}, 0.125}, {{8, 4}, 0.125}, {{8, 6}, 0.25}, {{8, 8}, 0.125}, {{4, 8}, 0.125}, {{4, 6}, 0.25}}));
}

TEST(CentreWeights, OfFourSplitSidesAreTheMidpoints) {
  CSplitSides test({kBottom, kRight, kTop, kLeft});
  EXPECT_EQ(WeightsOf(test, test.Cell()), (Weights{{{6, 4}, 0.25}, {{8, 6}, 0.25}, {{6, 8}, 0.25}, {{4, 6}, 0.25}}));
}

TEST(CentreWeights, LeaveOutTheSidesOfMarkedTriangles) {
  CSplitSides test({});
  test.Cell().SetFlags(1 | 2);
  EXPECT_EQ(WeightsOf(test, test.Cell()), (Weights{{{4, 4}, 0.25}, {{8, 8}, 0.25}, {{4, 8}, 0.5}}));
  test.Cell().SetFlags(4);
  EXPECT_EQ(WeightsOf(test, test.Cell()), (Weights{{{4, 4}, 0.5}, {{4, 8}, 0.5}}));
}

TEST(CentreWeights, LeaveOutAMarkedSplitSide) {
  CSplitSides test({kTop, kLeft});
  test.Cell().SetFlags(4);
  const double third = 0.25 / 0.75;
  EXPECT_EQ(WeightsOf(test, test.Cell()),
            (Weights{{{4, 4}, third / 2}, {{8, 4}, third}, {{8, 8}, third / 2}, {{4, 6}, third}}));
}

TEST(CentreWeights, TakeAllSidesWhereAllTrianglesAreMarked) {
  CSplitSides test({});
  const Weights all{{{4, 4}, 0.25}, {{8, 4}, 0.25}, {{8, 8}, 0.25}, {{4, 8}, 0.25}};
  test.Cell().SetFlags(15);
  EXPECT_EQ(WeightsOf(test, test.Cell()), all);
  test.Cell().SetFlags(CellFlag::kRisingCrease | CellFlag::kFallingCrease | CellFlag::kSelected);
  EXPECT_EQ(WeightsOf(test, test.Cell()), all) << "whatever else is marked";
}

TEST(CentreWeights, DoNotLookAtOtherFlags) {
  CSplitSides test({});
  test.Cell().SetFlags(CellFlag::kRisingCrease | CellFlag::kFallingCrease | CellFlag::kSelected);
  EXPECT_EQ(WeightsOf(test, test.Cell()).size(), 4U);
}

TEST(CentreWeights, GiveTheCentreHeight) {
  CSplitSides test({kBottom});
  test.m_Lattice.Heights()[test.m_Lattice.Index(6, 4)] = 4.0;
  test.m_Lattice.Heights()[test.m_Lattice.Index(4, 4)] = 8.0;
  EXPECT_EQ(test.m_Surface.CentreHeight(test.Cell()), 0.25 * 4 + 0.125 * 8);
}

TEST(Stencil, StartsEmpty) {
  const CStencil stencil;
  for (std::size_t k = 0; k < 8; ++k) {
    EXPECT_EQ(stencil.m_auNodes[k], 0xFFFFFFFFU);
    EXPECT_EQ(stencil.m_afCoefs[k], 0.0);
  }
}

TEST(Stencil, HasTheScaledCentreThenTheTwoEndsOfTheSubEdge) {
  CSplitSides test({kBottom});
  // Half-way from the centre (6, 6) to (5, 4), the middle of the left half of the bottom side.
  const CStencil stencil = StencilAt(test, 5.5, 5.0);
  const std::array<std::uint32_t, 8> nodes{NumberAt(test, 4, 4), NumberAt(test, 6, 4), NumberAt(test, 8, 4),
                                           NumberAt(test, 8, 8), NumberAt(test, 4, 8), CStencil::kEmptySlot,
                                           NumberAt(test, 4, 4), NumberAt(test, 6, 4)};
  EXPECT_EQ(stencil.m_auNodes, nodes);
  const std::array<double, 8> coefs{0.0625, 0.125, 0.0625, 0.125, 0.125, 0.0, 0.25, 0.25};
  for (std::size_t k = 0; k < 8; ++k) EXPECT_NEAR(stencil.m_afCoefs[k], coefs[k], 1e-10) << k;
}

TEST(Stencil, NumbersThePointsInTheOrderOfTheUnknowns) {
  CTestTree test(3, 2);
  const CStencil stencil = StencilAt(test, 2.0, 0.5);
  EXPECT_EQ(stencil.m_auNodes[6], NumberAt(test, 2, 0));
  EXPECT_EQ(test.m_Order.PointOf(stencil.m_auNodes[7]), test.m_Lattice.Index(2, 2));
}

TEST(Stencil, AtTheCentreIsTheCentreAlone) {
  CSplitSides test({kBottom});
  const CStencil stencil = StencilAt(test, 6.0, 6.0);
  EXPECT_EQ(stencil.m_auNodes[1], NumberAt(test, 6, 4));
  EXPECT_EQ(stencil.m_afCoefs, (std::array<double, 8>{0.125, 0.25, 0.125, 0.25, 0.25, 0, 0, 0}));
  EXPECT_EQ(stencil.m_auNodes[6], CStencil::kEmptySlot);
  EXPECT_EQ(stencil.m_auNodes[7], CStencil::kEmptySlot);
}

TEST(Stencil, OnASideHasTheEndsOfTheSubEdgeAlone) {
  CSplitSides test({kLeft});
  const CStencil stencil = StencilAt(test, 4.0, 7.5);
  for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(stencil.m_afCoefs[k], 0.0);
  std::map<std::uint32_t, double> ends;
  for (const std::size_t k : {6U, 7U}) ends[stencil.m_auNodes[k]] = stencil.m_afCoefs[k];
  EXPECT_NEAR(ends.at(NumberAt(test, 4, 6)), 0.25, 1e-10);
  EXPECT_NEAR(ends.at(NumberAt(test, 4, 8)), 0.75, 1e-10);
}

TEST(Stencil, AtAPointInUseIsThatPoint) {
  CTestTree test(4, 3);
  for (int row = 0; row <= 16; row += 2) {
    for (int column = 0; column <= 16; column += 2) {
      const CStencil stencil = StencilAt(test, column, row);
      double weight = 0.0;
      for (std::size_t k = 0; k < 8; ++k) {
        if (stencil.m_auNodes[k] == NumberAt(test, column, row)) weight += stencil.m_afCoefs[k];
      }
      ASSERT_EQ(weight, 1.0) << column << ", " << row;
      ASSERT_EQ(std::accumulate(stencil.m_afCoefs.begin(), stencil.m_afCoefs.end(), 0.0), 1.0);
    }
  }
}

TEST(Stencil, OutsideTheModelThereIsNone) {
  CTestTree test(3, 2);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const std::array<double, 2>& g :
       std::vector<std::array<double, 2>>{{-0.01, 4}, {8.01, 4}, {4, -0.01}, {4, 8.01}, {nan, 4}, {4, nan}}) {
    CStencil stencil;
    stencil.m_auNodes[3] = 7;
    stencil.m_afCoefs[3] = 0.5;
    const double x = test.m_Lattice.XOf(g[0]);
    const double y = test.m_Lattice.YOf(g[1]);
    EXPECT_EQ(ConsoleTextOf([&] { EXPECT_FALSE(test.m_Surface.GetBilinearInterpolation(x, y, stencil)); }), "");
    EXPECT_EQ(stencil.m_auNodes, CStencil{}.m_auNodes);
    EXPECT_EQ(stencil.m_afCoefs, CStencil{}.m_afCoefs);
  }
}

TEST(Stencil, ReportsAPointOutsideTheGivenLeafAndStillFillsTheOutputs) {
  CTestTree test(3, 1);
  CStencil stencil;
  const std::string text = ConsoleTextOf(
      [&] { EXPECT_FALSE(test.m_Surface.InterpolateInLeaf(test.m_Tree.CellAt(2, 0, 0), 2.0, -1.0, stencil)); });
  EXPECT_EQ(text, "Error CQuadT::GetBilinearInterpolation : negative coefficients in triangle interpolation\n");
  EXPECT_EQ(stencil.m_afCoefs, (std::array<double, 8>{-0.125, -0.125, -0.125, -0.125, 0, 0, 0.75, 0.75}));
}

TEST(Stencil, TraceNamesTheTriangleAndTheUnscaledCentre) {
  CSplitSides test({kBottom});
  CStencil stencil;
  CInterpolationTrace trace;
  ASSERT_TRUE(
      test.m_Surface.GetBilinearInterpolation(test.m_Lattice.XOf(5.5), test.m_Lattice.YOf(5.0), stencil, &trace));
  EXPECT_EQ(trace.m_Triangle.m_pCell, &test.Cell());
  EXPECT_EQ(trace.m_Triangle.m_uA, test.m_Lattice.Index(4, 4));
  EXPECT_EQ(trace.m_Triangle.m_uB, test.m_Lattice.Index(6, 4));
  EXPECT_NEAR(trace.m_Triangle.m_fCCenter, 0.5, 1e-10);
  ASSERT_EQ(trace.m_Centre.m_uCount, 5U);
  EXPECT_EQ(trace.m_Centre.m_afWeights[1], 0.25);
}

TEST(ShortForm, MeetsTheSideThatTheRayFromTheCentreLeavesThrough) {
  CTestTree test(3, 1);
  const auto ends = [&](double gx, double gy) {
    const auto triangle = test.m_Surface.ShortStencil(gx, gy);
    EXPECT_TRUE(triangle && triangle->m_pCell == &test.m_Tree.CellAt(2, 1, 1));
    return std::pair{triangle->m_uA, triangle->m_uB};
  };
  const auto index = [&](int column, int row) { return test.m_Lattice.Index(column, row); };
  EXPECT_EQ(ends(6.5, 5.0), (std::pair{index(4, 4), index(8, 4)})) << "bottom";
  EXPECT_EQ(ends(7.0, 6.5), (std::pair{index(8, 4), index(8, 8)})) << "right";
  EXPECT_EQ(ends(5.5, 7.0), (std::pair{index(4, 8), index(8, 8)})) << "top";
  EXPECT_EQ(ends(5.0, 6.5), (std::pair{index(4, 4), index(4, 8)})) << "left";
  EXPECT_EQ(ends(5.0, 6.0), (std::pair{index(4, 4), index(4, 8)})) << "level with the centre";
  EXPECT_EQ(ends(7.0, 6.0), (std::pair{index(8, 4), index(8, 8)})) << "level with the centre";
}

TEST(ShortForm, TakesTheMirroredSubEdgeOfASplitSide) {
  for (const Side side : {kBottom, kRight, kTop, kLeft}) {
    CSplitSides test({side});
    for (const int half : {0, 1}) {
      const CEdge& edge = test.Cell().Edge(side).Half(half);
      const double gx = 6 + 0.5 * ((edge.Xa() + edge.Xb()) / 2.0 - 6);
      const double gy = 6 + 0.5 * ((edge.Ya() + edge.Yb()) / 2.0 - 6);
      const auto triangle = test.m_Surface.LocateInLeaf(test.Cell(), gx, gy);
      ASSERT_TRUE(triangle.has_value());
      EXPECT_EQ(triangle->m_uA, test.m_Lattice.Index(edge.Xa(), edge.Ya())) << "side " << side << " half " << half;
      EXPECT_EQ(triangle->m_uB, test.m_Lattice.Index(edge.Xb(), edge.Yb())) << "side " << side << " half " << half;
      EXPECT_NEAR(triangle->m_fCa, 0.25, 1e-10);
      EXPECT_NEAR(triangle->m_fCb, 0.25, 1e-10);
      EXPECT_NEAR(triangle->m_fCCenter, 0.5, 1e-10);
    }
  }
}

TEST(ShortForm, ARayThroughAMidpointTakesTheSecondHalf) {
  CSplitSides test({kBottom});
  EXPECT_EQ(test.m_Surface.LocateInLeaf(test.Cell(), 6.0, 5.0)->m_uA, test.m_Lattice.Index(6, 4));
}

TEST(ShortForm, ACornerBelongsToTheHorizontalSide) {
  CTestTree test(3, 1);
  const auto triangle = test.m_Surface.LocateInLeaf(test.m_Tree.CellAt(2, 0, 0), 1.0, 1.0);
  EXPECT_EQ(triangle->m_uB, test.m_Lattice.Index(4, 0));
  EXPECT_EQ(triangle->m_fCa, 0.5);
  EXPECT_EQ(triangle->m_fCb, 0.0);
}

TEST(ShortForm, OnASharedSideIsInTheFirstLeafInChildOrder) {
  CTestTree test(3, 1);
  EXPECT_EQ(test.m_Surface.ShortStencil(4.0, 1.0)->m_pCell, &test.Root().Child(0));
  EXPECT_EQ(test.m_Surface.ShortStencil(4.0, 7.0)->m_pCell, &test.Root().Child(2));
  EXPECT_EQ(test.m_Surface.ShortStencil(7.0, 4.0)->m_pCell, &test.Root().Child(1));
  EXPECT_EQ(test.m_Surface.ShortStencil(4.0, 4.0)->m_pCell, &test.Root().Child(0));
}

TEST(ShortForm, GoesOnToTheNextLeafWhereTheFirstFails) {
  CTestTree test(3, 1);
  test.Root().Child(0).Edge(kTop).SetLeaf(false);
  test.Root().Child(0).Edge(kRight).SetLeaf(false);
  std::optional<CTriangleStencil> triangle;
  EXPECT_EQ(ConsoleTextOf([&] { triangle = test.m_Surface.ShortStencil(4.0, 4.0); }),
            "CQuadT::GetBilinearInterpolation Problem...\n");
  ASSERT_TRUE(triangle.has_value());
  EXPECT_EQ(triangle->m_pCell, &test.Root().Child(1));
}

TEST(ShortForm, ReportsACellWithoutLeafEdges) {
  CTestTree test(3, 1);
  const std::string text = ConsoleTextOf(
      [&] { EXPECT_FALSE(test.m_Surface.LocateInLeaf(test.m_Tree.CellAt(1, 0, 0), 0.5, 0.25).has_value()); });
  EXPECT_EQ(text, "CQuadT::GetBilinearInterpolation Problem...\n");
}

TEST(ShortForm, BranchAReportsNegativeCoefficients) {
  CTestTree test(3, 1);
  const std::string text = ConsoleTextOf([&] {
    EXPECT_FALSE(test.m_Surface.GetBilinearInterpolation2a(test.m_Tree.CellAt(2, 0, 0), 2.0, -1.0).has_value());
  });
  EXPECT_EQ(text,
            "Error CQuadT::GetBilinearInterpolation2a : negative coefficients in triangle interpolation\n"
            "ca = 0.75, cb = 0.75, cCenter = -0.5\n");
}

TEST(ShortForm, BranchBReportsNegativeCoefficients) {
  CTestTree test(3, 1);
  const std::string text = ConsoleTextOf([&] {
    EXPECT_FALSE(test.m_Surface.GetBilinearInterpolation2b(test.m_Tree.CellAt(2, 0, 0), 5.0, 2.5).has_value());
  });
  EXPECT_EQ(text,
            "Error CQuadT::GetBilinearInterpolation2b : negative coefficients in triangle interpolation\n"
            "ca = 0.625, cb = 0.875, cCenter = -0.5\n");
}

TEST(ShortForm, BranchesAnswerForTheirOwnSidesAlone) {
  CTestTree test(3, 1);
  const CQuadT& leaf = test.m_Tree.CellAt(2, 0, 0);
  EXPECT_TRUE(test.m_Surface.GetBilinearInterpolation2a(leaf, 2.0, 1.0).has_value());
  EXPECT_TRUE(test.m_Surface.GetBilinearInterpolation2b(leaf, 1.0, 2.5).has_value());
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_FALSE(test.m_Surface.GetBilinearInterpolation2a(leaf, 1.0, 2.5).has_value());
              EXPECT_FALSE(test.m_Surface.GetBilinearInterpolation2a(leaf, 1.0, 2.0).has_value());
            }),
            "");
}

TEST(ShortForm, AtTheCentreIsTheCentre) {
  CTestTree test(3, 1);
  const auto triangle = test.m_Surface.ShortStencil(2.0, 2.0);
  ASSERT_TRUE(triangle.has_value());
  EXPECT_EQ((std::array{triangle->m_fCa, triangle->m_fCb, triangle->m_fCCenter}), (std::array{0.0, 0.0, 1.0}));
}

TEST(ShortForm, CoefficientsAreMultiplesOfTheRoundingStep) {
  CTestTree test(3, 1);
  const auto triangle = test.m_Surface.ShortStencil(1.0 / 3, 0.1);
  ASSERT_TRUE(triangle.has_value());
  EXPECT_DOUBLE_EQ(triangle->m_fCCenter, 0.05);
  EXPECT_EQ(triangle->m_fCa, 8916666667 * 1e-10);
  EXPECT_EQ(triangle->m_fCb, 583333333 * 1e-10);
}

}  // namespace
