#pragma once

#include <string>

namespace Global {

/// Saves what the viewport of the current OpenGL context shows, as the read buffer has it, as a bitmap file. False,
/// with a console line, if that fails.
bool SaveFrameBuffer(const std::string& filename);

}  // namespace Global
