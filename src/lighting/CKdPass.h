#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/Vector3.h"
#include "lighting/CAlbedoMap.h"
#include "lighting/CLight.h"
#include "quadtree/Interpolation.h"

class CTexelMap;
class CTextureImages;

/// Albedo, Kd image and new illumination computed in pieces, so that the mouse need not wait for all of a large
/// picture: first the normals of the texels where these are of an earlier subdivision, then the images. When it is
/// complete all is, to the last bit, as if it had been computed at once.
///
/// Each piece looks at what the others went by. Other lights, another subdivision or other normals begin the work
/// afresh as far as it depends on them. The normals of points and cells are those at the beginning, so that a solver
/// that goes on meanwhile leaves no seams.
class CKdPass {
 public:
  /// What the images are made with.
  struct CLights {
    CLightSet m_Removed;
    CLightSet m_Added;
    Tone m_Tone = Tone::Clipped;
    bool operator==(const CLights&) const = default;
  };
  /// What it is done to; the memory of texels and albedo must have been reserved.
  struct CParts {
    const CInterpolation& m_Surface;
    CTexelMap& m_Texels;
    CAlbedoMap& m_Albedo;
    CTextureImages& m_Images;
  };

  /// Goes on for as long as `goes`, asked before every few rows, is true; true when all is complete, and the images
  /// are marked as changed. Throws std::bad_alloc, and then is no longer under way.
  bool Advance(const CLights& lights, const CParts& parts, const std::function<bool()>& goes);
  /// Whether there have been pieces, but not the last one.
  bool IsUnderWay() const { return m_bUnderWay; }
  /// Those of the last piece.
  const CLights& Lights() const { return m_Lights; }
  /// Forgets the pieces there have been.
  void Drop();

 private:
  /// The normals of the texels in the making.
  struct CNormals {
    std::uint64_t m_uTree = 0;
    unsigned m_uTexels = 0;
    std::vector<Vector3> m_aPoints;
    std::vector<Vector3> m_aCells;
    int m_iNext = 0;  ///< row
  };
  bool MakeNormals(const CParts& parts, const std::function<bool()>& goes);
  bool MakeImages(const CParts& parts, const std::function<bool()>& goes);

  bool m_bUnderWay = false;
  std::optional<CNormals> m_Normals;
  CLights m_Lights;
  unsigned m_uTexels = 0;  ///< revision of the normals that the rows of the images are of
  int m_iNext = 0;         ///< row of the images
};
