#pragma once

#include <cstdint>

/// How the hierarchical basis predicts a point from its parents. The values are the bits of the model view's option
/// word.
enum class WaveletMode : std::uint32_t {
  None = 0x200,    ///< no prediction: the unknowns are the heights themselves
  Simple = 0x400,  ///< the mean of all parents
  New = 0x800,     ///< the mean of the parents that no position discontinuity cuts off
};
