#include "codecs/CTiffFile.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr tmsize_t kMostAtOnce = tmsize_t{1} << 30;
constexpr tmsize_t kMostMadeUp = tmsize_t{1} << 26;
// White, and no valid code of the methods of compression, which end there.
constexpr int kMadeUp = 0xFF;

int SayNothing(TIFF* /*tiff*/, void* /*user*/, const char* /*module*/, const char* /*format*/, va_list /*values*/) {
  return 1;
}

}  // namespace

tmsize_t CTiffFile::Read(thandle_t source, void* to, tmsize_t length) {
  CSource& from = *static_cast<CSource*>(source);
  const std::size_t wanted = static_cast<std::size_t>(std::max<tmsize_t>(length, 0));
  const std::size_t at = std::min(from.m_uAt, std::uint64_t{from.m_Bytes.size()});
  const std::size_t there = std::min(wanted, from.m_Bytes.size() - at);
  if (there != 0) std::memcpy(to, &from.m_Bytes[at], there);
  from.m_uAt += there;
  if (there == wanted) return length;
  from.m_bEnded = true;
  if (!from.m_bPads || there == 0 || length > kMostMadeUp) return static_cast<tmsize_t>(there);
  std::memset(static_cast<char*>(to) + there, kMadeUp, wanted - there);
  from.m_uAt += wanted - there;
  return length;
}

tmsize_t CTiffFile::Write(thandle_t /*source*/, void* /*from*/, tmsize_t /*length*/) { return 0; }

std::uint64_t CTiffFile::Seek(thandle_t source, std::uint64_t offset, int whence) {
  CSource& from = *static_cast<CSource*>(source);
  const std::uint64_t base = whence == SEEK_CUR ? from.m_uAt : whence == SEEK_END ? from.m_Bytes.size() : 0;
  return from.m_uAt = base + offset;
}

int CTiffFile::Close(thandle_t /*source*/) { return 0; }

std::uint64_t CTiffFile::Size(thandle_t source) { return static_cast<CSource*>(source)->m_Bytes.size(); }

CTiffFile::CTiffFile(std::string_view bytes) : m_Source{bytes} {
  const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                 &TIFFOpenOptionsFree);
  if (options == nullptr) return;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), SayNothing, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), SayNothing, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMostAtOnce);
  m_pTiff.reset(
      TIFFClientOpenExt("", "rm", &m_Source, Read, Write, Seek, Close, Size, nullptr, nullptr, options.get()));
  if (m_pTiff == nullptr) return;
  m_Source.m_bEnded = false;
  m_Source.m_bPads = true;
}
