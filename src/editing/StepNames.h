#pragma once

#include "model/Edit.h"

struct CSketch;

/// What a person calls an edit, as it stands after "Undo" in a menu. One that has made a curve is called after that:
/// it is the last one of `after`.
const char* StepName(Edit edit, const CSketch& before, const CSketch& after);
