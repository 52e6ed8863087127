#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "drawing/CTextures.h"
#include "drawing/DisplayFlags.h"
#include "editing/CEditHistory.h"
#include "editing/CEditingHost.h"
#include "editing/CSettings.h"
#include "editing/CSolverControl.h"
#include "editing/HistoryHost.h"
#include "projects/CProject.h"
#include "ui/window/COverlayEntries.h"
#include "ui/window/COverlays.h"
#include "ui/window/CRedrawPacer.h"
#include "ui/window/CRemembered.h"
#include "ui/window/CToolButtons.h"
#include "ui/window/CToolkitDialogs.h"
#include "ui/window/CWindowFrame.h"
#include "ui/window/CWindowServices.h"

/// The main window as it works: it shows what becomes of the grid attached to it, is the host of both views and does
/// what its menu and its controls are for.
///
/// Closing it ends the program with exit status 0; Escape does not close it.
class CImageViewUI : public CWindowFrame, private SolverPanel, public CommandHost, private HistoryHost {
 public:
  using Tool = CToolButtons::Tool;

  /// `dialogs`, if given, must outlive the window; otherwise the questions are the toolkit's.
  explicit CImageViewUI(CSolverControl::StartTimer startTimer, UserDialogs* dialogs = nullptr);
  ~CImageViewUI() override;
  CImageViewUI(const CImageViewUI&) = delete;
  CImageViewUI& operator=(const CImageViewUI&) = delete;

  /// Shows `grid` in both views, becomes its display and selects the default wavelet mode. The grid must outlive
  /// the window.
  void AttachGrid(CGrid& grid);
  void SetServices(CWindowServices services);
  void SetRecovery(CRecoveryServices recovery);
  void UnsavedWorkChanged() override { RefreshEnabled(); }
  /// The window that a button of "Interfaces" opens. Without one the button is inactive.
  void SetTool(Tool tool, std::unique_ptr<ToolWindow> window);

  /// Its parts, which live as long as the window.
  CSolverControl& Solver() { return m_Solver; }
  CGridCommands& Commands() { return m_Commands; }
  CEditHistory& History() { return m_History; }
  COverlays& Overlays() { return m_Overlays; }

  /// Opens a model, a picture or both, once no button is held down and no dialog or menu is open.
  void OpenFiles(const CWorkFiles& files);
  /// Where the photograph has come from; empty without one.
  const CProjectPicture& Picture() const { return m_Picture; }
  CFilesAtHand& Files() { return m_Commands.Files(); }
  /// Kept nowhere until it is told where. Trouble goes to the help line and the console.
  CSettings& Settings() { return m_Settings; }
  /// What is remembered of the run before: the place of the window before it is shown, the rest when it has its grid
  /// and its tools.
  void RestorePlace() { m_Remembered.RestorePlace(); }
  void RestoreSwitches();
  /// The window is about to go, by whatever means.
  void KeepPlace() { m_Remembered.KeepPlace(); }
  /// Says in the help line what to do first, until something of it has been done.
  void ShowFirstStep();
  /// The photograph carries a depth map that waits to be taken, or does not: the help line offers it.
  void OfferDepth(bool offered);

  int handle(int event) override;

  // The model.

  /// Both views, as often as a running solver can bear.
  void RequestRedraw() override { m_RedrawPacer.Request(); }
  /// The trace is shown over the picture only, and in its read-outs.
  void ShowInterpolation(const CInterpolationTrace& trace) override;

  // For the views.

  void PauseSolverForCommand() override { m_Solver.PauseSolverForCommand(); }
  void ResumeAfterCommand() override { m_Solver.ResumeAfterCommand(); }
  void EditCurveAttributes(const CPlanePoint& place) override;
  void OpenConstraintValues() override { OpenTool(Tool::ConstraintValues); }
  void EndChoosing() override;
  int CurrentLight() const override { return m_Services.m_CurrentLight ? m_Services.m_CurrentLight() : -1; }
  void LightsMoved() override;
  void ShowCoordinates(const CPlanePoint* place) override;

  // Questions to the user, for all of them. Every dialog ends the drag under way.

  std::optional<std::string> ChooseFile(const CFileQuestion& question) override;
  bool Ask(const char* question) override;
  std::string AskText(const char* question) override;
  void Notice(const char* text) override;
  /// The notice that the memory for the texels of the picture is not there.
  void TellNoTexelMemory();

 private:
  // CImageViewUI.cpp
  /// Activates the controls that have something to work on in the present mode.
  void RefreshEnabled();
  static void cb_Window(Fl_Widget* widget, void* data);
  static void cb_PendingWork(void* data);

  // ImageViewUIProject.cpp: what projects keep of it.
  void AddTo(CProject& project) const override;
  void ShowProject(const CProject& project) override;
  void ShowProjectPicture(const CProjectPicture& picture);
  void ShowProjectViews(const CProjectViews& views);
  /// All of them, or only those that are the user's again without the project.
  void ShowProjectMarks(const CViewMarks& marks, bool all);
  void RestoreOwnMarks() { SwitchOver(m_Remembered.TakeBack()); }
  CViewMarks Marks() const;
  /// Another picture is on show.
  void PictureTaken(const CProjectPicture& picture);

  // ImageViewUICommands.cpp: what its controls do.
  void ConnectCallbacks();
  void Chosen(MenuEntry entry) override;
  void ChosenByUser(MenuEntry entry) override { m_Remembered.Chosen(entry); }
  /// Marks of the menu, not by the user.
  void SwitchOver(const std::vector<MenuEntry>& entries);
  bool FlagChosen(MenuEntry entry);
  void RequireTexels();
  void SetEditingMode(EditingMode mode);
  void SetCurveType(CurveType type);
  /// The help text that stays with what the mouse does in the image view.
  HelpText::Index CurrentHelp() const;
  /// Takes what the help line offers back: another grid as soon as there is something on this one, the first step when
  /// one has been made.
  void WithdrawOffer();
  bool IsBegun() const;
  void SetDebugFlag(std::uint32_t flag, bool on);
  void UpdateDebugReadOuts();
  void CycleLevelTool();
  void ToggleSelect();
  void ToggleFreeze();
  void ToggleTool(Tool tool);
  /// One that has no button; nothing where there is none.
  void OpenTool(Tool tool);
  void ChooseSeveral(bool on);
  static void cb_m_pbtnSwitchHR_LR(Fl_Widget* widget, void* data);

  /// Shows what is in the window of a model that is another one: label, marks, read-outs, help.
  void ShowModel();

  // ImageViewUIFiles.cpp: files.
  void OpenWaitingFiles();
  /// What was open last, as the menu "Open Recent" offers it from now on.
  void RefreshRecent();
  void OpenRecent(std::size_t place);
  /// `text` is what the desktop hands over.
  void OpenDropped(std::string_view text);

  // ImageViewUIOverlays.cpp: the overlays over the photograph.
  void ShowOverlay(std::shared_ptr<const COverlay> overlay);
  void SaveOverlay();
  void ModelSaved() override;

  // ImageViewUIHistory.cpp: steps back and forward.
  void RequestStep(UserStep step);
  /// Has a grid in the picture's proportions begun at the next tick.
  void RequestFit();
  void RefreshSteps();
  void ShowPendingCurve();
  bool IsDragging() const override;
  bool IsTyping() const override;
  CSurroundings Surroundings() const override;
  CProject Work() const override;
  void StepTaken(const CTakenStep& step) override;
  void StepFailed() override;
  static int cb_UnusedEvent(int event);

  // For the solver control and the commands.
  void ShowSolverRunning(bool running) override;
  void EnableSolverControls(bool enable) override;
  void EnableEditing(bool enable) override;
  bool LoadPicture(const std::string& file) override;
  std::string TextureFile() const override;
  void GridReplaced() override;
  void TellSaved(const std::string& file) override;
  void TellCancelled(const std::string& file) override;
  void TellNoReference(const std::string& file) override;
  void EndDrags() override;

  CSettings m_Settings;
  CRemembered m_Remembered{Menu(), m_Settings, *this};
  CToolkitDialogs m_ToolkitDialogs;
  UserDialogs& m_Dialogs;
  CSolverControl m_Solver;
  CGridCommands m_Commands;
  CEditHistory m_History;
  CEditingHost m_GridHost;
  CWindowServices m_Services;
  CGrid* m_pGrid = nullptr;

  CToolButtons m_Tools;
  CTextures m_Textures;
  CRedrawPacer m_RedrawPacer;
  COverlays m_Overlays;
  std::optional<COverlayEntries> m_OverlayEntries;  ///< as soon as there is a grid
  Fl_Button* m_pbtnSwitchHR_LR = nullptr;

  CWorkFiles m_WaitingFiles;          ///< to be opened
  std::vector<CWorkFiles> m_aRecent;  ///< as the menu shows them
  CProjectPicture m_Picture;          ///< where the photograph has come from
  bool m_bFreezing = false;
  bool m_bFirstStep = false;  ///< is on offer
  bool m_bDepthOffered = false;
};
