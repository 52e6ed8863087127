#include <array>
#include <set>

#include <gtest/gtest.h>

#include "io/HeightFieldExport.h"
#include "io/VrmlExport.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

const std::filesystem::path kGolden = RELIEVO_GOLDEN_FILES;

std::string VrmlText(const CGrid& grid) {
  std::ostringstream out;
  WriteVrml(out, grid);
  return out.str();
}

std::string HeightFieldText(const CGrid& grid, int width, int height) {
  std::ostringstream out;
  WriteHeightField(out, grid, width, height);
  return out.str();
}

/// The numbers of the brackets after `name`, `count` by `count`.
template <typename Number, std::size_t kCount>
std::vector<std::array<Number, kCount>> TuplesAfter(const std::string& text, const std::string& name) {
  const std::size_t from = text.find('[', text.find(name)) + 1;
  std::string numbers = text.substr(from, text.find(']', from) - from);
  std::ranges::replace(numbers, ',', ' ');
  std::istringstream in(numbers);
  std::vector<std::array<Number, kCount>> tuples;
  for (std::array<Number, kCount> tuple{}; in >> tuple[0]; tuples.push_back(tuple)) {
    for (std::size_t k = 1; k < kCount; ++k) in >> tuple[k];
  }
  return tuples;
}
using CPoints = std::vector<std::array<double, 3>>;
using CFaces = std::vector<std::array<int, 4>>;
CPoints PointsOf(const std::string& vrml) { return TuplesAfter<double, 3>(vrml, "Coordinate {"); }
CFaces FacesOf(const std::string& vrml) { return TuplesAfter<int, 4>(vrml, "coordIndex"); }

/// Leaves of several sizes, hanging nodes included, over a ramp.
struct CRefinedRamp : CTestGrid {
  CRefinedRamp() : CTestGrid(4, 2) {
    RandomiseRecord(CStaging::Subdivision(m_Grid), 5);
    m_Grid.SetDiscMap();
    SetSurface(m_Grid, CRamp{});
    m_Console.Take();
  }
};

TEST(Vrml, IsWrittenToTheLetter) {
  CTestGrid test(2, 1);
  CStaging::Subdivision(test.m_Grid).Root().Child(2).subdiv();
  test.m_Grid.SetDiscMap();
  SetSurface(test.m_Grid, CRamp{});
  EXPECT_EQ(VrmlText(test.m_Grid), BytesOf(kGolden / "small.wrl"));
}

TEST(Vrml, ASingleLeafIsOneCentreBeforeTheCorners) {
  CTestGrid test(3, 0);
  SetSurface(test.m_Grid, CRamp{});
  const CPoints points = PointsOf(VrmlText(test.m_Grid));
  ASSERT_EQ(points.size(), 5U);
  EXPECT_EQ(points[0], (std::array<double, 3>{4.5, 23, CRamp{}(4.5, 23)}));
  EXPECT_EQ(points[1], (std::array<double, 3>{kOblong.x0, kOblong.y0, CRamp{}(kOblong.x0, kOblong.y0)}));
  EXPECT_EQ(FacesOf(VrmlText(test.m_Grid)), (CFaces{{0, 1, 2, -1}, {0, 2, 3, -1}, {0, 3, 4, -1}, {0, 4, 1, -1}}));
}

TEST(Vrml, HasTheCentresOfTheLeavesThenTheUnknowns) {
  const CRefinedRamp test;
  const CPoints points = PointsOf(VrmlText(test.m_Grid));
  const auto leaves = static_cast<std::size_t>(test.m_Grid.Surface().Tree().LeafCount());
  const CPointOrder& order = test.m_Grid.Surface().Order();
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  ASSERT_EQ(points.size(), leaves + order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) {
    EXPECT_NEAR(points[leaves + k][0], lattice.XOf(order.ColumnOf(k)), 1e-4);
    EXPECT_NEAR(points[leaves + k][1], lattice.YOf(order.RowOf(k)), 1e-4);
  }
  for (const auto& [x, y, z] : points) EXPECT_NEAR(z, CRamp{}(x, y), 1e-3);
}

TEST(Vrml, EveryLeafIsAClosedFanAroundItsCentre) {
  const CRefinedRamp test;
  const CFaces faces = FacesOf(VrmlText(test.m_Grid));
  const int leaves = test.m_Grid.Surface().Tree().LeafCount();
  std::size_t at = 0;
  for (int leaf = 0; leaf < leaves; ++leaf) {
    const int first = faces.at(at)[1];
    int last = first;
    for (; at < faces.size() && faces[at][0] == leaf; ++at) {
      EXPECT_EQ(faces[at][1], last);
      EXPECT_EQ(faces[at][3], -1);
      last = faces[at][2];
    }
    EXPECT_EQ(last, first) << "leaf " << leaf;
  }
  EXPECT_EQ(at, faces.size());
}

TEST(Vrml, FacesTurnUpwardsAndCoverTheModelOnce) {
  const CRefinedRamp test;
  const CPoints points = PointsOf(VrmlText(test.m_Grid));
  double area = 0.0;
  for (const auto& [a, b, c, end] : FacesOf(VrmlText(test.m_Grid))) {
    const auto& [ax, ay, az] = points.at(static_cast<std::size_t>(a));
    const auto& [bx, by, bz] = points.at(static_cast<std::size_t>(b));
    const auto& [cx, cy, cz] = points.at(static_cast<std::size_t>(c));
    const double twice = (bx - ax) * (cy - ay) - (cx - ax) * (by - ay);
    EXPECT_GT(twice, 0.0);
    area += twice / 2;
  }
  EXPECT_NEAR(area, 16.0 * 6.0, 1e-3);
}

TEST(Vrml, ThePictureLiesOverTheWholeModel) {
  const CRefinedRamp test;
  const std::string vrml = VrmlText(test.m_Grid);
  const CPoints points = PointsOf(vrml);
  const auto texture = TuplesAfter<double, 2>(vrml, "TextureCoordinate {");
  ASSERT_EQ(texture.size(), points.size());
  for (std::size_t k = 0; k < points.size(); ++k) {
    EXPECT_NEAR(texture[k][0], (points[k][0] - kOblong.x0) / 16, 1e-5);
    EXPECT_NEAR(texture[k][1], (points[k][1] - kOblong.y0) / 6, 1e-5);
  }
  EXPECT_EQ((TuplesAfter<int, 4>(vrml, "texCoordIndex")), FacesOf(vrml));
}

TEST(VrmlFile, IsWrittenAndTheViewsAreRedrawn) {
  const CTemporaryDirectory directory;
  CRefinedRamp test;
  CActingHost host(test.m_Grid);
  EXPECT_TRUE(test.m_Grid.SaveVrml(directory.Path() / "m.wrl"));
  EXPECT_EQ(BytesOf(directory.Path() / "m.wrl"), VrmlText(test.m_Grid));
  EXPECT_EQ(test.m_Console.Take(), "Saved succesfully\n");
  EXPECT_EQ(host.m_iRedraws, 1);
}

TEST(HeightField, IsWrittenToTheLetter) {
  CTestGrid test(2, 1);
  SetSurface(test.m_Grid, CRamp{});
  EXPECT_EQ(HeightFieldText(test.m_Grid, 5, 3), BytesOf(kGolden / "small.txt"));
}

TEST(HeightField, OfTwoByTwoSamplesTheCorners) {
  CTestGrid test(2, 1);
  test.m_Grid.Builder().SetHeights(std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(HeightFieldText(test.m_Grid, 2, 2), "1 2 \n4 3 \n");
}

// x0 + (x1 - x0) need not give x1 again.
TEST(HeightField, ReachesTheBorderOfEveryRectangle) {
  CTestGrid test(2, 1);
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(0.0, 10.0);
  for (int k = 0; k < 200; ++k) {
    const double x = any(random);
    const double y = any(random);
    test.m_Grid.Surface().SetExtent({x, x + any(random) + 0.01, y, y + any(random) + 0.01});
    test.m_Grid.Builder().SetHeights(std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9});
    ASSERT_EQ(HeightFieldText(test.m_Grid, 2, 2), "1 2 \n4 3 \n") << x << ", " << y;
  }
}

TEST(HeightField, EqualsTheSurfaceAtEverySample) {
  CTestGrid test(4, 2);
  RandomiseRecord(CStaging::Subdivision(test.m_Grid), 5);
  test.m_Grid.SetDiscMap();
  SetRandomSurface(test.m_Grid, 3);
  std::istringstream in(HeightFieldText(test.m_Grid, 23, 17));
  for (int i = 0; i < 17; ++i) {
    for (int j = 0; j < 23; ++j) {
      double z = 0.0;
      in >> z;
      CStencil stencil;
      double expected = 0.0;
      ASSERT_TRUE(test.m_Grid.Surface().Interpolation().GetBilinearInterpolation(kOblong.x0 + 16.0 * j / 22,
                                                                                 kOblong.y0 + 6.0 * i / 16, stencil));
      for (std::size_t k = 0; k < 8; ++k) {
        if (stencil.m_auNodes[k] != CStencil::kEmptySlot)
          expected += stencil.m_afCoefs[k] * NodalHeights(test.m_Grid)[stencil.m_auNodes[k]];
      }
      EXPECT_NEAR(z, expected, 1e-5);
    }
  }
}

TEST(HeightField, OfOneRowOrColumnHasNoNumbers) {
  CTestGrid test(2, 1);
  EXPECT_EQ(HeightFieldText(test.m_Grid, 1, 3), "nan \nnan \nnan \n");
  EXPECT_EQ(HeightFieldText(test.m_Grid, 2, 1), "nan nan \n");
}

TEST(HeightField, BelowOneIsAnEmptyFile) {
  const CTemporaryDirectory directory;
  CTestGrid test(2, 1);
  for (const auto& [width, height] : {std::pair{3, 0}, {3, -2}, {0, 0}}) {
    EXPECT_TRUE(test.m_Grid.SaveHeightField(directory.Path() / "h.txt", width, height));
    EXPECT_TRUE(std::filesystem::exists(directory.Path() / "h.txt"));
    EXPECT_EQ(BytesOf(directory.Path() / "h.txt"), "");
  }
}

}  // namespace
