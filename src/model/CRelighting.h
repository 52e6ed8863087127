#pragma once

#include <functional>
#include <utility>

#include "base/Memory.h"
#include "lighting/CAlbedoMap.h"
#include "lighting/CKdPass.h"
#include "lighting/CKdPreview.h"
#include "lighting/CLight.h"
#include "lighting/CTexelMap.h"
#include "lighting/CTextureImages.h"

class CShading;
class CSurface;

/// The picture on the surface, and its light: the lights taken out of it and put into it, where its texels lie, and the
/// images that come of both.
///
/// Every pass takes the surface as it is: the present subdivision, with the normals of its points and cells. Without a
/// picture the passes log a line and do nothing, but for those that say otherwise. All are linear in the number of
/// texels.
///
/// What is kept per texel is asked for by the first pass over a picture that needs it; later ones allocate nothing.
/// Where that memory is not there the pass logs a line, changes nothing and returns false; all else is true.
class CRelighting {
 public:
  /// `surface` must outlive the relighting.
  explicit CRelighting(const CSurface& surface) : m_Surface(surface) {}

  /// Takes up a picture: its textures; each texel has the normal (0, 0, 1), no albedo and is in no discontinuity.
  /// False, with nothing changed, for one that is empty or has not 3 * width * height bytes, and, with a console line,
  /// for one that `memory` bytes do not hold.
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

  /// How the new illumination becomes bytes; clipped at the start. Nothing is computed.
  Tone RelitTone() const { return m_Tone; }
  void SetTone(Tone tone) { m_Tone = tone; }

  /// Takes this for the bytes that the first passes can have; AvailableMemory() at the start.
  void SetMemory(std::function<double()> memory) { m_Memory = std::move(memory); }

  /// Asks for the memory of places and normals, so that no later pass over them lacks it. True without a picture.
  bool ReserveTexels() { return !HasTexels() || Reserve(false); }
  /// Gives every texel of the picture its column and row and the normal (0, 0, 1) again.
  bool InitializeCoordsTexels();
  /// Brings the places of the texels up to the subdivision, for what draws them; nothing without a picture. False,
  /// without a line, where there is no memory.
  bool LocateTexels();
  /// Recomputes which texels lie in a discontinuity; nothing without a picture.
  void TestTexelsInDiscontinuity();
  /// The same without a word on the console.
  void RefreshMask();
  /// Place on the surface and normal of every texel in no discontinuity, from the normals of points and cells.
  bool ComputeCoefsTexels();
  /// Normal of every texel from its place, which is found first if the subdivision has changed.
  bool ComputeNormalsOnly();
  /// Albedo, Kd image and new illumination (see CAlbedoMap), from normals of the present subdivision.
  bool GetKd();

  // The same for lights that move, without a wait. While there is no picture, or no removed light is active, nothing
  // happens.
  /// What has become of it.
  enum class KdProgress { None, Going, Done, NoMemory };
  /// Has a large picture's images shown by smaller ones with the present lights at once (see CKdPreview); false where
  /// that is not worth while or there is no memory.
  bool PreviewKd();
  /// What `GetKd` does, in pieces (see CKdPass): goes on for as long as `goes` is true. Its lines come all at the end,
  /// or those of missing memory.
  KdProgress ContinueKd(const std::function<bool()>& goes);

  /// What the lights made: images, places and normals of texels, albedo.
  const CTextureImages& Textures() const { return m_Textures; }
  const CTexelMap& Texels() const { return m_Texels; }
  const CAlbedoMap& Albedo() const { return m_Albedo; }

 private:
  friend struct CStaging;  // of the tests

  void UpdateMask();
  template <typename Pass>
  bool WithMemory(bool albedo, const char* name, Pass&& pass);
  bool Reserve(bool albedo);
  void LogKd(const CShading& added) const;

  const CSurface& m_Surface;
  CLightSet m_RemovedLights = CLightSet::Removed();
  CLightSet m_AddedLights = CLightSet::Added();
  CTextureImages m_Textures;
  CTexelMap m_Texels;
  CAlbedoMap m_Albedo;
  Tone m_Tone = Tone::Clipped;
  CKdPass m_KdPass;
  CKdPreview m_KdPreview;
  std::function<double()> m_Memory = AvailableMemory;
};
