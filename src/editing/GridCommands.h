#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/CPlanePoint.h"
#include "constraints/CCntrCtrl.h"
#include "editing/CContourAnswer.h"
#include "editing/CFilesAtHand.h"
#include "editing/CGridParameters.h"
#include "editing/CWorkFiles.h"
#include "editing/ExportServices.h"
#include "editing/UserDialogs.h"
#include "io/ModelFormats.h"
#include "model/CPendingWork.h"
#include "model/Edit.h"
#include "model/GridFileState.h"
#include "projects/CProject.h"
#include "projects/ProjectFile.h"

class CGrid;
class CSolverControl;

/// The commands' way to the user and to the picture.
class CommandHost : public UserDialogs {
 public:
  /// Shows the picture in the file over the grid. False, with the user told, if there is none; then all stays as it
  /// was.
  virtual bool LoadPicture(const std::string& file) = 0;
  /// File of the picture on show; empty if there is none.
  virtual std::string TextureFile() const = 0;
  /// A dialog is about to take the mouse: ends the drags in the views.
  virtual void EndDrags() = 0;
  /// The grid has been reinitialised or read from a file.
  virtual void GridReplaced() = 0;
  /// The model has been saved again without a question.
  virtual void TellSaved(const std::string& file) = 0;
  /// A file of the user's holds the model as it is now.
  virtual void ModelSaved() {}
  /// An export has been cancelled by the user.
  virtual void TellCancelled(const std::string& /*file*/) {}
  /// The model has been saved to a grid file, which does not keep the depth map that it follows.
  virtual void TellNoReference(const std::string& /*file*/) {}
  /// What a project keeps beside the model is to be added to one, and shown of one whose model has been opened.
  virtual void AddTo(CProject& /*project*/) const {}
  virtual void ShowProject(const CProject& /*project*/) {}
  /// Which work can be recovered may have changed.
  virtual void UnsavedWorkChanged() {}
};

/// The work on files and the questions that the commands leave to others. An empty function makes its command
/// unavailable.
struct CModelServices {
  std::function<std::optional<CGridParameters>(const CGrid& grid)> m_AskNewGrid;
  std::function<GridFileState(CGrid& grid, const std::string& file)> m_LoadGrid;
  /// Writes the grid in a format, as `CModelFormat::m_pWrite` does.
  std::function<CSaveOutcome(const CModelFormat& format, const CGrid& grid, const std::string& file,
                             const CWriteSettings& settings)>
      m_Write;
  /// Asks for the size of a height field and calls `write` with it while the dialog is still open, so that the user
  /// comes back to it.
  std::function<void(const std::function<void(int width, int height)>& write)> m_AskSize;
  std::function<std::optional<CContourAnswer>(const CContourAttributes& present, bool fairness)> m_AskContourAttributes;
  /// See ReadProject and SaveProject.
  std::function<CReadProject(const std::string& file)> m_ReadProject;
  std::function<CSaveOutcome(const CProject& project, const std::string& file)> m_SaveProject;
  CExportServices m_Export = {};
};

/// What keeps the work that no file of the user's holds. Without it there is nothing to recover.
struct CRecoveryServices {
  /// Whether there is work of an earlier run that can be recovered; has the user choose some of it.
  std::function<bool()> m_HasWork;
  std::function<std::optional<std::string>()> m_ChooseWork;
  /// Another model may take the place of this one; it has.
  std::function<void()> m_Replacing;
  std::function<void()> m_Replaced;
  /// A file of the user's holds the model as it is now.
  std::function<void()> m_Saved;
  /// A step back or forward has gone over the opening of a project, or over recovered work.
  std::function<void()> m_SteppedOver;
  /// The window is about to end the program.
  std::function<void()> m_End;
};

/// The commands that replace the grid, read it or write it, and that which edits a curve in a dialog.
///
/// Five of them wait for the end of the solver's step while the solver tick is registered: `Request` leaves their code
/// with the grid, whose next tick has them performed. Without a grid nothing happens.
class CGridCommands {
 public:
  /// Both must outlive the object.
  CGridCommands(CommandHost& host, CSolverControl& solver) : m_Host(host), m_Solver(solver) {}

  /// The grid that commands act on, which must outlive the object, and the functions behind them.
  void AttachGrid(CGrid& grid) { m_pGrid = &grid; }
  void SetServices(CModelServices services) { m_Services = std::move(services); }
  /// The files that they have been at; the name of the model is there.
  CFilesAtHand& Files() { return m_Files; }
  const CFilesAtHand& Files() const { return m_Files; }
  void SetRecovery(CRecoveryServices recovery) { m_Recovery = std::move(recovery); }
  const CRecoveryServices& Recovery() const { return m_Recovery; }

  /// Performs Operation::kNewGrid, kLoadGrid, kLoadImage or that of a format as soon as no step of the solver is under
  /// way.
  void Request(Operation operation);
  /// Performs it now: in the way it was requested first, if it was.
  void Perform(Operation operation);
  /// Opens a model, a picture or both without asking for them, as soon as no step of the solver is under way; now.
  void Open(const CWorkFiles& files);
  void OpenNow(const CWorkFiles& files);
  /// Saves the model under its name, with the same answer about its lights, as soon as no step of the solver is under
  /// way. Without a name the user is asked for one.
  void SaveAgain();

  /// Whether the services have what it takes to write the format.
  bool CanWrite(const CModelFormat& format) const;
  /// Asks for what the format has to be told and for a file, and writes it; a format with a code of its own as soon as
  /// no step of the solver is under way.
  void Write(const CModelFormat& format);

  // PictureCommands.cpp: the photograph.
  /// Whether there is a picture and nothing that a new grid would lose: no constraint, no curve, none in progress; and
  /// whether the grid then has other proportions than the picture.
  bool CanFitPicture() const;
  bool OffersFit() const;
  /// Starts over with a grid in the picture's proportions, 100 along its shorter side, at the present base level; now.
  /// Nothing where that cannot be.
  void FitPicture();

  // ExportCommands.cpp: files for other programs.
  /// Whether the services have what it takes to export the surface.
  bool CanExportModel() const;
  /// Asks how to export the surface and where to, and writes it. The photograph itself is never overwritten.
  void ExportModel();
  /// The same for films. FilmCommands.cpp.
  bool CanExportFilm() const;
  void ExportFilm();

  // ProjectCommands.cpp: the work as a whole.
  /// The work as it is, with the photograph only named.
  CProject Project() const;
  /// Asks for a file and writes the work into it, with the photograph's bytes.
  void SaveProject();
  /// Asks for a project, or for work of an earlier run that no file holds, and opens it as soon as no step of the
  /// solver is under way.
  void OpenProject() { Request({Operation::kLoadGrid, {}, Chooser::Project}); }
  void RecoverWork() { Request({Operation::kLoadGrid, {}, Chooser::UnsavedWork}); }

  /// Tells the user of curves that generate no constraints any more.
  void TellRefusedCurves(int count);
  /// Lets the user edit the attributes of the curve at (x, y), model units, as soon as no step of the solver is under
  /// way. A `type` that is not kNone becomes the curve's.
  void EditCurveAttributes(double x, double y, CurveType type);
  /// Leaves the grid the switch to the other resolution, asking how to go up, and resumes the solver.
  void SwitchResolution();

 private:
  /// Where the user looks for a model to open.
  enum class Chooser { Grid, Project, UnsavedWork };
  /// A code that waits, with the file that it is about; where that has no name the user is asked.
  struct CRequest {
    Operation m_Operation = Operation::kNone;
    CModelName m_File;
    Chooser m_Chooser = Chooser::Grid;
  };

  void Request(const CRequest& request);
  void Perform(const CRequest& request);
  void NewGrid();
  void StartOver(Edit edit, const CGridParameters& parameters);
  void LoadGrid(const CRequest& request);
  std::optional<std::string> ChooseModel(Chooser chooser);
  void OpenModel(const std::string& file);
  void RecoverWorkNow();
  /// Whether the work in the file has taken the place of that there was.
  bool OpenProject(const std::string& file, Edit edit);
  void LoadImage(const std::string& named);
  void Save(const CModelFormat& format, const CModelName& named);
  void SaveProjectAs();
  std::optional<std::string> ChooseProject(bool saves);
  CSaveOutcome WriteProject(const std::string& file);
  void NoteSaved() const;
  void NoteReplacing() const;
  void NoteReplaced() const;
  void WriteNow(const CModelFormat& format);
  void TellWhatIsNotKept(const std::string& file, const CModelFormat& format);
  void AskFileAndWrite(const CModelFormat& format, const CWriteSettings& settings);
  std::optional<std::string> ChooseTarget(const CModelFormat& format);
  CSaveOutcome WriteTo(const std::string& file, const CModelFormat& format, const CWriteSettings& settings);
  CReadPicture Photograph() const;
  void ExportTo(const std::string& file, const CExportChoice& choice);
  std::optional<std::string> ChooseExport(const char* title, const char* suffix,
                                          const std::function<bool(const std::string&)>& isFree);
  bool IsPhotograph(const std::string& file) const;
  void TellExported(const std::string& file, const CSaveOutcome& outcome);
  void EditCurveAttributes();
  void SetPickTolerance();
  void Tell(const std::string& trouble);

  CommandHost& m_Host;
  CSolverControl& m_Solver;
  CModelServices m_Services;
  CRecoveryServices m_Recovery;
  CGrid* m_pGrid = nullptr;
  CFilesAtHand m_Files;
  std::vector<CRequest> m_aWaiting;  ///< one for each code that waits with the grid, in their order

  /// A curve whose attributes are to be edited.
  struct CClickedCurve {
    CurveId m_Curve = CurveId::kNone;
    CPlanePoint m_Place;                     ///< of the click
    double m_fReach = 0.0;                   ///< and its reach then
    CurveType m_NewType = CurveType::kNone;  ///< that the curve is to have
  };
  CClickedCurve m_Clicked;
};
