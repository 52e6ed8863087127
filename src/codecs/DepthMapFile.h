#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "reference/CDepthMap.h"

/// A depth map that has been read, or why there is none.
struct CReadDepthMap {
  std::shared_ptr<const CDepthMap> m_pMap;  ///< null where there is trouble
  std::string m_Reason;                     ///< of the trouble, as the end of a sentence; empty without
  std::string m_Notice;                     ///< see CReadPicture

  /// Whether there is a map.
  explicit operator bool() const { return m_pMap != nullptr; }
};

/// Reads a depth map: PFM, or a picture of one channel (see ReadChannel). One without any value, or with fewer than two
/// pixels on a side, is none. Does not throw; takes no more memory than the file's bytes and values need.
CReadDepthMap ReadDepthMap(const std::string& filename);
/// The same for the contents of a file, which console lines call `name`.
CReadDepthMap ReadDepthMap(std::string_view bytes, const std::string& name);

/// What the user is to be told where the proportions of a map differ by more than 2 % from those of what it is
/// stretched over, as the end of a sentence whose subject is the map; empty where they do not.
std::string ProportionsNotice(const CDepthMap& map, double width, double height);
