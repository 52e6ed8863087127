#pragma once

#include <FL/Fl_Gl_Window.H>

class CGrid;

/// The left view: the picture, and what is drawn over it.
class CImageView : public Fl_Gl_Window {
 public:
  CImageView(int x, int y, int w, int h);

  /// The grid to show; it must outlive the view. Without one the view draws nothing.
  void AttachGrid(CGrid& grid);

 protected:
  void draw() override;

 private:
  CGrid* m_pGrid = nullptr;
};
