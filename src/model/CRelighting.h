#pragma once

#include "base/Memory.h"
#include "lighting/CAlbedoMap.h"
#include "lighting/CLight.h"
#include "lighting/CTexelMap.h"
#include "lighting/CTextureImages.h"

class CSurface;

/// The picture on the surface, and its light: the lights taken out of it and put into it, where its texels lie, and the
/// images that come of both.
///
/// Every pass takes the surface as it is: the present subdivision, with the normals of its points and cells. Without a
/// picture the passes log a line and do nothing, but for those that say otherwise. All are linear in the number of
/// texels and allocate nothing but `SetPicture`.
class CRelighting {
 public:
  /// `surface` must outlive the relighting.
  explicit CRelighting(const CSurface& surface) : m_Surface(surface) {}

  /// Takes up a picture: its textures, and memory for what is kept per texel, each with the normal (0, 0, 1), no albedo
  /// and in no discontinuity. False, with nothing changed, for one that is empty or has not 3 * width * height bytes,
  /// and, with a console line, for one that `memory` bytes do not hold.
  bool SetPicture(const CPicture& picture, double memory = AvailableMemory());
  /// Whether there is a picture and the texels are those of it.
  bool HasTexels() const;

  /// Light `index` (0 to 3 and, ambient, 4) of a set (kRemovedLights, kAddedLights). Null, with a console line, for
  /// another type; null for another index.
  const CLight* GetLightSource(int index, int type) const;
  /// Nothing where there is no such light.
  void SetLight(int index, int type, const CLight& light);
  const CLightSet& RemovedLights() const { return m_RemovedLights; }
  const CLightSet& AddedLights() const { return m_AddedLights; }

  /// Takes both sets as they are; nothing is computed.
  void SetLights(const CLightSet& removed, const CLightSet& added) {
    m_RemovedLights = removed;
    m_AddedLights = added;
  }

  /// Gives every texel of the picture its column and row and the normal (0, 0, 1) again.
  void InitializeCoordsTexels();
  /// Brings the places of the texels up to the subdivision, for what draws them; nothing without a picture.
  void LocateTexels();
  /// Recomputes which texels lie in a discontinuity; nothing without a picture.
  void TestTexelsInDiscontinuity();
  /// The same without a word on the console.
  void RefreshMask();
  /// Place on the surface and normal of every texel in no discontinuity, from the normals of points and cells.
  void ComputeCoefsTexels();
  /// Normal of every texel from its place, which is found first if the subdivision has changed.
  void ComputeNormalsOnly();
  /// Albedo, Kd image and new illumination (see CAlbedoMap), from normals of the present subdivision.
  void GetKd();

  /// What the lights made: images, places and normals of texels, albedo.
  const CTextureImages& Textures() const { return m_Textures; }
  const CTexelMap& Texels() const { return m_Texels; }
  const CAlbedoMap& Albedo() const { return m_Albedo; }

 private:
  friend struct CStaging;  // of the tests
  const CSurface& m_Surface;
  CLightSet m_RemovedLights = CLightSet::Removed();
  CLightSet m_AddedLights = CLightSet::Added();
  CTextureImages m_Textures;
  CTexelMap m_Texels;
  CAlbedoMap m_Albedo;
};
