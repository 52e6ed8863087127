#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "constraints/TearLines.h"
#include "mesh/CCleanMesh.h"
#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"
#include "support/GridBuilders.h"
#include "support/TreeBuilders.h"

/// Curves in lattice coordinates, and whether each is closed.
struct CTestTear {
  CPlaces m_aNodes;
  bool m_bClosed = false;
};

/// A grid that is torn along curves given in lattice coordinates, and its mesh.
struct CTornGrid {
  explicit CTornGrid(const std::vector<CTestTear>& tears, int level = 4, int baseLevel = 4, std::uint32_t seed = 0,
                     const CExtent& extent = kOblong)
      : m_Scope(level, baseLevel) {
    m_Grid.Initialize(baseLevel, false, extent.x0, extent.y0, extent.x1, extent.y1);
    for (const CTestTear& tear : tears) {
      CPlaces places;
      for (const auto& [column, row] : tear.m_aNodes) places.push_back({Lattice().XOf(column), Lattice().YOf(row)});
      CStaging::Constraints(m_Grid).Curves().Add(PointsAt(places), kTear, tear.m_bClosed);
    }
    if (seed != 0) RandomiseRecord(CStaging::Subdivision(m_Grid), seed);
    m_Grid.SetDiscMap();
    m_Grid.Surface().Tree().ListLeaves();
  }
  CLattice& Lattice() { return m_Grid.Surface().Lattice(); }
  const CQuadTree& Tree() { return m_Grid.Surface().Tree(); }
  CCleanMesh Mesh(const CCleanMeshOptions& options = {}) {
    m_Plain.Build(Tree());
    return {Tree(), m_Plain, m_Grid.Constraints().Curves(), options};
  }
  /// `height(column, row)` at every lattice point.
  template <typename Height>
  void Raise(const Height& height) {
    for (int row = 0; row < Lattice().PointsPerSide(); ++row) {
      for (int column = 0; column < Lattice().PointsPerSide(); ++column)
        Lattice().Heights()[Lattice().Index(column, row)] = height(column, row);
    }
  }
  /// Whether a leaf at the place, lattice coordinates, has a triangle in a tear or is next to one that has: a tear may
  /// end on its side.
  bool IsNearTear(double column, double row) {
    const auto isAround = [](const CQuadT& leaf, double x, double y, double margin) {
      return x >= leaf.X0() - margin && x <= leaf.X1() + margin && y >= leaf.Y0() - margin && y <= leaf.Y1() + margin;
    };
    return std::ranges::any_of(Tree().Leaves(), [&](const CLeaf& here) {
      const CQuadT& leaf = *here.m_pCell;
      if (!isAround(leaf, column, row, 0)) return false;
      return std::ranges::any_of(Tree().Leaves(), [&](const CLeaf& torn) {
        const double x = std::clamp<double>(torn.m_pCell->X0() + 0.5 * torn.m_uSize, leaf.X0(), leaf.X1());
        const double y = std::clamp<double>(torn.m_pCell->Y0() + 0.5 * torn.m_uSize, leaf.Y0(), leaf.Y1());
        return torn.m_uMarked != 0 && isAround(*torn.m_pCell, x, y, 1);
      });
    });
  }

  ConsoleCapture m_Console;
  CResolutionScope m_Scope;
  CGrid m_Grid;
  CSurfaceMesh m_Plain;
};

/// What is asked of every clean mesh, in lattice coordinates.
class CMeshJudge {
 public:
  CMeshJudge(CTornGrid& grid, const CCleanMesh& mesh) : m_Mesh(mesh), m_iCells(grid.Lattice().PointsPerSide() - 1) {
    for (std::size_t v = 0; v < mesh.VertexCount(); ++v) {
      const auto [u, w] = mesh.Picture(v);
      m_aPoints.push_back({u * m_iCells, w * m_iCells});
    }
    FindRims();
  }
  using CPoint = std::array<double, 2>;
  using CPlaceKey = std::array<std::int32_t, 2>;
  struct CSide {
    std::uint32_t m_uFrom = 0;
    std::uint32_t m_uTo = 0;
  };

  /// The sum of the areas over the number of cells; -1 where one is not positive.
  double Covered() const {
    double sum = 0.0;
    for (std::size_t t = 0; t < m_Mesh.Triangles().size(); t += 3) {
      const double area = Area(t, [this](std::uint32_t v) { return m_aPoints[v]; });
      if (!(area > 0.0)) return -1.0;
      sum += area;
    }
    return sum / m_iCells / m_iCells;
  }
  /// Triangles without area or turned over as floats.
  int BadAsWritten() const {
    int bad = 0;
    for (std::size_t t = 0; t < m_Mesh.Triangles().size(); t += 3) {
      const auto at = [this](std::uint32_t v) { return CPoint{m_Mesh.Written(v)[0], m_Mesh.Written(v)[1]}; };
      bad += Area(t, at) > 0.0 ? 0 : 1;
    }
    return bad;
  }
  /// Directed sides that two triangles have.
  int SharedTwice() const { return m_iTwice; }
  /// Sides with one triangle that neither lie on the border nor have a partner with the same ends beyond a cut.
  int Cracks() const {
    int cracks = 0;
    for (const CSide& side : m_aRims) {
      if (!IsBorder(side) && m_Places.count({KeyOf(side.m_uTo), KeyOf(side.m_uFrom)}) == 0) ++cracks;
    }
    return cracks;
  }
  /// Sides along the cuts, each from both of its sides.
  std::vector<CSide> Cuts() const {
    std::vector<CSide> cuts;
    std::ranges::copy_if(m_aRims, std::back_inserter(cuts), [this](const CSide& s) { return !IsBorder(s); });
    return cuts;
  }
  const CPoint& At(std::uint32_t vertex) const { return m_aPoints[vertex]; }
  double ZAt(std::uint32_t vertex) const { return m_Mesh.Vertex(vertex).m_fZ; }
  bool IsBorder(const CSide& side) const {
    const auto on = [&](std::size_t axis) {
      const double a = At(side.m_uFrom)[axis];
      return a == At(side.m_uTo)[axis] && (a == 0.0 || a == m_iCells);
    };
    return on(0) || on(1);
  }
  CPlaceKey KeyOf(std::uint32_t vertex) const {
    const CMeshPlace place = m_Mesh.Vertex(vertex).m_Place;
    return {place.x, place.y};
  }
  /// Distance of a point from the nearest cut or border, in cells.
  double FromCuts(const CPoint& p) const {
    double nearest = std::min(std::min(p[0], m_iCells - p[0]), std::min(p[1], m_iCells - p[1]));
    for (const CSide& side : m_aRims) nearest = std::min(nearest, Distance(p, At(side.m_uFrom), At(side.m_uTo)));
    return nearest;
  }
  static double Distance(const CPoint& p, const CPoint& a, const CPoint& b) {
    const double dx = b[0] - a[0];
    const double dy = b[1] - a[1];
    const double square = dx * dx + dy * dy;
    const double share = square > 0 ? std::clamp(((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / square, 0.0, 1.0) : 0.0;
    return std::hypot(p[0] - a[0] - share * dx, p[1] - a[1] - share * dy);
  }

 private:
  template <typename At>
  double Area(std::size_t t, const At& at) const {
    const auto v = m_Mesh.Triangles().subspan(t, 3);
    const CPoint a = at(v[0]);
    const CPoint b = at(v[1]);
    const CPoint c = at(v[2]);
    return ((b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])) / 2;
  }
  void FindRims() {
    std::set<std::array<std::uint32_t, 2>> sides;
    const auto triangles = m_Mesh.Triangles();
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
      for (std::size_t k = 0; k < 3; ++k) {
        if (!sides.insert({triangles[t + k], triangles[t + (k + 1) % 3]}).second) ++m_iTwice;
      }
    }
    for (const auto& [from, to] : sides) {
      if (sides.count({to, from}) != 0) continue;
      m_aRims.push_back({from, to});
      m_Places.insert({KeyOf(from), KeyOf(to)});
    }
  }

  const CCleanMesh& m_Mesh;
  int m_iCells;
  std::vector<CPoint> m_aPoints;
  std::vector<CSide> m_aRims;
  std::set<std::pair<CPlaceKey, CPlaceKey>> m_Places;
  int m_iTwice = 0;
};

/// Curves at random: straight, bent, closed, crossing, along lattice lines, through lattice points, beyond the border.
inline std::vector<CTestTear> RandomTears(std::uint32_t seed, int cells) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> anywhere(-0.05 * cells, 1.05 * cells);
  std::vector<CTestTear> tears(1 + random() % 4);
  for (CTestTear& tear : tears) {
    const std::size_t nodes = 2 + random() % 6;
    const auto kind = static_cast<std::uint32_t>(random() % 6);
    for (std::size_t k = 0; k < nodes; ++k) {
      std::array<double, 2> node{anywhere(random), anywhere(random)};
      // On lattice points, on centres and midpoints, next to them.
      if (kind == 1) node = {std::round(node[0]), std::round(node[1])};
      if (kind == 2) node = {std::round(2 * node[0]) / 2, std::round(2 * node[1]) / 2};
      if (kind == 3) node = {std::round(node[0]) + 1e-4, std::round(node[1]) - 2e-4};
      if (kind == 4 && k > 0) node = {tear.m_aNodes.back()[0] + 0.3 * (node[0] / cells - 0.5) * cells / 4, node[1]};
      if (kind == 5 && k > 0) {
        node = {std::clamp(tear.m_aNodes.back()[0] + (node[0] / cells - 0.5), 0.0, static_cast<double>(cells)),
                std::clamp(tear.m_aNodes.back()[1] + (node[1] / cells - 0.5), 0.0, static_cast<double>(cells))};
      }
      tear.m_aNodes.push_back(node);
    }
    tear.m_bClosed = nodes > 2 && random() % 2 == 0;
  }
  return tears;
}
