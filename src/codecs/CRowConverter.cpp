#include "codecs/CRowConverter.h"

#include <algorithm>
#include <limits>

namespace {

template <typename Sample>
constexpr std::uint32_t kFull = std::numeric_limits<Sample>::max();

// value * factor / full, rounded.
template <typename Sample>
std::uint32_t Product(std::uint32_t value, std::uint32_t factor) {
  return static_cast<std::uint32_t>((std::uint64_t{value} * factor + kFull<Sample> / 2) / kFull<Sample>);
}

template <typename Sample>
std::uint8_t Byte(std::uint32_t value) {
  if constexpr (sizeof(Sample) == 1) return static_cast<std::uint8_t>(value);
  return static_cast<std::uint8_t>((value * 255U + kFull<Sample> / 2) / kFull<Sample>);
}

}  // namespace

CRowConverter::CRowConverter(const CRaster& raster)
    : m_uPixels(static_cast<std::size_t>(raster.m_iWidth)),
      m_uColours(raster.Colours()),
      m_Alpha(raster.m_Alpha),
      m_iBits(raster.m_iBits),
      m_Profile(raster) {
  if (m_Alpha != SampleAlpha::None) m_auOpaque.resize(m_uPixels * m_uColours);
}

void CRowConverter::Convert(const void* samples, std::uint8_t* rgb) {
  if (m_iBits == 8) return Convert(static_cast<const std::uint8_t*>(samples), rgb);
  Convert(static_cast<const std::uint16_t*>(samples), rgb);
}

// No ink is white, full light is white.
template <typename Sample>
const Sample* CRowConverter::OnWhite(const Sample* samples) {
  auto* const opaque = reinterpret_cast<Sample*>(m_auOpaque.data());
  const std::uint32_t white = m_uColours == 4 ? 0 : kFull<Sample>;
  for (std::size_t k = 0; k < m_uPixels; ++k) {
    const Sample* const pixel = samples + k * (m_uColours + 1);
    const std::uint32_t alpha = pixel[m_uColours];
    const std::uint32_t rest = Product<Sample>(white, kFull<Sample> - alpha);
    for (std::size_t c = 0; c < m_uColours; ++c) {
      const std::uint32_t share = m_Alpha == SampleAlpha::Straight ? Product<Sample>(pixel[c], alpha) : pixel[c];
      opaque[k * m_uColours + c] = static_cast<Sample>(std::min(share + rest, kFull<Sample>));
    }
  }
  return opaque;
}

template <typename Sample>
void CRowConverter::Convert(const Sample* samples, std::uint8_t* rgb) {
  const Sample* in = m_Alpha == SampleAlpha::None ? samples : OnWhite(samples);
  if (m_Profile->Converts()) return m_Profile->Convert(in, rgb, m_uPixels);
  if (m_uColours == 3 && sizeof(Sample) == 1) {
    std::copy_n(in, 3 * m_uPixels, rgb);
    return;
  }
  for (std::size_t k = 0; k < m_uPixels; ++k, in += m_uColours, rgb += 3) {
    for (std::size_t c = 0; c < 3; ++c) {
      const std::uint32_t value = in[m_uColours == 1 ? 0 : c];
      const std::uint32_t black = m_uColours == 4 ? in[3] : 0;
      const std::uint32_t light = m_uColours == 4 ? kFull<Sample> - value : value;
      rgb[c] = Byte<Sample>(Product<Sample>(light, kFull<Sample> - black));
    }
  }
}
