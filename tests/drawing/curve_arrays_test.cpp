#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CCurveArrays.h"
#include "support/AllocationCount.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/GridBuilders.h"

namespace {

class CurveArraysTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  CCntrCtrl& Add(const CPlaces& places, CurveType type = CurveType::kFairness, bool closed = false) {
    return CStaging::Constraints(Grid()).Curves().Add(PointsAt(places), type, closed);
  }
  void Refresh() { m_Arrays.Refresh(Grid()); }
  Vector3 At(std::size_t vertex) const {
    const std::span<const float> v = m_Arrays.Vertices().subspan(3 * vertex, 3);
    return {v[0], v[1], v[2]};
  }
  double SurfaceAt(double x, double y) {
    return Grid().GetHeightAt(Grid().Surface().Lattice().ColumnOf(x), Grid().Surface().Lattice().RowOf(y));
  }

  // Over -3.5..12.5 by 20..26 in steps of 1 by 0.375.
  CTestGrid m_Grid{4, 2};
  CCurveArrays m_Arrays;
};

constexpr double kFloatError = 1e-5;
const CPlaces kBent{{0, 21}, {4.25, 22}, {8, 25}};

}  // namespace

TEST_F(CurveArraysTest, VerticesLieOnTheSurfaceAStepApart) {
  SetRandomSurface(Grid(), 1);
  Add(kBent);
  Refresh();
  ASSERT_EQ(m_Arrays.Lines().size(), 1U);
  EXPECT_EQ(m_Arrays.Vertices().size(), 3 * m_Arrays.Lines()[0].m_uCount);
  for (std::size_t k = 0; k < m_Arrays.Lines()[0].m_uCount; ++k) {
    const Vector3 v = At(k);
    EXPECT_NEAR(v.z, SurfaceAt(v.x, v.y), kFloatError);
    if (k == 0) continue;
    const Vector3 d = v - At(k - 1);
    EXPECT_LE(std::abs(d.x), 1 + kFloatError);
    EXPECT_LE(std::abs(d.y), 0.375 + kFloatError);
  }
}

TEST_F(CurveArraysTest, NodesHaveVerticesOfTheirOwn) {
  Add(kBent);
  Add({{1, 24}, {2, 24}, {2, 25}}, CurveType::kNormal, true);
  Refresh();
  const CPlaces places{{0, 21}, {4.25, 22}, {8, 25}, {1, 24}, {2, 24}, {2, 25}};
  ASSERT_EQ(m_Arrays.NodeVertices().size(), places.size());
  for (std::size_t k = 0; k < places.size(); ++k) {
    const Vector3 v = At(m_Arrays.NodeVertices()[k]);
    EXPECT_NEAR(v.x, places[k][0], kFloatError);
    EXPECT_NEAR(v.y, places[k][1], kFloatError);
  }
}

TEST_F(CurveArraysTest, ClosedLineEndsWhereItBegan) {
  Add({{1, 24}, {5, 24}, {5, 25}}, CurveType::kNormal, true);
  Refresh();
  const Vector3 d = At(m_Arrays.Lines()[0].m_uCount - 1) - At(0);
  EXPECT_EQ(d, (Vector3{0, 0, 0}));
}

TEST_F(CurveArraysTest, EmptyAndSingleNodeCurvesKeepTheirPlaceInTheOrder) {
  Add({});
  Add({{3, 23}});
  Add({{0, 21}, {0.5, 21}});
  Refresh();
  ASSERT_EQ(m_Arrays.Lines().size(), 3U);
  EXPECT_EQ(m_Arrays.Lines()[0].m_uCount, 0U);
  EXPECT_EQ(m_Arrays.Lines()[1].m_uCount, 1U);
  EXPECT_EQ(m_Arrays.Lines()[2].m_uFirst, 1U);
  EXPECT_EQ(m_Arrays.Lines()[2].m_uCount, 2U);
  EXPECT_EQ(m_Arrays.NodeVertices().size(), 3U);
}

TEST_F(CurveArraysTest, TearFollowsItsUpperRim) {
  SetSurface(Grid(), [](double /*x*/, double y) { return y > 23 ? 5.0 : 1.0; });
  for (const bool backwards : {false, true}) {
    CStaging::Constraints(Grid()).Curves().clear();
    Add(backwards ? CPlaces{{9, 23}, {0, 23}} : CPlaces{{0, 23}, {9, 23}}, CurveType::kPosition);
    Grid().SetDiscMap();
    SetSurface(Grid(), [](double /*x*/, double y) { return y > 23 ? 5.0 : 1.0; });
    Refresh();
    for (std::size_t k = 0; k < m_Arrays.Lines()[0].m_uCount; ++k) EXPECT_NEAR(At(k).z, 5, kFloatError) << k;
  }
}

TEST_F(CurveArraysTest, ChangesOfNodesSurfaceAndExtentAreFollowed) {
  CCntrCtrl& curve = Add(kBent);
  Refresh();
  SetSurface(Grid(), CFlat{3});
  Refresh();
  EXPECT_NEAR(At(0).z, 3, kFloatError);
  curve.Nodes().front().m_fX = 1;
  Refresh();
  EXPECT_NEAR(At(0).x, 1, kFloatError);
  curve.SetClosed(true);
  const std::size_t open = m_Arrays.Vertices().size();
  Refresh();
  EXPECT_GT(m_Arrays.Vertices().size(), open);
  CStaging::Constraints(Grid()).Curves().clear();
  Refresh();
  EXPECT_TRUE(m_Arrays.Lines().empty());
  EXPECT_TRUE(m_Arrays.Vertices().empty());
}

TEST_F(CurveArraysTest, ChangedSubdivisionIsFollowed) {
  SetRandomSurface(Grid(), 2);
  Add(kBent);
  Refresh();
  Randomise(Grid().Surface().Tree(), 3);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Grid().BuildHNumerotation();
  SetRandomSurface(Grid(), 4);
  Refresh();
  for (std::size_t k = 0; k < m_Arrays.Lines()[0].m_uCount; ++k)
    EXPECT_NEAR(At(k).z, SurfaceAt(At(k).x, At(k).y), kFloatError);
}

TEST_F(CurveArraysTest, RedrawsAllocateNothing) {
  CCntrCtrl& curve = Add(kBent, CurveType::kPosition);
  Add(kBent, CurveType::kNormal, true);
  Refresh();
  Refresh();
  const std::size_t before = AllocationCount();
  Refresh();
  curve.Nodes().back().m_fX -= 0.5;
  Refresh();
  Grid().Surface().Reconstruct();
  Refresh();
  EXPECT_EQ(AllocationCount(), before);
}

TEST_F(CurveArraysTest, NodesFarOutsideMakeNoEndlessLine) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  for (const double far : {1e9, -1e300, kInfinite, std::nan("")}) {
    CStaging::Constraints(Grid()).Curves().clear();
    Add({{0, 21}, {far, 25}, {0, far}}, CurveType::kPosition);
    Refresh();
    EXPECT_LE(m_Arrays.Lines()[0].m_uCount, 4U * 17 + 4) << far;
  }
}
