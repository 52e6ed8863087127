// The commands that write the surface, and films of it, for other programs.

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CCamera.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/GridCommandsTest.h"

namespace {

namespace fs = std::filesystem;

class ExportCommandsTest : public GridCommandsTest {
 protected:
  ExportCommandsTest() {
    CModelServices services = Services();
    services.m_Export.m_AskModel = [this](CExportSurvey& survey, const CExportSettings& given) {
      Note("ask model");
      m_bPhotograph = given.m_pPhotograph != nullptr;
      if (m_Model.has_value()) {
        m_Model->m_Settings.m_pPhotograph = given.m_pPhotograph;
        m_Model->m_Settings.m_pPictures = given.m_pPictures;
      }
      if (m_Model.has_value()) m_Described = survey.DescribeExport(*m_Model->m_pFormat, m_Model->m_Settings);
      return m_Model;
    };
    services.m_Export.m_AskFilm = [this](std::size_t recorded) {
      Note("ask film");
      m_uRecorded = recorded;
      return m_Film;
    };
    services.m_Export.m_DrawModels = [this](int width, int height) -> CExportServices::DrawModel {
      return [this, width, height](const CCamera& camera) {
        m_aCameras.push_back(camera);
        const auto shade = static_cast<std::uint8_t>(m_aCameras.size());
        return std::optional(PlainPicture(width, height, shade, 100, 100));
      };
    };
    services.m_Export.m_ShowProgress = [this](const std::string& title,
                                              const std::function<CSaveOutcome(ExportProgress&)>& work) {
      Note(title);
      return work(m_Progress);
    };
    m_Commands.SetServices(services);
  }

  /// Exports in the format of a suffix to a name.
  void Export(const std::string& suffix, const std::string& file) {
    m_Model = CExportChoice{ExportFormatOf("a" + suffix), {}};
    m_Host.m_File = file;
    m_Commands.ExportModel();
  }
  void ExportFilm(const CFilmChoice& choice, const std::string& file) {
    m_Film = choice;
    m_Host.m_File = file;
    m_Commands.ExportFilm();
  }

  struct CProgressOf : ExportProgress {
    bool Goes(double /*share*/) override { return m_bGoes; }
    bool m_bGoes = true;
  };

  CTemporaryDirectory m_Scratch;
  std::optional<CExportChoice> m_Model;
  std::optional<CFilmChoice> m_Film;
  CExportDescription m_Described;
  CProgressOf m_Progress;
  std::vector<CCamera> m_aCameras;  ///< that were drawn by
  std::size_t m_uRecorded = 99;
  bool m_bPhotograph = true;
};

// A turn of a tenth of a second.
CFilmChoice ShortTurn() {
  CFilmChoice choice;
  choice.m_pFormat = FilmFormats().data();
  choice.m_fTurnSeconds = 0.1;
  choice.m_iWidth = 16;
  choice.m_iHeight = 8;
  return choice;
}

}  // namespace

TEST_F(ExportCommandsTest, AModelIsAskedForDescribedAndWritten) {
  Export(".ply", m_Scratch.File("a.ply"));
  EXPECT_EQ(m_asDone, (Done{"ask model", "Writing a.ply"}));
  EXPECT_FALSE(m_bRanMeanwhile);
  EXPECT_TRUE(Grid().Run().IsRunning()) << "it goes on";
  EXPECT_EQ(m_Host.m_iDragEnds, 1);
  EXPECT_FALSE(m_bPhotograph);
  EXPECT_GT(m_Described.m_uTriangles, 0U);
  EXPECT_EQ(m_Host.m_aChoosers.front(),
            (std::pair<std::string, std::string>("please input a file name for the model", "*.ply")));
  EXPECT_EQ(BytesOf(m_Scratch.File("a.ply")).substr(0, 4), "ply\n");
  EXPECT_EQ(m_Host.m_asSaved, Done{m_Scratch.File("a.ply")});
}

TEST_F(ExportCommandsTest, NothingHappensWhereTheUserCancels) {
  m_Commands.ExportModel();
  m_Commands.ExportFilm();
  EXPECT_EQ(m_asDone, (Done{"ask model", "ask film"}));
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
  m_Model = CExportChoice{ExportFormats().data(), {}};
  m_Film = ShortTurn();
  m_Commands.ExportModel();
  m_Commands.ExportFilm();
  EXPECT_EQ(m_Host.m_aChoosers.size(), 2U);
  EXPECT_TRUE(m_Host.m_asSaved.empty());
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(ExportCommandsTest, NamesGetTheSuffixOfTheFormat) {
  Export(".stl", m_Scratch.File("a"));
  Export(".stl", m_Scratch.File("b.glb"));
  Export(".stl", m_Scratch.File("c.STL"));
  ExportFilm(ShortTurn(), m_Scratch.File("d.mp4"));
  for (const char* name : {"a.stl", "b.glb.stl", "c.STL", "d.mp4.webp"})
    EXPECT_TRUE(fs::exists(m_Scratch.File(name))) << name;
}

TEST_F(ExportCommandsTest, ProposesTheNameOfTheModelWithTheSuffix) {
  Export(".glb", m_Scratch.File("first.glb"));
  EXPECT_EQ(m_Host.m_asStarts.back(), "");
  m_Commands.Files().SetModel({.m_File = "/models/cup.old.grid"});
  Export(".glb", m_Scratch.File("first.glb"));
  EXPECT_EQ(m_Host.m_asStarts.back(), "/models/cup.old.glb");
  m_Commands.Files().Folders().Note(".glb", m_Scratch.File("first.glb"));
  Export(".glb", m_Scratch.File("first.glb"));
  EXPECT_EQ(m_Host.m_asStarts.back(), m_Scratch.File("cup.old.glb"));
}

TEST_F(ExportCommandsTest, NeverOverwritesThePhotograph) {
  m_Host.m_Texture = m_Scratch.File("cup.jpg");
  WriteText(m_Host.m_Texture, "photograph");
  Export(".obj", m_Scratch.File("cup.obj"));
  EXPECT_EQ(m_Host.m_asStarts.back(), m_Scratch.File("cup-export.obj"));
  ASSERT_EQ(m_Host.m_asNotices.size(), 1U);
  EXPECT_EQ(m_Host.m_asNotices.front(),
            "The export would overwrite the photograph " + m_Host.m_Texture + ". Choose another name.");
  EXPECT_EQ(m_Scratch.Names(), Done{"cup.jpg"});
  EXPECT_EQ(BytesOf(m_Host.m_Texture), "photograph");
}

TEST_F(ExportCommandsTest, KeepsTheOldFileOnce) {
  WriteText(m_Scratch.File("a.stl"), "old");
  Export(".stl", m_Scratch.File("a.stl"));
  Export(".stl", m_Scratch.File("a.stl"));
  EXPECT_EQ(BytesOf(m_Scratch.File("a.stl~")), "old");
}

TEST_F(ExportCommandsTest, KeepsTheOldOnesOfAllFilesOfAModel) {
  Grid().Relighting().SetPicture(PlainPicture(3, 2, 10, 200, 30));
  const Done names{"a.jpg", "a.mtl", "a.obj", "a-texture.png"};
  for (const std::string& name : names) WriteText(m_Scratch.File(name), "old");
  Export(".obj", m_Scratch.File("a.obj"));
  Export(".obj", m_Scratch.File("a.obj"));
  for (const char* name : {"a.jpg", "a.mtl", "a.obj"}) {
    EXPECT_NE(BytesOf(m_Scratch.File(name)), "old") << name;
    EXPECT_EQ(BytesOf(m_Scratch.File(name + std::string("~"))), "old") << name;
  }
  EXPECT_EQ(BytesOf(m_Scratch.File("a-texture.png")), "old");
  EXPECT_FALSE(fs::exists(m_Scratch.File("a-texture.png~")));
  WriteText(m_Scratch.File("b.png.json"), "old");
  Export(".png", m_Scratch.File("b.png"));
  EXPECT_EQ(BytesOf(m_Scratch.File("b.png.json~")), "old");
}

TEST_F(ExportCommandsTest, TheModelIsCalledAsItsOwnFile) {
  const auto isNamed = [](const std::string& file, const std::string& name) {
    return BytesOf(file).find(R"("name":")" + name + '"') != std::string::npos;
  };
  Export(".glb", m_Scratch.File("c-open.glb"));
  EXPECT_TRUE(isNamed(m_Scratch.File("c-open.glb"), "c-open")) << "the model has none";
  m_Commands.Files().SetModel({.m_File = "/models/coffee.grid"});
  Export(".glb", m_Scratch.File("c-open.glb"));
  EXPECT_TRUE(isNamed(m_Scratch.File("c-open.glb"), "coffee"));
}

TEST_F(ExportCommandsTest, TellsOfASurfaceThatIsNotTheLast) {
  Export(".stl", m_Scratch.File("a.stl"));
  ASSERT_EQ(m_Host.m_asNotices.size(), 1U);
  EXPECT_EQ(m_Host.m_asNotices.back(),
            "The solver has not converged yet: " + m_Scratch.File("a.stl") + " holds the surface as it is shown.");
  for (int tick = 0; tick < 1000 && !Grid().Solver().HasConverged(); ++tick) Grid().UpdateGrid();
  Export(".stl", m_Scratch.File("a.stl"));
  EXPECT_EQ(m_Host.m_asNotices.size(), 1U);
}

TEST_F(ExportCommandsTest, TellsOfAFilmOfASurfaceThatIsNotTheLast) {
  ExportFilm(ShortTurn(), m_Scratch.File("a.webp"));
  EXPECT_EQ(m_Host.m_asNotices, Done{"The solver has not converged yet: " + m_Scratch.File("a.webp") +
                                     " holds the surface as it is shown."});
  for (int tick = 0; tick < 1000 && !Grid().Solver().HasConverged(); ++tick) Grid().UpdateGrid();
  ExportFilm(ShortTurn(), m_Scratch.File("a.webp"));
  EXPECT_EQ(m_Host.m_asNotices.size(), 1U);
}

TEST_F(ExportCommandsTest, TellsFailuresAndLeavesNothingBehind) {
  Export(".stl", m_Scratch.File("missing/a.stl"));
  EXPECT_EQ(m_Host.m_asNotices.back(), "The file " + m_Scratch.File("missing/a.stl") +
                                           " could not be written. If it existed before, it is unchanged.");
  m_Progress.m_bGoes = false;
  const std::size_t notices = m_Host.m_asNotices.size();
  Export(".stl", m_Scratch.File("a.stl"));
  ExportFilm(ShortTurn(), m_Scratch.File("a.webp"));
  EXPECT_EQ(m_Host.m_asNotices.size(), notices);
  EXPECT_EQ(m_Host.m_asCancelled, (Done{m_Scratch.File("a.stl"), m_Scratch.File("a.webp")}));
  EXPECT_TRUE(fs::is_empty(m_Scratch.Path()));
  EXPECT_TRUE(m_Host.m_asSaved.empty());
}

TEST_F(ExportCommandsTest, ATurntableTurnsOnceAboutTheVerticalAxis) {
  m_Host.m_Views.m_fR = 10;
  m_Host.m_Views.m_Centre = {1, 2, 3};
  m_Host.m_Views.m_Eye = {1, 10, 9};
  m_Host.m_Views.m_Up = {0, 6, -8};
  ExportFilm(ShortTurn(), m_Scratch.File("a.webp"));
  EXPECT_EQ(m_asDone, (Done{"ask film", "Writing a.webp"}));
  EXPECT_EQ(m_Host.m_aChoosers.front(),
            (std::pair<std::string, std::string>("please input a file name for the film", "*.webp")));
  ASSERT_EQ(m_aCameras.size(), 3U);
  for (std::size_t k = 0; k < 3; ++k) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(k) / 3;
    EXPECT_LT(Length(m_aCameras[k].m_Eye - Vector3{1 + 6 * std::sin(angle), 10, 3 + 6 * std::cos(angle)}), 1e-9);
    EXPECT_LT(Length(m_aCameras[k].m_Up - Vector3{-8 * std::sin(angle), 6, -8 * std::cos(angle)}), 1e-9);
    EXPECT_EQ(m_aCameras[k].m_Centre, (Vector3{1, 2, 3}));
    EXPECT_EQ(m_aCameras[k].m_fR, 10);
  }
  EXPECT_EQ(m_Host.m_asSaved, Done{m_Scratch.File("a.webp")});
  EXPECT_EQ(m_uRecorded, 0U);
}

TEST_F(ExportCommandsTest, AFilmOfTheRecordingShowsItsFramesAtTheirTimes) {
  for (int k = 0; k < 60; ++k) m_Host.m_aRecording.push_back({{}, {0, 0, 100.0 + k}, {0, 1, 0}, 5, 0});
  CFilmChoice choice = ShortTurn();
  choice.m_Source = FilmSource::Recording;
  choice.m_fFrameSeconds = 0.02;
  ExportFilm(choice, m_Scratch.File("a.webp"));
  EXPECT_EQ(m_uRecorded, 60U);
  const std::vector<std::size_t> expected = ResampledFrames(60, 0.02);
  ASSERT_EQ(m_aCameras.size(), 36U);
  for (std::size_t k = 0; k < 36; ++k) {
    EXPECT_EQ(m_aCameras[k].m_Eye.z, 100.0 + static_cast<double>(expected[k]));
    EXPECT_EQ(m_aCameras[k].m_fR, 5);
  }
}
