#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include <FL/Fl_Window.H>

#include "drawing/CTextures.h"
#include "drawing/DisplayFlags.h"
#include "editing/CSolverControl.h"
#include "model/GridHost.h"
#include "ui/seams/ToolWindow.h"
#include "ui/seams/ViewHost.h"
#include "ui/window/CMainMenu.h"
#include "ui/window/CRedrawPacer.h"
#include "ui/window/CToolkitDialogs.h"
#include "ui/window/CWindowServices.h"
#include "ui/window/ControlWidgets.h"

class CGridView;
class CHelpLine;
class CImageView;
class Fl_Button;
class Fl_Gl_Window;
class Fl_Value_Output;

/// The main window: menu, the image view on the left and the model view on the right, two panels of controls below
/// them, the help line. It is the host of the grid attached to it and of both views.
///
/// Closing it ends the program with exit status 0; Escape does not close it. RELIEVO_SCALE scales it.
class CImageViewUI : public Fl_Window, public GridHost, public ViewHost, private SolverPanel, public CommandHost {
 public:
  enum class Tool { LightSources, Recorder, Scissors };

  /// `dialogs`, if given, must outlive the window; otherwise the questions are the toolkit's.
  explicit CImageViewUI(CSolverControl::StartTimer startTimer, UserDialogs* dialogs = nullptr);
  ~CImageViewUI() override;
  CImageViewUI(const CImageViewUI&) = delete;
  CImageViewUI& operator=(const CImageViewUI&) = delete;

  /// Shows `grid` in both views, becomes its host and selects the default wavelet mode. The grid must outlive the
  /// window.
  void AttachGrid(CGrid& grid);
  void SetServices(CWindowServices services);
  /// The window that a button of "Interfaces" opens. Without one the button is inactive.
  void SetTool(Tool tool, std::unique_ptr<ToolWindow> window);

  CImageView& ImageView() { return *m_pImageView; }
  CGridView& GridView() { return *m_pGridView; }
  CMainMenu& Menu() { return *m_pMenu; }
  CHelpLine& HelpLine() { return *m_pHelpLine; }
  CSolverControl& Solver() { return m_Solver; }
  Fl_Widget& Widget(Control control) { return *m_apWidgets[Index(control)]; }

  void resize(int x, int y, int w, int h) override;

  // The read-outs.

  /// Number of iterations done; logged.
  void SetNumberIter(int n);
  void SetNumberOfConstraints(int n);
  void SetNumberOfCells(int n);
  void SetNumberOfPoints(int n);

  // For the grid.

  /// Both views, no oftener than a running solver can bear.
  void RequestRedraw() override { m_RedrawPacer.Request(); }
  /// The trace is shown over the picture only, and in its read-outs.
  void ShowInterpolation(const CInterpolationTrace& trace) override;
  void ShowIterations(int iterations) override { SetNumberIter(iterations); }
  void ShowResolution(int leaves, int points) override;
  void ShowConstraints(int count) override { SetNumberOfConstraints(count); }
  void ProcessEvents() override;
  void PerformCommand(int operation) override { m_Commands.Perform(operation); }
  void CurvesRefused(int count) override { m_Commands.TellRefusedCurves(count); }
  void PauseSolverConverged() override { m_Solver.PauseSolverConverged(); }
  void PauseSolverGaveUp() override;
  void ResumeAfterChange() override { m_Solver.ResumeAfterChange(); }

  // For the views.

  void PauseSolverForCommand() override { m_Solver.PauseSolverForCommand(); }
  void ResumeAfterCommand() override { m_Solver.ResumeAfterCommand(); }
  void ShowHelp(int index) override;
  void RestoreHelp() override;
  void SetCurrentHelp(int index) override;
  void ShowMessage(const std::string& text) override;
  void Tell(const std::string& text) override;
  void ShowCurveType(int type) override;
  void EditCurveAttributes(const CPlanePoint& place) override;
  void RedrawImageView() override;
  void ImageGridShown() override { m_pMenu->SetChecked(MenuEntry::ImageGrid, true); }
  void RedrawModelView() override;
  void FocusImageView() override;
  bool ShowsDebugZone() const override { return m_bDebugZone; }
  void ShowPointerInside(bool inside) override;
  void ShowInfluence(double value) override;
  void ShowNumber(int number, int levelCode) override;
  int CurrentLight() const override { return m_Services.m_CurrentLight ? m_Services.m_CurrentLight() : -1; }
  void LightsMoved() override;

  // Questions to the user, for all of them. Every dialog ends the drag under way.

  std::optional<std::string> ChooseFile(const char* title, const char* pattern) override;
  bool Ask(const char* question) override;
  std::string AskText(const char* question) override;
  void Notice(const char* text) override;

 private:
  // CImageViewUI.cpp: what the window is made of.
  void BuildWidgets();
  void Relayout();
  void SetVisible(Control control, bool visible);
  void Enable(Control control, bool enable);
  /// Activates what there is something to work with for, in the present mode.
  void RefreshEnabled();
  void RefreshReadOuts();
  Fl_Button& Button(Control control);
  Fl_Value_Output& ReadOut(Control control);
  static void cb_Window(Fl_Widget* widget, void* data);
  static void cb_PendingWork(void* data);

  // ImageViewUICommands.cpp: what its controls do.
  void ConnectCallbacks();
  void Chosen(MenuEntry entry);
  bool FlagChosen(MenuEntry entry);
  void SetEditingMode(EditingMode mode);
  void SetCurveType(int type);
  /// The help text that stays with what the mouse does in the image view.
  int CurrentHelp() const;
  void PerformPendingWork();
  void TellOfWaitingEdit();
  void StopPressed();
  void SetDebugFlag(std::uint32_t flag, bool on);
  void UpdateDebugReadOuts();
  void CycleLevelTool();
  void ToggleSelect();
  void ToggleFreeze();
  void ToggleTool(Tool tool);
  void ToolClosed(Tool tool);
  void ShowLamp(Tool tool, bool on);
  void ShowDebugZone(bool show);
  void ShowHelpLine(bool show);
  template <class View>
  void Shoot(View& view, Fl_Gl_Window& other);
  static void cb_m_pbtnSwitchHR_LR(Fl_Widget* widget, void* data);

  // For the solver control and the commands.
  void ShowSolverRunning(bool running) override;
  void EnableSolverControls(bool enable) override;
  void EnableEditing(bool enable) override;
  bool LoadPicture(const std::string& file) override;
  std::string TextureFile() const override;
  void GridReplaced() override;
  void EndDrags() override;

  double m_fScale;
  CToolkitDialogs m_ToolkitDialogs;
  UserDialogs& m_Dialogs;
  CSolverControl m_Solver;
  CGridCommands m_Commands;
  CWindowServices m_Services;
  CGrid* m_pGrid = nullptr;

  CControlWidgets m_apWidgets{};                  ///< owned by the window
  std::array<bool, kControlCount> m_abVisible{};  ///< as they are while the debug zone is shown
  CTextures m_Textures;
  CRedrawPacer m_RedrawPacer;
  CMainMenu* m_pMenu = nullptr;
  CImageView* m_pImageView = nullptr;
  CGridView* m_pGridView = nullptr;
  CHelpLine* m_pHelpLine = nullptr;
  Fl_Button* m_pbtnSwitchHR_LR = nullptr;
  std::array<std::unique_ptr<ToolWindow>, 3> m_apTools;

  bool m_bDebugZone = true;
  bool m_bHelpLine = true;
  bool m_bPictureLoaded = false;
  bool m_bFreezing = false;
  bool m_bEditWaits = false;   ///< for the solver, and the user is not told yet
  bool m_bPerforming = false;  ///< pending work is being done, perhaps with a dialog that lets events in
};
