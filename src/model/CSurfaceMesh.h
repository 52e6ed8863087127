#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

class CEdge;
class CLattice;
class CQuadTree;
struct CLeaf;

/// The surface as a mesh of triangles, for those who draw it and those who write it to a file.
///
/// Vertices are the corners of the active leaves, numbered as the leaves meet them, then the centres of the leaves.
/// Each leaf is a closed fan of triangles around its centre, to all points on its sides, so that no gap opens beside a
/// finer neighbour. Tearing opens the surface where triangles lie in a tear: these are listed apart.
///
/// What the mesh is made of changes with the subdivision only. Positions are written to the caller's arrays, of
/// float or double, so that another surface on the same subdivision costs no more than its heights. Everything is
/// linear in the number of leaves. A `tree` given to a query must be the one last built from, unchanged since.
class CSurfaceMesh {
 public:
  /// No vertex.
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  /// Three vertices.
  using CTriangle = std::array<std::uint32_t, 3>;

  /// A place in the picture: 0 to 1 from left to right and from bottom to top.
  struct CTexturePoint {
    double u = 0.0;
    double v = 0.0;
  };

  /// Takes up the present subdivision. Its leaves must have been listed.
  void Build(const CQuadTree& tree);

  /// Vertices at the corners of leaves, and those with the centres, which follow them.
  std::size_t CornerCount() const { return m_auPoints.size(); }
  std::size_t VertexCount() const { return CornerCount() + m_uCentres; }
  /// Lattice index of each vertex at a corner.
  std::span<const std::uint32_t> Points() const { return m_auPoints; }
  /// The vertex at a lattice point; kNone where no leaf has a corner.
  std::uint32_t VertexAt(std::size_t point) const { return m_auVertexAt[point]; }

  /// The triangles in no tear, leaf by leaf: three vertices each, counter-clockwise as seen from +z, the centre last.
  std::span<const std::uint32_t> Triangles() const {
    return m_aTriangles.empty() ? std::span<const std::uint32_t>()
                                : std::span(m_aTriangles.front().data(), 3 * m_aTriangles.size());
  }
  /// The same for those who need the mesh no more, with some room behind them: this takes no time.
  std::vector<CTriangle> TakeTriangles() && { return std::move(m_aTriangles); }
  /// Calls `visit(a, b, centre, torn)` for every triangle, torn or not: leaf by leaf, within a leaf counter-clockwise
  /// from its lower left corner.
  template <typename Visit>
  void ForEachTriangle(Visit&& visit) const {
    std::size_t at = 0;
    const auto visitTo = [&](std::size_t end) {
      for (; at < end; ++at) visit(m_aTriangles[at][0], m_aTriangles[at][1], m_aTriangles[at][2], false);
    };
    for (const CTorn& t : m_aTorn) {
      visitTo(t.m_uBefore);
      visit(t.m_uA, t.m_uB, t.m_uCentre, true);
    }
    visitTo(m_aTriangles.size());
  }

  /// Makes room for x, y and z of every vertex, in model units, and sets x and y.
  template <typename Number>
  void Place(const CQuadTree& tree, std::vector<Number>& positions) const;
  /// Sets the z of every vertex of `positions` from the heights of the lattice. Allocates nothing.
  template <typename Number>
  void Raise(const CQuadTree& tree, std::span<Number> positions) const;
  /// The same with other values, by lattice point, in place of the heights.
  template <typename Number>
  void Raise(const CQuadTree& tree, std::span<Number> positions, std::span<const double> values) const;
  /// The height of the vertex at the centre of a leaf, from those of the lattice points.
  static double CentreHeight(const CQuadTree& tree, const CLeaf& leaf, std::span<const double> heights);
  /// What every vertex shows of the picture, which lies over all of the model.
  std::vector<CTexturePoint> TextureCoordinates(const CQuadTree& tree) const;

 private:
  /// One triangle in a tear.
  struct CTorn {
    std::size_t m_uBefore;  ///< length of m_aTriangles where it would come
    std::uint32_t m_uA;
    std::uint32_t m_uB;
    std::uint32_t m_uCentre;
  };

  void NumberCorners(const CQuadTree& tree);
  void AddSide(const CEdge& edge, bool backwards, bool torn, std::uint32_t centre, const CLattice& lattice);
  void AddTriangle(const CTriangle& triangle, bool torn);
  /// Calls `visit(vertex, column, row)` for every vertex, in order; at a centre column and row may be fractions.
  template <typename Visit>
  void ForEachPlace(const CQuadTree& tree, const Visit& visit) const;

  std::vector<std::uint32_t> m_auPoints;    ///< lattice index by corner vertex
  std::vector<std::uint32_t> m_auVertexAt;  ///< corner vertex by lattice index
  std::size_t m_uCentres = 0;
  std::vector<CTriangle> m_aTriangles;
  std::vector<CTorn> m_aTorn;
};
