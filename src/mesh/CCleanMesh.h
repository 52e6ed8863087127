#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "base/ExportProgress.h"
#include "base/Vector3.h"
#include "lattice/CLattice.h"
#include "mesh/CMeshPlane.h"
#include "model/CSurfaceMesh.h"

class CCntrCtrlList;
class CLattice;
class CQuadTree;
class CSideHeights;
class CTearCutter;
class CTearPatch;
class CTearSides;
class CTornSurface;

/// What lies between the two sides of a tear.
enum class TearGap {
  Open,   ///< nothing: both end on the curve
  Wall,   ///< a vertical strip
  Under,  ///< the lower side runs on beneath the higher one and borrows its own part of the picture
};

/// How a surface becomes a clean mesh.
struct CCleanMeshOptions {
  TearGap m_Gap = TearGap::Open;
  double m_fScale = 1.0;        ///< written units in a model unit, across the picture; positive
  double m_fHeightScale = 1.0;  ///< and along z
  double m_fUnderWidth = 0.0;   ///< how far the lower side runs on, model units; 0 for `UnderWidthOf`
  bool m_bPictures = true;      ///< what vertices show of the picture is wanted for a file
  bool m_bOpenEdges = false;    ///< no edge has four walls: corners at crossing tears are moved by 1/1000 of a cell
};

/// How far the lower side of a tear runs on where nothing else is said: an eighth of the larger side of the model.
double UnderWidthOf(const CExtent& extent);

/// The surface as a mesh whose tears end on their curves: what exports write and the model view may show.
///
/// The triangles of CSurfaceMesh outside of tears stay as they are, with their vertices under the same numbers. Those
/// around tears are cut along the curves, and each side goes on to the curve at heights of its own. Seen from above the
/// triangles of the surface cover the rectangle once; every edge is shared by two of them but for the border and the
/// cuts, where the vertices of the two sides differ. None of them has zero area or is turned over, neither in doubles
/// nor in the floats that a file holds. Made once for an export or a change of the surface; linear in the number of
/// leaves.
class CCleanMesh {
 public:
  /// x, y and z as a file holds them.
  using CWritten = std::array<float, 3>;

  /// A vertex.
  struct CVertex {
    CMeshPlace m_Place;
    double m_fZ = 0.0;                      ///< model units
    CSurfaceMesh::CTexturePoint m_Picture;  ///< what it shows of the picture
  };

  /// `mesh` must have been built from `tree`, whose leaves must be listed and marked for `curves`; it is faster to give
  /// it away. Not whole where `steps` do not go on.
  CCleanMesh(const CQuadTree& tree, CSurfaceMesh mesh, const CCntrCtrlList& curves,
             const CCleanMeshOptions& options = {}, const CExportSteps& steps = {});

  /// Vertices, and where one lies in model units.
  std::size_t VertexCount() const { return m_aWritten.size(); }
  CVertex Vertex(std::size_t vertex) const { return {PlaceOf(vertex), m_afZ[vertex], Picture(vertex)}; }
  Vector3 Position(std::size_t vertex) const;
  /// The same as a file holds it: from the middle of the rectangle, scaled.
  const CWritten& Written(std::size_t vertex) const { return m_aWritten[vertex]; }
  /// What it shows of the picture.
  CSurfaceMesh::CTexturePoint Picture(std::size_t vertex) const {
    const std::size_t plain = m_aWritten.size() - m_aShown.size();
    return vertex < plain ? PictureAt(PlaceOf(vertex)) : m_aShown[vertex - plain];
  }
  /// Both by vertex, as a file holds them, for those who go on with them; none is left. The second is empty unless it
  /// was asked for.
  std::vector<CWritten> TakeWritten() { return std::move(m_aWritten); }
  std::vector<std::array<float, 2>> TakePictures() { return std::move(m_aPictures); }

  /// The surface: three vertices per triangle, counter-clockwise as seen from +z.
  std::span<const std::uint32_t> Triangles() const {
    return m_aTriangles.empty() ? std::span<const std::uint32_t>()
                                : std::span(m_aTriangles.front().data(), 3 * m_aTriangles.size());
  }
  /// The same for those who go on with them; none is left.
  std::vector<CSurfaceMesh::CTriangle> TakeTriangles() { return std::move(m_aTriangles); }
  /// How many of them come first that are those of whole leaves without a cut, leaf by leaf: the last vertex of each is
  /// the centre of its leaf, which no other triangle has. Vertices at corners of leaves come before all others.
  std::size_t FanTriangleCount() const { return m_uFanTriangles; }
  std::size_t CornerCount() const { return m_uCorners; }
  /// A corner of the surface on the border that has been moved along it, so that no edge has four walls: where the
  /// slanted edge below it comes back to its place, as written.
  struct CFoot {
    std::uint32_t m_uVertex = 0;
    CWritten m_Foot{};
  };
  std::span<const CFoot> Feet() const { return m_aFeet; }
  /// The walls of the tears, empty unless they were asked for: vertical triangles between vertices of the surface.
  std::span<const std::uint32_t> Walls() const { return m_auWalls; }
  /// What runs on beneath the higher sides, empty unless it was asked for: triangles that face as the surface does, and
  /// share the vertices of the lower side along the tear. Nothing where both heights are the same when written.
  std::span<const std::uint32_t> Strips() const { return m_auStrips; }

 private:
  // Written coordinates are whole steps of the plane.
  CMeshPlace PlaceOf(std::size_t vertex) const {
    return m_Plane.PlaceWrittenAs(m_aWritten[vertex][0], m_aWritten[vertex][1]);
  }
  // The cells of a side are a power of two.
  CSurfaceMesh::CTexturePoint PictureAt(const CMeshPlace& place) const {
    return {m_Plane.ColumnOf(place) * m_fShare, m_Plane.RowOf(place) * m_fShare};
  }
  void Put(std::uint32_t vertex, const CMeshPlace& place, double z, const CSurfaceMesh::CTexturePoint& picture);
  void AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh);
  void TakePlainTriangles(CSurfaceMesh&& mesh, const CTearPatch& patch);
  void AddPatch(CTearPatch& patch, const CLattice& lattice, const CCntrCtrlList& curves, const CExportSteps& steps);
  std::vector<std::uint32_t> AddTorn(const CTornSurface& torn, const CTearPatch& patch, const CExportSteps& steps);
  void AddTornOpenOrWalled(CTornSurface& torn, const CTearPatch& patch, CTearCutter& cutter, const CExportSteps& steps);
  void AddUnder(CTearPatch& patch, const CTearSides& sides, const CExportSteps& steps);
  void AddStrips(const CTearPatch& patch, const CTearSides& sides, const CSideHeights& side,
                 std::span<const double> known, std::span<const std::uint32_t> numbers, const CExportSteps& steps);

  CExtent m_Extent;
  int m_iCells;
  double m_fShare;                 ///< of one of them in a side
  std::array<double, 2> m_afCell;  ///< lengths of a cell, model units
  CCleanMeshOptions m_Options;
  CMeshPlane m_Plane;
  std::vector<CWritten> m_aWritten;                   ///< by vertex
  std::vector<double> m_afZ;                          ///< by vertex, model units
  std::vector<std::array<float, 2>> m_aPictures;      ///< by vertex; empty unless they are wanted
  std::vector<CSurfaceMesh::CTexturePoint> m_aShown;  ///< by vertex of those of strips, which are the last
  std::vector<CSurfaceMesh::CTriangle> m_aTriangles;
  std::size_t m_uFanTriangles = 0;
  std::size_t m_uCorners;
  std::vector<CFoot> m_aFeet;
  std::vector<std::uint32_t> m_auWalls;
  std::vector<std::uint32_t> m_auStrips;
};
