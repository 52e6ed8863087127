// Meshes in files, as readers that are not this program see them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <tiny_gltf.h>
#include <tiny_obj_loader.h>

#include "codecs/PngBytes.h"
#include "exports/CleanFileMesh.h"
#include "exports/GlbFile.h"
#include "exports/ObjFile.h"
#include "exports/PlyFile.h"
#include "exports/StlFile.h"
#include "exports/SurfaceExport.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"
#include "support/FileBuilders.h"
#include "support/MeshFileBuilders.h"
#include "support/ProgramRun.h"

namespace {

// Red, green, blue, white from the lower left corner on, in rows.
CPicture FourColours() { return {2, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}}; }

// With the third coordinate upwards; a format that has the second one upwards mirrors the third.
CFilePoint Upright(const CFilePoint& p) { return {p[0], p[2], -p[1]}; }

}  // namespace

// Binary glTF.

namespace {

struct CReadGlb {
  tinygltf::Model m_Model;
  std::string m_Trouble;
};
CReadGlb ReadGlb(const std::string& bytes) {
  CReadGlb read;
  tinygltf::TinyGLTF reader;
  std::string warning;
  const bool good = reader.LoadBinaryFromMemory(&read.m_Model, &read.m_Trouble, &warning,
                                                reinterpret_cast<const unsigned char*>(bytes.data()),
                                                static_cast<unsigned>(bytes.size()), "", tinygltf::REQUIRE_ALL);
  read.m_Trouble += warning;
  if (!good && read.m_Trouble.empty()) read.m_Trouble = "not read";
  return read;
}

// The numbers of an accessor, one after the other.
template <typename Number>
std::vector<Number> NumbersOf(const tinygltf::Model& model, int accessor, std::size_t perRow) {
  const tinygltf::Accessor& a = model.accessors.at(static_cast<std::size_t>(accessor));
  const tinygltf::BufferView& view = model.bufferViews.at(static_cast<std::size_t>(a.bufferView));
  std::vector<Number> numbers(a.count * perRow);
  std::memcpy(numbers.data(), &model.buffers.at(0).data.at(view.byteOffset + a.byteOffset),
              numbers.size() * sizeof(Number));
  return numbers;
}

}  // namespace

TEST(GlbTest, HoldsTheMeshWithTheHeightUpwards) {
  const CFileMesh mesh = Roof();
  const CReadGlb read = ReadGlb(*GlbOf(mesh, {}, "roof"));
  ASSERT_EQ(read.m_Trouble, "");
  const tinygltf::Primitive& surface = read.m_Model.meshes.at(0).primitives.at(0);
  const auto positions = NumbersOf<float>(read.m_Model, surface.attributes.at("POSITION"), 3);
  const auto normals = NumbersOf<float>(read.m_Model, surface.attributes.at("NORMAL"), 3);
  const auto places = NumbersOf<float>(read.m_Model, surface.attributes.at("TEXCOORD_0"), 2);
  ASSERT_EQ(positions.size(), 3 * mesh.m_aPositions.size());
  for (std::size_t v = 0; v < mesh.m_aPositions.size(); ++v) {
    EXPECT_EQ((CFilePoint{positions[3 * v], positions[3 * v + 1], positions[3 * v + 2]}),
              Upright(mesh.m_aPositions[v]));
    EXPECT_EQ((CFilePoint{normals[3 * v], normals[3 * v + 1], normals[3 * v + 2]}), Upright(mesh.m_aNormals[v]));
    EXPECT_EQ(places[2 * v], mesh.m_aPicturePlaces[v][0]);
    EXPECT_EQ(places[2 * v + 1], 1 - mesh.m_aPicturePlaces[v][1]) << "rows of pictures run from the top";
  }
  const auto indices = NumbersOf<std::uint32_t>(read.m_Model, surface.indices, 1);
  EXPECT_EQ(indices, (std::vector<std::uint32_t>{0, 1, 3, 1, 4, 3, 1, 2, 4, 2, 5, 4}));
  EXPECT_EQ(surface.mode, TINYGLTF_MODE_TRIANGLES);
  EXPECT_EQ(read.m_Model.nodes.at(0).name, "roof");
  EXPECT_EQ(read.m_Model.nodes.at(0).extras.Get("middle").Get(0).GetNumberAsDouble(), 10.5);
  EXPECT_EQ(read.m_Model.nodes.at(0).extras.Get("scale").GetNumberAsDouble(), 0.25);
}

TEST(GlbTest, WithoutAPictureHasNoImage) {
  const CReadGlb read = ReadGlb(*GlbOf(Roof(), {}, "roof"));
  EXPECT_TRUE(read.m_Model.images.empty() && read.m_Model.textures.empty() && read.m_Model.samplers.empty());
  EXPECT_EQ(read.m_Model.materials.at(0).pbrMetallicRoughness.baseColorTexture.index, -1);
  EXPECT_TRUE(read.m_Model.materials.at(0).doubleSided);
}

TEST(GlbTest, CarriesThePicturesOwnBytes) {
  const std::string png = PngOf(FourColours());
  const CReadGlb read = ReadGlb(*GlbOf(Roof(), {png, "image/png"}, "roof"));
  ASSERT_EQ(read.m_Trouble, "");
  const tinygltf::Image& image = read.m_Model.images.at(0);
  EXPECT_EQ(image.width, 2);
  EXPECT_EQ(image.mimeType, "image/png");
  EXPECT_EQ(image.image.at(0), 0) << "the top left pixel is blue";
  EXPECT_EQ(image.image.at(2), 255);
  const tinygltf::BufferView& view = read.m_Model.bufferViews.at(static_cast<std::size_t>(image.bufferView));
  const std::vector<unsigned char>& buffer = read.m_Model.buffers.at(0).data;
  EXPECT_EQ(view.byteLength, png.size());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&buffer.at(view.byteOffset)), png.size()), png);
  const tinygltf::Material& material = read.m_Model.materials.at(0);
  EXPECT_EQ(read.m_Model.textures.at(0).source, 0);
  EXPECT_EQ(material.pbrMetallicRoughness.baseColorTexture.index, 0);
  EXPECT_EQ(material.pbrMetallicRoughness.metallicFactor, 0);
  EXPECT_EQ(read.m_Model.samplers.at(0).wrapS, TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE);
  EXPECT_EQ(read.m_Model.samplers.at(0).wrapT, TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE);
}

// What the format asks of every file, beyond what a reader needs.
TEST(GlbTest, KeepsTheRulesOfTheFormat) {
  for (const std::size_t extra : {0U, 1U, 2U, 3U}) {
    std::string picture = PngOf(FourColours());
    picture.append(extra, '\0');
    const std::string bytes = *GlbOf(Roof(), {picture, "image/png"},
                                     std::string("r\xC3\xB6"
                                                 "f\xFF") +
                                         std::string(extra, 'x'));
    const auto number = [&bytes](std::size_t at) {
      std::uint32_t value = 0;
      std::memcpy(&value, &bytes.at(at), sizeof(value));
      return value;
    };
    EXPECT_EQ(bytes.substr(0, 4), "glTF");
    EXPECT_EQ(number(4), 2U);
    EXPECT_EQ(number(8), bytes.size());
    const std::uint32_t text = number(12);
    EXPECT_EQ(text % 4, 0U);
    EXPECT_EQ(bytes.substr(16, 4), "JSON");
    const std::uint32_t binary = number(20 + text);
    EXPECT_EQ(binary % 4, 0U);
    EXPECT_EQ(bytes.substr(24 + text, 4), std::string("BIN\0", 4));
    EXPECT_EQ(28 + text + binary, bytes.size());
    const CReadGlb read = ReadGlb(bytes);
    ASSERT_EQ(read.m_Trouble, "");
    EXPECT_TRUE(
        read.m_Model.nodes.at(0).name.starts_with("r\xC3\xB6"
                                                  "f\xEF\xBF\xBD"))
        << "always UTF-8";
    EXPECT_EQ(read.m_Model.buffers.at(0).data.size(), binary);
    EXPECT_TRUE(read.m_Model.buffers.at(0).uri.empty());
    for (const tinygltf::BufferView& view : read.m_Model.bufferViews) {
      EXPECT_EQ(view.byteOffset % 4, 0U);
      EXPECT_LE(view.byteOffset + view.byteLength, binary);
      EXPECT_EQ(view.byteStride, 0U) << "packed";
    }
    const tinygltf::Accessor& positions = read.m_Model.accessors.at(0);
    EXPECT_EQ(positions.minValues, (std::vector<double>{-2, 0, -1}));
    EXPECT_EQ(positions.maxValues, (std::vector<double>{2, 2, 1}));
  }
}

// OBJ.

namespace {

struct CReadObj {
  tinyobj::attrib_t m_Attributes;
  std::vector<tinyobj::shape_t> m_Shapes;
  std::vector<tinyobj::material_t> m_Materials;
  std::string m_Trouble;
};
CReadObj ReadObj(const CObjTexts& texts) {
  CReadObj read;
  std::istringstream model(texts.m_Model);
  std::istringstream material(texts.m_Material);
  tinyobj::MaterialStreamReader materials(material);
  std::string warning;
  const bool good = tinyobj::LoadObj(&read.m_Attributes, &read.m_Shapes, &read.m_Materials, &warning, &read.m_Trouble,
                                     &model, &materials, false);
  read.m_Trouble += warning;
  if (!good && read.m_Trouble.empty()) read.m_Trouble = "not read";
  return read;
}

}  // namespace

TEST(ObjTest, HoldsTheMeshInEitherDirection) {
  const CFileMesh mesh = Roof();
  for (const UpAxis up : {UpAxis::Y, UpAxis::Z}) {
    const CReadObj read = ReadObj(ObjOf(mesh, "roof.mtl", "roof.jpg", up));
    ASSERT_EQ(read.m_Trouble, "");
    ASSERT_EQ(read.m_Attributes.vertices.size(), 3 * mesh.m_aPositions.size());
    for (std::size_t v = 0; v < mesh.m_aPositions.size(); ++v) {
      const std::vector<float>& p = read.m_Attributes.vertices;
      const std::vector<float>& n = read.m_Attributes.normals;
      const bool turned = up == UpAxis::Y;
      EXPECT_EQ((CFilePoint{p[3 * v], p[3 * v + 1], p[3 * v + 2]}),
                turned ? Upright(mesh.m_aPositions[v]) : mesh.m_aPositions[v]);
      EXPECT_EQ((CFilePoint{n[3 * v], n[3 * v + 1], n[3 * v + 2]}),
                turned ? Upright(mesh.m_aNormals[v]) : mesh.m_aNormals[v]);
      EXPECT_EQ(read.m_Attributes.texcoords[2 * v], mesh.m_aPicturePlaces[v][0]);
      EXPECT_EQ(read.m_Attributes.texcoords[2 * v + 1], mesh.m_aPicturePlaces[v][1]);
    }
    std::vector<int> indices;
    for (const tinyobj::index_t& index : read.m_Shapes.at(0).mesh.indices) {
      indices.push_back(index.vertex_index);
      EXPECT_EQ(index.texcoord_index, index.vertex_index);
      EXPECT_EQ(index.normal_index, index.vertex_index);
    }
    EXPECT_EQ(indices, (std::vector<int>{0, 1, 3, 1, 4, 3, 1, 2, 4, 2, 5, 4}));
    EXPECT_EQ(read.m_Materials.at(0).diffuse_texname, "roof.jpg");
    EXPECT_EQ(read.m_Materials.at(0).diffuse[1], 1);
  }
}

TEST(ObjTest, NamesItsMaterialAndWithoutAPictureNoImage) {
  const CObjTexts texts = ObjOf(Roof(),
                                "d\xC3\xA4"
                                "ch.mtl",
                                "", UpAxis::Y);
  EXPECT_NE(texts.m_Model.find("\nmtllib d\xC3\xA4"
                               "ch.mtl\n"),
            std::string::npos);
  EXPECT_NE(texts.m_Model.find("# middle 10.5 -3\n# scale 0.25\n"), std::string::npos);
  EXPECT_EQ(ReadObj(texts).m_Materials.at(0).diffuse_texname, "");
}

TEST(ObjTest, KeepsEveryBitOfItsNumbers) {
  CFileMesh mesh = Roof();
  mesh.m_aPositions[0] = {1.0F / 3, 1e-30F, -16777215.0F};
  const CReadObj read = ReadObj(ObjOf(mesh, "m", "", UpAxis::Z));
  for (std::size_t k = 0; k < 3; ++k) EXPECT_FLOAT_EQ(read.m_Attributes.vertices[k], mesh.m_aPositions[0][k]);
}

// The other program finds the files beside the model by what the model says.
TEST(ObjTest, IsReadFromAFolderWithItsTexture) {
  const CTornGrid grid({});
  const CReadPicture photograph = PhotographOf(FourColours());
  CExportSettings settings;
  settings.m_pPhotograph = &photograph;
  for (const char* name : {"my c\xC3\xBCp.obj", "-dash.obj", "two\tlines\n.obj"}) {
    const CTemporaryDirectory directory;
    ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File(name), settings));
    tinyobj::ObjReader reader;
    ASSERT_TRUE(reader.ParseFromFile(directory.File(name))) << reader.Error();
    EXPECT_EQ(reader.Warning(), "");
    ASSERT_EQ(reader.GetMaterials().size(), 1U) << name;
    const std::string texture = reader.GetMaterials().front().diffuse_texname;
    EXPECT_TRUE(std::filesystem::is_regular_file(directory.File(texture))) << texture;
    EXPECT_EQ(reader.GetShapes().front().mesh.material_ids.front(), 0);
  }
}

// PLY, read by a dozen lines.

TEST(PlyTest, HoldsTheMeshWithItsColours) {
  const CFileMesh mesh = Roof();
  const std::string bytes = BytesPut([&](CByteSink& sink) { PutPly(mesh, FourColours(), UpAxis::Z, sink); });
  std::size_t at = bytes.find("end_header\n") + 11;
  EXPECT_EQ(
      bytes.substr(0, at),
      "ply\nformat binary_little_endian 1.0\ncomment made by relievo\ncomment middle 10.5 -3\ncomment scale 0.25\n"
      "element vertex 6\nproperty float x\nproperty float y\nproperty float z\nproperty float nx\nproperty float ny\n"
      "property float nz\nproperty float s\nproperty float t\nproperty uchar red\nproperty uchar green\nproperty uchar "
      "blue\nelement face 4\nproperty list uchar int vertex_indices\nend_header\n");
  using Bytes = std::array<std::uint8_t, 3>;
  // The middle of the picture belongs to its right half.
  const std::array<Bytes, 6> colours{Bytes{255, 0, 0}, {0, 255, 0},     {0, 255, 0},
                                     {0, 0, 255},      {255, 255, 255}, {255, 255, 255}};
  for (std::size_t v = 0; v < mesh.m_aPositions.size(); ++v) {
    EXPECT_EQ(Take<CFilePoint>(bytes, at), mesh.m_aPositions[v]);
    EXPECT_EQ(Take<CFilePoint>(bytes, at), mesh.m_aNormals[v]);
    EXPECT_EQ((Take<std::array<float, 2>>(bytes, at)), mesh.m_aPicturePlaces[v]);
    EXPECT_EQ(Take<Bytes>(bytes, at), colours[v]);
  }
  for (const auto& triangle : mesh.m_aTriangles) {
    EXPECT_EQ(Take<std::uint8_t>(bytes, at), 3);
    EXPECT_EQ((Take<std::array<std::uint32_t, 3>>(bytes, at)), triangle);
  }
  EXPECT_EQ(at, bytes.size());
}

TEST(PlyTest, WithoutAPictureHasNoColours) {
  const std::string bytes = BytesPut([](CByteSink& sink) { PutPly(Roof(), {}, UpAxis::Y, sink); });
  EXPECT_EQ(bytes.find("uchar red"), std::string::npos);
  std::size_t at = bytes.find("end_header\n") + 11;
  EXPECT_EQ(bytes.size() - at, 6 * 32U + 4 * 13U);
  EXPECT_EQ(Take<CFilePoint>(bytes, at), Upright(Roof().m_aPositions[0]));
}

// STL.
