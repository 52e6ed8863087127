#include "drawing/CTextures.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include "base/Console.h"

namespace {

constexpr std::array kAll{CTextureImages::kPhotograph, CTextureImages::kKd, CTextureImages::kIllumination};

// Errors made elsewhere before this must not be laid at the upload's door.
void ForgetErrors() {
  constexpr int kFlagsAtMost = 16;
  for (int k = 0; k < kFlagsAtMost && glGetError() != GL_NO_ERROR; ++k) {
  }
}

}  // namespace

void CTextures::Load(const CTextureImages& images) {
  glDeleteTextures(static_cast<GLsizei>(m_auNames.size()), m_auNames.data());
  glGenTextures(static_cast<GLsizei>(m_auNames.size()), m_auNames.data());
  ForgetErrors();
  for (const CTextureImages::Which which : kAll) {
    m_auPicture[which] = images.Revision(which);
    Upload(images, which);
    if (which != CTextureImages::kPhotograph) continue;
    Console() << "CImageView::LoadImage\tglTexImage2D\t\t=> GL_ERROR : "
              << reinterpret_cast<const char*>(gluErrorString(glGetError())) << '\n';
  }
  glEnable(GL_TEXTURE_2D);
}

bool CTextures::Bind(const CTextureImages& images, CTextureImages::Which which) {
  if (!images.HasPicture()) return false;
  if (glIsTexture(m_auNames[which]) == GL_FALSE) {
    glGenTextures(1, &m_auNames[which]);
    Upload(images, which);
  } else if (m_auSent[which] != images.Revision(which)) {
    Upload(images, which);
  }
  glBindTexture(GL_TEXTURE_2D, m_auNames[which]);
  return true;
}

void CTextures::Upload(const CTextureImages& images, CTextureImages::Which which) {
  constexpr GLint kComponents = 3;
  m_auSent[which] = images.Revision(which);
  glBindTexture(GL_TEXTURE_2D, m_auNames[which]);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, kComponents, images.TextureWidth(), images.TextureHeight(), 0, GL_RGB,
               GL_UNSIGNED_BYTE, images.Image(which).data());
  const bool computed = m_auSent[which] != m_auPicture[which];
  const GLint wrap = computed ? GL_CLAMP : GL_REPEAT;
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}
