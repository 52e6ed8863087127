#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "lattice/CLattice.h"
#include "mesh/CFarSides.h"
#include "mesh/CMeshPlane.h"
#include "mesh/CSideHeights.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"
#include "mesh/CTearStrips.h"

class CCntrCtrlList;
class CQuadTree;
class CSurfaceMesh;

/// The surface around its tears as it is drawn while the solver runs: each side goes on to the curve.
///
/// It takes the place of some leaves of a CSurfaceMesh, and is the same surface as that of a CCleanMesh. Cuts,
/// triangles and what heights count for each other are found once for a subdivision and its curves; other heights cost
/// sums. What runs on beneath the higher side of a tear is made anew where another side has become the lower one.
class CClosedTears {
 public:
  /// `mesh` must have been built from `tree`, whose leaves must be listed and marked for `curves`; none is needed
  /// afterwards. `under`: with strips as wide as UnderWidthOf. Linear in the number of leaves.
  CClosedTears(const CQuadTree& tree, const CSurfaceMesh& mesh, const CCntrCtrlList& curves, bool under);
  CClosedTears(const CClosedTears&) = delete;
  CClosedTears& operator=(const CClosedTears&) = delete;
  ~CClosedTears() = default;

  /// The triangles of the mesh that stay, of its vertices.
  std::span<const std::uint32_t> PlainTriangles() const { return m_auPlain; }
  /// Those that take the place of the others, and the strips beneath them, of vertices of their own.
  std::span<const std::uint32_t> Triangles() const { return m_auTriangles; }
  std::span<const std::uint32_t> Strips() const { return m_auStrips; }

  /// By vertex: x, y and z in model units; a unit vector; and the place of the picture that it shows, as x and y in
  /// model units.
  std::span<const float> Positions() const { return m_afPositions; }
  std::span<const float> Normals() const { return m_afNormals; }
  std::span<const float> Shown() const { return m_afShown; }

  /// Brings the positions up to those of the mesh, three floats each. Allocates nothing, unless strips change sides.
  void Raise(std::span<const float> mesh);
  /// The normals, after `Raise`, from those of the mesh. Allocates nothing.
  void RaiseNormals(std::span<const float> mesh);

 private:
  CCellPoint ModelPoint(const CCellPoint& p) const;
  void AddTriangles();
  void MakeStrips();
  void AddNormals(std::span<const std::uint32_t> triangles);

  CExtent m_Extent;
  int m_iCells;
  std::array<double, 2> m_afCell;  ///< lengths of a cell, model units
  double m_fWidth;                 ///< of the strips; 0 for none
  CMeshPlane m_Plane;
  CTearPatch m_Patch;
  std::optional<CTearSides> m_Sides;
  std::optional<CSideHeights> m_Side;
  std::optional<CFarSides> m_FarSides;
  std::optional<CTearStrips> m_Strips;
  std::vector<double> m_afKnown;
  std::vector<double> m_afHeights;         ///< by copy
  std::vector<double> m_afStripsMadeFrom;  ///< the same when the strips were made
  std::vector<double> m_afStrips;          ///< by vertex of the strips
  std::vector<CSideHeights::CPlane> m_aPlanes;
  std::vector<std::uint32_t> m_auPlain;
  std::vector<std::uint32_t> m_auTriangles;
  std::vector<std::uint32_t> m_auStrips;
  std::vector<float> m_afPositions;
  std::vector<float> m_afNormals;
  std::vector<float> m_afShown;
};
