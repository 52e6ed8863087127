#pragma once

#include <string>

#include "base/CPicture.h"

/// Writes a picture as a JPEG file. The file of that name keeps its old contents until the new ones are complete. False
/// where it cannot be written or the picture is empty or too large for the format.
bool SaveJpeg(const std::string& filename, const CPicture& picture);
