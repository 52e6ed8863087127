#pragma once

class CEnergyTerms;
class CPointOrder;
class CQuadTree;

/// The smoothness energy of the surface over the present subdivision, in the heights by scan position of `order`:
/// a z_xx^2 and a z_yy^2 term at every point that has both neighbours, and a z_xy^2 term in every cell.
///
/// The neighbour of a point on a side is the point at the other end of the leaf edge that leaves it there; an edge
/// inside a position discontinuity joins nothing, and a point on a normal discontinuity has no second differences. A
/// cell has its mixed difference unless one of its triangles lies in a discontinuity or a diagonal is a crease.
/// Lengths h are in model units; each second difference is weighted by the area around its point (lattice steps
/// squared, which is rewritten in the lattice's smoothness weights), each mixed difference by the area of its cell;
/// both areas are divided by 16. Linear in the number of active leaves.
void AddGridTerms(CQuadTree& tree, const CPointOrder& order, CEnergyTerms& terms);
