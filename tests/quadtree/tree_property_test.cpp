#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "quadtree/CSaveQuadT.h"
#include "quadtree/TreeNormals.h"
#include "support/ConsoleCapture.h"
#include "support/TreeGenerators.h"
#include "support/TreeReference.h"

namespace {

constexpr int kLevel = 4;

// Coefficients are rounded to multiples of 1e-10, each by itself.
constexpr double kNearlyNothing = 2e-10;
// The same in a height made of heights up to 50.
constexpr double kHeightRounding = 1e-8;

// A tree after random changes, with the reference that went through the same ones.
struct CRandomTree : CTestTree {
  explicit CRandomTree(const std::vector<CTreeOp>& ops, int startLevel = 2, int level = kLevel)
      : CTestTree(level, startLevel), m_Reference(level, startLevel) {
    const ConsoleCapture console;
    for (const CTreeOp& op : ops) {
      ::Apply(m_Tree, op);
      m_Reference.Apply(op);
    }
    Settle();
    m_ConsoleText = console.Text();
  }

  CReferenceTree m_Reference;
  std::string m_ConsoleText;
};

// A point of the lattice, a place on one of its lines or diagonals, or one close to such a place.
double RandomCoordinate() {
  const int eighths = *rc::gen::inRange(0, (8 << kLevel) + 1);
  const double shift = *rc::gen::element(0.0, 0.0, 0.03, 1e-7);
  return std::min(eighths / 8.0 + shift, static_cast<double>(1 << kLevel));
}

// A place on a side of some leaf.
std::array<double, 2> RandomPlaceOnASide(const CTestTree& test) {
  const CQuadT& leaf = *test.m_Tree.PointInCell_g(RandomCoordinate(), RandomCoordinate());
  const CEdge& edge = leaf.Edge(*rc::gen::inRange(0, 4));
  const double t = *rc::gen::inRange(0, 1001) / 1000.0 * edge.Length();
  return edge.IsHorizontal() ? std::array{edge.Xa() + t, edge.Ya() + 0.0} : std::array{edge.Xa() + 0.0, edge.Ya() + t};
}

// Marks all triangles wherever it marks, so that every centre is the mean of four sides.
std::vector<CTreeOp> GenOpsOfWholeMarks() {
  auto ops = *GenTreeOps();
  for (CTreeOp& op : ops) op.m_uFlags |= CellFlag::kTriangles;
  return ops;
}

void CollectEdges(const CQuadT& cell, std::map<std::array<int, 4>, const CEdge*>& edges) {
  for (int side = 0; side < 4; ++side) {
    const CEdge& edge = cell.Edge(side);
    edges[{edge.Xa(), edge.Ya(), edge.Xb(), edge.Yb()}] = &edge;
  }
  if (cell.IsActive()) return;
  for (int k = 0; k < 4; ++k) CollectEdges(cell.Child(k), edges);
}

RC_GTEST_PROP(TreeProperty, FlagsEqualThoseMadeFromNothing, ()) {
  const CRandomTree test(*GenTreeOps(24), *rc::gen::inRange(0, kLevel + 1));
  RC_ASSERT(MismatchOfSubdivision(test.m_Tree, test.m_Reference) == "");
  RC_ASSERT(MismatchOfFlags(test.m_Tree, test.m_Reference) == "");
  RC_ASSERT(test.m_Tree.LeafCount() == test.m_Reference.LeafCount());
  RC_ASSERT(test.m_ConsoleText == "");
}

RC_GTEST_PROP(TreeProperty, MarksAreThoseOfTheCellsBesideTheEdge, ()) {
  CRandomTree test(*GenTreeOps());
  RC_ASSERT(MismatchOfMarks(test.m_Tree, test.m_Reference) == "");
  test.m_Tree.Reset(1);
  RC_ASSERT(MismatchOfMarks(test.m_Tree, CReferenceTree(kLevel, 1)) == "");
}

RC_GTEST_PROP(TreeProperty, CoarseningTheRootLeavesOneCell, ()) {
  CRandomTree test(*GenTreeOps());
  test.Root().subdiv_t2();
  RC_ASSERT(MismatchOfSubdivision(test.m_Tree, CReferenceTree(kLevel, 0)) == "");
}

RC_GTEST_PROP(TreeProperty, ReplayMakesTheWantedSubdivision, ()) {
  CRandomTree test(*GenTreeOps());
  const int wantedStart = *rc::gen::inRange(0, kLevel);
  CSubdivisionRecord record(kLevel);
  CReferenceTree expected(kLevel, wantedStart);
  record.SetStartLevel(wantedStart);
  for (CTreeOp op : *GenTreeOps()) {
    op = {CTreeOp::Kind::kSplit, 0, op.m_uColumn % 16, op.m_uRow % 16, 0};
    CSaveQuadT* saved = &record.Root();
    test.m_Tree.getManualSetCell(op.m_uColumn, op.m_uRow, saved);
    if (saved->HasChildren()) saved->subdiv();
    expected.Apply(op);
  }
  test.m_Tree.Replay(record, *rc::gen::inRange(0, kLevel + 1));
  RC_ASSERT(MismatchOfSubdivision(test.m_Tree, expected) == "");
  RC_ASSERT(MismatchOfFlags(test.m_Tree, expected) == "");
}

RC_GTEST_PROP(TreeProperty, FindEdgeFindsExactlyTheSidesOfReachedCells, ()) {
  const CRandomTree test(*GenTreeOps(), 1, 3);
  std::map<std::array<int, 4>, const CEdge*> edges;
  CollectEdges(test.m_Tree.Root(), edges);
  const auto agrees = [&](int xa, int ya, int xb, int yb) {
    const auto found = edges.find({xa, ya, xb, yb});
    return test.m_Tree.FindEdge(xa, ya, xb, yb) == (found == edges.end() ? nullptr : found->second);
  };
  for (int y = 0; y <= 8; ++y) {
    for (int x = 0; x <= 8; ++x) {
      for (int length = 1; length <= 8; ++length) {
        RC_ASSERT(agrees(x, y, x + length, y));
        RC_ASSERT(agrees(x, y, x, y + length));
      }
    }
  }
}

RC_GTEST_PROP(TreeProperty, EveryPointIsInTheOneLeafWhoseLowerAndLeftSidesAreItsOwn, ()) {
  const CRandomTree test(*GenTreeOps());
  const double gx = RandomCoordinate();
  const double gy = RandomCoordinate();
  const auto within = [](double g, int low, int high) { return low <= g && (g < high || (g == high && high == 16)); };
  const CQuadT* expected = nullptr;
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    if (within(gx, leaf.X0(), leaf.X1()) && within(gy, leaf.Y0(), leaf.Y1())) expected = &leaf;
  });
  RC_ASSERT(test.m_Tree.PointInCell_g(gx, gy) == expected);
  RC_ASSERT(test.m_Tree.Root().IsPointInsideDiscontinuity(gx, gy) == expected->HasFlag(15));
}

RC_GTEST_PROP(TreeProperty, StencilWeightsLieInZeroToOneAndSumToOne, ()) {
  const CRandomTree test(*GenTreeOps());
  const double x = test.m_Lattice.XOf(RandomCoordinate());
  const double y = test.m_Lattice.YOf(RandomCoordinate());
  CStencil stencil;
  RC_ASSERT(ConsoleTextOf([&] { RC_ASSERT(test.m_Surface.GetBilinearInterpolation(x, y, stencil)); }) == "");
  for (std::size_t k = 0; k < 8; ++k) {
    RC_ASSERT(stencil.m_afCoefs[k] >= 0 && stencil.m_afCoefs[k] <= 1);
    if (stencil.m_auNodes[k] == CStencil::kEmptySlot) {
      RC_ASSERT(stencil.m_afCoefs[k] == 0);
    } else {
      RC_ASSERT(test.m_Lattice.Has(test.m_Order.PointOf(stencil.m_auNodes[k]), PointFlag::kInUse));
    }
  }
  const double sum = std::accumulate(stencil.m_afCoefs.begin(), stencil.m_afCoefs.end(), 0.0);
  RC_ASSERT(std::abs(sum - 1) < kNearlyNothing);
}

RC_GTEST_PROP(TreeProperty, StencilShortFormAndHeightAgree, ()) {
  CRandomTree test(*GenTreeOps());
  SetRandomHeights(test.m_Lattice, *rc::gen::arbitrary<std::uint32_t>());
  const double gx = RandomCoordinate();
  const double gy = RandomCoordinate();
  CStencil stencil;
  RC_ASSERT(test.m_Surface.GetBilinearInterpolation(test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy), stencil));
  double height = 0.0;
  for (std::size_t k = 0; k < 8; ++k) {
    if (stencil.m_auNodes[k] != CStencil::kEmptySlot)
      height += stencil.m_afCoefs[k] * test.m_Lattice.Heights()[test.m_Order.PointOf(stencil.m_auNodes[k])];
  }
  RC_ASSERT(std::abs(test.m_Surface.HeightAt(gx, gy) - height) < kHeightRounding);
}

RC_GTEST_PROP(TreeProperty, StencilsReproducePlanesWhereAllTrianglesCount, ()) {
  CRandomTree test(*GenTreeOps());
  const CRamp ramp;
  SetHeights(test.m_Lattice, ramp);
  const double gx = RandomCoordinate();
  const double gy = RandomCoordinate();
  const std::uint32_t marks = test.m_Surface.ShortStencil(gx, gy)->m_pCell->Flags() & CellFlag::kTriangles;
  RC_PRE(marks == 0 || marks == CellFlag::kTriangles);
  const double expected = ramp(test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy));
  RC_ASSERT(std::abs(test.m_Surface.HeightAt(gx, gy) - expected) < kHeightRounding);
}

RC_GTEST_PROP(TreeProperty, LeavesAgreeOnTheSidesTheyShare, ()) {
  CRandomTree test(*GenTreeOps());
  SetRandomHeights(test.m_Lattice, *rc::gen::arbitrary<std::uint32_t>());
  const auto [gx, gy] = RandomPlaceOnASide(test);
  const double expected = test.m_Surface.HeightAt(gx, gy);
  test.m_Tree.ForEachLeaf([&, x = gx, y = gy](const CQuadT& leaf) {
    if (!leaf.Contains(x, y)) return;
    const auto triangle = test.m_Surface.LocateInLeaf(leaf, x, y);
    RC_ASSERT(triangle.has_value() && !triangle->HasNegative());
    RC_ASSERT(triangle->m_fCCenter == 0);
    RC_ASSERT(std::abs(test.m_Surface.HeightOf(*triangle) - expected) < kHeightRounding);
  });
}

RC_GTEST_PROP(TreeProperty, SamplesAreTheHeightsAtTheLatticePoints, ()) {
  CRandomTree test(*GenTreeOps());
  SetRandomHeights(test.m_Lattice, *rc::gen::arbitrary<std::uint32_t>());
  std::vector<double> sampled(test.m_Lattice.PointCount());
  test.m_Surface.SampleLattice(sampled);
  for (int row = 0; row <= 16; ++row) {
    for (int column = 0; column <= 16; ++column) {
      const double height = test.m_Surface.HeightAt(column, row);
      RC_ASSERT(std::abs(sampled[test.m_Lattice.Index(column, row)] - height) < kHeightRounding);
    }
  }
}

RC_GTEST_PROP(TreeProperty, SamplesOfAPlaneAreThePlane, ()) {
  CRandomTree test(GenOpsOfWholeMarks());
  std::vector<double> plane(test.m_Lattice.PointCount());
  FillHeights(test.m_Lattice, plane, CRamp{});
  // Heights between the points in use must not be looked at.
  for (std::size_t point = 0; point < plane.size(); ++point)
    test.m_Lattice.Heights()[point] = test.m_Lattice.Has(point, PointFlag::kInUse) ? plane[point] : 1e9;
  std::vector<double> sampled(plane.size());
  test.m_Surface.SampleLattice(sampled);
  for (std::size_t point = 0; point < plane.size(); ++point)
    RC_ASSERT(std::abs(sampled[point] - plane[point]) < kHeightRounding);
}

RC_GTEST_PROP(TreeProperty, APointCarriesHalfTheAreaOfEachTriangleItBelongsTo, ()) {
  CRandomTree test(*GenTreeOps());
  std::vector<double> expected(test.m_Lattice.PointCount());
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    const double cx = (leaf.X0() + leaf.X1()) / 2.0;
    const double cy = (leaf.Y0() + leaf.Y1()) / 2.0;
    for (int side = 0; side < 4; ++side) leaf.Edge(side).AddAreaTerm(cx, cy, test.m_Lattice);
  });
  // Walk round every leaf from one point in use to the next; the triangle on that step is as high as half the leaf.
  const std::vector<bool> used = test.m_Reference.PointsInUse();
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    for (int side = 0; side < 4; ++side) {
      const auto from = leaf.Corner(side);
      const auto to = leaf.Corner((side + 1) % 4);
      std::size_t previous = test.m_Lattice.Index(from[0], from[1]);
      for (int step = 1, last = 0; step <= leaf.Size(); ++step) {
        const std::size_t point = test.m_Lattice.Index(from[0] + (to[0] - from[0]) / leaf.Size() * step,
                                                       from[1] + (to[1] - from[1]) / leaf.Size() * step);
        if (!used[point]) continue;
        const double area = (step - last) * (leaf.Size() / 2.0) / 2;
        expected[previous] += area / 2;
        expected[point] += area / 2;
        previous = point;
        last = step;
      }
    }
  });
  RC_ASSERT(std::ranges::equal(test.m_Lattice.Smoothness(), expected));
  RC_ASSERT(std::accumulate(expected.begin(), expected.end(), 0.0) == 16.0 * 16.0);
}

RC_GTEST_PROP(TreeProperty, TriangleNormalsAreThoseOfTheTrianglesInModelUnits, ()) {
  CRandomTree test(*GenTreeOps());
  SetRandomHeights(test.m_Lattice, *rc::gen::arbitrary<std::uint32_t>());
  ComputeNormals(test.m_Tree);
  const auto at = [&](double gx, double gy, double z) {
    return Vector3{test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy), z};
  };
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    const Vector3 centre = at((leaf.X0() + leaf.X1()) / 2.0, (leaf.Y0() + leaf.Y1()) / 2.0,
                              CentreWeightsOf(leaf, test.m_Lattice).Of(test.m_Lattice.Heights()));
    for (int k = 0; k < 4; ++k) {
      std::array<Vector3, 2> corners;
      for (int c = 0; c < 2; ++c) {
        const auto [column, row] = leaf.Corner((k + c) % 4);
        corners[static_cast<std::size_t>(c)] =
            at(column, row, test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)]);
      }
      const Vector3 normal = Normalised(Cross(corners[0] - centre, corners[1] - centre));
      RC_ASSERT(Length(leaf.Surface().m_aTriangleNormals[static_cast<std::size_t>(k)] - normal) < 1e-9);
      RC_ASSERT(std::abs(leaf.TriangleCentre(k).z - (centre.z + corners[0].z + corners[1].z) / 3) < 1e-12);
    }
  });
}

RC_GTEST_PROP(TreeProperty, PointNormalsAreTheDirectionOfTheSummedTriangleNormals, ()) {
  CRandomTree test(*GenTreeOps());
  SetRandomHeights(test.m_Lattice, *rc::gen::arbitrary<std::uint32_t>());
  ComputeNormals(test.m_Tree);
  std::vector<Vector3> sums(test.m_Lattice.PointCount());
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    for (int corner = 0; corner < 4; ++corner) {
      for (const int triangle : {corner, (corner + 3) % 4}) {
        if ((leaf.Flags() >> triangle & 1) != 0) continue;
        const auto [column, row] = leaf.Corner(corner);
        sums[test.m_Lattice.Index(column, row)] +=
            leaf.Surface().m_aTriangleNormals[static_cast<std::size_t>(triangle)];
      }
    }
  });
  for (std::size_t point = 0; point < sums.size(); ++point) {
    const Vector3 expected = sums[point] == Vector3{} ? Vector3{} : Normalised(sums[point]);
    RC_ASSERT(Length(test.m_Lattice.PointNormals()[point] - expected) < 1e-9);
  }
}

RC_GTEST_PROP(TreeProperty, NormalsRememberNothingOfAnEarlierSubdivision, ()) {
  const auto before = *GenTreeOps();
  const auto after = *GenTreeOps(6);
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  CRandomTree changed(before);
  ComputeNormals(changed.m_Tree);
  ApplyAll(changed.m_Tree, after);
  CRandomTree fresh(before);
  ApplyAll(fresh.m_Tree, after);
  for (CTestTree* test : {static_cast<CTestTree*>(&changed), static_cast<CTestTree*>(&fresh)}) {
    SetRandomHeights(test->m_Lattice, seed);
    ComputeNormals(test->m_Tree);
  }
  // A cell without a normal has three components that are not numbers, which are never equal.
  const auto same = [](const Vector3& a, const Vector3& b) { return a == b || (!IsFinite(a) && !IsFinite(b)); };
  RC_ASSERT(std::ranges::equal(changed.m_Lattice.PointNormals(), fresh.m_Lattice.PointNormals(), same));
  fresh.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    const CQuadT& other = changed.m_Tree.CellAt(leaf.Level(), leaf.X0() >> leaf.Level(), leaf.Y0() >> leaf.Level());
    RC_ASSERT(same(leaf.Surface().m_CellNormal, other.Surface().m_CellNormal));
    RC_ASSERT(leaf.Surface().m_afTriangleZ == other.Surface().m_afTriangleZ);
  });
}

}  // namespace
