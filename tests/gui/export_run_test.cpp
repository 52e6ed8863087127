// The surface and a film of it handed to other programs, with mouse and keyboard.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "drawing/DisplayFlags.h"
#include "exports/ExportSurvey.h"
#include "projects/ProjectFile.h"
#include "support/FileBuilders.h"
#include "support/ProgramRun.h"
#include "support/ProjectBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr const char* kModelTitle = "please input a file name for the model";
constexpr const char* kFilmTitle = "please input a file name for the film";

// A dialog that the letter of an entry in the menu "File" opens, once it has the keyboard.
std::optional<WindowId> OpenByLetter(CRelievo& program, const char* letter, const char* title) {
  PressKey("alt+f");
  PressKey(letter);
  const std::optional<WindowId> window = program.WaitForWindow(title);
  if (!window.has_value() || !WaitUntil([&] { return program.Screen().HasFocus(*window); })) return {};
  return program.Rests() ? window : std::nullopt;
}

// In the list of formats, which has the keyboard at first.
void ChooseFormat(const char* suffix) {
  PressKey("space");
  for (const CExportFormat& format : ExportFormats()) {
    if (std::string(format.m_pSuffix) == suffix) break;
    PressKey("Down");
  }
  PressKey("Return");
}

class ExportRunTest : public RunTest {
 protected:
  bool OpenModelDialog() { return OpenByLetter(m_Program, "m", "Export Model").has_value(); }
};

// Least and greatest of the three coordinates of a binary STL file.
std::array<std::array<float, 3>, 2> BoundsOfStl(const std::string& bytes) {
  std::array<std::array<float, 3>, 2> bounds{{{1e9F, 1e9F, 1e9F}, {-1e9F, -1e9F, -1e9F}}};
  constexpr std::size_t kTriangle = 50;
  for (std::size_t at = 84; at + kTriangle <= bytes.size(); at += kTriangle) {
    std::array<std::array<float, 3>, 3> corners{};
    std::memcpy(corners.data(), bytes.data() + at + 12, sizeof(corners));
    for (const auto& p : corners) {
      for (std::size_t k = 0; k < 3; ++k) {
        bounds[0][k] = std::min(bounds[0][k], p[k]);
        bounds[1][k] = std::max(bounds[1][k], p[k]);
      }
    }
  }
  return bounds;
}

class FilmRunTest : public ::testing::Test {
 protected:
  /// A project of the photograph on a raised surface, with a recording of so many frames.
  void Write(int frames) const {
    CProject project = ProjectOfOneHeight(20);
    project.m_Views.m_uModelFlags = ModelFlag::kTexturedModel;
    project.m_Views.m_Centre = {50, 50, 0};
    project.m_Views.m_Eye = {50, 50, 80};
    project.m_Views.m_Up = {0, 80, 0};
    project.m_Views.m_fR = project.m_Views.m_fR0 = 80;
    for (int k = 0; k < frames; ++k)
      project.m_aRecording.push_back({{50, 50, 0}, {50.0 + k, 50, 80}, {0, 80, 0}, 80, 0});
    project.m_Picture = {"/photos/cup.bmp", {}, std::make_shared<const std::string>(BytesOf(kSamplePhotograph))};
    ASSERT_TRUE(SaveProject(project, m_File));
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("cup.relievo");
};

}  // namespace

TEST_F(ExportRunTest, AModelIsWrittenWithReturn) {
  ASSERT_TRUE(OpenModelDialog());
  PressKey("Return");
  ASSERT_TRUE(m_User.ChooseFile(kModelTitle, File("cup.glb")));
  ASSERT_TRUE(m_User.Reads(File("cup.glb").string() + " is saved"));
  const std::string bytes = BytesOf(File("cup.glb"));
  EXPECT_EQ(bytes.substr(0, 4), "glTF");
  EXPECT_NE(bytes.find("baseColorTexture"), std::string::npos) << "with the photograph";
}

TEST_F(ExportRunTest, ASolidHasTheSizeThatWasTyped) {
  ASSERT_TRUE(OpenModelDialog());
  ChooseFormat(".stl");
  PressKey("Tab");
  PressKey("Tab");
  TypeText("2");
  PressKey("Tab");
  PressKey("Tab");
  TypeText("5");
  PressKey("Return");
  ASSERT_TRUE(m_User.ChooseFile(kModelTitle, File("cup")));
  ASSERT_TRUE(m_User.Reads(File("cup.stl").string() + " is saved"));
  const auto [low, high] = BoundsOfStl(BytesOf(File("cup.stl")));
  EXPECT_NEAR(high[0] - low[0], 200, 1e-3);
  EXPECT_NEAR(high[1] - low[1], 200, 1e-3);
  EXPECT_NEAR(high[2] - low[2], 5, 1e-3) << "a flat plate";
}

TEST_F(ExportRunTest, EscapeWritesNothing) {
  ASSERT_TRUE(OpenModelDialog());
  PressKey("Escape");
  ASSERT_TRUE(OpenModelDialog());
  PressKey("Return");
  ASSERT_TRUE(m_User.OpenedChooser(kModelTitle).has_value());
  PressKey("Escape");
  ASSERT_TRUE(m_Program.Rests());
  EXPECT_TRUE(std::filesystem::is_empty(m_Program.Directory()));
}

TEST_F(FilmRunTest, TheRecordingIsWrittenAtThirtyFramesASecond) {
  Write(60);
  CRelievo program({m_File});
  const CUser user(program);
  ASSERT_TRUE(OpenByLetter(program, "f", "Export Film").has_value());
  PressKey("Return");
  ASSERT_TRUE(user.ChooseFile(kFilmTitle, m_Scratch.File("orbit.webp")));
  ASSERT_TRUE(user.Reads(m_Scratch.File("orbit.webp") + " is saved"));
  ASSERT_EQ(RunIn(m_Scratch.Path(), "webpmux -info orbit.webp"), 0);
  const std::string info = BytesOf(m_Scratch.File("out"));
  EXPECT_NE(info.find("Canvas size: 640 x 480\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Number of frames: 36\n"), std::string::npos) << info;
}

TEST_F(FilmRunTest, EscapeCancelsAFilmAndLeavesNothingBehind) {
  Write(60);
  std::filesystem::create_directory(m_Scratch.File("films"));
  CRelievo program({m_File});
  const CUser user(program);
  ASSERT_TRUE(OpenByLetter(program, "f", "Export Film").has_value());
  // A turntable of ten minutes, from a list in which the recording is chosen.
  for (const char* key : {"Tab", "space", "Down", "Return", "Tab"}) PressKey(key);
  TypeText("600");
  PressKey("Return");
  const std::filesystem::path file = m_Scratch.Path() / "films" / "long.webp";
  ASSERT_TRUE(user.ChooseFile(kFilmTitle, file));
  const auto progress = program.WaitForWindow("Export");
  ASSERT_TRUE(progress.has_value() && WaitUntil([&] { return program.Screen().HasFocus(*progress); }));
  PressKey("Escape");
  EXPECT_TRUE(user.Reads("Cancelled: " + file.string() + " is not written"));
  EXPECT_TRUE(user.IsGone(*progress));
  EXPECT_TRUE(program.HandlesEvents());
  EXPECT_TRUE(std::filesystem::is_empty(m_Scratch.File("films")));
}
