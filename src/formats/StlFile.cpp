#include "formats/StlFile.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "base/Vector3.h"

namespace {

static_assert(std::endian::native == std::endian::little, "the format's numbers are copied as they are in memory");

constexpr std::size_t kHeader = 80;

Vector3 PointOf(const std::array<float, 3>& p) { return {p[0], p[1], p[2]}; }

// Zero where the triangle has no area, as the format has it.
std::array<float, 3> NormalOf(const std::array<std::array<float, 3>, 3>& corners) {
  const Vector3 first = PointOf(corners[0]);
  const Vector3 normal = Cross(PointOf(corners[1]) - first, PointOf(corners[2]) - first);
  const double length = Length(normal);
  if (!(length > 0)) return {};
  return {static_cast<float>(normal.x / length), static_cast<float>(normal.y / length),
          static_cast<float>(normal.z / length)};
}

template <typename Value>
char* Put(const Value& value, char* out) {
  std::memcpy(out, &value, sizeof(value));
  return out + sizeof(value);
}

}  // namespace

std::string StlOf(const CFileMesh& mesh, UpAxis up, const CExportSteps& steps) {
  constexpr std::size_t kTriangle = 12 * sizeof(float) + sizeof(std::uint16_t);
  // It must not begin with "solid", which is the mark of the text form.
  std::string bytes = "relievo";
  bytes.resize(kHeader + sizeof(std::uint32_t) + mesh.m_aTriangles.size() * kTriangle);
  char* out = Put(static_cast<std::uint32_t>(mesh.m_aTriangles.size()), bytes.data() + kHeader);
  const auto put = [&](std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      std::array<std::array<float, 3>, 3> corners{};
      for (std::size_t k = 0; k < corners.size(); ++k)
        corners[k] = Turned(mesh.m_aPositions[mesh.m_aTriangles[t][k]], up);
      out = Put(NormalOf(corners), out);
      out = Put(corners, out) + sizeof(std::uint16_t);
    }
  };
  steps.ForBlocks(mesh.m_aTriangles.size(), put);
  return bytes;
}
