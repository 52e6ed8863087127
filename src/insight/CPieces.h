#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"
#include "lattice/CLattice.h"

class CPointOrder;
class CQuadTree;

/// What tears make of the grid: its connected pieces. Two points in use belong to one piece where uncut leaf edges lead
/// from the one to the other.
///
/// Points are given by their scan positions (see CPointOrder). It holds all it knows itself, as of the last `Build`,
/// and is linear in the number of active points.
class CPieces {
 public:
  /// One of them.
  struct CPiece {
    std::size_t m_uFirst = 0;  ///< its points are those from here...
    std::size_t m_uEnd = 0;    ///< ...to before here in the list of all
    CExtent m_Box{};           ///< around its points, model units
    double m_fArea = 0.0;      ///< of its triangles in no tear; 0 where none is drawn
    double m_fAlongX = 0.0;    ///< twice the area of those whose outer side runs along x
    double m_fAlongY = 0.0;    ///< and along y

    /// Points in use.
    std::size_t PointCount() const { return m_uEnd - m_uFirst; }
    /// A piece that is drawn is a region of the surface; others are points that tears have left over.
    bool IsDrawn() const { return m_fArea > 0.0; }
    CPlanePoint Middle() const { return {(m_Box.x0 + m_Box.x1) / 2, (m_Box.y0 + m_Box.y1) / 2}; }
  };
  /// Two points at the ends of a leaf edge: of a cut one that parts two pieces, or of one that is not.
  struct CJoint {
    std::uint32_t m_uA;
    std::uint32_t m_uB;
    bool operator==(const CJoint&) const = default;
  };
  /// The outer side of a triangle in no tear, from its left or lower end.
  struct CSlope {
    CJoint m_Ends;
    double m_fLength;  ///< model units
    double m_fArea;    ///< twice that of the triangle
    bool m_bAlongX;
  };

  /// Of the present subdivision and marks; its leaves must have been listed, its points numbered.
  void Build(const CQuadTree& tree, const CPointOrder& order);

  /// Pieces are numbered in the order of their first points.
  std::size_t Count() const { return m_aPieces.size(); }
  const CPiece& operator[](std::size_t piece) const { return m_aPieces[piece]; }
  /// The piece of a point.
  std::uint32_t PieceAt(std::size_t point) const { return m_auPiece[point]; }
  /// The points of a piece, ascending.
  std::span<const std::uint32_t> PointsOf(std::size_t piece) const {
    return std::span(m_auPoints).subspan(m_aPieces[piece].m_uFirst, m_aPieces[piece].PointCount());
  }
  /// Where a point is, model units.
  const CPlanePoint& PlaceOf(std::size_t point) const { return m_aPlaces[point]; }
  std::size_t PointCount() const { return m_auPiece.size(); }
  /// Every cut leaf edge between two pieces, once.
  std::span<const CJoint> Cuts() const { return m_aCuts; }
  /// Calls `visit` for the outer side of every triangle in no tear: the squared slopes along them, each times its area,
  /// sum to the area times the mean of |grad z|^2. `tree` and `order` as for `Build`.
  static void ForEachSlope(const CQuadTree& tree, const CPointOrder& order,
                           const std::function<void(const CSlope&)>& visit);

 private:
  void Number(std::span<const std::uint32_t> roots);
  void MeasureBoxes();

  std::vector<CPlanePoint> m_aPlaces;     ///< by point
  std::vector<std::uint32_t> m_auPiece;   ///< by point
  std::vector<std::uint32_t> m_auPoints;  ///< piece by piece
  std::vector<CPiece> m_aPieces;
  std::vector<CJoint> m_aCuts;
};
