#include <array>
#include <cmath>
#include <cstddef>

#include <gtest/gtest.h>

#include "quadtree/CInterpCoefs.h"
#include "quadtree/TreeNormals.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

constexpr double kTolerance = 1e-9;

void ExpectNear(const Vector3& actual, const Vector3& expected) {
  EXPECT_NEAR(actual.x, expected.x, kTolerance);
  EXPECT_NEAR(actual.y, expected.y, kTolerance);
  EXPECT_NEAR(actual.z, expected.z, kTolerance);
}

Vector3 PointNormal(const CTestTree& test, int column, int row) {
  return test.m_Lattice.PointNormals()[test.m_Lattice.Index(column, row)];
}

// One leaf over a model 4 x 2 units large, the south-east corner lifted to 4: the centre lies at height 1.
struct CLiftedCorner : CTestTree {
  CLiftedCorner() : CTestTree(1, 0, CExtent{10, 14, -1, 1}) { Z(*this, 2, 0) = 4; }
  void Compute() { ComputeNormals(m_Tree); }
};
TEST(ComputeNormals, OfAPlaneAreThoseOfThePlane) {
  CTestTree test(4, 1);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  test.Settle();
  const CRamp ramp;
  SetHeights(test.m_Lattice, ramp);
  ComputeNormals(test.m_Tree);
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    ExpectNear(leaf.Surface().m_CellNormal, ramp.Normal());
    for (const Vector3& normal : leaf.Surface().m_aTriangleNormals) ExpectNear(normal, ramp.Normal());
    for (int k = 0; k < 4; ++k) {
      const Vector3 centre = leaf.TriangleCentre(k);
      EXPECT_NEAR(centre.z, ramp(centre.x, centre.y), kTolerance);
      ExpectNear(PointNormal(test, leaf.Corner(k)[0], leaf.Corner(k)[1]), ramp.Normal());
    }
  });
}

TEST(ComputeNormals, TriangleNormalsAreThoseOfCornerCornerCentre) {
  CLiftedCorner test;
  test.Compute();
  const CCellSurface& surface = test.Root().Surface();
  ExpectNear(surface.m_aTriangleNormals[kBottom], Normalised({-1, 1, 1}));
  ExpectNear(surface.m_aTriangleNormals[kRight], Normalised({-1, 4, 2}));
  ExpectNear(surface.m_aTriangleNormals[kTop], Normalised({0, 1, 1}));
  ExpectNear(surface.m_aTriangleNormals[kLeft], Normalised({-1, 0, 2}));
}

TEST(ComputeNormals, TriangleHeightsAreTheMeansOfTheirCorners) {
  CLiftedCorner test;
  test.Compute();
  EXPECT_EQ(test.Root().Surface().m_afTriangleZ, (std::array<double, 4>{5.0 / 3, 5.0 / 3, 1.0 / 3, 1.0 / 3}));
}

TEST(ComputeNormals, TheCellNormalSumsTheUnmarkedTriangles) {
  CLiftedCorner test;
  test.Root().SetFlags(1U << kTop);
  test.Compute();
  const CCellSurface& surface = test.Root().Surface();
  const auto& n = surface.m_aTriangleNormals;
  ExpectNear(surface.m_CellNormal, Normalised(n[kBottom] + n[kRight] + n[kLeft]));
  EXPECT_NEAR(Length(n[kTop]), 1.0, kTolerance) << "a marked triangle has its normal all the same";
}

TEST(ComputeNormals, TheLatticeKeepsTheCellNormalAtTheLowerLeftPoint) {
  CTestTree test(3, 1);
  SetRandomHeights(test.m_Lattice, 6);
  ComputeNormals(test.m_Tree);
  EXPECT_EQ(test.m_Lattice.CellNormals()[4 * 8 + 0], test.Root().Child(3).Surface().m_CellNormal);
  EXPECT_EQ(test.m_Lattice.CellNormals()[0 * 8 + 4], test.Root().Child(1).Surface().m_CellNormal);
}

TEST(ComputeNormals, PointNormalsBlendTheUnmarkedTrianglesAround) {
  CLiftedCorner test;
  test.Root().SetFlags(1U << kBottom);
  test.Compute();
  const auto& n = test.Root().Surface().m_aTriangleNormals;
  ExpectNear(PointNormal(test, 0, 0), n[kLeft]);
  ExpectNear(PointNormal(test, 2, 0), n[kRight]);
  ExpectNear(PointNormal(test, 2, 2), Normalised(n[kRight] + n[kTop]));
  ExpectNear(PointNormal(test, 0, 2), Normalised(n[kTop] + n[kLeft]));
  EXPECT_EQ(PointNormal(test, 1, 1), Vector3{}) << "no corner of a leaf";
}

TEST(ComputeNormals, LargeAndSmallTrianglesWeighTheSameInAPointNormal) {
  CTestTree test(3, 1);
  test.Root().Child(0).subdiv(false);
  SetRandomHeights(test.m_Lattice, 8);
  ComputeNormals(test.m_Tree);
  const auto normal = [](const CQuadT& cell, Side side) { return cell.Surface().m_aTriangleNormals[side]; };
  const CQuadT& small = test.m_Tree.CellAt(1, 1, 1);
  const CQuadT& east = test.Root().Child(1);
  const CQuadT& far = test.Root().Child(2);
  const CQuadT& north = test.Root().Child(3);
  ExpectNear(PointNormal(test, 4, 4),
             Normalised(normal(small, kRight) + normal(small, kTop) + normal(east, kTop) + normal(east, kLeft) +
                        normal(far, kLeft) + normal(far, kBottom) + normal(north, kBottom) + normal(north, kRight)));
}

TEST(ComputeNormals, AHangingPointHasNothingOfTheLargeCellBesideIt) {
  CTestTree test(3, 1);
  test.Root().Child(0).subdiv(false);
  test.Settle();
  SetHeights(test.m_Lattice, CFlat{});
  Z(test, 8, 0) = 5;
  ComputeNormals(test.m_Tree);
  EXPECT_EQ(PointNormal(test, 4, 2), (Vector3{0, 0, 1}));
}

TEST(ComputeNormals, StartAfreshEveryTime) {
  CLiftedCorner test;
  test.Compute();
  Z(test, 2, 0) = 0;
  test.Compute();
  EXPECT_EQ(PointNormal(test, 2, 0), (Vector3{0, 0, 1}));
  EXPECT_EQ(test.Root().Surface().m_CellNormal, (Vector3{0, 0, 1}));
}

TEST(ComputeNormals, ACellWithAllTrianglesMarkedHasNoNormal) {
  CTestTree test(3, 1);
  MakeLeaf(test.m_Tree, 2, 0, 0, 15);
  ComputeNormals(test.m_Tree);
  EXPECT_TRUE(std::isnan(test.Root().Child(0).Surface().m_CellNormal.z));
  EXPECT_TRUE(std::isnan(test.m_Lattice.CellNormals()[0].x));
  EXPECT_EQ(PointNormal(test, 0, 0), Vector3{}) << "nothing contributes";
  EXPECT_EQ(PointNormal(test, 4, 0), (Vector3{0, 0, 1}));
}

TEST(GetNormal, OnTheBorderOfACellWithoutNormalIsFinite) {
  CTestTree test(3, 1);
  MakeLeaf(test.m_Tree, 2, 0, 0, 15);
  ComputeNormals(test.m_Tree);
  const auto at = [&](double gx, double gy) {
    return test.m_Surface.GetNormal(test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy));
  };
  ExpectNear(at(4, 1.5), {0, 0, 1});
  ExpectNear(at(2.5, 4), {0, 0, 1});
  EXPECT_FALSE(IsFinite(at(2, 1))) << "inside there is nothing to blend";
}

TEST(GetNormal, OfAPlaneIsThatOfThePlane) {
  CTestTree test(4, 2);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  const CRamp ramp;
  SetHeights(test.m_Lattice, ramp);
  ComputeNormals(test.m_Tree);
  for (int j = 0; j <= 10; ++j) {
    for (int i = 0; i <= 20; ++i) ExpectNear(test.m_Surface.GetNormal(-3.5 + 0.8 * i, 20 + 0.6 * j), ramp.Normal());
  }
}

TEST(GetNormal, BlendsPointAndCellNormalsAndHasUnitLength) {
  CLiftedCorner test;
  test.Compute();
  const Vector3 cell = test.Root().Surface().m_CellNormal;
  ExpectNear(test.m_Surface.GetNormal(12, 0), cell);
  ExpectNear(test.m_Surface.GetNormal(10, 1), PointNormal(test, 0, 2));
  ExpectNear(test.m_Surface.GetNormal(12, -0.5),
             Normalised(0.25 * PointNormal(test, 0, 0) + 0.25 * PointNormal(test, 2, 0) + 0.5 * cell));
}

TEST(GetNormal, ReportsAPointOutsideAndPointsUp) {
  CLiftedCorner test;
  test.Compute();
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_EQ(test.m_Surface.GetNormal(9.9, 0), (Vector3{0, 0, 1}));
            }),
            "CQuadT::GetNormal\t\tcell == NULL)\n");
}

// A texel of a picture of `width` x `height`, located from the root.
struct CLocatedTexel : CInterpCoefs {
  CLocatedTexel(const CTestTree& test, int column, int row, int width, int height) : CInterpCoefs(column, row) {
    m_pFound = GetNormalTexPoint(&test.m_Surface, width, height, m_pLeaf, m_Normal);
  }

  const CQuadT* m_pLeaf = nullptr;
  Vector3 m_Normal{7, 7, 7};
  const Vector3* m_pFound = nullptr;
};

TEST(TexelNormal, LiesAtTheTexelCentre) {
  CTestTree test(7, 7);  // 129 points per side: column 0 of 256 lies at 0.25, row 0 of 128 at 0.5
  SetHeights(test.m_Lattice, CBump{});
  ComputeNormals(test.m_Tree);
  EXPECT_EQ(CInterpCoefs::Coordinate(0, 256, 129), 0.25);
  const CLocatedTexel texel(test, 0, 0, 256, 128);
  ASSERT_NE(texel.m_pFound, nullptr);
  EXPECT_EQ(texel.A(), 0U);
  EXPECT_EQ(texel.B(), 129U);
  EXPECT_NEAR(texel.CCenter(), 0.5, 1e-10);
  EXPECT_NEAR(texel.Ca(), 0.25, 1e-10);
  EXPECT_NEAR(texel.Cb(), 0.25, 1e-10);
  EXPECT_EQ(texel.Cell(), 0U);
}

TEST(TexelNormal, KeepsTheCellOfItsLeafAndThePointsOfItsTriangle) {
  CTestTree test(3, 2);
  // Of 8 x 16 texels: the place (5.5, 3.25), right of the middle of 4..6 by 2..4.
  const CLocatedTexel texel(test, 5, 6, 8, 16);
  ASSERT_NE(texel.m_pFound, nullptr);
  EXPECT_EQ(texel.m_pLeaf, &test.m_Tree.CellAt(1, 2, 1));
  EXPECT_EQ(texel.Cell(), 2U * 8 + 4);
  EXPECT_EQ(texel.A(), test.m_Lattice.Index(6, 2));
  EXPECT_EQ(texel.B(), test.m_Lattice.Index(6, 4));
  EXPECT_EQ((std::array{texel.Column(), texel.Row()}), (std::array{5, 6}));
}

TEST(TexelNormal, IsTheNormalAtItsPlace) {
  CTestTree test(4, 2);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  SetHeights(test.m_Lattice, CBump{});
  ComputeNormals(test.m_Tree);
  for (int row = 0; row < 6; ++row) {
    for (int column = 0; column < 10; ++column) {
      const CLocatedTexel texel(test, column, row, 10, 6);
      ASSERT_EQ(texel.m_pFound, &texel.m_Normal);
      ExpectNear(texel.m_Normal, test.m_Surface.GetNormal(-3.5 + 1.6 * (column + 0.5), 20 + row + 0.5));
      EXPECT_NEAR(Length(texel.m_Normal), 1.0, kTolerance);
    }
  }
}

TEST(TexelNormal, DoesNotHangOnTheLeafAtWhichTheSearchBegins) {
  CTestTree test(4, 2);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  // 8 columns put every other texel onto a line between leaves.
  for (const int width : {8, 10}) {
    for (int texel = 0; texel < width * 8; ++texel) {
      const CLocatedTexel fromRoot(test, texel % width, texel / width, width, 8);
      test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
        CInterpCoefs other(texel % width, texel / width);
        const CQuadT* start = &leaf;
        ASSERT_TRUE(other.Locate(test.m_Surface, width, 8, start));
        EXPECT_EQ(start, fromRoot.m_pLeaf);
        EXPECT_EQ((std::array{other.A(), other.B(), other.Cell()}),
                  (std::array{fromRoot.A(), fromRoot.B(), fromRoot.Cell()}));
        EXPECT_EQ((std::array{other.Ca(), other.Cb(), other.CCenter()}),
                  (std::array{fromRoot.Ca(), fromRoot.Cb(), fromRoot.CCenter()}));
      });
    }
  }
}

TEST(TexelNormal, WithoutASurfaceThereIsNone) {
  CInterpCoefs texel(0, 0);
  const CQuadT* leaf = nullptr;
  Vector3 normal;
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(texel.GetNormalTexPoint(nullptr, 8, 8, leaf, normal), nullptr); }), "");
  EXPECT_FALSE(texel.IsLocated());
}

TEST(TexelNormal, ReportsATexelOutsideAndClearsItsNormal) {
  CTestTree test(3, 2);
  ComputeNormals(test.m_Tree);
  EXPECT_EQ(CLocatedTexel(test, 7, 0, 8, 8).m_Normal, (Vector3{0, 0, 1}));
  EXPECT_EQ(ConsoleTextOf([&] {
              const CLocatedTexel texel(test, 7, 0, 6, 8);
              EXPECT_EQ(texel.m_pFound, nullptr);
              EXPECT_EQ(texel.m_Normal, Vector3{});
              EXPECT_FALSE(texel.IsLocated());
            }),
            "CInterpCoefs::GetNormalTexPoint()\t\tcell == NULL\n\t\t\txg = 10, yg = 0.5\n");
}

}  // namespace
