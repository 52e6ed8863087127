#include "drawing/PicturePainter.h"

#include <algorithm>
#include <array>
#include <span>
#include <type_traits>

#include <GL/gl.h>

#include "drawing/COverlayPainter.h"
#include "drawing/CTextures.h"
#include "drawing/ConstraintDrawing.h"
#include "drawing/CurvePainter.h"
#include "drawing/DisplayFlags.h"
#include "drawing/DrawingSettings.h"
#include "drawing/ScreenAxes.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// A colour that no constraint or grid line has at the start.
constexpr CColour kFrozenColour{0, 1, 1};

// Lets the picture shine through.
constexpr std::array<double, 4> kMaskedColour{1, 0, 1, 0.6};

// By the level of a side, the finest first.
const CColour& LevelColour(int level) {
  static constexpr std::array<CColour, 4> kColours{{{1, 0, 0}, {1, 0.5, 0.5}, {0.5, 1, 0.5}, {0.5, 0.5, 1}}};
  return kColours[std::min(static_cast<std::size_t>(level), kColours.size() - 1)];
}

template <typename Number>
void DrawVertices(GLenum mode, std::span<const Number> vertices) {
  if (vertices.empty()) return;
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(2, std::is_same_v<Number, int> ? GL_INT : GL_FLOAT, 0, vertices.data());
  glDrawArrays(mode, 0, static_cast<GLsizei>(vertices.size() / 2));
  glDisableClientState(GL_VERTEX_ARRAY);
}

// Lattice coordinates for as long as it lives.
class CLatticeScope {
 public:
  explicit CLatticeScope(const CLattice& lattice) {
    glPushMatrix();
    glTranslated(lattice.Extent().x0, lattice.Extent().y0, 0);
    glScaled(lattice.StepX(), lattice.StepY(), 1);
  }
  ~CLatticeScope() { glPopMatrix(); }
  CLatticeScope(const CLatticeScope&) = delete;
  CLatticeScope& operator=(const CLatticeScope&) = delete;
};

void DrawPicture(const CGrid& grid, CTextures& textures) {
  const CTextureImages& images = grid.Relighting().Textures();
  if (!images.HasPicture()) return;
  if (!textures.Bind(images, CTextureImages::kPhotograph, PictureReductionNow(grid))) return;
  const CExtent& e = grid.Surface().Lattice().Extent();
  const double s = static_cast<double>(images.PictureWidth()) / images.TextureWidth();
  const double t = static_cast<double>(images.PictureHeight()) / images.TextureHeight();
  // The texture matrix of the other view stays in that view's context; the mode has been set in neither.
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  glEnable(GL_TEXTURE_2D);
  glColor3d(1, 1, 1);
  glBegin(GL_QUADS);
  glTexCoord2d(0, 0), glVertex2d(e.x0, e.y0);
  glTexCoord2d(s, 0), glVertex2d(e.x1, e.y0);
  glTexCoord2d(s, t), glVertex2d(e.x1, e.y1);
  glTexCoord2d(0, t), glVertex2d(e.x0, e.y1);
  glEnd();
  glDisable(GL_TEXTURE_2D);
}

// In hundredths of what the view shows, so that a constraint keeps its size on the screen; round where the scales are
// the same.
void DrawPointMarks(const CGrid& grid, bool proportional) {
  const CExtent& e = grid.Surface().Lattice().Extent();
  const CViewDrawing& drawing = g_DrawingSettings.m_ImageView;
  Vector3 unit{(e.x1 - e.x0) / 100 * g_fZoom, (e.y1 - e.y0) / 100 * g_fZoom, 0};
  if (proportional) unit.x = unit.y = std::min(unit.x, unit.y);
  for (const CPtCstr& c : grid.Constraints().Points()) {
    const Vector3 place{c.m_fX, c.m_fY, 0};
    if (c.HasKind(PtCstrKind::kPosition)) DrawPosition(c, drawing, place, unit);
    if (c.HasKind(PtCstrKind::kNormal)) DrawNormal(c, drawing, place, unit);
  }
}

}  // namespace

void CPicturePainter::Draw(const CGrid& grid, const CView& view) {
  if ((view.m_uFlags & ImageFlag::kImage) != 0 && view.m_pTextures != nullptr) DrawPicture(grid, *view.m_pTextures);
  if (view.m_pOverlay != nullptr) view.m_pOverlay->Draw(grid.Surface().Lattice().Extent());
  if ((view.m_uFlags & ImageFlag::kDiscontinuityTexels) != 0) DrawMaskedTexels(grid);
  DrawSubdivision(grid, view);
  if ((view.m_uFlags & ImageFlag::kFreezeMap) != 0) DrawFrozen(grid);
  if ((view.m_uFlags & ImageFlag::kCurves) != 0) DrawCurves(grid);
  if ((view.m_uFlags & ImageFlag::kPointConstraints) != 0)
    DrawPointMarks(grid, (view.m_uFlags & ImageFlag::kProportions) != 0);
  glColor3d(1, 1, 1);
}

void CPicturePainter::DrawSubdivision(const CGrid& grid, const CView& view) {
  const CLatticeScope scope(grid.Surface().Lattice());
  m_Arrays.RefreshSubdivision(grid);
  if ((view.m_uFlags & ImageFlag::kDiscontinuityGap) != 0) {
    glColor3fv(g_DrawingSettings.m_afBackground.data());
    DrawVertices(GL_TRIANGLES, m_Arrays.Gaps());
  }
  if (view.m_bSelectedCells) {
    glColor4d(0.2, 0.6, 1, 0.4);
    DrawVertices(GL_QUADS, grid.Surface().Tree().SelectedCorners());
  }
  glLineWidth(g_DrawingSettings.m_ImageView.m_fGridThickness);
  if ((view.m_uFlags & ImageFlag::kGrid) != 0) {
    for (int level = grid.Surface().Lattice().Level(); level >= 0; --level) {
      SetColour(g_DrawingSettings.m_bSpecificSubdivisionColours ? LevelColour(level) : g_DrawingSettings.m_GreyGrid);
      DrawVertices(GL_LINES, m_Arrays.Lines(level));
    }
  }
  if ((view.m_uFlags & ImageFlag::kDiscontinuityEdges) != 0) {
    SetColour(g_DrawingSettings.m_GreyGrid);
    DrawVertices(GL_LINES, m_Arrays.LinesInside());
  }
}

void CPicturePainter::DrawFrozen(const CGrid& grid) {
  constexpr float kSize = 4.0F;
  const CLatticeScope scope(grid.Surface().Lattice());
  m_Arrays.RefreshFrozen(grid);
  glPointSize(kSize);
  SetColour(kFrozenColour);
  DrawVertices(GL_POINTS, m_Arrays.Frozen());
}

void CPicturePainter::DrawMaskedTexels(const CGrid& grid) {
  const CTexelMap& texels = grid.Relighting().Texels();
  if (texels.Mask().empty()) return;
  m_Texels.RefreshMasked(grid);
  const CExtent& e = grid.Surface().Lattice().Extent();
  glPushMatrix();
  glTranslated(e.x0, e.y0, 0);
  glScaled((e.x1 - e.x0) / texels.Width(), (e.y1 - e.y0) / texels.Height(), 1);
  glColor4dv(kMaskedColour.data());
  DrawVertices(GL_QUADS, m_Texels.Masked());
  glPopMatrix();
}
