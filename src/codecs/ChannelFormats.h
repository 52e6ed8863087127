#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "codecs/PictureFormats.h"

/// One number for each place, such as heights or depths, or why there are none.
struct CReadChannel {
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<float> m_afValues;  ///< as they are stored, row by row, bottom row first; empty where there is trouble
  int m_iBits = 0;                ///< of the stored numbers: 8 (0 to 255), 16 (0 to 65535), 32 (floats)
  PictureTrouble m_Trouble = PictureTrouble::None;
  std::string m_Reason;  ///< of the trouble, as the end of a sentence; empty without
  std::string m_Notice;  ///< see CReadPicture

  /// Whether there are numbers.
  explicit operator bool() const { return m_Trouble == PictureTrouble::None; }
};

/// Reads a picture of any kind that ReadPicture knows as one channel: grey, or colours of equal channels. It is turned
/// upright; neither profile nor opacity changes a number. Floats may be of any value, also not numbers. Does not throw.
CReadChannel ReadChannel(const std::string& filename);
/// The same for the contents of a file, which console lines call `name`.
CReadChannel ReadChannel(std::string_view bytes, const std::string& name);

/// What is wrong with a picture in colour where one channel is needed, as the end of a sentence.
inline constexpr const char* kColoursInsteadOfOne = "it holds colours; one channel is needed";
