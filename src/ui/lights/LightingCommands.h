#pragma once

#include "lighting/CLight.h"
#include "lighting/CTextureImages.h"

/// What the light panel asks of the model and of the model view.
class LightingCommands {
 public:
  virtual ~LightingCommands() = default;

  /// Record `index` (0 to 3 and, ambient, 4) of a set (kRemovedLights, kAddedLights); null for another.
  virtual const CLight* GetLightSource(int index, int type) const = 0;
  /// Nothing for another.
  virtual void SetLight(int index, int type, const CLight& light) = 0;

  /// The tree's normals, and from them the normals of the texels.
  virtual void UpdateTexelNormals() = 0;
  /// The tree's normals, and with them places and normals of the texels.
  virtual void UpdateTexelInterpolation() = 0;
  /// The albedo and the new illumination.
  virtual void UpdateKd() = 0;
  /// Whether `UpdateKd` has produced the images for the present picture.
  virtual bool HasKd() const = 0;

  /// Whether albedo and new illumination follow every change of a light; for the run.
  virtual bool IsLive() const = 0;
  virtual void SetLive(bool live) = 0;
  /// How bright places of the new illumination become bytes.
  virtual Tone RelitTone() const = 0;
  virtual void SetTone(Tone tone) = 0;

  /// The image that the model view shows.
  virtual CTextureImages::Which ShownTexture() const = 0;
  virtual void ShowTexture(CTextureImages::Which image) = 0;
};
