#pragma once

#include <string>

#include "codecs/PictureFormats.h"

/// A picture as the bytes of a JPEG. Empty where it is empty or too large for the format. Throws std::bad_alloc.
std::string JpegOf(const CPicture& picture);

/// Writes a picture as a JPEG file: the bytes that it was read from where they are such a file already and show the
/// same (CReadPicture::m_pJpeg), which loses nothing, or else encoded anew. The file of that name keeps its old
/// contents until the new ones are complete. False where it cannot be written or the picture is empty or too large for
/// the format.
bool SaveJpeg(const std::string& filename, const CReadPicture& read);
