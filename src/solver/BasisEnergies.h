#pragma once

#include <vector>

class CCompressedRows;
class CHierarchicalBasis;
class CPointOrder;

/// b^T H b for every function b of the basis: the diagonal of B^T H B, by unknown. H is the matrix of the smoothness
/// over the heights, by scan position; `order` is the one that the basis was compiled for.
///
/// A function in which nothing but rounding is left has the energy 0. Level by level from the finest: on the points up
/// to a level, a basis function of that level is 1 at its own point and 0 at all others, so that its energy is an
/// entry of the matrix carried over to those points. Rows that are made of equal rows in the same way are computed
/// once: on a uniform grid that is next to all of them. Linear in the number of points, and of entries of unequal rows.
std::vector<double> BasisEnergies(const CCompressedRows& smoothness, const CHierarchicalBasis& basis,
                                  const CPointOrder& order);
