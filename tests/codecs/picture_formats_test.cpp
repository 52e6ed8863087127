// The table of what pictures are read from: what every row must have, and what no two may share.

#include <fstream>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "support/CTemporaryDirectory.h"

TEST(PictureFormatsTest, WhatIsNoPictureIsRefused) {
  const CTemporaryDirectory directory;
  const std::string file = directory.Path() / "text.bmp";
  std::ofstream(file) << "no picture";
  EXPECT_FALSE(ReadPicture(file));
}

TEST(PictureFormatsTest, TheProgramsOwnIsTheFirstAndEveryRowIsComplete) {
  EXPECT_STREQ(PictureFormats().front().m_apSuffixes.front(), ".bmp");
  std::set<std::string_view> suffixes;
  for (const CPictureFormat& format : PictureFormats()) {
    EXPECT_STRNE(format.m_pName, "");
    EXPECT_NE(PictureFormatNames().find(format.m_pName), std::string::npos);
    for (const std::string_view suffix : format.m_apSuffixes)
      EXPECT_TRUE(suffix[0] == '.' && suffixes.insert(suffix).second);
  }
}
