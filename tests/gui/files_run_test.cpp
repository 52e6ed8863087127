// The files at hand, by real keys, arguments and drops on the running program.

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "io/FileUri.h"
#include "support/BmpBuilders.h"
#include "support/FileBuilders.h"
#include "support/gui/CDragSource.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

using Arguments = std::vector<std::string>;

constexpr const char* kChooser = "please input grid file name";
constexpr const char* kPictureLine = "CImageView::LoadImage\tNew texture generated. new_width : 4, new_height : 2";
// Hard to show, to keep and to hand over.
constexpr const char* kStrange = "a & @b 100% \xc3\xa4.grid";

// Programs that are started one after the other and share what they remember.
class FilesRunTest : public ::testing::Test {
 protected:
  FilesRunTest() {
    const CFullModel model;
    m_ModelText = GridText(model.m_Grid);
    for (const char* name : {"a.grid", kStrange}) WriteText(File(name), m_ModelText);
    WriteBytes(File("a.bmp"), BmpFile(SomePicture(3, 2)));
  }

  std::string File(const std::string& name) const { return m_Files.File(name); }
  static std::string LoadLine(const std::string& what) { return "CGrid::Load\t\t" + what; }
  void Start(const Arguments& arguments = {}) {
    m_pUser.reset();
    m_pProgram.reset();
    m_pProgram = std::make_unique<CRelievo>(arguments, m_State.Path());
    m_pUser = std::make_unique<CUser>(*m_pProgram);
  }
  std::size_t Loads() const { return m_pUser->Times(LoadLine("Initialize()...")); }
  bool Quits() {
    PressKey("ctrl+q");
    return m_pProgram->WaitForExit() == 0;
  }
  bool Drop(const std::string& contents) {
    CDragSource source("text/uri-list", contents);
    return source.Drop(m_pProgram->MainWindow(), m_pUser->PlaceOf(Control::ImageView));
  }
  /// Opens the menu File with its key and goes on with more keys.
  void ChooseFromFile(const Arguments& keys) {
    PressKey("alt+f");
    for (const std::string& key : keys) {
      m_pProgram->Rests();
      PressKey(key);
    }
    m_pProgram->Rests();
  }

  CTemporaryDirectory m_Files;
  CTemporaryDirectory m_State;
  std::string m_ModelText;
  std::unique_ptr<CRelievo> m_pProgram;
  std::unique_ptr<CUser> m_pUser;
};

}  // namespace

// Arguments.

TEST_F(FilesRunTest, ArgumentsAreOpenedInAnyOrderAfterTheSevenLines) {
  for (const Arguments& names : {Arguments{File("a.grid"), File("a.bmp")}, Arguments{File("a.bmp"), File(kStrange)}}) {
    Start(names);
    EXPECT_TRUE(m_pUser->Reads(kPictureLine));
    const std::vector<std::string> lines = m_pProgram->ConsoleLines();
    EXPECT_EQ(lines.front(), " 1.5 + 2 = 3.5");
    EXPECT_EQ(std::ranges::count(lines, LoadLine("Initialize()...")), 1);
    EXPECT_TRUE(Quits());
  }
}

TEST_F(FilesRunTest, AnArgumentThatCannotBeOpenedIsToldAndTheProgramStarts) {
  Start({"missing.grid"});
  ASSERT_TRUE(m_pUser->Answer(true));
  EXPECT_TRUE(m_pProgram->HandlesEvents());
  EXPECT_EQ(Loads(), 0U);
}

TEST_F(FilesRunTest, HelpAndVersionEndWithoutAWindow) {
  for (const auto& [option, answer, status] : {std::tuple{"--help", "Usage: relievo ", 0},
                                               {"--version", "relievo " RELIEVO_VERSION "\n", 0},
                                               {"--nonsense", "relievo: there is no option --nonsense", 1},
                                               {"-x", "relievo: there is no option -x", 1}}) {
    CChildProcess program({"env", "-u", "DISPLAY", RELIEVO_PROGRAM, option, File("a.grid")}, m_Files.Path(),
                          File("console"));
    EXPECT_EQ(program.WaitForExit(), status) << option;
    EXPECT_TRUE(BytesOf(File("console")).starts_with(answer)) << option << ": " << BytesOf(File("console"));
  }
}

// Save Again and Quit.

TEST_F(FilesRunTest, SavingAgainWritesTheModelThatWasOpened) {
  Start({File("a.grid")});
  WriteText(File("a.grid"), "somebody else's");
  PressKey("ctrl+s");
  EXPECT_TRUE(m_pUser->Reads(File("a.grid") + " is saved"));
  EXPECT_TRUE(BytesOf(File("a.grid")).ends_with("\n\nE\n"));
  EXPECT_FALSE(std::filesystem::exists(File("a.grid~"))) << "the program has read it";
  EXPECT_EQ(m_pProgram->Screen().WindowsOf(m_pProgram->Pid()).size(), 1U);
}

TEST_F(FilesRunTest, SavingAgainAnswersTheSameAboutTheLights) {
  Start();
  m_pUser->ChooseEntry(MenuTitle::File, 3);
  ASSERT_TRUE(m_pUser->ChooseFile(kChooser, File("b.grid")));
  ASSERT_TRUE(m_pUser->Answer(true));
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(File("b.grid")); }));
  const std::string saved = BytesOf(File("b.grid"));
  std::filesystem::remove(File("b.grid"));
  ASSERT_TRUE(m_pProgram->Rests());
  PressKey("ctrl+s");
  EXPECT_TRUE(m_pUser->Reads(File("b.grid") + " is saved"));
  EXPECT_EQ(BytesOf(File("b.grid")), saved) << "with the lights again";
}

TEST_F(FilesRunTest, TheFirstSaveOverAStrangeFileKeepsIt) {
  WriteText(File("b.grid"), "theirs");
  Start({File("a.grid")});
  for (int k = 0; k < 2; ++k) {
    m_pUser->ChooseEntry(MenuTitle::File, 3);
    ASSERT_TRUE(m_pUser->ChooseFile(kChooser, File("b.grid")) && m_pUser->Answer(false));
    ASSERT_TRUE(WaitUntil([&] { return BytesOf(File("b.grid")).ends_with("\n\nE\n"); }));
    EXPECT_EQ(BytesOf(File("b.grid~")), "theirs");
    ASSERT_TRUE(m_pProgram->Rests());
  }
}

// Open Recent.

TEST_F(FilesRunTest, WhatWasOpenIsOfferedToTheNextRun) {
  Start({File(kStrange), File("a.bmp")});
  EXPECT_TRUE(Quits());
  Start();
  EXPECT_EQ(Loads(), 0U);
  ChooseFromFile({"r", "Right", "Return"});
  EXPECT_TRUE(m_pUser->Reads(kPictureLine));
  EXPECT_EQ(Loads(), 1U) << "the pair opens together";
  PressKey("ctrl+s");
  EXPECT_TRUE(m_pUser->Reads(File(kStrange) + " is saved"));
}

TEST_F(FilesRunTest, ACleanListOffersNothing) {
  Start({File("a.grid")});
  ChooseFromFile({"r", "Right", "Down", "Return"});
  EXPECT_TRUE(WaitUntil([&] { return BytesOf(m_State.File("relievo/recent-files")).empty(); }));
}

TEST_F(FilesRunTest, WithoutAPlaceToRememberTheProgramWorksAndSaysSoOnce) {
  WriteText(m_State.File("relievo"), "no folder");
  Start({File("a.grid"), File("a.bmp")});
  EXPECT_TRUE(m_pUser->Reads(kPictureLine));
  EXPECT_TRUE(m_pProgram->Rests());
  EXPECT_TRUE(Quits());
}

// Photographs of other kinds.

TEST_F(FilesRunTest, AJpegIsOpenedByArgumentAgainByTheMenuByDropAndFromItsProject) {
  constexpr const char* kLine = "CImageView::LoadImage\tNew texture generated. new_width : 1024, new_height : 512";
  const std::string photograph = File("photo of no kind");
  std::filesystem::copy_file(RELIEVO_SAMPLES "/coffee.jpg", photograph);
  Start({photograph});
  EXPECT_TRUE(m_pUser->Reads(kLine));
  PressKey("ctrl+s");
  ASSERT_TRUE(m_pUser->ChooseFile("please input project file name", File("cup.relievo")));
  ASSERT_TRUE(WaitUntil([&] { return BytesOf(File("cup.relievo")).starts_with("PK"); }) && m_pProgram->Rests());
  ASSERT_TRUE(Drop(UriOf(photograph) + "\r\n"));
  EXPECT_TRUE(m_pUser->Reads(kLine, 1));
  EXPECT_TRUE(Quits());
  Start();
  ChooseFromFile({"r", "Right", "Return"});
  EXPECT_TRUE(m_pUser->Reads(kLine));
  EXPECT_TRUE(Quits());
  std::filesystem::remove(photograph);
  Start({File("cup.relievo")});
  EXPECT_TRUE(m_pUser->Reads(kLine));
  EXPECT_TRUE(Quits());
}

// Projects.

TEST_F(FilesRunTest, AProjectIsSavedAgainOpenedAgainAndNamedLikeAModel) {
  WriteText(File("a.relievo"), "theirs");
  Start({File("a.grid"), File("a.bmp")});
  m_pUser->ChooseEntry(MenuTitle::File, 7);
  ASSERT_TRUE(m_pUser->OpenedChooser("please input project file name").has_value());
  PressKey("Return");
  ASSERT_TRUE(WaitUntil([&] { return BytesOf(File("a.relievo")).starts_with("PK"); }));
  EXPECT_EQ(BytesOf(File("a.relievo~")), "theirs");
  EXPECT_TRUE(Quits());
  for (const Arguments& names : {Arguments{}, Arguments{File("a.relievo")}}) {
    Start(names);
    if (names.empty()) ChooseFromFile({"r", "Right", "Return"});
    ASSERT_TRUE(m_pProgram->Rests());
    std::filesystem::remove(File("a.relievo"));
    PressKey("ctrl+s");
    EXPECT_TRUE(m_pUser->Reads(File("a.relievo") + " is saved"));
    EXPECT_TRUE(BytesOf(File("a.relievo")).starts_with("PK"));
    EXPECT_TRUE(Quits());
  }
}

TEST_F(FilesRunTest, SavingAgainWithoutANameProposesAProjectBesideThePicture) {
  Start({File("a.bmp")});
  PressKey("ctrl+s");
  ASSERT_TRUE(m_pUser->OpenedChooser("please input project file name").has_value());
  PressKey("Return");
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(File("a.relievo")); }));
}

// Drops.

TEST_F(FilesRunTest, DroppedFilesOpen) {
  Start();
  ASSERT_TRUE(Drop(UriOf(File("a.bmp")) + "\r\n" + UriOf(File(kStrange)) + "\r\n"));
  EXPECT_TRUE(m_pUser->Reads(kPictureLine));
  EXPECT_TRUE(m_pUser->Reads(LoadLine("Initialize()...")));
  ASSERT_TRUE(m_pProgram->Rests());
  PressKey("ctrl+s");
  EXPECT_TRUE(m_pUser->Reads(File(kStrange) + " is saved"));
}

TEST_F(FilesRunTest, TakingALoadBackBringsTheNameBack) {
  Start({File("a.grid")});
  ASSERT_TRUE(Drop(UriOf(File(kStrange)) + "\r\n"));
  ASSERT_TRUE(WaitUntil([this] { return Loads() == 2; }) && m_pProgram->Rests());
  PressKey("ctrl+z");
  ASSERT_TRUE(m_pProgram->Rests());
  PressKey("ctrl+s");
  EXPECT_TRUE(m_pUser->Reads(File("a.grid") + " is saved"));
}

TEST_F(FilesRunTest, TheyMayBeDroppedAnywhereInTheWindow) {
  Start();
  CDragSource source("text/uri-list", UriOf(File("a.bmp")) + "\r\n");
  for (const Control control : {Control::ImageView, Control::ModelView, Control::MenuBar, Control::HelpLine,
                                Control::LeftPanel, Control::Iterations})
    EXPECT_TRUE(source.IsWelcome(m_pProgram->MainWindow(), m_pUser->PlaceOf(control)));
  EXPECT_TRUE(source.Drop(m_pProgram->MainWindow(), m_pUser->PlaceOf(Control::HelpLine)));
  EXPECT_TRUE(m_pUser->Reads(kPictureLine));
}

TEST_F(FilesRunTest, WhatIsNoFileIsTold) {
  Start();
  ASSERT_TRUE(Drop("http://example.org/a.grid\r\n"));
  EXPECT_TRUE(m_pUser->Reads("What was dropped is no file of this machine"));
  EXPECT_TRUE(m_pProgram->HandlesEvents());
}

TEST_F(FilesRunTest, ADropWaitsForTheEndOfADialog) {
  Start();
  m_pUser->ClickOn(Control::Popup);
  ASSERT_TRUE(WaitUntil([&] { return m_pProgram->Screen().WindowsOf(m_pProgram->Pid()).size() == 2; }));
  ASSERT_TRUE(Drop(UriOf(File("a.grid")) + "\r\n"));
  ASSERT_TRUE(m_pProgram->Rests());
  EXPECT_EQ(Loads(), 0U);
  ASSERT_TRUE(m_pUser->Answer(true));
  EXPECT_TRUE(m_pUser->Reads(LoadLine("Initialize()...")));
}

TEST_F(FilesRunTest, ADropWaitsForTheEndOfADrag) {
  Start();
  MovePointer(m_pUser->PlaceOf(Control::ModelView));
  m_pProgram->Rests();
  PressButton(1);
  m_pProgram->Rests();
  ASSERT_TRUE(Drop(UriOf(File("a.grid")) + "\r\n"));
  ASSERT_TRUE(m_pProgram->Rests());
  EXPECT_EQ(Loads(), 0U);
  ReleaseButton(1);
  EXPECT_TRUE(m_pUser->Reads(LoadLine("Initialize()...")));
}

// Choosers.

TEST_F(FilesRunTest, TheNextRunBeginsInTheLastFolderOfTheKind) {
  std::filesystem::create_directory(File("models"));
  Start();
  m_pUser->ChooseEntry(MenuTitle::File, 3);
  ASSERT_TRUE(m_pUser->ChooseFile(kChooser, File("models/b.grid")) && m_pUser->Answer(false));
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(File("models/b.grid")); }));
  EXPECT_TRUE(Quits());
  Start();
  m_pUser->ChooseEntry(MenuTitle::File, 3);
  ASSERT_TRUE(m_pUser->OpenedChooser(kChooser).has_value());
  TypeText("c.grid", 5);
  PressKey("Return");
  ASSERT_TRUE(m_pUser->Answer(false));
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(File("models/c.grid")); }));
}

TEST_F(FilesRunTest, SavingProposesANameBesideThePictureAndThenTheModels) {
  Start({File("a.bmp")});
  std::filesystem::remove(File("a.grid"));
  for (int k = 0; k < 2; ++k) {
    m_pUser->ChooseEntry(MenuTitle::File, 3);
    ASSERT_TRUE(m_pUser->OpenedChooser(kChooser).has_value());
    PressKey("Return");
    ASSERT_TRUE(m_pUser->Answer(false));
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(File("a.grid")); }));
    // The name no longer comes from the picture.
    std::filesystem::remove(File("a.grid"));
    ASSERT_TRUE(m_pProgram->Rests());
  }
}
