#pragma once

#include <array>

#include <FL/Enumerations.H>

#include "drawing/DrawingSettings.h"

/// The entry of the toolkit's colour cube that comes nearest to `colour`: five steps of red and blue, eight of green.
Fl_Color NearestCubeColour(const CColour& colour);

/// Lets the user change a colour, given in bytes, in the toolkit's colour chooser, under `title`; true if a choice was
/// made. Waits for the answer.
bool ChooseColour(const char* title, std::array<int, 3>& bytes);
/// The same for a colour from 0 to 1, which is rounded to bytes.
bool ChooseColour(const char* title, CColour& colour);
