#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/dialogs/CModalDialog.h"

class Fl_Button;
class Fl_Hold_Browser;

/// Shows the work of earlier runs that no file holds, and has the user choose one to go on with, or to be deleted.
class CRecoveryDialog : public CModalDialog {
 public:
  /// A line of the list.
  struct CLine {
    std::string m_Text;
    bool m_bDamaged = false;  ///< it can neither be chosen nor deleted
  };
  /// Deletes the work on a line; whether it is gone.
  using Discard = std::function<bool(std::size_t line)>;

  /// Hidden until it is opened; both must outlive the dialog.
  CRecoveryDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Shows the dialog until it is answered: the line chosen, as it was numbered in `lines`; nothing if none is.
  std::optional<std::size_t> Ask(const std::vector<CLine>& lines, Discard discard);

 protected:
  bool ReadInput() override;

 private:
  void Refresh();
  void DiscardChosen();
  /// The line that is chosen in the list; nothing where none is.
  std::optional<std::size_t> Chosen() const;
  static void cb_m_pList(Fl_Widget* widget, void* dialog);
  static void cb_m_pDiscard(Fl_Widget* widget, void* dialog);

  Fl_Hold_Browser* m_pList = nullptr;
  Fl_Button* m_pDiscard = nullptr;
  std::vector<CLine> m_aLines;
  std::vector<std::size_t> m_auShown;  ///< the lines that are in the list, in its order
  Discard m_Discard;
  std::optional<std::size_t> m_Answer;
};
