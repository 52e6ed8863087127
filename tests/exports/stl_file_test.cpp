// Solids in .stl files, as a program that repairs such files judges them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "exports/CleanFileMesh.h"
#include "exports/StlFile.h"
#include "exports/SurfaceExport.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"
#include "support/FileBuilders.h"
#include "support/MeshFileBuilders.h"
#include "support/ProgramRun.h"

namespace {

std::string StlBytes(const CFileMesh& mesh, UpAxis up) {
  return BytesPut([&](CByteSink& sink) { PutStl(mesh, up, sink); });
}

// The roof closed to a solid.
CFileMesh House() {
  CFileMesh mesh = Roof();
  mesh.m_aTriangles = {{0, 1, 3}, {1, 4, 3}, {1, 2, 4}, {2, 5, 4}, {0, 2, 1}, {3, 4, 5}, {0, 3, 2}, {2, 3, 5}};
  return mesh;
}

// A text with one blank behind each word.
std::string WordsOf(const std::string& text) {
  std::istringstream in(text);
  std::string words;
  for (std::string word; in >> word;) words += word + ' ';
  return words;
}

}  // namespace

TEST(StlTest, IsAClosedSolidForAnotherProgram) {
  const CTemporaryDirectory directory;
  for (const UpAxis up : {UpAxis::Y, UpAxis::Z}) {
    WriteText(directory.File("house.stl"), StlBytes(House(), up));
    ASSERT_EQ(RunIn(directory.Path(), "admesh house.stl"), 0);
    const std::string report = WordsOf(BytesOf(directory.File("out")));
    const auto says = [&report](const std::string& words) { return report.find(words) != std::string::npos; };
    EXPECT_TRUE(says("Number of facets : 8 8 ")) << report;
    EXPECT_TRUE(says("Total disconnected facets : 0 0 ")) << report;
    EXPECT_TRUE(says("Number of parts : 1 Volume : 8.000000 ")) << report;
    EXPECT_TRUE(
        says("Degenerate facets : 0 Edges fixed : 0 Facets removed : 0 Facets added : 0 Facets reversed : 0 "
             "Backwards edges : 0 Normals fixed : 0 "))
        << report;
    EXPECT_TRUE(says(up == UpAxis::Z ? "Max Z = 2.000000" : "Max Y = 2.000000")) << report;
  }
}

TEST(StlTest, IsASolidForAnotherProgramWhereHighAndLowQuartersMeetInOnePoint) {
  const CTemporaryDirectory directory;
  for (const double crossing : {7.4, 8.0, 7.75}) {
    CTornGrid grid({{{{0.0, crossing}, {16.0, crossing}}}, {{{8.3, 0.0}, {8.3, 16.0}}}});
    grid.Raise([&](int column, int row) {
      const bool right = column > 8.3;
      const bool upper = row > crossing;
      return right == upper ? (right ? 7.0 : 5.0) : (right ? 1.0 : 2.0);
    });
    WriteText(directory.File("quarters.stl"), StlBytes(CleanSolid(grid.m_Grid, {}, 2.0), UpAxis::Z));
    ASSERT_EQ(RunIn(directory.Path(), "admesh quarters.stl"), 0);
    const std::string report = WordsOf(BytesOf(directory.File("out")));
    const auto says = [&report](const std::string& words) { return report.find(words) != std::string::npos; };
    EXPECT_TRUE(says("Total disconnected facets : 0 0 ")) << report;
    EXPECT_TRUE(says("Facets removed : 0 Facets added : 0 Facets reversed : 0 Backwards edges : 0 ")) << report;
    EXPECT_TRUE(says("Number of parts : 1 Volume : ")) << report;
    EXPECT_FALSE(says("Volume : -")) << report;
  }
}

namespace {

// How many edges are not those of two facets.
int EdgesNotOfTwoFacets(const CFileMesh& mesh) {
  std::map<std::set<CFilePoint>, int> facets;
  for (const auto& triangle : mesh.m_aTriangles) {
    for (std::size_t k = 0; k < 3; ++k)
      ++facets[{mesh.m_aPositions[triangle[k]], mesh.m_aPositions[triangle[(k + 1) % 3]]}];
  }
  return static_cast<int>(std::ranges::count_if(facets, [](const auto& edge) { return edge.second != 2; }));
}

}  // namespace

TEST(StlTest, HasNoEdgeOfFourWallsWhereTwoTearsBeginAtOnePointOfTheBorder) {
  const CTemporaryDirectory directory;
  for (const double begin : {8.3, 8.0, 7.75, 0.0}) {
    for (const std::array<double, 3>& heights : {std::array{7.0, 1.0, 5.0}, {5.0, 1.0, 5.0}, {1.0, 6.0, 2.0}}) {
      CTornGrid grid({{{{begin, 0.0}, {4.0, 16.0}}}, {{{begin, 0.0}, {14.0, 16.0}}}});
      grid.Raise([&](int column, int row) {
        const auto isLeftOf = [&](double end) { return column < begin + (end - begin) * row / 16.0; };
        return heights[isLeftOf(4.0) ? 0 : isLeftOf(14.0) ? 1 : 2];
      });
      const CFileMesh solid = CleanSolid(grid.m_Grid, {}, 2.0);
      EXPECT_EQ(EdgesNotOfTwoFacets(solid), 0) << begin << ' ' << heights[0];
      WriteText(directory.File("fan.stl"), StlBytes(solid, UpAxis::Z));
      ASSERT_EQ(RunIn(directory.Path(), "admesh fan.stl"), 0);
      const std::string report = WordsOf(BytesOf(directory.File("out")));
      EXPECT_NE(report.find("Total disconnected facets : 0 0 "), std::string::npos) << report;
      EXPECT_NE(report.find("Facets removed : 0 Facets added : 0 Facets reversed : 0 Backwards edges : 0 "),
                std::string::npos)
          << report;
    }
  }
}

// Both of them are on top of all else that meets there.
TEST(StlTest, HasNoEdgeOfFourWallsWhereTwoSidesOfATearComeToOneHeightOnTheBorder) {
  for (const std::uint32_t seed : {918U, 960U}) {
    constexpr int kLevel = 3;
    CTornGrid grid(RandomTears(seed, 1 << kLevel), kLevel, kLevel - static_cast<int>(seed / 3 % 3), seed);
    SetRandomHeights(grid.Lattice(), seed);
    EXPECT_EQ(EdgesNotOfTwoFacets(CleanSolid(grid.m_Grid, {}, 2.0)), 0) << seed;
  }
}

TEST(StlTest, TellsItsPlaceAndScaleInTheHeader) {
  CFileMesh mesh = Roof();
  const auto header = [&mesh] { return StlBytes(mesh, UpAxis::Z).substr(0, 80); };
  const std::string words = "relievo middle 10.5 -3 scale 0.25";
  EXPECT_EQ(header(), words + std::string(80 - words.size(), '\0'));
  mesh.m_afMiddle = {-1.23456789012e-300, -9.87654321098e+300};
  mesh.m_fScale = 1.11111111111e-300;
  EXPECT_STREQ(header().c_str(), "relievo middle -1.23456789e-300 -9.87654321e+300 scale 1.11111111e-300");
  EXPECT_EQ(StlBytes(mesh, UpAxis::Z).size(), 84U + 50U * mesh.m_aTriangles.size());
}

namespace {

// What another program says of an exported solid.
struct CJudgedSolid {
  explicit CJudgedSolid(const std::string& report) : m_Report(WordsOf(report)) {}
  // The number behind some words; not a number where they are missing.
  double After(const std::string& words) const {
    const std::size_t at = m_Report.find(words + ' ');
    return at == std::string::npos ? std::nan("") : std::stod(m_Report.substr(at + words.size()));
  }
  double SizeOf(const std::string& axis) const { return After("Max " + axis + " =") - After("Min " + axis + " ="); }

  std::string m_Report;
};
CJudgedSolid JudgeExport(const CGrid& grid, const CExportSettings& settings) {
  const CTemporaryDirectory directory;
  const CSaveOutcome outcome = ExportSurface(grid, directory.File("solid.stl"), settings);
  EXPECT_TRUE(outcome) << outcome.m_Trouble;
  EXPECT_EQ(RunIn(directory.Path(), "admesh solid.stl"), 0);
  return CJudgedSolid(BytesOf(directory.File("out")));
}

void ExpectWhole(const CJudgedSolid& solid) {
  for (const char* words : {"Total disconnected facets :", "Degenerate facets :", "Edges fixed :", "Facets removed :",
                            "Facets added :", "Facets reversed :", "Backwards edges :"})
    EXPECT_EQ(solid.After(words), 0) << words << '\n' << solid.m_Report;
  EXPECT_GT(solid.After("Volume :"), 0);
}

}  // namespace

TEST(StlTest, OfTheSamplesIsASolidOfTheRightSizeForAnotherProgram) {
  for (const char* name : {"coffee", "cat"}) {
    const ConsoleCapture console;
    CGrid grid;
    ASSERT_EQ(grid.Load(std::string(RELIEVO_SAMPLES "/") + name + ".grid"), GridFileState::Whole);
    grid.PerformPendingWork();
    CExportSettings settings;
    settings.m_fScale = 2;
    settings.m_fBase = 3;
    const CJudgedSolid solid = JudgeExport(grid, settings);
    ExpectWhole(solid);
    EXPECT_EQ(solid.After("Number of parts :"), 1) << solid.m_Report;
    const CExtent& e = grid.Surface().Lattice().Extent();
    EXPECT_NEAR(solid.SizeOf("X"), 2 * (e.x1 - e.x0), 1e-3);
    EXPECT_NEAR(solid.SizeOf("Y"), 2 * (e.y1 - e.y0), 1e-3);
    const CFileMesh surface = CleanFileMesh(grid, {TearGap::Open, 2, 2});
    const auto [low, high] = std::ranges::minmax(surface.m_aPositions, {}, [](const CFilePoint& p) { return p[2]; });
    EXPECT_NEAR(solid.SizeOf("Z"), high[2] - low[2] + 3, 1e-3);
    EXPECT_GT(solid.After("Volume :"), 3 * 4 * (e.x1 - e.x0) * (e.y1 - e.y0)) << "more than its base";
  }
}

TEST(StlTest, OfRandomTearsIsASolidForAnotherProgram) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    CTornGrid grid(RandomTears(seed, 16), 4, 3, seed);
    SetRandomHeights(grid.Lattice(), seed);
    const CJudgedSolid solid = JudgeExport(grid.m_Grid, {});
    ExpectWhole(solid);
    EXPECT_GE(solid.After("Number of parts :"), 1) << "seed " << seed;
    EXPECT_NEAR(solid.SizeOf("X"), kOblong.x1 - kOblong.x0, 1e-3) << "seed " << seed;
  }
}

TEST(StlTest, SaysNothingOfTheDirectionOfATriangleWithoutArea) {
  CFileMesh mesh = Roof();
  mesh.m_aTriangles = {{0, 0, 1}};
  const std::string bytes = StlBytes(mesh, UpAxis::Z);
  std::size_t at = 84;
  EXPECT_EQ(Take<CFilePoint>(bytes, at), (CFilePoint{0, 0, 0}));
  EXPECT_EQ(bytes.size(), 84U + 50U);
}
