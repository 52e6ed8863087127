#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CSideHeights.h"
#include "mesh/CSideSquares.h"
#include "mesh/SidePlanes.h"

class CTearPatch;
class CTearSides;

/// The heights of one surface beside the cuts of a patch, as CSideHeights has them.
///
/// What CSideSearch does triangle by triangle from each copy is done here for many at once. All points of a cell see
/// the same squares, but for the outer triangles of the outermost, and which of them belong to the side is found out
/// once per cell by spreading in a word of bits. Only the triangles between the squares are looked at one by one. The
/// few copies that this does not do for are left to CSideSearch.
class CSideRaiser {
 public:
  /// `sides` must have been found in `patch` as it is; both must outlive it.
  CSideRaiser(const CTearPatch& patch, const CTearSides& sides);

  /// By copy, once; `meshHeights` gives the height of a vertex of the mesh. Not all where `steps` do not go on.
  std::vector<double> Raise(const std::function<double(std::uint32_t)>& meshHeights, const CExportSteps& steps);

 private:
  using CRange = CSideHeights::CRange;
  static constexpr std::uint32_t kNone = CSideHeights::kNone;
  static constexpr std::uint32_t kSquare = 0x80000000;  ///< of a square, where it may be that of a piece
  static constexpr std::size_t kLanes = CSideSquares::kLanes;
  using CBlock = CSideSquares::CBlock;
  using CSquare = CSideSquares::CSquare;

  // A triangle of no square.
  struct alignas(32) CPiece {
    std::array<std::uint32_t, 3> m_auBeyond{};  ///< pieces or squares that it leads on to; kNone for none
    std::array<float, 2> m_afLeast{};           ///< corners of the rectangle around it
    std::array<float, 2> m_afMost{};
    std::uint32_t m_uSeen = 0;  ///< the last search that has seen it
  };
  struct CRaised {
    CSidePoint m_Middle;
    double m_fZ = 0.0;  ///< of the plane at its middle
    double m_fSlopeX = 0.0;
    double m_fSlopeY = 0.0;
    CRange m_Range;          ///< of the heights that it has or its plane goes through
    bool m_bCounts = false;  ///< gives a plane
  };
  // Planes one behind the other.
  class CPlanes {
   public:
    void Clear() { m_uCount = 0; }
    void Add(double x, double y, double z, double slopeX, double slopeY) {
      if (m_uCount % kLanes == 0) Begin();
      CBlock& block = m_aBlocks[m_uCount / kLanes];
      const std::size_t lane = m_uCount++ % kLanes;
      block.m_afX[lane] = x;
      block.m_afY[lane] = y;
      block.m_afZ[lane] = z;
      block.m_afSlopeX[lane] = slopeX;
      block.m_afSlopeY[lane] = slopeY;
    }
    std::span<const CBlock> Blocks() const { return std::span(m_aBlocks).first((m_uCount + kLanes - 1) / kLanes); }

   private:
    void Begin();

    std::vector<CBlock> m_aBlocks;
    std::size_t m_uCount = 0;
  };
  // The cells that come near enough to a point: from the first to the last column and row.
  struct CWindow {
    std::array<int, 2> m_aiFirst{};
    std::array<int, 2> m_aiLast{};
    bool operator==(const CWindow&) const = default;
  };
  // The same as coordinates, and those of the sides of its outermost cells towards its middle.
  struct CBounds {
    std::array<float, 2> m_afLeast{};
    std::array<float, 2> m_afMost{};
    std::array<float, 2> m_afInnerLeast{};
    std::array<float, 2> m_afInnerMost{};
  };
  // The square around a point that is near.
  struct CReach {
    CSidePoint m_Point;
    std::array<float, 2> m_afLeast{};
    std::array<float, 2> m_afMost{};
  };
  // On either side of the line on which a cut ends.
  struct CSum {
    std::array<double, 2> m_afWeights{};
    std::array<double, 2> m_afSums{};
  };

  bool Prepare(const CExportSteps& steps);
  void FindSquares();
  void MakePieces();
  CRaised RaisedOf(std::uint32_t t) const;
  double HeightAtCorner(std::uint32_t t, std::uint32_t k) const;
  void ListStarts();
  void RaiseLeaf(std::uint32_t first);
  void SearchRest(const CExportSteps& steps);

  CReach ReachAt(std::uint32_t copy) const;
  static CWindow WindowOf(const CReach& reach);
  void SpreadFrom(std::uint32_t start);
  void FindWindow();
  std::uint64_t BitOf(const CSquare& square) const;
  void EnterFrom(std::uint64_t squares);
  std::uint64_t OutermostBits(std::size_t hand) const;
  void SeePiece(std::uint32_t piece);
  // To all points that have the window, as they see into its outermost cells; to none of them.
  bool IsAlwaysNear(const CPiece& piece) const {
    const auto& [least, most, inner, outer] = m_Bounds;
    return piece.m_afMost[0] >= inner[0] && piece.m_afLeast[0] <= outer[0] && piece.m_afMost[1] >= inner[1] &&
           piece.m_afLeast[1] <= outer[1];
  }
  bool IsNeverNear(const CPiece& piece) const {
    const auto& [least, most, inner, outer] = m_Bounds;
    return piece.m_afMost[0] <= least[0] || piece.m_afLeast[0] >= most[0] || piece.m_afMost[1] <= least[1] ||
           piece.m_afLeast[1] >= most[1];
  }
  static bool IsNear(const CPiece& piece, const CReach& reach) {
    return piece.m_afLeast[0] < reach.m_afMost[0] && piece.m_afMost[0] > reach.m_afLeast[0] &&
           piece.m_afLeast[1] < reach.m_afMost[1] && piece.m_afMost[1] > reach.m_afLeast[1];
  }
  void TakeSquares();
  std::optional<double> HeightAt(std::uint32_t copy, const CReach& reach);
  bool EnterDoors(const CReach& reach);
  std::array<bool, 4> OuterNear(const CReach& reach) const;
  CSum SumOfOneSide(const CReach& reach) const;
  CSum SumOfTwoSides(const CReach& reach, std::uint32_t before) const;

  const CTearPatch& m_Patch;
  const CTearSides& m_Sides;
  int m_iCells;                     ///< of a side
  std::vector<double> m_afHeights;  ///< by copy
  CSideSquares m_Squares;
  std::vector<CPiece> m_aPieces;
  std::vector<CRaised> m_aRaised;             ///< by piece
  std::vector<std::uint32_t> m_auTriangles;   ///< by piece
  std::vector<std::uint32_t> m_auPlaceOf;     ///< piece or square by triangle
  std::vector<std::uint8_t> m_abProvided;     ///< by piece of the surface: has a plane
  std::vector<std::uint32_t> m_auBefore;      ///< by vertex: VerticesBeforeEnds
  std::vector<std::uint32_t> m_auFirstStart;  ///< by first origin of a leaf: a copy that begins there; kNone for none
  std::vector<std::uint32_t> m_auNextStart;   ///< by copy: the next one of the leaf
  std::vector<std::uint32_t> m_auRest;        ///< copies that are left to the search

  // What all points of the window in hand see.
  std::uint32_t m_uSearch = 0;
  std::uint32_t m_uBase = 0;  ///< the search that has found it
  CWindow m_Window;
  CBounds m_Bounds;
  std::uint64_t m_uSquares = 0;                ///< those that there are, by bit
  std::uint64_t m_uFound = 0;                  ///< those of the side
  std::array<std::uint32_t, 64> m_auWindow{};  ///< squares by bit
  std::vector<std::uint32_t> m_auQueue;        ///< pieces
  std::vector<std::uint32_t> m_auDoors;        ///< pieces next to it that some of the points see
  std::vector<const CBlock*> m_apWhole;
  CPlanes m_Planes;
  std::array<CPlanes, 4> m_aOuter;  ///< of the outermost squares: towards below, right, above, left
  CRange m_Range;
  std::array<std::optional<double>, 4> m_afCorners;  ///< heights at the outermost corners of the window
  // What the point in hand sees besides.
  std::vector<std::uint32_t> m_auNear;  ///< pieces
};
