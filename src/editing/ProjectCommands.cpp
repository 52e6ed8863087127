// The commands that open and save the work as a whole.

#include <new>
#include <optional>
#include <string>
#include <utility>

#include "editing/CCommandPause.h"
#include "editing/CSolverControl.h"
#include "editing/GridCommands.h"
#include "model/CGrid.h"
#include "projects/ProjectPicture.h"

CProject CGridCommands::Project() const {
  CProject project;
  project.m_Model = StateOf(*m_pGrid);
  project.m_Heights = SolvedHeights(*m_pGrid);
  project.m_ModelFile = m_Files.Model().m_File;
  m_Host.AddTo(project);
  return project;
}

std::optional<std::string> CGridCommands::ChooseProject(bool saves) {
  const std::string pattern = std::string("*") + kProjectSuffix;
  CFileQuestion question{.m_pTitle = "please input project file name",
                         .m_pPattern = pattern.c_str(),
                         .m_Kind = kProjectSuffix,
                         .m_bSaves = saves};
  if (saves) question.m_Start = m_Files.Proposal(kProjectSuffix);
  return m_Host.ChooseFile(question);
}

void CGridCommands::SaveProject() {
  if (m_pGrid != nullptr) SaveProjectAs();
}

void CGridCommands::SaveProjectAs() {
  if (!m_Services.m_SaveProject) return;
  const CCommandPause pause(m_Solver);
  const std::optional<std::string> file = ChooseProject(true);
  if (file.has_value() && WriteProject(*file)) m_Host.TellSaved(*file);
}

CSaveOutcome CGridCommands::WriteProject(const std::string& file) {
  // A file must not hold heights of another numbering than its constraints.
  m_pGrid->PerformPendingWork();
  CProject project = Project();
  const CTextureImages& textures = m_pGrid->Relighting().Textures();
  if (textures.HasPicture()) project.m_Picture = WithBytes(project.m_Picture, textures.Photograph());
  project.m_ModelFile = file;
  CSaveOutcome outcome;
  m_Files.Write(file, [&] {
    outcome = m_Services.m_SaveProject(project, file);
    return static_cast<bool>(outcome);
  });
  if (outcome) {
    m_Files.ModelSaved({.m_File = file, .m_bProject = true});
    NoteSaved();
  }
  Tell(outcome.m_Trouble);
  return outcome;
}

void CGridCommands::RecoverWorkNow() {
  if (!m_Recovery.m_ChooseWork || !m_Services.m_ReadProject) return;
  m_Solver.PauseSolverForCommand();
  m_Host.EndDrags();
  const std::optional<std::string> file = m_Recovery.m_ChooseWork();
  if (file.has_value() && OpenProject(*file, Edit::RecoverWork)) {
    m_Solver.ResumeSolver();
  } else {
    m_Solver.ResumeAfterCommand();
  }
  m_Host.UnsavedWorkChanged();
}

void CGridCommands::NoteSaved() const {
  m_Host.ModelSaved();
  if (m_Recovery.m_Saved) m_Recovery.m_Saved();
}

void CGridCommands::NoteReplacing() const {
  if (m_Recovery.m_Replacing) m_Recovery.m_Replacing();
}

void CGridCommands::NoteReplaced() const {
  if (m_Recovery.m_Replaced) m_Recovery.m_Replaced();
}

bool CGridCommands::OpenProject(const std::string& file, Edit edit) {
  CReadProject read = m_Services.m_ReadProject(file);
  Tell(read.m_Trouble);
  if (!read.m_Project.has_value()) return false;
  CProject& project = *read.m_Project;
  try {
    m_pGrid->Gate().Do(edit, [&] {
      CRestoration::RestoreState(*m_pGrid, project.m_Model);
      if (edit == Edit::OpenProject) {
        m_Files.ModelOpened({.m_File = file, .m_bProject = true});
      } else {
        m_Files.ModelReplaced();
      }
    });
  } catch (const std::bad_alloc&) {
    Tell("The file " + file + " needs more memory than there is. The model stays as it was.");
    return false;
  }
  m_Host.GridReplaced();
  if (project.m_Picture.m_pBytes != nullptr) {
    project.m_Picture.m_Project = file;
  } else {
    project.m_Picture = WithBytesOfItsProject(project.m_Picture);
  }
  m_Host.ShowProject(project);
  m_Files.PictureCame(m_Host.TextureFile());
  TellRefusedCurves(m_pGrid->CurveEdits().TakeRefused());
  return true;
}
