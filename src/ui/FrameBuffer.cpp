#include "ui/FrameBuffer.h"

#include <array>
#include <cstdint>
#include <vector>

#include <GL/gl.h>

#include "io/Bmp.h"

bool Global::SaveFrameBuffer(const std::string& filename) {
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  const auto [x, y, width, height] = viewport;
  std::vector<std::uint8_t> pixels(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  glReadPixels(x, y, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
  return SaveBMP(filename, pixels, width, height, 1);
}
