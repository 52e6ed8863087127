// The program itself, started as a user would.

#include <csignal>
#include <memory>
#include <string>

#include <sys/stat.h>

#include "batch/BatchTest.h"
#include "codecs/PictureFormats.h"
#include "projects/ProjectFile.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

TEST_F(Batch, SavesWithoutIteratingWhatTheModelItselfWouldSave) {
  CTestGrid window;
  window.m_Grid.Load(Path("model.grid"));
  window.m_Grid.PerformPendingWork();
  window.m_Grid.Save(Path("window.grid"));
  ASSERT_EQ(Run("model.grid --iterations 0 --save batch.grid"), 0);
  EXPECT_EQ(Bytes("batch.grid"), Bytes("window.grid"));
  EXPECT_EQ(Bytes("batch.grid"), Bytes("model.grid"));
}

TEST_F(Batch, TakesAProjectWithItsPhotographLikeAModel) {
  CTestGrid window;
  window.m_Grid.Load(Path("model.grid"));
  window.m_Grid.PerformPendingWork();
  CProject project;
  project.m_Model = StateOf(window.m_Grid);
  project.m_Heights = SolvedHeights(window.m_Grid);
  project.m_Picture = {"/tmp/small.bmp", {}, std::make_shared<const std::string>(SmallBitmap())};
  ASSERT_TRUE(SaveProject(project, Path("model.relievo")));
  ASSERT_EQ(Run("model.relievo --iterations 0 --save batch.grid --vrml scene.wrl"), 0) << Bytes("err");
  EXPECT_EQ(Bytes("batch.grid"), Bytes("model.grid"));
  EXPECT_EQ(Bytes("picture.jpg").substr(0, 2), "\xFF\xD8");
  EXPECT_EQ(Run("model.relievo --image missing.bmp --vrml other.wrl"), 2) << "of two photographs that named is taken";
  std::filesystem::resize_file(Path("model.relievo"), 500);
  EXPECT_EQ(Run("model.relievo --save batch.grid"), 2);
  EXPECT_NE(Bytes("err").find("The file model.relievo is not a project file"), std::string::npos) << Bytes("err");
}

TEST_F(Batch, TearsUpToTheBorderWithAPictureAsWithout) {
  CTestGrid torn(5, 2);
  // Half a pixel inside, at 128 of them, in a model 16 by 6.
  AddCurveThrough(torn.m_Grid, CurveType::kPosition, {{4, 20.0234}, {6, 25.9766}});
  torn.m_Grid.PerformPendingWork();
  WriteText(Path("torn.grid"), GridText(torn.m_Grid));
  WriteText(Path("small.bmp"), SmallBitmap());
  ASSERT_EQ(Run("torn.grid --iterations 0 --save plain.grid --vrml plain.wrl"), 0) << Bytes("err");
  ASSERT_EQ(Run("torn.grid --image small.bmp --iterations 0 --save pictured.grid --vrml pictured.wrl"), 0);
  EXPECT_EQ(Bytes("plain.grid"), Bytes("torn.grid"));
  EXPECT_EQ(Bytes("pictured.grid"), Bytes("torn.grid"));
  EXPECT_EQ(Bytes("pictured.wrl"), Bytes("plain.wrl"));
  EXPECT_GT(Bytes("plain.wrl").size(), 10000U);
}

TEST_F(Batch, ConvergesToWhatTheModelItselfConvergesTo) {
  CTestGrid window;
  window.m_Grid.Load(Path("model.grid"));
  ASSERT_TRUE(RunUntilPaused(window.m_Grid, 20000));
  ASSERT_EQ(Run("model.grid --seed 99 --save batch.grid --report json"), 0) << Bytes("err");
  CTestGrid batch;
  ASSERT_EQ(batch.m_Grid.Load(Path("batch.grid")), GridFileState::Whole);
  const double range = window.m_Grid.Surface().MaxHeight() - window.m_Grid.Surface().MinHeight();
  EXPECT_LT(LargestDifference(NodalHeights(batch.m_Grid), NodalHeights(window.m_Grid)), 1e-5 * range);
  EXPECT_TRUE(Report()["converged"]);
}

TEST_F(Batch, SavesAllButTheHeightsAsTheyWere) {
  ASSERT_EQ(Run("model.grid --save batch.grid"), 0);
  const std::string before = Bytes("model.grid");
  const std::string after = Bytes("batch.grid");
  EXPECT_EQ(after.substr(after.find("\n\nN\n")), before.substr(before.find("\n\nN\n")));
  const std::size_t tree = before.find("\n\nL\n");
  EXPECT_EQ(after.substr(after.find("\n\nL\n"), before.find("\n\nZ\n") - tree),
            before.substr(tree, before.find("\n\nZ\n") - tree));
}

TEST_F(Batch, ReportsInJson) {
  ASSERT_EQ(Run("model.grid --report json --quiet"), 0);
  const nlohmann::json report = Report();
  EXPECT_EQ(report["points"], m_Model.m_Grid.Surface().ActivePointCount());
  EXPECT_EQ(report["cells"], m_Model.m_Grid.Surface().Tree().LeafCount());
  EXPECT_EQ(report["constraints"], SomeConstraints().size());
  EXPECT_EQ(report["curves"], 1);
  EXPECT_GT(report["iterations"], 0);
  EXPECT_GE(report["seconds"]["load"], 0.0);
  EXPECT_GE(report["seconds"]["solve"], 0.0);
  EXPECT_GE(report["seconds"]["write"], 0.0);
  EXPECT_GE(report["energy"], 0.0);
  EXPECT_LT(report["largest_constraint_residual"], 1e-6);
  EXPECT_LT(report["z_range"][0], report["z_range"][1]);
  EXPECT_EQ(report["converged"], true);
  EXPECT_EQ(report["stopped"], "converged");
}

TEST_F(Batch, ReportsTheResidualAndTheEnergyOfTheSurfaceAsItIs) {
  CTestGrid flat(4, 2);
  AddAll(flat.m_Grid, {HeightCstr(1, 22, 5), HeightCstr(2, 24, -8)});
  flat.m_Grid.PerformPendingWork();
  WriteText(Path("flat.grid"), GridText(flat.m_Grid));
  ASSERT_EQ(Run("flat.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Report()["largest_constraint_residual"], 8.0);
  EXPECT_EQ(Report()["energy"], 0.0);
  EXPECT_EQ(Report()["z_range"], nlohmann::json({0.0, 0.0}));
}

TEST_F(Batch, ReportsInText) {
  ASSERT_EQ(Run("model.grid --iterations 0 --report text"), 0);
  std::istringstream out(Bytes("out"));
  std::vector<std::string> names;
  for (std::string line; std::getline(out, line);) names.push_back(line.substr(0, line.find(':')));
  EXPECT_EQ(names, (std::vector<std::string>{"points", "cells", "constraints", "curves", "iterations", "seconds load",
                                             "seconds solve", "seconds write", "energy", "largest constraint residual",
                                             "z range", "converged", "stopped", "damaged", "inactive constraints",
                                             "inactive constraint 3", "contradictions", "floating regions"}));
  EXPECT_NE(Bytes("out").find("\nstopped: bound\n"), std::string::npos);
}

TEST_F(Batch, LinesOfTheModelGoToStandardErrorAndNoneWhenQuiet) {
  ASSERT_EQ(Run("model.grid --iterations 0"), 0);
  EXPECT_EQ(Bytes("out"), "");
  EXPECT_NE(Bytes("err").find("toto1\nCGrid::Load\t\tFreeAll()...\n"), std::string::npos);
  EXPECT_EQ(Bytes("err").find('\r'), std::string::npos) << "no progress where nobody looks";
  ASSERT_EQ(Run("model.grid --quiet"), 0);
  EXPECT_EQ(Bytes("err"), "");
}

TEST_F(Batch, ShowsProgressOnATerminal) {
  const std::string line = "script -qec \"'" RELIEVO_BATCH "' model.grid --iterations 500\" /dev/null";
  ASSERT_EQ(std::system(("cd '" + m_Directory.Path().string() + "' && " + line + " >tty </dev/null").c_str()), 0);
  EXPECT_NE(Bytes("tty").find("\r\x1b[K10 iterations"), std::string::npos);
}

TEST_F(Batch, StopsAfterWholeTicks) {
  ASSERT_EQ(Run("model.grid --iterations 11 --report json"), 0);
  EXPECT_EQ(Report()["iterations"], 20);
  EXPECT_EQ(Report()["converged"], false);
  ASSERT_EQ(Run("model.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Report()["iterations"], 0);
}

TEST_F(Batch, TellsThatItHasNotConvergedAndWritesAllTheSame) {
  EXPECT_EQ(Run("model.grid --until-converged --max-iterations 10 --save o.grid --vrml o.wrl --report json"), 3);
  EXPECT_EQ(Report()["iterations"], 10);
  EXPECT_EQ(Report()["converged"], false);
  EXPECT_EQ(Report()["stopped"], "bound");
  EXPECT_NE(Bytes("o.grid"), "");
  EXPECT_NE(Bytes("o.wrl"), "");
}

// A height at which the squares of the residual leave the finite numbers.
TEST_F(Batch, TellsThatTheSolverHasGivenUpAlsoWhenQuiet) {
  CTestGrid steep;
  AddAll(steep.m_Grid, {HeightCstr(1, 22, 5), HeightCstr(2, 24, 1e154)});
  WriteText(Path("steep.grid"), GridText(steep.m_Grid));
  for (const char* until : {"", "--iterations 100000"}) {
    EXPECT_EQ(Run(std::string("steep.grid --quiet --report json --save o.grid ") + until), 3) << until;
    EXPECT_EQ(Report()["converged"], false);
    EXPECT_EQ(Report()["stopped"], "gave up");
    EXPECT_EQ(Bytes("err"),
              "relievo-batch: The solver has given up: the surface is not what the constraints ask for.\n");
    EXPECT_NE(Bytes("o.grid"), "");
  }
}

TEST_F(Batch, StopsWhenItsTimeIsUp) {
  for (const char* until : {"", " --max-iterations 100000", " --iterations 100000"}) {
    EXPECT_EQ(Run(std::string("model.grid --max-seconds 1e-9 --save o.grid --report json") + until), 3) << until;
    EXPECT_EQ(Report()["stopped"], "time");
    EXPECT_EQ(Report()["converged"], false);
    EXPECT_LE(Report()["iterations"], 10);
    EXPECT_NE(Bytes("o.grid"), "");
  }
  ASSERT_EQ(Run("model.grid --max-seconds 600.5 --report json"), 0);
  EXPECT_EQ(Report()["stopped"], "converged");
  EXPECT_EQ(Run("model.grid --max-seconds 600 --iterations 10"), 0) << "the bound that was asked for";
}

TEST_F(Batch, TheSeedDecidesTheWayAndNotTheEnd) {
  Run("model.grid --iterations 20 --seed 1 --save a.grid");
  Run("model.grid --iterations 20 --seed 1 --save b.grid");
  Run("model.grid --iterations 20 --seed 2 --save c.grid");
  EXPECT_EQ(Bytes("a.grid"), Bytes("b.grid"));
  EXPECT_NE(Bytes("a.grid"), Bytes("c.grid"));
}

TEST_F(Batch, ConvergesInEveryMode) {
  long before = 0;
  for (const char* mode : {"new", "no"}) {
    ASSERT_EQ(Run(std::string("model.grid --report json --wavelets ") + mode), 0) << mode;
    EXPECT_GT(Report()["iterations"], before) << mode;
    before = Report()["iterations"];
  }
  EXPECT_EQ(Run("model.grid --wavelets simple"), 0);
}

TEST_F(Batch, SolvesAtTheHighestResolution) {
  ASSERT_EQ(Run("model.grid --high-res --iterations 0 --report json --save h.grid"), 0);
  EXPECT_EQ(Report()["points"], 17 * 17);
  CTestGrid test;
  ASSERT_EQ(test.m_Grid.Load(Path("h.grid")), GridFileState::Whole);
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid),
                              Gathered(test.m_Grid.Surface().Order(), SurfaceOnLattice(m_Model.m_Grid))),
            1e-4);
}

TEST_F(Batch, WritesTheLightsWhenToldTo) {
  ASSERT_EQ(Run("model.grid --iterations 0 --save o.grid --with-lights"), 0);
  EXPECT_NE(Bytes("o.grid").find("\n\nI\n"), std::string::npos);
  ASSERT_EQ(Run("model.grid --iterations 0 --save o.grid"), 0);
  EXPECT_NE(Bytes("o.grid").find("\n\nE\n"), std::string::npos);
}

TEST_F(Batch, ExportsWhatTheModelItselfExports) {
  ASSERT_EQ(Run("model.grid --iterations 0 --vrml o.wrl --height-field o.txt --size 7x5"), 0);
  CTestGrid window;
  window.m_Grid.Load(Path("model.grid"));
  window.m_Grid.SaveVrml(Path("window.wrl"));
  window.m_Grid.SaveHeightField(Path("window.txt"), 7, 5);
  EXPECT_EQ(Bytes("o.wrl"), Bytes("window.wrl"));
  EXPECT_EQ(Bytes("o.txt"), Bytes("window.txt"));
}

TEST_F(Batch, TheHeightFieldIs200By200UnlessToldOtherwise) {
  ASSERT_EQ(Run("model.grid --iterations 0 --height-field o.txt"), 0);
  const std::string text = Bytes("o.txt");
  EXPECT_EQ(std::ranges::count(text, '\n'), 200);
  EXPECT_EQ(std::ranges::count(text, ' '), 200 * 200);
}

TEST_F(Batch, PutsThePictureBesideTheScene) {
  WriteText(Path("photo.bmp"), SmallBitmap());
  std::filesystem::create_directory(Path("sub"));
  ASSERT_EQ(Run("model.grid --iterations 0 --image photo.bmp --vrml sub/o.wrl"), 0) << Bytes("err");
  const std::string jpeg = Bytes("sub/picture.jpg");
  EXPECT_EQ(jpeg.substr(0, 3), "\xFF\xD8\xFF");
  // The frame header: two bytes each for height and width.
  const std::size_t frame = jpeg.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  EXPECT_EQ(jpeg.substr(frame + 5, 4), std::string("\0\x02\0\x03", 4));
}

TEST_F(Batch, CopiesAnUprightJpegByteByByte) {
  const CPicture photograph = Squares();
  CJpegSettings settings;
  WriteText(Path("photo.heic"), TestJpeg(photograph, settings));
  ASSERT_EQ(Run("model.grid --iterations 0 --image photo.heic --vrml o.wrl"), 0) << Bytes("err");
  EXPECT_EQ(Bytes("picture.jpg"), Bytes("photo.heic"));
  settings.m_iOrientation = 6;
  WriteText(Path("portrait.jpg"), TestJpeg(photograph, settings));
  ASSERT_EQ(Run("model.grid --iterations 0 --image portrait.jpg --vrml o.wrl"), 0) << Bytes("err");
  const CReadPicture turned = ReadPicture(Path("picture.jpg"));
  EXPECT_NE(turned.m_pJpeg, nullptr) << "upright now";
  EXPECT_LE(MeanDifference(turned.m_Picture, ReadPicture(Path("portrait.jpg")).m_Picture), 4);
}

TEST_F(Batch, ReadsPhotographsOfEveryKindAndTellsOfACutOne) {
  const std::string png = TestPng(Squares(), {});
  WriteText(Path("photo"), png);
  ASSERT_EQ(Run("model.grid --iterations 0 --image photo --vrml o.wrl"), 0) << Bytes("err");
  EXPECT_LE(MeanDifference(ReadPicture(Path("picture.jpg")).m_Picture, Squares()), 4);
  WriteText(Path("photo"), TestJpeg(Squares(), {}).substr(0, 800));
  EXPECT_EQ(Run("model.grid --iterations 0 --image photo --vrml o.wrl"), 0);
  EXPECT_NE(Bytes("err").find("The file photo is shorter than its header says."), std::string::npos);
  WriteText(Path("photo"), png.substr(0, 40));
  EXPECT_EQ(Run("model.grid --iterations 0 --image photo --vrml o.wrl"), 2);
  EXPECT_NE(Bytes("err").find("can be read: this PNG ends before anything of it can be shown."), std::string::npos);
}

TEST_F(Batch, RefusesAPictureThatIsTooWideForItsFormat) {
  std::string bitmap = SmallBitmap();
  bitmap.replace(18, 8, std::string("\xDD\xFF\0\0\x01\0\0\0", 8));
  WriteText(Path("wide.bmp"), bitmap + std::string(std::size_t{3} * 0xFFDD, 0));
  EXPECT_EQ(Run("model.grid --iterations 0 --image wide.bmp --vrml o.wrl"), 4);
  EXPECT_FALSE(std::filesystem::exists(Path("picture.jpg")));
}

TEST_F(Batch, EndsWithOneOnMisuse) {
  for (const char* arguments : {"",
                                "--nonsense model.grid",
                                "model.grid more.grid",
                                "model.grid --iterations -1",
                                "model.grid --iterations x",
                                "model.grid --iterations 5 --until-converged",
                                "model.grid --iterations 5 --max-iterations 9",
                                "model.grid --wavelets old",
                                "model.grid --report xml",
                                "model.grid --with-lights",
                                "model.grid --size 5x5",
                                "model.grid --height-field o.txt --size 1x5",
                                "model.grid --height-field o.txt --size 5x1",
                                "model.grid --height-field o.txt --size 5",
                                "model.grid --height-field o.txt --size 5x5x5",
                                "model.grid --seed -3",
                                "model.grid --save",
                                "model.grid --max-seconds 0",
                                "model.grid --max-seconds -1",
                                "model.grid --max-seconds +5",
                                "model.grid --max-seconds 0x10",
                                "model.grid --max-seconds ' 5'",
                                "model.grid --max-seconds inf",
                                "model.grid --max-seconds nan",
                                "model.grid --max-seconds 1e999",
                                "model.grid --max-seconds 5s",
                                "model.grid --max-seconds ''"}) {
    EXPECT_EQ(Run(arguments), 1) << arguments;
    EXPECT_EQ(Bytes("out"), "") << arguments;
    EXPECT_NE(Bytes("err"), "") << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists(Path("o.txt")));
}

TEST_F(Batch, EndsWithTwoOnBadInput) {
  WriteText(Path("bad.grid"), "no grid file");
  WriteText(Path("bad.bmp"), "no picture");
  for (const char* arguments :
       {"none.grid", "bad.grid", ".", "model.grid --image none.bmp", "model.grid --image bad.bmp"}) {
    EXPECT_EQ(Run(std::string(arguments) + " --quiet --save o.grid"), 2) << arguments;
    EXPECT_EQ(Bytes("err").find("relievo-batch: The file "), 0U) << arguments;
  }
  EXPECT_NE(Bytes("err").find("can be read: this is no picture that is known here; this build reads BMP, JPEG"),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(Path("o.grid")));
}

TEST_F(Batch, EndsWithFourWhereAnOutputCannotBeWrittenAndWritesTheOthers) {
  WriteText(Path("photo.bmp"), SmallBitmap());
  std::filesystem::create_directory(Path("picture.jpg"));
  const std::string image = "model.grid --image photo.bmp --iterations 0 --save o.grid";
  EXPECT_EQ(Run(image + " --vrml o.wrl"), 4);
  EXPECT_EQ(Run(image + " --vrml none/o.wrl"), 4);
  EXPECT_EQ(Run(image + " --height-field none/o.txt"), 4);
  EXPECT_EQ(Run("model.grid --iterations 0 --save none/o.grid"), 4);
  EXPECT_EQ(Run("model.grid --max-iterations 10 --save none/o.grid"), 4) << "goes before not converged";
  EXPECT_NE(Bytes("o.grid"), "");
  EXPECT_NE(Bytes("o.wrl"), "");
}

TEST_F(Batch, EndsWithFourOnAFullDiskAndLeavesTheOldFilesWhole) {
  for (const char* option : {"--save", "--vrml", "--height-field"}) {
    WriteText(Path("old"), "old contents");
    EXPECT_EQ(Run(std::string("model.grid --iterations 0 --quiet ") + option + " old", "trap '' XFSZ; ulimit -f 1;"),
              4);
    EXPECT_EQ(Bytes("old"), "old contents") << option;
  }
}

TEST_F(Batch, TellsOfAFullDiskEvenWhereThatWouldEndAProcess) {
  EXPECT_EQ(Run("model.grid --iterations 0 --quiet --save new", "ulimit -f 1;"), 4);
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
}

TEST_F(Batch, TakesNoPipesAndDevicesAndDoesNotWaitForThem) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(Run("pipe --quiet"), 2);
  EXPECT_EQ(Run("model.grid --image pipe --quiet"), 2);
  for (const char* output : {"pipe", "/dev/null", "/dev/stdout"}) {
    EXPECT_EQ(Run(std::string("model.grid --iterations 0 --quiet --save ") + output), 4) << output;
    EXPECT_EQ(Bytes("out"), "") << output;
  }
}

TEST_F(Batch, EndsByTheSignalThatCameAndWritesNothingMore) {
  CTestGrid large(8, 5);
  AddAll(large.m_Grid, SomeConstraints());
  large.m_Grid.PerformPendingWork();
  WriteText(Path("large.grid"), GridText(large.m_Grid));
  WriteText(Path("old.grid"), "old contents");
  for (const auto& [signal, number] : {std::pair{"TERM", SIGTERM}, {"HUP", SIGHUP}}) {
    // Once the surface is transferred, many seconds of iterations follow.
    const std::string command = std::string("cd '") + m_Directory.Path().string() +
                                "' && rm -f err; env --default-signal=HUP '" RELIEVO_BATCH
                                "' large.grid --high-res --wavelets no --save old.grid 2>err & program=$!;"
                                " until grep -q Transmit err 2>/dev/null; do :; done; kill -" +
                                signal + " $program; wait $program";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 128 + number) << signal;
    EXPECT_EQ(Bytes("old.grid"), "old contents");
  }
}

TEST_F(Batch, EndsWithFourWhereTheReportFindsNoRoom) {
  const std::string command =
      "'" RELIEVO_BATCH "' --quiet --iterations 0 --report json '" + Path("model.grid").string() + "' >/dev/full";
  EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 4);
}

TEST_F(Batch, PrintsHelpAndVersion) {
  EXPECT_EQ(Run("--help"), 0);
  EXPECT_NE(Bytes("out").find("--height-field"), std::string::npos);
  EXPECT_EQ(Run("--version"), 0);
  EXPECT_EQ(Bytes("out"), "relievo-batch " RELIEVO_VERSION "\n");
}

// Every option of the help has its place in the manual, and every exit status.
TEST_F(Batch, IsDescribedByItsManualPage) {
  std::string manual = BytesOf(RELIEVO_MANUAL);
  manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
  ASSERT_EQ(Run("--help"), 0);
  std::istringstream help(Bytes("out"));
  int options = 0;
  for (std::string word; help >> word;) {
    const std::size_t dashes = word.find("--");
    if (dashes == std::string::npos) continue;
    ++options;
    EXPECT_NE(manual.find(word.substr(dashes, word.find_first_of(",:=", dashes) - dashes)), std::string::npos) << word;
  }
  EXPECT_GE(options, 23);
  for (const char* status : {"0", "1", "2", "3", "4", "5"})
    EXPECT_NE(manual.find(std::string(".TP\n.B ") + status + "\n"), std::string::npos) << status;
}

TEST_F(Batch, NeedsNeitherToolkitNorOpenGL) {
  ASSERT_EQ(std::system(("ldd '" RELIEVO_BATCH "' >'" + Path("libraries").string() + "'").c_str()), 0);
  const std::string libraries = Bytes("libraries");
  EXPECT_NE(libraries.find("libjpeg"), std::string::npos);
  for (const char* library : {"fltk", "libGL", "libEGL", "libOpenGL", "libX11"})
    EXPECT_EQ(libraries.find(library), std::string::npos) << library;
}

}  // namespace
