#include "codecs/CPngWriter.h"

#include <bit>
#include <csetjmp>
#include <cstddef>
#include <new>
#include <utility>

namespace {

[[noreturn]] void GiveUp(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }

void SayNothing(png_structp /*png*/, png_const_charp /*message*/) {}

// No exception may pass through the library.
bool IsAppended(std::string& bytes, const png_byte* more, std::size_t length) {
  try {
    bytes.append(reinterpret_cast<const char*>(more), length);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void Append(png_structp png, png_bytep bytes, std::size_t length) {
  if (!IsAppended(*static_cast<std::string*>(png_get_io_ptr(png)), bytes, length)) png_error(png, "");
}

void Flush(png_structp /*png*/) {}

}  // namespace

// Each call of the library goes through here, so that its jumps skip nothing that has a destructor.
template <typename Call>
void CPngWriter::Try(Call call) {
  if (m_bFailed) return;
  if (setjmp(png_jmpbuf(m_pPng)) != 0) {
    m_bFailed = true;
    return;
  }
  call();
}

CPngWriter::CPngWriter(int width, int height, PngPixels pixels, std::span<const CPngText> texts)
    : m_pPng(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, GiveUp, SayNothing)),
      m_pInfo(m_pPng == nullptr ? nullptr : png_create_info_struct(m_pPng)),
      m_bFailed(m_pInfo == nullptr) {
  Try([&] {
    png_set_write_fn(m_pPng, &m_Bytes, Append, Flush);
    const bool heights = pixels == PngPixels::Heights;
    png_set_IHDR(m_pPng, m_pInfo, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), heights ? 16 : 8,
                 heights ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (pixels == PngPixels::Colours) png_set_sRGB(m_pPng, m_pInfo, PNG_sRGB_INTENT_PERCEPTUAL);
  });
  for (const CPngText& text : texts) AddText(text);
  Try([this, pixels] {
    png_write_info(m_pPng, m_pInfo);
    if (std::endian::native == std::endian::little && pixels == PngPixels::Heights) png_set_swap(m_pPng);
  });
}

// The library takes no constant letters, and copies them.
void CPngWriter::AddText(CPngText text) {
  Try([&] {
    png_text entry{};
    entry.compression = PNG_TEXT_COMPRESSION_NONE;
    entry.key = text.m_Key.data();
    entry.text = text.m_Text.data();
    entry.text_length = text.m_Text.size();
    png_set_text(m_pPng, m_pInfo, &entry, 1);
  });
}

void CPngWriter::Row(const void* pixels) {
  Try([&] { png_write_row(m_pPng, static_cast<png_const_bytep>(pixels)); });
}

std::string CPngWriter::Take() {
  Try([this] { png_write_end(m_pPng, nullptr); });
  if (m_bFailed) m_Bytes = {};
  return std::move(m_Bytes);
}
