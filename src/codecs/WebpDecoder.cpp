#include "codecs/WebpDecoder.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <webp/decode.h>
#include <webp/demux.h>

#include "base/RawBytes.h"
#include "codecs/Orientation.h"

namespace {

struct CDelete {
  void operator()(WebPDemuxer* file) const { WebPDemuxDelete(file); }
  void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};
using WebpFile = std::unique_ptr<WebPDemuxer, CDelete>;
using WebpDecoder = std::unique_ptr<WebPIDecoder, CDelete>;

std::string ChunkOf(const WebPDemuxer* file, const char* name) {
  WebPChunkIterator chunk{};
  std::string contents;
  if (WebPDemuxGetChunk(file, name, 1, &chunk) != 0)
    contents.assign(reinterpret_cast<const char*>(chunk.chunk.bytes), chunk.chunk.size);
  WebPDemuxReleaseChunkIterator(&chunk);
  return contents;
}

// The first picture, or as much as there is of it.
std::string_view FirstFrame(const WebPDemuxer* file) {
  WebPIterator frame{};
  std::string_view bytes;
  if (WebPDemuxGetFrame(file, 1, &frame) != 0)
    bytes = {reinterpret_cast<const char*>(frame.fragment.bytes), frame.fragment.size};
  WebPDemuxReleaseIterator(&frame);
  return bytes;
}

Decoding Outcome(VP8StatusCode status, bool anything) {
  switch (status) {
    case VP8_STATUS_OK:
      return Decoding::Whole;
    case VP8_STATUS_OUT_OF_MEMORY:
      return Decoding::NoMemory;
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA:
      return anything ? Decoding::EndsEarly : Decoding::CutShort;
    default:
      return anything ? Decoding::Damaged : Decoding::Unusable;
  }
}

Decoding DecodeFrame(std::string_view frame, const CRaster& raster, RasterSink& sink) {
  // Nothing is written into it before there is a row.
  const std::size_t stride = raster.Stride();
  const std::size_t size = stride * static_cast<std::size_t>(raster.m_iHeight);
  const RawBytes pixels = MakeRawBytes(size);
  WebPDecBuffer target{};
  WebPInitDecBuffer(&target);
  target.colorspace = raster.m_Alpha == SampleAlpha::None ? MODE_RGB : MODE_RGBA;
  target.is_external_memory = 1;
  target.u.RGBA = {pixels.get(), static_cast<int>(stride), size};
  const WebpDecoder decoder(WebPINewDecoder(&target));
  if (decoder == nullptr) return Decoding::NoMemory;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(frame.data());
  const VP8StatusCode status = WebPIUpdate(decoder.get(), bytes, frame.size());
  int rows = 0;
  if (WebPIDecGetRGB(decoder.get(), &rows, nullptr, nullptr, nullptr) == nullptr) rows = 0;
  if (status == VP8_STATUS_OK) rows = raster.m_iHeight;
  for (int y = 0; y < rows; ++y) sink.Row(pixels.get() + static_cast<std::size_t>(y) * stride);
  return Outcome(status, rows > 0);
}

}  // namespace

bool IsWebp(std::string_view bytes) {
  constexpr std::size_t kNameAt = 8;
  return bytes.starts_with("RIFF") && bytes.size() > kNameAt && bytes.substr(kNameAt).starts_with("WEBP");
}

Decoding DecodeWebp(std::string_view bytes, RasterSink& sink) {
  const WebPData data{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
  WebPDemuxState state = WEBP_DEMUX_PARSING_HEADER;
  const WebpFile file(WebPDemuxPartial(&data, &state));
  const Decoding none = state == WEBP_DEMUX_PARSE_ERROR ? Decoding::Unusable : Decoding::CutShort;
  if (file == nullptr) return none;
  const std::string_view frame = FirstFrame(file.get());
  WebPBitstreamFeatures features{};
  const auto* const begin = reinterpret_cast<const std::uint8_t*>(frame.data());
  const VP8StatusCode status =
      frame.empty() ? VP8_STATUS_NOT_ENOUGH_DATA : WebPGetFeatures(begin, frame.size(), &features);
  if (status != VP8_STATUS_OK) return frame.empty() ? none : Outcome(status, false);
  CRaster raster;
  raster.m_iWidth = features.width;
  raster.m_iHeight = features.height;
  raster.m_Alpha = features.has_alpha != 0 ? SampleAlpha::Straight : SampleAlpha::None;
  raster.m_Profile = ChunkOf(file.get(), "ICCP");
  sink.SetOrientation(ExifOrientation(ChunkOf(file.get(), "EXIF")));
  if (!sink.Begin(raster)) return Decoding::Refused;
  return DecodeFrame(frame, raster, sink);
}
