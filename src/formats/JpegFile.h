#pragma once

#include <string>

#include "base/CPicture.h"

/// A picture as the bytes of a JPEG. Empty where it is empty or too large for the format. Throws std::bad_alloc.
std::string JpegOf(const CPicture& picture);

/// Writes a picture as a JPEG file. The file of that name keeps its old contents until the new ones are complete. False
/// where it cannot be written or the picture is empty or too large for the format.
bool SaveJpeg(const std::string& filename, const CPicture& picture);
