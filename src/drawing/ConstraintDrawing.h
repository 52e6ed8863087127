#pragma once

#include "base/Vector3.h"
#include "constraints/CPtCstr.h"
#include "drawing/DrawingSettings.h"

// Point constraints, as both views draw them.

/// The colour of whatever OpenGL draws next.
void SetColour(const CColour& colour);

/// A cross along the axes about `place`. `unit` is what a drawing size of 1 is along each of them; along one where it
/// is 0 nothing is drawn.
void DrawPosition(const CPtCstr& constraint, const CViewDrawing& drawing, const Vector3& place, const Vector3& unit);
/// The outline of a disc square to the normal wanted, and the normal itself, twice the radius long.
void DrawNormal(const CPtCstr& constraint, const CViewDrawing& drawing, const Vector3& place, const Vector3& unit);
