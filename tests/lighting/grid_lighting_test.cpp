#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CPendingWork.h"
#include "support/AllocationCount.h"
#include "support/CStaging.h"
#include "support/LightingBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

const std::string kMaskDone = "CGrid::TestTexelsInDiscontinuity()\t\t\t...done\n";
const std::string kCoefs =
    "CGrid::ComputeCoefsTexels()\t\t\tComputeCoefsTexels...\n"
    "CGrid::ComputeCoefsTexels()\t\t\t...ComputeCoefsTexels\t\tdone\n";
const std::string kNormals =
    "CGrid::ComputeCoefsTexels()\t\t\tComputeNormalsOnly...\n"
    "CGrid::ComputeCoefsTexels()\t\t\t...ComputeNormalsOnly\t\tdone\n";
const std::string kKdStart = "CGrid::GetKd\t\t\t\tGetKd...\n";
const std::string kKdSizes =
    "CGrid::GetKd\t\twidth : 300; height : 200\n"
    "CGrid::GetKd\t\tnew_width : 512; new_height : 256\n";
const std::string kKdDone = "CGrid::GetKd\t\t\t\t...GetKd\tdone\n";

template <typename Action>
std::string LinesOf(CTestGrid& test, Action&& action) {
  test.m_Console.Take();
  action(test.m_Grid);
  return test.m_Console.Take();
}

TEST(GridLighting, WithoutAPictureEveryPassLogsItsOwnLine) {
  CTestGrid test;
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.InitializeCoordsTexels(); }),
            "Error CGrid::InitializeCoordsTexels()\tNo texture loaded\n");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.ComputeCoefsTexels(); }),
            "Error CGrid::ComputeCoefsTexels()\tNo texture loaded\n");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.ComputeNormalsOnly(); }),
            "Error CGrid::ComputeNormalsOnly()\tNo texture loaded\n");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.GetKd(); }), kKdStart + "Error CGrid::GetKd\t\tNo texture loaded\n");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.TestTexelsInDiscontinuity(); }), "");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.Relighting().LocateTexels(); }), "");
}

TEST(GridLighting, ImagesWithoutTexelsOfTheirSizeCountAsNoPicture) {
  CPictureGrid test(4, 4);
  CStaging::Textures(test.m_Grid).SetPicture(PlainPicture(5, 4));
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.GetKd(); }), kKdStart + "Error CGrid::GetKd\t\tNo texture loaded\n");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.ComputeNormalsOnly(); }),
            "Error CGrid::ComputeNormalsOnly()\tNo texture loaded\n");
}

TEST(GridLighting, PassesLogTheirBeginningAndEnd) {
  CPictureGrid test(4, 4);
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.InitializeCoordsTexels(); }), "");
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.TestTexelsInDiscontinuity(); }), kMaskDone);
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.ComputeCoefsTexels(); }), kCoefs);
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.ComputeNormalsOnly(); }), kNormals);
}

TEST(GridLighting, GetKdStopsWithoutALightToRemove) {
  CPictureGrid test(300, 200);
  SwitchOn(CStaging::AddedLights(test.m_Grid), 0, {1, 1, 1});
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.GetKd(); }), kKdStart + "CGrid::GetKd\t\tNo lights to be removed\n");
  EXPECT_FALSE(test.m_Grid.Relighting().Albedo().IsComputed());
}

TEST(GridLighting, GetKdGoesOnWithoutALightToAdd) {
  CPictureGrid test(300, 200);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 0, {1, 1, 1});
  EXPECT_EQ(
      LinesOf(test, [](CGrid& g) { g.GetKd(); }),
      kKdStart + "CGrid::GetKd\t\tNo light to be added ; the system will only show the Kd map\n" + kKdSizes + kKdDone);
  EXPECT_TRUE(test.m_Grid.Relighting().Albedo().IsComputed());
}

TEST(GridLighting, GetKdLogsTheSizes) {
  CPictureGrid test(300, 200);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 4, {1, 1, 1});
  SwitchOn(CStaging::AddedLights(test.m_Grid), 4, {1, 1, 1});
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.GetKd(); }), kKdStart + kKdSizes + kKdDone);
}

TEST(GridLighting, LightsAreFoundByIndexAndType) {
  CTestGrid test;
  for (int k = 0; k < 5; ++k) {
    const auto index = static_cast<std::size_t>(k);
    EXPECT_EQ(test.m_Grid.GetLightSource(k, 1), &test.m_Grid.Relighting().RemovedLights().m_aLights[index]);
    EXPECT_EQ(test.m_Grid.GetLightSource(k, 2), &test.m_Grid.Relighting().AddedLights().m_aLights[index]);
  }
  EXPECT_EQ(test.m_Grid.GetLightSource(5, 1), nullptr);
  EXPECT_EQ(test.m_Grid.GetLightSource(-1, 2), nullptr);
  EXPECT_EQ(test.m_Console.Take(), "");
}

TEST(GridLighting, LightsOfAnUnknownTypeAreRefused) {
  CTestGrid test;
  for (const int type : {0, 3, -1}) {
    EXPECT_EQ(LinesOf(test, [type](CGrid& g) { EXPECT_EQ(g.GetLightSource(0, type), nullptr); }),
              "Error CGrid::GetLightSource\t\t\t\tUnknown type\n");
  }
}

TEST(GridLighting, LightsStartInTheirSetsAndOutliveANewGrid) {
  CTestGrid test;
  EXPECT_EQ(test.m_Grid.Relighting().RemovedLights(), CLightSet::Removed());
  EXPECT_EQ(test.m_Grid.Relighting().AddedLights(), CLightSet::Added());
  SwitchOn(CStaging::AddedLights(test.m_Grid), 2, {0.5, 0.25, 1}, {1, 1, 1});
  const CLightSet added = test.m_Grid.Relighting().AddedLights();
  test.Initialize(1);
  EXPECT_EQ(test.m_Grid.Relighting().AddedLights(), added);
}

TEST(GridPicture, ANewOneReplacesAllThatHungOnTheOld) {
  CPictureGrid test(8, 8);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 4, {1, 1, 1});
  test.m_Grid.ComputeCoefsTexels();
  test.m_Grid.GetKd();
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { EXPECT_TRUE(g.Relighting().SetPicture(PlainPicture(5, 3))); }), "");
  EXPECT_EQ(test.m_Grid.Relighting().Textures().PictureWidth(), 5);
  EXPECT_TRUE(test.m_Grid.Relighting().Texels().Mask().empty());
  EXPECT_FALSE(test.m_Grid.Relighting().Albedo().IsComputed());
  test.m_Grid.GetKd();
  for (const Vector3& normal : test.m_Grid.Relighting().Texels().Normals()) EXPECT_EQ(normal, (Vector3{0, 0, 1}));
  EXPECT_EQ(test.m_Grid.Relighting().Albedo().Kd().size(), 45U);
}

TEST(GridPicture, OneThatMemoryDoesNotHoldIsRefusedAndNothingIsLost) {
  CPictureGrid test(8, 8);
  test.m_Grid.ComputeCoefsTexels();
  const std::vector<Vector3> normals(test.m_Grid.Relighting().Texels().Normals().begin(),
                                     test.m_Grid.Relighting().Texels().Normals().end());
  const unsigned revision = test.m_Grid.Relighting().Textures().Revision(CTextureImages::kPhotograph);
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { EXPECT_FALSE(g.Relighting().SetPicture(PlainPicture(300, 200), 1e6)); }),
            "Error CGrid::SetPicture\t\tNot enough memory for a picture of 300 by 200 texels\n");
  EXPECT_EQ(test.m_Grid.Relighting().Textures().PictureWidth(), 8);
  EXPECT_EQ(test.m_Grid.Relighting().Textures().Revision(CTextureImages::kPhotograph), revision);
  EXPECT_TRUE(std::ranges::equal(test.m_Grid.Relighting().Texels().Normals(), normals));
}

TEST(GridPicture, ItNeedsMemoryForPaddedTexturesOnly) {
  CTestGrid test;
  const double textures = 3 * 3 * 512 * 256;
  EXPECT_FALSE(test.m_Grid.Relighting().SetPicture(PlainPicture(300, 200), textures - 1));
  EXPECT_TRUE(test.m_Grid.Relighting().SetPicture(PlainPicture(300, 200), textures));
}

TEST(GridPicture, AnEmptyOrBrokenOneIsRefusedSilently) {
  CPictureGrid test(8, 8);
  CPicture broken = PlainPicture(4, 4);
  broken.m_aPixels.pop_back();
  for (const CPicture& picture : {CPicture{}, CPicture{0, 5, {}}, CPicture{-1, -1, {0, 0, 0}}, broken})
    EXPECT_EQ(LinesOf(test, [&](CGrid& g) { EXPECT_FALSE(g.Relighting().SetPicture(picture)); }), "");
  EXPECT_EQ(test.m_Grid.Relighting().Textures().PictureWidth(), 8);
}

TEST(GridPicture, IsTexturedAtTheNextPowersOfTwo) {
  CPictureGrid test(300, 200);
  EXPECT_EQ(test.m_Grid.Relighting().Textures().TextureWidth(), 512);
  EXPECT_EQ(test.m_Grid.Relighting().Textures().TextureHeight(), 256);
}

// Marks a cell the way a curve does, without a rebuild of the maps.
void MarkCell(CGrid& grid, int level, int i, int j) {
  MakeLeaf(grid.Surface().Tree(), level, i, j, CellFlag::kTriangles);
}

TEST(GridTexels, TheMaskFollowsARebuildOfTheMaps) {
  CPictureGrid test(16, 16);
  MarkCell(test.m_Grid, 2, 1, 1);
  test.m_Grid.TestTexelsInDiscontinuity();
  EXPECT_NE(std::ranges::count(test.m_Grid.Relighting().Texels().Mask(), 1), 0);
  test.m_Grid.SetDiscMap();
  EXPECT_NE(test.m_Console.Take().find(kMaskDone), std::string::npos);
  EXPECT_EQ(std::ranges::count(test.m_Grid.Relighting().Texels().Mask(), 1), 0);
}

TEST(GridTexels, ARebuildWithoutAPictureTestsNone) {
  CTestGrid test;
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.SetDiscMap(); }).find(kMaskDone), std::string::npos);
}

TEST(GridTexels, TheMaskFollowsANewGrid) {
  CPictureGrid test(16, 16);
  MarkCell(test.m_Grid, 2, 1, 1);
  test.m_Grid.TestTexelsInDiscontinuity();
  test.Initialize(2);
  EXPECT_EQ(std::ranges::count(test.m_Grid.Relighting().Texels().Mask(), 1), 0);
}

void ExpectNormalsOfTheSurface(const CGrid& grid) {
  const CTexelMap& texels = grid.Relighting().Texels();
  const int cells = grid.Surface().Lattice().PointsPerSide() - 1;
  ASSERT_FALSE(texels.Normals().empty());
  for (std::size_t i = 0; i < texels.Normals().size(); ++i) {
    const double gx = (texels.Records()[i].Column() + 0.5) / texels.Width() * cells;
    const double gy = (texels.Records()[i].Row() + 0.5) / texels.Height() * cells;
    EXPECT_EQ(texels.Normals()[i],
              grid.Surface().Interpolation().NormalOf(*grid.Surface().Interpolation().ShortStencil(gx, gy)));
  }
}

TEST(GridTexels, AfterANewGridOfAnotherLevelNormalsAreOfItsTree) {
  CPictureGrid test(16, 16);
  test.m_Grid.ComputeCoefsTexels();
  const CGlobalScope level(g_iMaxLevel, 2);
  test.Initialize(1);
  SetRandomSurface(test.m_Grid, 8);
  test.m_Grid.ComputeNormalsOnly();
  ExpectNormalsOfTheSurface(test.m_Grid);
}

TEST(GridTexels, AfterARebuildOfTheMapsKdIsOfTheNewTree) {
  CPictureGrid test(16, 16);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 4, {1, 1, 1});
  CStaging::Subdivision(test.m_Grid).Root().Child(0).Child(0).subdiv();
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(LinesOf(test, [](CGrid& g) { g.GetKd(); }).find("ComputeCoefsTexels"), std::string::npos);
  ExpectNormalsOfTheSurface(test.m_Grid);
}

TEST(GridTexels, OnASurfaceThatMovesNormalsChangeOnlyWhenAsked) {
  CPictureGrid test(16, 16);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 4, {1, 1, 1});
  test.m_Grid.ComputeCoefsTexels();
  const std::vector<Vector3> before(test.m_Grid.Relighting().Texels().Normals().begin(),
                                    test.m_Grid.Relighting().Texels().Normals().end());
  SetRandomSurface(test.m_Grid, 9);
  test.m_Grid.GetKd();
  EXPECT_TRUE(std::ranges::equal(test.m_Grid.Relighting().Texels().Normals(), before));
  test.m_Grid.ComputeNormalsOnly();
  ExpectNormalsOfTheSurface(test.m_Grid);
}

TEST(GridTexels, CanBeLocatedForDrawing) {
  CPictureGrid test(5, 4);
  test.m_Grid.Relighting().LocateTexels();
  ASSERT_EQ(test.m_Grid.Relighting().Texels().Records().size(), 20U);
  EXPECT_TRUE(test.m_Grid.Relighting().Texels().Records()[7].IsLocated());
}

TEST(GridKd, AllocatesNothingPerTexel) {
  CPictureGrid test(64, 64);
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 0, {1, 1, 1});
  SwitchOn(CStaging::AddedLights(test.m_Grid), 0, {1, 1, 1});
  const ConsoleCapture lines;
  const std::size_t before = AllocationCount();
  test.m_Grid.GetKd();
  // The captured lines allocate; the texels are 4096.
  EXPECT_LT(AllocationCount() - before, 20U);
}

}  // namespace
