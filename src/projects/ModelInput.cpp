#include "projects/ModelInput.h"

#include <new>
#include <utility>

#include "io/GridFile.h"
#include "model/CGrid.h"
#include "model/CModelState.h"
#include "model/RefusedCurves.h"
#include "projects/ProjectFile.h"
#include "projects/ProjectPicture.h"

namespace {

void TellOfRefusedCurves(CGrid& grid, CModelInput& input) {
  if (const int refused = grid.CurveEdits().TakeRefused(); refused != 0)
    input.m_asNotices.push_back(RefusedCurvesText(refused));
}

bool ReadProjectInput(CGrid& grid, const std::string& model, bool photograph, CModelInput& input) {
  const CReadProject read = ReadProject(model);
  if (!read.m_Project.has_value()) {
    input.m_asNotices.push_back(read.m_Trouble);
    return false;
  }
  try {
    CRestoration::RestoreState(grid, read.m_Project->m_Model);
  } catch (const std::bad_alloc&) {
    input.m_asNotices.push_back("The file " + model + " needs more memory than there is.");
    return false;
  }
  TellOfRefusedCurves(grid, input);
  const CProjectPicture& picture = read.m_Project->m_Picture;
  input.m_PhotographFile = picture.m_File;
  if (!photograph || picture.m_pBytes == nullptr) return true;
  input.m_Photograph = PixelsOf(picture);
  if (!input.m_Photograph) input.m_asNotices.push_back("The photograph in " + model + " cannot be read.");
  return static_cast<bool>(input.m_Photograph);
}

bool ReadGridInput(CGrid& grid, const std::string& model, CModelInput& input) {
  const GridFileState state = grid.Load(model);
  if (std::string trouble = TroubleWith(state, model); !trouble.empty())
    input.m_asNotices.push_back(std::move(trouble));
  TellOfRefusedCurves(grid, input);
  input.m_bDamaged = state == GridFileState::Damaged;
  return IsRead(state);
}

bool ReadPhotograph(const std::string& image, CModelInput& input) {
  const auto tell = [&](const std::string& text) {
    input.m_asNotices.push_back("The file " + image + ' ' + text + '.');
  };
  input.m_Photograph = ReadPicture(image);
  const CReadPicture& read = input.m_Photograph;
  if (!read || read.m_Picture.m_aPixels.empty()) {
    tell("is not a picture that can be read: " + (read ? std::string("it has no pixels") : read.m_Reason));
    return false;
  }
  if (read.m_bEndsEarly) {
    tell("is shorter than its header says");
  } else if (!read.m_Notice.empty()) {
    tell(read.m_Notice);
  }
  return true;
}

}  // namespace

CModelInput ReadModelInput(CGrid& grid, const std::string& model, const std::string& image) {
  CModelInput input;
  const bool read =
      IsProjectFile(model) ? ReadProjectInput(grid, model, image.empty(), input) : ReadGridInput(grid, model, input);
  input.m_bRead = read && (image.empty() || ReadPhotograph(image, input));
  return input;
}
