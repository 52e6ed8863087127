#include "ui/CImageView.h"

#include <filesystem>

#include <GL/gl.h>

#include "ui/OpenGLDefaults.h"

CImageView::CImageView(int x, int y, int w, int h) : Fl_Gl_Window(x, y, w, h) {}

void CImageView::AttachGrid(CGrid& grid, ViewHost& /*host*/) {
  m_pGrid = &grid;
  redraw();
}

bool CImageView::LoadImage(const std::string& file) {
  if (!std::filesystem::exists(file)) return false;
  m_TextureFileName = file;
  return true;
}

bool CImageView::SaveFrame(const std::string& /*file*/) { return visible_r() != 0; }

void CImageView::draw() {
  PrepareContext(*this);
  if (m_pGrid == nullptr) return;
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}
