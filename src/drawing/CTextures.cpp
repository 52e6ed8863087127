#include "drawing/CTextures.h"

#include <algorithm>
#include <new>

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

// How often a side is to be halved to be `most` at most.
int Halvings(int side, int most) {
  int halvings = 0;
  for (; side > most; side /= 2) ++halvings;
  return halvings;
}

}  // namespace

int LargestTexture() {
  GLint largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  return largest;
}

void CTextures::Load(const CTextureImages& images) {
  m_Copies.Clear();
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

bool CTextures::Bind(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction) {
  if (!images.HasPicture()) return false;
  ForgetLostTextures();
  const CReduction forced = ForcedReduction(images);
  const CReduction least = images.PreviewOf(which) != nullptr ? images.PreviewHalvings() : CReduction{};
  const CReduction wanted{
      std::min(std::max({reduction.m_iX, forced.m_iX, least.m_iX}), Halvings(images.TextureWidth(), 1)),
      std::min(std::max({reduction.m_iY, forced.m_iY, least.m_iY}), Halvings(images.TextureHeight(), 1))};
  if (wanted != CReduction{} && BindCopy(images, which, wanted)) return true;
  if (forced != CReduction{}) return false;
  BindWhole(images, which);
  return true;
}

CReduction CTextures::ForcedReduction(const CTextureImages& images) const {
  const int largest = std::max(m_LargestTexture(), 1);
  return {Halvings(images.TextureWidth(), largest), Halvings(images.TextureHeight(), largest)};
}

bool CTextures::BindCopy(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction) {
  try {
    m_Copies.Bind(images, which, reduction);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void CTextures::BindWhole(const CTextureImages& images, CTextureImages::Which which) {
  if (m_auNames[which] == 0) {
    glGenTextures(1, &m_auNames[which]);
    Upload(images, which);
  } else if (m_auSent[which] != images.Revision(which)) {
    Upload(images, which);
  }
  glBindTexture(GL_TEXTURE_2D, m_auNames[which]);
}

// Textures go all at once. Names that have gone must not be kept, as new contexts give them out again.
void CTextures::ForgetLostTextures() {
  const auto* const name = std::ranges::find_if(m_auNames, [](unsigned n) { return n != 0; });
  const unsigned known = name != m_auNames.end() ? *name : m_Copies.AnyName();
  if (known == 0 || glIsTexture(known) != GL_FALSE) return;
  m_auNames = {};
  m_Copies.Forget();
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
