#pragma once

#include <cstdint>
#include <optional>

#include "lighting/CTextureImages.h"

/// Bits of the image view's display-flag word: what is drawn over the picture.
namespace ImageFlag {
inline constexpr std::uint32_t kGrid = 2;
inline constexpr std::uint32_t kPointConstraints = 4;
inline constexpr std::uint32_t kCurves = 8;
inline constexpr std::uint32_t kImage = 64;
inline constexpr std::uint32_t kDiscontinuityGap = 128;    ///< triangles in a position discontinuity are gaps
inline constexpr std::uint32_t kDiscontinuityEdges = 256;  ///< edges inside a position discontinuity
inline constexpr std::uint32_t kFreezeMap = 32768;
inline constexpr std::uint32_t kDiscontinuityTexels = 0x80000;
inline constexpr std::uint32_t kProportions = 0x100000;  ///< x and y have one scale
inline constexpr std::uint32_t kAtStart = kGrid | kPointConstraints | kCurves;
}  // namespace ImageFlag

/// Bits of the image view's debug-flag word: the tool that looks at the grid under the mouse.
namespace DebugFlag {
inline constexpr std::uint32_t kSelectCells = 1;  ///< manual subdivision
inline constexpr std::uint32_t kHorizontalCoefs = 2;
inline constexpr std::uint32_t kVerticalCoefs = 4;
inline constexpr std::uint32_t kTorsionCells = 8;
inline constexpr std::uint32_t kInterpolation = 16;
inline constexpr std::uint32_t kPointArea = 32;
inline constexpr std::uint32_t kHLevel = 64;
inline constexpr std::uint32_t kFreeze = 128;
inline constexpr std::uint32_t kNormalTest = 0x100;
/// The tools that show a number of the point under the mouse.
inline constexpr std::uint32_t kReadOuts = kHorizontalCoefs | kVerticalCoefs | kTorsionCells | kPointArea | kHLevel;
}  // namespace DebugFlag

/// Bits of the model view's display-flag word. Besides these the word holds exactly one bit of `WaveletMode`.
namespace ModelFlag {
inline constexpr std::uint32_t kGrid = 2;
inline constexpr std::uint32_t kPointConstraints = 4;
inline constexpr std::uint32_t kCurves = 8;
inline constexpr std::uint32_t kTexturedModel = 64;
inline constexpr std::uint32_t kClosedTears = 128;  ///< both sides of a tear go on to the curve
inline constexpr std::uint32_t kBehindTears = 256;  ///< the same, and the lower one runs on beneath the higher one
inline constexpr std::uint32_t kCellNormals = 0x10000;
inline constexpr std::uint32_t kPointNormals = 0x20000;
inline constexpr std::uint32_t kTexelNormals = 0x40000;
inline constexpr std::uint32_t kProportions = 0x100000;  ///< x and y have one scale
}  // namespace ModelFlag

/// The numbers by which the model view knows the image that it lays over the surface.
namespace DrawnTexture {
inline constexpr int kKd = 1;
inline constexpr int kIllumination = 2;
inline constexpr int kPhotograph = 3;

/// The number of an image in the list above.
constexpr int NumberOf(CTextureImages::Which image) {
  switch (image) {
    case CTextureImages::kKd:
      return kKd;
    case CTextureImages::kIllumination:
      return kIllumination;
    default:
      return kPhotograph;
  }
}

/// Nothing for another number.
constexpr std::optional<CTextureImages::Which> ImageOf(int number) {
  switch (number) {
    case kKd:
      return CTextureImages::kKd;
    case kIllumination:
      return CTextureImages::kIllumination;
    case kPhotograph:
      return CTextureImages::kPhotograph;
    default:
      return std::nullopt;
  }
}
}  // namespace DrawnTexture

/// What the mouse edits in the image view. Before a mode is chosen it is `Unset`.
enum class EditingMode { Unset = 0, Position = 101, Normal = 102, Curve = 103 };
