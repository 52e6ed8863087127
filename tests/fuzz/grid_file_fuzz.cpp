// Whatever a grid file holds, the grid is usable afterwards, and what it saves then is a whole file.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <sstream>
#include <string>

#include "base/Console.h"
#include "fuzz/FuzzTarget.h"
#include "io/GridFile.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// Fine lattices only cost time.
constexpr int kFinestLevel = 5;
constexpr int kMostPointsToSolve = 2000;

bool IsTooFine(const std::string& text) {
  const std::size_t levels = text.find('L');
  if (levels == std::string::npos) return text.find('Q') != std::string::npos && text.size() > 4000;
  std::istringstream in(text.substr(levels + 1));
  int base = 0;
  int max = 0;
  return !(in >> base >> max) || max > kFinestLevel;
}

void Require(bool condition) {
  if (!condition) std::abort();
}

void RequireFiniteSurface(const CGrid& grid) {
  Require(std::ranges::all_of(grid.Surface().Lattice().Heights(), [](double z) { return std::isfinite(z); }));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (IsTooFine(text)) return 0;
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  g_iMaxLevel = g_iBaseLevel = 3;
  CGrid grid;
  std::istringstream in(text);
  ReadGrid(in, grid);
  RequireFiniteSurface(grid);
  if (grid.Surface().ActivePointCount() <= kMostPointsToSolve) grid.UpdateGrid();
  RequireFiniteSurface(grid);
  std::stringstream saved;
  WriteGrid(saved, grid);
  WriteLights(saved, grid);
  Require(ReadGrid(saved, grid) == GridFileState::Whole);
  return 0;
}
