// The surface around its tears as it is drawn.

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CClosedArrays.h"
#include "drawing/CSurfaceArrays.h"
#include "support/AllocationCount.h"
#include "support/CleanMeshBuilders.h"

namespace {

using CPoint = std::array<double, 3>;

// Lower on the left of a bent tear, with a slope on either side.
class ClosedArraysTest : public ::testing::Test {
 protected:
  ClosedArraysTest() : m_Grid({{{{-1.0, 3.3}, {7.6, 8.2}, {17.0, 9.7}}}}) { Raise(1.0); }
  void Raise(double factor) {
    m_Grid.m_Grid.BuildHNumerotation();
    m_Grid.Raise([&](int column, int row) {
      return factor * (row > 3.9 + 0.57 * column ? 6.0 + 0.1 * column : 1.0 + 0.2 * row - 0.05 * column);
    });
    CGrid& grid = m_Grid.m_Grid;
    const std::vector<double> heights = Gathered(grid.Surface().Order(), m_Grid.Lattice().Heights());
    grid.Surface().Basis().W(ByScan(grid.Surface().Order(), heights), grid.Surface().Coefficients());
    grid.Surface().Reconstruct();
  }
  const CClosedTears& Refreshed(bool under, bool normals = true) {
    m_Plain.RefreshNormals(m_Grid.m_Grid);
    m_Closed.Refresh(m_Grid.m_Grid, m_Plain, under, normals);
    return m_Closed.Tears();
  }
  static std::vector<CPoint> PointsOf(std::span<const float> positions, std::span<const std::uint32_t> corners) {
    std::vector<CPoint> points;
    for (const std::uint32_t v : corners)
      points.push_back({positions[3 * v], positions[3 * v + 1], positions[3 * v + 2]});
    return points;
  }
  static std::vector<CPoint> PointsOf(const CCleanMesh& mesh, std::span<const std::uint32_t> corners) {
    std::vector<CPoint> points;
    for (const std::uint32_t v : corners) {
      const Vector3 p = mesh.Position(v);
      points.push_back({p.x, p.y, p.z});
    }
    return points;
  }
  static void ExpectNear(std::vector<CPoint> a, std::vector<CPoint> b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t k = 0; k < a.size(); ++k) {
      for (std::size_t axis = 0; axis < 3; ++axis) ASSERT_NEAR(a[k][axis], b[k][axis], 1e-4) << k;
    }
  }

  CTornGrid m_Grid;
  CSurfaceArrays m_Plain;
  CClosedArrays m_Closed;
};

}  // namespace

TEST_F(ClosedArraysTest, AreTheCleanMesh) {
  for (const bool under : {false, true}) {
    const CClosedTears& tears = Refreshed(under);
    const CCleanMesh mesh = m_Grid.Mesh({.m_Gap = under ? TearGap::Under : TearGap::Open});
    std::vector<CPoint> drawn = PointsOf(m_Plain.Positions(), tears.PlainTriangles());
    const std::vector<CPoint> torn = PointsOf(tears.Positions(), tears.Triangles());
    drawn.insert(drawn.end(), torn.begin(), torn.end());
    ExpectNear(drawn, PointsOf(mesh, mesh.Triangles()));
    ExpectNear(PointsOf(tears.Positions(), tears.Strips()), PointsOf(mesh, mesh.Strips()));
    EXPECT_EQ(tears.Strips().empty(), !under);
  }
}

TEST_F(ClosedArraysTest, ShowWhatTheCleanMeshShows) {
  const CClosedTears& tears = Refreshed(true);
  const CCleanMesh mesh = m_Grid.Mesh({.m_Gap = TearGap::Under});
  for (std::size_t k = 0; k < mesh.Strips().size(); ++k) {
    const auto [u, w] = mesh.Picture(mesh.Strips()[k]);
    const std::size_t at = 2 * std::size_t{tears.Strips()[k]};
    ASSERT_NEAR(tears.Shown()[at], kOblong.x0 + u * (kOblong.x1 - kOblong.x0), 1e-4);
    ASSERT_NEAR(tears.Shown()[at + 1], kOblong.y0 + w * (kOblong.y1 - kOblong.y0), 1e-4);
  }
}

TEST_F(ClosedArraysTest, OtherHeightsAllocateNothing) {
  for (const bool under : {false, true}) {
    Raise(1.0);
    Refreshed(under);
    Raise(1.3);
    m_Plain.RefreshNormals(m_Grid.m_Grid);
    const std::size_t before = AllocationCount();
    m_Closed.Refresh(m_Grid.m_Grid, m_Plain, under, true);
    EXPECT_EQ(AllocationCount(), before);
    const CCleanMesh mesh = m_Grid.Mesh({.m_Gap = under ? TearGap::Under : TearGap::Open});
    ExpectNear(PointsOf(m_Closed.Tears().Positions(), m_Closed.Tears().Strips()), PointsOf(mesh, mesh.Strips()));
  }
}

TEST_F(ClosedArraysTest, WhatRunsOnChangesSidesWithTheSurface) {
  Refreshed(true);
  const std::vector<CPoint> before = PointsOf(m_Closed.Tears().Positions(), m_Closed.Tears().Strips());
  Raise(-1.0);
  const CClosedTears& tears = Refreshed(true);
  const CCleanMesh mesh = m_Grid.Mesh({.m_Gap = TearGap::Under});
  ExpectNear(PointsOf(tears.Positions(), tears.Strips()), PointsOf(mesh, mesh.Strips()));
  EXPECT_NE(before, PointsOf(tears.Positions(), tears.Strips()));
}

TEST_F(ClosedArraysTest, HaveUnitNormalsThatLookUp) {
  const CClosedTears& tears = Refreshed(true);
  for (std::size_t v = 0; v < tears.Normals().size(); v += 3) {
    const float* n = &tears.Normals()[v];
    ASSERT_NEAR(std::hypot(n[0], n[1], n[2]), 1.0, 1e-5);
    ASSERT_GT(n[2], 0.0F);
  }
}

TEST_F(ClosedArraysTest, FollowTheSubdivision) {
  Refreshed(true);
  CTornGrid whole({});
  CSurfaceArrays plain;
  plain.RefreshNormals(whole.m_Grid);
  m_Closed.Refresh(whole.m_Grid, plain, true, true);
  EXPECT_TRUE(m_Closed.Tears().Triangles().empty());
  EXPECT_TRUE(m_Closed.Tears().Strips().empty());
  EXPECT_TRUE(std::ranges::equal(m_Closed.Tears().PlainTriangles(), plain.Triangles()));
}
