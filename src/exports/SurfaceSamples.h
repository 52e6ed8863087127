#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/ExportProgress.h"
#include "base/Vector3.h"
#include "exports/CFileMesh.h"

/// A regular grid of places over the whole rectangle, its border included: column 0 lies on the left side, the last one
/// on the right, row 0 on the lower one.
struct CSampleGrid {
  static constexpr int kFewest = 2;
  static constexpr int kMost = 8192;

  int m_iWidth = kFewest;
  int m_iHeight = kFewest;
  bool operator==(const CSampleGrid&) const = default;
};

/// Some rows of such a grid, one after the other.
struct CSampleRows {
  int m_iFirst = 0;
  std::optional<int> m_Count;  ///< all up to the last one where there is no number
};

/// A surface at the places of such a grid, row by row.
struct CSurfaceSamples {
  CSampleGrid m_Grid;                                   ///< of as many rows as there are here
  std::vector<float> m_afHeights;                       ///< in the unit of the mesh
  std::vector<std::array<std::uint8_t, 3>> m_aNormals;  ///< see SampleNormals; empty without
};

/// The heights of a surface, whose triangles cover the rectangle once and have no walls. Where a place lies exactly on
/// a tear it belongs to the higher side. Linear in triangles and samples. Not whole where it has been cancelled. Throws
/// std::bad_alloc, also where the system has not got the memory.
CSurfaceSamples SampleHeights(const CFileMesh& mesh, const CSampleGrid& grid, const CExportSteps& steps = {},
                              const CSampleRows& rows = {});

/// The same with normals, blended between those of the vertices: x, y and z as bytes from 0 for -1 to 255 for 1, 128
/// for 0. `down` turns the sign of y.
CSurfaceSamples SampleNormals(const CFileMesh& mesh, const CSampleGrid& grid, bool down, const CExportSteps& steps = {},
                              const CSampleRows& rows = {});

/// Unit normals of the same kind at the centres of some pixels of a picture that is stretched over the rectangle.
/// Pixels are row * width + column, row 0 at the bottom, in rising order. Throws std::bad_alloc.
std::vector<Vector3> NormalsAtPixels(const CFileMesh& mesh, int width, int height, std::span<const std::size_t> pixels);
