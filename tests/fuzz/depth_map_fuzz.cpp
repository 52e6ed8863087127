// Whatever a depth map holds, it is refused with a reason or has as many values as it says, one of them at least; and
// so is the one in a photograph.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string_view>

#include "base/Console.h"
#include "codecs/DepthMapFile.h"
#include "codecs/EmbeddedDepth.h"
#include "codecs/PfmReader.h"
#include "codecs/PictureDecoders.h"
#include "fuzz/FuzzTarget.h"

namespace {

// Large maps only cost time.
constexpr double kMostValues = 1 << 20;

/// Asks for the size and no more.
class CCountSink : public RasterSink {
 public:
  bool Begin(const CRaster& raster) override {
    m_fCount = static_cast<double>(raster.m_iWidth) * raster.m_iHeight;
    return false;
  }
  void Row(const void* /*samples*/) override { std::abort(); }
  void SetOrientation(int /*orientation*/) override {}
  double Count() const { return m_fCount; }

 private:
  double m_fCount = 0.0;
};

void Require(bool condition) {
  if (!condition) std::abort();
}

bool IsLarge(std::string_view bytes) {
  const CPictureDecoder* const decoder = DecoderOf(bytes);
  if (IsPfm(bytes) || decoder == nullptr) return false;
  CCountSink count;
  decoder->m_pDecode(bytes, count);
  return count.Count() > kMostValues;
}

void CheckMap(const CReadDepthMap& read) {
  Require(static_cast<bool>(read) == read.m_Reason.empty());
  if (!read) return;
  const CDepthMap& map = *read.m_pMap;
  Require(map.Width() >= 2 && map.Height() >= 2);
  Require(map.Values().size() == static_cast<std::size_t>(map.Width()) * static_cast<std::size_t>(map.Height()));
  const CDepthReading reading(map, false);
  Require(reading.KnownCount() > 0 && std::isfinite(reading.Mean()));
  Require(std::ranges::all_of(reading.Filled(), [](float value) { return std::isfinite(value); }));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::optional<CEmbeddedDepth> embedded = EmbeddedDepthOf(bytes);
  if (embedded.has_value() && !IsLarge(embedded->m_Bytes)) CheckMap(ReadEmbeddedDepth(*embedded));
  if (!IsLarge(bytes)) CheckMap(ReadDepthMap(bytes, "input"));
  return 0;
}
