// The surface at the places of a regular grid.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "exports/CleanFileMesh.h"
#include "exports/SurfaceSamples.h"
#include "support/CleanMeshBuilders.h"

namespace {

using CNormalBytes = std::array<std::uint8_t, 3>;

// Random subdivision, heights and tears, crossing ones too.
struct CTornSamples : CTornGrid {
  explicit CTornSamples(std::uint32_t seed) : CTornGrid(RandomTears(seed, 16), 4, 3, seed) {
    SetRandomHeights(Lattice(), seed);
  }
};

CSampleGrid RandomGrid(std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto side = [&random] { return 2 + static_cast<int>(random() % 100); };
  const int width = side();
  return {width, side()};
}

// Heights that rise by `across` and `up` in a model unit.
struct CInclined : CTornGrid {
  CInclined(double across, double up) : CTornGrid({}) {
    Raise([&](int column, int row) { return across * Lattice().XOf(column) + up * Lattice().YOf(row); });
  }
  CNormalBytes NormalAt(const CCleanMeshOptions& options, bool down = false) {
    const CSurfaceSamples samples = SampleNormals(CleanFileMesh(m_Grid, options), {5, 3}, down);
    for (const CNormalBytes& normal : samples.m_aNormals) EXPECT_EQ(normal, samples.m_aNormals.front());
    return samples.m_aNormals.front();
  }
};

}  // namespace

RC_GTEST_PROP(SurfaceSamplesTest, HaveHeightsOfTheMeshEverywhere, (std::uint32_t seed)) {
  CTornSamples grid(seed);
  const CFileMesh mesh = CleanFileMesh(grid.m_Grid, {});
  float low = mesh.m_aPositions.front()[2];
  float high = low;
  for (const auto& p : mesh.m_aPositions) {
    low = std::min(low, p[2]);
    high = std::max(high, p[2]);
  }
  const CSampleGrid size = RandomGrid(seed);
  const CSurfaceSamples samples = SampleNormals(mesh, size, false);
  RC_ASSERT(samples.m_afHeights.size() == static_cast<std::size_t>(size.m_iWidth * size.m_iHeight));
  for (const float z : samples.m_afHeights) RC_ASSERT(z >= low && z <= high);
  // The surface looks up.
  for (const CNormalBytes& normal : samples.m_aNormals) RC_ASSERT(normal[2] > 127);
  RC_ASSERT(SampleHeights(mesh, size).m_afHeights == samples.m_afHeights);
}

// Where no tear is near, with the height that the surface has there.
RC_GTEST_PROP(SurfaceSamplesTest, AreTheSurfaceAwayFromTears, (std::uint32_t seed)) {
  CTornSamples grid(seed);
  const CFileMesh mesh = CleanFileMesh(grid.m_Grid, {});
  const CSampleGrid size = RandomGrid(seed);
  const CSurfaceSamples samples = SampleHeights(mesh, size);
  const int cells = grid.Lattice().PointsPerSide() - 1;
  for (int row = 0; row < size.m_iHeight; ++row) {
    for (int column = 0; column < size.m_iWidth; ++column) {
      const double gx = static_cast<double>(column) / (size.m_iWidth - 1) * cells;
      const double gy = static_cast<double>(row) / (size.m_iHeight - 1) * cells;
      if (grid.IsNearTear(gx, gy)) continue;
      const float height = samples.m_afHeights[static_cast<std::size_t>(row * size.m_iWidth + column)];
      RC_ASSERT(std::abs(height - grid.m_Grid.GetHeightAt(gx, gy)) < 1e-5);
    }
  }
}

TEST(SurfaceSamplesTest, LieOnTheBorderToo) {
  CTornGrid grid({});
  grid.Raise([](int column, int row) { return column + 100.0 * row; });
  const CSurfaceSamples samples = SampleHeights(CleanFileMesh(grid.m_Grid, {}), {3, 2});
  EXPECT_EQ(samples.m_afHeights, (std::vector<float>{0, 8, 16, 1600, 1608, 1616}));
}

// Across the picture, between two rows of samples or on one, which takes the higher side.
TEST(SurfaceSamplesTest, BelongToOneSideOfATear) {
  CTornGrid grid({{{{-1, 8.5}, {17, 8.5}}}});
  grid.Raise([](int /*column*/, int row) { return row > 8 ? 5.0 : 1.0; });
  const CFileMesh mesh = CleanFileMesh(grid.m_Grid, {});
  for (const int rows : {16, 33, 170}) {
    const CSurfaceSamples samples = SampleHeights(mesh, {7, rows});
    for (int row = 0; row < rows; ++row) {
      const float height = samples.m_afHeights[static_cast<std::size_t>(7 * row + 3)];
      EXPECT_EQ(height, 16.0 * row >= 8.5 * (rows - 1) ? 5 : 1) << row << " of " << rows;
    }
  }
}

TEST(NormalSamplesTest, OfAFlatSurfaceLookUp) {
  EXPECT_EQ(CInclined(0, 0).NormalAt({}), (CNormalBytes{128, 128, 255}));
}

TEST(NormalSamplesTest, AreRedToTheRightAndGreenUpThePicture) {
  // 127.5 / sqrt(2) to either side of 127.5.
  EXPECT_EQ(CInclined(-1, 0).NormalAt({}), (CNormalBytes{218, 128, 218})) << "falls to the right";
  EXPECT_EQ(CInclined(1, 0).NormalAt({}), (CNormalBytes{37, 128, 218}));
  EXPECT_EQ(CInclined(0, -1).NormalAt({}), (CNormalBytes{128, 218, 218})) << "falls towards the upper side";
  EXPECT_EQ(CInclined(0, -1).NormalAt({}, true), (CNormalBytes{128, 37, 218}));
  EXPECT_EQ(CInclined(-1, 0).NormalAt({}, true), (CNormalBytes{218, 128, 218}));
}

TEST(NormalSamplesTest, FollowTheScaleOfTheHeightsAlone) {
  EXPECT_EQ(CInclined(-0.5, 0).NormalAt({TearGap::Open, 7, 14}), (CNormalBytes{218, 128, 218}));
  EXPECT_EQ(CInclined(-0.5, 0).NormalAt({TearGap::Open, 7, 7}), CInclined(-0.5, 0).NormalAt({}));
}

TEST(NormalsAtPixelsTest, AreThoseOfTheSideOfEachCentre) {
  // A flat upper part, and a lower one that falls to the right.
  CTornGrid grid({{{{-1, 8.5}, {17, 8.5}}}});
  grid.Raise([&](int column, int row) { return row > 8 ? 9.0 : -grid.Lattice().XOf(column); });
  // Of five by four pixels, whose two lower rows lie below the tear.
  const std::vector<std::size_t> pixels{0, 2, 11, 12, 19};
  const std::vector<Vector3> normals = NormalsAtPixels(CleanFileMesh(grid.m_Grid, {}), 5, 4, pixels);
  for (const std::size_t k : {0U, 1U}) {
    EXPECT_NEAR(normals[k].x, std::sqrt(0.5), 1e-4);
    EXPECT_NEAR(normals[k].z, std::sqrt(0.5), 1e-4);
  }
  for (const std::size_t k : {2U, 3U, 4U}) EXPECT_NEAR(normals[k].z, 1, 1e-6);
}
