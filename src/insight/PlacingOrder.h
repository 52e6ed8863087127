#pragma once

#include <cstdint>
#include <limits>
#include <vector>

class CFreedom;

/// The rank of a piece that is no region.
inline constexpr std::uint32_t kNotPlaced = std::numeric_limits<std::uint32_t>::max();

/// In which order regions are placed, as a rank by piece. Those that are settled have rank 0; where none is, the one
/// with most points has. The others follow in the order of the number of tears between, and with as many of those the
/// larger first. What moves together has one rank, and else no two have the same but 0.
std::vector<std::uint32_t> RanksOfPieces(const CFreedom& freedom);
