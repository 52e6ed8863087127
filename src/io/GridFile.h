#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <vector>

#include "model/GridFileState.h"

class CGrid;
struct CLightSet;
struct CSketch;

/// The first sections of a grid file: rectangle, constraints, levels and the wanted subdivision of the current
/// resolution. Locale and number format of `out` are up to the caller, here and below.
void WriteSketch(std::ostream& out, const CSketch& sketch);
/// The solved surface as a value: the points in use, in their order, and the height of each.
struct CSolvedHeights {
  std::vector<std::array<int, 2>> m_aPlaces;  ///< column and row
  std::vector<double> m_afHeights;            ///< model units
  bool operator==(const CSolvedHeights&) const = default;
};
/// That of a grid.
CSolvedHeights SolvedHeights(const CGrid& grid);

/// The model as text: its sketch, heights and point order. Lights or `WriteNoLights` must follow.
void WriteGrid(std::ostream& out, const CGrid& grid);
void WriteGrid(std::ostream& out, const CSketch& sketch, const CSolvedHeights& solved);
/// The last section of the file: both sets of lights, or that there are none.
void WriteLights(std::ostream& out, const CGrid& grid);
void WriteLights(std::ostream& out, const CLightSet& removed, const CLightSet& added);
void WriteNoLights(std::ostream& out);

/// Reads the model back into the grid, whatever the stream's locale, and logs each step. Lights stay as they are unless
/// the text holds them.
///
/// A record with a number that is not finite is left out. Counts are taken as limits: nothing is allocated that the
/// text does not hold, but for the lattice, whose memory is set aside before the present model is given up. Without a
/// usable rectangle at its beginning, without that memory, or where it ends early and its lattice takes more than
/// 64 MiB and more than 16 bytes for each of its own, the grid stays as it is. Heights belong to the points that the
/// text names beside them; where it names none, or not one for each, to the unknowns in their order. Missing heights
/// are 0. Old files without levels and heights are whole. Never answers NotOpened.
GridFileState ReadGrid(std::istream& in, CGrid& grid);

/// What the user is to be told of a grid file that has been read; empty where all is well.
std::string TroubleWith(GridFileState state, const std::string& filename);

/// Whether a whole grid file holds lights. False for what cannot be read.
bool HoldsLights(const std::string& filename);
