#pragma once

#include <string>

#include <FL/Fl_Group.H>

class Fl_Button;
class Fl_Input;
class Fl_Output;
class ReferenceCommands;

/// The part of the panel of the reference depth in which the user's own estimator is started: its command line, what
/// starts and cancels it, and what it says.
class CEstimateFields : public Fl_Group {
 public:
  static constexpr int kHeight = 86;

  /// From `y` on in the panel; the commands must outlive the object.
  CEstimateFields(int y, ReferenceCommands& commands);

  /// What an estimator is doing.
  struct CState {
    bool m_bPossible = false;  ///< there is a photograph
    bool m_bRunning = false;
    std::string m_Line;  ///< the last that it has said, or what has become of it
    bool operator==(const CState&) const = default;
  };
  void Show(const CState& state);
  void SetCommandLine(const std::string& line);

 private:
  static void cb_Begin(Fl_Widget* widget, void* fields);
  static void cb_Cancel(Fl_Widget* widget, void* fields);

  ReferenceCommands& m_Commands;
  Fl_Input* m_pCommandLine;
  Fl_Button* m_pBegin;
  Fl_Button* m_pCancel;
  Fl_Output* m_pLine;
};
