#pragma once

#include <string>

#include "base/CPicture.h"

namespace Global {

/// What the viewport of the current OpenGL context shows, as the read buffer has it.
CPicture ReadFrameBuffer();
/// Saves that as a bitmap file. A failure is a console line and the answer false.
bool SaveFrameBuffer(const std::string& filename);

}  // namespace Global
