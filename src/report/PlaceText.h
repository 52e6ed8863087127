#pragma once

#include <string>

#include "base/CPlanePoint.h"

class CGrid;

/// What there is at a place of the model (model units), as a line that users read: x and y, height and slopes of the
/// surface, the pixel of the photograph, counted from its upper left corner, with red, green and blue. Over a point
/// constraint of the user's, within `reach`, also what it asks for and what the surface has there, slopes as the
/// solver takes them; of several, the nearest. Outside the model only x and y.
///
/// Written to `text`, whose memory is used again. Descends the tree once or twice, and goes through the constraints.
void DescribePlace(const CGrid& grid, const CPlanePoint& place, double reach, std::string& text);
