#pragma once

#include <string>

#include <FL/Fl_Window.H>

#include "editing/ModelDisplay.h"
#include "ui/seams/ViewHost.h"
#include "ui/window/CControlSet.h"
#include "ui/window/CMainMenu.h"

class CGrid;
class CCoordinateLine;
class CGridView;
class CHelpLine;
class CImageView;

/// The main window as it looks: menu, the image view on the left and the model view on the right, two panels of
/// controls below them, the help line. It lays them out and shows what it is told in read-outs and help line;
/// RELIEVO_SCALE scales it.
class CWindowFrame : public Fl_Window, public ModelDisplay, public ViewHost {
 public:
  ~CWindowFrame() override;
  CWindowFrame(const CWindowFrame&) = delete;
  CWindowFrame& operator=(const CWindowFrame&) = delete;

  /// Its parts, which live as long as the window.
  CImageView& ImageView() const { return *m_pImageView; }
  CGridView& GridView() const { return *m_pGridView; }
  CMainMenu& Menu() const { return *m_pMenu; }
  CHelpLine& HelpLine() const { return *m_pHelpLine; }
  CCoordinateLine& CoordinateLine() const { return *m_pCoordinates; }
  Fl_Widget& Widget(Control control) { return m_Controls.Widget(control); }

  void resize(int x, int y, int w, int h) override;

  // The model.

  /// Number of iterations done; logged.
  void SetNumberIter(int n) override;
  void SetNumberOfConstraints(int n) override;
  void SetNumberOfCells(int n) override;
  void SetNumberOfPoints(int n) override;
  void TellSolverGaveUp() override;
  void TellSolverStopped() override;
  void ProcessEvents() override;

  // For the views.

  void ShowHelp(HelpText::Index index) override;
  void RestoreHelp() override;
  void SetCurrentHelp(HelpText::Index index) override;
  void ShowMessage(const std::string& text) override;
  void Tell(const std::string& text) override;
  void ShowCurveType(CurveType type) override;
  void RedrawImageView() override;
  void ImageGridShown() override;
  void RedrawModelView() override;
  void FocusImageView() override;
  bool MoveModelView(ViewMove move) override;
  bool ShowsDebugZone() const override { return m_Controls.ShowsDebugZone(); }
  void ShowPointerInside(bool inside) override;
  void ShowInfluence(double value) override;
  void ShowNumber(int number, int levelCode) override;
  bool ShowsCoordinates() const override { return m_bCoordinates; }

 protected:
  CWindowFrame();

  /// What an entry of the menu does.
  virtual void Chosen(MenuEntry entry) = 0;
  /// It was the user who has chosen it, and it is done.
  virtual void ChosenByUser(MenuEntry entry) = 0;

  CControlSet& Controls() { return m_Controls; }
  bool HasPicture() const { return m_bPicture; }
  /// Makes room for what works on a picture.
  void ShowPictureControls();
  void ShowHelpLine(bool show);
  void ShowCoordinateLine(bool show);
  void ShowDebugZone(bool show);
  /// The numbers of a model.
  void ShowCounts(const CGrid& grid);
  void Relayout();

 private:
  void BuildWidgets();

  double m_fScale;
  CControlSet m_Controls;
  CMainMenu* m_pMenu = nullptr;
  CImageView* m_pImageView = nullptr;
  CGridView* m_pGridView = nullptr;
  CHelpLine* m_pHelpLine = nullptr;
  CCoordinateLine* m_pCoordinates = nullptr;
  bool m_bHelpLine = true;
  bool m_bCoordinates = false;
  bool m_bPicture = false;
};
