// The photograph of a project: its own bytes, whatever format they are in.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "projects/CZipReader.h"
#include "projects/ProjectFile.h"
#include "projects/ProjectPicture.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"
#include "support/GridBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

class ProjectPhotographTest : public ::testing::Test {
 protected:
  // Saves a project with the photograph in a file, which then goes, and opens it again.
  CProjectPicture SavedAndOpened(const std::string& bytes) {
    WriteText(m_Photograph, bytes);
    CProject project;
    project.m_Model = StateOf(m_Test.m_Grid);
    project.m_Heights = SolvedHeights(m_Test.m_Grid);
    m_Shown = ReadPicture(m_Photograph).m_Picture;
    project.m_Picture = WithBytes({m_Photograph, {}, nullptr}, m_Shown);
    std::filesystem::remove(m_Photograph);
    EXPECT_TRUE(SaveProject(project, m_Project));
    const CReadProject read = ReadProject(m_Project);
    EXPECT_EQ(read.m_Trouble, "");
    return read.m_Project ? read.m_Project->m_Picture : CProjectPicture{};
  }
  void ExpectKept(const std::string& bytes, const std::string& member) {
    const CProjectPicture back = SavedAndOpened(bytes);
    ASSERT_NE(back.m_pBytes, nullptr);
    EXPECT_EQ(*back.m_pBytes, bytes);
    EXPECT_TRUE(CZipReader(m_Project).Has(member)) << member;
    EXPECT_EQ(PixelsOf(back).m_Picture.m_aPixels, m_Shown.m_aPixels);
  }

  ConsoleCapture m_Console;
  CTemporaryDirectory m_Scratch;
  CTestGrid m_Test{4, 3};
  CPicture m_Shown;
  std::string m_Photograph = m_Scratch.File("photo.jpg");
  std::string m_Project = m_Scratch.File("cup.relievo");
};

}  // namespace

TEST_F(ProjectPhotographTest, KeepsItsBytesUnderANameThatSuitsThem) {
  CJpegSettings portrait;
  portrait.m_iOrientation = 6;
  ExpectKept(TestJpeg(Squares(), portrait), "photograph.jpg");
  EXPECT_EQ(m_Shown.m_iWidth, Squares().m_iHeight);
  ExpectKept(TestPng(Squares(), {}), "photograph.png");
  ExpectKept(TestTiff(Squares(), {}), "photograph.tif");
  ExpectKept(TestWebp(Squares(), {}), "photograph.webp");
  const CBytes bitmap = BmpFile(Squares());
  ExpectKept({bitmap.begin(), bitmap.end()}, "photograph.bmp");
#ifdef RELIEVO_HEIF
  ExpectKept(TestHeif(Squares(), {}), "photograph.heic");
#endif
}

TEST_F(ProjectPhotographTest, OneThatEndsEarlyComesBackAsItWasShown) {
  const std::string whole = TestJpeg(Squares(64, 256), {});
  ExpectKept(whole.substr(0, whole.size() * 2 / 3), "photograph.jpg");
}

// Another picture under its name is not what is on show.
TEST_F(ProjectPhotographTest, IsWrittenAsPngWhereItsFileHasChanged) {
  m_Shown = Squares();
  WriteText(m_Photograph, TestJpeg(MarkedCorners(), {}));
  const CProjectPicture kept = WithBytes({m_Photograph, {}, nullptr}, m_Shown);
  EXPECT_STREQ(SuffixOfPicture(*kept.m_pBytes), ".png");
  EXPECT_EQ(PixelsOf(kept).m_Picture.m_aPixels, m_Shown.m_aPixels);
}
