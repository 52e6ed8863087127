#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "solver/CRowTree.h"

/// Rows that are factorised together, after the rows nearest to them among those of earlier blocks.
struct CRowBlock {
  std::vector<std::uint32_t> m_auRows;  ///< the earlier ones first
  std::size_t m_uEarlier = 0;           ///< how many of them are earlier ones

  /// How many belong to the block itself.
  std::size_t OwnCount() const { return m_auRows.size() - m_uEarlier; }
};

/// Of how many rows blocks are made.
struct CRowBlockSizes {
  std::size_t m_uFirst;    ///< rows of the first block
  std::size_t m_uOwn;      ///< of every other one
  std::size_t m_uEarlier;  ///< earlier rows that are taken along
};

/// Blocks of neighbours, every row in one of them. They go from coarse to fine: the first rows lie one in a quarter of
/// the model, then one in a sixteenth, and so on, so that what is near among the earlier ones is so on all scales. All
/// heights come before the slopes. Of order M log M times the number of earlier rows of a block.
std::vector<CRowBlock> ChooseRowBlocks(std::span<const CRowPlace> places, const CRowBlockSizes& sizes);
