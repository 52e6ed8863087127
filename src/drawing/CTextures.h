#pragma once

#include <array>
#include <functional>
#include <utility>

#include "drawing/CTextureCopies.h"
#include "drawing/Minification.h"
#include "lighting/CTextureImages.h"

/// The largest side of a texture that the driver of the current context takes, in pixels.
int LargestTexture();

/// The texture images on the graphics card. Both views use the same: their contexts share textures.
///
/// Where an image is drawn much smaller than it is, an area-filtered copy of it takes its place: what the drawing would
/// pick out of many pixels changes with the slightest movement. An image that is too large for the driver is always
/// drawn from such a copy.
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
  /// Makes an image the bound texture, sent before if it has changed since, or its copy reduced so often. Texture
  /// coordinates are the same for both. False, with the bound texture as it was, while there is no picture, or where
  /// there is no memory for the copy of an image that is too large for the driver.
  bool Bind(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction = {});
  /// Takes this for the limit of the driver, asked at each use.
  void SetLargestTexture(std::function<int()> largest) { m_LargestTexture = std::move(largest); }

 private:
  void Upload(const CTextureImages& images, CTextureImages::Which which);
  void BindWhole(const CTextureImages& images, CTextureImages::Which which);
  bool BindCopy(const CTextureImages& images, CTextureImages::Which which, const CReduction& reduction);
  CReduction ForcedReduction(const CTextureImages& images) const;
  void ForgetLostTextures();

  std::array<unsigned, 3> m_auNames{};
  std::array<unsigned, 3> m_auSent{};     ///< revisions of the images on the card
  std::array<unsigned, 3> m_auPicture{};  ///< revisions that came with the picture
  CTextureCopies m_Copies;
  std::function<int()> m_LargestTexture = LargestTexture;
};
