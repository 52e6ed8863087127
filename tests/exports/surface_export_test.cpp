// The surface on its way to other programs: meshes, solids, and files that belong together.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "codecs/JpegFile.h"
#include "exports/CleanFileMesh.h"
#include "exports/SurfaceExport.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"
#include "support/FileBuilders.h"

namespace {

using CPoint = std::array<float, 3>;

// A grid with random subdivision, heights and tears, crossing ones too.
struct CRandomTornGrid : CTornGrid {
  explicit CRandomTornGrid(std::uint32_t seed) : CTornGrid(RandomTears(seed, 16), 4, 3, seed) {
    SetRandomHeights(Lattice(), seed);
  }
};

// Sides that run from one position to another more or less often than the way back.
int OpenSides(const CFileMesh& mesh) {
  std::map<std::pair<CPoint, CPoint>, int> balance;
  for (const auto& triangle : mesh.m_aTriangles) {
    for (std::size_t k = 0; k < triangle.size(); ++k) {
      const CPoint& from = mesh.m_aPositions[triangle[k]];
      const CPoint& to = mesh.m_aPositions[triangle[(k + 1) % 3]];
      from < to ? ++balance[{from, to}] : --balance[{to, from}];
    }
  }
  return static_cast<int>(std::ranges::count_if(balance, [](const auto& side) { return side.second != 0; }));
}

double VolumeOf(const CFileMesh& mesh) {
  double volume = 0;
  for (const auto& triangle : mesh.m_aTriangles) {
    const auto at = [&](std::size_t k) {
      const CPoint& p = mesh.m_aPositions[triangle[k]];
      return Vector3{p[0], p[1], p[2]};
    };
    volume += Dot(at(0), Cross(at(1), at(2))) / 6;
  }
  return volume;
}

// What lies below the surface, down to the base of a solid, by its own triangles.
double VolumeBelow(const CFileMesh& surface, double base) {
  double volume = 0;
  for (const auto& triangle : surface.m_aTriangles) {
    const CPoint& a = surface.m_aPositions[triangle[0]];
    const CPoint& b = surface.m_aPositions[triangle[1]];
    const CPoint& c = surface.m_aPositions[triangle[2]];
    const double area = 0.5 * ((b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]));
    volume += area * ((a[2] + b[2] + c[2]) / 3 - base);
  }
  return volume;
}

double LowestOf(const CFileMesh& mesh) {
  double low = std::numeric_limits<double>::max();
  for (const CPoint& p : mesh.m_aPositions) low = std::min<double>(low, p[2]);
  return low;
}

CReadPicture Photograph() { return PhotographOf(PlainPicture(3, 2, 10, 200, 30)); }

}  // namespace

// Meshes.

TEST(CleanFileMeshTest, LiesAroundTheMiddleAtItsScale) {
  CTornGrid grid({});
  grid.Raise([](int column, int row) { return column + 10.0 * row; });
  const CFileMesh mesh = CleanFileMesh(grid.m_Grid, {TearGap::Open, 0.5, 2});
  const CExtent& e = kOblong;
  EXPECT_EQ(mesh.m_afMiddle, (std::array{0.5 * (e.x0 + e.x1), 0.5 * (e.y0 + e.y1)}));
  EXPECT_EQ(mesh.m_fScale, 0.5);
  for (std::size_t v = 0; v < mesh.m_aPositions.size(); ++v) {
    const auto& [u, w] = mesh.m_aPicturePlaces[v];
    EXPECT_NEAR(mesh.m_aPositions[v][0], 0.5 * (e.x1 - e.x0) * (u - 0.5), 1e-5);
    EXPECT_NEAR(mesh.m_aPositions[v][1], 0.5 * (e.y1 - e.y0) * (w - 0.5), 1e-5);
    EXPECT_NEAR(mesh.m_aPositions[v][2], 2 * (16 * u + 160 * w), 1e-3);
  }
}

TEST(CleanFileMeshTest, HasTheNormalsOfAPlane) {
  CTornGrid grid({});
  const double width = kOblong.x1 - kOblong.x0;
  grid.Raise([&](int column, int /*row*/) { return column * width / 16; });
  for (const CPoint& n : CleanFileMesh(grid.m_Grid, {}).m_aNormals) {
    EXPECT_NEAR(n[0], -std::sqrt(0.5), 1e-5);
    EXPECT_NEAR(n[1], 0, 1e-5);
    EXPECT_NEAR(n[2], std::sqrt(0.5), 1e-5);
  }
}

TEST(CleanFileMeshTest, GivesWallsNormalsOfTheirOwn) {
  // A step of two levels at a tear across the picture.
  CTornGrid grid({{{{8.5, -1}, {8.5, 17}}}});
  grid.Raise([](int column, int /*row*/) { return column > 8 ? 5.0 : 0.0; });
  const CFileMesh open = CleanFileMesh(grid.m_Grid, {});
  const CFileMesh walled = CleanFileMesh(grid.m_Grid, {TearGap::Wall});
  ASSERT_GT(walled.m_aTriangles.size(), open.m_aTriangles.size() + 16);
  for (std::size_t v = 0; v < open.m_aPositions.size(); ++v) EXPECT_EQ(open.m_aNormals[v], (CPoint{0, 0, 1}));
  for (std::size_t v = open.m_aPositions.size(); v < walled.m_aPositions.size(); ++v)
    EXPECT_EQ(walled.m_aNormals[v], (CPoint{-1, 0, 0})) << "towards the lower side";
}

// A wall shows what the higher side, which hides the other, has at the curve.
TEST(CleanFileMeshTest, GivesWallsThePictureOfTheNearSide) {
  CTornGrid grid({{{{8.3, -1}, {8.3, 17}}}});
  grid.Raise([](int column, int row) { return column > 8 ? 5.0 + 0.1 * row : 0.0; });
  const CFileMesh open = CleanFileMesh(grid.m_Grid, {});
  const CFileMesh walled = CleanFileMesh(grid.m_Grid, {TearGap::Wall});
  std::map<std::pair<float, float>, std::array<float, 2>> near;
  for (std::size_t v = 0; v < open.m_aPositions.size(); ++v) {
    const CPoint& p = open.m_aPositions[v];
    if (p[2] >= 5) near[{p[0], p[1]}] = open.m_aPicturePlaces[v];
  }
  ASSERT_GT(walled.m_aPositions.size(), open.m_aPositions.size() + 3 * 16);
  for (std::size_t v = open.m_aPositions.size(); v < walled.m_aPositions.size(); ++v) {
    const auto found = near.find({walled.m_aPositions[v][0], walled.m_aPositions[v][1]});
    ASSERT_NE(found, near.end());
    EXPECT_EQ(walled.m_aPicturePlaces[v], found->second);
    EXPECT_NEAR(found->second[0], 8.3 / 16, 1e-6);
  }
}

TEST(CleanFileMeshTest, LetsTheLowerSideRunOnBeneathTheHigherOne) {
  CTornGrid grid({{{{8.5, -1}, {8.5, 17}}}});
  grid.Raise([](int column, int /*row*/) { return column > 8 ? 5.0 : 0.0; });
  const CFileMesh open = CleanFileMesh(grid.m_Grid, {});
  const CFileMesh under = CleanFileMesh(grid.m_Grid, {.m_Gap = TearGap::Under, .m_fUnderWidth = 3.0});
  ASSERT_GT(under.m_aTriangles.size(), open.m_aTriangles.size() + 16);
  ASSERT_EQ(under.m_aNormals.size(), under.m_aPositions.size());
  for (std::size_t v = 0; v < under.m_aPositions.size(); ++v) {
    EXPECT_EQ(under.m_aNormals[v], (CPoint{0, 0, 1}));
    EXPECT_TRUE(under.m_aPositions[v][2] == 0.0F || under.m_aPositions[v][2] == 5.0F);
  }
  const CFileMesh solid = CleanSolid(grid.m_Grid, {.m_Gap = TearGap::Under}, 1);
  EXPECT_EQ(solid.m_aTriangles.size(), CleanSolid(grid.m_Grid, {}, 1).m_aTriangles.size()) << "it has walls";
}

RC_GTEST_PROP(CleanFileMeshTest, HasUnitNormalsThatLookUp, (std::uint32_t seed)) {
  CRandomTornGrid grid(seed);
  const CFileMesh mesh = CleanFileMesh(grid.m_Grid, {});
  RC_ASSERT(mesh.m_aNormals.size() == mesh.m_aPositions.size());
  RC_ASSERT(mesh.m_aPicturePlaces.size() == mesh.m_aPositions.size());
  for (const CPoint& n : mesh.m_aNormals) {
    RC_ASSERT(std::abs(std::hypot(n[0], n[1], n[2]) - 1) < 1e-5);
    RC_ASSERT(n[2] > 0);
  }
}

// Solids.

RC_GTEST_PROP(CleanSolidTest, IsClosedAndHoldsWhatLiesBelowTheSurface, (std::uint32_t seed)) {
  CRandomTornGrid grid(seed);
  const CFileMesh solid = CleanSolid(grid.m_Grid, {TearGap::Open, 2, 3}, 1.5);
  RC_ASSERT(OpenSides(solid) == 0);
  const CFileMesh surface = CleanFileMesh(grid.m_Grid, {TearGap::Open, 2, 3});
  const double base = LowestOf(solid);
  RC_ASSERT(std::abs(base - (LowestOf(surface) - 1.5)) < 1e-4);
  const double below = VolumeBelow(surface, base);
  RC_ASSERT(below > 0);
  RC_ASSERT(std::abs(VolumeOf(solid) - below) < 1e-4 * below);
}

TEST(CleanSolidTest, OfAPlateHasAFlatBase) {
  CTornGrid grid({}, 3, 3);
  const CFileMesh solid = CleanSolid(grid.m_Grid, {}, 2);
  EXPECT_EQ(OpenSides(solid), 0);
  const double area = (kOblong.x1 - kOblong.x0) * (kOblong.y1 - kOblong.y0);
  EXPECT_NEAR(VolumeOf(solid), 2 * area, 1e-3);
  for (const CPoint& p : solid.m_aPositions) EXPECT_TRUE(p[2] == 0 || p[2] == -2);
}

// Formats and files.

TEST(SurfaceExportTest, ChoosesTheFormatByTheSuffix) {
  for (const CExportFormat& format : ExportFormats())
    EXPECT_EQ(ExportFormatOf(std::string("a b.grid") + format.m_pSuffix), &format);
  EXPECT_EQ(ExportFormatOf("MODEL.GLB"), ExportFormats().data());
  for (const char* name : {"", ".glb", "d/.glb", "d.glb/", "/d.glb/a", "model", "model.grid", "model.glb.txt", "glb"})
    EXPECT_EQ(ExportFormatOf(name), nullptr) << name;
  EXPECT_EQ(ExportFormatOf("d.ply/a.glb"), ExportFormats().data());
}

TEST(SurfaceExportTest, ChoosesTheLongestSuffixWhateverTheirOrder) {
  std::vector<CExportFormat> table(ExportFormats().begin(), ExportFormats().end());
  std::mt19937 random(1);
  for (int k = 0; k < 30; ++k) {
    for (const CExportFormat& format : table)
      EXPECT_EQ(ExportFormatOf(std::string("a b.grid") + format.m_pSuffix, table), &format);
    std::ranges::shuffle(table, random);
  }
  std::ranges::sort(table, std::greater<>(), [](const CExportFormat& f) { return std::string(f.m_pSuffix).size(); });
  EXPECT_STREQ(ExportFormatOf("a-normal.png", table)->m_pSuffix, "-normal.png");
  EXPECT_STREQ(ExportFormatOf("a.png", table)->m_pSuffix, ".png");
}

TEST(SurfaceExportTest, TakesThePhotographsOwnBytes) {
  const CTemporaryDirectory directory;
  CTornGrid grid({});
  CReadPicture photograph = Photograph();
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("a.glb"), settings));
  EXPECT_NE(BytesOf(directory.File("a.glb")).find(JpegOf(photograph.m_Picture)), std::string::npos);
  photograph.m_pJpeg = std::make_shared<const std::string>("\xFF\xD8 the photograph's own");
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("a.glb"), settings));
  EXPECT_NE(BytesOf(directory.File("a.glb")).find(*photograph.m_pJpeg), std::string::npos);
  settings.m_pPhotograph = nullptr;
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("a.glb"), settings));
  EXPECT_EQ(BytesOf(directory.File("a.glb")).find("image"), std::string::npos);
}

TEST(SurfaceExportTest, WritesThreeFilesWhoseNamesHaveNoBlank) {
  const CTemporaryDirectory directory;
  CTornGrid grid({});
  const CReadPicture photograph = Photograph();
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("my c\xC3\xBCp.obj"), settings));
  EXPECT_NE(BytesOf(directory.File("my c\xC3\xBCp.obj")).find("\nmtllib my_c\xC3\xBCp.mtl\n"), std::string::npos);
  EXPECT_NE(BytesOf(directory.File("my_c\xC3\xBCp.mtl")).find("\nmap_Kd my_c\xC3\xBCp.jpg\n"), std::string::npos);
  EXPECT_EQ(BytesOf(directory.File("my_c\xC3\xBCp.jpg")), JpegOf(photograph.m_Picture));
}

TEST(SurfaceExportTest, NamesFilesBesideAModelSoThatAnotherProgramFindsThem) {
  CTornGrid grid({});
  const CReadPicture photograph = Photograph();
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  for (const auto& [name, stem] : std::map<std::string, std::string>{{"a\tb\nc\x7F"
                                                                      "d",
                                                                      "a_b_c_d"},
                                                                     {"-dash", "_dash"},
                                                                     {" \x1F", "__"},
                                                                     {"c\xC3\xBCp-1", "c\xC3\xBCp-1"}}) {
    const CTemporaryDirectory directory;
    ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File(name + ".obj"), settings));
    EXPECT_NE(BytesOf(directory.File(name + ".obj")).find("\nmtllib " + stem + ".mtl\n"), std::string::npos) << stem;
    EXPECT_NE(BytesOf(directory.File(stem + ".mtl")).find("\nmap_Kd " + stem + ".jpg\n"), std::string::npos) << stem;
    EXPECT_TRUE(std::filesystem::exists(directory.File(stem + ".jpg"))) << stem;
  }
}

TEST(SurfaceExportTest, CallsTheModelAsItIsAskedTo) {
  const CTemporaryDirectory directory;
  CTornGrid grid({});
  CExportSettings settings;
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("c-open.glb"), settings));
  EXPECT_NE(BytesOf(directory.File("c-open.glb")).find("\"name\":\"c-open\""), std::string::npos);
  settings.m_Name = "coffee";
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("c-open.glb"), settings));
  EXPECT_EQ(BytesOf(directory.File("c-open.glb")).find("c-open"), std::string::npos);
  EXPECT_NE(BytesOf(directory.File("c-open.glb")).find("\"name\":\"coffee\""), std::string::npos);
}

TEST(SurfaceExportTest, WritesAllFilesOfAModelOrNone) {
  const CTemporaryDirectory directory;
  CTornGrid grid({});
  const CReadPicture photograph = Photograph();
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  WriteText(directory.File("a.jpg"), "old");
  WriteText(directory.File("a.obj"), "old");
  std::filesystem::create_directory(directory.File("a.mtl"));
  const CSaveOutcome outcome = ExportSurface(grid.m_Grid, directory.File("a.obj"), settings);
  EXPECT_EQ(outcome.m_Trouble,
            "The file " + directory.File("a.mtl") + " could not be written. If it existed before, it is unchanged.");
  EXPECT_EQ(BytesOf(directory.File("a.jpg")) + BytesOf(directory.File("a.obj")), "oldold");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.Path()), {}), 3) << "and nothing beside them";
}

TEST(SurfaceExportTest, RefusesHeightsThatAreNotFinite) {
  const CTemporaryDirectory directory;
  const CReadPicture photograph = Photograph();
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  for (const double wrong :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
    CTornGrid grid({});
    grid.Raise([&](int column, int row) { return column == 3 && row == 4 ? wrong : 1.0; });
    SwitchOnLights(grid.m_Grid);
    for (const CExportFormat& format : ExportFormats()) {
      const bool isPhotograph = format.m_Picture != ExportTexture::None;
      if (isPhotograph && std::isfinite(wrong)) continue;
      const std::string file = directory.File(std::string("a") + format.m_pSuffix);
      EXPECT_EQ(ExportSurface(grid.m_Grid, file, settings).m_Trouble,
                "The surface has coordinates that are no finite numbers. The file " + file + " is not written.");
      EXPECT_FALSE(std::filesystem::exists(file));
    }
  }
}

// The same point of the model has the same height everywhere, and lies in the same place seen from above.
TEST(SurfaceExportTest, HasOneSurfaceInAllFormats) {
  CTornGrid grid({{{{3.25, 2}, {12, 13.5}}}});
  SetRandomHeights(grid.Lattice(), 5);
  const CFileMesh surface = CleanFileMesh(grid.m_Grid, {});
  const CFileMesh solid = CleanSolid(grid.m_Grid, {}, 1);
  for (std::size_t v = 0; v < surface.m_aPositions.size(); ++v)
    EXPECT_EQ(solid.m_aPositions[v], surface.m_aPositions[v]);
  int compared = 0;
  for (std::size_t v = 0; v < surface.m_aPositions.size(); ++v) {
    const double column = surface.m_aPicturePlaces[v][0] * 16;
    const double row = surface.m_aPicturePlaces[v][1] * 16;
    const bool away = std::abs((column - 3.25) * 11.5 - (row - 2) * 8.75) > 30;
    if (!away) continue;
    EXPECT_NEAR(surface.m_aPositions[v][2], grid.m_Grid.GetHeightAt(column, row), 1e-5);
    ++compared;
  }
  EXPECT_GT(compared, 200);
}

// Progress.

namespace {

// Says no from some question on.
class CPatience : public ExportProgress {
 public:
  explicit CPatience(int questions = std::numeric_limits<int>::max()) : m_iLeft(questions) {}
  bool Goes(double share) override {
    m_afShares.push_back(share);
    return m_iLeft-- > 0;
  }

  int m_iLeft;
  std::vector<double> m_afShares;
};

// An export to such a file that is cancelled at the given question.
CSaveOutcome ExportCancelledAt(int question, const CGrid& grid, const std::string& file, TearGap gap) {
  const CReadPicture photograph = Photograph();
  CPatience patience(question);
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  settings.m_pProgress = &patience;
  settings.m_Gap = gap;
  return ExportSurface(grid, file, settings);
}

// How often it asks, cancelled at each question in turn.
int QuestionsThatLeaveNothing(const CGrid& grid, const char* suffix, TearGap gap = TearGap::Open) {
  const CTemporaryDirectory directory;
  const std::string file = directory.File(std::string("a") + suffix);
  int question = 0;
  CSaveOutcome outcome = ExportCancelledAt(question, grid, file, gap);
  for (; !outcome; outcome = ExportCancelledAt(++question, grid, file, gap)) {
    EXPECT_EQ(outcome.m_Trouble, "Cancelled. The file " + file + " is not written.");
    EXPECT_TRUE(outcome.m_bCancelled);
    EXPECT_TRUE(std::filesystem::is_empty(directory.Path())) << suffix << " at " << question;
  }
  return question;
}

}  // namespace

TEST(SurfaceExportTest, TellsItsSharesInOrder) {
  const CTemporaryDirectory directory;
  const CReadPicture photograph = Photograph();
  CTornGrid grid({});
  SwitchOnLights(grid.m_Grid);
  for (const CExportFormat& format : ExportFormats()) {
    CPatience patience;
    CExportSettings settings;
    settings.m_pPhotograph = &photograph;
    settings.m_pProgress = &patience;
    ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File(std::string("a") + format.m_pSuffix), settings));
    EXPECT_TRUE(std::ranges::is_sorted(patience.m_afShares)) << format.m_pSuffix;
    EXPECT_GE(patience.m_afShares.front(), 0);
    EXPECT_NEAR(patience.m_afShares.back(), 1, 1e-12) << format.m_pSuffix;
  }
}

TEST(SurfaceExportTest, LeavesNothingBehindWhereverItIsCancelled) {
  CTornGrid grid({});
  SwitchOnLights(grid.m_Grid);
  for (const CExportFormat& format : ExportFormats())
    EXPECT_GT(QuestionsThatLeaveNothing(grid.m_Grid, format.m_pSuffix), 3) << format.m_pSuffix;
}

TEST(SurfaceExportTest, LeavesNothingBehindWhereverItIsCancelledBesideATear) {
  CTornGrid plain({});
  CTornGrid torn({{{{3.3, 3.2}, {12.1, 3.7}, {8.4, 12.2}}, true}});
  SetRandomHeights(torn.Lattice(), 3);
  for (const char* suffix : {".glb", ".ply", ".stl"}) {
    const int questions = QuestionsThatLeaveNothing(plain.m_Grid, suffix);
    for (const TearGap gap : {TearGap::Open, TearGap::Wall, TearGap::Under})
      EXPECT_GT(QuestionsThatLeaveNothing(torn.m_Grid, suffix, gap), questions + 3) << suffix;
  }
}
