#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Where a constraint is, as shares of the sides of the model.
struct CRowPlace {
  double m_fX = 0.0;
  double m_fY = 0.0;
  bool m_bSlope = false;
};

/// Bits of column and row each in `Interleaved`.
inline constexpr unsigned kPlaceBits = 16;

/// Column and row of a place on a lattice of 2^kPlaceBits a side, bit by bit in turn, so that what is close in this
/// order is close by. Places outside the model count as on its border.
std::uint64_t Interleaved(const CRowPlace& place);

/// The smallest rectangle around some places. Around none it is empty, and its distances mean nothing.
class CRowBox {
 public:
  /// Extends the box to a place or to another box.
  void Add(const CRowPlace& place);
  void Add(const CRowBox& box);
  /// Squared distance of a place or of another box, 0 inside.
  double DistanceTo(const CRowPlace& place) const;
  double DistanceTo(const CRowBox& box) const;

 private:
  double m_fX0 = 2.0;
  double m_fX1 = -1.0;
  double m_fY0 = 2.0;
  double m_fY1 = -1.0;
};

/// Finds the places nearest to a box among those up to some rank: a balanced tree that halves the places along the
/// longer side of their box [Bentley1975], searched from its nearest part [HjaltasonSamet1999]. Any number may
/// coincide.
class CRowTree {
 public:
  /// A place that has been found: its squared distance, and its rank.
  struct CFound {
    double m_fDistance = 0.0;
    std::uint32_t m_uRank = 0;
    bool operator==(const CFound& other) const = default;
    /// The nearer one comes first; of two as near, that of the lower rank.
    bool operator<(const CFound& other) const {
      return m_fDistance != other.m_fDistance ? m_fDistance < other.m_fDistance : m_uRank < other.m_uRank;
    }
  };

  /// For places in the order of their ranks, from 0 on; they must outlive the tree.
  explicit CRowTree(std::span<const CRowPlace> places);

  /// The first `count` of all places with a rank below `limit`, by their distance from the box, and by rank where that
  /// is the same; nearest first. Takes about as many steps as there are places found times the logarithm of all.
  void FindNearest(const CRowBox& box, std::uint32_t limit, std::size_t count, std::vector<CFound>& found);

 private:
  /// Some places that follow each other in m_auRanks; the two halves of node k are nodes 2 k + 1 and 2 k + 2.
  struct CNode {
    CRowBox m_Box;
    std::uint32_t m_uFirst = 0;
    std::uint32_t m_uEnd = 0;
    std::uint32_t m_uLowest = 0;  ///< of their ranks
  };
  /// A node, or where it is none a place by itself, that is yet to be looked at.
  struct COpen {
    CFound m_Bound;  ///< not above those of the places in it
    std::uint32_t m_uNode = 0;
    bool operator<(const COpen& other) const { return other.m_Bound < m_Bound; }
  };
  static constexpr std::uint32_t kPlace = ~0U;

  void Build(std::uint32_t node, std::uint32_t first, std::uint32_t end);
  void Open(const CRowBox& box, std::uint32_t limit, std::uint32_t node);
  void OpenPlaces(const CRowBox& box, std::uint32_t limit, const CNode& node);
  void Push(const COpen& open);

  std::span<const CRowPlace> m_aPlaces;
  std::vector<std::uint32_t> m_auRanks;  ///< as the tree has halved them
  std::vector<CNode> m_aNodes;
  std::vector<COpen> m_aOpen;  ///< a heap, nearest first
};
