#include "editing/GridCommands.h"

#include <algorithm>
#include <optional>
#include <string>

#include "base/Console.h"
#include "editing/CCommandPause.h"
#include "editing/CSolverControl.h"
#include "io/GridFile.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "model/RefusedCurves.h"

namespace {

std::string Pattern(const char* suffix) { return std::string("*") + suffix; }

}  // namespace

void CGridCommands::Request(Operation operation) { Request({operation, {}}); }

void CGridCommands::Request(const CRequest& request) {
  if (m_pGrid == nullptr) return;
  if (g_nSolverTimers == 0) return Perform(request);
  // The grid takes a code that was posted last for the same command chosen twice.
  const bool again = m_pGrid->Run().NextOperation() == request.m_Operation;
  const auto last = std::find_if(m_aWaiting.rbegin(), m_aWaiting.rend(),
                                 [&](const CRequest& other) { return other.m_Operation == request.m_Operation; });
  if (again && last != m_aWaiting.rend()) {
    *last = request;
  } else {
    m_aWaiting.push_back(request);
  }
  m_pGrid->Run().Post(request.m_Operation);
}

void CGridCommands::Perform(Operation operation) {
  CRequest request{operation, {}};
  const auto waiting = std::ranges::find(m_aWaiting, operation, &CRequest::m_Operation);
  if (waiting != m_aWaiting.end()) {
    request = *waiting;
    m_aWaiting.erase(waiting);
  }
  Perform(request);
}

void CGridCommands::Perform(const CRequest& request) {
  if (m_pGrid == nullptr) return;
  const Operation operation = request.m_Operation;
  if (operation == Operation::kNewGrid) NewGrid();
  if (operation == Operation::kLoadGrid) LoadGrid(request);
  if (operation == Operation::kLoadImage) LoadImage(request.m_File.m_File);
  if (operation == Operation::kContourAttributes) EditCurveAttributes();
  for (const CModelFormat& format : ModelFormats()) {
    if (format.m_Operation != Operation::kNone && format.m_Operation == operation) Save(format, request.m_File);
  }
}

void CGridCommands::Open(const CWorkFiles& files) {
  if (!files.m_Model.empty() && !files.m_Picture.empty()) m_Files.LeavePicture();
  if (!files.m_Model.empty()) Request({Operation::kLoadGrid, {files.m_Model}});
  if (!files.m_Picture.empty()) Request({Operation::kLoadImage, {files.m_Picture}});
}

void CGridCommands::OpenNow(const CWorkFiles& files) {
  if (!files.m_Model.empty()) Perform({Operation::kLoadGrid, {files.m_Model}});
  if (!files.m_Picture.empty()) Perform({Operation::kLoadImage, {files.m_Picture}});
}

void CGridCommands::SaveAgain() {
  CModelName name = m_Files.Model();
  // Without a name it becomes one file for all of the work.
  if (name.m_File.empty()) name.m_bProject = static_cast<bool>(m_Services.m_SaveProject);
  Request({Operation::kSaveGrid, name});
}

void CGridCommands::NewGrid() {
  if (!m_Services.m_AskNewGrid) return;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  const std::optional<CGridParameters> chosen = m_Services.m_AskNewGrid(*m_pGrid);
  if (chosen.has_value()) StartOver(Edit::NewGrid, *chosen);
}

void CGridCommands::StartOver(Edit edit, const CGridParameters& parameters) {
  const CExtent& extent = parameters.m_Extent;
  if (!parameters.m_bKeepConstraints) NoteReplacing();
  m_pGrid->Gate().Do(edit, [&] {
    m_pGrid->Initialize(parameters.m_iStartLevel, parameters.m_bKeepConstraints, extent.x0, extent.y0, extent.x1,
                        extent.y1);
    m_pGrid->Reset();
    SetPickTolerance();
    m_Files.ModelReplaced();
  });
  m_Host.GridReplaced();
  if (!parameters.m_bKeepConstraints) NoteReplaced();
}

void CGridCommands::LoadGrid(const CRequest& request) {
  if (!m_Services.m_LoadGrid) return;
  if (request.m_Chooser == Chooser::UnsavedWork) return RecoverWorkNow();
  m_Solver.PauseSolverForCommand();
  std::optional<std::string> file = request.m_File.m_File;
  if (file->empty()) file = ChooseModel(request.m_Chooser);
  if (file.has_value()) {
    OpenModel(*file);
  } else if (request.m_Chooser == Chooser::Grid) {
    Console() << "CImageView::LoadGrid() : filename == NULL\n";
  }
  m_Solver.ResumeSolver();
}

std::optional<std::string> CGridCommands::ChooseModel(Chooser chooser) {
  if (chooser == Chooser::Project) return ChooseProject(false);
  const CModelFormat& format = ModelFormats().front();
  const std::string pattern = Pattern(format.m_pSuffix);
  return m_Host.ChooseFile({.m_pTitle = format.m_pTitle, .m_pPattern = pattern.c_str(), .m_Kind = format.m_pSuffix});
}

void CGridCommands::OpenModel(const std::string& file) {
  m_Host.EndDrags();
  NoteReplacing();
  if (m_Services.m_ReadProject && IsProjectFile(file)) {
    if (!OpenProject(file, Edit::OpenProject)) return;
    NoteReplaced();
    NoteSaved();
    return;
  }
  GridFileState state = GridFileState::NotOpened;
  m_pGrid->Gate().Do(Edit::LoadGrid, [&] {
    state = m_Services.m_LoadGrid(*m_pGrid, file);
    if (!IsReplaced(state)) return;
    SetPickTolerance();
    if (state == GridFileState::Whole) {
      m_Files.ModelOpened({file, HoldsLights(file)});
    } else {
      m_Files.ModelReplaced();
    }
  });
  Tell(TroubleWith(state, file));
  if (state != GridFileState::NotOpened) TellRefusedCurves(m_pGrid->CurveEdits().TakeRefused());
  if (IsReplaced(state)) {
    m_Host.GridReplaced();
    NoteReplaced();
  }
  if (state == GridFileState::Whole) NoteSaved();
}

void CGridCommands::Save(const CModelFormat& format, const CModelName& named) {
  // While the request waited the model may have become another one.
  if (named.m_File.empty() || named != m_Files.Model()) return named.m_bProject ? SaveProjectAs() : WriteNow(format);
  if (!CanWrite(format)) return;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  if (named.m_bProject) {
    if (WriteProject(named.m_File)) m_Host.TellSaved(named.m_File);
    return;
  }
  CWriteSettings settings;
  settings.m_WithLights = [&named] { return named.m_bWithLights; };
  if (!WriteTo(named.m_File, format, settings)) return;
  m_Host.TellSaved(named.m_File);
  TellWhatIsNotKept(named.m_File, format);
}

bool CGridCommands::CanWrite(const CModelFormat& format) const {
  return m_Services.m_Write && (format.m_Setting != WriteSetting::Size || m_Services.m_AskSize);
}

void CGridCommands::Write(const CModelFormat& format) {
  if (format.m_Operation != Operation::kNone) return Request(format.m_Operation);
  if (m_pGrid != nullptr) WriteNow(format);
}

void CGridCommands::WriteNow(const CModelFormat& format) {
  if (!CanWrite(format)) return;
  std::optional<CCommandPause> pause;
  if (format.m_bStopsSolver) {
    m_Solver.HaltSolver();
  } else {
    pause.emplace(m_Solver);
  }
  if (format.m_pNoPicture != nullptr && m_Host.TextureFile().empty()) Console() << format.m_pNoPicture << '\n';
  CWriteSettings settings;
  if (format.m_Setting == WriteSetting::Lights) {
    settings.m_WithLights = [this] { return m_Host.Ask("Do you want to save lighting information ?"); };
  }
  if (format.m_Setting != WriteSetting::Size) return AskFileAndWrite(format, settings);
  m_pGrid->PerformPendingWork();
  m_Host.EndDrags();
  m_Services.m_AskSize([&](int width, int height) {
    settings.m_iWidth = width;
    settings.m_iHeight = height;
    AskFileAndWrite(format, settings);
  });
}

void CGridCommands::AskFileAndWrite(const CModelFormat& format, const CWriteSettings& settings) {
  const std::optional<std::string> file = ChooseTarget(format);
  if (!file.has_value()) return;
  const CSaveOutcome outcome = WriteTo(*file, format, settings);
  if (outcome && format.m_pDone != nullptr) m_Host.Notice(format.m_pDone);
  if (outcome) TellWhatIsNotKept(*file, format);
}

void CGridCommands::TellWhatIsNotKept(const std::string& file, const CModelFormat& format) {
  if (format.m_Operation == Operation::kSaveGrid && m_pGrid->Reference().Value().IsActive())
    m_Host.TellNoReference(file);
}

std::optional<std::string> CGridCommands::ChooseTarget(const CModelFormat& format) {
  const std::string pattern = Pattern(format.m_pSuffix);
  CFileQuestion question{.m_pTitle = format.m_pTitle,
                         .m_pPattern = format.m_bListsSuffix ? pattern.c_str() : nullptr,
                         .m_Kind = format.m_pSuffix,
                         .m_bSaves = true};
  if (format.m_Operation == Operation::kSaveGrid) question.m_Start = m_Files.Proposal(format.m_pSuffix);
  return m_Host.ChooseFile(question);
}

CSaveOutcome CGridCommands::WriteTo(const std::string& file, const CModelFormat& format,
                                    const CWriteSettings& settings) {
  // A file must not hold heights of another numbering than its constraints.
  m_pGrid->PerformPendingWork();
  bool withLights = false;
  CWriteSettings asked = settings;
  if (settings.m_WithLights) asked.m_WithLights = [&] { return withLights = settings.m_WithLights(); };
  CSaveOutcome outcome;
  m_Files.Write(file, [&] {
    outcome = m_Services.m_Write(format, *m_pGrid, file, asked);
    return static_cast<bool>(outcome);
  });
  if (outcome && format.m_Operation == Operation::kSaveGrid) m_Files.ModelSaved({file, withLights});
  Tell(outcome.m_Trouble);
  if (outcome && format.m_Operation == Operation::kSaveGrid) NoteSaved();
  return outcome;
}

void CGridCommands::EditCurveAttributes(double x, double y, CurveType type) {
  if (m_pGrid != nullptr) m_Clicked = {m_pGrid->Constraints().FindCurve(x, y, PickReach()), {x, y}, PickReach(), type};
  Request(Operation::kContourAttributes);
}

void CGridCommands::EditCurveAttributes() {
  if (!m_Services.m_AskContourAttributes) return;
  const CClickedCurve clicked = m_Clicked;
  const CCntrCtrl* curve = m_pGrid->Constraints().Curves().Find(clicked.m_Curve);
  const CCntrNode* node =
      curve == nullptr ? nullptr : curve->FindNode(clicked.m_Place.x, clicked.m_Place.y, clicked.m_fReach);
  if (node == nullptr) return;
  m_Host.EndDrags();
  const CCommandPause pause(m_Solver);
  const std::optional<CContourAnswer> answer =
      m_Services.m_AskContourAttributes(CContourAttributes::Of(*curve, *node), curve->HasType(CurveType::kFairness));
  if (!answer.has_value()) return;
  const auto set = [&] {
    m_pGrid->CurveEdits().SetAttributes(clicked.m_Curve, curve->NumberOf(*node), answer->m_Attributes,
                                        clicked.m_NewType, answer->m_bAllNodes);
  };
  if (!answer->m_bExport) return set();
  // One answer, one step back.
  bool exported = false;
  m_pGrid->Gate().Do(Edit::ExportConstraints, [&] {
    set();
    exported = m_pGrid->CurveEdits().ExportConstraints(clicked.m_Curve);
  });
  if (!exported) m_Host.Notice("The curve would generate more than 200000 constraints: make its distances larger.");
}

void CGridCommands::TellRefusedCurves(int count) {
  if (count != 0) Tell(RefusedCurvesText(count));
}

void CGridCommands::Tell(const std::string& trouble) {
  if (!trouble.empty()) m_Host.Notice(trouble.c_str());
}

void CGridCommands::SwitchResolution() {
  if (m_pGrid == nullptr) return;
  if (g_bHighRes == 1) {
    m_pGrid->Run().Post(Operation::kRestoreNormal);
  } else {
    const bool interpolate = m_Host.Ask("Do you want  to compute an interpolation to get the high res grid ?");
    m_pGrid->Run().Post(interpolate ? Operation::kTransferToHigh : Operation::kRestoreHigh);
  }
  m_Solver.ResumeSolver();
}

void CGridCommands::SetPickTolerance() {
  const CExtent& extent = m_pGrid->Surface().Lattice().Extent();
  g_fPickTolerance = std::max(extent.x1 - extent.x0, extent.y1 - extent.y0) / 100;
}
