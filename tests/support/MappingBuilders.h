#pragma once

#include "drawing/CViewMapping.h"

/// The opposite of `CViewMapping::ToModel` in a view of that size.
inline CPlanePoint ToPixel(const CViewMapping& mapping, int width, int height, const CPlanePoint& place) {
  const CExtent shown = mapping.Visible();
  return {(place.x - shown.x0) / (shown.x1 - shown.x0) * width - 0.5,
          (shown.y1 - place.y) / (shown.y1 - shown.y0) * height - 0.5};
}

/// How far the view is panned, model units.
inline CPlanePoint PanOf(const CViewMapping& mapping) {
  const CPlanePoint panned = mapping.ToModel(0, 0);
  const CPlanePoint plain = mapping.ToModelUnpanned(0, 0);
  return {panned.x - plain.x, panned.y - plain.y};
}
