#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "editing/ExportServices.h"
#include "ui/dialogs/CModalDialog.h"

class CNumberInput;
class Fl_Box;
class Fl_Choice;

/// "Export Film": format, movement and size of a film. A frame shows how long it would be, as the settings change.
class CFilmDialog : public CModalDialog {
 public:
  /// Hidden until it is asked; both must outlive the dialog.
  CFilmDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Waits for the answer, with the settings of the last one at first; none if the user cancels. The recorder holds so
  /// many frames, each of which lasts some seconds; without any there is only the turntable to choose.
  std::optional<CFilmChoice> Ask(std::size_t recorded, double frameSeconds);

 protected:
  bool ReadInput() override;

 private:
  Fl_Choice* AddChoice(int row, const char* label);
  CNumberInput* AddNumber(int row, const char* label);
  void ShowDescription();
  /// What is wrong with what has been entered; empty where it is taken.
  std::string Read(CFilmChoice& choice) const;
  std::string Description(const CFilmChoice& choice) const;
  static void cb_Setting(Fl_Widget* widget, void* dialog);

  Fl_Choice* m_pFormat = nullptr;
  Fl_Choice* m_pSource = nullptr;
  CNumberInput* m_pSeconds = nullptr;
  CNumberInput* m_pWidth = nullptr;
  CNumberInput* m_pHeight = nullptr;
  Fl_Box* m_pDescription = nullptr;
  CFilmChoice m_Choice;  ///< as last accepted
  std::size_t m_uRecorded = 0;
  double m_fFrameSeconds = 0.0;
};
