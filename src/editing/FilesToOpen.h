#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "editing/CWorkFiles.h"

/// The absolute paths in what a desktop hands over when files are dropped: a line each, as the URI of a file or as the
/// path itself. Comments and all other lines are left out.
std::vector<std::string> PathsIn(std::string_view dropped);

/// What is to be opened of files, whether or not they exist: the last model and the last picture. What a file is
/// is judged by its first bytes, and by its name where they say nothing. Names may be relative.
CWorkFiles FilesToOpen(std::span<const std::string> names);
