#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include <FL/Fl_Double_Window.H>

#include "editing/CSelectedValues.h"

class CGrid;
class CValueField;
class Fl_Box;
class Fl_Button;
class Fl_Check_Button;
class Fl_Choice;
class ValuesCommands;

/// "Constraint values": the numbers of the selected constraint or curve node, to be typed, and what can be done to a
/// group of heights. It follows the selection while it is open; each change is an edit of the model at once.
class CValuesPanel : public Fl_Double_Window {
 public:
  /// Hidden. All must outlive the panel; `closed` is called once it has closed, by whatever means.
  CValuesPanel(CGrid& grid, ValuesCommands& commands, const Fl_Window& mainWindow, std::function<void()> closed);

  /// Shows the panel as the model is now.
  void Open();
  void hide() override;

  /// Brings all widgets up to date with the model; a number that is being typed stays while the model has the same
  /// one, and counts for what it was typed for when something else is selected. Cheap where nothing has changed.
  void Refresh();

 private:
  enum Group : std::size_t { kRaise, kScale, kSet };

  void BuildPoint();
  void BuildCurve();
  void BuildGroup();
  CValueField* AddValue(ConstraintValue which, int x, int y, const char* label);
  std::string Typed(ConstraintValue which, const std::optional<double>& number);
  void FollowSelection();
  CValueField* AddGroupField(Group action, int y, const char* label);
  void RefreshCurve();
  void RefreshGroup();
  void Tell(const std::string& text);
  /// Passes on why a number was refused, empty where it has been changed.
  std::string NoteChange(std::string refusal);
  void EndTaking();
  /// Performs what the button beside a field of the group is for.
  void ChangeGroup(Group action);
  void SetFromWidgets();

  static void cb_SameHeight(Fl_Widget* widget, void* panel);
  static void cb_Attributes(Fl_Widget* widget, void* panel);
  static void cb_DeleteGroup(Fl_Widget* widget, void* panel);
  template <Group kAction>
  static void cb_Group(Fl_Widget* widget, void* panel);

  CGrid& m_Grid;
  ValuesCommands& m_Commands;
  const Fl_Window& m_MainWindow;
  std::function<void()> m_Closed;
  CSelectedValues m_Values;
  CSelectedValues::CSubject m_Subject;  ///< whose numbers the fields show
  std::string m_Told;
  std::string m_What;

  std::array<CValueField*, kConstraintValues> m_apFields{};
  Fl_Box* m_pWhat = nullptr;
  Fl_Button* m_pSameHeight = nullptr;
  Fl_Choice* m_pType = nullptr;
  Fl_Check_Button* m_pClosed = nullptr;
  std::array<Fl_Check_Button*, 2> m_apAutoBumps{};
  Fl_Box* m_pGroup = nullptr;
  std::string m_Group;
  std::array<CValueField*, 3> m_apGroupFields{};
  std::array<double, 3> m_afGroupNumbers{0.0, 1.0, 0.0};
  std::array<Fl_Button*, 4> m_apGroupButtons{};
  Fl_Box* m_pTold = nullptr;
};
