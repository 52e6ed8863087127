#pragma once

#include <string>

#include <FL/Fl_Output.H>

#include "ui/seams/HelpTexts.h"

/// An output that no event reaches, so that it never takes the keyboard from the views.
class CPassiveOutput : public Fl_Output {
 public:
  /// Place and size in the window, screen pixels.
  explicit CPassiveOutput(int x, int y, int w, int h, const char* label = nullptr) : Fl_Output(x, y, w, h, label) {
    // A "&" in the label is one, not the mark of a shortcut.
    clear_flag(SHORTCUT_LABEL);
  }

  int handle(int /*event*/) override { return 0; }
};

/// The line at the bottom of the main window that says what the thing under the mouse is for.
///
/// It remembers the text that stays and the one on show. Indices are those of `kHelpTexts`.
class CHelpLine : public CPassiveOutput {
 public:
  using CPassiveOutput::CPassiveOutput;

  /// Shows a text and makes it the one that stays.
  void SetCurrentHelp(int index);
  /// Another text stays from now on; what has come up in place of the present one stays on show.
  void ReplaceCurrentHelp(int index);
  /// Shows a text until the current one is restored. A message that has come up since the same text was asked for
  /// stays: the mouse over a control asks again at every motion.
  void ShowHelp(int index);
  void RestoreHelp();
  /// Shows a message until the current text is restored or another one is asked for.
  void ShowMessage(const std::string& text);
  /// "Frame nb ... recorded.", until the current text is restored.
  void ShowFrameRecorded(int frame);

  /// Index of the text that belongs to the present state.
  int CurrentHelp() const { return m_iCurrent; }

 private:
  static constexpr int kOther = -1;  ///< none of the numbered texts

  void Show(int index);

  int m_iCurrent = HelpText::kNone;
  int m_iShown = HelpText::kNone;
  int m_iAsked = kOther;  ///< by what lies under the mouse
};
