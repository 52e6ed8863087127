#pragma once

#include <string>

namespace Global {

/// Saves what the viewport of the current OpenGL context shows, as the read buffer has it, as a bitmap file. A failure
/// is a console line.
void SaveFrameBuffer(const std::string& filename);

}  // namespace Global
