#include "ui/window/CInfluenceOverlay.h"

#include <algorithm>
#include <new>
#include <utility>

#include <FL/Fl.H>

#include "drawing/COverlay.h"
#include "drawing/OverlayValues.h"
#include "model/CGrid.h"
#include "ui/seams/HelpTexts.h"

namespace {

// Changes smaller than this are no colour: what was asked for is 1, or a degree.
constexpr double kNoise = 1e-6;

const CCntrCtrl* SelectedCurve(const CGrid& grid) {
  const CCntrCtrlList& curves = grid.Constraints().Curves();
  const auto found =
      std::ranges::find_if(curves, [](const CCntrCtrl& curve) { return curve.HasState(PtCstrState::kSelected); });
  return found == curves.end() ? nullptr : &*found;
}

}  // namespace

CInfluenceOverlay::CInfluenceOverlay(CMainMenu& menu, CGrid& grid, CWindow window)
    : CMenuOverlay(MenuEntry::InfluenceMap, menu), m_Grid(grid), m_Window(std::move(window)) {}

CInfluenceOverlay::CWork::CWork(const CGrid& grid, std::span<const double> change, std::optional<CSettler> settler)
    : m_bSettled(settler.has_value()), m_Influence(grid.Solver(), grid.Surface().Basis(), change, std::move(settler)) {}

// The task waits for what is under way.
CInfluenceOverlay::~CInfluenceOverlay() {
  Forget();
  if (m_Task.Descriptor() >= 0) Fl::remove_fd(m_Task.Descriptor());
}

// The end of a task is told by its descriptor.
bool CInfluenceOverlay::IsBusy() const {
  if (m_Step == Step::Done || !MayBeShown(m_Grid)) return false;
  return m_Step == Step::Targets || !m_Task.IsBusy() || m_Task.Descriptor() < 0;
}

void CInfluenceOverlay::Forget() {
  if (m_pWork != nullptr) m_pWork->m_bStop = true;
  m_pWork.reset();
}

void CInfluenceOverlay::Begin() {
  m_Slope = ConstraintPart::SlopeX;
  CMenuOverlay::Begin();
}

void CInfluenceOverlay::End() {
  m_Step = Step::Done;
  Forget();
  CMenuOverlay::End();
}

bool CInfluenceOverlay::ShowsMore() {
  if (Selected().m_Part != ConstraintPart::SlopeX) return false;
  m_Slope = ConstraintPart::SlopeY;
  return true;
}

CInfluenceOverlay::CSubject CInfluenceOverlay::Selected() const {
  CSubject subject{.m_uTree = m_Grid.Surface().Tree().Revision(),
                   .m_uEdits = m_Grid.Gate().Edits(),
                   .m_bSettling = m_Grid.IsSettling()};
  const CPtCstr* point = m_Grid.Constraints().Points().FirstSelected(PtCstrKind::kPosition | PtCstrKind::kNormal);
  const CCntrCtrl* curve = SelectedCurve(m_Grid);
  if (point != nullptr) {
    subject.m_pPoint = point;
    const bool slope =
        point->HasKind(PtCstrKind::kNormal) && (!point->HasKind(PtCstrKind::kPosition) || m_Window.m_WantsSlope());
    if (slope) subject.m_Part = m_Slope;
  } else if (curve != nullptr) {
    subject.m_Curve = curve->Id();
  }
  return subject;
}

std::shared_ptr<const COverlay> CInfluenceOverlay::Update() {
  if (!MayBeShown(m_Grid)) return nullptr;
  const CSubject subject = Selected();
  if (m_Shown != subject) {
    // Another constraint begins with dz/dx.
    const bool other = !m_Shown || m_Shown->m_pPoint != subject.m_pPoint;
    if (other && subject.m_Part == ConstraintPart::SlopeY && m_Shown) {
      m_Slope = ConstraintPart::SlopeX;
      return Start(Selected());
    }
    return Start(subject);
  }
  switch (m_Step) {
    case Step::Targets:
      FindTargets();
      return nullptr;
    case Step::System:
      if (!m_Task.IsBusy() || m_Task.Take().has_value()) TakeSystem();
      return nullptr;
    case Step::Solve:
      if (const std::optional<bool> whole = m_Task.Take()) return *whole ? Result() : NoRoom();
      return nullptr;
    default:
      return nullptr;
  }
}

// What was shown of another constraint goes at once.
std::shared_ptr<const COverlay> CInfluenceOverlay::Start(const CSubject& subject) {
  m_Shown = subject;
  Forget();
  m_Step = Step::Done;
  if (subject.m_Curve != CurveId::kNone && !HasAutoBump(subject.m_Curve)) {
    m_Window.m_Tell(FormatHelp(HelpText::kNoInfluence));
    return Only("Influence: none, the curve has no auto bump");
  }
  if (subject.m_pPoint == nullptr && subject.m_Curve == CurveId::kNone)
    return Only("Influence: select a constraint to see it");
  m_Step = Step::Targets;
  return std::make_shared<const COverlay>(Titled());
}

bool CInfluenceOverlay::HasAutoBump(CurveId curve) const {
  const CCntrCtrl* found = m_Grid.Constraints().Curves().Find(curve);
  return found != nullptr && found->HasOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump);
}

void CInfluenceOverlay::FindTargets() {
  m_afChange = m_Shown->m_pPoint != nullptr ? ChangeOfTargets(m_Grid, *m_Shown->m_pPoint, m_Shown->m_Part)
                                            : ChangeOfTargets(m_Grid, m_Shown->m_Curve);
  // Without them the rows belong to an edit that has not been taken up; it is looked at again after that.
  m_Step = m_afChange.empty() ? Step::Done : Step::System;
  if (m_afChange.empty()) MakeAnew();
}

void CInfluenceOverlay::TakeSystem() {
  std::optional<CSettler> settler = m_Grid.SettlerOfChanges();
  m_pWork = std::make_shared<CWork>(m_Grid, m_afChange, std::move(settler));
  m_Step = Step::Solve;
  m_Task.Begin([work = m_pWork] { return WorkOut(*work); });
  if (m_Task.Descriptor() >= 0) Fl::add_fd(m_Task.Descriptor(), FL_READ, cb_Done);
}

// False where there is not enough memory.
bool CInfluenceOverlay::WorkOut(CWork& work) {
  try {
    while (!work.m_bStop && !work.m_Influence.Continue(1)) {
    }
    work.m_afHeights = work.m_Influence.Heights();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// The round of the toolkit that this brings about is all that is needed; the answer may have to wait.
void CInfluenceOverlay::cb_Done(int descriptor, void* /*overlay*/) { Fl::remove_fd(descriptor); }

// All is got ready for the heights while these are worked out.
COverlay CInfluenceOverlay::Titled() const {
  COverlay overlay;
  overlay.m_uTree = m_Shown->m_uTree;
  overlay.m_bHasBar = false;
  if (m_Shown->m_Curve != CurveId::kNone) {
    overlay.m_Title = "Influence of a degree of the curve's orientation";
  } else if (m_Shown->m_Part == ConstraintPart::Height) {
    overlay.m_Title = "Influence of a height larger by 1";
  } else {
    const bool ofX = m_Shown->m_Part == ConstraintPart::SlopeX;
    overlay.m_Title = ofX ? "Influence of a slope dz/dx larger by 1" : "Influence of a slope dz/dy larger by 1";
    if (ofX) overlay.m_asNotes = {"Choose the entry once more for dz/dy"};
  }
  return overlay;
}

std::shared_ptr<const COverlay> CInfluenceOverlay::Result() {
  m_Step = Step::Done;
  COverlay overlay = Titled();
  overlay.m_afAtPoints = std::move(m_pWork->m_afHeights);
  overlay.m_bHasBar = true;
  if (!m_pWork->m_Influence.IsExact()) overlay.m_asNotes.emplace_back("Not exact: the solver gave up");
  if (m_pWork->m_bSettled) overlay.m_asNotes.emplace_back("With the floating regions settled");
  if (m_Grid.Reference().Value().IsActive())
    overlay.m_asNotes.emplace_back("With the reference depth as it is fitted now");
  SetEvenRange(overlay, kNoise);
  m_pWork.reset();
  return std::make_shared<const COverlay>(std::move(overlay));
}

std::shared_ptr<const COverlay> CInfluenceOverlay::NoRoom() {
  m_Step = Step::Done;
  m_pWork.reset();
  return Only("Influence: not enough memory");
}

std::shared_ptr<const COverlay> CInfluenceOverlay::Only(const char* title) {
  COverlay overlay;
  overlay.m_Title = title;
  overlay.m_bHasBar = false;
  return std::make_shared<const COverlay>(std::move(overlay));
}
