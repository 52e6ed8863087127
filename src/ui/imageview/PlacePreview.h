#pragma once

#include <vector>

#include "base/CPlanePoint.h"

/// Where in the picture something would be put, and where it was wanted but would not be; model units.
struct CPlacePreview {
  std::vector<CPlanePoint> m_aPlaces;
  std::vector<CPlanePoint> m_aLeftOut;
};

/// Draws them as dots, white and red, of a size that no zoom changes. Needs the projection of the image view.
void DrawPlaces(const CPlacePreview& preview);
