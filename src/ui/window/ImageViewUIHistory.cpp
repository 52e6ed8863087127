// Steps back and forward through what the user has done.

#include <optional>
#include <string>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Input_.H>

#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"

namespace {

// A text that is being typed is undone in its field, even where there is nothing left of it to undo.
bool IsTextTyped() { return Fl::event() == FL_SHORTCUT && dynamic_cast<Fl_Input_*>(Fl::focus()) != nullptr; }

std::string StepText(const char* entry, const std::string& name) {
  return name.empty() ? entry : std::string(entry) + ' ' + name;
}

}  // namespace

void CImageViewUI::RequestStep(UserStep step) {
  if (m_pGrid == nullptr || IsTextTyped()) return;
  m_History.Request(step);
  m_GridHost.PerformPendingWork(IsDragging());
}

void CImageViewUI::RequestFit() {
  if (!m_Commands.CanFitPicture()) return;
  m_pGrid->Run().RequestStep(UserStep::FitPicture);
  m_GridHost.PerformPendingWork(IsDragging());
}

void CImageViewUI::RefreshSteps() {
  Menu().SetText(MenuEntry::Undo, StepText("&Undo", m_History.UndoName()));
  Menu().SetText(MenuEntry::Redo, StepText("&Redo", m_History.RedoName()));
  Menu().Enable(MenuEntry::Undo, m_History.CanUndo());
  Menu().Enable(MenuEntry::Redo, m_History.CanRedo());
  Menu().Enable(MenuEntry::FitPicture, m_Commands.CanFitPicture());
}

bool CImageViewUI::IsDragging() const { return Fl::pushed() != nullptr; }

bool CImageViewUI::IsTyping() const {
  return Fl::event() == FL_KEYBOARD || Fl::event() == FL_SHORTCUT || Fl::event() == FL_MOUSEWHEEL;
}

CSurroundings CImageViewUI::Surroundings() const {
  return {GridView().Camera(), m_Commands.Files().Model(),
          m_Remembered.IsLent() ? std::optional(Marks()) : std::nullopt};
}

CProject CImageViewUI::Work() const {
  CProject work;
  AddTo(work);
  return work;
}

void CImageViewUI::StepTaken(const CTakenStep& step) {
  if (step.m_pRestored != nullptr) {
    ShowModel();
    if (step.m_bRectangleChanged) GridView().SetCamera(step.m_pRestored->m_Camera);
    m_Commands.Files().SetModel(step.m_pRestored->m_Name);
    m_Tools.GridReplaced();
    if (step.m_pRestored->m_pWork != nullptr) {
      ShowProject(*step.m_pRestored->m_pWork);
      if (m_Commands.Recovery().m_SteppedOver) m_Commands.Recovery().m_SteppedOver();
    }
    if (step.m_pRestored->m_ProjectMarks) {
      ShowProjectMarks(*step.m_pRestored->m_ProjectMarks, false);
    } else {
      RestoreOwnMarks();
    }
  }
  if (step.m_bLightsChanged) LightsMoved();
  ShowPendingCurve();
  ImageView().DocumentChanged();
  HelpLine().SetCurrentHelp(CurrentHelp());
  RequestRedraw();
  Tell(FormatHelp(step.m_bUndone ? HelpText::kStepUndone : HelpText::kStepRedone, {step.m_Name}));
}

// A curve that another mode had given up goes on in its own.
void CImageViewUI::ShowPendingCurve() {
  if (m_pGrid->Constraints().PendingCurve().IsIdle() || ImageView().Mode() == EditingMode::Curve) return;
  Controls().Button(Control::CurveConstraint).setonly();
  ImageView().SetMode(EditingMode::Curve);
  RefreshEnabled();
}

void CImageViewUI::StepFailed() { Tell(FormatHelp(HelpText::kStepFailed)); }

// The toolkit offers keys to the window under the mouse and to that with the focus; a tool window has no menu.
int CImageViewUI::cb_UnusedEvent(int event) {
  if (event != FL_SHORTCUT || Fl::modal() != nullptr) return 0;
  for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
    const auto* main = dynamic_cast<CImageViewUI*>(window);
    if (main != nullptr) return main->Menu().takesevents() != 0 && main->Menu().TakeShortcut() ? 1 : 0;
  }
  return 0;
}
