#pragma once

#include <array>

#include "lighting/CTextureImages.h"

/// The texture images on the graphics card. Both views use the same: their contexts share textures.
///
/// Everything here needs a current context. The card loses the textures when the last context that shares them goes;
/// they are then sent again at the next use.
class CTextures {
 public:
  /// The names end with the contexts that share them, not with the object, which may go after the last context.
  CTextures() = default;
  ~CTextures() = default;
  CTextures(const CTextures&) = delete;
  CTextures& operator=(const CTextures&) = delete;

  /// Sends a new picture: replaces the three textures, logs what OpenGL says of the first, enables texturing.
  void Load(const CTextureImages& images);
  /// Makes an image the bound texture, sent before if it has changed since. False, with the bound texture as it was,
  /// while there is no picture.
  bool Bind(const CTextureImages& images, CTextureImages::Which which);

 private:
  void Upload(const CTextureImages& images, CTextureImages::Which which);

  std::array<unsigned, 3> m_auNames{};
  std::array<unsigned, 3> m_auSent{};     ///< revisions of the images on the card
  std::array<unsigned, 3> m_auPicture{};  ///< revisions that came with the picture
};
