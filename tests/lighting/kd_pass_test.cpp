// Albedo and new illumination in pieces and, of large pictures, on a smaller copy.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/AreaFilter.h"
#include "base/SameBits.h"
#include "support/CStaging.h"
#include "support/FileBuilders.h"
#include "support/LightingBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

using KdProgress = CRelighting::KdProgress;

// High enough for several pieces.
constexpr int kTexelsWide = 1000;
constexpr int kTexelsHigh = 40;

struct CKdGrid : CPictureGrid {
  explicit CKdGrid(int width = kTexelsWide, int height = kTexelsHigh) : CPictureGrid(width, height) {
    LightUp({1, 2, 3});
  }
  void LightUp(const Vector3& added) {
    CStaging::RemovedLights(m_Grid) = AmbientLight(0.2, 0.3, 0.4);
    SwitchOn(CStaging::RemovedLights(m_Grid), 2, {0.6, 0.9, 0.4}, {-3, 1, 0.5});
    CStaging::AddedLights(m_Grid) = AmbientLight(0.1, 0.2, 0.1);
    SwitchOn(CStaging::AddedLights(m_Grid), 1, {0.9, 0.8, 1.0}, added);
  }
  void Tear() {
    AddCurveThrough(m_Grid, CurveType::kPosition, {{-1.5, 21}, {4.25, 23}, {9, 23.5}});
    m_Grid.PerformPendingWork();
    SetRandomSurface(m_Grid, 5);
  }
  CRelighting& Light() { return m_Grid.Relighting(); }
  // One piece of so many looks at the clock.
  KdProgress Go(int looks) {
    return Light().ContinueKd([&looks] { return looks-- > 0; });
  }
  KdProgress Finish() { return Go(1000000); }
  const CTextureImages& Images() { return m_Grid.Relighting().Textures(); }
};

std::vector<std::uint8_t> BytesOf(CKdGrid& pieces, CTextureImages::Which which) {
  const auto image = std::as_const(pieces.m_Grid).Relighting().Textures().Image(which);
  return {image.begin(), image.end()};
}

void ExpectSame(CKdGrid& a, CKdGrid& b) {
  for (const auto which : {CTextureImages::kPhotograph, CTextureImages::kKd, CTextureImages::kIllumination})
    EXPECT_TRUE(BytesOf(a, which) == BytesOf(b, which)) << which;
  EXPECT_TRUE(std::ranges::equal(a.Light().Albedo().Kd(), b.Light().Albedo().Kd()));
  EXPECT_TRUE(std::ranges::equal(a.Light().Texels().Normals(), b.Light().Texels().Normals(),
                                 [](const Vector3& n, const Vector3& m) {
                                   return SameBits(std::array{n.x, n.y, n.z}, std::array{m.x, m.y, m.z});
                                 }));
}

// Whether the texels have to be found first, and the tears to be left out.
class KdPassTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) return;
    m_Pieces.Tear();
    m_Whole.Tear();
  }
  void ExpectAsWhole() {
    m_Whole.m_Grid.GetKd();
    ExpectSame(m_Pieces, m_Whole);
  }

  CKdGrid m_Pieces;
  CKdGrid m_Whole;
};

INSTANTIATE_TEST_SUITE_P(Subdivisions, KdPassTest, testing::Bool());

}  // namespace

TEST_P(KdPassTest, PiecesAreAsGoodAsOnePassAndLogItsLinesOnce) {
  // The console of both.
  m_Whole.m_Console.Take();
  int pieces = 1;
  while (m_Pieces.Go(1) == KdProgress::Going) {
    ++pieces;
    EXPECT_EQ(m_Whole.m_Console.Take(), "");
    EXPECT_FALSE(m_Pieces.Light().Albedo().IsComputed() && m_Pieces.Images().Revision(CTextureImages::kKd) > 1);
  }
  EXPECT_GT(pieces, 10);
  const std::string lines = m_Whole.m_Console.Take();
  ExpectAsWhole();
  EXPECT_EQ(lines, m_Whole.m_Console.Take());
  EXPECT_EQ(m_Pieces.Images().Revision(CTextureImages::kKd), m_Whole.Images().Revision(CTextureImages::kKd));
}

TEST_P(KdPassTest, OtherLightsBeginThemAfresh) {
  for (const int looks : {1, 5, 22, 10, 19}) {
    EXPECT_EQ(m_Pieces.Go(looks), KdProgress::Going) << looks;
    m_Pieces.LightUp({looks + 1.0, -1, 2});
    m_Whole.LightUp({looks + 1.0, -1, 2});
  }
  m_Pieces.Light().SetTone(Tone::Soft);
  m_Whole.Light().SetTone(Tone::Soft);
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectAsWhole();
}

TEST_P(KdPassTest, AnotherSubdivisionBeginsThemAfresh) {
  for (const int looks : {3, 30}) {
    EXPECT_EQ(m_Pieces.Go(looks), KdProgress::Going);
    for (CKdGrid* test : {&m_Pieces, &m_Whole}) {
      AddCurveThrough(test->m_Grid, CurveType::kPosition, {{3, 0.5 * looks}, {8, 2}, {12, 11}});
      test->m_Grid.PerformPendingWork();
      SetRandomSurface(test->m_Grid, 7);
    }
  }
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectAsWhole();
}

// The texels' normals are of the moment at which a whole pass would have taken them.
TEST_P(KdPassTest, SurfaceThatMovesLeavesNoSeam) {
  EXPECT_EQ(m_Pieces.Go(3), KdProgress::Going);
  m_Whole.m_Grid.GetKd();
  SetRandomSurface(m_Pieces.m_Grid, 8);
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectSame(m_Pieces, m_Whole);
}

TEST_P(KdPassTest, AnyOtherPassComesBetweenThem) {
  EXPECT_EQ(m_Pieces.Go(7), KdProgress::Going);
  m_Pieces.m_Grid.GetKd();
  ExpectAsWhole();
  EXPECT_EQ(m_Pieces.Go(15), KdProgress::Going);
  for (CKdGrid* test : {&m_Pieces, &m_Whole}) {
    test->m_Grid.InitializeCoordsTexels();
    test->m_Grid.ComputeNormalsOnly();
  }
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectAsWhole();
}

TEST_P(KdPassTest, AnotherPictureEndsThem) {
  EXPECT_EQ(m_Pieces.Go(30), KdProgress::Going);
  for (CKdGrid* test : {&m_Pieces, &m_Whole}) test->Light().SetPicture(RandomPicture(50, 300));
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectAsWhole();
}

TEST_P(KdPassTest, WithoutALightToRemoveWhatIsBegunIsFinishedAndThenNothingHappens) {
  EXPECT_EQ(m_Pieces.Go(3), KdProgress::Going);
  CStaging::RemovedLights(m_Pieces.m_Grid) = CLightSet();
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::Done);
  ExpectAsWhole();
  m_Pieces.m_Console.Take();
  EXPECT_EQ(m_Pieces.Finish(), KdProgress::None);
  EXPECT_FALSE(m_Pieces.Light().PreviewKd());
  EXPECT_EQ(m_Pieces.m_Console.Take(), "");
}

TEST(KdPass, WithoutMemoryItSaysSoAndChangesNothing) {
  CKdGrid test;
  test.m_Console.Take();
  test.Light().SetMemory([] { return 1.0; });
  EXPECT_EQ(test.Finish(), KdProgress::NoMemory);
  EXPECT_EQ(test.m_Console.Take(), "Error CGrid::GetKd()\t\tNot enough memory for 1000 by 40 texels\n");
  EXPECT_EQ(BytesOf(test, CTextureImages::kKd), BytesOf(test, CTextureImages::kPhotograph));
}

TEST(KdPass, WithoutAPictureNothingHappens) {
  CTestGrid test;
  SwitchOn(CStaging::RemovedLights(test.m_Grid), 0, {1, 1, 1});
  test.m_Console.Take();
  EXPECT_EQ(test.m_Grid.Relighting().ContinueKd([] { return true; }), KdProgress::None);
  EXPECT_FALSE(test.m_Grid.Relighting().PreviewKd());
  EXPECT_EQ(test.m_Console.Take(), "");
}

TEST(KdPreview, SmallPicturesHaveNone) {
  CKdGrid test(512, 512);
  EXPECT_FALSE(test.Light().PreviewKd());
  EXPECT_EQ(test.Images().PreviewOf(CTextureImages::kKd), nullptr);
}

TEST(KdPreview, IsAboutTheAreaFilteredResultAndGoesWithIt) {
  for (const auto& [width, height] : {std::pair{2000, 1001}, {1000, 1000}, {600, 500}, {3, 700000}, {2100000, 1}}) {
    CKdGrid test(width, height);
    // Light that falls alike everywhere makes of a mean the mean of what it makes.
    CStaging::RemovedLights(test.m_Grid) = AmbientLight(1, 1, 1);
    CStaging::AddedLights(test.m_Grid) = AmbientLight(0.5, 0.25, 0.75);
    const unsigned revision = test.Images().Revision(CTextureImages::kIllumination);
    ASSERT_TRUE(test.Light().PreviewKd());
    EXPECT_GT(test.Images().Revision(CTextureImages::kIllumination), revision);
    EXPECT_EQ(test.Images().PreviewOf(CTextureImages::kPhotograph), nullptr);
    const CTextureImages& preview = *test.Images().PreviewOf(CTextureImages::kIllumination);
    const CHalvings halvings = test.Images().PreviewHalvings();
    const CPicture shown = AreaFiltered(preview.Pixels(CTextureImages::kIllumination), 1, 1);
    EXPECT_EQ(preview.TextureWidth(), test.Images().TextureWidth() >> halvings.m_iX);
    EXPECT_EQ(preview.TextureHeight(), test.Images().TextureHeight() >> halvings.m_iY);
    EXPECT_EQ(test.Finish(), KdProgress::Done);
    EXPECT_EQ(test.Images().PreviewOf(CTextureImages::kIllumination), nullptr);
    const CPicture whole =
        AreaFiltered(test.Images().Pixels(CTextureImages::kIllumination), 1 << halvings.m_iX, 1 << halvings.m_iY);
    ASSERT_EQ(shown.m_aPixels.size(), whole.m_aPixels.size());
    int worst = 0;
    for (std::size_t k = 0; k < whole.m_aPixels.size(); ++k)
      worst = std::max(worst, std::abs(shown.m_aPixels[k] - whole.m_aPixels[k]));
    EXPECT_LE(worst, 2) << width;
  }
}

// Whether the picture has its own normals yet or not, and of whatever subdivision.
TEST(KdPreview, HasTheNormalsOfThePicture) {
  CKdGrid test(2000, 1001);
  test.Tear();
  const auto shown = [&test] {
    EXPECT_TRUE(test.Light().PreviewKd());
    const CPicture picture =
        AreaFiltered(test.Images().PreviewOf(CTextureImages::kKd)->Pixels(CTextureImages::kIllumination), 1, 1);
    return picture.m_aPixels;
  };
  const std::vector<std::uint8_t> before = shown();
  EXPECT_EQ(test.Finish(), KdProgress::Done);
  EXPECT_EQ(shown(), before);
  SetRandomSurface(test.m_Grid, 9);
  EXPECT_EQ(shown(), before) << "the texels keep theirs";
  test.m_Grid.ComputeNormalsOnly();
  EXPECT_NE(shown(), before);
}
