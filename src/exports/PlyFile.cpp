#include "exports/PlyFile.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

#include "base/NumberText.h"
#include "exports/RawNumbers.h"

namespace {

std::string Header(const CFileMesh& mesh, bool colours) {
  std::string text = "ply\nformat binary_little_endian 1.0\ncomment made by relievo\n";
  text += "comment middle " + ShortestText(mesh.m_afMiddle[0]) + ' ' + ShortestText(mesh.m_afMiddle[1]) +
          "\ncomment scale " + ShortestText(mesh.m_fScale) + '\n';
  text += "element vertex " + std::to_string(mesh.m_aPositions.size()) + '\n';
  for (const char* name : {"x", "y", "z", "nx", "ny", "nz", "s", "t"})
    text += std::string("property float ") + name + '\n';
  if (colours) text += "property uchar red\nproperty uchar green\nproperty uchar blue\n";
  text += "element face " + std::to_string(mesh.m_aTriangles.size()) +
          "\nproperty list uchar int vertex_indices\nend_header\n";
  return text;
}

// The pixel at a place from 0 to 1 along a side of so many.
std::size_t PixelAt(float place, int side) {
  return static_cast<std::size_t>(std::clamp(static_cast<int>(place * static_cast<float>(side)), 0, side - 1));
}

// The numbers of a vertex, and its colours where there is a picture.
char* PutVertex(const CFileMesh& mesh, std::size_t v, const CPicture& picture, UpAxis up, char* out) {
  out = PutRaw(Turned(mesh.m_aPositions[v], up), out);
  out = PutRaw(Turned(mesh.m_aNormals[v], up), out);
  const std::array<float, 2>& place = mesh.m_aPicturePlaces[v];
  out = PutRaw(place, out);
  if (picture.m_aPixels.empty()) return out;
  const std::size_t pixel = PixelAt(place[1], picture.m_iHeight) * static_cast<std::size_t>(picture.m_iWidth) +
                            PixelAt(place[0], picture.m_iWidth);
  return std::copy_n(&picture.m_aPixels[3 * pixel], 3, out);
}

}  // namespace

bool PutPly(const CFileMesh& mesh, const CPicture& picture, UpAxis up, CByteSink& sink, const CExportSteps& steps) {
  constexpr std::size_t kNumbers = 8 * sizeof(float);
  constexpr std::size_t kFace = 1 + 3 * sizeof(std::uint32_t);
  const bool colours = !picture.m_aPixels.empty();
  sink.Put(Header(mesh, colours));
  const auto putVertex = [&](std::size_t v, char* out) { return PutVertex(mesh, v, picture, up, out); };
  const auto putFace = [&](std::size_t t, char* out) {
    *out = 3;
    return PutRaw(mesh.m_aTriangles[t], out + 1);
  };
  return PutRecords(mesh.m_aPositions.size(), kNumbers + (colours ? 3 : 0), steps.Part(0, 0.5), putVertex, sink) &&
         PutRecords(mesh.m_aTriangles.size(), kFace, steps.Part(0.5, 1), putFace, sink);
}
