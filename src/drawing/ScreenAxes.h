#pragma once

#include "drawing/Minification.h"

class CGrid;

/// The axes of the model as the current context draws them now: its projection, view and viewport.
CScreenAxes ScreenAxesNow();

/// The reduction that the picture needs where the current context draws it over the model, which lies flat.
CReduction PictureReductionNow(const CGrid& grid);
