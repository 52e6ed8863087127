#pragma once

#include <FL/Enumerations.H>

#include "ui/DrawingSettings.h"

/// The entry of the toolkit's colour cube that comes nearest to `colour`: five steps of red and blue, eight of green.
Fl_Color NearestCubeColour(const CColour& colour);

/// Lets the user change `colour` in the toolkit's colour chooser, under `title`; true if a choice was made, which is in
/// whole bytes. Waits for the answer.
bool ChooseColour(const char* title, CColour& colour);
