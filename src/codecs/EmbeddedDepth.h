#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "codecs/DepthMapFile.h"

/// A depth map that a photograph carries, as it is stored.
struct CEmbeddedDepth {
  std::string m_Bytes;     ///< of a JPEG or a PNG
  int m_iOrientation = 1;  ///< of the photograph (see Orientation.h), and so of the map
};

/// The depth map in the XMP data of a JPEG, extended segments included: the property Data, in Base64, of a namespace
/// whose name ends with "/depthmap/". Nothing where there is none, or none of these kinds. Linear in the bytes.
std::optional<CEmbeddedDepth> EmbeddedDepthOf(std::string_view jpeg);

/// Its values as they are, upright like the photograph (see ReadDepthMap).
CReadDepthMap ReadEmbeddedDepth(const CEmbeddedDepth& embedded);
