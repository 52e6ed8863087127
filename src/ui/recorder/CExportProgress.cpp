#include "ui/recorder/CExportProgress.h"

#include <FL/Fl.H>
#include <FL/Fl_Box.H>

#include "ui/drawing/ScaleWidgets.h"

CExportProgress::CExportProgress() : Fl_Window(260, 60, "Export the animation") {
  m_pText = new Fl_Box(0, 0, w(), h());
  end();
  ScaleWidgets(*this);
  callback(cb_Window);
  set_modal();
}

void CExportProgress::ShowFrame(int number, int count) {
  m_Text = "Frame " + std::to_string(number + 1) + " of " + std::to_string(count) + " - Escape stops";
  m_pText->label(m_Text.c_str());
  m_pText->redraw();
  Fl::check();
}

void CExportProgress::cb_Window(Fl_Widget* widget, void* /*data*/) {
  static_cast<CExportProgress*>(widget)->m_bStopped = true;
}
