#pragma once

#include "drawing/COverlay.h"

class CGrid;
class CSavedSurface;

// What the overlays show of a model. Its system must have been built, and no edit wait. Linear in the number of points
// unless said otherwise.

/// The density of bending. The colours end where all but a hundredth of the points lie below, because single
/// constraints bend the surface far more than all the rest.
COverlay BendingOverlay(const CGrid& grid);
/// By how much the surface is higher than what the depth map asks for or, without a map, than the one that was saved;
/// white at 0. Without either nothing is coloured, and the legend says so.
COverlay MisfitOverlay(const CGrid& grid, const CSavedSurface& saved);

/// The regions that float, by their free directions, of one colour each; the legend says what they need.
COverlay FloatingOverlay(const CGrid& grid);

/// Colours from -m to m, where m is the largest of the values in amount; at least `least`, so that rounding is no
/// colour.
void SetEvenRange(COverlay& overlay, double least);
