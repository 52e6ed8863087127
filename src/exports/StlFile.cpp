#include "exports/StlFile.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/Vector3.h"
#include "exports/RawNumbers.h"

namespace {

constexpr std::size_t kHeader = 80;

using CPoint = std::array<float, 3>;

Vector3 PointOf(const CPoint& p) { return {p[0], p[1], p[2]}; }

// Zero where the triangle has no area, as the format has it.
CPoint NormalOf(const CPoint& a, const CPoint& b, const CPoint& c) {
  const Vector3 first = PointOf(a);
  const Vector3 normal = Cross(PointOf(b) - first, PointOf(c) - first);
  const double length = Length(normal);
  if (!(length > 0)) return {};
  const double scale = 1 / length;
  return {static_cast<float>(normal.x * scale), static_cast<float>(normal.y * scale),
          static_cast<float>(normal.z * scale)};
}

// With so many digits even the longest of three numbers leave room.
std::string NumberOf(double value) {
  constexpr int kDigits = 9;
  std::array<char, kHeader> text{};
  char* const end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, kDigits).ptr;
  return {text.data(), end};
}

// It must not begin with "solid", which is the mark of the text form.
std::string HeaderOf(const CFileMesh& mesh) {
  std::string header = "relievo middle ";
  header += NumberOf(mesh.m_afMiddle[0]) + ' ';
  header += NumberOf(mesh.m_afMiddle[1]) + " scale ";
  header += NumberOf(mesh.m_fScale);
  return header;
}

}  // namespace

bool PutStl(const CFileMesh& mesh, UpAxis up, CByteSink& sink, const CExportSteps& steps) {
  constexpr std::size_t kTriangle = 12 * sizeof(float) + sizeof(std::uint16_t);
  std::string head = HeaderOf(mesh);
  head.resize(kHeader + sizeof(std::uint32_t));
  PutRaw(static_cast<std::uint32_t>(mesh.m_aTriangles.size()), head.data() + kHeader);
  sink.Put(head);
  const auto put = [&](std::size_t t, char* out) {
    const CPoint& a = mesh.m_aPositions[mesh.m_aTriangles[t][0]];
    const CPoint& b = mesh.m_aPositions[mesh.m_aTriangles[t][1]];
    const CPoint& c = mesh.m_aPositions[mesh.m_aTriangles[t][2]];
    out = PutRaw(Turned(NormalOf(a, b, c), up), out);
    for (const CPoint* corner : {&a, &b, &c}) out = PutRaw(Turned(*corner, up), out);
    return PutRaw(std::uint16_t{0}, out);
  };
  return PutRecords(mesh.m_aTriangles.size(), kTriangle, steps, put, sink);
}
