#pragma once

#include <cstdint>

#include "drawing/DisplayFlags.h"

/// What "SHOW H LEVEL" has become by a press.
struct CLevelTool {
  std::uint32_t m_uDebugFlags;
  const char* m_pLabel;
  bool m_bButtonDown;
};

/// The three states of "SHOW H LEVEL": the level of the point under the mouse, its area, neither. `debugFlags` is the
/// image view's word before the press, `pressedOn` whether the press left the button down.
inline CLevelTool NextLevelTool(std::uint32_t debugFlags, bool pressedOn) {
  const std::uint32_t others = debugFlags & ~(DebugFlag::kHLevel | DebugFlag::kPointArea);
  if (pressedOn && (debugFlags & DebugFlag::kHLevel) != 0)
    return {others | DebugFlag::kPointArea, "SHOW\nPOINT\nAREA", true};
  if ((debugFlags & DebugFlag::kPointArea) != 0) return {debugFlags & ~DebugFlag::kPointArea, "", false};
  return {debugFlags | DebugFlag::kHLevel, "SHOW\nH LEVEL", false};
}

/// Which of the read-outs that share a place are on show for a debug-flag word.
struct CDebugReadOuts {
  bool m_bInfluence;    ///< "Influence of current point"
  bool m_bLevel;        ///< "H level" of a point, on top of its influence
  bool m_bPointNumber;  ///< in the place of the number of active points
  bool m_bPointCount;
  bool m_bInterpolation;  ///< over both of them
};

/// The level of a point takes precedence over its terms, the parts of an interpolation over the number of a point.
inline CDebugReadOuts ReadOutsOf(std::uint32_t debugFlags) {
  const bool interpolation = (debugFlags & DebugFlag::kInterpolation) != 0;
  const bool level = (debugFlags & DebugFlag::kHLevel) != 0;
  const bool influence = (debugFlags & DebugFlag::kReadOuts & ~DebugFlag::kHLevel) != 0;
  return {influence, level, level && !interpolation, !level && !interpolation, interpolation};
}
