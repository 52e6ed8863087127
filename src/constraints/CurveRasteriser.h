#pragma once

#include <cstdint>
#include <vector>

class CCntrCtrl;
class CQuadTree;
struct CGridSegment;
struct CPtCstr;

/// Writes discontinuity curves into the tree: along them it is refined to full resolution.
///
/// A position discontinuity marks the triangles of the cells that it passes (CellFlag::kTriangles), so that every
/// lattice edge that it crosses lies between two marked triangles and joins nothing. A normal discontinuity marks
/// lattice points (PointFlag::kCrease). Segments are clipped at the border of the model; one that has no length or no
/// finite place is skipped with a console line. Linear in the number of cells along the curves.
class CCurveRasteriser {
 public:
  /// The tree is refined along the curves; it must outlive the object.
  explicit CCurveRasteriser(CQuadTree& tree) : m_pTree(&tree) {}

  /// By its type; a fairness curve leaves no trace.
  void Rasterise(const CCntrCtrl& curve);
  /// Marks the diagonals of cells both of whose ends lie on a normal discontinuity (CellFlag::kRisingCrease,
  /// kFallingCrease). Once, after all curves.
  void MarkCreaseDiagonals();

  /// Single segments of tears, then of creases, in lattice coordinates: along x those longer in x, along y those at
  /// least as long in y.
  void scan_conv_line0_x(const CGridSegment& s);
  void scan_conv_line0_y(const CGridSegment& s);
  void scan_conv_line_x(const CGridSegment& s);
  void scan_conv_line_y(const CGridSegment& s);

 private:
  void RasterisePosition(const CCntrCtrl& curve);
  void RasteriseNormal(const CCntrCtrl& curve);
  void Tear(const CPtCstr& a, const CPtCstr& b);
  void Crease(const CPtCstr& a, const CPtCstr& b);
  void TearToBorder(const CPtCstr& end);
  void ScanCrease(CGridSegment s);
  void MarkCreasePoint(int column, int row);
  CGridSegment SegmentBetween(const CPtCstr& a, const CPtCstr& b) const;

  CQuadTree* m_pTree;
  std::vector<std::uint32_t> m_auCreasePoints;  ///< lattice indices of the points marked, each once
};
