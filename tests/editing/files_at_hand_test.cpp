#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editing/CFilesAtHand.h"
#include "io/CSafeFile.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

using Works = std::vector<CWorkFiles>;

class FilesAtHandTest : public ::testing::Test {
 protected:
  FilesAtHandTest() { m_Files.KeepIn(m_Scratch.Path()); }

  Works Recent() { return m_Files.Recent().List(); }
  /// Writes as the program does.
  bool Write(const std::string& file, const std::string& text) {
    return m_Files.Write(file, [&] {
      CSafeFile safe(file);
      if (!safe.IsOpen()) return false;
      safe.Text() << text;
      return safe.Commit();
    });
  }

  CTemporaryDirectory m_Scratch;
  CFilesAtHand m_Files;
};

}  // namespace

// What was used together is one entry.

TEST_F(FilesAtHandTest, PictureAndModelOpenedOneAfterTheOtherBelongTogether) {
  m_Files.ModelOpened({"/a.grid"});
  m_Files.PictureOpened("/a.bmp");
  EXPECT_EQ(Recent(), (Works{{"/a.grid", "/a.bmp"}}));
}

TEST_F(FilesAtHandTest, InTheOtherOrderToo) {
  m_Files.PictureOpened("/a.bmp");
  EXPECT_EQ(Recent(), (Works{{"", "/a.bmp"}}));
  m_Files.ModelOpened({"/a.grid"});
  EXPECT_EQ(Recent(), (Works{{"/a.grid", "/a.bmp"}}));
}

TEST_F(FilesAtHandTest, OnePairAfterTheOtherStaysWhatItIs) {
  for (const char* order : {"models first", "pictures first"}) {
    CFilesAtHand files;
    for (const std::string name : {"/a", "/b"}) {
      const bool modelFirst = std::string_view(order) == "models first";
      if (modelFirst) files.ModelOpened({name + ".grid"});
      files.PictureOpened(name + ".bmp");
      if (!modelFirst) files.ModelOpened({name + ".grid"});
    }
    EXPECT_EQ(files.Recent().List(), (Works{{"/b.grid", "/b.bmp"}, {"/a.grid", "/a.bmp"}})) << order;
  }
}

TEST_F(FilesAtHandTest, AModelKeepsThePictureThatItIsKnownWith) {
  m_Files.ModelOpened({"/a.grid"});
  m_Files.PictureOpened("/a.bmp");
  m_Files.ModelOpened({"/b.grid"});
  m_Files.ModelOpened({"/a.grid"});
  EXPECT_EQ(Recent(), (Works{{"/a.grid", "/a.bmp"}, {"/b.grid", ""}}));
}

TEST_F(FilesAtHandTest, APictureOnShowStaysBehindWhenAPairIsOpened) {
  m_Files.PictureOpened("/loose.bmp");
  m_Files.LeavePicture();
  m_Files.ModelOpened({"/a.grid"});
  m_Files.PictureOpened("/a.bmp");
  EXPECT_EQ(Recent(), (Works{{"/a.grid", "/a.bmp"}, {"", "/loose.bmp"}}));
}

TEST_F(FilesAtHandTest, SavingJoinsTheModelToWhatIsOnShow) {
  m_Files.PictureOpened("/a.bmp");
  m_Files.ModelSaved({"/a.grid"});
  m_Files.PictureOpened("/b.bmp");
  EXPECT_EQ(Recent(), (Works{{"", "/b.bmp"}, {"/a.grid", "/a.bmp"}}));
  m_Files.ModelSaved({"/a.grid"});
  EXPECT_EQ(Recent(), (Works{{"/a.grid", "/b.bmp"}}));
}

TEST_F(FilesAtHandTest, AProjectIsOneEntryWithItsPicture) {
  m_Files.PictureOpened("/loose.bmp");
  m_Files.ModelOpened({.m_File = "/a.relievo", .m_bProject = true});
  m_Files.PictureCame("/a.bmp");
  EXPECT_EQ(Recent(), (Works{{"/a.relievo", ""}, {"", "/loose.bmp"}}));
  m_Files.PictureOpened("/b.bmp");
  m_Files.ModelSaved({.m_File = "/a.relievo", .m_bProject = true});
  EXPECT_EQ(Recent(), (Works{{"/a.relievo", ""}, {"", "/b.bmp"}, {"", "/loose.bmp"}}));
  m_Files.ModelSaved({.m_File = "/a.grid"});
  EXPECT_EQ(Recent().front(), (CWorkFiles{"/a.grid", "/b.bmp"}));
}

TEST_F(FilesAtHandTest, APictureThatCameWithAProjectIsNoOtherModels) {
  m_Files.ModelOpened({.m_File = "/a.relievo", .m_bProject = true});
  m_Files.PictureCame("/a.bmp");
  m_Files.ModelReplaced();
  EXPECT_EQ(m_Files.Proposal(".grid"), "/a.grid");
  m_Files.ModelOpened({.m_File = "/b.grid"});
  EXPECT_EQ(Recent(), (Works{{"/b.grid", ""}, {"/a.relievo", ""}}));
}

// Names.

TEST_F(FilesAtHandTest, TheModelHasTheNameOfItsLastFile) {
  EXPECT_EQ(m_Files.Model(), CModelName());
  m_Files.ModelOpened({"/a.grid", true});
  EXPECT_EQ(m_Files.Model(), (CModelName{"/a.grid", true}));
  m_Files.ModelSaved({"/b.grid", false});
  const CModelName before = m_Files.Model();
  EXPECT_EQ(before, (CModelName{"/b.grid", false}));
  m_Files.ModelReplaced();
  EXPECT_EQ(m_Files.Model(), CModelName());
  const Works recent = Recent();
  m_Files.SetModel(before);
  EXPECT_EQ(m_Files.Model(), before);
  EXPECT_EQ(Recent(), recent) << "an undone edit opens nothing";
}

TEST_F(FilesAtHandTest, SavingProposesTheModelOrElseANameBesideThePicture) {
  EXPECT_EQ(m_Files.Proposal(".grid"), "");
  m_Files.PictureOpened("/photos/cup.of.tea.bmp");
  EXPECT_EQ(m_Files.Proposal(".grid"), "/photos/cup.of.tea.grid");
  m_Files.ModelOpened({"/models/cup"});
  EXPECT_EQ(m_Files.Proposal(".grid"), "/models/cup") << "what was typed";
  m_Files.ModelOpened({"/models/cup.grid"});
  EXPECT_EQ(m_Files.Proposal(".grid"), "/models/cup.grid");
  EXPECT_EQ(m_Files.Proposal(".relievo"), "/models/cup.relievo");
  m_Files.ModelOpened({"/models/cup.relievo"});
  EXPECT_EQ(m_Files.Proposal(".grid"), "/models/cup.grid");
}

// Old files.

TEST_F(FilesAtHandTest, TheFirstSaveOverAStrangeFileKeepsIt) {
  const std::string file = m_Scratch.File("a.grid");
  WriteText(file, "theirs");
  WriteText(file + "~", "older");
  EXPECT_TRUE(Write(file, "one"));
  EXPECT_TRUE(Write(file, "two"));
  EXPECT_EQ(BytesOf(file), "two");
  EXPECT_EQ(BytesOf(file + "~"), "theirs");
}

TEST_F(FilesAtHandTest, WhatThisRunHasReadOrWrittenIsNotKept) {
  const std::string read = m_Scratch.File("read.grid");
  WriteText(read, "read");
  m_Files.ModelOpened({read});
  EXPECT_TRUE(Write(read, "new"));
  EXPECT_TRUE(Write(m_Scratch.File("written.grid"), "one"));
  EXPECT_TRUE(Write(m_Scratch.File("written.grid"), "two"));
  for (const char* name : {"read.grid~", "written.grid~"}) EXPECT_FALSE(std::filesystem::exists(m_Scratch.File(name)));
}

TEST_F(FilesAtHandTest, AFileIsKnownByAllOfItsNames) {
  const std::string file = m_Scratch.File("a.grid");
  WriteText(file, "read");
  std::filesystem::create_symlink("a.grid", m_Scratch.File("link"));
  m_Files.ModelOpened({m_Scratch.File("link")});
  EXPECT_TRUE(Write(m_Scratch.File("./a.grid"), "new"));
  EXPECT_FALSE(std::filesystem::exists(file + "~"));
}

TEST_F(FilesAtHandTest, OfFilesWrittenTogetherEachStrangeOneIsKept) {
  const std::vector<std::string> files{m_Scratch.File("a.obj"), m_Scratch.File("a.mtl"), m_Scratch.File("a.jpg")};
  for (const std::string& file : files) WriteText(file, "theirs");
  const auto put = [](const std::string& file) {
    CSafeFile safe(file);
    safe.Text() << "new";
    return safe.Commit();
  };
  EXPECT_TRUE(m_Files.Write(files, [&] { return put(files[0]) && put(files[1]); }));
  for (const std::size_t k : {0U, 1U}) {
    EXPECT_EQ(BytesOf(files[k]), "new");
    EXPECT_EQ(BytesOf(files[k] + "~"), "theirs");
  }
  EXPECT_EQ(BytesOf(files[2]), "theirs");
  EXPECT_FALSE(std::filesystem::exists(files[2] + "~"));
  EXPECT_TRUE(m_Files.Write(files, [&] { return put(files[0]) && put(files[2]); }));
  EXPECT_EQ(BytesOf(files[0] + "~"), "theirs") << "its second time";
  EXPECT_EQ(BytesOf(files[2] + "~"), "theirs") << "its first time";
}

TEST_F(FilesAtHandTest, AFileThatCouldNotBeWrittenStaysStrange) {
  const std::string file = m_Scratch.File("a.grid");
  WriteText(file, "theirs");
  EXPECT_FALSE(m_Files.Write(file, [] { return false; }));
  EXPECT_TRUE(Write(file, "new"));
  EXPECT_EQ(BytesOf(file + "~"), "theirs");
}
