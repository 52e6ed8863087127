#pragma once

#include "codecs/PictureFormats.h"
#include "projects/CProject.h"

/// The photograph with its bytes, for a project file. The bytes are those that it was loaded from, where they can be
/// had again and still show what is `shown`, or else those of a PNG of that.
CProjectPicture WithBytes(const CProjectPicture& picture, const CPicture& shown);

/// The photograph with the bytes that its project has of it, where it only names that: for work whose own file has
/// none. Without bytes where there is no such project.
CProjectPicture WithBytesOfItsProject(const CProjectPicture& picture);

/// The pixels of a photograph with bytes, or else those in its file.
CReadPicture PixelsOf(const CProjectPicture& picture);

/// The photograph on show as it was read, where that can be had again and still is what is `shown`; or else only those
/// pixels.
CReadPicture WithPixels(const CProjectPicture& picture, const CPicture& shown);
