// The commands about the photograph.

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "codecs/PictureFormats.h"
#include "editing/CCommandPause.h"
#include "editing/CSolverControl.h"
#include "editing/GridCommands.h"
#include "model/CGrid.h"

namespace {

constexpr double kShorterSide = 100.0;
// Of the longer side; what has been typed into a dialog is about as near as that.
constexpr double kSameProportions = 0.01;

// In model units.
CExtent ExtentOf(const CTextureImages& picture) {
  const double width = picture.PictureWidth();
  const double height = picture.PictureHeight();
  const double shorter = std::min(width, height);
  return {0.0, kShorterSide * width / shorter, 0.0, kShorterSide * height / shorter};
}

// With a name, as choosers want it; they do not care about capitals.
std::string AllPictures() {
  std::string suffixes;
  for (const CPictureFormat& format : PictureFormats()) {
    for (const char* suffix : format.m_apSuffixes) suffixes += std::string(suffixes.empty() ? "" : ",") + (suffix + 1);
  }
  return "Pictures (*.{" + suffixes + "})";
}

}  // namespace

void CGridCommands::LoadImage(const std::string& named) {
  const CCommandPause pause(m_Solver);
  std::optional<std::string> file = named;
  if (named.empty()) {
    const std::string pattern = std::string("*") + PictureFormats().front().m_apSuffixes.front();
    file = m_Host.ChooseFile({.m_pTitle = "please input image file name",
                              .m_pPattern = pattern.c_str(),
                              .m_Kind = "picture",
                              .m_OtherPattern = AllPictures()});
  }
  if (!file.has_value()) return;
  m_Host.EndDrags();
  if (m_Host.LoadPicture(*file)) m_Files.PictureOpened(*file);
}

bool CGridCommands::CanFitPicture() const {
  if (m_pGrid == nullptr || !m_pGrid->Relighting().Textures().HasPicture()) return false;
  const CConstraints& constraints = m_pGrid->Constraints();
  return constraints.Points().empty() && constraints.Curves().empty() && constraints.PendingCurve().IsIdle();
}

bool CGridCommands::OffersFit() const {
  if (!CanFitPicture()) return false;
  const CExtent& present = m_pGrid->Surface().Lattice().Extent();
  const CExtent fitting = ExtentOf(m_pGrid->Relighting().Textures());
  const double ratio = (present.x1 - present.x0) / (present.y1 - present.y0) * fitting.y1 / fitting.x1;
  return std::abs(ratio - 1.0) > kSameProportions;
}

void CGridCommands::FitPicture() {
  if (!CanFitPicture()) return;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  CGridParameters parameters;
  parameters.m_iStartLevel = m_pGrid->Wanted().BaseLevel();
  parameters.m_Extent = ExtentOf(m_pGrid->Relighting().Textures());
  StartOver(Edit::FitPicture, parameters);
}
