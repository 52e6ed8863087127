#pragma once

#include <vector>

#include "drawing/Minification.h"
#include "lighting/CTextureImages.h"

/// Area-filtered copies of the texture images on the graphics card, for pictures that are drawn much smaller than they
/// are. Needs a current context, as CTextures does, which owns them.
///
/// A copy has the sides of the image divided by powers of two and the picture in the same corner, so that the texture
/// coordinates of the image hold for it, too. Its border goes on beyond the picture.
class CTextureCopies {
 public:
  /// Makes a copy the bound texture; the first time, and after a change of the image, it is computed and sent. One pass
  /// over the picture then; else nothing is done but the binding. No side of the texture
  /// may be halved below one pixel, and where smaller images are shown instead the copy must be no larger than these.
  /// Throws std::bad_alloc, with the bound texture as it was.
  void Bind(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction);
  /// Gives all copies back.
  void Clear();
  /// Forgets all copies: they have gone with their contexts.
  void Forget() { m_aCopies.clear(); }
  /// The texture of one of them; 0 where there is none.
  unsigned AnyName() const { return m_aCopies.empty() ? 0 : m_aCopies.front().m_uName; }
  /// How many there are; those not used for longest are given back.
  std::size_t Count() const { return m_aCopies.size(); }

 private:
  struct CCopy {
    CTextureImages::Which m_Which{};
    CReduction m_Reduction;
    unsigned m_uName = 0;
    unsigned m_uSent = 0;  ///< revision of the image
  };
  std::vector<CCopy>::iterator Add(CTextureImages::Which which, const CReduction& reduction);

  std::vector<CCopy> m_aCopies;  ///< the one used last at the front
};
