#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "io/ModelFormats.h"

/// The place in ModelFormats() of the format that an option of the program without a window writes.
inline std::size_t FormatOf(std::string_view option) {
  const auto isIt = [option](const CModelFormat& format) { return format.m_pOption == option; };
  return static_cast<std::size_t>(std::ranges::find_if(ModelFormats(), isIt) - ModelFormats().begin());
}

inline const CModelFormat& VrmlFormat() { return ModelFormats()[FormatOf("--vrml")]; }
inline const CModelFormat& HeightFieldFormat() { return ModelFormats()[FormatOf("--height-field")]; }
