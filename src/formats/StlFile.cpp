#include "formats/StlFile.h"

#include <cmath>
#include <cstddef>

#include "base/Vector3.h"
#include "formats/RawNumbers.h"

namespace {

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

}  // namespace

std::string StlOf(const CFileMesh& mesh, UpAxis up, const CExportSteps& steps) {
  constexpr std::size_t kTriangle = 12 * sizeof(float) + sizeof(std::uint16_t);
  // It must not begin with "solid", which is the mark of the text form.
  std::string bytes = "relievo";
  bytes.resize(kHeader + sizeof(std::uint32_t) + mesh.m_aTriangles.size() * kTriangle);
  char* out = PutRaw(static_cast<std::uint32_t>(mesh.m_aTriangles.size()), bytes.data() + kHeader);
  const auto put = [&](std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      std::array<std::array<float, 3>, 3> corners{};
      for (std::size_t k = 0; k < corners.size(); ++k)
        corners[k] = Turned(mesh.m_aPositions[mesh.m_aTriangles[t][k]], up);
      out = PutRaw(NormalOf(corners), out);
      out = PutRaw(corners, out) + sizeof(std::uint16_t);
    }
  };
  steps.ForBlocks(mesh.m_aTriangles.size(), put);
  return bytes;
}
