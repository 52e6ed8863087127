#include <string_view>

#include <gtest/gtest.h>

#include "io/FileKind.h"
#include "support/BmpBuilders.h"

namespace {

using namespace std::string_view_literals;

std::string KindOf(std::string_view text) { return KindOfBytes(CBytes(text.begin(), text.end())); }

struct CKindCase {
  std::string_view m_Bytes;
  const char* m_Kind;
};

class FileKindTest : public ::testing::TestWithParam<CKindCase> {};

struct CBmpCase {
  std::size_t m_uOffset;
  std::size_t m_uWidth;
  std::int64_t m_iValue;
  const char* m_Kind;
};

class BmpKindTest : public ::testing::TestWithParam<CBmpCase> {};

}  // namespace

TEST_P(FileKindTest, IsKnownByItsFirstBytes) { EXPECT_EQ(KindOf(GetParam().m_Bytes), GetParam().m_Kind); }

INSTANTIATE_TEST_SUITE_P(
    Kinds, FileKindTest,
    ::testing::Values(CKindCase{""sv, "an empty file"}, CKindCase{"\xFF\xD8\xFF\xE0\0\x10JFIF"sv, "a JPEG"},
                      CKindCase{"\xFF\xD8\xFF\xE1"sv, "a JPEG"}, CKindCase{"\xFF\xD8\xFF\xDB"sv, "a JPEG"},
                      CKindCase{"\x89PNG\r\n\x1A\n\0\0\0\rIHDR"sv, "a PNG"}, CKindCase{"GIF87a"sv, "a GIF"},
                      CKindCase{"GIF89a\1\0"sv, "a GIF"}, CKindCase{"RIFF\x24\0\0\0WEBPVP8 "sv, "a WebP"},
                      CKindCase{"II*\0\x8\0\0\0"sv, "a TIFF"}, CKindCase{"MM\0*\0\0\0\x8"sv, "a TIFF"},
                      CKindCase{"\0\0\0\x18"
                                "ftypheic"sv,
                                "a HEIC"},
                      CKindCase{"\0\0\0\x1C"
                                "ftypmif1"sv,
                                "a HEIC"},
                      CKindCase{"\0\0\0\x1C"
                                "ftypavif"sv,
                                "an AVIF"},
                      CKindCase{"%PDF-1.7"sv, "a PDF"}, CKindCase{"#VRML V2.0 utf8\n"sv, "a VRML scene"},
                      CKindCase{"0\t0\t100\t100\n0\t2\n"sv, "a grid file"},
                      CKindCase{"-1.5\t2e+06\t9\t30\r\n0\t0\r\n"sv, "a grid file"}));

// What only begins alike.
INSTANTIATE_TEST_SUITE_P(Others, FileKindTest,
                         ::testing::Values(CKindCase{"\xFF\xD8"sv, ""}, CKindCase{"\x89PNX"sv, ""},
                                           CKindCase{"GIF88a"sv, ""}, CKindCase{"RIFF\x24\0\0\0WAVEfmt "sv, ""},
                                           CKindCase{"\0\0\0\x18"
                                                     "ftypmp42"sv,
                                                     ""},
                                           CKindCase{"II"sv, ""}, CKindCase{"0 0 100 100\nabc"sv, ""},
                                           CKindCase{"0 0 100\n0 0\n"sv, ""},
                                           CKindCase{"1 2 3 4 5 6\n1 2 3 4 5 6\n"sv, ""}, CKindCase{"hello"sv, ""},
                                           CKindCase{"BM"sv, "a BMP cut short"}));

TEST_P(BmpKindTest, IsKnownByItsHeader) {
  const auto [offset, width, value, kind] = GetParam();
  CBytes bytes = BmpHeader(3, 2);
  PutBytes(bytes, offset, width, value);
  EXPECT_EQ(KindOfBytes(bytes), kind);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, BmpKindTest,
    ::testing::Values(
        CBmpCase{14, 4, 12, "a BMP of an old kind"}, CBmpCase{14, 4, 108, "a BMP with a header of version 4"},
        CBmpCase{14, 4, 124, "a BMP with a header of version 5"}, CBmpCase{14, 4, 64, "a BMP with a longer header"},
        CBmpCase{10, 4, 58, "a BMP with a longer header"}, CBmpCase{18, 4, -3, "a BMP of an impossible size"},
        CBmpCase{22, 4, -2, "a BMP with its top row first"}, CBmpCase{26, 2, 2, "a BMP with a strange header"},
        CBmpCase{28, 2, 1, "a BMP with 1 bit a pixel"}, CBmpCase{28, 2, 8, "a BMP with 8 bits a pixel"},
        CBmpCase{28, 2, 32, "a BMP with 32 bits a pixel"}, CBmpCase{30, 4, 1, "a compressed BMP"}));
