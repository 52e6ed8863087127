#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CTexelArrays.h"
#include "support/AllocationCount.h"
#include "support/GridBuilders.h"

namespace {

constexpr int kWidth = 20;
constexpr int kHeight = 10;
constexpr double kLength = 0.5;

class TexelArraysTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  void LoadPicture() {
    CPicture picture{kWidth, kHeight, {}};
    picture.m_aPixels.resize(3UL * kWidth * kHeight);
    ASSERT_TRUE(Grid().Relighting().SetPicture(picture));
  }
  // The texels that the rectangles cover, each of which must be covered once.
  std::set<std::pair<int, int>> Covered() {
    m_Arrays.RefreshMasked(Grid());
    std::set<std::pair<int, int>> texels;
    const std::span<const float> v = m_Arrays.Masked();
    for (std::size_t k = 0; k < v.size(); k += 8) {
      for (auto column = static_cast<int>(v[k]); column < static_cast<int>(v[k + 2]); ++column)
        EXPECT_TRUE(texels.emplace(column, static_cast<int>(v[k + 1])).second);
      EXPECT_EQ(v[k + 5], v[k + 1] + 1);
    }
    return texels;
  }
  std::set<std::pair<int, int>> Masked() {
    std::set<std::pair<int, int>> texels;
    for (int k = 0; k < kWidth * kHeight; ++k) {
      if (Grid().Relighting().Texels().Mask()[static_cast<std::size_t>(k)] != 0) texels.emplace(k % kWidth, k / kWidth);
    }
    return texels;
  }
  void Mark(int i, int j) {
    MakeLeaf(Grid().Surface().Tree(), 2, i, j, CellFlag::kTriangles);
    Grid().TestTexelsInDiscontinuity();
  }

  void RefreshNormals(double length) {
    Grid().Surface().Tree().ListLeaves();
    Grid().Relighting().LocateTexels();
    m_Arrays.RefreshNormals(Grid(), length);
  }

  CTestGrid m_Grid{4, 2};
  CTexelArrays m_Arrays;
};

}  // namespace

TEST_F(TexelArraysTest, WithoutAPictureThereIsNothing) {
  m_Arrays.RefreshMasked(Grid());
  RefreshNormals(kLength);
  EXPECT_TRUE(m_Arrays.Masked().empty());
  EXPECT_TRUE(m_Arrays.Normals().empty());
}

TEST_F(TexelArraysTest, RectanglesCoverTheMaskedTexels) {
  LoadPicture();
  EXPECT_TRUE(Covered().empty());
  Mark(0, 0);
  Mark(3, 2);
  EXPECT_EQ(Covered(), Masked());
  EXPECT_FALSE(Masked().empty());
  EXPECT_EQ(m_Arrays.Masked().size() / 8, Masked().size() / 5) << "five texels side by side make one";
}

TEST_F(TexelArraysTest, MaskIsFollowed) {
  LoadPicture();
  Mark(1, 1);
  const auto before = Covered();
  Mark(2, 1);
  EXPECT_NE(Covered(), before);
  EXPECT_EQ(Covered(), Masked());
  Grid().SetDiscMap();
  EXPECT_TRUE(Covered().empty());
}

TEST_F(TexelArraysTest, NormalsBeginOnTheSurface) {
  SetRandomSurface(Grid(), 1);
  LoadPicture();
  Grid().ComputeNormalsOnly();
  RefreshNormals(kLength);
  const std::span<const float> v = m_Arrays.Normals();
  ASSERT_EQ(v.size(), 6UL * kWidth * kHeight);
  for (std::size_t k = 0; k < v.size(); k += 6) {
    const double z =
        Grid().GetHeightAt(Grid().Surface().Lattice().ColumnOf(v[k]), Grid().Surface().Lattice().RowOf(v[k + 1]));
    EXPECT_NEAR(v[k + 2], z, 1e-5);
    EXPECT_NEAR(std::hypot(v[k + 3] - v[k], v[k + 4] - v[k + 1], v[k + 5] - v[k + 2]), kLength, 1e-5);
  }
}

TEST_F(TexelArraysTest, FirstNormalsPointUp) {
  LoadPicture();
  RefreshNormals(kLength);
  const std::span<const float> v = m_Arrays.Normals();
  ASSERT_EQ(v.size(), 6UL * kWidth * kHeight);
  EXPECT_NEAR(v[0], kOblong.x0 + (kOblong.x1 - kOblong.x0) * 0.5 / kWidth, 1e-5);
  EXPECT_NEAR(v[1], kOblong.y0 + (kOblong.y1 - kOblong.y0) * 0.5 / kHeight, 1e-5);
  EXPECT_NEAR(v[5], v[2] + kLength, 1e-5);
}

TEST_F(TexelArraysTest, NormalsThatAreNoneAreLeftOut) {
  LoadPicture();
  Mark(1, 1);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Grid().BuildHNumerotation();
  Grid().Surface().Reconstruct();
  Grid().ComputeNormalsOnly();
  RefreshNormals(kLength);
  for (const float c : m_Arrays.Normals()) EXPECT_TRUE(std::isfinite(c));
  EXPECT_LT(m_Arrays.Normals().size(), 6UL * kWidth * kHeight);
}

TEST_F(TexelArraysTest, SurfaceNormalsAndLengthAreFollowed) {
  LoadPicture();
  RefreshNormals(kLength);
  SetSurface(Grid(), CRamp{1, 0, 7});
  RefreshNormals(kLength);
  EXPECT_GT(m_Arrays.Normals()[2], 2);
  const float upright = m_Arrays.Normals()[3];
  Grid().ComputeNormalsOnly();
  RefreshNormals(kLength);
  EXPECT_LT(m_Arrays.Normals()[3], upright);
  RefreshNormals(2 * kLength);
  EXPECT_NEAR(m_Arrays.Normals()[3] - m_Arrays.Normals()[0], -2 * kLength / std::sqrt(2.0), 1e-4);
}

TEST_F(TexelArraysTest, RedrawsAllocateNothing) {
  LoadPicture();
  Mark(1, 1);
  m_Arrays.RefreshMasked(Grid());
  RefreshNormals(kLength);
  const std::size_t before = AllocationCount();
  m_Arrays.RefreshMasked(Grid());
  RefreshNormals(kLength);
  EXPECT_EQ(AllocationCount(), before);
}
