#include "exports/SurfaceSamples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>

#include "base/Memory.h"
#include "base/Vector3.h"

namespace {

/// A corner of a triangle, or where a row of samples crosses one of its sides: columns and rows of samples, and what is
/// blended between corners.
template <std::size_t kCount>
struct CCrossing {
  double x = 0.0;
  double y = 0.0;
  std::array<double, kCount> m_afValues{};
};

template <std::size_t kCount>
std::array<double, kCount> Blended(const std::array<double, kCount>& a, const std::array<double, kCount>& b, double t) {
  std::array<double, kCount> blended{};
  for (std::size_t k = 0; k < kCount; ++k) blended[k] = a[k] + t * (b[k] - a[k]);
  return blended;
}

/// The part of a row of samples that lies in a triangle. Both triangles at a side compute the same end of it, so that
/// no sample can fall between them.
template <std::size_t kCount>
class CSpan {
 public:
  explicit CSpan(double row) : m_fRow(row) {}

  void AddSide(const CCrossing<kCount>& a, const CCrossing<kCount>& b) {
    const bool upwards = a.y < b.y || (a.y == b.y && a.x < b.x);
    const CCrossing<kCount>& low = upwards ? a : b;
    const CCrossing<kCount>& high = upwards ? b : a;
    if (m_fRow < low.y || m_fRow > high.y) return;
    // At the ends it is the corner to the last bit, for all sides that meet there.
    if (m_fRow == low.y) Add(low);
    if (m_fRow == high.y) Add(high);
    if (m_fRow == low.y || m_fRow == high.y) return;
    const double t = (m_fRow - low.y) / (high.y - low.y);
    Add({low.x + t * (high.x - low.x), m_fRow, Blended(low.m_afValues, high.m_afValues, t)});
  }

  // `put(column, values)` for every sample. Nothing is continued beyond the sides, however thin the triangle.
  template <typename Put>
  void ForEachSample(const Put& put) const {
    const double width = m_Right.x - m_Left.x;
    const int last = static_cast<int>(std::floor(m_Right.x));
    for (int column = static_cast<int>(std::ceil(m_Left.x)); column <= last; ++column) {
      const double t = width > 0 ? (column - m_Left.x) / width : 0.0;
      put(column, Blended(m_Left.m_afValues, m_Right.m_afValues, t));
    }
  }

 private:
  void Add(const CCrossing<kCount>& crossing) {
    if (!m_bAny || crossing.x < m_Left.x) m_Left = crossing;
    if (!m_bAny || crossing.x > m_Right.x) m_Right = crossing;
    m_bAny = true;
  }

  double m_fRow;
  bool m_bAny = false;
  CCrossing<kCount> m_Left;
  CCrossing<kCount> m_Right{-1};  ///< as long as there is none, no sample lies in between
};

/// Where the samples lie: what 0 and 1 across the rectangle are in columns and in rows.
struct CSampleFrame {
  int m_iWidth = 0;
  int m_iRows = 0;
  std::array<double, 2> m_afFirst{};  ///< column of the left side, row of the lower one
  std::array<double, 2> m_afSize{};   ///< columns and rows from side to side
};

int CountOf(const CSampleGrid& grid, const CSampleRows& rows) {
  return rows.m_Count.value_or(grid.m_iHeight - rows.m_iFirst);
}

CSampleFrame FrameOf(const CSampleGrid& grid, const CSampleRows& rows) {
  return {grid.m_iWidth,
          CountOf(grid, rows),
          {0.0, static_cast<double>(-rows.m_iFirst)},
          {static_cast<double>(grid.m_iWidth - 1), static_cast<double>(grid.m_iHeight - 1)}};
}

template <std::size_t kCount, typename Put>
void SampleTriangle(const std::array<CCrossing<kCount>, 3>& corners, const CSampleFrame& frame, const Put& put) {
  const auto [low, high] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
  const int last = static_cast<int>(std::floor(std::min(high, static_cast<double>(frame.m_iRows - 1))));
  for (int row = static_cast<int>(std::ceil(std::max(low, 0.0))); row <= last; ++row) {
    CSpan<kCount> span(row);
    for (std::size_t k = 0; k < corners.size(); ++k) span.AddSide(corners[k], corners[(k + 1) % 3]);
    const std::size_t first = static_cast<std::size_t>(row) * static_cast<std::size_t>(frame.m_iWidth);
    span.ForEachSample([&](int column, const std::array<double, kCount>& values) {
      put(first + static_cast<std::size_t>(column), values);
    });
  }
}

// `valuesOf(vertex)` are blended; `put(sample, values)` is called for each sample of each triangle, those on its sides
// included.
template <std::size_t kCount, typename Values, typename Put>
void SampleMesh(const CFileMesh& mesh, const CSampleFrame& frame, const CExportSteps& steps, const Values& valuesOf,
                const Put& put) {
  const auto cornerAt = [&](std::uint32_t v) {
    const auto& [u, w] = mesh.m_aPicturePlaces[v];
    return CCrossing<kCount>{frame.m_afFirst[0] + u * frame.m_afSize[0], frame.m_afFirst[1] + w * frame.m_afSize[1],
                             valuesOf(v)};
  };
  const auto sample = [&](std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      const auto& [a, b, c] = mesh.m_aTriangles[t];
      SampleTriangle<kCount>({cornerAt(a), cornerAt(b), cornerAt(c)}, frame, put);
    }
  };
  steps.ForBlocks(mesh.m_aTriangles.size(), sample);
}

CSurfaceSamples Unsampled(const CSampleGrid& grid, const CSampleRows& rows, bool normals) {
  CSurfaceSamples samples{{grid.m_iWidth, CountOf(grid, rows)}, {}, {}};
  const std::size_t count =
      static_cast<std::size_t>(grid.m_iWidth) * static_cast<std::size_t>(samples.m_Grid.m_iHeight);
  // The system grants more than it has, and would end the process later.
  const double needed = static_cast<double>(count) * (sizeof(float) + (normals ? 3 : 0));
  if (needed > AvailableMemory()) throw std::bad_alloc();
  samples.m_afHeights.assign(count, -std::numeric_limits<float>::infinity());
  if (normals) samples.m_aNormals.resize(count);
  return samples;
}

std::uint8_t ByteOf(double direction) {
  constexpr double kHalf = 127.5;
  return static_cast<std::uint8_t>(std::lround(kHalf * direction + kHalf));
}

}  // namespace

CSurfaceSamples SampleHeights(const CFileMesh& mesh, const CSampleGrid& grid, const CExportSteps& steps,
                              const CSampleRows& rows) {
  CSurfaceSamples samples = Unsampled(grid, rows, false);
  const auto heightOf = [&](std::uint32_t v) { return std::array{double{mesh.m_aPositions[v][2]}}; };
  SampleMesh<1>(mesh, FrameOf(grid, rows), steps, heightOf,
                [&](std::size_t sample, const std::array<double, 1>& height) {
                  float& highest = samples.m_afHeights[sample];
                  highest = std::max(highest, static_cast<float>(height[0]));
                });
  return samples;
}

CSurfaceSamples SampleNormals(const CFileMesh& mesh, const CSampleGrid& grid, bool down, const CExportSteps& steps,
                              const CSampleRows& rows) {
  CSurfaceSamples samples = Unsampled(grid, rows, true);
  const auto valuesOf = [&](std::uint32_t v) {
    const auto& [x, y, z] = mesh.m_aNormals[v];
    return std::array<double, 4>{mesh.m_aPositions[v][2], x, down ? -y : y, z};
  };
  SampleMesh<4>(mesh, FrameOf(grid, rows), steps, valuesOf,
                [&](std::size_t sample, const std::array<double, 4>& values) {
                  float& highest = samples.m_afHeights[sample];
                  const auto height = static_cast<float>(values[0]);
                  if (!(height > highest)) return;
                  highest = height;
                  const Vector3 normal = Normalised({values[1], values[2], values[3]});
                  samples.m_aNormals[sample] = {ByteOf(normal.x), ByteOf(normal.y), ByteOf(normal.z)};
                });
  return samples;
}

std::vector<Vector3> NormalsAtPixels(const CFileMesh& mesh, int width, int height,
                                     std::span<const std::size_t> pixels) {
  std::vector<bool> wanted(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (const std::size_t pixel : pixels) wanted[pixel] = true;
  std::vector<Vector3> normals(pixels.size(), {0, 0, 1});
  std::vector<double> heights(pixels.size(), -std::numeric_limits<double>::infinity());
  constexpr double kHalf = 0.5;
  const CSampleFrame frame{width, height, {-kHalf, -kHalf}, {static_cast<double>(width), static_cast<double>(height)}};
  const auto valuesOf = [&](std::uint32_t v) {
    const auto& [x, y, z] = mesh.m_aNormals[v];
    return std::array<double, 4>{mesh.m_aPositions[v][2], x, y, z};
  };
  SampleMesh<4>(mesh, frame, {}, valuesOf, [&](std::size_t pixel, const std::array<double, 4>& values) {
    if (!wanted[pixel]) return;
    const auto k = static_cast<std::size_t>(std::ranges::lower_bound(pixels, pixel) - pixels.begin());
    if (!(values[0] > heights[k])) return;
    heights[k] = values[0];
    normals[k] = Normalised({values[1], values[2], values[3]});
  });
  return normals;
}
