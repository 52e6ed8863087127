// The grid's operations on files.

#include <algorithm>
#include <fstream>
#include <functional>
#include <string>

#include "base/Console.h"
#include "io/CSafeFile.h"
#include "io/GridFile.h"
#include "io/HeightFieldExport.h"
#include "io/RegularFile.h"
#include "io/VrmlExport.h"
#include "model/CGrid.h"

namespace {

// Has the file written by `write`; `method` is that of CGrid which the console names.
CSaveOutcome WriteFile(const std::string& filename, const char* method,
                       const std::function<void(std::ostream&)>& write) {
  CSafeFile file(filename);
  if (file.IsOpen()) {
    write(file.Text());
    if (file.Commit()) return {};
  }
  Console() << "Error CGrid::" << method << "()\t\tfail to write file " << filename << '\n';
  return {"The file " + filename + " could not be written. If it existed before, it is unchanged."};
}

}  // namespace

std::string TroubleWith(GridFileState state, const std::string& filename) {
  const std::string file = "The file " + filename;
  switch (state) {
    case GridFileState::Damaged:
      return file + " is damaged. What could not be read is missing or zero.";
    case GridFileState::Invalid:
      return file + " is not a valid grid file. A new grid holds the constraints read from it.";
    case GridFileState::OutOfMemory:
      return file + " needs more memory than there is. A new grid holds the constraints read from it.";
    case GridFileState::NoGridFile:
      return file + " is not a grid file. The model stays as it was.";
    case GridFileState::TooLarge:
      return file + " needs more memory than there is, or than its size explains. The model stays as it was.";
    case GridFileState::NotOpened:
      return file + " cannot be opened.";
    case GridFileState::Whole:
      break;
  }
  return {};
}

// They are the last section, and begin with a letter of their own.
bool HoldsLights(const std::string& filename) {
  constexpr std::streamoff kMostLights = 1 << 16;
  if (!IsRegularFile(filename)) return false;
  std::ifstream in(filename, std::ios::binary | std::ios::ate);
  in.seekg(std::max<std::streamoff>(0, in.tellg() - kMostLights));
  for (std::string word; in >> word;) {
    if (word == "I") return true;
  }
  return false;
}

GridFileState CGrid::Load(const std::string& filename) {
  std::ifstream in;
  if (IsRegularFile(filename)) in.open(filename, std::ios::binary);
  Console() << "toto1\n";
  if (!in.is_open()) {
    Console() << "Error opening the file " << filename << '\n';
    return GridFileState::NotOpened;
  }
  const GridFileState state = ReadGrid(in, *this);
  if (!IsReplaced(state)) return state;
  // Whatever had converged was another model.
  m_Solver.ModelChanged();
  m_Run.Host().ShowConstraints(m_Constraints.ActiveCount());
  m_Run.Host().ShowIterations(m_Solver.Counter());
  m_Run.Host().RequestRedraw();
  return state;
}

CSaveOutcome CGrid::Save(const std::string& filename, const std::function<bool()>& withLights) const {
  return WriteFile(filename, "Save", [&](std::ostream& out) {
    WriteGrid(out, *this);
    if (withLights && withLights()) {
      WriteLights(out, *this);
    } else {
      WriteNoLights(out);
    }
  });
}

CSaveOutcome CGrid::SaveVrml(const std::string& filename) const {
  CSaveOutcome outcome = WriteFile(filename, "SaveVrml", [this](std::ostream& out) { WriteVrml(out, *this); });
  if (!outcome) return outcome;
  Console() << "Saved succesfully\n";
  m_Run.Host().RequestRedraw();
  return outcome;
}

CSaveOutcome CGrid::SaveHeightField(const std::string& filename, int width, int height) const {
  return WriteFile(filename, "SaveHeightField",
                   [&](std::ostream& out) { WriteHeightField(out, *this, width, height); });
}
