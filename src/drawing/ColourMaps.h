#pragma once

#include <array>
#include <cstdint>

/// How values become colours.
enum class ColourMap {
  Perceptual,    ///< dark blue over green to yellow, lighter at an even pace, also for those who see few colours
  BlueWhiteRed,  ///< blue below the middle, white in it, red above
};

/// The colour, red, green and blue, of a value from 0 to 1; those beyond count as the nearest end, and what is not a
/// number as 0.
std::array<std::uint8_t, 3> ColourAt(ColourMap map, double value);
