#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "insight/CFreedom.h"
#include "lattice/CLattice.h"

class CGrid;

/// A region of the surface whose heights nothing settles, as users read of it.
struct CFloatingRegion {
  std::uint32_t m_uPiece = 0;  ///< of the pieces of the freedom that it was found in
  std::size_t m_uFree = 0;     ///< free directions of its plane: 1, 2 or 3
  std::size_t m_uPoints = 0;   ///< points in use
  CExtent m_Box;               ///< around them, model units
  std::string m_Missing;       ///< "needs 1 height", "can tilt about the line from (30, 50) to (70, 50)"
};

/// What can move in the system as it was built last. Linear in the number of points, rows and curve terms.
CFreedom FreedomOf(const CGrid& grid);

/// The regions that float, in the order of their pieces.
std::vector<CFloatingRegion> FloatingRegions(const CFreedom& freedom);
