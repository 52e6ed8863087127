#pragma once

#include <optional>

#include "base/CPlanePoint.h"

class CLattice;

/// Where an open end of a position discontinuity (model units) goes on to the border of the model, the shortest way.
/// Nothing where it lies on the border or outside already, or is not meant to reach it.
std::optional<CPlanePoint> BorderBeyond(const CLattice& lattice, const CPlanePoint& end);
