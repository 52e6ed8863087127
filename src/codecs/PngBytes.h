#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/CPicture.h"

/// Whether the bytes begin as those of a PNG do.
bool IsPng(std::string_view bytes);

/// A picture as the bytes of a PNG, which lose nothing of it. `goes` is told the share that is done, row by row. Empty
/// for an empty picture, where its answer is false, and where there is not enough memory.
std::string PngOf(const CPicture& picture, const std::function<bool(double)>& goes = {});
