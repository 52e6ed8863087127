#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lattice/CLattice.h"

class CEdge;
class CGrid;
struct CLeaf;

/// The surface as vertex arrays: what drawing needs of it, made anew only where the model has changed.
///
/// Vertices are the corners of the active leaves, then the centres of the leaves, three floats each: x, y, z in model
/// units. Each `Refresh...` brings its arrays up to date and costs nothing where they are. Linear in the number of
/// leaves; memory is asked for only when the subdivision has changed, by the segments also when they grow.
class CSurfaceArrays {
 public:
  void RefreshSurface(CGrid& grid);
  /// The surface, too.
  void RefreshNormals(CGrid& grid);
  /// The surface, too.
  void RefreshLines(CGrid& grid);
  /// Segments `length` model units long. The surface and the normals, too.
  void RefreshPointNormals(CGrid& grid, double length);
  void RefreshCellNormals(CGrid& grid, double length);

  std::span<const float> Positions() const { return m_afPositions; }
  /// One unit vector per vertex: the point normals at the corners, the cell normals at the centres; not a number where
  /// all of a leaf lies in a discontinuity.
  std::span<const float> Normals() const { return m_afNormals; }
  /// Three vertices per triangle, counter-clockwise as seen from +z: the four triangles of each leaf outside
  /// discontinuities, those on a side that a finer neighbour splits cut at its points, so that no gap opens there.
  std::span<const std::uint32_t> Triangles() const { return m_auTriangles; }
  /// Two vertices per line: the sides of the leaves 2^level lattice steps long, each once, without those inside a
  /// discontinuity.
  std::span<const std::uint32_t> Lines(int level) const { return m_aauLines[static_cast<std::size_t>(level)]; }
  /// Six floats per segment: its ends.
  std::span<const float> PointNormals() const { return m_afPointNormals; }
  std::span<const float> CellNormals() const { return m_afCellNormals; }

 private:
  static constexpr std::size_t kLevels = CLattice::kMaxLevel + 1;

  /// The state of the model that some arrays show.
  struct CStamp {
    std::uint64_t m_uTree = 0;
    std::uint64_t m_uSurface = 0;
    double m_fLength = 0.0;
    bool operator==(const CStamp&) const = default;
  };
  /// Whether `seen` was another state; it is this one afterwards.
  static bool HasChanged(CStamp& seen, const CGrid& grid, double length = 0.0);

  void NumberCorners(CGrid& grid);
  void ListTriangles(CGrid& grid);
  void AddTriangles(const CLeaf& leaf, std::uint32_t centre, const CLattice& lattice);
  void AddSide(const CEdge& edge, bool backwards, std::uint32_t centre, const CLattice& lattice);
  void AddLines(const CEdge& edge, int level, const CLattice& lattice);
  void PlaceVertices(CGrid& grid);
  void RaiseVertices(CGrid& grid);
  void FillSegments(std::size_t first, std::size_t end, double length, std::vector<float>& segments) const;
  std::size_t CornerCount() const { return m_auPoints.size(); }
  std::size_t VertexCount() const { return m_afPositions.size() / 3; }

  CStamp m_Surface;
  CStamp m_Normals;
  CStamp m_Lines;
  CStamp m_PointNormals;
  CStamp m_CellNormals;
  CExtent m_Extent;

  std::vector<std::uint32_t> m_auPoints;    ///< lattice index by corner vertex
  std::vector<std::uint32_t> m_auVertexOf;  ///< corner vertex by lattice index
  std::vector<float> m_afPositions;
  std::vector<float> m_afNormals;
  std::vector<std::uint32_t> m_auTriangles;
  std::array<std::vector<std::uint32_t>, kLevels> m_aauLines;
  std::vector<float> m_afPointNormals;
  std::vector<float> m_afCellNormals;
};
