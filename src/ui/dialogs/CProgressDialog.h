#pragma once

#include <chrono>
#include <string>

#include <FL/Fl_Double_Window.H>

#include "base/ExportProgress.h"

class Fl_Progress;

/// Shows how far long work is, with a button that cancels it; Escape and the window button do so, too. It comes up as
/// soon as the work has taken a moment. From then on the toolkit works on events while the other windows take no input.
class CProgressDialog : public Fl_Double_Window, public ExportProgress {
 public:
  /// `text` says what is done; `mainWindow`, which the dialog opens beside, must outlive it.
  CProgressDialog(const std::string& text, const Fl_Window& mainWindow);

  bool Goes(double share) override;

 private:
  using Clock = std::chrono::steady_clock;

  static void cb_Cancel(Fl_Widget* widget, void* dialog);

  const std::string m_Text;
  const Fl_Window& m_MainWindow;
  Fl_Progress* m_pBar = nullptr;
  Clock::time_point m_Next;  ///< when the toolkit is to work again
  bool m_bCancelled = false;
};
