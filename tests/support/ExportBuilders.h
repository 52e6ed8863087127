#pragma once

#include <utility>

#include "codecs/PictureFormats.h"
#include "support/CStaging.h"
#include "support/LightingBuilders.h"

/// A photograph that was not read from a file.
inline CReadPicture PhotographOf(CPicture picture) {
  CReadPicture photograph;
  photograph.m_Picture = std::move(picture);
  return photograph;
}

/// Removes a light from the left, whose shading nowhere exceeds 0.9, and adds a dim one from above.
inline void SwitchOnLights(CGrid& grid) {
  CStaging::RemovedLights(grid) = AmbientLight(0.3, 0.2, 0.1);
  SwitchOn(CStaging::RemovedLights(grid), 0, {0.6, 0.5, 0.7}, {-1, 0.5, 2});
  CStaging::AddedLights(grid) = AmbientLight(0.1, 0.1, 0.1);
  SwitchOn(CStaging::AddedLights(grid), 1, {0.4, 0.5, 0.6}, {0, 0, 1});
}
