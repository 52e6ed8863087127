#pragma once

#include <string>

#include "scissors/CTopDownImage.h"

/// The picture of a 24-bit bitmap file whose pixels start at byte 54. Throws std::runtime_error where there is none.
CTopDownImage ReadPicture(const std::string& path);

/// A picture with edges at all scales, for want of a photograph.
CTopDownImage DrawPicture(int width, int height);

/// The picture enlarged to about `pixels` pixels, interpolated between its own.
CTopDownImage Enlarge(const CTopDownImage& image, double pixels);
