#include "codecs/ChannelFormats.h"

#include <cstdint>
#include <limits>
#include <new>
#include <utility>

#include "codecs/CChannelSink.h"
#include "codecs/FileBytes.h"
#include "codecs/Orientation.h"
#include "codecs/PictureDecoders.h"
#include "io/FileKind.h"

namespace {

CReadChannel Refused(PictureTrouble trouble, std::string reason) {
  CReadChannel none;
  none.m_Trouble = trouble;
  none.m_Reason = std::move(reason);
  return none;
}

CReadChannel Taken(CChannelSink& sink, Decoding decoding) {
  const CRaster& raster = sink.Raster();
  const std::size_t count = static_cast<std::size_t>(raster.m_iWidth) * static_cast<std::size_t>(raster.m_iHeight);
  if (!sink.IsOneChannel()) return Refused(PictureTrouble::NotOneChannel, kColoursInsteadOfOne);
  // Of heights that are missing nothing can be shown in their place.
  if (decoding != Decoding::Whole || sink.Values().size() != count)
    return Refused(PictureTrouble::Damaged, "it is damaged, or ends early");
  CReadChannel read;
  read.m_iWidth = raster.m_iWidth;
  read.m_iHeight = raster.m_iHeight;
  read.m_iBits = raster.m_iBits;
  read.m_afValues = std::move(sink.Values());
  MakeUpright<1>(read.m_afValues, read.m_iWidth, read.m_iHeight, sink.Orientation());
  return read;
}

// Also tells why what is of no known kind cannot be read.
CReadChannel ChannelOf(CReadPicture read) {
  if (!read) return Refused(read.m_Trouble, std::move(read.m_Reason));
  CReadChannel channel;
  channel.m_iWidth = read.m_Picture.m_iWidth;
  channel.m_iHeight = read.m_Picture.m_iHeight;
  channel.m_iBits = 8;
  channel.m_Notice = std::move(read.m_Notice);
  const std::vector<std::uint8_t>& pixels = read.m_Picture.m_aPixels;
  channel.m_afValues.reserve(pixels.size() / 3);
  for (std::size_t k = 0; k < pixels.size(); k += 3) {
    if (pixels[k] != pixels[k + 1] || pixels[k] != pixels[k + 2])
      return Refused(PictureTrouble::NotOneChannel, kColoursInsteadOfOne);
    channel.m_afValues.push_back(pixels[k]);
  }
  return channel;
}

CReadChannel Decoded(const CPictureDecoder& decoder, std::string_view bytes) {
  CChannelSink sink;
  const Decoding decoding = decoder.m_pDecode(bytes, sink);
  if (decoding == Decoding::Refused) return Refused(sink.Trouble(), sink.Reason());
  return Taken(sink, decoding);
}

CReadChannel Read(const std::string& filename) {
  const CFileBytes beginning = ReadFileBytes(filename, kKindBytes);
  const CPictureDecoder* const decoder = beginning.m_pBytes == nullptr ? nullptr : DecoderOf(*beginning.m_pBytes);
  if (decoder == nullptr) return ChannelOf(ReadPicture(filename));
  const CFileBytes whole = ReadFileBytes(filename, std::numeric_limits<std::size_t>::max());
  if (whole.m_pBytes == nullptr) return Refused(whole.m_Trouble, whole.m_Reason);
  return Decoded(*decoder, *whole.m_pBytes);
}

CReadChannel ReadBytes(std::string_view bytes, const std::string& name) {
  const CPictureDecoder* const decoder = DecoderOf(bytes);
  return decoder == nullptr ? ChannelOf(ReadPicture(bytes, name)) : Decoded(*decoder, bytes);
}

template <typename Reading>
CReadChannel Guarded(const Reading& read) {
  try {
    return read();
  } catch (const std::bad_alloc&) {
    return Refused(PictureTrouble::NoMemory, "there is not enough memory to read it");
  }
}

}  // namespace

CReadChannel ReadChannel(const std::string& filename) {
  return Guarded([&] { return Read(filename); });
}

CReadChannel ReadChannel(std::string_view bytes, const std::string& name) {
  return Guarded([&] { return ReadBytes(bytes, name); });
}
