#include "codecs/JpegDecoder.h"

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

#include "codecs/Orientation.h"

namespace {

// A forged file of a few bytes can hold so many scans that decoding takes hours; encoders make a dozen.
constexpr int kMostScans = 200;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kProfileMarker = JPEG_APP0 + 2;
constexpr unsigned kMostInMarker = 0xFFFF;
// Even a picture of one colour takes some bits for each of its blocks.
constexpr double kMostPerFileByte = 4096;
constexpr double kHarmless = 64 << 20;

/// The library's error handler, which must not return: it goes back to where the call was made.
struct CErrorHandler {
  jpeg_error_mgr m_Manager;
  std::jmp_buf m_Start;
  bool m_bEndsEarly;
  bool m_bDamaged;
};

CErrorHandler& HandlerOf(j_common_ptr info) { return *reinterpret_cast<CErrorHandler*>(info->err); }

[[noreturn]] void GiveUp(j_common_ptr info) { std::longjmp(HandlerOf(info).m_Start, 1); }

void Warn(j_common_ptr info, int level) {
  if (level >= 0) return;  // it only tells of its progress
  CErrorHandler& handler = HandlerOf(info);
  const int code = info->err->msg_code;
  if (code == JWRN_JPEG_EOF) handler.m_bEndsEarly = true;
  // Bytes between two markers harm nobody, and some cameras write them.
  if (code != JWRN_EXTRANEOUS_DATA) handler.m_bDamaged = true;
}

void SayNothing(j_common_ptr /*info*/) {}

void CountScans(j_common_ptr info) {
  if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans) GiveUp(info);
}

/// The library's state of one picture. Each call of the library goes through `Try`, so that its jumps skip nothing that
/// has a destructor.
class CJpegReader {
 public:
  explicit CJpegReader(std::string_view bytes) : m_Bytes(bytes) {
    m_Info.err = jpeg_std_error(&m_Handler.m_Manager);
    m_Handler.m_Manager.error_exit = GiveUp;
    m_Handler.m_Manager.emit_message = Warn;
    m_Handler.m_Manager.output_message = SayNothing;
    m_Progress.progress_monitor = CountScans;
  }
  ~CJpegReader() { jpeg_destroy_decompress(&m_Info); }
  CJpegReader(const CJpegReader&) = delete;
  CJpegReader& operator=(const CJpegReader&) = delete;

  Decoding Decode(RasterSink& sink);

 private:
  template <typename Call>
  bool Try(Call call) {
    if (setjmp(m_Handler.m_Start) != 0) return false;
    call();
    return true;
  }
  bool ReadHeader();
  bool Start();
  Decoding ReadRows(RasterSink& sink);
  Decoding Failed(Decoding otherwise) const;
  CRaster Raster() const;
  int Orientation() const;
  void ReadProfile(CRaster& raster);
  void Invert(std::vector<JSAMPLE>& row) const;

  std::string_view m_Bytes;
  CErrorHandler m_Handler{};
  jpeg_progress_mgr m_Progress{};
  jpeg_decompress_struct m_Info{};
};

bool CJpegReader::ReadHeader() {
  return Try([this] {
    jpeg_create_decompress(&m_Info);
    m_Info.progress = &m_Progress;
    jpeg_mem_src(&m_Info, reinterpret_cast<const unsigned char*>(m_Bytes.data()), m_Bytes.size());
    jpeg_save_markers(&m_Info, kExifMarker, kMostInMarker);
    jpeg_save_markers(&m_Info, kProfileMarker, kMostInMarker);
    jpeg_read_header(&m_Info, TRUE);
  });
}

bool CJpegReader::Start() {
  const bool grey = m_Info.jpeg_color_space == JCS_GRAYSCALE;
  const bool inks = m_Info.num_components == 4;
  m_Info.out_color_space = grey ? JCS_GRAYSCALE : inks ? JCS_CMYK : JCS_RGB;
  return Try([this] { jpeg_start_decompress(&m_Info); });
}

CRaster CJpegReader::Raster() const {
  CRaster raster;
  raster.m_iWidth = static_cast<int>(m_Info.image_width);
  raster.m_iHeight = static_cast<int>(m_Info.image_height);
  if (m_Info.jpeg_color_space == JCS_GRAYSCALE) raster.m_Colour = SampleColour::Grey;
  if (m_Info.num_components == 4) raster.m_Colour = SampleColour::Cmyk;
  return raster;
}

void CJpegReader::ReadProfile(CRaster& raster) {
  JOCTET* profile = nullptr;
  unsigned length = 0;
  if (!Try([&] { jpeg_read_icc_profile(&m_Info, &profile, &length); }) || profile == nullptr) return;
  const std::unique_ptr<JOCTET, decltype(&std::free)> owner(profile, &std::free);
  raster.m_Profile.assign(reinterpret_cast<const char*>(profile), length);
}

int CJpegReader::Orientation() const {
  for (const jpeg_marker_struct* marker = m_Info.marker_list; marker != nullptr; marker = marker->next) {
    const std::string_view data(reinterpret_cast<const char*>(marker->data), marker->data_length);
    if (marker->marker == kExifMarker && data.starts_with("Exif")) return ExifOrientation(data);
  }
  return 1;
}

Decoding CJpegReader::Failed(Decoding otherwise) const {
  if (m_Handler.m_Manager.msg_code == JERR_OUT_OF_MEMORY) return Decoding::NoMemory;
  return m_Handler.m_bEndsEarly ? Decoding::CutShort : otherwise;
}

Decoding CJpegReader::Decode(RasterSink& sink) {
  if (!ReadHeader()) return Failed(Decoding::Unusable);
  const bool hasScan = m_Info.src->bytes_in_buffer > 0 && !m_Handler.m_bEndsEarly;
  CRaster raster = Raster();
  ReadProfile(raster);
  sink.SetOrientation(Orientation());
  if (!sink.Begin(raster)) return Decoding::Refused;
  // What is decoded over several scans is kept as a whole, so that the announced size must not be believed.
  const double announced = 3.0 * raster.m_iWidth * raster.m_iHeight;
  const auto bytes = static_cast<double>(m_Bytes.size());
  if (!hasScan || announced > std::max(kHarmless, kMostPerFileByte * bytes)) return Decoding::CutShort;
  if (!Start()) return Failed(Decoding::Unusable);
  return ReadRows(sink);
}

// Programs that write CMYK with a marker of their own say there that the full value is no ink.
void CJpegReader::Invert(std::vector<JSAMPLE>& row) const {
  if (m_Info.out_color_space == JCS_CMYK && m_Info.saw_Adobe_marker != 0)
    std::ranges::transform(row, row.begin(), [](JSAMPLE value) { return static_cast<JSAMPLE>(~value); });
}

Decoding CJpegReader::ReadRows(RasterSink& sink) {
  std::vector<JSAMPLE> row(Raster().Stride());
  JSAMPROW samples = row.data();
  while (m_Info.output_scanline < m_Info.output_height) {
    const bool first = m_Info.output_scanline == 0;
    if (!Try([this, &samples] { jpeg_read_scanlines(&m_Info, &samples, 1); }))
      return Failed(first ? Decoding::Unusable : Decoding::Damaged);
    Invert(row);
    sink.Row(row.data());
  }
  if (m_Handler.m_bEndsEarly) return Decoding::EndsEarly;
  return m_Handler.m_bDamaged ? Decoding::Damaged : Decoding::Whole;
}

}  // namespace

bool IsJpeg(std::string_view bytes) { return bytes.starts_with("\xFF\xD8\xFF"); }

Decoding DecodeJpeg(std::string_view bytes, RasterSink& sink) { return CJpegReader(bytes).Decode(sink); }
