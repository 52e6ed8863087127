#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/CSideHeights.h"
#include "mesh/SidePlanes.h"

class CTearPatch;
class CTearSides;

namespace SideFacing {
/// The outer sides of a square's triangles, in their order.
enum Index : std::size_t { kDown, kRight, kUp, kLeft, kCount };
}  // namespace SideFacing

/// The leaves of a patch one step wide that no cut and no other leaf has changed, as squares of the lattice.
class CSideSquares {
 public:
  static constexpr std::uint32_t kNone = CSideHeights::kNone;
  static constexpr std::size_t kLanes = 4;
  using CLanes = std::array<double, kLanes>;

  /// Four planes: where their middles are, lattice coordinates, their heights there, and what they grow by per cell.
  struct alignas(32) CBlock {
    CLanes m_afX{};
    CLanes m_afY{};
    CLanes m_afZ{};
    CLanes m_afSlopeX{};
    CLanes m_afSlopeY{};
  };
  /// Weights of planes, and their heights times these, four at a time, which the processor takes together.
  struct CLaneSums {
    /// Of the planes at a point, lattice coordinates.
    void Add(const CBlock& block, const CSidePoint& point) {
      for (std::size_t k = 0; k < kLanes; ++k) {
        const double dx = point.x - block.m_afX[k];
        const double dy = point.y - block.m_afY[k];
        const double weight = SideWeightAt(dx, dy);
        m_afWeights[k] += weight;
        m_afSums[k] += weight * (block.m_afZ[k] + block.m_afSlopeX[k] * dx + block.m_afSlopeY[k] * dy);
      }
    }
    /// Of all that has been added.
    double Weights() const { return SumOf(m_afWeights); }
    double Heights() const { return SumOf(m_afSums); }

   private:
    static double SumOf(const CLanes& lanes) { return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]); }

    CLanes m_afWeights{};
    CLanes m_afSums{};
  };
  /// The planes are those of its triangles, by SideFacing.
  struct CSquare {
    CBlock m_Planes;
    CSideHeights::CRange m_Range;  ///< of its heights
    std::uint32_t m_uFirst = 0;    ///< of its triangles
    int m_iColumn = 0;
    int m_iRow = 0;
  };

  /// None.
  CSideSquares() = default;
  /// All of a patch. `heights`, by copy, are those of the mesh where the sides know them.
  CSideSquares(const CTearPatch& patch, const CTearSides& sides, std::span<const double> heights);

  /// The squares, and the number of that in a cell of the lattice; kNone where there is none.
  std::span<const CSquare> All() const { return m_aSquares; }
  const CSquare& operator[](std::uint32_t number) const { return m_aSquares[number]; }
  std::uint32_t At(int column, int row) const {
    const auto x = static_cast<std::size_t>(column);
    const auto y = static_cast<std::size_t>(row);
    const std::uint32_t tile = m_auTileAt[y / kTile * m_uTiles + x / kTile];
    return tile == kNone ? kNone : m_aTiles[tile][y % kTile * kTile + x % kTile];
  }

 private:
  static constexpr std::size_t kTile = 8;  ///< cells of a side: squares are few, and lie together

  void Put(std::uint32_t number);

  std::vector<CSquare> m_aSquares;
  std::size_t m_uTiles = 0;               ///< of a side
  std::vector<std::uint32_t> m_auTileAt;  ///< where the squares of so many cells by as many are; kNone where none is
  std::vector<std::array<std::uint32_t, kTile * kTile>> m_aTiles;  ///< squares by cell; kNone for none
};
