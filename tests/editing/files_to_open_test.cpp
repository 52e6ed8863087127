#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/PngBytes.h"
#include "editing/FilesToOpen.h"
#include "io/FileUri.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

using Names = std::vector<std::string>;

}  // namespace

TEST(PathsInTest, EachLineIsTheUriOfAFile) {
  EXPECT_EQ(PathsIn("file:///a%20b.grid\r\nfile://localhost/%C3%A4.bmp\r\n"), (Names{"/a b.grid", "/\xc3\xa4.bmp"}));
  EXPECT_EQ(PathsIn("file:///a\nfile:///b"), (Names{"/a", "/b"})) << "other ends of lines, and none";
}

TEST(PathsInTest, EveryNameComesThrough) {
  const std::string strange = "/a&b@c/\n\t#100% \xc3\xa4\xff.grid";
  EXPECT_EQ(PathsIn(UriOf(strange) + "\r\n"), Names{strange});
}

TEST(PathsInTest, WhatNamesNoFileHereIsLeftOut) {
  EXPECT_EQ(PathsIn("# a comment\r\nhttp://x/a.grid\r\n\r\nfile://server/a\r\nsome text\r\nfile:///b%\r\n"), Names());
  EXPECT_EQ(PathsIn(""), Names());
  EXPECT_EQ(PathsIn("\n\r\n"), Names());
}

TEST(PathsInTest, APathIsTakenAsItStands) { EXPECT_EQ(PathsIn("/a%20b.grid\n"), Names{"/a%20b.grid"}); }

class FilesToOpenTest : public ::testing::Test {
 protected:
  CWorkFiles Open(const Names& names) const { return FilesToOpen(names); }

  CTemporaryDirectory m_Scratch;
};

TEST_F(FilesToOpenTest, ModelAndPictureComeInAnyOrder) {
  const CWorkFiles both{"/a.grid", "/a.bmp"};
  EXPECT_EQ(Open({"/a.grid", "/a.bmp"}), both);
  EXPECT_EQ(Open({"/a.bmp", "/a.grid"}), both);
  EXPECT_EQ(Open({"/a.bmp"}), (CWorkFiles{"", "/a.bmp"}));
  EXPECT_EQ(Open({}), CWorkFiles());
  EXPECT_EQ(Open({""}), CWorkFiles());
}

TEST_F(FilesToOpenTest, OfSeveralTheLastOfEachKindCounts) {
  EXPECT_EQ(Open({"/a.grid", "/a.bmp", "/b.bmp", "/b.grid", "/c.bmp"}), (CWorkFiles{"/b.grid", "/c.bmp"}));
}

TEST_F(FilesToOpenTest, AModelIsKnownByItsContentsToo) {
  const CFullModel model;
  WriteText(m_Scratch.File("cup"), GridText(model.m_Grid));
  WriteBytes(m_Scratch.File("photo"), BmpFile(SomePicture(2, 2)));
  EXPECT_EQ(Open({m_Scratch.File("photo"), m_Scratch.File("cup")}),
            (CWorkFiles{m_Scratch.File("cup"), m_Scratch.File("photo")}));
}

TEST_F(FilesToOpenTest, APictureIsKnownByItsContentsUnderAnyName) {
  const std::string png = PngOf(SomePicture(2, 2));
  const CBytes bitmap = BmpFile(SomePicture(2, 2));
  for (const std::string& name : {m_Scratch.File("photo.grid"), m_Scratch.File("photo.relievo")}) {
    for (const std::string& contents :
         {png, std::string("\xFF\xD8\xFF\xE0"), std::string(bitmap.begin(), bitmap.end())}) {
      WriteText(name, contents);
      EXPECT_EQ(Open({name}), (CWorkFiles{"", name}));
    }
    WriteText(name, "nothing that is known");
    EXPECT_EQ(Open({name}), (CWorkFiles{name, ""}));
  }
}

TEST_F(FilesToOpenTest, AProjectIsAModel) {
  EXPECT_EQ(Open({"/a.bmp", "/a.grid", "/a.relievo"}), (CWorkFiles{"/a.relievo", "/a.bmp"}));
}

TEST_F(FilesToOpenTest, RelativeNamesBecomeAbsolute) {
  const std::string here = std::filesystem::current_path();
  EXPECT_EQ(Open({"a.grid", "../b.bmp"}),
            (CWorkFiles{here + "/a.grid", std::filesystem::path(here).parent_path() / "b.bmp"}));
}
