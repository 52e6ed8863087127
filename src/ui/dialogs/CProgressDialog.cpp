#include "ui/dialogs/CProgressDialog.h"

#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Progress.H>

#include "ui/dialogs/Questions.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

// A window that goes as soon as it has come only startles.
constexpr std::chrono::milliseconds kMoment(250);
constexpr std::chrono::milliseconds kInterval(30);

}  // namespace

CProgressDialog::CProgressDialog(const std::string& text, const Fl_Window& mainWindow)
    : Fl_Double_Window(340, 105, "Export"),
      m_Text(LabelText(text)),
      m_MainWindow(mainWindow),
      m_Next(Clock::now() + kMoment) {
  auto* line = new Fl_Box(12, 8, 316, 22, m_Text.c_str());
  line->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP);
  m_pBar = new Fl_Progress(12, 34, 316, 22);
  m_pBar->maximum(1);
  m_pBar->selection_color(FL_SELECTION_COLOR);
  auto* cancel = new Fl_Button(118, 66, 105, 28, "Cancel");
  cancel->callback(cb_Cancel, this);
  end();
  ScaleWidgets(*this);
  callback(cb_Cancel, this);
  set_modal();
}

bool CProgressDialog::Goes(double share) {
  if (m_bCancelled || Clock::now() < m_Next) return !m_bCancelled;
  if (shown() == 0) OpenBeside(*this, m_MainWindow);
  m_pBar->value(static_cast<float>(share));
  Fl::check();
  m_Next = Clock::now() + kInterval;
  return !m_bCancelled;
}

void CProgressDialog::cb_Cancel(Fl_Widget* /*widget*/, void* dialog) {
  static_cast<CProgressDialog*>(dialog)->m_bCancelled = true;
}
