#pragma once

#include <vector>

#include "constraints/GridSegment.h"

class CCntrCtrlList;
class CLattice;

/// The straight pieces of all position discontinuities as they act on the surface, in lattice coordinates: clipped at
/// the border, led on to it from open ends that are meant to reach it, without those that have no length or no finite
/// place.
std::vector<CGridSegment> TearLines(const CCntrCtrlList& curves, const CLattice& lattice);
