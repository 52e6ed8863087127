#pragma once

#include <array>

#include "base/CPlanePoint.h"
#include "lighting/CTextureImages.h"

/// Where the axes of the model lead on the screen: to the right and up, in screen pixels per model unit. For views
/// without perspective, which show each unit alike.
struct CScreenAxes {
  CPlanePoint m_X;
  CPlanePoint m_Y;
  CPlanePoint m_Z;

  /// From the matrices of a context, column by column, and the size of its viewport in pixels.
  static CScreenAxes Of(const std::array<double, 16>& projection, const std::array<double, 16>& modelView, int width,
                        int height);
};

/// How often the sides of a picture are halved to be drawn.
using CReduction = CHalvings;

/// How many picture pixels fall on one screen pixel, along either side of the picture, where the picture lies in the
/// plane of x and y: the sides of the box around what that screen pixel covers. `pixel` is the size of a picture pixel,
/// model units. A plane that is turned away counts for at most four times what it shows from the front: what rises from
/// it shows faces of its own then, which have to stay sharp. 0 where nothing is drawn.
CPlanePoint PixelsPerScreenPixel(const CScreenAxes& axes, const CPlanePoint& pixel);

/// The least reduction with which at most two pixels of the copy fall on one screen pixel.
CReduction ReductionFor(const CPlanePoint& pixelsPerScreenPixel);
