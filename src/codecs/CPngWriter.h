#pragma once

#include <span>
#include <string>

#include <png.h>

/// A remark in a PNG.
struct CPngText {
  std::string m_Key;   ///< at most 79 letters of ASCII
  std::string m_Text;  ///< the same letters, of any number
};

/// What the pixels of a PNG are.
enum class PngPixels {
  Heights,     ///< one number of 16 bits
  Colours,     ///< red, green and blue of 8 bits, sRGB
  Directions,  ///< three numbers of 8 bits that are no colours
};

/// Makes the bytes of a PNG, row by row.
class CPngWriter {
 public:
  /// Both sides are at least 1.
  CPngWriter(int width, int height, PngPixels pixels, std::span<const CPngText> texts = {});
  ~CPngWriter() { png_destroy_write_struct(&m_pPng, &m_pInfo); }
  CPngWriter(const CPngWriter&) = delete;
  CPngWriter& operator=(const CPngWriter&) = delete;

  /// Adds the next row from the top: std::uint16_t or three bytes for each pixel.
  void Row(const void* pixels);
  /// The bytes, once all rows are there; empty where there was not enough memory for them.
  std::string Take();

 private:
  template <typename Call>
  void Try(Call call);
  void AddText(CPngText text);

  std::string m_Bytes;
  png_structp m_pPng;
  png_infop m_pInfo;
  bool m_bFailed;
};
