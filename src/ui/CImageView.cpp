#include "ui/CImageView.h"

#include <GL/gl.h>

#include "ui/OpenGLDefaults.h"

CImageView::CImageView(int x, int y, int w, int h) : Fl_Gl_Window(x, y, w, h) {}

void CImageView::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  redraw();
}

void CImageView::draw() {
  PrepareContext(*this);
  if (m_pGrid == nullptr) return;
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}
