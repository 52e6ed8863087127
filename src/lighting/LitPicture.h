#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "base/CPicture.h"
#include "base/Vector3.h"
#include "lighting/CLight.h"
#include "quadtree/Interpolation.h"

/// What the lights make of a photograph.
enum class LitPicture {
  Albedo,  ///< the removed lights are taken out of it
  Relit,   ///< and it is put into the added ones
};

/// What such a picture is made of. All that is named must outlive the making.
struct CLitScene {
  const CPicture& m_Photograph;
  const CLightSet& m_Removed;
  const CLightSet& m_Added;
  const CInterpolation& m_Surface;  ///< with its normals as they are
  /// Unit normals for the texels that have none there, beside tears; their numbers are row * width + column and rise.
  /// Without it they are black.
  std::function<std::vector<Vector3>(std::span<const std::size_t> texels)> m_NormalsOf;
  Tone m_Tone = Tone::Clipped;  ///< of what is relit
};

/// Rows `first` to `first + count` - 1 of such a picture, row 0 at the bottom, for those who want to see some of it.
/// Texels without a normal are black.
CPicture LitRowsOf(LitPicture which, const CLitScene& scene, int first, int count);

/// One of these pictures, computed afresh, with a place of its own on the surface for each texel, in tears, too. An
/// albedo above 1 is white instead of wrapping around; all else is as CAlbedoMap has it. Takes no memory beyond the
/// result and what texels without normals need; linear in the number of texels, with a descent of the tree for each
/// leaf that a row crosses. `goes` is told the share that is done, row by row; its false ends the work with an empty
/// picture. Throws std::bad_alloc.
CPicture LitPictureOf(LitPicture which, const CLitScene& scene, const std::function<bool(double)>& goes = {});
