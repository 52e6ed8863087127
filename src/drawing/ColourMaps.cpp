#include "drawing/ColourMaps.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace {

using Colour = std::array<std::uint8_t, 3>;

// At even steps; in between they are mixed. The lightness of the first grows evenly from step to step.
constexpr std::array<Colour, 11> kPerceptual{{{68, 1, 84},
                                              {72, 36, 117},
                                              {65, 68, 135},
                                              {53, 95, 141},
                                              {42, 120, 142},
                                              {33, 145, 140},
                                              {34, 168, 132},
                                              {66, 190, 113},
                                              {122, 209, 81},
                                              {189, 223, 38},
                                              {253, 231, 37}}};
constexpr std::array<Colour, 5> kBlueWhiteRed{
    {{5, 48, 130}, {75, 140, 210}, {255, 255, 255}, {225, 100, 80}, {130, 0, 25}}};

}  // namespace

std::array<std::uint8_t, 3> ColourAt(ColourMap map, double value) {
  const std::span<const Colour> table =
      map == ColourMap::Perceptual ? std::span<const Colour>(kPerceptual) : std::span<const Colour>(kBlueWhiteRed);
  const auto steps = static_cast<double>(table.size() - 1);
  const double at = std::isnan(value) ? 0.0 : std::clamp(value, 0.0, 1.0) * steps;
  const std::size_t below = std::min(static_cast<std::size_t>(at), table.size() - 2);
  const double share = at - static_cast<double>(below);
  Colour colour{};
  for (std::size_t k = 0; k < colour.size(); ++k)
    colour[k] = static_cast<std::uint8_t>(std::lround((1 - share) * table[below][k] + share * table[below + 1][k]));
  return colour;
}
