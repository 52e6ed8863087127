// What a user is told of a file that is no picture, or not all of one.

#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "codecs/PictureFormats.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"

namespace {

class RefusedPictureTest : public ::testing::Test {
 protected:
  std::string WhyNot(std::string_view text) { return WhyNot(CBytes(text.begin(), text.end())); }
  std::string WhyNot(const CBytes& bytes) {
    WriteBytes(m_File, bytes);
    return WhyNot();
  }
  // The contents of a file and the file are told alike.
  std::string WhyNot() {
    const CReadPicture read = ReadPicture(m_File);
    EXPECT_FALSE(read);
    EXPECT_TRUE(read.m_Picture.m_aPixels.empty());
    const CBytes bytes = ReadBytes(m_File);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    EXPECT_EQ(ReadPicture(text, m_File).m_Reason, read.m_Reason);
    return read.m_Reason;
  }

  CTemporaryDirectory m_Scratch;
  ConsoleCapture m_Console;
  std::string m_File = m_Scratch.File("picture.bmp");
  std::string m_Reads = "; this build reads " + PictureFormatNames();
};

}  // namespace

TEST_F(RefusedPictureTest, SaysWhatItIsAndWhatIsRead) {
  EXPECT_EQ(WhyNot("GIF89a"), "this is a GIF" + m_Reads);
  EXPECT_EQ(WhyNot(""), "this is an empty file" + m_Reads);
  EXPECT_EQ(WhyNot("rubbish"), "this is no picture that is known here" + m_Reads);
  EXPECT_EQ(m_Reads.find("; this build reads BMP, JPEG"), 0U);
}

TEST_F(RefusedPictureTest, NamesTheDetailOfABitmapWhereTheRestIsRight) {
  const std::string others = m_Reads.substr(m_Reads.find(','));
  EXPECT_EQ(WhyNot(BmpHeader(3, -2)),
            "this is a BMP with its top row first; this build reads uncompressed 24-bit BMP with its bottom row first" +
                others);
  CBytes bytes = BmpHeader(3, 2);
  PutBytes(bytes, 14, 4, 124);
  EXPECT_EQ(
      WhyNot(bytes),
      "this is a BMP with a header of version 5; this build reads uncompressed 24-bit BMP with a header of version "
      "3" +
          others);
}

TEST_F(RefusedPictureTest, WhatIsNoOrdinaryFileIsNotOpened) {
  EXPECT_EQ(ReadPicture(m_File).m_Reason, "there is no such file");
  EXPECT_EQ(ReadPicture(m_File).m_Trouble, PictureTrouble::NoFile);
  EXPECT_EQ(ReadPicture(m_File + "/below").m_Reason, "there is no such file");
  const CReadPicture folder = ReadPicture(m_Scratch.Path().string());
  EXPECT_EQ(folder.m_Reason, "this is a folder" + m_Reads);
  EXPECT_EQ(folder.m_Trouble, PictureTrouble::Folder);
  ASSERT_EQ(mkfifo(m_File.c_str(), 0600), 0);
  for (const std::string& file : {m_File, std::string("/dev/zero")}) {
    EXPECT_EQ(ReadPicture(file).m_Reason, "this is no ordinary file" + m_Reads);
    EXPECT_EQ(ReadPicture(file).m_Trouble, PictureTrouble::NotOrdinary);
  }
}

// The lines of Global::LoadBMP, and none of anybody else.
TEST_F(RefusedPictureTest, OnlyTheReaderOfBitmapsWritesLines) {
  ReadPicture(m_File);
  EXPECT_EQ(m_Console.Take(), "fail to open file " + m_File + '\n');
  WriteBytes(m_File, BmpHeader(3, -2));
  ReadPicture(m_File);
  EXPECT_EQ(m_Console.Take(), m_File + " format is not 24bit uncompressed bitmap with orig at left-bottom corner!\n");
  WriteBytes(m_File, {0xFF, 0xD8, 0xFF, 0xE0});
  EXPECT_EQ(ReadPicture(m_File).m_Trouble, PictureTrouble::CutShort);
  EXPECT_EQ(m_Console.Take(), "");
}

TEST_F(RefusedPictureTest, ABitmapThatEndsEarlyIsReadWithANotice) {
  WriteBytes(m_File, BmpHeader(4, 4));
  const CReadPicture read = ReadPicture(m_File);
  EXPECT_TRUE(read);
  EXPECT_TRUE(read.m_bEndsEarly);
  EXPECT_EQ(read.m_Notice, "ends early");
  EXPECT_EQ(read.m_Picture.m_iWidth, 4);
}
