// The program itself, started as a user or a file manager would, without a display.

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "projects/ProjectFile.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConstraintBuilders.h"
#include "support/FileBuilders.h"
#include "support/ProgramRun.h"
#include "support/UpdateBuilders.h"

namespace {

using Colour = std::array<int, 3>;

constexpr Colour kBlack{0, 0, 0};
constexpr Colour kRed{255, 0, 0};
constexpr Colour kGreen{0, 255, 0};
constexpr Colour kBlue{0, 0, 255};
constexpr Colour kYellow{255, 255, 0};

// A plane square of 10 by 10, higher on the right if asked for, and a photograph with a colour in each quarter.
class ModelPicture : public testing::Test {
 protected:
  ModelPicture() {
    WriteModel("flat.grid", 0.0);
    CPicture photograph = PlainPicture(64, 64, 0, 255, 0);
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) {
        const Colour& colour = y >= 32 ? (x < 32 ? kRed : kGreen) : (x < 32 ? kBlue : kYellow);
        std::copy(colour.begin(), colour.end(), &photograph.m_aPixels[3 * static_cast<std::size_t>(64 * y + x)]);
      }
    }
    WriteBytes(Path("photo.bmp"), BmpFile(photograph));
  }

  void WriteModel(const std::string& name, double slope) const {
    CTestGrid model(3, 2);
    model.m_Grid.Initialize(2, false, 0, 0, 10, 10);
    AddAll(model.m_Grid, {HeightCstr(1, 1, -4 * slope), HeightCstr(9, 1, 4 * slope), HeightCstr(1, 9, -4 * slope),
                          HeightCstr(9, 9, 4 * slope)});
    ASSERT_TRUE(RunUntilPaused(model.m_Grid, 20000));
    WriteText(Path(name), GridText(model.m_Grid));
  }
  std::filesystem::path Path(const std::string& name) const { return m_Directory.Path() / name; }
  std::string Bytes(const std::string& name) const { return BytesOf(Path(name)); }
  int Run(const std::string& arguments) const {
    return RunIn(m_Directory.Path(), "env -u DISPLAY -u WAYLAND_DISPLAY '" RELIEVO_PICTURE "' " + arguments);
  }
  /// The picture that a run has written.
  CPicture Result(const std::string& name = "out.png") const { return ReadPicture(Bytes(name), name).m_Picture; }

  CTemporaryDirectory m_Directory;
};

// The pixel at shares of the width from the left and the height from the bottom.
Colour At(const CPicture& picture, double x, double y) {
  const auto column = static_cast<std::size_t>(x * picture.m_iWidth);
  const auto row = static_cast<std::size_t>(y * picture.m_iHeight);
  const std::uint8_t* pixel = &picture.m_aPixels.at(3 * (row * static_cast<std::size_t>(picture.m_iWidth) + column));
  return {pixel[0], pixel[1], pixel[2]};
}

// Pixels that are not black, from the first to the last column.
int CoveredColumns(const CPicture& picture) {
  int first = picture.m_iWidth;
  int last = -1;
  for (int x = 0; x < picture.m_iWidth; ++x) {
    for (int y = 0; y < picture.m_iHeight; ++y) {
      if (At(picture, (x + 0.5) / picture.m_iWidth, (y + 0.5) / picture.m_iHeight) == kBlack) continue;
      first = std::min(first, x);
      last = x;
    }
  }
  return last + 1 - first;
}

}  // namespace

TEST_F(ModelPicture, ShowsThePhotographUprightFromTheFront) {
  ASSERT_EQ(Run("flat.grid --image photo.bmp --size 200x100 -o out.png"), 0) << Bytes("err");
  EXPECT_EQ(Bytes("out") + Bytes("err"), "");
  const CPicture picture = Result();
  ASSERT_EQ(picture.m_iWidth, 200);
  ASSERT_EQ(picture.m_iHeight, 100);
  // The square is as high as it is wide, and its diagonal as long as the shorter side.
  EXPECT_EQ(At(picture, 0.40, 0.7), kRed);
  EXPECT_EQ(At(picture, 0.60, 0.7), kGreen);
  EXPECT_EQ(At(picture, 0.40, 0.3), kBlue);
  EXPECT_EQ(At(picture, 0.60, 0.3), kYellow);
  EXPECT_EQ(At(picture, 0.25, 0.5), kBlack);
  EXPECT_NEAR(CoveredColumns(picture), 100 / std::sqrt(2.0), 2);
}

TEST_F(ModelPicture, FillsItsSizeWhenItIsToFit) {
  ASSERT_EQ(Run("flat.grid --image photo.bmp --size 300x120 --fit -o out.png"), 0) << Bytes("err");
  EXPECT_NEAR(CoveredColumns(Result()), 120 / 1.04, 2);
  ASSERT_EQ(Run("flat.grid --image photo.bmp --size 120x300 --fit -o out.png"), 0) << Bytes("err");
  EXPECT_NEAR(CoveredColumns(Result()), 120 / 1.04, 2);
}

TEST_F(ModelPicture, IsSeenFromTheSideThatIsAskedFor) {
  ASSERT_EQ(Run("flat.grid --image photo.bmp --turn 60,0 --size 100x100 --fit -o out.png"), 0) << Bytes("err");
  EXPECT_NEAR(CoveredColumns(Result()), 100 / 1.04 / 2, 2) << "the cosine of 60 degrees";
  // Higher on the right, it is seen edge on from one side and broad from the other.
  WriteModel("slope.grid", std::tan(30 / 57.29578));
  ASSERT_EQ(Run("slope.grid --image photo.bmp --turn -55,0 --size 100x100 -o left.png"), 0) << Bytes("err");
  ASSERT_EQ(Run("slope.grid --image photo.bmp --turn 55,0 --size 100x100 -o right.png"), 0) << Bytes("err");
  EXPECT_GT(CoveredColumns(Result("left.png")), 2 * CoveredColumns(Result("right.png")));
  // From below the upper half of the photograph is the farther one, and still above.
  ASSERT_EQ(Run("flat.grid --image photo.bmp --turn 0,-60 --size 100x100 -o out.png"), 0) << Bytes("err");
  EXPECT_EQ(At(Result(), 0.4, 0.55), kRed);
  EXPECT_EQ(At(Result(), 0.4, 0.45), kBlue);
}

TEST_F(ModelPicture, TakesAProjectWithItsPhotograph) {
  CTestGrid model(3, 2);
  model.m_Grid.Load(Path("flat.grid"));
  model.m_Grid.PerformPendingWork();
  CProject project;
  project.m_Model = StateOf(model.m_Grid);
  project.m_Heights = SolvedHeights(model.m_Grid);
  project.m_Picture = {"/tmp/photo.bmp", {}, std::make_shared<const std::string>(Bytes("photo.bmp"))};
  ASSERT_TRUE(SaveProject(project, Path("model.relievo")));
  ASSERT_EQ(Run("model.relievo --size 100x100 -o out.png"), 0) << Bytes("err");
  EXPECT_EQ(At(Result(), 0.4, 0.6), kRed);
  ASSERT_EQ(Run("flat.grid --image photo.bmp --size 100x100 -o grid.png"), 0) << Bytes("err");
  EXPECT_EQ(Bytes("out.png"), Bytes("grid.png"));
}

TEST_F(ModelPicture, IsWhiteWithoutAPhotograph) {
  ASSERT_EQ(Run("flat.grid --size 40x40 -o out.png"), 0) << Bytes("err");
  EXPECT_EQ(At(Result(), 0.5, 0.5), (Colour{255, 255, 255}));
}

TEST_F(ModelPicture, HasEdgesOfSeveralSamples) {
  ASSERT_EQ(Run("flat.grid --turn 10,10 --size 100x100 -o out.png"), 0) << Bytes("err");
  const CPicture picture = Result();
  const auto between = [](std::uint8_t level) { return level != 0 && level != 255; };
  EXPECT_GT(std::ranges::count_if(picture.m_aPixels, between), 100);
}

TEST_F(ModelPicture, IsNotMadeOfInputsThatCannotBeRead) {
  for (const char* arguments :
       {"missing.grid", "photo.bmp", "flat.grid --image missing.bmp", "flat.grid --image flat.grid", "."}) {
    EXPECT_EQ(Run(std::string(arguments) + " -o out.png"), 2) << arguments;
    EXPECT_TRUE(Bytes("err").starts_with("relievo-picture: ")) << Bytes("err");
    EXPECT_FALSE(std::filesystem::exists(Path("out.png")));
  }
}

TEST_F(ModelPicture, OfADamagedModelShowsWhatThereIsAndSaysSo) {
  std::filesystem::resize_file(Path("flat.grid"), std::filesystem::file_size(Path("flat.grid")) * 3 / 4);
  ASSERT_EQ(Run("flat.grid -o out.png"), 5);
  EXPECT_NE(Bytes("err").find("flat.grid"), std::string::npos);
  EXPECT_EQ(Result().m_iWidth, 800);
  EXPECT_EQ(Result().m_iHeight, 600);
}

TEST_F(ModelPicture, ThatCannotBeWrittenLeavesTheOldOne) {
  std::filesystem::create_directory(Path("folder"));
  for (const char* output : {"folder", "nowhere/out.png", "/dev/full"}) {
    EXPECT_EQ(Run(std::string("flat.grid --size 8x8 -o ") + output), 4) << output;
    EXPECT_EQ(Bytes("err"), "relievo-picture: The file " + std::string(output) + " could not be written.\n");
  }
}

TEST_F(ModelPicture, RefusesOptionsThatMakeNoSense) {
  for (const char* arguments : {"", "flat.grid", "-o out.png", "'' -o out.png", "flat.grid -o ''"})
    EXPECT_EQ(Run(arguments), 1) << arguments;
  for (const char* size :
       {"0x10", "10", "10x", "x10", "10x10x10", "8193x10", "10x8193", "-5x5", "1e3x10", "99999999999x1"})
    EXPECT_EQ(Run(std::string("flat.grid -o out.png --size ") + size), 1) << size;
  for (const char* turn : {"10", "10,", ",10", "0,91", "0,-90.5", "nan,0", "0,nan", "inf,0", "1,2,3", "a,b"})
    EXPECT_EQ(Run(std::string("flat.grid -o out.png --turn ") + turn), 1) << turn;
  EXPECT_FALSE(std::filesystem::exists(Path("out.png")));
}

TEST_F(ModelPicture, PrintsHelpAndVersion) {
  EXPECT_EQ(Run("--version"), 0);
  EXPECT_EQ(Bytes("out"), "relievo-picture " RELIEVO_VERSION "\n");
  ASSERT_EQ(Run("--help"), 0);
  std::string manual = BytesOf(RELIEVO_MANUAL);
  manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
  for (const char* option : {"--image", "--output", "--size", "--turn", "--fit", "--help", "--version"}) {
    EXPECT_NE(Bytes("out").find(option), std::string::npos) << option;
    EXPECT_NE(manual.find(option), std::string::npos) << option;
  }
  for (const char* status : {"0", "1", "2", "3", "4", "5"})
    EXPECT_NE(manual.find(std::string(".TP\n.B ") + status + "\n"), std::string::npos) << status;
}

TEST_F(ModelPicture, LeavesNothingUnfinishedWhereTheFileMayNotGrow) {
  const std::string limited = "(ulimit -f 1; env -u DISPLAY -u WAYLAND_DISPLAY '" RELIEVO_PICTURE
                              "' flat.grid --image photo.bmp --turn 20,30 --size 1500x1500 -o limited.png)";
  EXPECT_EQ(RunIn(m_Directory.Path(), limited), 4) << Bytes("err");
  EXPECT_FALSE(std::filesystem::exists(Path("limited.png")));
  for (const std::string& name : m_Directory.Names()) EXPECT_FALSE(name.starts_with(".relievo-")) << name;
}

TEST_F(ModelPicture, EndsByASignalWithTheWholeFileOrWithout) {
  // The signal comes as soon as there is an unfinished file, or a moment after it was one.
  const std::string command = "{ env -u DISPLAY -u WAYLAND_DISPLAY '" RELIEVO_PICTURE
                              "' flat.grid --image photo.bmp --turn 20,30 --size 1500x1500 -o out.png & program=$!;"
                              " until ls -A | grep -q '^[.]relievo-' || test -e out.png; do :; done;"
                              " kill -TERM $program; wait $program; }";
  for (int k = 0; k < 5; ++k) {
    std::filesystem::remove(Path("out.png"));
    const int status = RunIn(m_Directory.Path(), command);
    EXPECT_TRUE(status == 128 + SIGTERM || status == 0) << status << Bytes("err");
    if (std::filesystem::exists(Path("out.png"))) {
      EXPECT_EQ(Result().m_iWidth, 1500);
    }
    for (const std::string& name : m_Directory.Names()) EXPECT_FALSE(name.starts_with(".relievo-")) << name;
  }
}
