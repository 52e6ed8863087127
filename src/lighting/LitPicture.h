#pragma once

#include <functional>

#include "base/CPicture.h"
#include "quadtree/Interpolation.h"

struct CLightSet;

/// What the lights make of a photograph.
enum class LitPicture {
  Albedo,  ///< the removed lights are taken out of it
  Relit,   ///< and it is put into the added ones
};

/// One of these pictures, computed afresh from the normals of the surface as they are, with a place of its own for each
/// texel, in tears, too. An albedo above 1 is white instead of wrapping around; all else is as CAlbedoMap has it. Takes
/// no memory beyond the result; linear in the number of texels, with a descent of the tree for each leaf that a row
/// crosses. `goes` is told the share that is done, row by row; its false ends the work with an empty picture. Throws
/// std::bad_alloc.
CPicture LitPictureOf(LitPicture which, const CPicture& photograph, const CLightSet& removed, const CLightSet& added,
                      const CInterpolation& surface, const std::function<bool(double)>& goes = {});
