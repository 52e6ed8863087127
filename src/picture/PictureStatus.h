#pragma once

/// What relievo-picture ends with.
namespace PictureStatus {
inline constexpr int kDone = 0;
inline constexpr int kUsage = 1;
inline constexpr int kInput = 2;    ///< an input is missing or invalid
inline constexpr int kDrawing = 3;  ///< there is no OpenGL that can draw the picture
inline constexpr int kOutput = 4;   ///< the picture could not be written
inline constexpr int kDamaged = 5;  ///< the model was read in part and the picture shows that
}  // namespace PictureStatus
