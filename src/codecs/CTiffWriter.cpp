#include "codecs/CTiffWriter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <new>
#include <utility>

namespace {

int SayNothing(TIFF* /*tiff*/, void* /*user*/, const char* /*module*/, const char* /*format*/, va_list /*values*/) {
  return 1;
}

}  // namespace

// No exception may pass through the library.
tmsize_t CTiffWriter::Write(thandle_t handle, void* from, tmsize_t length) {
  CTarget& target = *static_cast<CTarget*>(handle);
  const auto count = static_cast<std::size_t>(length);
  try {
    if (target.m_Bytes.size() < target.m_uAt + count) target.m_Bytes.resize(target.m_uAt + count);
  } catch (const std::bad_alloc&) {
    target.m_bFailed = true;
    return 0;
  }
  target.m_Bytes.replace(target.m_uAt, count, static_cast<const char*>(from), count);
  target.m_uAt += count;
  return length;
}

tmsize_t CTiffWriter::Read(thandle_t handle, void* to, tmsize_t length) {
  CTarget& target = *static_cast<CTarget*>(handle);
  if (target.m_uAt > target.m_Bytes.size()) return 0;
  const std::size_t count = target.m_Bytes.copy(static_cast<char*>(to), static_cast<std::size_t>(length), target.m_uAt);
  target.m_uAt += count;
  return static_cast<tmsize_t>(count);
}

std::uint64_t CTiffWriter::Seek(thandle_t handle, std::uint64_t offset, int whence) {
  CTarget& target = *static_cast<CTarget*>(handle);
  const std::uint64_t base = whence == SEEK_CUR ? target.m_uAt : whence == SEEK_END ? target.m_Bytes.size() : 0;
  return target.m_uAt = base + offset;
}

int CTiffWriter::Close(thandle_t /*handle*/) { return 0; }

std::uint64_t CTiffWriter::Size(thandle_t handle) { return static_cast<CTarget*>(handle)->m_Bytes.size(); }

CTiffWriter::CTiffWriter(int width, int height) : m_afRow(static_cast<std::size_t>(width)) {
  const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                 &TIFFOpenOptionsFree);
  if (options == nullptr) return;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), SayNothing, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), SayNothing, nullptr);
  // Little endian on every machine.
  constexpr const char* kMode = "wl";
  m_pTiff.reset(
      TIFFClientOpenExt("", kMode, &m_Target, Read, Write, Seek, Close, Size, nullptr, nullptr, options.get()));
  if (m_pTiff != nullptr) Describe(width, height);
}

void CTiffWriter::Describe(int width, int height) const {
  TIFF* tiff = m_pTiff.get();
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(height));
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 32);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
  TIFFSetField(tiff, TIFFTAG_SOFTWARE, "relievo");
}

void CTiffWriter::Row(const float* numbers) {
  if (m_pTiff == nullptr || m_Target.m_bFailed) return;
  // The library takes no constant numbers, as it swaps their bytes in place on a machine of the other kind.
  std::copy_n(numbers, m_afRow.size(), m_afRow.begin());
  m_Target.m_bFailed = TIFFWriteScanline(m_pTiff.get(), m_afRow.data(), m_uRow++, 0) != 1;
}

std::string CTiffWriter::Take() {
  if (m_pTiff == nullptr) return {};
  // Only then the directory is written.
  m_Target.m_bFailed = TIFFWriteDirectory(m_pTiff.get()) != 1 || m_Target.m_bFailed;
  m_pTiff.reset();
  if (m_Target.m_bFailed) m_Target.m_Bytes = {};
  return std::move(m_Target.m_Bytes);
}
