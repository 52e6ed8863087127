#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/CFarSides.h"
#include "mesh/CSideHeights.h"
#include "mesh/CStripMesh.h"

/// Strips on which the lower side of a tear runs on beneath the higher one.
///
/// A strip covers what lies behind the tear, at most a given width from it, as far as the piece of the surface above it
/// goes without another tear. It continues the plane that its own side has at the nearest place of the tear, and keeps
/// clear of the surface above, more so farther from the tear; it shows what lies as far on the other side of that
/// place.
class CTearStrips {
 public:
  /// A vertex.
  struct CVertex {
    CStripMesh::CVertex m_Above;  ///< where it is, and which heights of the surface above make that above it
    std::uint32_t m_uSide = 0;    ///< cut side with the nearest place, ...
    double m_fShare = 0.0;        ///< ... which is that much of the way along, ...
    double m_fAway = 0.0;         ///< ... and that far away, in widths
  };

  /// Lengths of a cell along both axes and the width, model units. `sides` are those beyond which the surface is lower,
  /// `heights` and planes of `heights` are asked for later. Linear in the patch; and in the area of the strips times a
  /// logarithm. Not whole where `steps` do not go on.
  CTearStrips(const CTearPatch& patch, const CTearSides& sides, std::vector<CFarSide> cuts, double width,
              const std::array<double, 2>& cell, const CExportSteps& steps = {});

  /// Vertices, and three of them per triangle, counter-clockwise as seen from +z.
  std::span<const CVertex> Vertices() const { return m_aVertices; }
  std::span<const CStripMesh::CCorners> Triangles() const { return m_aTriangles; }
  /// Sets the height of every vertex; `heights` by copy, the planes of `side`. Allocates nothing.
  void Raise(const CSideHeights& side, std::span<const double> heights, std::span<const CSideHeights::CPlane> planes,
             std::span<double> strips) const;
  /// The copy of the lower side that a vertex on the tear joins; kNone for other vertices.
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  std::uint32_t JoinedTo(const CVertex& vertex) const;
  /// Where in the picture lies what a vertex shows, lattice coordinates of a square of `cells` by `cells`: mirrored at
  /// the curve, and once more at the border where that is outside.
  CCellPoint PictureOf(const CVertex& vertex, int cells) const;

 private:
  // The nearest place of a cut side.
  struct CNearest {
    std::uint32_t m_uSide = kNone;
    double m_fShare = 0.0;
    double m_fDistance = 0.0;  ///< model units
    double m_fWidth = 0.0;     ///< of the strip there
    double Beyond() const { return m_fDistance - m_fWidth; }
    bool IsBetterThan(const CNearest& other) const;
  };

  void LinkSides(std::size_t copies);
  CNearest NearestOn(std::uint32_t side, const CCellPoint& p) const;
  CNearest NearestAlong(std::uint32_t side, const CCellPoint& p) const;
  bool Spread(const CStripMesh& mesh, const CExportSteps& steps);
  bool Cover(CStripMesh& mesh, const CExportSteps& steps);
  double Outside(const CNearest& nearest) const;
  void AddClipped(CStripMesh& mesh, const CStripMesh::CCorners& corners);
  bool Number(const CStripMesh& mesh, const CExportSteps& steps);

  std::vector<CFarSide> m_aSides;
  double m_fWidth;
  std::array<double, 2> m_afCell;
  std::vector<std::array<std::uint32_t, 2>> m_auBeside;  ///< by side: the sides before and behind it along its piece
  std::vector<CNearest> m_aNearest;                      ///< by vertex of the mesh
  std::vector<double> m_afOutside;                       ///< by vertex: of the strip that reaches farthest over it
  std::vector<CVertex> m_aVertices;
  std::vector<CStripMesh::CCorners> m_aTriangles;
};
