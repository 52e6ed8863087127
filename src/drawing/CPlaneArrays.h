#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lattice/CLattice.h"

class CEdge;
class CGrid;

/// The subdivision and the freeze map as vertex arrays in the plane: two floats per vertex, in lattice coordinates, so
/// that they outlive a change of the extent.
///
/// Each `Refresh...` brings its arrays up to date, linear in the number of lattice points, and costs nothing where they
/// are.
class CPlaneArrays {
 public:
  /// The lines and the gaps.
  void RefreshSubdivision(const CGrid& grid);
  void RefreshFrozen(const CGrid& grid);

  /// Two vertices per line: the sides of the leaves where they are 2^level lattice steps long, without those inside a
  /// discontinuity. Sides in a row make one line.
  std::span<const float> Lines(int level) const { return m_aafLines[static_cast<std::size_t>(level)]; }
  /// The same for the sides inside a discontinuity, of any length.
  std::span<const float> LinesInside() const { return m_afInside; }
  /// Three vertices per triangle that lies in a discontinuity.
  std::span<const float> Gaps() const { return m_afGaps; }
  /// One vertex per frozen point in use.
  std::span<const float> Frozen() const { return m_afFrozen; }

 private:
  void Enter(const CEdge& edge);
  void JoinSteps(std::span<const std::uint8_t> steps, int line, bool horizontal);

  int m_iSide = 0;
  std::uint64_t m_uTree = 0;
  std::array<std::vector<float>, CLattice::kMaxLevel + 1> m_aafLines;
  std::vector<float> m_afInside;
  std::vector<float> m_afGaps;
  std::uint64_t m_uFrozenTree = 0;
  std::uint64_t m_uFrozenRevision = 0;
  std::vector<float> m_afFrozen;
  // What lies on the lattice step that starts at a point, row by row and column by column: 0 or 1 + the level of the
  // edge, and a bit for inside.
  std::vector<std::uint8_t> m_auHorizontal;
  std::vector<std::uint8_t> m_auVertical;
};
