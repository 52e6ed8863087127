#pragma once

#include <span>
#include <vector>

class CEnergyTerms;
class CLattice;
class CPointOrder;
class CQuadT;
class CQuadTree;

/// Weight of the squared second difference h1 z_after - (h1 + h2) z_here + h2 z_before of a point that lies h1 behind
/// the one before and h2 before the one after, in model units; `area` is the smoothness weight of the point.
double SecondDifferenceWeight(double h1, double h2, double area);
/// Weight of the squared mixed difference of a leaf: the sum of two opposite corners minus that of the other two.
double MixedDifferenceWeight(const CQuadT& leaf, const CLattice& lattice);

/// The smoothness energy of the surface over the present subdivision, in the heights by scan position of `order`:
/// a z_xx^2 and a z_yy^2 term at every point that has both neighbours, and a z_xy^2 term in every cell.
///
/// The neighbour of a point on a side is the point at the other end of the leaf edge that leaves it there; an edge
/// inside a position discontinuity joins nothing, and a point on a normal discontinuity has no second differences. A
/// cell has its mixed difference unless one of its triangles lies in a discontinuity or a diagonal is a crease.
/// Lengths h are in model units; each second difference is weighted by the area around its point (lattice steps
/// squared, which is rewritten in the lattice's smoothness weights), each mixed difference by the area of its cell;
/// both areas are divided by 16. It is the energy of a thin plate [Duchon1977] but for the mixed term, which counts
/// once here and twice there. Linear in the number of active leaves.
void AddGridTerms(CQuadTree& tree, const CPointOrder& order, CEnergyTerms& terms);

/// The energy of those terms on a surface, half of the weighted squares, by the point where each sits: a second
/// difference at its middle point, a mixed difference in equal parts at the corners of its cell. `heights` and the
/// answer are by scan position. The system must have been assembled for the present subdivision, whose leaves are
/// listed.
std::vector<double> GridEnergyShares(const CQuadTree& tree, const CPointOrder& order, std::span<const double> heights);
