#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"
#include "constraints/CPtCstrList.h"
#include "solver/CCompressedRows.h"

class CInterpolation;
class CPointOrder;
class CQuadTree;
struct CStencil;

/// The linear constraints C z = d on the unknowns that point constraints make: one row for a height, two for a normal.
///
/// Every row and its right-hand side are multiplied by the constraint weight. A disabled constraint makes no row, nor
/// one whose place, or one of whose four probes, lies outside the model.
class CConstraintRows {
 public:
  static constexpr double kWeight = 10.0;

  /// No rows are left; the memory is kept.
  void Clear();
  /// Adds the rows of all heights in the lists, in order, then those of all normals: first the slope in y, then in x,
  /// each the difference of two probes half a cell away on either side, the cell being the leaf that holds the point.
  void Add(std::span<const CPtCstrList* const> lists, const CQuadTree& tree, const CInterpolation& surface);

  /// The kinds (PtCstrKind) of one constraint that `Add` makes rows for.
  static std::uint32_t KindsWithRows(const CPtCstr& constraint, const CQuadTree& tree, const CInterpolation& surface);

  /// The slopes dz/dx and dz/dy that the surface has in the rows of a normal; nothing where `Add` makes none.
  static std::optional<CPlanePoint> SlopesUnder(const CPtCstr& constraint, const CQuadTree& tree,
                                                const CInterpolation& surface);

  /// The kinds with rows of every constraint added so far, in the order of the lists.
  std::span<const std::uint32_t> BuiltKinds() const { return m_auBuiltKinds; }
  std::size_t Count() const { return m_afTargets.size(); }
  /// One row per constraint, one column per scan position (see CPointOrder).
  const CCompressedRows& Rows() const { return m_Rows; }
  /// Right-hand sides d.
  std::span<const double> Targets() const { return m_afTargets; }
  /// Whether row `j` asks for a slope and not for a height.
  bool IsSlope(std::size_t j) const { return m_afSpans[j] > 0.0; }
  /// Over how many model units row `j` takes its slope, the side of the cell; 0 for a height.
  double Span(std::size_t j) const { return m_afSpans[j]; }
  /// Other right-hand sides for the same rows, one each.
  void SetTargets(std::span<const double> targets) { m_afTargets.assign(targets.begin(), targets.end()); }

 private:
  /// Whether rows were made.
  bool AddPosition(const CPtCstr& constraint, const CInterpolation& surface);
  bool AddNormal(const CPtCstr& constraint, const CQuadTree& tree, const CInterpolation& surface);
  void AppendStencil(const CStencil& stencil, double factor, const CPointOrder& order);
  void EndRow(double target, double span);

  CCompressedRows m_Rows;
  std::vector<double> m_afTargets;
  std::vector<double> m_afSpans;
  std::vector<std::uint32_t> m_auBuiltKinds;
};
