#include "app/CEmbeddedMap.h"

#include <limits>
#include <new>

#include "codecs/FileBytes.h"
#include "codecs/JpegDecoder.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr std::size_t kFirstBytes = 16;

// Of another kind of file only the beginning is read.
std::optional<CEmbeddedDepth> FindIn(const CProjectPicture& picture) {
  if (picture.m_pBytes != nullptr) return EmbeddedDepthOf(*picture.m_pBytes);
  const CFileBytes beginning = ReadFileBytes(picture.m_File, kFirstBytes);
  if (beginning.m_pBytes == nullptr || !IsJpeg(*beginning.m_pBytes)) return {};
  const CFileBytes whole = ReadFileBytes(picture.m_File, std::numeric_limits<std::size_t>::max());
  return whole.m_pBytes == nullptr ? std::nullopt : EmbeddedDepthOf(*whole.m_pBytes);
}

}  // namespace

void CEmbeddedMap::PictureLoaded() {
  m_Found.reset();
  try {
    m_Found = FindIn(m_Window.Picture());
  } catch (const std::bad_alloc&) {
    // Then it is offered none.
  }
  m_Window.OfferDepth(IsThere());
}
