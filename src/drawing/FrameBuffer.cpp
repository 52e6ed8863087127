#include "drawing/FrameBuffer.h"

#include <array>

#include <GL/gl.h>

#include "io/Bmp.h"

CPicture Global::ReadFrameBuffer() {
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  const auto [x, y, width, height] = viewport;
  CPicture frame{width, height, {}};
  frame.m_aPixels.resize(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  glReadPixels(x, y, width, height, GL_RGB, GL_UNSIGNED_BYTE, frame.m_aPixels.data());
  return frame;
}

bool Global::SaveFrameBuffer(const std::string& filename) {
  const CPicture frame = ReadFrameBuffer();
  return SaveBMP(filename, frame.m_aPixels, frame.m_iWidth, frame.m_iHeight, 1);
}
