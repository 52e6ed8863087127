#pragma once

#include <functional>
#include <string>

#include <FL/Fl_Double_Window.H>

#include "ui/depth/CEstimateFields.h"
#include "ui/depth/CTearFields.h"

class CGrid;
class Fl_Button;
class Fl_Check_Button;
class Fl_Choice;
class Fl_Float_Input;
class Fl_Output;
class Fl_Value_Slider;
class ReferenceCommands;

/// "Reference depth": the depth map that the surface follows, how it is taken, and how well the heights go with it.
/// Each change is an edit of the model at once.
class CReferencePanel : public Fl_Double_Window {
 public:
  /// Hidden. All must outlive the panel; `closed` is called once it has closed, by whatever means.
  CReferencePanel(CGrid& grid, ReferenceCommands& commands, const Fl_Window& mainWindow, std::function<void()> closed);

  /// Shows the panel as the model is now.
  void Open();
  void hide() override;

  /// Brings all widgets up to date with a model; a number that is being typed stays while the model has the same one.
  void Refresh(const CGrid& grid);
  /// Whether the map lies over the photograph.
  void ShowMapShown(bool shown);
  /// Whether the photograph carries a map.
  void ShowEmbedded(bool there);
  /// Its parts that are about more than the model.
  CEstimateFields& Estimate() { return *m_pEstimate; }
  CTearFields& Tears() { return *m_pTears; }

 private:
  void BuildMap();
  void BuildSettings(int y);
  void BuildFit(int y);
  void RefreshSettings(const CGrid& grid);
  void RefreshFit(const CGrid& grid);
  void ClearFit();
  void ShowSceneDepth(const std::string& text);

  static void cb_Load(Fl_Widget* widget, void* panel);
  static void cb_ShowMap(Fl_Widget* widget, void* panel);
  static void cb_Embedded(Fl_Widget* widget, void* panel);
  static void cb_Remove(Fl_Widget* widget, void* panel);
  static void cb_Strength(Fl_Widget* widget, void* panel);
  static void cb_NearIsBright(Fl_Widget* widget, void* panel);
  static void cb_Zero(Fl_Widget* widget, void* panel);
  static void cb_Response(Fl_Widget* widget, void* panel);
  static void cb_SceneDepth(Fl_Widget* widget, void* panel);
  static void cb_SelectWorst(Fl_Widget* widget, void* panel);

  CGrid& m_Grid;
  ReferenceCommands& m_Commands;
  const Fl_Window& m_MainWindow;
  std::function<void()> m_Closed;
  std::string m_SceneDepth;  ///< as the panel wrote it last

  Fl_Output* m_pFile = nullptr;
  Fl_Button* m_pRemove = nullptr;
  Fl_Button* m_pEmbedded = nullptr;
  Fl_Check_Button* m_pShowMap = nullptr;
  bool m_bMapShown = false;  ///< as the check box says
  CEstimateFields* m_pEstimate = nullptr;
  Fl_Value_Slider* m_pStrength = nullptr;
  Fl_Check_Button* m_pNearIsBright = nullptr;
  Fl_Choice* m_pZero = nullptr;
  Fl_Choice* m_pResponse = nullptr;
  Fl_Float_Input* m_pSceneDepth = nullptr;
  Fl_Output* m_pFitted = nullptr;
  Fl_Output* m_pScale = nullptr;
  Fl_Output* m_pOffset = nullptr;
  Fl_Output* m_pRms = nullptr;
  Fl_Output* m_pWorst = nullptr;
  Fl_Button* m_pSelectWorst = nullptr;
  CTearFields* m_pTears = nullptr;
};
