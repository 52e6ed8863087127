// Whatever a project file holds, it is refused or gives a project that a grid can take over and that is written again.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "base/Console.h"
#include "fuzz/FuzzTarget.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "projects/ProjectFile.h"

namespace {

// Fine lattices only cost time.
constexpr int kFinestLevel = 5;
constexpr int kMostPointsToSolve = 2000;

void Require(bool condition) {
  if (!condition) std::abort();
}

void RequireFiniteSurface(const CGrid& grid) {
  Require(std::ranges::all_of(grid.Surface().Lattice().Heights(), [](double z) { return std::isfinite(z); }));
}

void TakeOver(const CModelState& model) {
  g_iMaxLevel = g_iBaseLevel = 3;
  CGrid grid;
  CRestoration::RestoreState(grid, model);
  RequireFiniteSurface(grid);
  if (grid.Surface().ActivePointCount() <= kMostPointsToSolve) grid.UpdateGrid();
  RequireFiniteSurface(grid);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  const int file = memfd_create("input", 0);
  Require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
  const std::string name = "/proc/self/fd/" + std::to_string(file);
  const CReadProject read = ReadProject(name);
  Require(read.m_Project.has_value() == read.m_Trouble.empty());
  if (read.m_Project.has_value() && read.m_Project->m_Model.m_Document.m_Sketch.m_iMaxLevel <= kFinestLevel) {
    Require(ReadProjectNote(name).has_value());
    TakeOver(read.m_Project->m_Model);
    const std::vector<unsigned char> again = ProjectBytes(*read.m_Project, 0);
    Require(ftruncate(file, 0) == 0 &&
            pwrite(file, again.data(), again.size(), 0) == static_cast<ssize_t>(again.size()));
    Require(ReadProject(name).m_Project.has_value());
  }
  close(file);
  return 0;
}
