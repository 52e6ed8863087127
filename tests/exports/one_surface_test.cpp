// The same surface in every format: a point of the model has the same height everywhere, and lies in the same place
// seen from above.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tiny_gltf.h>
#include <tiny_obj_loader.h>

#include "exports/SurfaceExport.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/FileBuilders.h"
#include "support/MapReaders.h"

namespace {

constexpr int kCells = 32;

// A height over a place: 0 to 1 from the left and from the lower side of the photograph.
struct CPlaced {
  double u = 0.0;
  double v = 0.0;
  double z = 0.0;
};
using CPlacedHeights = std::vector<CPlaced>;

double Width() { return kOblong.x1 - kOblong.x0; }
double Height() { return kOblong.y1 - kOblong.y0; }

// Of coordinates from the middle of the rectangle.
CPlaced FromMiddle(double x, double y, double z) { return {x / Width() + 0.5, y / Height() + 0.5, z}; }

// A torn surface with leaves of several sizes, written in all formats.
class OneSurface : public testing::Test {
 protected:
  OneSurface() { SetRandomSurface(m_Torn.m_Grid, 11); }

  std::string Exported(const std::string& name) const {
    EXPECT_EQ(ExportSurface(m_Torn.m_Grid, m_Directory.File(name), m_Settings).m_Trouble, "");
    return m_Directory.File(name);
  }

  // Whether all heights are those of the surface, but for those near the tear; enough of them must be left.
  void ExpectSurface(const CPlacedHeights& heights, double tolerance, std::size_t atLeast) {
    std::size_t compared = 0;
    for (const CPlaced& p : heights) {
      // Numbers of a few digits: points of meshes lie on the lattice and between two of its points.
      const double column = Snapped(p.u * kCells);
      const double row = Snapped(p.v * kCells);
      if (m_Torn.IsNearTear(column, row)) continue;
      ++compared;
      ASSERT_NEAR(p.z, m_Torn.m_Grid.GetHeightAt(column, row), tolerance) << "at " << column << ", " << row;
    }
    EXPECT_GE(compared, atLeast);
  }
  void ExpectSurface(const CMap& map, double offset, double scale, double tolerance) {
    CPlacedHeights heights;
    for (int row = 0; row < map.m_iHeight; ++row) {
      for (int column = 0; column < map.m_iWidth; ++column) {
        heights.push_back({static_cast<double>(column) / (map.m_iWidth - 1),
                           1 - static_cast<double>(row) / (map.m_iHeight - 1), offset + scale * map.At(column, row)});
      }
    }
    ExpectSurface(heights, tolerance, heights.size() / 3);
  }

  CTemporaryDirectory m_Directory;
  CTornGrid m_Torn{{{{{6.25, 4}, {14, 11.5}}}}, 5, 4};
  CExportSettings m_Settings;

 private:
  static double Snapped(double coordinate) {
    const double near = std::round(2 * coordinate) / 2;
    return std::abs(near - coordinate) < 1e-3 ? near : coordinate;
  }
};

constexpr double kFloat = 1e-6;
constexpr std::size_t kVertices = 300;

}  // namespace

// The numbers of the first list of points have six digits.
TEST_F(OneSurface, InAVrmlScene) {
  const std::string file = m_Directory.File("a.wrl");
  ASSERT_TRUE(m_Torn.m_Grid.SaveVrml(file));
  const std::string text = BytesOf(file);
  const std::size_t begin = text.find("point [") + 7;
  std::string points = text.substr(begin, text.find(']', begin) - begin);
  std::replace(points.begin(), points.end(), ',', ' ');
  std::istringstream in(points);
  CPlacedHeights heights;
  for (double x = 0, y = 0, z = 0; in >> x >> y >> z;)
    heights.push_back({(x - kOblong.x0) / Width(), (y - kOblong.y0) / Height(), z});
  ExpectSurface(heights, 1e-5, kVertices);
}

TEST_F(OneSurface, InTheTextOfAHeightField) {
  const std::string file = m_Directory.File("a.txt");
  ASSERT_TRUE(m_Torn.m_Grid.SaveHeightField(file, 40, 25));
  std::ifstream in(file);
  CPlacedHeights heights;
  for (int row = 0; row < 25; ++row) {
    for (int column = 0; column < 40; ++column) {
      heights.push_back({column / 39.0, row / 24.0, 0});
      in >> heights.back().z;
    }
  }
  EXPECT_TRUE(in.good());
  ExpectSurface(heights, 1e-5, 300);
}

TEST_F(OneSurface, InAGlb) {
  tinygltf::Model model;
  std::string trouble;
  std::string warning;
  ASSERT_TRUE(tinygltf::TinyGLTF().LoadBinaryFromFile(&model, &trouble, &warning, Exported("a.glb"))) << trouble;
  const auto& attributes = model.meshes.at(0).primitives.at(0).attributes;
  const auto numbersOf = [&model](int accessor) {
    const tinygltf::Accessor& a = model.accessors.at(static_cast<std::size_t>(accessor));
    const tinygltf::BufferView& view = model.bufferViews.at(static_cast<std::size_t>(a.bufferView));
    return reinterpret_cast<const float*>(&model.buffers.at(0).data.at(view.byteOffset + a.byteOffset));
  };
  const float* positions = numbersOf(attributes.at("POSITION"));
  const float* places = numbersOf(attributes.at("TEXCOORD_0"));
  const std::size_t count = model.accessors.at(static_cast<std::size_t>(attributes.at("POSITION"))).count;
  CPlacedHeights heights;
  // Metres, y upwards, and rows of the photograph from the top.
  for (std::size_t v = 0; v < count; ++v) {
    const float* p = positions + 3 * v;
    heights.push_back(FromMiddle(100 * p[0], -100 * p[2], 100 * p[1]));
    EXPECT_NEAR(heights.back().u, places[2 * v], 1e-5);
    EXPECT_NEAR(heights.back().v, 1 - places[2 * v + 1], 1e-5);
  }
  ExpectSurface(heights, kFloat, kVertices);
}

TEST_F(OneSurface, InAnObj) {
  tinyobj::attrib_t attributes;
  std::vector<tinyobj::shape_t> shapes;
  std::vector<tinyobj::material_t> materials;
  std::string warning;
  std::string trouble;
  const std::string folder = m_Directory.Path().string() + '/';
  ASSERT_TRUE(
      tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &trouble, Exported("a.obj").c_str(), folder.c_str()))
      << trouble;
  CPlacedHeights heights;
  for (std::size_t v = 0; v < attributes.vertices.size() / 3; ++v) {
    const float* p = &attributes.vertices[3 * v];
    heights.push_back(FromMiddle(p[0], -p[2], p[1]));
    EXPECT_NEAR(heights.back().u, attributes.texcoords[2 * v], 1e-5);
    EXPECT_NEAR(heights.back().v, attributes.texcoords[2 * v + 1], 1e-5);
  }
  ExpectSurface(heights, kFloat, kVertices);
}

TEST_F(OneSurface, InAPly) {
  const std::string bytes = BytesOf(Exported("a.ply"));
  const std::size_t count = std::stoul(bytes.substr(bytes.find("element vertex ") + 15));
  const std::size_t begin = bytes.find("end_header\n") + 11;
  CPlacedHeights heights;
  for (std::size_t v = 0; v < count; ++v) {
    std::array<float, 8> numbers{};
    std::memcpy(numbers.data(), &bytes.at(begin + v * sizeof(numbers)), sizeof(numbers));
    heights.push_back(FromMiddle(numbers[0], numbers[1], numbers[2]));
    EXPECT_NEAR(heights.back().u, numbers[6], 1e-5);
    EXPECT_NEAR(heights.back().v, numbers[7], 1e-5);
  }
  ExpectSurface(heights, kFloat, kVertices);
}

// Its upper side: the triangles that look up.
TEST_F(OneSurface, InAnStl) {
  const std::string bytes = BytesOf(Exported("a.stl"));
  CPlacedHeights heights;
  for (std::size_t at = 84; at + 50 <= bytes.size(); at += 50) {
    std::array<std::array<float, 3>, 4> triangle{};
    std::memcpy(triangle.data(), &bytes[at], sizeof(triangle));
    if (!(triangle[0][2] > 0)) continue;
    for (const auto& p : {triangle[1], triangle[2], triangle[3]}) heights.push_back(FromMiddle(p[0], p[1], p[2]));
  }
  ExpectSurface(heights, kFloat, kVertices);
}

TEST_F(OneSurface, InMapsOfFloats) {
  for (const CSampleGrid& grid : {CSampleGrid{33, 33}, CSampleGrid{61, 38}}) {
    m_Settings.m_Resolution = grid;
    ExpectSurface(ReadTiff(Exported("a.tif")), 0, 1, kFloat);
    ExpectSurface(ReadPfm(BytesOf(Exported("a.pfm"))), 0, 1, kFloat);
  }
}

TEST_F(OneSurface, InAMapOfSixteenBits) {
  for (const CSampleGrid& grid : {CSampleGrid{33, 33}, CSampleGrid{61, 38}}) {
    m_Settings.m_Resolution = grid;
    const CMap numbers = ReadOwn(Exported("a.png"));
    const auto text = nlohmann::json::parse(BytesOf(m_Directory.File("a.png.json")));
    const double scale = text["scale"];
    ExpectSurface(numbers, text["offset"], scale, 0.5 * scale + kFloat);
  }
}
