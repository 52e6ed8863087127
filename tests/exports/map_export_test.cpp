// Maps of heights and normals as files, as readers that are not this program see them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "exports/CleanFileMesh.h"
#include "exports/SurfaceExport.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/FileBuilders.h"
#include "support/MapReaders.h"
#include "support/ProgramRun.h"

namespace {

class MapExport : public testing::Test {
 protected:
  MapExport() { SetRandomHeights(m_Torn.Lattice(), 7); }

  std::string Exported(const std::string& name) const {
    EXPECT_EQ(ExportSurface(m_Torn.m_Grid, File(name), m_Settings).m_Trouble, "");
    return File(name);
  }
  std::string File(const std::string& name) const { return m_Directory.File(name); }
  // What a program prints.
  std::string Printed(const std::string& command) const {
    EXPECT_EQ(RunIn(m_Directory.Path(), command), 0) << BytesOf(File("err"));
    return BytesOf(File("out"));
  }
  // Numbers of 16 bits, from the top, as a program reads them.
  CMap Converted(const std::string& name, int width, int height) const {
    const std::string bytes = Printed("convert '" + name + "' -depth 16 -endian LSB gray:-");
    std::vector<std::uint16_t> numbers(bytes.size() / 2);
    std::memcpy(numbers.data(), bytes.data(), 2 * numbers.size());
    return {width, height, {numbers.begin(), numbers.end()}};
  }

  CTemporaryDirectory m_Directory;
  CTornGrid m_Torn{{{{{3.25, 2}, {12, 13.5}}}}};
  CExportSettings m_Settings;
};

}  // namespace

TEST_F(MapExport, FloatsAreHeightsFromTheTop) {
  m_Torn.Raise([](int column, int row) { return column + 100.0 * row; });
  for (const CMap& map : {ReadTiff(Exported("a.tif")), ReadPfm(BytesOf(Exported("a.pfm"))), ReadOwn(File("a.tif"))}) {
    ASSERT_EQ(map.m_iWidth, 17);
    ASSERT_EQ(map.m_iHeight, 17);
    EXPECT_EQ(map.At(0, 0), 1600) << "the upper left corner of the photograph";
    EXPECT_EQ(map.At(16, 0), 1616);
    EXPECT_EQ(map.At(0, 16), 0);
    EXPECT_EQ(map.At(16, 16), 16);
  }
}

TEST_F(MapExport, FloatsAreTheSameInBothFormats) {
  m_Settings.m_Resolution = {300, 70};
  const CMap tiff = ReadTiff(Exported("a.tif"));
  EXPECT_EQ(tiff.m_iWidth, 300);
  EXPECT_EQ(tiff.m_iHeight, 70);
  EXPECT_EQ(tiff.m_afNumbers, ReadPfm(BytesOf(Exported("a.pfm"))).m_afNumbers);
  EXPECT_EQ(tiff.m_afNumbers, ReadOwn(File("a.tif")).m_afNumbers);
}

TEST_F(MapExport, PngHasTheFullRangeAndSaysWhatItMeans) {
  const CMap heights = ReadTiff(Exported("a.tif"));
  const CMap numbers = ReadOwn(Exported("a.png"));
  EXPECT_EQ(numbers.m_afNumbers, Converted("a.png", 17, 17).m_afNumbers);
  EXPECT_EQ(std::ranges::min(numbers.m_afNumbers), 0);
  EXPECT_EQ(std::ranges::max(numbers.m_afNumbers), 65535);
  const auto text = nlohmann::json::parse(BytesOf(File("a.png.json")));
  const double offset = text["offset"];
  const double scale = text["scale"];
  for (std::size_t k = 0; k < numbers.m_afNumbers.size(); ++k)
    EXPECT_NEAR(offset + scale * numbers.m_afNumbers[k], heights.m_afNumbers[k], 0.51 * scale);
  EXPECT_EQ(text["samples"], (nlohmann::json{17, 17}));
  EXPECT_EQ(text["size"], (nlohmann::json{kOblong.x1 - kOblong.x0, kOblong.y1 - kOblong.y0}));
  std::istringstream remarks(Printed("identify -format '%w %h %z %[offset] %[scale] %[Software]' a.png"));
  double width = 0;
  double height = 0;
  double bits = 0;
  double remarkedOffset = 0;
  double remarkedScale = 0;
  std::string software;
  remarks >> width >> height >> bits >> remarkedOffset >> remarkedScale >> software;
  EXPECT_EQ((std::array{width, height, bits, remarkedOffset, remarkedScale}),
            (std::array<double, 5>{17, 17, 16, offset, scale}));
  EXPECT_EQ(software, "relievo");
}

TEST_F(MapExport, ScalesMultiplyHeights) {
  const CMap plain = ReadTiff(Exported("a.tif"));
  m_Settings.m_fScale = 4;
  m_Settings.m_fHeightScale = 0.5;
  const CMap scaled = ReadTiff(Exported("a.tif"));
  for (std::size_t k = 0; k < plain.m_afNumbers.size(); ++k) EXPECT_EQ(scaled.m_afNumbers[k], 2 * plain.m_afNumbers[k]);
  Exported("a.png");
  const auto text = nlohmann::json::parse(BytesOf(File("a.png.json")));
  EXPECT_EQ(text["offset"], std::ranges::min(scaled.m_afNumbers));
  EXPECT_EQ(text["size"][0], 4 * (kOblong.x1 - kOblong.x0));
}

TEST_F(MapExport, OneHeightEverywhereIsAMapToo) {
  m_Torn.Raise([](int /*column*/, int /*row*/) { return -3.5; });
  for (const float number : ReadOwn(Exported("a.png")).m_afNumbers) EXPECT_EQ(number, 0);
  const auto text = nlohmann::json::parse(BytesOf(File("a.png.json")));
  EXPECT_EQ(text["offset"], -3.5);
  EXPECT_EQ(text["scale"], 1.0);
  for (const float number : ReadTiff(Exported("a.tif")).m_afNumbers) EXPECT_EQ(number, -3.5F);
  for (const float number : ReadPfm(BytesOf(Exported("a.pfm"))).m_afNumbers) EXPECT_EQ(number, -3.5F);
}

TEST_F(MapExport, AHairIsSpreadOverAllNumbers) {
  m_Torn.Raise([](int column, int /*row*/) { return column == 8 ? 1e-30 : 0.0; });
  const CMap numbers = ReadOwn(Exported("a.png"));
  EXPECT_EQ(std::ranges::max(numbers.m_afNumbers), 65535);
  m_Torn.Raise([](int column, int /*row*/) { return column == 1 ? -3e38 : 3e38; });
  EXPECT_EQ(ReadOwn(Exported("a.png")).At(1, 3), 0);
  EXPECT_EQ(ReadOwn(Exported("a.png")).At(16, 3), 65535);
}

TEST_F(MapExport, PngAndItsTextAreWrittenTogetherOrNotAtAll) {
  WriteText(File("a.png"), "old");
  std::filesystem::create_directory(File("a.png.json"));
  EXPECT_EQ(ExportSurface(m_Torn.m_Grid, File("a.png"), {}).m_Trouble,
            "The file " + File("a.png.json") + " could not be written. If it existed before, it is unchanged.");
  EXPECT_EQ(BytesOf(File("a.png")), "old");
}

TEST_F(MapExport, NormalsAreAPngOfThreeBytes) {
  m_Torn.Raise([this](int column, int row) { return row > 8 ? -m_Torn.Lattice().XOf(column) : 0.0; });
  m_Settings.m_Resolution = {40, 34};
  Exported("a-normal.png");
  EXPECT_EQ(Printed("identify -format '%m %w %h %z %[channels]' a-normal.png"), "PNG 40 34 8 srgb");
  const std::string pixels = Printed("convert a-normal.png -depth 8 rgb:-");
  ASSERT_EQ(pixels.size(), 3U * 40 * 34);
  EXPECT_EQ(pixels.substr(3 * 35, 3), "\xDA\x80\xDA") << "the upper part falls to the right";
  EXPECT_EQ(pixels.substr(3 * (33 * 40 + 5), 3), "\x80\x80\xFF") << "the lower part is flat";
}

// Walls and what runs on behind a tear are not seen from above.
TEST_F(MapExport, TearsAreOpenWhateverIsAskedFor) {
  Exported("open.tif");
  Exported("open-normal.png");
  for (const TearGap gap : {TearGap::Wall, TearGap::Under}) {
    m_Settings.m_Gap = gap;
    m_Settings.m_fUnderWidth = 2;
    Exported("other.tif");
    Exported("other-normal.png");
    EXPECT_EQ(BytesOf(File("open.tif")), BytesOf(File("other.tif")));
    EXPECT_EQ(BytesOf(File("open-normal.png")), BytesOf(File("other-normal.png")));
  }
}
