#pragma once

#include <string>

#include <FL/Fl_Window.H>

class Fl_Box;

/// Says which frame is being exported. While it is shown, the other windows take no input; Escape and its window button
/// ask for an end.
class CExportProgress : public Fl_Window {
 public:
  CExportProgress();

  /// Frame `number` of `count`, counted from 0, is next; lets the toolkit work on events meanwhile.
  void ShowFrame(int number, int count);
  bool IsStopped() const { return m_bStopped; }

 private:
  static void cb_Window(Fl_Widget* widget, void* data);

  Fl_Box* m_pText = nullptr;
  std::string m_Text;
  bool m_bStopped = false;
};
