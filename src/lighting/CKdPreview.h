#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/Vector3.h"
#include "lighting/CAlbedoMap.h"
#include "lighting/CTextureImages.h"
#include "quadtree/Interpolation.h"

class CTexelMap;

/// What the lights make of a large picture, at once and on an area-filtered copy of it: an answer to a moved slider
/// until the picture itself has been computed. Each texel of the copy has the normal that the texel in the middle of
/// its block has, or will have. Copy and normals are kept for the next answer.
class CKdPreview {
 public:
  /// Pictures with more texels than the one have a preview, which has at most as many as the other. What a pass over
  /// fewer takes is over before the next movement of the hand, which would have it begin again.
  static constexpr double kLargePicture = 1 << 18;
  static constexpr double kMostTexels = 1 << 19;
  static bool IsWorthWhile(const CTextureImages& images);

  /// Has `images`, which must be large, show the computed images by smaller ones. A pass over the copy; over the
  /// picture, too, the first time, and over the surface whenever the normals are other ones. Throws std::bad_alloc.
  void Show(const CTexelMap& texels, const CInterpolation& surface, const CRelightingLights& lights,
            CTextureImages& images);
  /// Gives back what is kept.
  void Clear() { *this = CKdPreview(); }

 private:
  void TakePhotograph(const CTextureImages& images);
  void TakeNormals(const CTexelMap& texels, const CInterpolation& surface);

  CHalvings m_Halvings;
  std::shared_ptr<CTextureImages> m_pCopy;
  CAlbedoMap m_Albedo;
  std::vector<Vector3> m_aNormals;
  std::uint64_t m_uTree = 0;  ///< revisions that the normals are of
  unsigned m_uTexels = 0;
};
