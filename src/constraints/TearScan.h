#pragma once

struct CGridSegment;
class CQuadTree;

/// The axis along which a segment is walked: the one in which it is longer.
enum class MajorAxis { X, Y };

/// Marks the triangles of the cells one step wide that a segment of a position discontinuity passes, refining the tree
/// down to them. Linear in the number of those cells.
void ScanTear(CQuadTree& tree, MajorAxis axis, CGridSegment s);
