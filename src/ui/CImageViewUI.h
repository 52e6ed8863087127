#pragma once

#include <memory>

#include <FL/Fl_Window.H>

#include "model/GridHost.h"

class CGrid;
class CGridView;
class CImageView;
class ViewHost;

/// The main window: the image view on the left and the model view on the right. It is the host of the grid attached to
/// it.
///
/// Closing it ends the program with exit status 0; Escape does not close it.
class CImageViewUI : public Fl_Window, public GridHost {
 public:
  /// Has the toolkit call the solver tick of a grid, unless it does so already.
  using StartSolverTimer = void (*)(CGrid& grid);

  explicit CImageViewUI(StartSolverTimer startTimer);
  ~CImageViewUI() override;
  CImageViewUI(const CImageViewUI&) = delete;
  CImageViewUI& operator=(const CImageViewUI&) = delete;

  /// Shows `grid` in both views, becomes its host and selects the default wavelet mode. The grid must outlive the
  /// window.
  void AttachGrid(CGrid& grid);

  CImageView& ImageView() { return *m_pImageView; }
  CGridView& GridView() { return *m_pGridView; }

  void RequestRedraw() override;
  /// The trace is shown over the picture only.
  void ShowInterpolation(const CInterpolationTrace& trace) override;
  void ProcessEvents() override;
  void PauseSolverConverged() override;
  void ResumeAfterChange() override;

 private:
  static void cb_Window(Fl_Widget* widget, void* data);

  StartSolverTimer m_pStartTimer;
  std::unique_ptr<ViewHost> m_pViewHost;
  CImageView* m_pImageView = nullptr;  ///< owned by the window, like every widget
  CGridView* m_pGridView = nullptr;
  CGrid* m_pGrid = nullptr;
  bool m_bPausedConverged = false;  ///< why the solver does not run: it has converged
};
