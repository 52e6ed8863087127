#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CCutTriangulation.h"
#include "mesh/CMeshPlane.h"

class CTearCutter;
class CTearPatch;
class CTearSides;

/// A cut patch with its heights: each corner of a triangle is a copy of its vertex, each copy has a height.
class CTornSurface {
 public:
  using CCorners = std::array<std::uint32_t, 3>;

  /// A cut side with the surface to its left and to its right as one looks from `m_uFrom` to `m_uTo` (vertices): the
  /// copies at both ends on either side.
  struct CCutSide {
    std::uint32_t m_uLeft = 0;   ///< triangle
    std::uint32_t m_uRight = 0;  ///< triangle
    std::uint32_t m_uFrom = 0;
    std::uint32_t m_uTo = 0;
    std::array<std::uint32_t, 2> m_auLeft{};   ///< copies at the beginning and at the end
    std::array<std::uint32_t, 2> m_auRight{};  ///< copies at the beginning and at the end
  };

  /// A corner that has been moved.
  struct CMoved {
    CMeshPlace m_Place;
    float m_fFoot = 0.0F;  ///< where its slanted edge begins, as written: the higher one of its two neighbours
  };

  /// `heights` by copy. `scale` is what heights are multiplied by when they are written as floats.
  CTornSurface(CTearPatch& patch, const CTearSides& sides, std::vector<double> heights, double scale);

  /// Splits cut sides at the places where the two heights change places, so that neither surface crosses the other
  /// between two vertices. False, and not all, where `steps` do not go on.
  bool SplitAtChanges(CTearCutter& cutter, const CExportSteps& steps = {});
  /// Moves the corners of the higher surfaces in, by a thousandth of a cell, where two of them meet in a vertex across
  /// two lower ones: four walls would share their edge. What is outside of the rectangle is lower than all; a corner
  /// beside it stays on the border. Before `Walls`, after all splits.
  void OpenEdges();
  /// Copies that have been moved, with the height at which the slanted edges below them leave their vertex.
  const std::map<std::uint32_t, CMoved>& Moved() const { return m_Moved; }
  /// The vertical strips between the two edges of each cut, three copies per triangle, facing as the surface does: a
  /// side of the surface and that of its strip run in opposite directions. Nothing where both heights are the same when
  /// written; vertical edges are split at all heights that their vertex has. Not all where `steps` do not go on.
  std::vector<std::uint32_t> Walls(const CExportSteps& steps = {}) const;

  /// Copies by triangle, and vertices and heights by copy.
  std::span<const CCorners> Corners() const { return m_aCorners; }
  std::span<const std::uint32_t> Vertices() const { return m_auVertices; }
  std::span<const double> Heights() const { return m_afHeights; }
  /// Where a copy lies, which is where its vertex does but for corners that have been moved.
  CMeshPlace PlaceOf(std::uint32_t copy) const;
  float Written(std::uint32_t copy) const { return static_cast<float>(m_fScale * m_afHeights[copy]); }
  /// Cut sides inside the patch, each once.
  std::vector<CCutSide> CutSides() const;

 private:
  bool SplitAtChange(const CCutSide& side, CTearCutter& cutter);
  void TakeParts(const CCutSide& side, std::uint32_t vertex, double z, std::size_t before);
  using CCopies = std::vector<std::uint32_t>;
  bool Has(const CCopies& copies, const CCutTriangulation::CCorner& corner) const {
    return std::ranges::find(copies, m_aCorners[corner.m_uTriangle][corner.m_uPlace]) != copies.end();
  }
  std::vector<CCopies> CornersIn(std::span<const CCutTriangulation::CCorner> ring, bool onBorder) const;
  void OpenEdge(std::span<const CCutTriangulation::CCorner> ring, bool onBorder);
  bool MoveIn(const CCopies& copies, std::span<const CCutTriangulation::CCorner> ring, CMeshPlace& place) const;
  std::array<double, 2> InwardsFrom(const CCopies& copies, std::span<const CCutTriangulation::CCorner> ring) const;
  std::optional<CMeshPlace> BorderBeside(const CCutTriangulation::CCorner& corner, std::uint32_t side) const;
  bool IsInChain(std::uint32_t copy, std::uint32_t low, std::uint32_t high) const;
  std::vector<std::uint32_t> Chain(std::uint32_t low, std::uint32_t high, std::span<const std::uint32_t> others) const;

  CTearPatch& m_Patch;
  std::vector<CCorners> m_aCorners;         ///< by triangle
  std::vector<std::uint32_t> m_auVertices;  ///< by copy
  std::vector<double> m_afHeights;          ///< by copy
  double m_fScale;
  std::map<std::uint32_t, CMoved> m_Moved;  ///< by copy
};
