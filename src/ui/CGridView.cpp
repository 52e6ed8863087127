#include "ui/CGridView.h"

#include <GL/gl.h>

#include "model/CGrid.h"
#include "ui/OpenGLDefaults.h"

namespace {

constexpr std::uint32_t Bit(WaveletMode mode) { return static_cast<std::uint32_t>(mode); }

constexpr std::uint32_t kModeBits = Bit(WaveletMode::None) | Bit(WaveletMode::Simple) | Bit(WaveletMode::New);

}  // namespace

CGridView::CGridView(int x, int y, int w, int h) : Fl_Gl_Window(x, y, w, h) { mode(FL_RGB8 | FL_DOUBLE | FL_DEPTH); }

void CGridView::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  redraw();
}

void CGridView::SelectWaveletMode(WaveletMode mode) {
  m_uDisplayFlags = (m_uDisplayFlags & ~kModeBits) | Bit(mode);
  if (m_pGrid != nullptr) m_pGrid->SetWaveletMode(mode);
}

bool CGridView::SaveFrame(const std::string& /*file*/) { return visible_r() != 0; }

void CGridView::draw() {
  PrepareContext(*this);
  if (m_pGrid == nullptr) return;
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}
