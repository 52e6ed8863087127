#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "support/CleanMeshBuilders.h"

/// Triangles of a mesh by the cells that they lie in, to be found by points in lattice coordinates.
class CTriangleFinder {
 public:
  using CPoint = CMeshJudge::CPoint;

  CTriangleFinder(CTornGrid& grid, const CCleanMesh& mesh, std::span<const std::uint32_t> corners)
      : m_auCorners(corners), m_iCells(grid.Lattice().PointsPerSide() - 1) {
    const auto cells = static_cast<std::size_t>(m_iCells);
    for (std::size_t v = 0; v < mesh.VertexCount(); ++v) {
      const Vector3 p = mesh.Position(v);
      m_aPoints.push_back({grid.Lattice().ColumnOf(p.x), grid.Lattice().RowOf(p.y)});
      m_afHeights.push_back(p.z);
    }
    m_aauBins.resize(cells * cells);
    for (std::size_t t = 0; t < corners.size(); t += 3) {
      CPoint least = At(corners[t]);
      CPoint most = least;
      for (std::size_t k = 1; k < 3; ++k) {
        const CPoint& p = At(corners[t + k]);
        least = {std::min(least[0], p[0]), std::min(least[1], p[1])};
        most = {std::max(most[0], p[0]), std::max(most[1], p[1])};
      }
      for (int row = CellOf(least[1]); row <= CellOf(most[1]); ++row) {
        for (int column = CellOf(least[0]); column <= CellOf(most[0]); ++column)
          m_aauBins[Bin(column, row)].push_back(t);
      }
    }
  }
  const CPoint& At(std::uint32_t vertex) const { return m_aPoints[vertex]; }
  double ZAt(std::uint32_t vertex) const { return m_afHeights[vertex]; }
  /// The height of the highest and of the lowest triangle over a point, in the unit of the mesh; nothing where none is.
  struct CSpan {
    double m_fLow = HUGE_VAL;
    double m_fHigh = -HUGE_VAL;
  };
  std::optional<CSpan> Over(const CPoint& p) const {
    CSpan span;
    for (const std::size_t t : m_aauBins[Bin(CellOf(p[0]), CellOf(p[1]))]) {
      const std::optional<double> z = HeightIn(t, p);
      if (!z) continue;
      span = {std::min(span.m_fLow, *z), std::max(span.m_fHigh, *z)};
    }
    if (span.m_fLow > span.m_fHigh) return std::nullopt;
    return span;
  }

 private:
  // What rounding to places moves a vertex by.
  static constexpr double kRounding = 1e-5;

  int CellOf(double coordinate) const { return std::clamp(static_cast<int>(coordinate), 0, m_iCells - 1); }
  std::size_t Bin(int column, int row) const { return static_cast<std::size_t>(row * m_iCells + column); }
  std::optional<double> HeightIn(std::size_t t, const CPoint& p) const {
    std::array<double, 3> shares{};
    double whole = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
      const CPoint& a = At(m_auCorners[t + (k + 1) % 3]);
      const CPoint& b = At(m_auCorners[t + (k + 2) % 3]);
      shares[k] = (b[0] - a[0]) * (p[1] - a[1]) - (b[1] - a[1]) * (p[0] - a[0]);
      if (shares[k] < -kRounding * std::hypot(b[0] - a[0], b[1] - a[1])) return std::nullopt;
      whole += shares[k];
    }
    if (!(whole > 1e-9)) return std::nullopt;
    whole = 0.0;
    for (double& share : shares) whole += share = std::max(share, 0.0);
    double z = 0.0;
    for (std::size_t k = 0; k < 3; ++k) z += shares[k] / whole * m_afHeights[m_auCorners[t + k]];
    return z;
  }

  std::vector<CPoint> m_aPoints;
  std::vector<double> m_afHeights;
  std::span<const std::uint32_t> m_auCorners;
  int m_iCells;
  std::vector<std::vector<std::size_t>> m_aauBins;
};

/// The cut sides of a mesh, each from both of the pieces beside it, which lies to its left.
class CCutSides {
 public:
  using CPoint = CMeshJudge::CPoint;

  struct CCut {
    CPoint m_From;
    CPoint m_To;
    std::array<double, 2> m_afStep{};   ///< by how much the surface to the left is higher, at both ends
    std::array<double, 2> m_afToEnd{};  ///< the way along the cuts to an end inside the surface, model units
  };

  CCutSides(CTornGrid& grid, const CMeshJudge& judge)
      : m_iCells(grid.Lattice().PointsPerSide() - 1),
        m_afCell{grid.Lattice().XOf(1) - grid.Lattice().XOf(0), grid.Lattice().YOf(1) - grid.Lattice().YOf(0)} {
    using CKey = CMeshJudge::CPlaceKey;
    const std::vector<CMeshJudge::CSide> sides = judge.Cuts();
    std::map<std::pair<CKey, CKey>, CMeshJudge::CSide> bySide;
    std::map<CKey, std::map<CKey, double>> ways;
    for (const auto& side : sides) {
      const std::pair keys{judge.KeyOf(side.m_uFrom), judge.KeyOf(side.m_uTo)};
      bySide[keys] = side;
      ways[keys.first][keys.second] = ways[keys.second][keys.first] =
          Length(judge.At(side.m_uFrom), judge.At(side.m_uTo));
    }
    std::map<CKey, double> toEnd;
    for (const auto& side : sides) {
      const CPoint& p = judge.At(side.m_uFrom);
      const bool border = p[0] == 0.0 || p[1] == 0.0 || p[0] == m_iCells || p[1] == m_iCells;
      const CKey key = judge.KeyOf(side.m_uFrom);
      toEnd[key] = ways[key].size() == 1 && !border ? 0.0 : HUGE_VAL;
    }
    for (bool shorter = true; shorter;) {
      shorter = false;
      for (auto& [key, length] : toEnd) {
        for (const auto& [other, way] : ways[key]) {
          if (toEnd[other] + way >= length) continue;
          length = toEnd[other] + way;
          shorter = true;
        }
      }
    }
    for (const auto& side : sides) {
      const CKey from = judge.KeyOf(side.m_uFrom);
      const CKey to = judge.KeyOf(side.m_uTo);
      const CMeshJudge::CSide& back = bySide.at({to, from});
      m_aCuts.push_back(
          {judge.At(side.m_uFrom),
           judge.At(side.m_uTo),
           {judge.ZAt(side.m_uFrom) - judge.ZAt(back.m_uTo), judge.ZAt(side.m_uTo) - judge.ZAt(back.m_uFrom)},
           {toEnd[from], toEnd[to]}});
    }
  }
  const std::vector<CCut>& Cuts() const { return m_aCuts; }
  /// Model units.
  double Length(const CPoint& a, const CPoint& b) const {
    return std::hypot((b[0] - a[0]) * m_afCell[0], (b[1] - a[1]) * m_afCell[1]);
  }
  /// `share` of the way along a cut and `distance` (model units) to its left; nothing where that is out of the
  /// rectangle or beyond another cut.
  std::optional<CPoint> Behind(const CCut& cut, double share, double distance) const {
    const double dx = (cut.m_To[0] - cut.m_From[0]) * m_afCell[0];
    const double dy = (cut.m_To[1] - cut.m_From[1]) * m_afCell[1];
    const double length = std::hypot(dx, dy);
    const CPoint at{cut.m_From[0] + share * (cut.m_To[0] - cut.m_From[0]),
                    cut.m_From[1] + share * (cut.m_To[1] - cut.m_From[1])};
    const auto off = [&](double way) {
      return CPoint{at[0] - way * dy / length / m_afCell[0], at[1] + way * dx / length / m_afCell[1]};
    };
    const CPoint p = off(distance);
    if (p[0] <= 0 || p[1] <= 0 || p[0] >= m_iCells || p[1] >= m_iCells) return std::nullopt;
    const CPoint start = off(1e-7 * length);
    const auto crosses = [&](const CCut& other) { return &other != &cut && Cross(start, p, other.m_From, other.m_To); };
    if (std::ranges::any_of(m_aCuts, crosses)) return std::nullopt;
    return p;
  }

 private:
  static double Turn(const CPoint& a, const CPoint& b, const CPoint& c) {
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
  }
  static bool Cross(const CPoint& a, const CPoint& b, const CPoint& c, const CPoint& d) {
    return Turn(a, b, c) * Turn(a, b, d) <= 0 && Turn(c, d, a) * Turn(c, d, b) <= 0;
  }

  int m_iCells;
  std::array<double, 2> m_afCell;
  std::vector<CCut> m_aCuts;
};
