#include "codecs/CChannelSink.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/Memory.h"
#include "codecs/Orientation.h"
#include "codecs/SameSample.h"

void CChannelSink::Refuse(PictureTrouble trouble, std::string reason) {
  m_Trouble = trouble;
  m_Reason = std::move(reason);
}

bool CChannelSink::Begin(const CRaster& raster) {
  m_Raster = raster;
  const std::string size = std::to_string(raster.m_iWidth) + " x " + std::to_string(raster.m_iHeight) + " values";
  const double bytes = static_cast<double>(sizeof(float)) * raster.m_iWidth * raster.m_iHeight;
  if (raster.m_Colour == SampleColour::Cmyk) {
    Refuse(PictureTrouble::NotOneChannel, "it holds colours; one channel is needed");
  } else if (raster.m_bConverted) {
    Refuse(PictureTrouble::Damaged,
           "its numbers are of a kind that is not read; 8 or 16 bits without a sign, or floats of 32 bits, are");
  } else if (std::max(raster.m_iWidth, raster.m_iHeight) > kMostPictureSide || bytes > kMostPictureBytes) {
    Refuse(PictureTrouble::TooLarge, "its " + size + " are too many: a side may have " +
                                         std::to_string(kMostPictureSide) + ", and all of them 1 GiB");
  } else if (bytes * (IsTransposed(m_iOrientation) ? 2 : 1) > AvailableMemory()) {
    Refuse(PictureTrouble::NoMemory, "there is not enough memory for its " + size);
  } else {
    m_afValues.reserve(static_cast<std::size_t>(bytes) / sizeof(float));
  }
  return m_Trouble == PictureTrouble::None;
}

template <typename Sample>
void CChannelSink::Append(const void* samples) {
  const auto* in = static_cast<const Sample*>(samples);
  const std::size_t channels = m_Raster.Channels();
  const std::size_t colours = m_Raster.Colours();
  for (int k = 0; k < m_Raster.m_iWidth; ++k, in += channels) {
    for (std::size_t c = 1; c < colours; ++c) m_bOneChannel = m_bOneChannel && IsSameSample(in[c], in[0]);
    m_afValues.push_back(static_cast<float>(in[0]));
  }
}

void CChannelSink::Row(const void* samples) {
  if (m_Raster.m_iBits == 8) return Append<std::uint8_t>(samples);
  if (m_Raster.m_iBits == 16) return Append<std::uint16_t>(samples);
  Append<float>(samples);
}
