#pragma once

#include <FL/Fl_Double_Window.H>

class ViewHost;

/// A dialog that the rest of the program waits for. It ends as accepted by "OK" or Return, if what was entered will do,
/// and as cancelled by "Cancel", Escape or its window button.
class CModalDialog : public Fl_Double_Window {
 public:
  int handle(int event) override;

 protected:
  /// `views` and `mainWindow` must outlive the dialog.
  CModalDialog(int width, int height, const char* title, ViewHost& views, const Fl_Window& mainWindow);

  /// Buttons for the derived dialog to place; the first one accepts.
  void AddOk(int x, int y, int w, int h, const char* label = "OK");
  void AddCancel(int x, int y, int w, int h);

  /// Shows the dialog and lets the toolkit work until it has ended; whether it was accepted.
  bool Run();
  /// Ends the dialog as accepted if `ReadInput` agrees; whether it did.
  bool Accept();
  /// Takes what was entered. False leaves the dialog open as it is, after telling the user why with `Refuse`.
  virtual bool ReadInput() = 0;
  void Refuse(const char* reason);

 private:
  static void cb_Ok(Fl_Widget* widget, void* dialog);
  static void cb_Cancel(Fl_Widget* widget, void* dialog);

  ViewHost& m_Views;
  const Fl_Window& m_MainWindow;
  bool m_bAccepted = false;
};
