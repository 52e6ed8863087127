#include "drawing/CTextureCopies.h"

#include <algorithm>

#include <GL/gl.h>

#include "base/AreaFilter.h"

namespace {

// Enough for both views to turn and zoom to and fro. Each is at most half as large as its image.
constexpr std::size_t kMostCopies = 8;

// Where smaller images are shown instead there is less to reduce.
CPicture Reduced(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction) {
  const CTextureImages* preview = images.PreviewOf(which);
  if (preview == nullptr) return AreaFiltered(images.Pixels(which), 1 << reduction.m_iX, 1 << reduction.m_iY);
  return AreaFiltered(preview->Pixels(which), 1 << (reduction.m_iX - images.PreviewHalvings().m_iX),
                      1 << (reduction.m_iY - images.PreviewHalvings().m_iY));
}

// Pixels [x0, x1) by [y0, y1) of the copy, to column `x` and row `y` of the bound texture.
void SendPart(const CPicture& copy, int x0, int x1, int y0, int y1, int x, int y) {
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, x0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, y0);
  glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, x1 - x0, y1 - y0, GL_RGB, GL_UNSIGNED_BYTE, copy.m_aPixels.data());
}

// To the bound texture of `width` x `height`. Where the picture ends before the texture its last column and row come
// once more: the filter of the drawing reads half a pixel beyond the border.
void Send(const CPicture& copy, int width, int height) {
  constexpr GLint kComponents = 3;
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, copy.m_iWidth);
  glTexImage2D(GL_TEXTURE_2D, 0, kComponents, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
  const int right = copy.m_iWidth;
  const int top = copy.m_iHeight;
  SendPart(copy, 0, right, 0, top, 0, 0);
  if (right < width) SendPart(copy, right - 1, right, 0, top, right, 0);
  if (top < height) SendPart(copy, 0, right, top - 1, top, 0, top);
  if (right < width && top < height) SendPart(copy, right - 1, right, top - 1, top, right, top);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
}

void SetParameters() {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

}  // namespace

void CTextureCopies::Bind(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction) {
  auto copy =
      std::ranges::find_if(m_aCopies, [&](const CCopy& c) { return c.m_Which == which && c.m_Reduction == reduction; });
  const bool known = copy != m_aCopies.end();
  if (known && copy->m_uSent == images.Revision(which)) {
    glBindTexture(GL_TEXTURE_2D, copy->m_uName);
  } else {
    const CPicture reduced = Reduced(images, which, reduction);
    if (!known) copy = Add(which, reduction);
    copy->m_uSent = images.Revision(which);
    glBindTexture(GL_TEXTURE_2D, copy->m_uName);
    Send(reduced, images.TextureWidth() >> reduction.m_iX, images.TextureHeight() >> reduction.m_iY);
    SetParameters();
  }
  std::rotate(m_aCopies.begin(), copy, copy + 1);
}

std::vector<CTextureCopies::CCopy>::iterator CTextureCopies::Add(CTextureImages::Which which,
                                                                 const CReduction& reduction) {
  m_aCopies.reserve(kMostCopies);
  if (m_aCopies.size() == kMostCopies) {
    glDeleteTextures(1, &m_aCopies.back().m_uName);
    m_aCopies.pop_back();
  }
  CCopy copy{which, reduction, 0, 0};
  glGenTextures(1, &copy.m_uName);
  m_aCopies.push_back(copy);
  return m_aCopies.end() - 1;
}

void CTextureCopies::Clear() {
  for (const CCopy& copy : m_aCopies) glDeleteTextures(1, &copy.m_uName);
  m_aCopies.clear();
}
