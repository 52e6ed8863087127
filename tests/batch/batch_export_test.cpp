// The program itself writes the surface for other programs.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "batch/BatchTest.h"
#include "exports/SurfaceExport.h"
#include "projects/ProjectFile.h"
#include "support/ExportBuilders.h"
#include "support/ProjectBuilders.h"

namespace {

class BatchExport : public Batch {
 protected:
  BatchExport() {
    WriteText(Path("photo.bmp"), SmallBitmap());
    SwitchOnLights(m_Model.m_Grid);
    m_Model.m_Grid.Save(Path("lit.grid"), [] { return true; });
  }

  void ExpectRefused(const std::string& arguments, const std::string& message) const {
    EXPECT_EQ(Run(arguments), 1) << arguments;
    EXPECT_NE(Bytes("err").find(message), std::string::npos) << arguments << '\n' << Bytes("err");
    EXPECT_EQ(Bytes("err").find("CGrid"), std::string::npos) << arguments << ": the model has been read";
  }
};

// The largest coordinate along an axis of the triangles of a binary STL.
float LargestIn(const std::string& stl, std::size_t axis) {
  float largest = -1e30F;
  for (std::size_t at = 84; at + 50 <= stl.size(); at += 50) {
    for (std::size_t corner = 1; corner <= 3; ++corner) {
      float value = 0;
      std::memcpy(&value, &stl[at + 12 * corner + 4 * axis], sizeof(value));
      largest = std::max(largest, value);
    }
  }
  return largest;
}

TEST_F(BatchExport, WritesEveryFormatInOneRun) {
  std::string arguments = "lit.grid --image photo.bmp --iterations 0";
  for (const CExportFormat& format : ExportFormats()) arguments += std::string(" --export m") + format.m_pSuffix;
  ASSERT_EQ(Run(arguments), 0) << Bytes("err");
  EXPECT_EQ(Bytes("m.glb").substr(0, 4), "glTF");
  EXPECT_NE(Bytes("m.glb").find("\xFF\xD8\xFF"), std::string::npos) << "with the photograph";
  EXPECT_NE(Bytes("m.obj").find("\nmtllib m.mtl\n"), std::string::npos);
  EXPECT_NE(Bytes("m.mtl").find("\nmap_Kd m.jpg\n"), std::string::npos);
  EXPECT_EQ(Bytes("m.jpg").substr(0, 2), "\xFF\xD8");
  EXPECT_NE(Bytes("m.ply").find("\nproperty uchar blue\n"), std::string::npos);
  EXPECT_GT(Bytes("m.stl").size(), 1000U);
  for (const char* name : {"m.png", "m-normal.png", "m-albedo.png", "m-relit.png"})
    EXPECT_EQ(Bytes(name).substr(1, 3), "PNG") << name;
  EXPECT_NE(Bytes("m.png.json").find("\"scale\""), std::string::npos);
  EXPECT_EQ(Bytes("m.tif").substr(0, 2), "II");
  EXPECT_EQ(Bytes("m.pfm").substr(0, 9), "Pf\n17 17\n");
}

TEST_F(BatchExport, TakesTheSamplesAndTheDirectionThatAreAskedFor) {
  ASSERT_EQ(Run("model.grid --iterations 0 --export m.pfm --export m-normal.png --resolution 30x20"), 0)
      << Bytes("err");
  EXPECT_EQ(Bytes("m.pfm").substr(0, 9), "Pf\n30 20\n");
  EXPECT_EQ(Bytes("m.pfm").size(), 9 + 5 + 4 * 30 * 20U);
  const std::string up = Bytes("m-normal.png");
  ASSERT_EQ(Run("model.grid --iterations 0 --export m-normal.png --resolution 30x20 --green down"), 0);
  EXPECT_NE(Bytes("m-normal.png"), up);
  ASSERT_EQ(Run("model.grid --iterations 0 --export m-normal.png --resolution 30x20 --green up"), 0);
  EXPECT_EQ(Bytes("m-normal.png"), up);
}

TEST_F(BatchExport, ShowsThePictureThatIsAskedFor) {
  const std::string run = "lit.grid --image photo.bmp --iterations 0 --export m.ply --export m.obj --texture ";
  ASSERT_EQ(Run(run + "none"), 0) << Bytes("err");
  EXPECT_EQ(Bytes("m.ply").find("uchar blue"), std::string::npos);
  EXPECT_EQ(Bytes("m.mtl").find("map_Kd"), std::string::npos);
  ASSERT_EQ(Run(run + "photograph"), 0);
  const std::string photograph = Bytes("m.ply");
  EXPECT_NE(Bytes("m.mtl").find("\nmap_Kd m.jpg\n"), std::string::npos);
  for (const char* texture : {"albedo", "relit"}) {
    ASSERT_EQ(Run(run + texture + " --export m-" + texture + ".png"), 0) << Bytes("err");
    EXPECT_NE(Bytes("m.ply"), photograph);
    EXPECT_NE(Bytes("m.mtl").find("\nmap_Kd m-texture.png\n"), std::string::npos);
    EXPECT_EQ(Bytes("m-texture.png"), Bytes(std::string("m-") + texture + ".png"));
  }
}

TEST_F(BatchExport, TellsWhatThereIsNoPictureFor) {
  EXPECT_EQ(Run("model.grid --image photo.bmp --iterations 0 --export m-albedo.png --export m.tif"), 4);
  EXPECT_NE(
      Bytes("err").find("relievo-batch: None of the removed lights is active, so that there is no albedo. The file "
                        "m-albedo.png is not written."),
      std::string::npos)
      << Bytes("err");
  EXPECT_TRUE(std::filesystem::exists(Path("m.tif")));
  EXPECT_EQ(Run("lit.grid --iterations 0 --export m-relit.png"), 4);
  EXPECT_NE(Bytes("err").find("Without a photograph there is no picture in other lights. The file m-relit.png"),
            std::string::npos)
      << Bytes("err");
  EXPECT_EQ(Run("model.grid --image photo.bmp --iterations 0 --export m.glb --texture albedo"), 4);
  EXPECT_FALSE(std::filesystem::exists(Path("m.glb")));
}

TEST_F(BatchExport, TakesTheSizesAndTheAxisThatAreAskedFor) {
  ASSERT_EQ(Run("model.grid --iterations 0 --export m.stl"), 0) << Bytes("err");
  const std::string plain = Bytes("m.stl");
  EXPECT_NEAR(LargestIn(plain, 0), 8, 1e-5) << "half of the model's width";
  EXPECT_NEAR(LargestIn(plain, 1), 3, 1e-5);
  ASSERT_EQ(Run("model.grid --iterations 0 --export m.stl --scale 2.5 --height-scale 3 --base 7 --up y"), 0);
  const std::string scaled = Bytes("m.stl");
  EXPECT_NEAR(LargestIn(scaled, 0), 20, 1e-4);
  EXPECT_NEAR(LargestIn(scaled, 2), 7.5, 1e-4);
  EXPECT_NEAR(LargestIn(scaled, 1), 7.5 * LargestIn(plain, 2), 1e-3);
}

TEST_F(BatchExport, ClosesTearsWithWallsWhereItIsAskedTo) {
  ASSERT_EQ(Run("model.grid --iterations 0 --export open.ply"), 0);
  ASSERT_EQ(Run("model.grid --iterations 0 --export wall.ply --tears wall"), 0);
  EXPECT_GT(Bytes("wall.ply").size(), Bytes("open.ply").size());
  for (const char* format : {"glb", "obj", "ply"}) {
    const std::string name = std::string("under.") + format;
    ASSERT_EQ(Run("model.grid --iterations 0 --export " + name + " --tears under"), 0);
    const std::size_t usual = Bytes(name).size();
    ASSERT_EQ(Run("model.grid --iterations 0 --export " + name + " --tears under --under-width 0.1"), 0);
    EXPECT_NE(usual, Bytes(name).size());
  }
}

TEST_F(BatchExport, RefusesNamesOfNoFormatAndOptionsWithoutOne) {
  for (const char* name : {"m", "m.grid", ".glb", "d/.glb", "m.glb.bak", "''"})
    ExpectRefused(std::string("model.grid --export ") + name,
                  "the name of a file is expected that ends with .glb, .obj, .ply, .stl");
  for (const char* option : {"--tears wall", "--under-width 2", "--up y", "--scale 2", "--height-scale 2", "--base 2",
                             "--texture none", "--resolution 2x2", "--green down"})
    ExpectRefused(std::string("model.grid ") + option, "--export");
  for (const char* number : {"0", "-1", "x", "''", "inf", "nan", "1e999", "2mm"}) {
    for (const char* option : {"--scale", "--height-scale", "--base", "--under-width"})
      ExpectRefused(std::string("model.grid --export m.stl ") + option + ' ' + number, "a number above 0 is expected");
  }
  ExpectRefused("model.grid --export m.glb --tears closed", "--tears");
  ExpectRefused("model.grid --export m.glb --up x", "--up");
  ExpectRefused("model.grid --export m.glb --texture kd", "--texture");
  ExpectRefused("model.grid --export m-normal.png --green left", "--green");
}

TEST_F(BatchExport, RefusesAResolutionThatNoExportHas) {
  for (const char* size : {"1x2", "2x8193", "8193x2", "x", "2", "2x", "2x2x2", "0x0", "-2x2", "2.5x2", "''"})
    ExpectRefused(std::string("model.grid --export m.png --resolution ") + size,
                  "WxH with whole numbers from 2 to 8192 is expected");
  ExpectRefused(
      "lit.grid --image photo.bmp --export m.glb --export m-relit.png --resolution 20x20",
      "--resolution is for maps of heights and normals (.png, .tif, .pfm, -normal.png); a mesh has the grid's "
      "own leaves");
  EXPECT_EQ(Run("model.grid --iterations 0 --export m.glb --export m.png --resolution 20x20"), 0) << Bytes("err");
}

TEST_F(BatchExport, OverwritesNeitherAnInputNorAnotherOutput) {
  WriteText(Path("model.obj"), Bytes("model.grid"));
  ExpectRefused("model.grid --export a.glb --export ./a.glb", "are one file");
  ExpectRefused("model.grid --save a.glb --export a.glb", "--save and --export are one file");
  ExpectRefused("model.obj --export model.obj", "--export and MODEL are one file");
  ExpectRefused("model.grid --image a.jpg --export a.obj", "are one file: a.jpg");
  ExpectRefused("model.grid --export 'a b.obj' --export a_b.obj", "are one file");
  ExpectRefused("model.grid --image a.png.json --export a.png", "are one file: a.png.json");
  ExpectRefused("model.grid --export a.obj --texture relit --export a-texture.png", "are one file");
  EXPECT_EQ(Bytes("model.obj"), Bytes("model.grid"));
}

TEST_F(BatchExport, SaysOfEachFileThatTheSurfaceIsNotTheLast) {
  const auto sentence = [](const std::string& file) {
    return "relievo-batch: The solver has not converged yet: " + file + " holds the surface as it is shown.\n";
  };
  for (const std::string quiet : {"", " --quiet"}) {
    EXPECT_EQ(Run("model.grid --max-iterations 10 --export a.glb --export b.ply" + quiet), 3);
    EXPECT_NE(Bytes("err").find(sentence("a.glb") + sentence("b.ply")), std::string::npos) << Bytes("err");
    EXPECT_EQ(Run("model.grid --iterations 10 --export a.glb" + quiet), 0);
    EXPECT_NE(Bytes("err").find(sentence("a.glb")), std::string::npos) << Bytes("err");
  }
  EXPECT_EQ(Run("model.grid --quiet --iterations 10 --export a.glb"), 0);
  EXPECT_EQ(Bytes("err"), sentence("a.glb"));
  EXPECT_EQ(Run("model.grid --quiet --export a.glb"), 0);
  EXPECT_EQ(Bytes("err"), "") << "it has converged";
  EXPECT_EQ(Run("model.grid --quiet --max-iterations 10 --save o.grid"), 3);
  EXPECT_EQ(Bytes("err"), "") << "there is no export";
  EXPECT_EQ(Run("model.grid --quiet --iterations 10 --export nowhere/a.glb"), 4);
  EXPECT_EQ(Bytes("err").find("converged"), std::string::npos) << Bytes("err");
}

TEST_F(BatchExport, IsCalledAsTheModelWhateverTheFileIs) {
  ASSERT_EQ(Run("model.grid --iterations 0 --export c-open.glb"), 0) << Bytes("err");
  EXPECT_NE(Bytes("c-open.glb").find("\"name\":\"model\""), std::string::npos);
  if (ExportFormatOf("a.html") == nullptr) return;
  ASSERT_EQ(Run("model.grid --iterations 0 --export c-open.html"), 0) << Bytes("err");
  EXPECT_NE(Bytes("c-open.html").find("<title>model</title>"), std::string::npos);
}

TEST_F(BatchExport, TakesOneFileForEachOption) {
  EXPECT_EQ(Run("model.grid --iterations 0 --export b.ply c.ply"), 1);
  EXPECT_EQ(Run("--iterations 0 --export b.ply c.ply model.grid"), 1);
  for (const char* name : {"b.ply", "c.ply"}) EXPECT_FALSE(std::filesystem::exists(Path(name))) << name;
  EXPECT_EQ(Run("--iterations 0 --export b.ply model.grid --export=c.ply"), 0) << Bytes("err");
  for (const char* name : {"b.ply", "c.ply"}) EXPECT_TRUE(std::filesystem::exists(Path(name))) << name;
}

TEST_F(BatchExport, NeverOverwritesThePhotographThatAProjectRemembers) {
  CProject project = ProjectOfOneHeight();
  const std::string photograph = SmallBitmap();
  project.m_Picture = {Path("cup.jpg"), "", std::make_shared<const std::string>(photograph)};
  ASSERT_TRUE(SaveProject(project, Path("cup.relievo")));
  ASSERT_EQ(Run("cup.relievo --iterations 0 --quiet --export cup.obj"), 0) << "there is no such file";
  std::filesystem::remove(Path("cup.mtl"));
  WriteText(Path("cup.jpg"), photograph);
  for (const char* image : {"", " --image photo.bmp"}) {
    EXPECT_EQ(Run(std::string("cup.relievo --iterations 0 --quiet --export m.ply --export cup.obj") + image), 1);
    EXPECT_EQ(
        Bytes("err"),
        "relievo-batch: a file beside --export cup.obj and the photograph of cup.relievo are one file: cup.jpg\n");
  }
  EXPECT_TRUE(Bytes("cup.jpg") == photograph);
  for (const char* name : {"cup.mtl", "m.ply"}) EXPECT_FALSE(std::filesystem::exists(Path(name))) << name;
  EXPECT_EQ(Run("cup.relievo --iterations 0 --export cup.obj --texture none"), 0) << Bytes("err");
  EXPECT_EQ(Run("cup.relievo --iterations 0 --vrml out.wrl --export cup-export.obj"), 0) << Bytes("err");
}

TEST_F(BatchExport, TellsWhatCouldNotBeWrittenAndWritesTheOthers) {
  EXPECT_EQ(Run("model.grid --iterations 0 --export nowhere/m.glb --export m.ply"), 4);
  EXPECT_NE(Bytes("err").find("relievo-batch: The file nowhere/m.glb could not be written."), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(Path("m.ply")));
  // Beyond what a float holds.
  for (const char* scale : {"--scale 1e300", "--scale 1e38", "--height-scale 1e300"}) {
    EXPECT_EQ(Run(std::string("model.grid --iterations 0 --export m.stl ") + scale), 4) << scale;
    EXPECT_NE(Bytes("err").find("no finite numbers"), std::string::npos) << scale << Bytes("err");
    EXPECT_FALSE(std::filesystem::exists(Path("m.stl")));
  }
}

}  // namespace
