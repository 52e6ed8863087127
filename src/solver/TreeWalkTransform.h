#pragma once

#include <span>

#include "lattice/WaveletMode.h"

class CQuadTree;

/// Heights to coefficients as a walk of the tree, edge by edge: slow, and independent of the compiled schedule of
/// `CHierarchicalBasis`, against which the program checks it.
///
/// Vectors have one entry per lattice point (row * n + column); only points in use are read and written. Each split
/// cell gives first the midpoints of its four sides, then its centre, then its children. The lattice's kComputed flags
/// are the walk's own.
void WalkW(CQuadTree& tree, WaveletMode mode, std::span<const double> heights, std::span<double> coefs);
