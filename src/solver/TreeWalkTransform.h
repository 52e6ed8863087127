#pragma once

#include <span>

#include "lattice/WaveletMode.h"

class CQuadTree;

/// The hierarchical transforms written as a walk of the tree, edge by edge: slow, and independent of the compiled
/// schedule of `CHierarchicalBasis`, against which the program checks it.
///
/// Vectors have one entry per lattice point (row * n + column); only points in use are read and written. Each split
/// cell gives first the midpoints of its four sides, then its centre, then its children. The lattice's kComputed flags
/// are the walk's own.

/// Heights to coefficients.
void WalkW(CQuadTree& tree, WaveletMode mode, std::span<const double> heights, std::span<double> coefs);
/// Coefficients to heights, in place.
void WalkInvW(CQuadTree& tree, WaveletMode mode, std::span<double> values);
