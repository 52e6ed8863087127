#pragma once

class CQuadTree;

/// Subdivides the tree down to the cell one step wide at a column and row, which must exist.
void RefineToCell(CQuadTree& tree, int column, int row);
/// The same for the cell that holds (gx, gy), lattice coordinates. Nothing outside the tree.
void RefineToPoint(CQuadTree& tree, double gx, double gy);

/// Sets (`set` other than 0) or clears bits of the cell one step wide at a column and row. Refused with a console line
/// where the tree is not subdivided down to that cell.
void SetGridCellMask2(CQuadTree& tree, int column, int row, int mask, int set);
