// What is told of an export before it is written.

#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "exports/CleanFileMesh.h"
#include "exports/ExportSurvey.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"
#include "support/PictureBuilders.h"

namespace {

// A noisy surface with a tear, and a photograph.
struct CSurveyed {
  CSurveyed() {
    SetRandomSurface(m_Grid.m_Grid, 3);
    SwitchOnLights(m_Grid.m_Grid);
    m_Photograph.m_Picture = PlainPicture(40, 30, 10, 200, 30);
    m_Settings.m_pPhotograph = &m_Photograph;
  }
  CExportDescription Describe(const std::string& suffix) {
    return m_Survey.DescribeExport(*ExportFormatOf("a" + suffix), m_Settings);
  }
  // Of all files that the export makes.
  double BytesWritten(const CExportFormat& format) const {
    const CTemporaryDirectory directory;
    EXPECT_TRUE(ExportSurface(m_Grid.m_Grid, directory.File(std::string("a") + format.m_pSuffix), m_Settings));
    double bytes = 0;
    for (const auto& file : std::filesystem::directory_iterator(directory.Path()))
      bytes += static_cast<double>(file.file_size());
    return bytes;
  }

  CTornGrid m_Grid{{{{{3.25, 2}, {12, 13.5}}}}, 5, 5};
  CReadPicture m_Photograph;
  CExportSettings m_Settings;
  CExportSurvey m_Survey{m_Grid.m_Grid};
};

}  // namespace

TEST(ExportSurveyTest, CountsWhatTheFilesHold) {
  CSurveyed model;
  for (const TearGap gap : {TearGap::Open, TearGap::Wall}) {
    model.m_Settings.m_Gap = gap;
    const CFileMesh mesh = CleanFileMesh(model.m_Grid.m_Grid, {gap});
    for (const char* suffix : {".glb", ".obj", ".ply"}) {
      EXPECT_EQ(model.Describe(suffix).m_uVertices, mesh.m_aPositions.size()) << suffix;
      EXPECT_EQ(model.Describe(suffix).m_uTriangles, mesh.m_aTriangles.size()) << suffix;
    }
  }
  EXPECT_EQ(model.Describe(".stl").m_uTriangles, CleanSolid(model.m_Grid.m_Grid, {}, 2).m_aTriangles.size());
}

TEST(ExportSurveyTest, MeasuresInTheUnitOfTheFormat) {
  CTornGrid grid({}, 3, 3);
  grid.Raise([](int column, int /*row*/) { return 5.0 * column; });
  CExportSurvey survey(grid.m_Grid);
  const CExtent& e = grid.Lattice().Extent();
  CExportSettings settings;
  const CExportDescription metres = survey.DescribeExport(*ExportFormatOf("a.glb"), settings);
  EXPECT_STREQ(metres.m_pUnit, "m");
  EXPECT_NEAR(metres.m_afLength[0], 0.01 * (e.x1 - e.x0), 1e-9);
  EXPECT_NEAR(metres.m_afLength[1], 0.01 * (e.y1 - e.y0), 1e-9);
  EXPECT_NEAR(metres.m_afLength[2], 0.4, 1e-6);
  settings.m_fScale = 2;
  settings.m_fHeightScale = 3;
  settings.m_fBase = 4;
  const CExportDescription solid = survey.DescribeExport(*ExportFormatOf("a.stl"), settings);
  EXPECT_STREQ(solid.m_pUnit, "mm");
  EXPECT_NEAR(solid.m_afLength[0], 2 * (e.x1 - e.x0), 1e-9);
  EXPECT_NEAR(solid.m_afLength[2], 2 * 3 * 40 + 4, 1e-4);
}

TEST(ExportSurveyTest, ForetellsTheBytesOfAllFormats) {
  CSurveyed model;
  for (const CExportFormat& format : ExportFormats()) {
    const double written = model.BytesWritten(format);
    EXPECT_NEAR(model.Describe(format.m_pSuffix).m_fBytes, written, 0.06 * written) << format.m_pSuffix;
  }
}

// Of large maps and pictures some bands of rows are packed.
TEST(ExportSurveyTest, ForetellsTheBytesOfLargePictures) {
  CSurveyed model;
  model.m_Settings.m_Resolution = {700, 500};
  model.m_Photograph.m_Picture = Squares(640, 480);
  for (const char* suffix : {".png", ".tif", ".pfm", "-normal.png", "-albedo.png", "-relit.png"}) {
    const double written = model.BytesWritten(*ExportFormatOf(std::string("a") + suffix));
    EXPECT_NEAR(model.Describe(suffix).m_fBytes, written, 0.1 * written) << suffix;
  }
  EXPECT_EQ(model.Describe(".png").m_aiSamples, (std::array{700, 500}));
  EXPECT_EQ(model.Describe("-relit.png").m_aiSamples, (std::array{640, 480}));
}

TEST(ExportSurveyTest, CountsThePictureThatIsShown) {
  CSurveyed model;
  const double photograph = model.Describe(".glb").m_fBytes;
  model.m_Settings.m_Texture = ExportTexture::None;
  EXPECT_LT(model.Describe(".glb").m_fBytes, photograph);
  const CExportFormat& glb = *ExportFormatOf("a.glb");
  model.m_Settings.m_Texture = ExportTexture::Relit;
  EXPECT_NEAR(model.Describe(".glb").m_fBytes, model.BytesWritten(glb), 0.01 * model.BytesWritten(glb));
}

TEST(ExportSurveyTest, TellsHeightsThatAreNotFinite) {
  CTornGrid grid({});
  grid.Raise([](int column, int /*row*/) { return column == 3 ? std::numeric_limits<double>::infinity() : 1.0; });
  CExportSurvey survey(grid.m_Grid);
  for (const CExportFormat& format : ExportFormats())
    EXPECT_FALSE(survey.DescribeExport(format, {}).m_bFinite) << format.m_pSuffix;
}

TEST(DescriptionTextTest, IsWhatAUserReads) {
  CExportDescription description;
  description.m_uVertices = 16641;
  description.m_uTriangles = 1032768;
  description.m_afLength = {1, 0.75, 0.123456};
  description.m_pUnit = "m";
  description.m_fBytes = 12345678;
  EXPECT_EQ(DescriptionText(description), "16,641 vertices, 1,032,768 triangles\n1 x 0.75 x 0.123 m\nabout 12.3 MB");
  description.m_pUnit = "";
  description.m_afLength = {1234.4, 75, 0};
  description.m_fBytes = 12;
  EXPECT_EQ(DescriptionText(description), "16,641 vertices, 1,032,768 triangles\n1234 x 75 x 0\nabout 0.001 MB");
  description.m_bFinite = false;
  EXPECT_EQ(DescriptionText(description),
            "The surface has heights that are no finite numbers.\nIt cannot be exported.");
}

TEST(DescriptionTextTest, TellsThePixelsOfAPicture) {
  CExportDescription description;
  description.m_aiSamples = {129, 8192};
  description.m_fBytes = 2e6;
  EXPECT_EQ(DescriptionText(description), "129 x 8,192 pixels\nabout 2 MB");
}
