#include "editing/GridCommands.h"

#include <algorithm>
#include <optional>
#include <string>

#include "base/Console.h"
#include "editing/CSolverControl.h"
#include "formats/PictureFormats.h"
#include "io/GridFile.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "model/RefusedCurves.h"

namespace {

std::string Pattern(const char* suffix) { return std::string("*") + suffix; }

/// Holds the solver while a command works.
class CCommandPause {
 public:
  explicit CCommandPause(CSolverControl& solver) : m_Solver(solver) { m_Solver.PauseSolverForCommand(); }
  ~CCommandPause() { m_Solver.ResumeAfterCommand(); }
  CCommandPause(const CCommandPause&) = delete;
  CCommandPause& operator=(const CCommandPause&) = delete;

 private:
  CSolverControl& m_Solver;
};

}  // namespace

void CGridCommands::Request(Operation operation) {
  if (m_pGrid == nullptr) return;
  if (g_nSolverTimers != 0) {
    m_pGrid->Run().Post(operation);
  } else {
    Perform(operation);
  }
}

void CGridCommands::Perform(Operation operation) {
  if (m_pGrid == nullptr) return;
  if (operation == Operation::kNewGrid) NewGrid();
  if (operation == Operation::kLoadGrid) LoadGrid();
  if (operation == Operation::kLoadImage) LoadImage();
  if (operation == Operation::kContourAttributes) EditCurveAttributes();
  for (const CModelFormat& format : ModelFormats()) {
    if (format.m_Operation != Operation::kNone && format.m_Operation == operation) WriteNow(format);
  }
}

void CGridCommands::NewGrid() {
  if (!m_Services.m_AskNewGrid) return;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  const std::optional<CGridParameters> chosen = m_Services.m_AskNewGrid(*m_pGrid);
  if (!chosen.has_value()) return;
  const CExtent& extent = chosen->m_Extent;
  m_pGrid->Gate().Do(Edit::NewGrid, [&] {
    m_pGrid->Initialize(chosen->m_iStartLevel, chosen->m_bKeepConstraints, extent.x0, extent.y0, extent.x1, extent.y1);
    m_pGrid->Reset();
    SetPickTolerance();
  });
  m_Host.GridReplaced();
}

void CGridCommands::LoadGrid() {
  if (!m_Services.m_LoadGrid) return;
  m_Solver.PauseSolverForCommand();
  const CModelFormat& format = ModelFormats().front();
  const std::optional<std::string> file = m_Host.ChooseFile(format.m_pTitle, Pattern(format.m_pSuffix).c_str());
  if (!file.has_value()) {
    Console() << "CImageView::LoadGrid() : filename == NULL\n";
  } else {
    GridFileState state = GridFileState::NotOpened;
    m_pGrid->Gate().Do(Edit::LoadGrid, [&] {
      state = m_Services.m_LoadGrid(*m_pGrid, *file);
      if (IsReplaced(state)) SetPickTolerance();
    });
    Tell(TroubleWith(state, *file));
    if (state != GridFileState::NotOpened) TellRefusedCurves(m_pGrid->CurveEdits().TakeRefused());
    if (IsReplaced(state)) m_Host.GridReplaced();
  }
  m_Solver.ResumeSolver();
}

void CGridCommands::LoadImage() {
  const CCommandPause pause(m_Solver);
  const std::string pattern = Pattern(PictureFormats().front().m_pSuffix);
  const std::optional<std::string> file = m_Host.ChooseFile("please input image file name", pattern.c_str());
  if (file.has_value()) m_Host.LoadPicture(*file);
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
  const std::string pattern = Pattern(format.m_pSuffix);
  const std::optional<std::string> file =
      m_Host.ChooseFile(format.m_pTitle, format.m_bListsSuffix ? pattern.c_str() : nullptr);
  if (!file.has_value()) return;
  // A file must not hold heights of another numbering than its constraints.
  m_pGrid->PerformPendingWork();
  const CSaveOutcome outcome = m_Services.m_Write(format, *m_pGrid, *file, settings);
  Tell(outcome.m_Trouble);
  if (outcome && format.m_pDone != nullptr) m_Host.Notice(format.m_pDone);
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
