#pragma once

struct CCellSurface;
class CLattice;
class CQuadT;
class CQuadTree;

/// The surface over an active leaf, from the lattice's heights.
CCellSurface CellSurface(const CQuadT& leaf, const CLattice& lattice);

/// Normals of the whole surface from the lattice's heights at the points in use, in one flat pass over the active
/// leaves: no walk of the tree, no allocation unless the subdivision has changed.
///
/// Writes the lattice's cell normal at each leaf's lower left point, and the lattice's point normals. A cell's normal
/// is the normalised sum over its triangles outside discontinuities (not a number when there is none). A point's normal
/// [Gouraud1971] is the normalised sum of the triangle normals around it that lie outside discontinuities, each
/// weighted one eighth; (0, 0, 0) where there is none.
void ComputeNormals(CQuadTree& tree);
