// Files that are cut, that lie or that ask for too much.

#include <fstream>
#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "support/ConsoleCapture.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

/// Whether what there is of a cut file can be shown.
enum class Cut { Shows, ShowsNothing };

struct CCutCase {
  const char* m_pName;
  std::function<std::string(const CPicture&)> m_Encode;
  Cut m_Cut;
};

std::ostream& operator<<(std::ostream& out, const CCutCase& kind) { return out << kind.m_pName; }

// Nothing in it is alike, so that its bytes are spread evenly over the file.
CPicture Noise(int width, int height) {
  unsigned seed = 7;
  return PictureOf(width, height, [&seed](int, int) {
    CRgb pixel{};
    for (std::uint8_t& channel : pixel)
      channel = static_cast<std::uint8_t>((seed = seed * 1664525U + 1013904223U) >> 24);
    return pixel;
  });
}

class CutPictureTest : public ::testing::TestWithParam<CCutCase> {};

// A number of several bytes, the highest first, in place of that at an offset.
void PutBigEndian(std::string& bytes, std::size_t offset, std::size_t width, unsigned value) {
  for (std::size_t k = 0; k < width; ++k) bytes[offset + k] = static_cast<char>(value >> (8 * (width - 1 - k)));
}

std::string JpegThatSays(unsigned width, unsigned height, bool progressive) {
  CJpegSettings settings;
  settings.m_bProgressive = progressive;
  std::string bytes = TestJpeg(Squares(), settings);
  const std::size_t frame = bytes.find(progressive ? "\xFF\xC2" : "\xFF\xC0");
  PutBigEndian(bytes, frame + 5, 2, height);
  PutBigEndian(bytes, frame + 7, 2, width);
  return bytes;
}

unsigned Checksum(const std::string& bytes) {
  unsigned sum = 0xFFFFFFFF;
  for (const char byte : bytes) {
    sum ^= static_cast<unsigned char>(byte);
    for (int k = 0; k < 8; ++k) sum = sum >> 1 ^ (sum % 2 == 0 ? 0 : 0xEDB88320);
  }
  return ~sum;
}

std::string PngThatSays(unsigned width, unsigned height, bool interlaced) {
  CPngSettings settings;
  settings.m_bInterlaced = interlaced;
  std::string bytes = TestPng(Squares(), settings);
  PutBigEndian(bytes, 16, 4, width);
  PutBigEndian(bytes, 20, 4, height);
  PutBigEndian(bytes, 29, 4, Checksum(bytes.substr(12, 17)));
  return bytes;
}

// The entries of its directory, with a value of two bytes.
std::string TiffThatSays(unsigned width, unsigned height, CTiffSettings settings) {
  std::string bytes = TestTiff(Squares(), settings);
  for (const auto& [tag, value] : {std::pair('\0', width), std::pair('\1', height)}) {
    std::size_t entry = bytes.find(std::string{tag, '\1', '\3', '\0', '\1', '\0', '\0', '\0'});
    bytes[entry + 8] = static_cast<char>(value);
    bytes[entry + 9] = static_cast<char>(value >> 8);
  }
  return bytes;
}

double Status(const std::string& wanted) {
  std::ifstream status("/proc/self/status");
  std::string name;
  double kibibytes = 0;
  while (status >> name) {
    if (name == wanted && status >> kibibytes) break;
  }
  return kibibytes / 1024;
}

// Mebibytes that reading takes at its peak.
double PeakOfReading(const std::string& bytes) {
  std::ofstream("/proc/self/clear_refs") << 5;
  const double before = Status("VmRSS:");
  ReadPicture(bytes, "picture");
  return Status("VmHWM:") - before;
}

}  // namespace

TEST_P(CutPictureTest, IsShownAsFarAsItGoesOrRefusedWithTheReason) {
  const std::string whole = GetParam().m_Encode(Noise(64, 64));
  const ConsoleCapture console;
  for (const int percent : {1, 10, 30, 50, 70, 90, 99}) {
    const CReadPicture read =
        ReadPicture(whole.substr(0, whole.size() * static_cast<std::size_t>(percent) / 100), "cut");
    const testing::ScopedTrace trace(__FILE__, __LINE__, percent);
    if (percent >= 50 && GetParam().m_Cut == Cut::Shows) {
      EXPECT_TRUE(read) << read.m_Reason;
      EXPECT_TRUE(read.m_bEndsEarly);
      EXPECT_EQ(read.m_Notice, "ends early: it is shown as far as it goes");
      EXPECT_EQ(read.m_Picture.m_aPixels.size(), 3U * 64 * 64);
    } else {
      EXPECT_TRUE(!read.m_Notice.empty() ||
                  read.m_Reason.find(" ends before anything of it can be shown") != std::string::npos)
          << read.m_Reason << read.m_Notice;
    }
  }
  EXPECT_EQ(console.Text(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, CutPictureTest,
    ::testing::Values(CCutCase{"JPEG", [](const CPicture& picture) { return TestJpeg(picture, {}); }, Cut::Shows},
                      CCutCase{"progressive JPEG",
                               [](const CPicture& picture) {
                                 CJpegSettings settings;
                                 settings.m_bProgressive = true;
                                 return TestJpeg(picture, settings);
                               },
                               Cut::Shows},
                      CCutCase{"PNG", [](const CPicture& picture) { return TestPng(picture, {}); }, Cut::Shows},
                      CCutCase{"interlaced PNG",
                               [](const CPicture& picture) {
                                 CPngSettings settings;
                                 settings.m_bInterlaced = true;
                                 return TestPng(picture, settings);
                               },
                               Cut::Shows},
                      CCutCase{"WebP", [](const CPicture& picture) { return TestWebp(picture, {}); }, Cut::Shows},
                      CCutCase{"lossy WebP",
                               [](const CPicture& picture) {
                                 CWebpSettings settings;
                                 settings.m_bLossless = false;
                                 return TestWebp(picture, settings);
                               },
                               Cut::Shows},
                      // What says where its strips are stands at the end.
                      CCutCase{"TIFF", [](const CPicture& picture) { return TestTiff(picture, {}); },
                               Cut::ShowsNothing}));

#ifdef RELIEVO_HEIF
INSTANTIATE_TEST_SUITE_P(Heif, CutPictureTest,
                         ::testing::Values(CCutCase{"HEIC",
                                                    [](const CPicture& picture) { return TestHeif(picture, {}); },
                                                    Cut::ShowsNothing},
                                           CCutCase{"AVIF",
                                                    [](const CPicture& picture) {
                                                      CHeifSettings settings;
                                                      settings.m_bAvif = true;
                                                      return TestHeif(picture, settings);
                                                    },
                                                    Cut::ShowsNothing}));
#endif

TEST(CutPicture, HalfAJpegIsItsUpperHalf) {
  const CPicture source = Squares(64, 256);
  const std::string whole = TestJpeg(source, {});
  const CReadPicture read = ReadPicture(whole.substr(0, whole.size() * 3 / 4), "cut");
  ASSERT_TRUE(read.m_bEndsEarly);
  for (int x = 4; x < 64; x += 8) EXPECT_NEAR(PixelAt(read.m_Picture, x, 4)[0], PixelAt(source, x, 4)[0], 6);
}

TEST(CutPicture, TheMissingPartOfAPngIsWhite) {
  const CPicture source = Noise(64, 64);
  const std::string whole = TestPng(source, {});
  const CReadPicture read = ReadPicture(whole.substr(0, whole.size() / 2), "cut");
  ASSERT_TRUE(read.m_bEndsEarly);
  EXPECT_EQ(PixelAt(read.m_Picture, 0, 0), PixelAt(source, 0, 0));
  EXPECT_EQ(PixelAt(read.m_Picture, 0, 63), (CRgb{255, 255, 255}));
}

TEST(DamagedPicture, IsShownWithANoticeOrRefused) {
  std::string bytes = TestPng(Noise(64, 64), {});
  bytes[bytes.size() / 2] = static_cast<char>(~bytes[bytes.size() / 2]);
  const CReadPicture png = ReadPicture(bytes, "damaged");
  EXPECT_TRUE(png);
  EXPECT_EQ(png.m_Notice, "is damaged: it is shown as far as it can be read");
  EXPECT_EQ(ReadPicture("\xFF\xD8\xFF\xE0 and nothing of the kind", "damaged").m_Trouble, PictureTrouble::CutShort);
  bytes = TestJpeg(Squares(), {});
  bytes[bytes.find("\xFF\xC0") + 4] = 12;
  const CReadPicture jpeg = ReadPicture(bytes, "damaged");
  EXPECT_EQ(jpeg.m_Trouble, PictureTrouble::Damaged);
  EXPECT_EQ(jpeg.m_Reason, "this JPEG is damaged, or of a kind that cannot be read");
}

TEST(TooLargePicture, IsRefusedWithItsNumbers) {
  const CReadPicture many = ReadPicture(JpegThatSays(40000, 30000, false), "large");
  EXPECT_EQ(many.m_Trouble, PictureTrouble::TooLarge);
  EXPECT_EQ(many.m_Reason, "its 40000 x 30000 pixels would take 3.35 GiB, and 1 GiB is the most");
  const CReadPicture wide = ReadPicture(PngThatSays(70000, 10, false), "large");
  EXPECT_EQ(wide.m_Trouble, PictureTrouble::TooLarge);
  EXPECT_EQ(wide.m_Reason, "its 70000 x 10 pixels are too many: a side may have 65535");
  EXPECT_EQ(ReadPicture(PngThatSays(10, 0x7FFFFFFF, false), "large").m_Trouble, PictureTrouble::TooLarge);
  EXPECT_EQ(ReadPicture(TiffThatSays(60000, 60000, {}), "large").m_Trouble, PictureTrouble::TooLarge);
}

// The whole of them would be several hundred mebibytes.
TEST(LyingHeader, TakesNoMemory) {
  constexpr unsigned kWidth = 20000;
  constexpr unsigned kHeight = 15000;
#ifdef __SANITIZE_ADDRESS__
  // The sanitizer writes a byte for every eight that are set aside, used or not.
  constexpr double kLittle = 48 + 3.0 * kWidth * kHeight / 8 / (1 << 20);
#else
  constexpr double kLittle = 48;
#endif
  for (const bool second : {false, true}) {
    EXPECT_LT(PeakOfReading(JpegThatSays(kWidth, kHeight, second)), kLittle) << "JPEG " << second;
    EXPECT_LT(PeakOfReading(PngThatSays(kWidth, kHeight, second)), kLittle) << "PNG " << second;
    CTiffSettings settings;
    settings.m_iCompression = second ? 8 : 1;
    EXPECT_LT(PeakOfReading(TiffThatSays(kWidth, kHeight, settings)), kLittle) << "TIFF " << second;
    settings.m_bTiled = true;
    EXPECT_LT(PeakOfReading(TiffThatSays(kWidth, kHeight, settings)), kLittle) << "TIFF in tiles " << second;
  }
  // A remark of 1 GiB in a file of some hundred bytes, between header and pixels.
  std::string remark = TestPng(Squares(), {});
  remark.insert(33, std::string("\x3F\0\0\x0AtEXtscale", 13));
  EXPECT_LT(PeakOfReading(remark), kLittle) << "PNG with a remark";
  std::string webp = TestWebp(Squares(), {});
  // 14 bits each for width and height of a lossless picture, without 1.
  for (std::size_t k = webp.find("VP8L") + 9; k < webp.find("VP8L") + 12; ++k) webp[k] = '\xFF';
  EXPECT_LT(PeakOfReading(webp), 2 * kLittle);
}
