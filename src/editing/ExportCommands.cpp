// The commands that write the surface for other programs.

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "editing/CCommandPause.h"
#include "editing/GridCommands.h"
#include "model/CGrid.h"
#include "projects/ProjectPicture.h"

namespace {

namespace fs = std::filesystem;

// What the user typed, with the suffix of the format where it has none or that of another one.
std::string Suffixed(const std::string& file, const CExportFormat& format) {
  return ExportFormatOf(file) == &format ? file : file + format.m_pSuffix;
}

std::vector<std::string> FilesOf(const std::string& file, const CExportChoice& choice) {
  std::vector<std::string> files{file};
  if (choice.m_pFormat->m_pCompanions == nullptr) return files;
  const std::vector<std::string> companions = choice.m_pFormat->m_pCompanions(file, choice.m_Settings);
  files.insert(files.end(), companions.begin(), companions.end());
  return files;
}

}  // namespace

bool CGridCommands::CanExportModel() const {
  return m_Services.m_Export.m_AskModel && m_Services.m_Export.m_ShowProgress;
}

CReadPicture CGridCommands::Photograph() const {
  const CTextureImages& textures = m_pGrid->Relighting().Textures();
  if (!textures.HasPicture()) return {};
  CProject project;
  m_Host.AddTo(project);
  return WithPixels(project.m_Picture, textures.Photograph());
}

void CGridCommands::ExportModel() {
  if (m_pGrid == nullptr || !CanExportModel()) return;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  // A file must not hold heights of another numbering than its tears.
  m_pGrid->PerformPendingWork();
  const CReadPicture photograph = Photograph();
  CExportSurvey survey(*m_pGrid);
  CExportSettings given;
  if (!photograph.m_Picture.m_aPixels.empty()) given.m_pPhotograph = &photograph;
  CExportPictures pictures(*m_pGrid, given.m_pPhotograph);
  given.m_pPictures = &pictures;
  given.m_fUnderWidth = UnderWidthOf(m_pGrid->Surface().Lattice().Extent());
  const std::optional<CExportChoice> choice = m_Services.m_Export.m_AskModel(survey, given);
  if (!choice.has_value()) return;
  const CExportFormat& format = *choice->m_pFormat;
  const auto isFree = [&](const std::string& file) {
    return std::ranges::none_of(FilesOf(file, *choice), [this](const std::string& f) { return IsPhotograph(f); });
  };
  const auto file = ChooseExport("please input a file name for the model", format.m_pSuffix, isFree);
  if (file.has_value()) ExportTo(Suffixed(*file, format), *choice);
}

bool CGridCommands::IsPhotograph(const std::string& file) const {
  std::error_code missing;
  return fs::equivalent(file, m_Host.TextureFile(), missing);
}

// Proposes the name of the model or of the photograph, where its files were written last.
std::optional<std::string> CGridCommands::ChooseExport(const char* title, const char* suffix,
                                                       const std::function<bool(const std::string&)>& isFree) {
  const std::string pattern = std::string("*") + suffix;
  CFileQuestion question{.m_pTitle = title, .m_pPattern = pattern.c_str(), .m_Kind = suffix, .m_bSaves = true};
  const fs::path named = m_Files.Model().m_File.empty() ? m_Host.TextureFile() : m_Files.Model().m_File;
  if (!named.empty()) {
    const std::string folder = m_Files.Folders().Of(suffix);
    const fs::path beside = folder.empty() ? named.parent_path() : fs::path(folder);
    question.m_Start = beside / (named.stem().string() + suffix);
    if (!isFree(question.m_Start)) question.m_Start = beside / (named.stem().string() + "-export" + suffix);
  }
  return m_Host.ChooseFile(question);
}

void CGridCommands::ExportTo(const std::string& file, const CExportChoice& choice) {
  const std::vector<std::string> files = FilesOf(file, choice);
  for (const std::string& written : files) {
    if (IsPhotograph(written))
      return Tell("The export would overwrite the photograph " + written + ". Choose another name.");
  }
  CSaveOutcome outcome;
  m_Files.Write(files, [&] {
    outcome = m_Services.m_Export.m_ShowProgress("Writing " + fs::path(file).filename().string(),
                                                 [&](ExportProgress& progress) {
                                                   CExportSettings settings = choice.m_Settings;
                                                   settings.m_Name = fs::path(m_Files.Model().m_File).stem();
                                                   settings.m_pProgress = &progress;
                                                   return ExportSurface(*m_pGrid, file, settings);
                                                 });
    return static_cast<bool>(outcome);
  });
  TellExported(file, outcome);
}

void CGridCommands::TellExported(const std::string& file, const CSaveOutcome& outcome) {
  if (outcome.m_bCancelled) return m_Host.TellCancelled(file);
  if (!outcome) return Tell(outcome.m_Trouble);
  m_Host.TellSaved(file);
  if (!m_pGrid->Solver().HasConverged()) Tell(NotConvergedText(file));
}
