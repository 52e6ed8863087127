#include "ui/dialogs/CModalDialog.h"

#include <FL/Fl.H>
#include <FL/Fl_Return_Button.H>

#include "ui/drawing/DialogPlacement.h"
#include "ui/seams/ViewHost.h"

CModalDialog::CModalDialog(int width, int height, const char* title, ViewHost& views, const Fl_Window& mainWindow)
    : Fl_Double_Window(width, height, title), m_Views(views), m_MainWindow(mainWindow) {
  set_modal();
}

void CModalDialog::AddOk(int x, int y, int w, int h, const char* label) {
  auto* button = new Fl_Return_Button(x, y, w, h, label);
  button->callback(cb_Ok, this);
  add(button);
}

void CModalDialog::AddCancel(int x, int y, int w, int h) {
  auto* button = new Fl_Button(x, y, w, h, "Cancel");
  button->callback(cb_Cancel, this);
  add(button);
}

// Return reaches the "OK" button as a shortcut, which a group under the pointer would take for a step to its next
// input.
int CModalDialog::handle(int event) {
  if (Fl_Double_Window::handle(event) != 0) return 1;
  if (event != FL_KEYBOARD || (Fl::event_key() != FL_Enter && Fl::event_key() != FL_KP_Enter)) return 0;
  Accept();
  return 1;
}

// An open menu takes all events, and waits below for this loop to end.
bool CModalDialog::Run() {
  m_bAccepted = false;
  OpenBeside(*this, m_MainWindow);
  Fl_Window* const menu = Fl::grab();
  Fl::grab(nullptr);
  while (shown() != 0) Fl::wait();
  if (menu != nullptr) Fl::grab(menu);
  return m_bAccepted;
}

bool CModalDialog::Accept() {
  if (!ReadInput()) return false;
  m_bAccepted = true;
  hide();
  return true;
}

void CModalDialog::Refuse(const char* reason) { m_Views.Notice(reason); }

void CModalDialog::cb_Ok(Fl_Widget* /*widget*/, void* dialog) { static_cast<CModalDialog*>(dialog)->Accept(); }

void CModalDialog::cb_Cancel(Fl_Widget* /*widget*/, void* dialog) { static_cast<CModalDialog*>(dialog)->hide(); }
