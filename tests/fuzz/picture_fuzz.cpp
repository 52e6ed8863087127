// Whatever a picture in another format holds, it is refused with a reason or gives all pixels of an upright picture.

#include <cstdlib>
#include <ostream>
#include <string_view>

#include "base/Console.h"
#include "codecs/CChannelSink.h"
#include "codecs/PictureDecoders.h"
#include "codecs/PictureFormats.h"
#include "fuzz/FuzzTarget.h"

namespace {

// Large pictures only cost time.
constexpr double kMostPixels = 1 << 20;

/// Asks for the size and no more.
class CSizeSink : public RasterSink {
 public:
  bool Begin(const CRaster& raster) override {
    m_fPixels = static_cast<double>(raster.m_iWidth) * raster.m_iHeight;
    return false;
  }
  void Row(const void* /*samples*/) override { std::abort(); }
  void SetOrientation(int orientation) override {
    if (orientation < 1 || orientation > 8) std::abort();
  }
  double Pixels() const { return m_fPixels; }

 private:
  double m_fPixels = 0.0;
};

void Require(bool condition) {
  if (!condition) std::abort();
}

void RequireSound(const CReadPicture& read) {
  const CPicture& picture = read.m_Picture;
  const double bytes = 3.0 * picture.m_iWidth * picture.m_iHeight;
  Require(static_cast<double>(picture.m_aPixels.size()) == bytes);
  Require(static_cast<bool>(read) == read.m_Reason.empty());
  Require(read ? bytes > 0 : bytes == 0);
  Require(!read.m_bEndsEarly || !read.m_Notice.empty());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const CPictureDecoder* const decoder = DecoderOf(bytes);
  if (decoder == nullptr) return 0;
  CSizeSink sizes;
  decoder->m_pDecode(bytes, sizes);
  if (sizes.Pixels() > kMostPixels) return 0;
  RequireSound(ReadPicture(bytes, "input"));
  CChannelSink channel;
  const bool whole = decoder->m_pDecode(bytes, channel) == Decoding::Whole;
  Require(!whole || static_cast<double>(channel.Values().size()) == sizes.Pixels());
  return 0;
}
