#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lattice/CLattice.h"
#include "quadtree/CEdge.h"
#include "support/ConsoleCapture.h"

namespace {

using EdgeMark::kAboveOrLeft;
using EdgeMark::kBelowOrRight;
using EdgeMark::kBoth;

// An edge across a lattice of level 3, halved down to one step.
struct CHalvedEdge {
  CHalvedEdge(int xa, int ya, int xb, int yb) : m_Edge(*m_Arena.Add(CEdge(xa, ya, xb, yb))) { Halve(m_Edge); }

  void Halve(CEdge& edge) {
    if (edge.Length() == 1) return;
    edge.subdiv(m_Arena);
    Halve(edge.Half(0));
    Halve(edge.Half(1));
  }
  // This edge and all below it, parents first.
  std::vector<const CEdge*> All() const {
    std::vector<const CEdge*> edges{&m_Edge};
    for (std::size_t k = 0; k < edges.size(); ++k) {
      if (!edges[k]->HasHalves()) continue;
      edges.push_back(&edges[k]->Half(0));
      edges.push_back(&edges[k]->Half(1));
    }
    return edges;
  }
  std::size_t Midpoint() const { return m_Lattice.Index(m_Edge.XMid(), m_Edge.YMid()); }

  CLattice m_Lattice{3};
  CEdgeArena m_Arena{15};
  CEdge& m_Edge;
};

// The same opened once, with heights 3 and 5 at the ends and 10 at the midpoint; `marks` lie on the two halves.
struct CTransformEdge : CHalvedEdge {
  explicit CTransformEdge(std::array<std::uint32_t, 2> marks = {0, 0}) : CHalvedEdge(0, 2, 8, 2) {
    m_Edge.SetLeafByDepth(1);
    for (int k = 0; k < 2; ++k) m_Edge.Half(k).Mark(marks[static_cast<std::size_t>(k)], true);
    m_afValues.assign(m_Lattice.PointCount(), 0.0);
    m_afValues[m_Lattice.Index(0, 2)] = 3;
    m_afValues[m_Lattice.Index(8, 2)] = 5;
    m_afValues[Midpoint()] = 10;
  }
  double Inverse(WaveletMode mode) {
    m_Edge.ComputeEdgeIfNeeded(m_afValues, m_Lattice, mode);
    return m_afValues[Midpoint()];
  }
  double Forward(WaveletMode mode) {
    std::vector<double> coefs(m_Lattice.PointCount(), 0.0);
    m_Edge.ComputeEdgeIfNeeded_W(m_afValues, coefs, m_Lattice, mode);
    return coefs[Midpoint()];
  }

  std::vector<double> m_afValues;
};

constexpr std::array<std::uint32_t, 2> kNoneCut{0, 0};
constexpr std::array<std::uint32_t, 2> kFirstCut{kBoth, 0};
constexpr std::array<std::uint32_t, 2> kSecondCut{0, kBoth};
constexpr std::array<std::uint32_t, 2> kBothCut{kBoth, kBoth};

void ExpectEnds(const CEdge& edge, std::array<int, 4> ends) {
  EXPECT_EQ((std::array{edge.Xa(), edge.Ya(), edge.Xb(), edge.Yb()}), ends);
}

TEST(Edge, StartsWithoutHalvesFlagOrMarks) {
  const CEdge edge(2, 6, 2, 8);
  ExpectEnds(edge, {2, 6, 2, 8});
  EXPECT_FALSE(edge.HasHalves());
  EXPECT_FALSE(edge.IsLeaf());
  EXPECT_FALSE(edge.HasMark(~0U));
}

TEST(Edge, MidpointIsHalfWay) {
  EXPECT_EQ(CEdge(4, 3, 8, 3).XMid(), 6);
  EXPECT_EQ(CEdge(4, 3, 8, 3).YMid(), 3);
  EXPECT_EQ(CEdge(5, 0, 5, 8).XMid(), 5);
  EXPECT_EQ(CEdge(5, 0, 5, 8).YMid(), 4);
}

TEST(Edge, IsHorizontalWhereBothEndsShareTheRow) {
  EXPECT_TRUE(CEdge(0, 4, 8, 4).IsHorizontal());
  EXPECT_FALSE(CEdge(4, 0, 4, 8).IsHorizontal());
}

TEST(Edge, SubdivMakesTheTwoHalvesInOrder) {
  CEdgeArena arena(3);
  CEdge& edge = *arena.Add(CEdge(4, 0, 4, 8));
  edge.SetLeaf(true);
  edge.subdiv(arena);
  ASSERT_TRUE(edge.HasHalves());
  ExpectEnds(edge.Half(0), {4, 0, 4, 4});
  ExpectEnds(edge.Half(1), {4, 4, 4, 8});
  EXPECT_FALSE(edge.IsLeaf());
  EXPECT_FALSE(edge.Half(0).IsLeaf());
  EXPECT_FALSE(edge.Half(1).IsLeaf());
}

TEST(Edge, SubdivLeavesAHalvedEdgeAsItIs) {
  CEdgeArena arena(5);
  CEdge& edge = *arena.Add(CEdge(0, 0, 8, 0));
  edge.subdiv(arena);
  const CEdge* half = &edge.Half(0);
  edge.SetLeaf(true);
  EXPECT_EQ(ConsoleTextOf([&] { edge.subdiv(arena); }), "");
  EXPECT_EQ(arena.Size(), 3U);
  EXPECT_EQ(&edge.Half(0), half);
  EXPECT_TRUE(edge.IsLeaf());
}

TEST(Edge, SubdivRefusesAnEdgeOneStepLong) {
  CEdgeArena arena(4);
  CEdge& flat = *arena.Add(CEdge(3, 2, 4, 2));
  CEdge& upright = *arena.Add(CEdge(7, 5, 7, 6));
  flat.SetLeaf(true);
  EXPECT_EQ(ConsoleTextOf([&] { flat.subdiv(arena); }),
            "Error : CEdge::subdiv Attempt to subdivise a 1*1 cell3, 2, 4, 2\n");
  EXPECT_EQ(ConsoleTextOf([&] { upright.subdiv(arena); }),
            "Error : CEdge::subdiv Attempt to subdivise a 1*1 cell7, 5, 7, 6\n");
  EXPECT_FALSE(flat.HasHalves());
  EXPECT_TRUE(flat.IsLeaf());
  EXPECT_EQ(arena.Size(), 2U);
}

TEST(Edge, OpenHandsTheLeafFlagToTheHalves) {
  CHalvedEdge halved(0, 0, 8, 0);
  halved.m_Edge.SetLeaf(true);
  halved.m_Edge.Open();
  EXPECT_FALSE(halved.m_Edge.IsLeaf());
  EXPECT_TRUE(halved.m_Edge.Half(0).IsLeaf());
  EXPECT_TRUE(halved.m_Edge.Half(1).IsLeaf());
  EXPECT_FALSE(halved.m_Edge.Half(0).Half(0).IsLeaf());
}

TEST(Edge, OpenLeavesAnOpenEdgeAlone) {
  CHalvedEdge halved(0, 0, 8, 0);
  halved.m_Edge.SetLeafByDepth(2);
  EXPECT_EQ(ConsoleTextOf([&] { halved.m_Edge.Open(); }), "");
  EXPECT_FALSE(halved.m_Edge.Half(0).IsLeaf());
  EXPECT_TRUE(halved.m_Edge.Half(0).Half(0).IsLeaf());
}

TEST(Edge, OpenRefusesAnEdgeWithoutHalves) {
  CEdge edge(0, 4, 1, 4);
  edge.SetLeaf(true);
  EXPECT_EQ(ConsoleTextOf([&] { edge.Open(); }), "Error : CEdge::subdiv Attempt to subdivise a 1*1 cell0, 4, 1, 4\n");
  EXPECT_TRUE(edge.IsLeaf());
}

TEST(Edge, CloseTakesTheLeafFlagBackAndFreesTheMidpoint) {
  CHalvedEdge halved(8, 0, 8, 8);
  halved.m_Edge.SetLeafByDepth(1);
  halved.m_Lattice.Set(halved.Midpoint(), PointFlag::kInUse | PointFlag::kFrozen);
  halved.m_Lattice.Set(halved.m_Lattice.Index(8, 0), PointFlag::kInUse);
  halved.m_Edge.Close(halved.m_Lattice);
  EXPECT_TRUE(halved.m_Edge.IsLeaf());
  EXPECT_FALSE(halved.m_Edge.Half(0).IsLeaf());
  EXPECT_FALSE(halved.m_Edge.Half(1).IsLeaf());
  EXPECT_FALSE(halved.m_Lattice.Has(halved.Midpoint(), PointFlag::kInUse));
  EXPECT_TRUE(halved.m_Lattice.Has(halved.Midpoint(), PointFlag::kFrozen));
  EXPECT_TRUE(halved.m_Lattice.Has(halved.m_Lattice.Index(8, 0), PointFlag::kInUse));
}

TEST(Edge, CloseOfAnEdgeWithoutHalvesKeepsItsPoints) {
  CLattice lattice(1);
  lattice.Set(lattice.Index(0, 0), PointFlag::kInUse);
  CEdge edge(0, 0, 1, 0);
  edge.Close(lattice);
  EXPECT_TRUE(edge.IsLeaf());
  EXPECT_TRUE(lattice.Has(lattice.Index(0, 0), PointFlag::kInUse));
}

TEST(Edge, LeafFlagByDepthLiesAtExactlyThatDepth) {
  CHalvedEdge halved(0, 8, 8, 8);
  for (int depth = 0; depth <= 4; ++depth) {
    halved.m_Edge.SetLeafByDepth(depth);
    for (const CEdge* edge : halved.All()) EXPECT_EQ(edge->IsLeaf(), edge->Length() == 8 >> depth) << depth;
  }
}

TEST(Edge, MarkReachesTheHalvesAtEveryDepth) {
  CHalvedEdge halved(0, 8, 8, 8);
  halved.m_Edge.Mark(kBelowOrRight, true);
  for (const CEdge* edge : halved.All()) {
    EXPECT_TRUE(edge->HasMark(kBelowOrRight));
    EXPECT_FALSE(edge->HasMark(kAboveOrLeft));
  }
}

TEST(Edge, ClearingAMarkActsOnTheEdgeAloneAndSetsItBelow) {
  CHalvedEdge halved(0, 8, 8, 8);
  halved.m_Edge.Mark(kBelowOrRight, true);
  halved.m_Edge.Mark(kAboveOrLeft, false);
  halved.m_Edge.Mark(kBelowOrRight, false);
  const std::vector<const CEdge*> edges = halved.All();
  EXPECT_FALSE(edges.front()->HasMark(kBoth));
  EXPECT_TRUE(std::all_of(edges.begin() + 1, edges.end(), [](const CEdge* edge) { return edge->HasBothMarks(); }));
}

TEST(Edge, BothMarksAreNeededToLieInADiscontinuity) {
  CEdge edge(0, 0, 4, 0);
  edge.Mark(kAboveOrLeft, true);
  EXPECT_FALSE(edge.HasBothMarks());
  edge.Mark(kBelowOrRight, true);
  EXPECT_TRUE(edge.HasBothMarks());
}

TEST(Edge, ALeafWithBothMarksIsCutInTheNewModeOnly) {
  CEdge edge(0, 0, 4, 0);
  edge.SetLeaf(true);
  edge.Mark(kAboveOrLeft, true);
  EXPECT_TRUE(edge.IsContinuous(WaveletMode::New));
  edge.Mark(kBelowOrRight, true);
  EXPECT_FALSE(edge.IsContinuous(WaveletMode::New));
  EXPECT_TRUE(edge.IsContinuous(WaveletMode::Simple));
  EXPECT_TRUE(edge.IsContinuous(WaveletMode::None));
}

TEST(Edge, ASplitEdgeIsContinuousWhereBothHalvesAre) {
  const auto continuous = [](std::array<std::uint32_t, 2> marks) {
    return CTransformEdge(marks).m_Edge.IsContinuous(WaveletMode::New);
  };
  EXPECT_TRUE(continuous(kNoneCut));
  EXPECT_TRUE(continuous({kAboveOrLeft, kBelowOrRight}));
  EXPECT_FALSE(continuous(kFirstCut));
  EXPECT_FALSE(continuous(kSecondCut));
  EXPECT_TRUE(CTransformEdge(kBothCut).m_Edge.IsContinuous(WaveletMode::Simple));
}

TEST(Edge, ContinuityLooksAtTheLeavesAlone) {
  CHalvedEdge halved(0, 0, 8, 0);
  halved.m_Edge.SetLeafByDepth(2);
  halved.m_Edge.Half(0).Half(1).Mark(kBoth, true);
  EXPECT_FALSE(halved.m_Edge.IsContinuous(WaveletMode::New));
  EXPECT_TRUE(halved.m_Edge.Half(1).IsContinuous(WaveletMode::New));
  halved.m_Edge.SetLeafByDepth(1);
  EXPECT_TRUE(halved.m_Edge.IsContinuous(WaveletMode::New));
}

TEST(Edge, MarksOfASplitEdgeItselfDoNotCount) {
  CHalvedEdge halved(0, 0, 8, 0);
  halved.m_Edge.SetLeafByDepth(1);
  halved.m_Edge.Mark(kBoth, true);
  for (int k = 0; k < 2; ++k) halved.m_Edge.Half(k).Mark(kBoth, false);
  EXPECT_TRUE(halved.m_Edge.IsContinuous(WaveletMode::New));
}

TEST(Edge, LengthAndDistanceAreInLatticeSteps) {
  EXPECT_EQ(CEdge(2, 5, 6, 5).Length(), 4.0);
  EXPECT_EQ(CEdge(5, 0, 5, 8).Length(), 8.0);
  EXPECT_EQ(CEdge(2, 5, 6, 5).DistanceTo(100.0, 3.5), 1.5);
  EXPECT_EQ(CEdge(2, 5, 6, 5).DistanceTo(-1.0, 6.25), 1.25);
  EXPECT_EQ(CEdge(5, 0, 5, 8).DistanceTo(3.0, 100.0), 2.0);
  EXPECT_EQ(CEdge(5, 0, 5, 8).DistanceTo(7.5, -1.0), 2.5);
}

TEST(Edge, FindLeafDescendsToTheSubEdgeAndTakesTheSecondHalfAtAMidpoint) {
  CHalvedEdge halved(3, 0, 3, 8);
  CEdge& edge = halved.m_Edge;
  edge.SetLeafByDepth(1);
  edge.Half(1).Open();
  EXPECT_EQ(edge.FindLeaf(0.0), &edge.Half(0));
  EXPECT_EQ(edge.FindLeaf(3.999), &edge.Half(0));
  EXPECT_EQ(edge.FindLeaf(4.0), &edge.Half(1).Half(0));
  EXPECT_EQ(edge.FindLeaf(6.0), &edge.Half(1).Half(1));
  EXPECT_EQ(edge.FindLeaf(8.0), &edge.Half(1).Half(1));
}

TEST(Edge, FindLeafMeasuresAHorizontalEdgeByColumns) {
  CHalvedEdge halved(4, 7, 8, 7);
  halved.m_Edge.SetLeafByDepth(1);
  EXPECT_EQ(halved.m_Edge.FindLeaf(5.9), &halved.m_Edge.Half(0));
  EXPECT_EQ(halved.m_Edge.FindLeaf(6.0), &halved.m_Edge.Half(1));
}

TEST(Edge, FindLeafFailsOutsideTheEdgeAndOnADormantOne) {
  CHalvedEdge halved(4, 7, 8, 7);
  EXPECT_EQ(halved.m_Edge.FindLeaf(5.0), nullptr);
  halved.m_Edge.SetLeaf(true);
  EXPECT_EQ(halved.m_Edge.FindLeaf(5.0), &halved.m_Edge);
  EXPECT_EQ(halved.m_Edge.FindLeaf(3.999999), nullptr);
  EXPECT_EQ(halved.m_Edge.FindLeaf(8.000001), nullptr);
}

TEST(Edge, AreaTermGivesEachEndHalfTheTriangle) {
  CHalvedEdge halved(2, 0, 6, 0);
  halved.m_Edge.SetLeaf(true);
  halved.m_Edge.AddAreaTerm(4.0, 3.0, halved.m_Lattice);
  halved.m_Edge.AddAreaTerm(4.0, -1.0, halved.m_Lattice);
  EXPECT_EQ(halved.m_Lattice.Smoothness()[halved.m_Lattice.Index(2, 0)], 3.0 + 1.0);
  EXPECT_EQ(halved.m_Lattice.Smoothness()[halved.m_Lattice.Index(6, 0)], 3.0 + 1.0);
  EXPECT_EQ(halved.m_Lattice.Smoothness()[halved.m_Lattice.Index(4, 0)], 0.0);
}

TEST(Edge, AreaTermOfASplitEdgeIsThatOfItsLeafSubEdges) {
  CHalvedEdge halved(8, 0, 8, 8);
  halved.m_Edge.SetLeafByDepth(1);
  halved.m_Edge.Half(0).Open();
  halved.m_Edge.AddAreaTerm(4.0, 4.0, halved.m_Lattice);
  const auto weight = [&](int row) { return halved.m_Lattice.Smoothness()[halved.m_Lattice.Index(8, row)]; };
  EXPECT_EQ((std::array{weight(0), weight(2), weight(4), weight(8)}), (std::array{2.0, 4.0, 6.0, 4.0}));
}

TEST(Edge, AreaTermOfADormantEdgeIsNothing) {
  CHalvedEdge halved(8, 0, 8, 8);
  halved.m_Edge.AddAreaTerm(4.0, 4.0, halved.m_Lattice);
  for (const double weight : halved.m_Lattice.Smoothness()) EXPECT_EQ(weight, 0.0);
}

TEST(Edge, InverseStepAddsTheMeanOfTheEndsThatContinuousHalvesJoin) {
  EXPECT_EQ(CTransformEdge(kNoneCut).Inverse(WaveletMode::New), 10 + 4);
  EXPECT_EQ(CTransformEdge(kSecondCut).Inverse(WaveletMode::New), 10 + 3);
  EXPECT_EQ(CTransformEdge(kFirstCut).Inverse(WaveletMode::New), 10 + 5);
  EXPECT_EQ(CTransformEdge(kBothCut).Inverse(WaveletMode::New), 10);
}

TEST(Edge, ForwardStepSubtractsTheSameMean) {
  EXPECT_EQ(CTransformEdge(kNoneCut).Forward(WaveletMode::New), 10 - 4);
  EXPECT_EQ(CTransformEdge(kSecondCut).Forward(WaveletMode::New), 10 - 3);
  EXPECT_EQ(CTransformEdge(kFirstCut).Forward(WaveletMode::New), 10 - 5);
  EXPECT_EQ(CTransformEdge(kBothCut).Forward(WaveletMode::New), 10);
}

TEST(Edge, StepsIgnoreCutsOutsideTheNewMode) {
  EXPECT_EQ(CTransformEdge(kBothCut).Inverse(WaveletMode::Simple), 10 + 4);
  EXPECT_EQ(CTransformEdge(kFirstCut).Forward(WaveletMode::Simple), 10 - 4);
}

TEST(Edge, InverseStepRunsOncePerPass) {
  CTransformEdge edge;
  EXPECT_EQ(edge.Inverse(WaveletMode::New), 14);
  EXPECT_TRUE(edge.m_Lattice.Has(edge.Midpoint(), PointFlag::kComputed));
  EXPECT_EQ(edge.Inverse(WaveletMode::New), 14);
  edge.m_Lattice.ClearAll(PointFlag::kComputed);
  EXPECT_EQ(edge.Inverse(WaveletMode::New), 18);
}

TEST(Edge, ForwardStepRunsOncePerPassAndKeepsTheHeights) {
  CTransformEdge edge;
  const std::vector<double> heights = edge.m_afValues;
  EXPECT_EQ(edge.Forward(WaveletMode::New), 6);
  EXPECT_TRUE(edge.m_Lattice.Has(edge.Midpoint(), PointFlag::kComputed));
  EXPECT_EQ(edge.Forward(WaveletMode::New), 0) << "a second run in the pass writes nothing";
  EXPECT_EQ(edge.m_afValues, heights);
}

TEST(Edge, StepsRefuseALeaf) {
  CTransformEdge edge;
  edge.m_Edge.SetLeafByDepth(0);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(edge.Inverse(WaveletMode::New), 10); }),
            "Error CEdge::ComputeEdgeIfNeeded ; current CEdge is a leaf and shouldn't be\n");
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(edge.Forward(WaveletMode::New), 0); }),
            "Error CEdge::ComputeEdgeIfNeeded_W ; current CEdge is a leaf and shouldn't be\n");
  EXPECT_FALSE(edge.m_Lattice.Has(edge.Midpoint(), PointFlag::kComputed));
}

}  // namespace
