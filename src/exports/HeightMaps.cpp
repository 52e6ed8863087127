#include "exports/HeightMaps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "base/NumberText.h"
#include "codecs/CPngWriter.h"
#include "codecs/CTiffWriter.h"
#include "exports/RawNumbers.h"

namespace {

constexpr double kLargest = std::numeric_limits<std::uint16_t>::max();

// Where row `row` of the samples begins.
std::size_t FirstOf(const CSurfaceSamples& samples, int row) {
  return static_cast<std::size_t>(row) * static_cast<std::size_t>(samples.m_Grid.m_iWidth);
}

// `put(row)` from the top; false where it has been cancelled.
template <typename Put>
bool ForRowsFromTop(const CSurfaceSamples& samples, const CExportSteps& steps, const Put& put) {
  for (int row = samples.m_Grid.m_iHeight - 1; row >= 0; --row) {
    if (!steps.Goes(1 - static_cast<double>(row) / samples.m_Grid.m_iHeight)) return false;
    put(row);
  }
  return true;
}

}  // namespace

CHeightCode HeightCodeOf(const CSurfaceSamples& samples) {
  const auto [lowest, highest] = std::ranges::minmax(samples.m_afHeights);
  const double range = double{highest} - double{lowest};
  return {lowest, range > 0 ? range / kLargest : 1.0};
}

std::string HeightPngOf(const CSurfaceSamples& samples, const CHeightCode& code, const CExportSteps& steps) {
  const std::array remarks{CPngText{"Software", "relievo"}, CPngText{"Description", "height = offset + scale * number"},
                           CPngText{"offset", ShortestText(code.m_fOffset)},
                           CPngText{"scale", ShortestText(code.m_fScale)}};
  CPngWriter png(samples.m_Grid.m_iWidth, samples.m_Grid.m_iHeight, PngPixels::Heights, remarks);
  std::vector<std::uint16_t> numbers(static_cast<std::size_t>(samples.m_Grid.m_iWidth));
  const auto put = [&](int row) {
    const float* heights = &samples.m_afHeights[FirstOf(samples, row)];
    for (std::uint16_t& number : numbers) {
      const double exact = (*heights++ - code.m_fOffset) / code.m_fScale;
      number = static_cast<std::uint16_t>(std::clamp(std::round(exact), 0.0, kLargest));
    }
    png.Row(numbers.data());
  };
  return ForRowsFromTop(samples, steps, put) ? png.Take() : std::string();
}

std::string HeightTiffOf(const CSurfaceSamples& samples, const CExportSteps& steps) {
  CTiffWriter tiff(samples.m_Grid.m_iWidth, samples.m_Grid.m_iHeight);
  const auto put = [&](int row) { tiff.Row(&samples.m_afHeights[FirstOf(samples, row)]); };
  return ForRowsFromTop(samples, steps, put) ? tiff.Take() : std::string();
}

std::string HeightPfmOf(const CSurfaceSamples& samples, const CExportSteps& steps) {
  // A negative scale says that the least significant byte comes first.
  std::string bytes =
      "Pf\n" + std::to_string(samples.m_Grid.m_iWidth) + ' ' + std::to_string(samples.m_Grid.m_iHeight) + "\n-1.0\n";
  const std::size_t header = bytes.size();
  bytes.resize(header + samples.m_afHeights.size() * sizeof(float));
  char* out = bytes.data() + header;
  const auto put = [&](std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) out = PutRaw(samples.m_afHeights[k], out);
  };
  return steps.ForBlocks(samples.m_afHeights.size(), put) ? bytes : std::string();
}

std::string NormalPngOf(const CSurfaceSamples& samples, const CExportSteps& steps) {
  CPngWriter png(samples.m_Grid.m_iWidth, samples.m_Grid.m_iHeight, PngPixels::Directions);
  const auto put = [&](int row) { png.Row(&samples.m_aNormals[FirstOf(samples, row)]); };
  return ForRowsFromTop(samples, steps, put) ? png.Take() : std::string();
}
