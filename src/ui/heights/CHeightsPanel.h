#pragma once

#include <functional>
#include <optional>
#include <string>

#include <FL/Fl_Double_Window.H>

#include "model/HeightsAlong.h"

class CNumberInput;
class Fl_Button;
class Fl_Check_Button;
class Fl_Choice;
class Fl_Output;

/// "Heights along a curve": how many, how high and on which side, and how many places would take one. It changes
/// nothing itself; what the user wants is looked at while it is open.
class CHeightsPanel : public Fl_Double_Window {
 public:
  /// Hidden. The main window must outlive it. `place` is called for its button, `closed` once it has closed, by
  /// whatever means.
  CHeightsPanel(const Fl_Window& mainWindow, std::function<void()> place, std::function<void()> closed);

  /// Shows the panel with these numbers; one that is open keeps those that it has.
  void Open(const CHeightsAlong& start);
  void hide() override;

  /// As it stands in the fields; nothing where one of them holds no such number, which `Trouble` names.
  std::optional<CHeightsAlong> Wanted() const;
  std::string Trouble() const;

  /// The curve that they are for, as it is now.
  void ShowCurve(const std::string& curve);
  /// How far beside it heights lie, in place of what has been typed.
  void PresetBeside(double beside);
  /// What would be placed, and whether anything.
  void ShowPlan(const std::string& plan, bool any);

 private:
  void BuildSteps();
  void BuildHeights();
  void BuildButtons();
  void Preset(const CHeightsAlong& start);
  void RefreshActive();

  static void cb_Changed(Fl_Widget* widget, void* panel);
  static void cb_Place(Fl_Widget* widget, void* panel);
  static void cb_Close(Fl_Widget* widget, void* panel);

  const Fl_Window& m_MainWindow;
  std::function<void()> m_Place;
  std::function<void()> m_Closed;

  Fl_Output* m_pCurve = nullptr;
  Fl_Choice* m_pBy = nullptr;
  CNumberInput* m_pSteps = nullptr;
  CNumberInput* m_pFirst = nullptr;
  CNumberInput* m_pLast = nullptr;
  Fl_Check_Button* m_pFollow = nullptr;
  Fl_Choice* m_pSide = nullptr;
  CNumberInput* m_pBeside = nullptr;
  Fl_Output* m_pPlan = nullptr;
  Fl_Button* m_pPlace = nullptr;
};
