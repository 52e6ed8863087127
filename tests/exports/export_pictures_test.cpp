// The pictures that exported surfaces show.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/JpegFile.h"
#include "codecs/PictureFormats.h"
#include "codecs/PngBytes.h"
#include "exports/CExportPictures.h"
#include "exports/SurfaceExport.h"
#include "quadtree/TreeNormals.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"
#include "support/FileBuilders.h"

namespace {

// A noisy surface, a photograph of noise and lights.
struct CPictured {
  CPictured() {
    SetRandomHeights(m_Torn.Lattice(), 3);
    ComputeNormals(m_Torn.m_Grid.Surface().Tree());
    SwitchOnLights(m_Torn.m_Grid);
  }

  CTornGrid m_Torn{{}};
  CReadPicture m_Photograph = PhotographOf(RandomPicture(40, 30));
  CExportPictures m_Pictures{m_Torn.m_Grid, &m_Photograph};
};

}  // namespace

TEST(ExportPicturesTest, AreThePhotographOrWhatTheLightsMakeOfIt) {
  CPictured model;
  EXPECT_EQ(&model.m_Pictures.Pixels(ExportTexture::Photograph), &model.m_Photograph.m_Picture);
  EXPECT_EQ(model.m_Pictures.Encoded(ExportTexture::Photograph).m_Bytes, JpegOf(model.m_Photograph.m_Picture));
  EXPECT_EQ(model.m_Pictures.Encoded(ExportTexture::Photograph).m_MimeType, "image/jpeg");
  EXPECT_TRUE(model.m_Pictures.Encoded(ExportTexture::None).m_Bytes.empty());
  for (const ExportTexture which : {ExportTexture::Albedo, ExportTexture::Relit}) {
    const CPicture& pixels = model.m_Pictures.Pixels(which);
    EXPECT_EQ(pixels.m_aPixels.size(), model.m_Photograph.m_Picture.m_aPixels.size());
    EXPECT_NE(pixels.m_aPixels, model.m_Photograph.m_Picture.m_aPixels);
    EXPECT_EQ(model.m_Pictures.Encoded(which).m_Bytes, PngOf(pixels));
    EXPECT_EQ(model.m_Pictures.Encoded(which).m_MimeType, "image/png");
  }
  EXPECT_NE(model.m_Pictures.Pixels(ExportTexture::Albedo).m_aPixels,
            model.m_Pictures.Pixels(ExportTexture::Relit).m_aPixels);
}

TEST(ExportPicturesTest, AreMadeOnce) {
  CPictured model;
  const char* const jpeg = model.m_Pictures.Encoded(ExportTexture::Photograph).m_Bytes.data();
  const char* const png = model.m_Pictures.Encoded(ExportTexture::Relit).m_Bytes.data();
  const CTemporaryDirectory directory;
  CExportSettings settings;
  settings.m_pPhotograph = &model.m_Photograph;
  settings.m_pPictures = &model.m_Pictures;
  for (const CExportFormat& format : ExportFormats())
    EXPECT_TRUE(ExportSurface(model.m_Torn.m_Grid, directory.File(std::string("a") + format.m_pSuffix), settings));
  EXPECT_EQ(model.m_Pictures.Encoded(ExportTexture::Photograph).m_Bytes.data(), jpeg);
  EXPECT_EQ(model.m_Pictures.Encoded(ExportTexture::Relit).m_Bytes.data(), png);
}

TEST(ExportPicturesTest, SayWhyThereIsNone) {
  CPictured model;
  CExportPictures none(model.m_Torn.m_Grid, nullptr);
  EXPECT_EQ(none.TroubleWith(ExportTexture::Photograph) + none.TroubleWith(ExportTexture::None), "");
  EXPECT_TRUE(none.Encoded(ExportTexture::Photograph).m_Bytes.empty());
  EXPECT_EQ(none.TroubleWith(ExportTexture::Albedo), "Without a photograph there is no albedo.");
  CStaging::AddedLights(model.m_Torn.m_Grid) = {};
  EXPECT_EQ(model.m_Pictures.TroubleWith(ExportTexture::Albedo), "");
  EXPECT_EQ(model.m_Pictures.TroubleWith(ExportTexture::Relit),
            "None of the added lights is active, so that there is no picture in other lights.");
  CStaging::RemovedLights(model.m_Torn.m_Grid) = {};
  EXPECT_EQ(model.m_Pictures.TroubleWith(ExportTexture::Albedo),
            "None of the removed lights is active, so that there is no albedo.");
  EXPECT_TRUE(model.m_Pictures.Pixels(ExportTexture::Albedo).m_aPixels.empty());
  EXPECT_TRUE(model.m_Pictures.Encoded(ExportTexture::Relit).m_Bytes.empty());
}

TEST(ExportPicturesTest, LeaveTheImagesOfTheModelAlone) {
  CPictured model;
  CGrid& grid = model.m_Torn.m_Grid;
  grid.Relighting().SetPicture(model.m_Photograph.m_Picture);
  const auto revision = [&grid] { return grid.Relighting().Textures().Revision(CTextureImages::kKd); };
  const unsigned before = revision();
  model.m_Pictures.Encoded(ExportTexture::Albedo);
  EXPECT_EQ(revision(), before);
  EXPECT_FALSE(grid.Relighting().Albedo().IsComputed());
  EXPECT_TRUE(grid.Relighting().Texels().Normals().empty());
}

// A JPEG has at most 65500 pixels in a row.
TEST(ExportPicturesTest, ThatAreTooLongForAJpegAreNamedForWhatTheyAre) {
  CTornGrid torn({});
  const CTemporaryDirectory directory;
  const CReadPicture photograph = PhotographOf(PlainPicture(65501, 1));
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  ASSERT_TRUE(ExportSurface(torn.m_Grid, directory.File("long strip.obj"), settings));
  EXPECT_NE(BytesOf(directory.File("long_strip.mtl")).find("\nmap_Kd long_strip-texture.png\n"), std::string::npos);
  EXPECT_TRUE(IsPng(BytesOf(directory.File("long_strip-texture.png"))));
  EXPECT_FALSE(std::filesystem::exists(directory.File("long_strip.jpg")));
}

TEST(ExportPicturesTest, AreAmongTheFilesThatAnExportMayMake) {
  const CExportFormat* obj = ExportFormatOf("a.obj");
  CExportSettings settings;
  using CNames = std::vector<std::string>;
  EXPECT_EQ(obj->m_pCompanions("a b.obj", settings), (CNames{"a_b.mtl", "a_b.jpg", "a_b-texture.png"}));
  settings.m_Texture = ExportTexture::Relit;
  EXPECT_EQ(obj->m_pCompanions("a b.obj", settings), (CNames{"a_b.mtl", "a_b-texture.png"}));
  settings.m_Texture = ExportTexture::None;
  EXPECT_EQ(obj->m_pCompanions("a b.obj", settings), (CNames{"a_b.mtl"}));
}

// The colours of vertices are those of the picture, the right way up.
TEST(ExportPicturesTest, ColourTheVerticesOfAPly) {
  CPictured model;
  const CTemporaryDirectory directory;
  CExportSettings settings;
  settings.m_pPhotograph = &model.m_Photograph;
  settings.m_pPictures = &model.m_Pictures;
  settings.m_Texture = ExportTexture::Albedo;
  ASSERT_TRUE(ExportSurface(model.m_Torn.m_Grid, directory.File("a.ply"), settings));
  const std::string bytes = BytesOf(directory.File("a.ply"));
  const std::size_t first = bytes.find("end_header\n") + 11 + 8 * sizeof(float);
  const CPicture& albedo = model.m_Pictures.Pixels(ExportTexture::Albedo);
  // The first vertex is the lower left corner, as the first pixel is.
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(static_cast<std::uint8_t>(bytes[first + k]), albedo.m_aPixels[k]);
}

TEST(ExportPicturesTest, ThatCannotBeHadRefuseTheModelThatWouldShowThem) {
  CTornGrid torn({});
  const CTemporaryDirectory directory;
  CExportSettings settings;
  settings.m_Texture = ExportTexture::Albedo;
  for (const char* suffix : {".glb", ".obj", ".ply", "-albedo.png"}) {
    const std::string file = directory.File(std::string("a") + suffix);
    EXPECT_EQ(ExportSurface(torn.m_Grid, file, settings).m_Trouble,
              "Without a photograph there is no albedo. The file " + file + " is not written.");
  }
  EXPECT_TRUE(std::filesystem::is_empty(directory.Path()));
  EXPECT_TRUE(ExportSurface(torn.m_Grid, directory.File("a.stl"), settings)) << "it shows none";
}
