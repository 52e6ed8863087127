#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "codecs/PictureFormats.h"

/// The contents of a file, or why there are none.
struct CFileBytes {
  std::shared_ptr<const std::string> m_pBytes;  ///< null where there is trouble
  PictureTrouble m_Trouble = PictureTrouble::None;
  std::string m_Reason;  ///< of the trouble, in the words of the system or of this program
};

/// Reads a regular file up to `most` bytes of it. A folder, a pipe or a device is not read, and never waited for.
CFileBytes ReadFileBytes(const std::string& filename, std::size_t most);
