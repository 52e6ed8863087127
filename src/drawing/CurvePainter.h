#pragma once

#include <optional>

#include "drawing/CViewMapping.h"

class CGrid;

/// Draws the curves, their nodes and the places of the constraints they generate into the current context, in the plane
/// of the picture.
void DrawCurves(const CGrid& grid);
/// Draws the curve in progress as it would be if it ended now: a wide closed line if it is to close, otherwise a thin
/// one that leads to `looseEnd`, if there is one. Nothing while no curve is in progress.
void DrawPendingCurve(const CGrid& grid, const std::optional<CPlanePoint>& looseEnd);
