#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CFarSides.h"

class CTearPatch;
class CTearSides;

/// The triangles beside the cuts of a patch once more, as what lies beneath them is made of: no side is longer than
/// one and a half cells, none next to a cut longer than half of the strips' width or a sixteenth of a cell, and a cut
/// side is split where its surfaces change places.
///
/// Its first vertices are the copies of the patch, under their numbers.
class CStripMesh {
 public:
  using CCorners = std::array<std::uint32_t, 3>;

  /// A vertex, in a triangle of the patch.
  struct CVertex {
    CCellPoint m_Place;                  ///< lattice coordinates
    CCorners m_auCopies{};               ///< between these copies of the patch, ...
    std::array<double, 3> m_afShares{};  ///< ... which count that much; their sum is 1
  };

  /// Width and lengths of a cell along both axes in model units. Linear in the patch and in the number of cells that it
  /// covers. Not whole where `steps` do not go on.
  CStripMesh(const CTearPatch& patch, const CTearSides& sides, std::span<const CFarSide> cuts, double width,
             const std::array<double, 2>& cell, const CExportSteps& steps = {});

  /// Vertices, and three of them per triangle, counter-clockwise.
  const CVertex& Vertex(std::uint32_t v) const { return m_aVertices[v]; }
  std::size_t VertexCount() const { return m_aVertices.size(); }
  std::span<const CCorners> Triangles() const { return m_aTriangles; }
  /// The vertex at which a cut side is split, by its ends; kNone for none.
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  std::uint32_t SplitOf(std::uint32_t a, std::uint32_t b) const;
  /// The triangles around a vertex.
  std::span<const std::uint32_t> Around(std::uint32_t v) const {
    return std::span(m_auAround).subspan(m_auFirst[v], m_auFirst[v + 1] - m_auFirst[v]);
  }

  /// Adds a vertex `share` of the way from one corner of a triangle to another, once; its number. It belongs to no
  /// triangle. `RimOf` finds it again by the two; kNone for none.
  std::uint32_t AddRim(std::uint32_t a, std::uint32_t b, double share);
  std::uint32_t RimOf(std::uint32_t a, std::uint32_t b) const { return SplitOf(a, b); }

 private:
  std::uint32_t AddBetween(std::uint32_t a, std::uint32_t b, double share);
  static std::uint64_t KeyOf(std::uint32_t a, std::uint32_t b);
  void AddCopies(const CTearPatch& patch, const CTearSides& sides);
  void MarkNear(const CTearPatch& patch, const CTearSides& sides, std::span<const CFarSide> cuts);
  bool SplitLong(const CTearPatch& patch, const CTearSides& sides, const CExportSteps& steps);
  void AddSplit(const CCorners& whole);
  double LengthOf(std::uint32_t a, std::uint32_t b) const;
  std::size_t LongestToSplit(const CCorners& corners) const;
  bool IsLong(std::uint32_t a, std::uint32_t b) const;
  std::uint32_t SplitToMake(std::uint32_t a, std::uint32_t b);
  void FindAround();

  double m_fWidth;
  std::array<double, 2> m_afCell;
  std::vector<CVertex> m_aVertices;
  std::vector<bool> m_abNear;  ///< by vertex: next to a cut
  std::vector<CCorners> m_aTriangles;
  std::unordered_map<std::uint64_t, std::uint32_t> m_Splits;  ///< vertices by the two that they are between
  std::vector<std::uint32_t> m_auFirst;                       ///< by vertex, of its triangles in m_auAround
  std::vector<std::uint32_t> m_auAround;
};
