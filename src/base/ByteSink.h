#pragma once

#include <functional>
#include <string_view>

/// Takes bytes one piece after the other, so that the whole need never be in memory.
using ByteSink = std::function<void(std::string_view)>;
