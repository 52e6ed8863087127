#pragma once

#include <string>
#include <string_view>

#include "base/CPicture.h"

/// Whether the bytes begin as those of a PNG do.
bool IsPng(std::string_view bytes);

/// A picture as the bytes of a PNG, which lose nothing of it. Empty for an empty picture and where they cannot be had.
std::string PngOf(const CPicture& picture);
