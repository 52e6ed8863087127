#include "exports/GlbFile.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

#include <nlohmann/json.hpp>

#include "base/Memory.h"
#include "exports/RawNumbers.h"
#include "io/BinaryNumbers.h"

namespace {

using nlohmann::json;

// Numbers that the format has for kinds of things.
constexpr int kFloats = 5126;
constexpr int kUnsigned = 5125;
constexpr int kVertices = 34962;
constexpr int kIndices = 34963;
constexpr int kLinear = 9729;
constexpr int kClampToEdge = 33071;

constexpr std::size_t kPair = 2 * sizeof(float);
constexpr std::size_t kTriple = 3 * sizeof(float);  // or of indices

constexpr std::uint32_t kMagic = 0x46546C67;
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
constexpr std::uint32_t kBinaryChunk = 0x004E4942;

constexpr std::size_t Aligned(std::size_t size) { return (size + 3) / 4 * 4; }

/// Where the parts of the binary chunk lie, each from a multiple of four bytes on.
class CChunkLayout {
 public:
  /// Adds a part; the index of its view.
  std::size_t Add(std::size_t size) {
    m_Views.push_back({{"buffer", 0}, {"byteOffset", m_uSize}, {"byteLength", size}});
    m_uSize += Aligned(size);
    return m_Views.size() - 1;
  }
  /// The same for numbers of vertices or triangles.
  std::size_t AddNumbers(std::size_t size, int target) {
    const std::size_t view = Add(size);
    m_Views[view]["target"] = target;
    return view;
  }
  std::size_t Size() const { return m_uSize; }
  const json& Views() const { return m_Views; }

 private:
  json m_Views = json::array();
  std::size_t m_uSize = 0;
};

json Accessor(std::size_t view, int component, std::size_t count, const char* type) {
  return {{"bufferView", view}, {"componentType", component}, {"count", count}, {"type", type}};
}

// Four positions at a time, which the processor takes together.
std::array<std::array<float, 3>, 2> BoundsOf(std::span<const std::array<float, 3>> positions) {
  constexpr float kFar = std::numeric_limits<float>::max();
  constexpr std::size_t kAtOnce = 12;
  std::array<float, kAtOnce> low{};
  std::array<float, kAtOnce> high{};
  low.fill(kFar);
  high.fill(-kFar);
  const std::span numbers(positions.data()->data(), 3 * positions.size());
  const std::size_t whole = numbers.size() / kAtOnce * kAtOnce;
  for (std::size_t at = 0; at < whole; at += kAtOnce) {
    for (std::size_t k = 0; k < kAtOnce; ++k) {
      const float number = numbers[at + k];
      low[k] = number < low[k] ? number : low[k];
      high[k] = number > high[k] ? number : high[k];
    }
  }
  for (std::size_t at = whole; at < numbers.size(); ++at) {
    low[at - whole] = std::min(low[at - whole], numbers[at]);
    high[at - whole] = std::max(high[at - whole], numbers[at]);
  }
  for (std::size_t k = 3; k < kAtOnce; ++k) {
    low[k % 3] = std::min(low[k % 3], low[k]);
    high[k % 3] = std::max(high[k % 3], high[k]);
  }
  return {{{low[0], low[1], low[2]}, {high[0], high[1], high[2]}}};
}

// The least and the greatest of each coordinate, as the format wants them of positions.
void AddBounds(std::span<const std::array<float, 3>> positions, json& accessor) {
  const auto [low, high] = BoundsOf(positions);
  const std::array<float, 3> a = Turned(low, UpAxis::Y);
  const std::array<float, 3> b = Turned(high, UpAxis::Y);
  // One axis is turned round.
  accessor["min"] = {std::min(a[0], b[0]), std::min(a[1], b[1]), std::min(a[2], b[2])};
  accessor["max"] = {std::max(a[0], b[0]), std::max(a[1], b[1]), std::max(a[2], b[2])};
}

// The parts of the document that a picture adds, and the place of the picture in the material.
void AddPicture(const CEncodedPicture& picture, CChunkLayout& chunk, json& document) {
  const std::size_t view = chunk.Add(picture.m_Bytes.size());
  document["images"][0] = {{"bufferView", view}, {"mimeType", picture.m_MimeType}};
  document["samplers"][0] = {
      {"magFilter", kLinear}, {"minFilter", kLinear}, {"wrapS", kClampToEdge}, {"wrapT", kClampToEdge}};
  document["textures"][0] = {{"sampler", 0}, {"source", 0}};
  document["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"] = {{"index", 0}};
}

// What the document says of each kind of numbers.
json Accessors(const CFileMesh& mesh, CChunkLayout& chunk) {
  const std::size_t vertices = mesh.m_aPositions.size();
  const std::size_t triangles = mesh.m_aTriangles.size();
  const auto numbers = [&chunk](std::size_t count, std::size_t size, int target) {
    return chunk.AddNumbers(count * size, target);
  };
  json accessors = json::array();
  accessors.push_back(Accessor(numbers(vertices, kTriple, kVertices), kFloats, vertices, "VEC3"));
  AddBounds(mesh.m_aPositions, accessors.back());
  accessors.push_back(Accessor(numbers(vertices, kTriple, kVertices), kFloats, vertices, "VEC3"));
  accessors.push_back(Accessor(numbers(vertices, kPair, kVertices), kFloats, vertices, "VEC2"));
  accessors.push_back(Accessor(numbers(triangles, kTriple, kIndices), kUnsigned, 3 * triangles, "SCALAR"));
  return accessors;
}

// The numbers themselves, in that order; false where the steps do not go on.
bool PutNumbers(const CFileMesh& mesh, const CExportSteps& steps, CByteSink& sink) {
  const std::size_t vertices = mesh.m_aPositions.size();
  const auto turned = [](const std::vector<std::array<float, 3>>& rows) {
    return [&rows](std::size_t v, char* out) { return PutRaw(Turned(rows[v], UpAxis::Y), out); };
  };
  // Rows of a picture run from the top there.
  const auto place = [&mesh](std::size_t v, char* out) {
    return PutRaw(std::array{mesh.m_aPicturePlaces[v][0], 1 - mesh.m_aPicturePlaces[v][1]}, out);
  };
  // These are in memory as they are in the file, from where many at once need no copying.
  constexpr std::size_t kTrianglesAtOnce = std::size_t{1} << 19;
  const auto triangles = [&](std::size_t begin, std::size_t end) {
    sink.Put({reinterpret_cast<const char*>(mesh.m_aTriangles.data() + begin), (end - begin) * kTriple});
  };
  return PutRecords(vertices, kTriple, steps.Part(0, 0.2), turned(mesh.m_aPositions), sink) &&
         PutRecords(vertices, kTriple, steps.Part(0.2, 0.4), turned(mesh.m_aNormals), sink) &&
         PutRecords(vertices, kPair, steps.Part(0.4, 0.5), place, sink) &&
         steps.Part(0.5, 0.9).ForBlocks(mesh.m_aTriangles.size(), triangles, kTrianglesAtOnce);
}

json Document(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name, CChunkLayout& chunk) {
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
  document["accessors"] = Accessors(mesh, chunk);
  if (!picture.m_Bytes.empty()) AddPicture(picture, chunk, document);
  document["bufferViews"] = chunk.Views();
  document["buffers"][0] = {{"byteLength", chunk.Size()}};
  return document;
}

}  // namespace

std::optional<std::string> GlbHeadOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name) {
  CChunkLayout chunk;
  // What is no UTF-8 in the name of a file is replaced: the format allows nothing else.
  std::string text = Document(mesh, picture, name, chunk).dump(-1, ' ', false, json::error_handler_t::replace);
  text.resize(Aligned(text.size()), ' ');
  constexpr std::size_t kHeaders = 12 + 8 + 8;
  const std::size_t length = kHeaders + text.size() + chunk.Size();
  if (length > std::numeric_limits<std::uint32_t>::max()) return {};
  CByteWriter head;
  for (const std::size_t number :
       {std::size_t{kMagic}, std::size_t{kVersion}, length, text.size(), std::size_t{kJsonChunk}})
    head.Put(static_cast<std::uint32_t>(number));
  CByteWriter binary;
  binary.Put(static_cast<std::uint32_t>(chunk.Size()));
  binary.Put(kBinaryChunk);
  return head.Take() + text + binary.Bytes();
}

bool PutGlbBody(const CFileMesh& mesh, const CEncodedPicture& picture, CByteSink& sink, const CExportSteps& steps) {
  if (!PutNumbers(mesh, steps, sink)) return false;
  sink.Put(picture.m_Bytes);
  sink.Put(std::string(Aligned(picture.m_Bytes.size()) - picture.m_Bytes.size(), '\0'));
  return steps.Goes(1);
}

std::optional<std::string> GlbOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name,
                                 const CExportSteps& steps) {
  const std::optional<std::string> head = GlbHeadOf(mesh, picture, name);
  if (!head.has_value()) return {};
  std::string bytes;
  ReserveLarge(bytes, head->size() + mesh.m_aPositions.size() * (2 * kTriple + kPair) +
                          mesh.m_aTriangles.size() * kTriple + Aligned(picture.m_Bytes.size()));
  bytes = *head;
  CByteSink sink([&bytes](std::string_view block) { bytes += block; });
  if (!PutGlbBody(mesh, picture, sink, steps)) return {};
  sink.Flush();
  return bytes;
}
