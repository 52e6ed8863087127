#include "editing/CEditHistory.h"

#include <memory>
#include <new>
#include <utility>

#include "editing/CSolverControl.h"
#include "editing/HistoryHost.h"
#include "editing/StepNames.h"
#include "model/CGrid.h"
#include "reference/CDepthMap.h"

namespace {

// Between two keys of a series.
constexpr double kSeriesSeconds = 1.0;

constexpr std::uint64_t kNothing = 0;

// Numbers from 1 on the first light that differs.
std::uint64_t ChangedLight(const CDocument& before, const CDocument& after) {
  for (std::size_t k = 0; k < before.m_RemovedLights.m_aLights.size(); ++k) {
    if (!(before.m_RemovedLights.m_aLights[k] == after.m_RemovedLights.m_aLights[k])) return 2 * k + 1;
    if (!(before.m_AddedLights.m_aLights[k] == after.m_AddedLights.m_aLights[k])) return 2 * k + 2;
  }
  return kNothing;
}

// The same for point constraints.
std::uint64_t ChangedPoint(const CPtCstrList& before, const CPtCstrList& after) {
  std::uint64_t number = 1;
  for (auto a = before.begin(), b = after.begin(); a != before.end() && b != after.end(); ++a, ++b, ++number) {
    if (!(*a == *b)) return number;
  }
  return kNothing;
}

bool PerformsLater(Operation operation) {
  return operation != Operation::kNone && !IsEdit(operation) && operation != Operation::kSaveGrid &&
         operation != Operation::kLoadImage;
}

}  // namespace

CEditHistory::CEditHistory(HistoryHost& host, CSolverControl& solver, std::function<double()> seconds,
                           std::size_t mostBytes)
    : m_Host(host), m_Solver(solver), m_Seconds(std::move(seconds)), m_Steps(mostBytes) {}

void CEditHistory::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  grid.Gate().AttachObserver(this);
}

void CEditHistory::Detach() {
  if (m_pGrid != nullptr) m_pGrid->Gate().AttachObserver(nullptr);
  m_pGrid = nullptr;
}

void CEditHistory::Clear() {
  m_Steps.Clear();
  m_Series.reset();
  m_bUnsettled = false;
}

CSharedMemory CStepState::Shared() const {
  const CDepthMap* map = m_Model.m_Document.m_Sketch.m_Reference.m_pMap.get();
  return map == nullptr ? CSharedMemory{} : CSharedMemory{map, sizeof(*map) + map->Values().size_bytes()};
}

bool CEditHistory::CanUndo() const {
  return m_Steps.CanUndo() || m_Open.has_value() ||
         (m_pGrid != nullptr && PerformsLater(m_pGrid->Run().NextOperation()));
}

CStepState CEditHistory::Present(bool whole, bool work) const {
  CStepState present;
  if (whole) {
    present = {StateOf(*m_pGrid), m_Host.Surroundings()};
    if (work) present.m_Surroundings->m_pWork = std::make_shared<const CProject>(m_Host.Work());
    return present;
  }
  present.m_Model.m_Document = DocumentOf(*m_pGrid);
  return present;
}

// The document is taken when something is about to change it, so that it knows what was selected by then.
void CEditHistory::Open(Edit edit) {
  try {
    m_Open = COpenStep{edit, Present(ReplacesSurface(edit), ReplacesWork(edit)), m_pGrid->Surface().Revision()};
  } catch (const std::bad_alloc&) {
    // From here on there is no way back, and what was kept for it may be what is missing.
    Clear();
  }
}

void CEditHistory::BeforeEdit(Edit edit) {
  if (m_iDepth++ > 0) return;
  if (ReplacesSurface(edit)) Close(false);
  if (!m_Open.has_value()) Open(edit);
}

void CEditHistory::AfterEdit(Edit edit) {
  if (--m_iDepth > 0) return;
  const bool held = m_bGesture || m_Host.IsDragging();
  const bool cells = edit == Edit::SplitCells || edit == Edit::MergeCells;
  if (ReplacesSurface(edit) || !held) Close(cells || m_Host.IsTyping());
}

void CEditHistory::GestureBegins() {
  if (m_iDepth == 0) Close(false);
  m_bGesture = true;
}

void CEditHistory::GestureEnds() {
  m_bGesture = false;
  if (m_iDepth == 0) Close(false);
}

void CEditHistory::Close(bool typed) {
  const std::optional<COpenStep> step = std::exchange(m_Open, std::nullopt);
  if (!step.has_value()) return;
  const CDocument after = DocumentOf(*m_pGrid);
  const CDocument& before = step->m_Before.m_Model.m_Document;
  const bool another = step->m_Before.ReplacesSurface() && m_pGrid->Surface().Revision() != step->m_uRevision;
  if (!another && after == before) return;
  const std::optional<CSeries> series = typed ? SeriesOf(*step, after) : std::nullopt;
  if (Continues(*step, series)) {
    m_Steps.ForgetRedo();
  } else {
    m_Steps.SetHeld(after.m_Sketch.m_Reference.m_pMap.get());
    m_Steps.Add(StepName(step->m_First, before.m_Sketch, after.m_Sketch), step->m_Before);
  }
  m_Series = series;
  m_bUnsettled = true;
}

std::optional<CEditHistory::CSeries> CEditHistory::SeriesOf(const COpenStep& step, const CDocument& after) const {
  const CDocument& before = step.m_Before.m_Model.m_Document;
  switch (step.m_First) {
    case Edit::SplitCells:
    case Edit::MergeCells:
      return CSeries{step.m_First, kNothing, after.m_auSelectedCells, m_Seconds()};
    case Edit::SetLight:
      return CSeries{step.m_First, ChangedLight(before, after), {}, m_Seconds()};
    case Edit::MovePoint:
    case Edit::MoveHeight:
    case Edit::TurnSlope:
      return CSeries{step.m_First, ChangedPoint(before.m_Sketch.m_Points, after.m_Sketch.m_Points), {}, m_Seconds()};
    default:
      return {};
  }
}

bool CEditHistory::Continues(const COpenStep& step, const std::optional<CSeries>& series) const {
  if (!series.has_value() || !m_Series.has_value() || !m_Steps.CanUndo()) return false;
  if (series->m_Edit != m_Series->m_Edit || series->m_uThing != m_Series->m_uThing) return false;
  const bool cells = series->m_uThing == kNothing;
  if (cells && step.m_Before.m_Model.m_Document.m_auSelectedCells != m_Series->m_auSelectedCells) return false;
  return series->m_fTime - m_Series->m_fTime < kSeriesSeconds;
}

void CEditHistory::DropEmptySteps() {
  while (m_Steps.CanUndo() && !m_Steps.UndoState().ReplacesSurface() &&
         m_Steps.UndoState().m_Model.m_Document == DocumentOf(*m_pGrid))
    m_Steps.DropUndo();
  m_bUnsettled = false;
}

void CEditHistory::Settle(bool held) {
  if (m_pGrid == nullptr || held || m_iDepth > 0) return;
  m_bGesture = false;
  Close(false);
  if (m_bUnsettled && !m_pGrid->Run().HasPending()) DropEmptySteps();
}

void CEditHistory::Request(UserStep step) {
  if (m_pGrid != nullptr && !m_Host.IsDragging()) m_pGrid->Run().RequestStep(step);
}

bool CEditHistory::Restore(const CStepState& state) {
  if (!state.ReplacesSurface()) {
    CRestoration::RestoreDocument(*m_pGrid, state.m_Model.m_Document);
    return true;
  }
  try {
    CRestoration::RestoreState(*m_pGrid, state.m_Model);
  } catch (const std::bad_alloc&) {
    m_Host.StepFailed();
    return false;
  }
  m_Solver.ModelRestored(m_pGrid->Solver().HasStopped());
  return true;
}

void CEditHistory::Take(UserStep step) {
  if (m_pGrid == nullptr || m_iDepth > 0 || m_Host.IsDragging()) return;
  m_bGesture = false;
  Close(false);
  const bool undo = step == UserStep::Undo;
  if (undo) DropEmptySteps();
  if (!(undo ? m_Steps.CanUndo() : m_Steps.CanRedo())) return;
  const CStepState target = undo ? m_Steps.UndoState() : m_Steps.RedoState();
  const bool work = target.ReplacesSurface() && target.m_Surroundings->m_pWork != nullptr;
  CStepState present = Present(target.ReplacesSurface(), work);
  const CDocument before = present.m_Model.m_Document;
  if (!Restore(target)) return;
  const CDocument& reached = target.m_Model.m_Document;
  const CTakenStep taken{undo, undo ? m_Steps.UndoName() : m_Steps.RedoName(),
                         !(before.m_RemovedLights == reached.m_RemovedLights) ||
                             !(before.m_AddedLights == reached.m_AddedLights) || before.m_Tone != reached.m_Tone,
                         !(before.m_Sketch.m_Extent == reached.m_Sketch.m_Extent),
                         target.ReplacesSurface() ? &*target.m_Surroundings : nullptr};
  m_Steps.SetHeld(reached.m_Sketch.m_Reference.m_pMap.get());
  if (undo) {
    m_Steps.Undo(std::move(present));
  } else {
    m_Steps.Redo(std::move(present));
  }
  m_Series.reset();
  m_bUnsettled = false;
  m_Host.StepTaken(taken);
}
