// The grid's operations on files.

#include <fstream>
#include <functional>

#include "base/Console.h"
#include "io/CSafeFile.h"
#include "io/GridFile.h"
#include "io/HeightFieldExport.h"
#include "io/RegularFile.h"
#include "io/VrmlExport.h"
#include "model/CGrid.h"

namespace {

// What the user is told behind the name of the file; null where all is well.
const char* TroubleWith(GridFileState state) {
  switch (state) {
    case GridFileState::Damaged:
      return " is damaged. What could not be read is missing or zero.";
    case GridFileState::Invalid:
      return " is not a valid grid file. A new grid holds the constraints read from it.";
    case GridFileState::OutOfMemory:
      return " needs more memory than there is. A new grid holds the constraints read from it.";
    case GridFileState::NoGridFile:
      return " is not a grid file. The model stays as it was.";
    case GridFileState::TooLarge:
      return " needs more memory than there is, or than its size explains. The model stays as it was.";
    case GridFileState::NotOpened:
      return " cannot be opened.";
    case GridFileState::Whole:
      break;
  }
  return nullptr;
}

}  // namespace

void CGrid::Notify(const std::string& text) const {
  if (m_pHost != nullptr) m_pHost->Notice(text.c_str());
}

GridFileState CGrid::Load(const std::string& filename) {
  std::ifstream in;
  if (IsRegularFile(filename)) in.open(filename, std::ios::binary);
  Console() << "toto1\n";
  if (!in.is_open()) {
    Console() << "Error opening the file " << filename << '\n';
    Notify("The file " + filename + TroubleWith(GridFileState::NotOpened));
    return GridFileState::NotOpened;
  }
  const GridFileState state = ReadGrid(in, *this);
  if (IsReplaced(state)) {
    // Whatever had converged was another model.
    m_Solver.ModelChanged();
    if (m_pHost != nullptr) {
      ShowConstraintCount();
      m_pHost->ShowIterations(IterationCounter());
      m_pHost->RequestRedraw();
    }
  }
  if (const char* trouble = TroubleWith(state); trouble != nullptr) Notify("The file " + filename + trouble);
  TellRefusedCurves();
  return state;
}

bool CGrid::WriteFile(const std::string& filename, const char* method,
                      const std::function<void(std::ostream&)>& write) const {
  CSafeFile file(filename);
  if (file.IsOpen()) {
    write(file.Text());
    if (file.Commit()) return true;
  }
  Console() << "Error CGrid::" << method << "()\t\tfail to write file " << filename << '\n';
  Notify("The file " + filename + " could not be written. If it existed before, it is unchanged.");
  return false;
}

bool CGrid::Save(const std::string& filename) const {
  return WriteFile(filename, "Save", [this](std::ostream& out) {
    WriteGrid(out, *this);
    if (m_pHost != nullptr && m_pHost->Ask("Do you want to save lighting information ?")) {
      WriteLights(out, *this);
    } else {
      WriteNoLights(out);
    }
  });
}

bool CGrid::SaveVrml(const std::string& filename) const {
  if (!WriteFile(filename, "SaveVrml", [this](std::ostream& out) { WriteVrml(out, *this); })) return false;
  Console() << "Saved succesfully\n";
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
  return true;
}

bool CGrid::SaveHeightField(const std::string& filename, int width, int height) const {
  return WriteFile(filename, "SaveHeightField",
                   [&](std::ostream& out) { WriteHeightField(out, *this, width, height); });
}
