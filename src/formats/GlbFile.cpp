#include "formats/GlbFile.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include <nlohmann/json.hpp>

#include "formats/BinaryNumbers.h"

namespace {

using nlohmann::json;

static_assert(std::endian::native == std::endian::little, "the format's numbers are copied as they are in memory");

// Numbers that the format has for kinds of things.
constexpr int kFloats = 5126;
constexpr int kUnsigned = 5125;
constexpr int kVertices = 34962;
constexpr int kIndices = 34963;
constexpr int kLinear = 9729;
constexpr int kClampToEdge = 33071;

constexpr std::uint32_t kMagic = 0x46546C67;
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
constexpr std::uint32_t kBinaryChunk = 0x004E4942;

constexpr std::size_t Aligned(std::size_t size) { return (size + 3) / 4 * 4; }

/// The parts of the binary chunk, each from a multiple of four bytes on.
class CBinaryChunk {
 public:
  /// Adds numbers; the index of their view.
  template <typename Row>
  std::size_t Add(std::span<const Row> rows, int target) {
    const std::size_t view = AddView(rows.size_bytes());
    m_Views[view]["target"] = target;
    std::memcpy(m_Bytes.data() + m_Bytes.size() - Aligned(rows.size_bytes()), rows.data(), rows.size_bytes());
    return view;
  }
  /// Adds the bytes of a file.
  std::size_t Add(const std::string& bytes) {
    const std::size_t view = AddView(bytes.size());
    std::ranges::copy(bytes, m_Bytes.end() - static_cast<std::ptrdiff_t>(Aligned(bytes.size())));
    return view;
  }
  void Reserve(std::size_t size) { m_Bytes.reserve(size); }
  const std::string& Bytes() const { return m_Bytes; }
  const json& Views() const { return m_Views; }

 private:
  std::size_t AddView(std::size_t size) {
    m_Views.push_back({{"buffer", 0}, {"byteOffset", m_Bytes.size()}, {"byteLength", size}});
    m_Bytes.resize(m_Bytes.size() + Aligned(size));
    return m_Views.size() - 1;
  }

  std::string m_Bytes;
  json m_Views = json::array();
};

json Accessor(std::size_t view, int component, std::size_t count, const char* type) {
  return {{"bufferView", view}, {"componentType", component}, {"count", count}, {"type", type}};
}

// The least and the greatest of each coordinate, as the format wants them of positions.
void AddBounds(std::span<const std::array<float, 3>> positions, json& accessor) {
  constexpr float kFar = std::numeric_limits<float>::max();
  std::array<float, 3> low{kFar, kFar, kFar};
  std::array<float, 3> high{-kFar, -kFar, -kFar};
  for (const std::array<float, 3>& p : positions) {
    for (std::size_t k = 0; k < p.size(); ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
    }
  }
  accessor["min"] = low;
  accessor["max"] = high;
}

// The parts of the document that a picture adds, and the place of the picture in the material.
void AddPicture(const CEncodedPicture& picture, CBinaryChunk& chunk, json& document) {
  const std::size_t view = chunk.Add(picture.m_Bytes);
  document["images"][0] = {{"bufferView", view}, {"mimeType", picture.m_MimeType}};
  document["samplers"][0] = {
      {"magFilter", kLinear}, {"minFilter", kLinear}, {"wrapS", kClampToEdge}, {"wrapT", kClampToEdge}};
  document["textures"][0] = {{"sampler", 0}, {"source", 0}};
  document["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"] = {{"index", 0}};
}

// The numbers of the mesh and what the document says of each kind; not whole where it has been cancelled.
json AddNumbers(const CFileMesh& mesh, const CExportSteps& steps, CBinaryChunk& chunk) {
  std::vector<std::array<float, 3>> turned(mesh.m_aPositions.size());
  const auto turn = [](const std::array<float, 3>& p) { return Turned(p, UpAxis::Y); };
  std::ranges::transform(mesh.m_aPositions, turned.begin(), turn);
  const std::span<const std::array<float, 3>> rows(turned);
  json accessors = json::array();
  accessors.push_back(Accessor(chunk.Add(rows, kVertices), kFloats, rows.size(), "VEC3"));
  AddBounds(rows, accessors.back());
  if (!steps.Goes(0.2)) return accessors;
  std::ranges::transform(mesh.m_aNormals, turned.begin(), turn);
  accessors.push_back(Accessor(chunk.Add(rows, kVertices), kFloats, rows.size(), "VEC3"));
  if (!steps.Goes(0.4)) return accessors;
  // Rows of a picture run from the top there.
  std::vector<std::array<float, 2>> places(mesh.m_aPicturePlaces.size());
  std::ranges::transform(mesh.m_aPicturePlaces, places.begin(), [](const std::array<float, 2>& p) {
    return std::array{p[0], 1 - p[1]};
  });
  accessors.push_back(
      Accessor(chunk.Add(std::span<const std::array<float, 2>>(places), kVertices), kFloats, places.size(), "VEC2"));
  const std::span<const std::array<std::uint32_t, 3>> triangles(mesh.m_aTriangles);
  accessors.push_back(Accessor(chunk.Add(triangles, kIndices), kUnsigned, 3 * triangles.size(), "SCALAR"));
  return accessors;
}

json Document(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name, json accessors,
              CBinaryChunk& chunk) {
  // An array of one thing is named as such: in braces alone compilers take it for the thing.
  json document;
  document["asset"] = {{"version", "2.0"}, {"generator", "relievo"}};
  document["scene"] = 0;
  document["scenes"][0]["nodes"][0] = 0;
  document["nodes"][0] = {
      {"mesh", 0}, {"name", name}, {"extras", {{"middle", mesh.m_afMiddle}, {"scale", mesh.m_fScale}}}};
  document["meshes"][0]["name"] = name;
  document["meshes"][0]["primitives"][0] = {
      {"attributes", {{"POSITION", 0}, {"NORMAL", 1}, {"TEXCOORD_0", 2}}}, {"indices", 3}, {"material", 0}};
  document["materials"][0] = {{"doubleSided", true},
                              {"pbrMetallicRoughness", {{"metallicFactor", 0}, {"roughnessFactor", 1}}}};
  document["accessors"] = std::move(accessors);
  if (!picture.m_Bytes.empty()) AddPicture(picture, chunk, document);
  document["bufferViews"] = chunk.Views();
  document["buffers"][0] = {{"byteLength", chunk.Bytes().size()}};
  return document;
}

}  // namespace

std::optional<std::string> GlbOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name,
                                 const CExportSteps& steps) {
  CBinaryChunk chunk;
  chunk.Reserve(mesh.m_aPositions.size() * (3 + 3 + 2) * sizeof(float) +
                mesh.m_aTriangles.size() * sizeof(mesh.m_aTriangles[0]) + Aligned(picture.m_Bytes.size()));
  json accessors = AddNumbers(mesh, steps, chunk);
  if (!steps.Goes(0.7)) return {};
  // What is no UTF-8 in the name of a file is replaced: the format allows nothing else.
  std::string text =
      Document(mesh, picture, name, std::move(accessors), chunk).dump(-1, ' ', false, json::error_handler_t::replace);
  text.resize(Aligned(text.size()), ' ');
  constexpr std::size_t kHeaders = 12 + 8 + 8;
  const std::size_t length = kHeaders + text.size() + chunk.Bytes().size();
  if (length > std::numeric_limits<std::uint32_t>::max()) return {};
  CByteWriter out;
  out.Put(kMagic);
  out.Put(kVersion);
  out.Put(static_cast<std::uint32_t>(length));
  out.Put(static_cast<std::uint32_t>(text.size()));
  out.Put(kJsonChunk);
  std::string bytes = out.Take();
  bytes.reserve(length);
  bytes += text;
  out.Put(static_cast<std::uint32_t>(chunk.Bytes().size()));
  out.Put(kBinaryChunk);
  bytes += out.Bytes();
  bytes += chunk.Bytes();
  return bytes;
}
