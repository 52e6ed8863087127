#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The pieces of metadata in a JPEG.
struct CJpegMetadata {
  std::string_view m_Exif;              ///< of the first block; empty without
  std::vector<std::string> m_aPackets;  ///< of XMP: the main one, if there is one, then extended ones that are whole
};

/// Finds them in the segments before the picture's data. Views are into the bytes. What is damaged is left out; an
/// extended packet longer than the file is damaged. Linear in the bytes.
CJpegMetadata MetadataOf(std::string_view jpeg);
