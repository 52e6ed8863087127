#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "lighting/CTexelMap.h"
#include "quadtree/TreeNormals.h"
#include "support/AllocationCount.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

constexpr std::uint32_t kOneTriangle = 1;

// A random surface over a tree, and texels on it.
struct CTexels : CTestTree {
  CTexels(int width, int height, int level = 4, int startLevel = 2)
      : CTestTree(level, startLevel), m_Map(width, height, m_Surface) {
    Roughen(1);
  }
  void Roughen(std::uint32_t seed) {
    SetRandomHeights(m_Lattice, seed);
    ComputeNormals(m_Tree);
  }
  std::size_t Index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_Map.Width()) + static_cast<std::size_t>(column);
  }
  const Vector3& Normal(int column, int row) const { return m_Map.Normals()[Index(column, row)]; }
  double Gx(int column) const { return (column + 0.5) / m_Map.Width() * (m_Lattice.PointsPerSide() - 1); }
  double Gy(int row) const { return (row + 0.5) / m_Map.Height() * (m_Lattice.PointsPerSide() - 1); }
  /// The normal at a texel, by a look-up of its own.
  Vector3 PlainNormal(int column, int row) const {
    return m_Surface.NormalOf(*m_Surface.ShortStencil(Gx(column), Gy(row)));
  }
  template <typename Visit>
  void ForEachTexel(Visit visit) const {
    for (int row = 0; row < m_Map.Height(); ++row) {
      for (int column = 0; column < m_Map.Width(); ++column) visit(column, row);
    }
  }
  bool IsMasked(int column, int row) const { return !m_Map.Mask().empty() && m_Map.Mask()[Index(column, row)] != 0; }

  CTexelMap m_Map;
};

bool Same(const Vector3& a, const Vector3& b) { return a == b || (!IsFinite(a) && !IsFinite(b)); }

TEST(TexelMap, RecordsAreCompact) { EXPECT_LE(sizeof(CInterpCoefs), 64U); }

TEST(TexelMap, CoordinatesRunInRowOrder) {
  CTexels test(3, 2);
  test.m_Map.InitializeCoords(test.m_Surface);
  ASSERT_EQ(test.m_Map.Records().size(), 6U);
  test.ForEachTexel([&](int column, int row) {
    const CInterpCoefs& record = test.m_Map.Records()[test.Index(column, row)];
    EXPECT_EQ(record.Column(), column);
    EXPECT_EQ(record.Row(), row);
    EXPECT_FALSE(record.IsLocated());
    EXPECT_EQ(test.Normal(column, row), (Vector3{0, 0, 1}));
  });
}

TEST(TexelMap, InitialisingForgetsWhatThePassesFound) {
  CTexels test(3, 2);
  test.m_Map.ComputeCoefs(test.m_Surface);
  test.m_Map.InitializeCoords(test.m_Surface);
  test.m_Map.UpdateNormals(test.m_Surface);
  test.ForEachTexel([&](int column, int row) { EXPECT_EQ(test.Normal(column, row), (Vector3{0, 0, 1})); });
  EXPECT_FALSE(test.m_Map.Records()[0].IsLocated());
}

TEST(TexelMap, NormalsOfANewPicturePointUp) {
  CTexels test(3, 2);
  test.m_Map.UpdateNormals(test.m_Surface);
  test.ForEachTexel([&](int column, int row) { EXPECT_EQ(test.Normal(column, row), (Vector3{0, 0, 1})); });
}

TEST(TexelMap, PassesWriteRowsFromTheBottom) {
  CTexels test(10, 6);
  SetHeights(test.m_Lattice, CBump{});
  ComputeNormals(test.m_Tree);
  test.m_Map.ComputeCoefs(test.m_Surface);
  test.ForEachTexel([&](int column, int row) {
    EXPECT_TRUE(Same(test.Normal(column, row), test.PlainNormal(column, row))) << column << ' ' << row;
  });
}

RC_GTEST_PROP(TexelMapProperty, MaskEqualsTheDescentOfTheTree, ()) {
  const int width = *rc::gen::inRange(1, 40);
  const int height = *rc::gen::inRange(1, 40);
  CTexels test(width, height, *rc::gen::inRange(1, 5), 1);
  Randomise(test.m_Tree, *rc::gen::arbitrary<std::uint32_t>());
  test.m_Map.TestDiscontinuities(test.m_Surface);
  test.ForEachTexel([&](int column, int row) {
    RC_ASSERT(test.IsMasked(column, row) == test.Root().IsPointInsideDiscontinuity(test.Gx(column), test.Gy(row)));
  });
}

RC_GTEST_PROP(TexelMapProperty, PassesEqualLookUpsTexelByTexel, ()) {
  CTexels test(*rc::gen::inRange(1, 30), *rc::gen::inRange(1, 30));
  Randomise(test.m_Tree, *rc::gen::arbitrary<std::uint32_t>());
  test.Roughen(2);
  test.m_Map.ComputeCoefs(test.m_Surface);
  test.ForEachTexel([&](int column, int row) {
    const Vector3 expected = test.IsMasked(column, row) ? Vector3{0, 0, 1} : test.PlainNormal(column, row);
    RC_ASSERT(Same(test.Normal(column, row), expected));
  });
  test.Roughen(3);
  test.m_Map.ComputeNormals(test.m_Surface);
  test.ForEachTexel(
      [&](int column, int row) { RC_ASSERT(Same(test.Normal(column, row), test.PlainNormal(column, row))); });
}

TEST(TexelMap, OneMarkedTrianglePutsAllTexelsOfItsCellIntoTheMask) {
  CTexels test(32, 16);
  MakeLeaf(test.m_Tree, 2, 1, 2, kOneTriangle);
  test.m_Map.TestDiscontinuities(test.m_Surface);
  test.ForEachTexel([&](int column, int row) {
    EXPECT_EQ(test.IsMasked(column, row), column >= 8 && column < 16 && row >= 8 && row < 12);
  });
}

TEST(TexelMap, TexelsInTheMaskKeepTheirNormalInTheCoefficientPass) {
  CTexels test(16, 16);
  test.m_Map.ComputeCoefs(test.m_Surface);
  const Vector3 before = test.Normal(5, 9);
  const Vector3 outside = test.Normal(9, 9);
  MakeLeaf(test.m_Tree, 2, 1, 2, kOneTriangle);
  test.Roughen(2);
  test.m_Map.ComputeCoefs(test.m_Surface);
  EXPECT_TRUE(test.IsMasked(5, 9));
  EXPECT_EQ(test.Normal(5, 9), before);
  EXPECT_NE(test.Normal(9, 9), outside);
}

TEST(TexelMap, TexelsInTheMaskTakePartInTheNormalsPass) {
  CTexels test(16, 16);
  test.m_Map.ComputeCoefs(test.m_Surface);
  MakeLeaf(test.m_Tree, 2, 1, 2, kOneTriangle);
  test.Roughen(2);
  test.m_Map.ComputeNormals(test.m_Surface);
  EXPECT_TRUE(test.IsMasked(5, 9));
  EXPECT_EQ(test.Normal(5, 9), test.PlainNormal(5, 9));
}

TEST(TexelMap, NormalsInACellWithoutAnyTriangleAreNotANumber) {
  CTexels test(24, 24);
  MakeLeaf(test.m_Tree, 2, 1, 2, CellFlag::kTriangles);
  test.Roughen(2);
  test.m_Map.ComputeNormals(test.m_Surface);
  EXPECT_FALSE(IsFinite(test.Normal(8, 14)));
  EXPECT_TRUE(IsFinite(test.Normal(20, 14)));
}

TEST(TexelMap, NoPassReadsCoefficientsOfAnEarlierTree) {
  CTexels test(16, 16);
  test.m_Map.ComputeCoefs(test.m_Surface);
  MakeLeaf(test.m_Tree, 0, 7, 7);
  test.Roughen(2);
  test.m_Map.ComputeNormals(test.m_Surface);
  test.ForEachTexel([&](int column, int row) { EXPECT_EQ(test.Normal(column, row), test.PlainNormal(column, row)); });
}

TEST(TexelMap, NormalsOfAnEarlierTreeAreMadeAnewBeforeTheyAreUsed) {
  CTexels test(16, 16);
  MakeLeaf(test.m_Tree, 0, 7, 7);
  MakeLeaf(test.m_Tree, 2, 0, 0, kOneTriangle);
  test.Roughen(2);
  test.m_Map.UpdateNormals(test.m_Surface);
  EXPECT_EQ(test.Normal(7, 7), test.PlainNormal(7, 7));
  EXPECT_EQ(test.Normal(1, 1), (Vector3{0, 0, 1}));
}

TEST(TexelMap, NormalsOfThePresentTreeAreLeftAlone) {
  CTexels test(16, 16);
  test.m_Map.ComputeCoefs(test.m_Surface);
  const std::vector<Vector3> before(test.m_Map.Normals().begin(), test.m_Map.Normals().end());
  test.Roughen(2);
  const unsigned revision = test.m_Map.Revision();
  test.m_Map.UpdateNormals(test.m_Surface);
  test.m_Map.UpdateRecords(test.m_Surface);
  EXPECT_TRUE(std::ranges::equal(test.m_Map.Normals(), before));
  EXPECT_EQ(test.m_Map.Revision(), revision);
}

TEST(TexelMap, LocatingLeavesTheNormals) {
  CTexels test(4, 4);
  test.m_Map.UpdateRecords(test.m_Surface);
  for (const CInterpCoefs& record : test.m_Map.Records()) EXPECT_TRUE(record.IsLocated());
  for (const Vector3& normal : test.m_Map.Normals()) EXPECT_EQ(normal, (Vector3{0, 0, 1}));
}

TEST(TexelMap, RevisionGrowsWithTheNormals) {
  CTexels test(4, 4);
  unsigned last = test.m_Map.Revision();
  const auto grows = [&] { return test.m_Map.Revision() > std::exchange(last, test.m_Map.Revision()); };
  test.m_Map.ComputeCoefs(test.m_Surface);
  EXPECT_TRUE(grows());
  test.m_Map.ComputeNormals(test.m_Surface);
  EXPECT_TRUE(grows());
  test.m_Map.InitializeCoords(test.m_Surface);
  EXPECT_TRUE(grows());
}

// Without leaf sub-edges around its cell no texel in it can be found.
void BreakCell(CTexels& test) {
  for (int side = 0; side < 4; ++side) test.m_Tree.CellAt(0, 7, 7).Edge(side).SetLeaf(false);
}

TEST(TexelMap, ATexelThatCannotBeFoundKeepsItsNormal) {
  CTexels test(64, 64);
  MakeLeaf(test.m_Tree, 0, 7, 7);
  test.Roughen(2);
  test.m_Map.ComputeCoefs(test.m_Surface);
  const Vector3 before = test.Normal(29, 30);
  BreakCell(test);
  test.Roughen(3);
  const std::string text = ConsoleTextOf([&] { test.m_Map.ComputeCoefs(test.m_Surface); });
  EXPECT_NE(text.find("CInterpCoefs::GetNormalTexPoint()\t\tcell == NULL\n\t\t\txg = 7.375, yg = 7.625\n"),
            std::string::npos);
  EXPECT_EQ(test.Normal(29, 30), before);
  EXPECT_EQ(test.Normal(2, 2), test.PlainNormal(2, 2));
}

TEST(TexelMap, ATexelThatTheNewTreeDoesNotHoldIsNotReadFromTheOldOne) {
  CTexels test(64, 64);
  test.m_Map.ComputeCoefs(test.m_Surface);
  const Vector3 before = test.Normal(29, 30);
  MakeLeaf(test.m_Tree, 0, 7, 7);
  BreakCell(test);
  test.Roughen(3);
  ConsoleTextOf([&] { test.m_Map.ComputeNormals(test.m_Surface); });
  EXPECT_FALSE(test.m_Map.Records()[test.Index(29, 30)].IsLocated());
  EXPECT_EQ(test.Normal(29, 30), before);
}

TEST(TexelMap, NothingIsAllocatedAfterTheFirstUse) {
  CTexels test(20, 20);
  MakeLeaf(test.m_Tree, 1, 2, 3, kOneTriangle);
  test.m_Map.ComputeCoefs(test.m_Surface);
  const std::size_t before = AllocationCount();
  test.m_Map.InitializeCoords(test.m_Surface);
  test.m_Map.TestDiscontinuities(test.m_Surface);
  test.m_Map.ComputeCoefs(test.m_Surface);
  test.m_Map.ComputeNormals(test.m_Surface);
  test.m_Map.UpdateNormals(test.m_Surface);
  EXPECT_EQ(AllocationCount(), before);
}

TEST(TexelMap, NothingIsAllocatedBeforeTheFirstUse) {
  CTexels test(20, 20);
  const std::size_t before = AllocationCount();
  const CTexelMap map(20, 20, test.m_Surface);
  test.m_Map.TestDiscontinuities(test.m_Surface);
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_EQ(map.Missing(), 400.0 * static_cast<double>(CTexelMap::kBytesPerTexel));
}

TEST(TexelMap, TheMaskComesWithTheFirstTexelInADiscontinuity) {
  CTexels test(16, 16);
  test.m_Map.TestDiscontinuities(test.m_Surface);
  EXPECT_TRUE(test.m_Map.Mask().empty());
  MakeLeaf(test.m_Tree, 2, 1, 2, kOneTriangle);
  test.m_Map.TestDiscontinuities(test.m_Surface);
  EXPECT_EQ(std::ranges::count(test.m_Map.Mask(), 1), 16);
  EXPECT_EQ(test.m_Map.Mask().size(), 256U);
}

TEST(TexelMap, WithoutMemoryForBothNeitherRecordsNorNormalsAreTaken) {
  for (long failing = 0; failing < 2; ++failing) {
    CTexels test(16, 16);
    const double missing = test.m_Map.Missing();
    FailAllocation(failing);
    EXPECT_THROW(test.m_Map.Reserve(), std::bad_alloc);
    FailAllocation(-1);
    EXPECT_EQ(test.m_Map.Missing(), missing);
    test.m_Map.Reserve();
    EXPECT_EQ(test.m_Map.Missing(), 0);
    EXPECT_TRUE(test.m_Map.Records().empty());
  }
}

}  // namespace
