#include "ui/scissors/CScissorsCanvas.h"

#include <algorithm>
#include <utility>

#include <GL/gl.h>

#include "scissors/CScissorsTool.h"
#include "ui/drawing/PrepareContext.h"

namespace {

// Key points are at least this large, so that they can be seen at any zoom.
constexpr int kMarkSide = 5;

}  // namespace

CScissorsCanvas::CScissorsCanvas(int x, int y, int w, int h, std::function<bool(int)> onEvent)
    : Fl_Gl_Window(x, y, w, h), m_OnEvent(std::move(onEvent)) {
  mode(FL_RGB8 | FL_DOUBLE);
}

void CScissorsCanvas::Show(const CScissorsTool* tool, const CPixelViewport* view) {
  m_pTool = tool;
  m_pView = view;
  m_Cursor.reset();
  redraw();
}

void CScissorsCanvas::SetCursor(std::optional<CPixelPosition> cursor) {
  if (m_Cursor == cursor) return;
  m_Cursor = cursor;
  redraw();
}

int CScissorsCanvas::handle(int event) { return m_OnEvent(event) ? 1 : Fl_Gl_Window::handle(event); }

void CScissorsCanvas::draw() {
  PrepareContext(*this);
  glDisable(GL_BLEND);
  glDisable(GL_DEPTH_TEST);
  glClearColor(kBackground.m_uRed / 255.0F, kBackground.m_uGreen / 255.0F, kBackground.m_uBlue / 255.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  if (m_pTool == nullptr) return;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, w(), h(), 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  DrawPicture();
  glBegin(GL_QUADS);
  const CScissorsContours& contours = m_pTool->Contours();
  for (std::size_t index = 0; index < contours.Traced().size(); ++index) {
    DrawContour(contours.Traced()[index], static_cast<int>(index) == contours.Selected() ? kSelected : kTraced);
  }
  DrawContour(contours.InProgress(), kInProgress);
  DrawLiveWire();
  DrawKeyPoints();
  glEnd();
}

void CScissorsCanvas::SetColour(CColour colour) { glColor3ub(colour.m_uRed, colour.m_uGreen, colour.m_uBlue); }

// Only what is visible is sent, and the rows of the picture run down like those of the window.
void CScissorsCanvas::DrawPicture() {
  const CTopDownImage& image = m_pTool->Image();
  const CPixelPosition size = m_pView->VisibleSize();
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, image.m_iWidth);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, m_pView->First().m_iColumn);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, m_pView->First().m_iRow);
  const float scale = pixels_per_unit() * static_cast<float>(m_pView->Zoom());
  glPixelZoom(scale, -scale);
  glRasterPos2i(0, 0);
  glDrawPixels(size.m_iColumn, size.m_iRow, GL_RGB, GL_UNSIGNED_BYTE, image.m_aPixels.data());
}

void CScissorsCanvas::DrawContour(const CTracedContour& contour, CColour colour) const {
  SetColour(colour);
  for (const CPathPixel& pixel : contour.m_aPixels) Square(pixel.Position(), m_pView->Zoom());
}

void CScissorsCanvas::DrawLiveWire() const {
  if (!m_Cursor.has_value() || !m_pTool->HasPath(*m_Cursor)) return;
  SetColour(kLiveWire);
  for (std::optional<CPixelPosition> p = m_Cursor; p.has_value(); p = m_pTool->Tree().Previous(*p)) {
    Square(*p, m_pView->Zoom());
  }
}

void CScissorsCanvas::DrawKeyPoints() const {
  const CScissorsContours& contours = m_pTool->Contours();
  if (!contours.IsInProgress()) return;
  const int side = std::max(kMarkSide, m_pView->Zoom());
  SetColour(kKeyPoint);
  for (const CPathPixel& pixel : contours.InProgress().m_aPixels) {
    if (pixel.m_bKeyPoint) Square(pixel.Position(), side);
  }
  SetColour(kSeed);
  Square(contours.Seed(), side);
}

void CScissorsCanvas::Square(CPixelPosition pixel, int side) const {
  const int zoom = m_pView->Zoom();
  const int left = (pixel.m_iColumn - m_pView->First().m_iColumn) * zoom - (side - zoom) / 2;
  const int top = (pixel.m_iRow - m_pView->First().m_iRow) * zoom - (side - zoom) / 2;
  glVertex2i(left, top);
  glVertex2i(left + side, top);
  glVertex2i(left + side, top + side);
  glVertex2i(left, top + side);
}
