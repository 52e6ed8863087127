#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/AllocationCount.h"
#include "support/CStaging.h"
#include "support/LightingBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr int kSide = 8;
constexpr auto kTexels = static_cast<double>(CTexelMap::kBytesPerTexel) * kSide * kSide;
constexpr auto kAlbedo = static_cast<double>(CAlbedoMap::kBytesPerTexel) * kSide * kSide;

std::string TooLittle(const char* pass) {
  return std::string("Error CGrid::") + pass + "()\t\tNot enough memory for 8 by 8 texels\n";
}

struct CLitGrid : CPictureGrid {
  CLitGrid() : CPictureGrid(kSide, kSide) {
    SwitchOn(CStaging::RemovedLights(m_Grid), 0, {0.75, 0.5, 1});
    SwitchOn(CStaging::AddedLights(m_Grid), 1, {1, 1, 0.5}, {0, 1, 0});
    MakeLeaf(m_Grid.Surface().Tree(), 2, 1, 1, CellFlag::kTriangles);
  }
  CRelighting& Relighting() { return m_Grid.Relighting(); }
  void GiveMemory(double bytes) {
    Relighting().SetMemory([bytes] { return bytes; });
  }
  std::vector<std::uint8_t> Image(CTextureImages::Which which) {
    const auto image = Relighting().Textures().Image(which);
    return {image.begin(), image.end()};
  }
};

void ExpectUntouched(CLitGrid& test) {
  EXPECT_FALSE(test.Relighting().Albedo().IsComputed());
  EXPECT_EQ(test.Relighting().Texels().Missing(), kTexels);
  EXPECT_EQ(test.Image(CTextureImages::kKd), test.Image(CTextureImages::kPhotograph));
}

TEST(TexelMemory, PassesThatDoNotGetItSaySoAndChangeNothing) {
  CLitGrid test;
  test.GiveMemory(kTexels - 1);
  test.m_Console.Take();
  EXPECT_FALSE(test.m_Grid.InitializeCoordsTexels());
  EXPECT_EQ(test.m_Console.Take(), TooLittle("InitializeCoordsTexels"));
  EXPECT_FALSE(test.m_Grid.ComputeCoefsTexels());
  EXPECT_EQ(test.m_Console.Take(), TooLittle("ComputeCoefsTexels"));
  EXPECT_FALSE(test.m_Grid.ComputeNormalsOnly());
  EXPECT_EQ(test.m_Console.Take(), TooLittle("ComputeNormalsOnly"));
  EXPECT_FALSE(test.Relighting().LocateTexels());
  EXPECT_FALSE(test.Relighting().ReserveTexels());
  EXPECT_EQ(test.m_Console.Take(), "");
  EXPECT_FALSE(test.m_Grid.GetKd());
  EXPECT_TRUE(test.m_Console.Take().ends_with(TooLittle("GetKd")));
  ExpectUntouched(test);
}

TEST(TexelMemory, PassesAskForWhatTheyUse) {
  CLitGrid test;
  test.GiveMemory(kTexels);
  EXPECT_FALSE(test.m_Grid.GetKd());
  EXPECT_TRUE(test.m_Grid.ComputeNormalsOnly());
  test.GiveMemory(kAlbedo - 1);
  EXPECT_FALSE(test.m_Grid.GetKd());
  test.GiveMemory(kAlbedo);
  EXPECT_TRUE(test.m_Grid.GetKd());
}

TEST(TexelMemory, LaterPassesAskForNothing) {
  CLitGrid test;
  EXPECT_TRUE(test.m_Grid.GetKd());
  test.GiveMemory(0);
  EXPECT_TRUE(test.m_Grid.InitializeCoordsTexels());
  EXPECT_TRUE(test.m_Grid.ComputeCoefsTexels());
  EXPECT_TRUE(test.m_Grid.ComputeNormalsOnly());
  EXPECT_TRUE(test.m_Grid.GetKd());
}

TEST(TexelMemory, WithoutAPictureNoneIsNeeded) {
  CTestGrid test;
  test.m_Grid.Relighting().SetMemory([] { return 0.0; });
  EXPECT_TRUE(test.m_Grid.GetKd());
  EXPECT_TRUE(test.m_Grid.Relighting().ReserveTexels());
}

TEST(TexelMemory, WhicheverAllocationFailsEverythingStaysAndTheNextPassSucceeds) {
  CLitGrid plain;
  ASSERT_TRUE(plain.m_Grid.GetKd());
  int refused = 0;
  for (long failing = 0;; ++failing) {
    CLitGrid test;
    FailAllocation(failing);
    const bool done = test.m_Grid.GetKd();
    const bool failed = HasAllocationFailed();
    FailAllocation(-1);
    if (!failed) break;
    if (!done) {
      ++refused;
      EXPECT_FALSE(test.Relighting().Albedo().IsComputed());
      EXPECT_EQ(test.Image(CTextureImages::kKd), test.Image(CTextureImages::kPhotograph));
    }
    ASSERT_TRUE(test.m_Grid.GetKd());
    EXPECT_EQ(test.Image(CTextureImages::kIllumination), plain.Image(CTextureImages::kIllumination));
  }
  EXPECT_GE(refused, 4) << "albedo, records, normals and mask";
}

TEST(TexelMemory, AMaskWithoutMemoryIsToldAndMadeByTheNextPass) {
  CLitGrid test;
  test.m_Console.Take();
  FailAllocation(0);
  test.Relighting().RefreshMask();
  FailAllocation(-1);
  EXPECT_EQ(test.m_Console.Take(), "Error CGrid::TestTexelsInDiscontinuity()\tNot enough memory for 8 by 8 texels\n");
  EXPECT_TRUE(test.Relighting().Texels().Mask().empty());
  test.m_Grid.ComputeCoefsTexels();
  EXPECT_EQ(std::ranges::count(test.Relighting().Texels().Mask(), 1), 4);
}

}  // namespace
