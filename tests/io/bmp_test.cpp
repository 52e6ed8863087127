#include "io/Bmp.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/BmpBuilders.h"
#include "support/CFullDisk.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"

namespace {

constexpr const char* kFormatRefused = " format is not 24bit uncompressed bitmap with orig at left-bottom corner!\n";
constexpr const char* kHeaderRefused = " file header not accepted!";

class BmpTest : public ::testing::Test {
 protected:
  std::optional<Global::CLoadedPicture> LoadFile(const CBytes& bytes, int align = 1) {
    WriteBytes(m_File, bytes);
    m_Console.Take();
    return Global::LoadBMP(m_File, align);
  }
  bool Save(const CPicture& picture) {
    return Global::SaveBMP(m_File, picture.m_aPixels, picture.m_iWidth, picture.m_iHeight, 1);
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("picture.bmp");
  ConsoleCapture m_Console;
};

struct CFieldCase {
  const char* m_Name;
  std::size_t m_uOffset;
  std::size_t m_uWidth;
  std::int64_t m_iValue;
  const char* m_Message;  ///< null where the file is accepted
};

// For the names of the tests and the messages of their failures.
std::ostream& operator<<(std::ostream& out, const CFieldCase& field) { return out << field.m_Name; }

class BmpFieldTest : public BmpTest, public ::testing::WithParamInterface<CFieldCase> {};

}  // namespace

TEST_P(BmpFieldTest, IsCheckedOrNot) {
  const CFieldCase& field = GetParam();
  CBytes bytes = BmpFile(SomePicture(3, 2));
  PutBytes(bytes, field.m_uOffset, field.m_uWidth, field.m_iValue);
  const auto loaded = LoadFile(bytes);
  EXPECT_EQ(loaded.has_value(), field.m_Message == nullptr);
  if (field.m_Message == nullptr) {
    EXPECT_EQ(loaded->m_Picture.m_aPixels, SomePicture(3, 2).m_aPixels);
    EXPECT_FALSE(loaded->m_bEndsEarly);
  } else {
    EXPECT_EQ(m_Console.Text(), m_File + field.m_Message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Header, BmpFieldTest,
    ::testing::Values(
        CFieldCase{"signature", 0, 2, 0x5858, nullptr}, CFieldCase{"file size", 2, 4, 1, nullptr},
        CFieldCase{"reserved 1", 6, 2, 7, nullptr}, CFieldCase{"reserved 2", 8, 2, 7, nullptr},
        CFieldCase{"pixel offset of a 108-byte info header", 10, 4, 122, kHeaderRefused},
        CFieldCase{"pixel offset of a 124-byte info header", 10, 4, 138, kHeaderRefused},
        CFieldCase{"info header size", 14, 4, 108, kFormatRefused},
        CFieldCase{"negative width", 18, 4, -3, kFormatRefused}, CFieldCase{"top row first", 22, 4, -2, kFormatRefused},
        CFieldCase{"planes", 26, 2, 2, kFormatRefused}, CFieldCase{"palette", 28, 2, 8, kFormatRefused},
        CFieldCase{"32 bits", 28, 2, 32, kFormatRefused}, CFieldCase{"compression", 30, 4, 3, kFormatRefused},
        CFieldCase{"image size", 34, 4, 5, nullptr}, CFieldCase{"horizontal resolution", 38, 4, 2835, nullptr},
        CFieldCase{"vertical resolution", 42, 4, 2835, nullptr}, CFieldCase{"colours used", 46, 4, 9, nullptr},
        CFieldCase{"important colours", 50, 4, 9, nullptr}));

namespace {

struct CSizeCase {
  int m_iWidth;
  int m_iHeight;
  int m_iAlign;
  int m_iStride;
};

class BmpSizeTest : public BmpTest, public ::testing::WithParamInterface<CSizeCase> {};

// `picture` with its rows padded with zeros to `stride` bytes.
CBytes Padded(const CPicture& picture, int stride) {
  CBytes bytes;
  const auto row = 3 * static_cast<std::size_t>(picture.m_iWidth);
  for (std::size_t k = 0; k < static_cast<std::size_t>(picture.m_iHeight); ++k) {
    for (std::size_t i = 0; i < row; ++i) bytes.push_back(picture.m_aPixels[k * row + i]);
    bytes.resize((k + 1) * static_cast<std::size_t>(stride));
  }
  return bytes;
}

}  // namespace

TEST_P(BmpSizeTest, LoadsRowsInOrderWithTheStride) {
  const auto [width, height, align, stride] = GetParam();
  const auto loaded = LoadFile(BmpFile(SomePicture(width, height)), align);
  ASSERT_TRUE(loaded.has_value());
  EXPECT_EQ(loaded->m_Picture.m_iWidth, width);
  EXPECT_EQ(loaded->m_Picture.m_iHeight, height);
  EXPECT_EQ(loaded->m_Picture.m_aPixels, Padded(SomePicture(width, height), stride));
  EXPECT_EQ(m_Console.Text(), "Global::LoadBMP\t\twidth = " + std::to_string(width) + "; padded_w = " +
                                  std::to_string(stride) + "; height = " + std::to_string(height) + "\n");
}

TEST_P(BmpSizeTest, SavesWhatThePixelsSay) {
  const auto [width, height, align, stride] = GetParam();
  const CPicture picture = SomePicture(width, height);
  ASSERT_TRUE(Global::SaveBMP(m_File, Padded(picture, stride), width, height, align));
  const CBytes written = ReadBytes(m_File);
  const std::size_t rowSize = (3 * static_cast<std::size_t>(width) + 3) / 4 * 4;
  EXPECT_EQ(written.size(), 54 + rowSize * static_cast<std::size_t>(height));
  CBytes header = BmpHeader(width, height);
  PutBytes(header, 2, 4, static_cast<std::int64_t>(written.size()));
  EXPECT_EQ(CBytes(written.begin(), written.begin() + 54), header);
  EXPECT_EQ(Global::LoadBMP(m_File, 1)->m_Picture.m_aPixels, picture.m_aPixels);
}

INSTANTIATE_TEST_SUITE_P(Sizes, BmpSizeTest,
                         ::testing::Values(CSizeCase{1, 1, 1, 3}, CSizeCase{1, 4, 1, 3}, CSizeCase{5, 3, 1, 15},
                                           CSizeCase{4, 3, 1, 12}, CSizeCase{5, 3, 4, 16}, CSizeCase{5, 3, 8, 16},
                                           CSizeCase{17, 2, 1, 51}, CSizeCase{18, 2, 1, 54}, CSizeCase{33, 3, 4, 100},
                                           CSizeCase{100, 37, 1, 300}));

TEST_F(BmpTest, MissingFileIsNamed) {
  EXPECT_FALSE(Global::LoadBMP(m_File, 1).has_value());
  EXPECT_EQ(m_Console.Text(), "fail to open file " + m_File + "\n");
}

TEST_F(BmpTest, DirectoryIsNoPicture) {
  EXPECT_FALSE(Global::LoadBMP(std::filesystem::temp_directory_path(), 1).has_value());
  EXPECT_FALSE(m_Console.Text().empty());
}

TEST_F(BmpTest, FileOfAFewBytesIsRefusedByItsHeader) {
  EXPECT_FALSE(LoadFile({'B', 'M', 1}).has_value());
  EXPECT_EQ(m_Console.Text(), m_File + kHeaderRefused);
}

TEST_F(BmpTest, HeightOfZeroIsAnEmptyPicture) {
  const auto loaded = LoadFile(BmpHeader(7, 0));
  ASSERT_TRUE(loaded.has_value());
  EXPECT_TRUE(loaded->m_Picture.m_aPixels.empty());
  EXPECT_EQ(loaded->m_Picture.m_iWidth, 7);
  EXPECT_FALSE(loaded->m_bEndsEarly);
}

TEST_F(BmpTest, WidthOfZeroIsAnEmptyPictureHoweverHigh) {
  const auto loaded = LoadFile(BmpHeader(0, 0x7FFFFFFF));
  ASSERT_TRUE(loaded.has_value());
  EXPECT_TRUE(loaded->m_Picture.m_aPixels.empty());
}

TEST_F(BmpTest, SizesBeyondReasonAreRefusedBeforeAnythingIsAllocated) {
  for (const auto& [width, height] : {std::pair{0x7FFFFFFF, 0x7FFFFFFF}, {60000, 60000}, {0x7FFFFFFF, 1}}) {
    EXPECT_FALSE(LoadFile(BmpHeader(width, height)).has_value()) << width << " x " << height;
    EXPECT_EQ(m_Console.Text(), m_File + kFormatRefused);
  }
}

TEST_F(BmpTest, HeaderThatAsksForFarMoreThanTheFileHoldsIsRefused) {
  // A little more than 64 MiB: refused below a sixteenth of that, read as far as it goes from there on.
  constexpr int kSide = 4730;
  EXPECT_FALSE(LoadFile(BmpHeader(kSide, kSide)).has_value());
  EXPECT_EQ(m_Console.Text(), m_File + kFormatRefused);
  CBytes bytes = BmpHeader(kSide, kSide);
  bytes.resize((std::size_t{3} * kSide * kSide) / 16);
  EXPECT_TRUE(LoadFile(bytes).has_value());
  bytes.resize(bytes.size() - 1);
  EXPECT_FALSE(LoadFile(bytes).has_value());
}

TEST_F(BmpTest, HeaderThatAsksForLessIsReadHoweverShortTheFile) {
  EXPECT_TRUE(LoadFile(BmpHeader(4729, 4729)).has_value());
}

TEST_F(BmpTest, ShortFileRepeatsTheLastRowBuffer) {
  const CPicture whole = SomePicture(4, 4);
  CBytes bytes = BmpFile(whole);
  bytes.resize(54 + 12 + 6);
  const auto loaded = LoadFile(bytes);
  ASSERT_TRUE(loaded.has_value());
  EXPECT_TRUE(loaded->m_bEndsEarly);
  CBytes expected(whole.m_aPixels.begin(), whole.m_aPixels.begin() + 12);
  CBytes mixed(whole.m_aPixels.begin() + 12, whole.m_aPixels.begin() + 18);
  mixed.insert(mixed.end(), whole.m_aPixels.begin() + 6, whole.m_aPixels.begin() + 12);
  for (int row = 1; row < 4; ++row) expected.insert(expected.end(), mixed.begin(), mixed.end());
  EXPECT_EQ(loaded->m_Picture.m_aPixels, expected);
}

TEST_F(BmpTest, FileWithoutAnyRowIsBlack) {
  const auto loaded = LoadFile(BmpHeader(3, 2));
  ASSERT_TRUE(loaded.has_value());
  EXPECT_TRUE(loaded->m_bEndsEarly);
  EXPECT_EQ(loaded->m_Picture.m_aPixels, CBytes(18));
}

TEST_F(BmpTest, SavingReplacesTheFileAndLeavesNothingBeside) {
  WriteBytes(m_File, CBytes(100000, 1));
  ASSERT_TRUE(Save(SomePicture(2, 2)));
  EXPECT_EQ(ReadBytes(m_File).size(), 54U + 16U);
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{"picture.bmp"});
}

TEST_F(BmpTest, HeightBelowOneWritesTheHeaderAlone) {
  for (const int height : {0, -1}) {
    ASSERT_TRUE(Global::SaveBMP(m_File, {}, 3, height, 1));
    EXPECT_EQ(ReadBytes(m_File).size(), 54U);
  }
}

TEST_F(BmpTest, SavingWhereNoFileCanBeSaysSo) {
  for (const std::string& file : {m_Scratch.File("none/picture.bmp"), m_Scratch.File(".")}) {
    m_Console.Take();
    EXPECT_FALSE(Global::SaveBMP(file, {}, 0, 0, 1));
    EXPECT_EQ(m_Console.Text(), "fail to open file " + file + "\n");
  }
}

TEST_F(BmpTest, FullDiskIsReported) {
  const CFullDisk full(1000);
  EXPECT_FALSE(Save(SomePicture(50, 50)));
  EXPECT_EQ(m_Console.Text(), "Error Global::SaveBMP\t\tfail to write file " + m_File + "\n");
  EXPECT_TRUE(m_Scratch.Names().empty());
}

TEST_F(BmpTest, DeviceIsNoPlaceForAPicture) {
  EXPECT_FALSE(Global::SaveBMP("/dev/full", {}, 0, 0, 1));
  EXPECT_EQ(m_Console.Text(), "fail to open file /dev/full\n");
}

TEST_F(BmpTest, PipeIsNoPictureAndNotWaitedFor) {
  ASSERT_EQ(mkfifo(m_File.c_str(), 0600), 0);
  EXPECT_FALSE(Global::LoadBMP(m_File, 1).has_value());
  EXPECT_EQ(m_Console.Take(), "fail to open file " + m_File + "\n");
  EXPECT_FALSE(Global::LoadBMP("/dev/zero", 1).has_value());
  EXPECT_FALSE(Save(SomePicture(1, 1)));
}

TEST_F(BmpTest, SavingThroughALinkKeepsTheLink) {
  WriteBytes(m_File, {1});
  std::filesystem::create_symlink(m_File, m_Scratch.File("link.bmp"));
  ASSERT_TRUE(Global::SaveBMP(m_Scratch.File("link.bmp"), {}, 1, 0, 1));
  EXPECT_TRUE(std::filesystem::is_symlink(m_Scratch.File("link.bmp")));
  EXPECT_EQ(ReadBytes(m_File).size(), 54U);
}

TEST_F(BmpTest, SavingKeepsThePermissions) {
  WriteBytes(m_File, {1});
  const auto wanted = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  std::filesystem::permissions(m_File, wanted);
  ASSERT_TRUE(Save(SomePicture(1, 1)));
  EXPECT_EQ(std::filesystem::status(m_File).permissions(), wanted);
}
