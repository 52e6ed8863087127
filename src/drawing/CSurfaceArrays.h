#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lattice/CLattice.h"
#include "model/CSurfaceMesh.h"

class CEdge;
class CGrid;

/// The surface as vertex arrays: what drawing needs of it, remade only where the model has changed.
///
/// Vertices are those of CSurfaceMesh, three floats each: x, y, z in model units. Each `Refresh...` brings its arrays
/// up to date and costs nothing where they are. Linear in the number of leaves; memory is asked for only when the
/// subdivision has changed, by the segments also when they grow.
class CSurfaceArrays {
 public:
  /// Brings vertices and triangles up to the grid's surface.
  void RefreshSurface(const CGrid& grid);
  /// The surface, too.
  void RefreshNormals(const CGrid& grid);
  /// The surface, too.
  void RefreshLines(const CGrid& grid);
  /// Segments `length` model units long. The surface and the normals, too.
  void RefreshPointNormals(const CGrid& grid, double length);
  void RefreshCellNormals(const CGrid& grid, double length);

  /// x, y and z of each vertex, model units: corners of leaves first, then their centres.
  std::span<const float> Positions() const { return m_afPositions; }
  /// One unit vector per vertex: the point normals at the corners, the cell normals at the centres; not a number where
  /// all of a leaf lies in a discontinuity.
  std::span<const float> Normals() const { return m_afNormals; }
  /// Three vertices per triangle, counter-clockwise as seen from +z: the mesh without what lies in a discontinuity.
  std::span<const std::uint32_t> Triangles() const { return m_Mesh.Triangles(); }
  /// The mesh that they are numbered by.
  const CSurfaceMesh& Mesh() const { return m_Mesh; }
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

  void AddLines(const CEdge& edge, int level, const CLattice& lattice);
  void FillSegments(std::size_t first, std::size_t end, double length, std::vector<float>& segments) const;

  CStamp m_Surface;
  CStamp m_Normals;
  CStamp m_Lines;
  CStamp m_PointNormals;
  CStamp m_CellNormals;
  CExtent m_Extent;

  CSurfaceMesh m_Mesh;
  std::vector<float> m_afPositions;
  std::vector<float> m_afNormals;
  std::array<std::vector<std::uint32_t>, kLevels> m_aauLines;
  std::vector<float> m_afPointNormals;
  std::vector<float> m_afCellNormals;
};
