#include "drawing/ModelPainter.h"

#include <algorithm>
#include <array>
#include <span>

#include <GL/gl.h>
#include <GL/glu.h>

#include "base/Console.h"
#include "drawing/CCamera.h"
#include "drawing/CTextures.h"
#include "drawing/ConstraintDrawing.h"
#include "drawing/CurveColours.h"
#include "drawing/Quadrics.h"
#include "drawing/ScreenAxes.h"
#include "model/CGrid.h"

namespace {

// How far the surface is held behind the lines on it: a hundredth of R, where the depth of the view is 200 R. Without
// it surface and lines are drawn through each other.
constexpr double kBehind = 5e-5;

// How far behind its lines the surface has to be on a slope, in pixels along it: to the edge of the line, whose soft
// edges make it a pixel wider; up to the root of two more, as the slope is taken along rows and columns.
float SlopeOffset(float thickness) {
  constexpr float kRootOfTwo = 1.4143F;
  return kRootOfTwo * (thickness + 1) / 2;
}

// Drawing sizes are meant for a model 100 units wide.
double SizeUnit(const CGrid& grid) {
  const CExtent& extent = grid.Surface().Lattice().Extent();
  return 0.01 * std::max(extent.x1 - extent.x0, extent.y1 - extent.y0);
}

// A colour that no other normal has at the start.
constexpr CColour kTexelNormalColour{0.5, 0.75, 1};

bool HasActiveLight(const CLightSet& lights) {
  return std::ranges::any_of(lights.m_aLights, [](const CLight& light) { return light.m_bActive; });
}

std::array<GLfloat, 4> Rgba(const std::array<double, 3>& colour) {
  return {static_cast<GLfloat>(colour[0]), static_cast<GLfloat>(colour[1]), static_cast<GLfloat>(colour[2]), 1.0F};
}

// A light of the model, at infinity or ambient, as light `id` of OpenGL. Without highlights, as the relighting has
// none.
void SetLight(GLenum id, const CLight& light, bool ambient) {
  if (!light.m_bActive) {
    glDisable(id);
    return;
  }
  constexpr std::array<GLfloat, 4> kNone{0, 0, 0, 1};
  constexpr std::array<GLfloat, 3> kSpotDirection{0, 0, -1};
  constexpr GLfloat kNoSpot = 180;
  const std::array<GLfloat, 4> colour = Rgba(light.m_afColour);
  std::array<GLfloat, 4> direction{};
  std::ranges::transform(light.m_afDirection, direction.begin(), [](double c) { return static_cast<GLfloat>(c); });
  glLightfv(id, GL_DIFFUSE, ambient ? kNone.data() : colour.data());
  glLightfv(id, GL_AMBIENT, ambient ? colour.data() : kNone.data());
  glLightfv(id, GL_SPECULAR, kNone.data());
  glLightfv(id, GL_POSITION, direction.data());
  glLightfv(id, GL_SPOT_DIRECTION, kSpotDirection.data());
  glLightf(id, GL_SPOT_EXPONENT, 0);
  glLightf(id, GL_SPOT_CUTOFF, kNoSpot);
  glEnable(id);
}

// The added lights; the colour set afterwards is the material's. They alone shine: OpenGL's own ambient light would
// keep what lies in the shade from being dark.
void EnableLighting(const CLightSet& lights) {
  constexpr std::array<GLfloat, 4> kNone{0, 0, 0, 1};
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, kNone.data());
  for (std::size_t k = 0; k < lights.m_aLights.size(); ++k)
    SetLight(static_cast<GLenum>(GL_LIGHT0 + k), lights.m_aLights[k], k == CLightSet::kAmbient);
  glEnable(GL_LIGHTING);
}

// Texture coordinates are the model's x and y: the picture, which fills only a part of its texture, lies over all of
// the model.
void SetTextureMatrix(const CExtent& extent, const CTextureImages& images) {
  const double u = static_cast<double>(images.PictureWidth()) / images.TextureWidth();
  const double v = static_cast<double>(images.PictureHeight()) / images.TextureHeight();
  glMatrixMode(GL_TEXTURE);
  glLoadIdentity();
  glScaled(u / (extent.x1 - extent.x0), v / (extent.y1 - extent.y0), 1);
  glTranslated(-extent.x0, -extent.y0, 0);
  glMatrixMode(GL_MODELVIEW);
}

void EnableTexture(const CGrid& grid, CTextures& textures, int drawTexture) {
  const CTextureImages& images = grid.Relighting().Textures();
  if (!images.HasPicture()) return;
  if (const auto image = DrawnTexture::ImageOf(drawTexture)) {
    if (!textures.Bind(images, *image, PictureReductionNow(grid))) return;
  } else {
    Console() << "CGrid::DrawTexturedModel\t\t\tInvalid m_iDrawTexture\n";
  }
  SetTextureMatrix(grid.Surface().Lattice().Extent(), images);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  glEnable(GL_TEXTURE_2D);
}

void DrawElements(GLenum mode, std::span<const std::uint32_t> vertices) {
  glDrawElements(mode, static_cast<GLsizei>(vertices.size()), GL_UNSIGNED_INT, vertices.data());
}

void DrawSegments(std::span<const float> ends, const CColour& colour) {
  SetColour(colour);
  glLineWidth(g_DrawingSettings.m_ModelView.m_fGridThickness);
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, ends.data());
  glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(ends.size() / 3));
  glDisableClientState(GL_VERTEX_ARRAY);
}

void DrawPointConstraints(const CGrid& grid) {
  const double size = SizeUnit(grid);
  const CViewDrawing& drawing = g_DrawingSettings.m_ModelView;
  const Vector3 unit{size, size, size};
  for (const CPtCstr& c : grid.Constraints().Points()) {
    const Vector3 place{c.m_fX, c.m_fY, c.m_fZ};
    if (c.HasKind(PtCstrKind::kPosition)) DrawPosition(c, drawing, place, unit);
    if (c.HasKind(PtCstrKind::kNormal)) DrawNormal(c, drawing, place, unit);
  }
}

bool IsDrawable(const CCntrCtrl& curve) {
  const std::size_t nodes = curve.Nodes().size();
  if (nodes == 0) {
    Console() << "Error CGrid::Draw3DCntr : attempt to draw an empty curve\n";
  } else if (nodes == 1) {
    Console() << "Error CGrid::Draw3DCntr : attempt to draw a one-point-curve :\n"
                 "\t\t\t\t\t\t   There should'n be a one-point curve\n";
  } else if (!curve.HasType(CurveType::kAll)) {
    Console() << "one unknown type contour founed!\n";
  }
  return nodes > 1;
}

// A state shows as a wider line behind that of the type. The vertex array is that of the curves.
void DrawCurve(const CCntrCtrl& curve, const CCurveArrays::CLine& line) {
  constexpr float kWidth = 3.0F;
  constexpr float kStateWidth = 7.0F;
  const auto draw = [&](const CColour& colour, float width) {
    SetColour(colour);
    glLineWidth(width);
    glDrawArrays(GL_LINE_STRIP, static_cast<GLint>(line.m_uFirst), static_cast<GLsizei>(line.m_uCount));
  };
  const CColour& colour = CurveColour(curve.Type());
  if (curve.HasState(PtCstrState::kSelected | PtCstrState::kHighlighted))
    draw(CurveStateColour(curve, colour), kStateWidth);
  draw(colour, kWidth);
}

// One of `vertices` per node.
void DrawNodes(const CCntrCtrl& curve, std::span<const std::uint32_t> vertices) {
  constexpr float kSize = 6.0F;
  const CColour& colour = CurveColour(curve.Type());
  auto vertex = vertices.begin();
  glPointSize(kSize);
  glBegin(GL_POINTS);
  for (const CCntrNode& node : curve.Nodes()) {
    SetColour(CurveStateColour(node, colour));
    glArrayElement(static_cast<GLint>(*vertex++));
  }
  glEnd();
}

// A tube from the middle of the model's box towards each directional light.
void DrawLightMarkers(const CGrid& grid, const CLightSet& lights) {
  constexpr int kSlices = 20;
  constexpr double kRadius = 1.0;
  const CExtent& e = grid.Surface().Lattice().Extent();
  const double length = (e.x1 - e.x0 + e.y1 - e.y0) / 4;
  for (const CLight& light : std::span(lights.m_aLights).first<CLightSet::kAmbient>()) {
    if (!light.m_bActive || !light.m_bDrawn) continue;
    glColor4dv(light.m_afTubeColour.data());
    glLineWidth(1);
    draw_cylinder((e.x0 + e.x1) / 2, (e.y0 + e.y1) / 2, (grid.Surface().MinHeight() + grid.Surface().MaxHeight()) / 2,
                  light.m_afDirection[0], light.m_afDirection[1], light.m_afDirection[2], length, kSlices, kRadius);
  }
}

}  // namespace

CColour SubdivisionColour(int level) {
  constexpr std::array<CColour, 4> kColours{{{1, 0, 0}, {1, 0.5, 0.5}, {0.5, 1, 0.5}, {0.5, 0.5, 1}}};
  return kColours[std::min(static_cast<std::size_t>(level), kColours.size() - 1)];
}

void CModelPainter::DrawScene(const CGrid& grid, const CView& view, const CCamera& camera, const CHalfSizes& sizes) {
  const auto [red, green, blue, alpha] = g_DrawingSettings.m_afBackground;
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  glClearColor(red, green, blue, alpha);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  // Zoomed in to nothing, there is no projection.
  const double r = camera.m_fR;
  if (r == 0) return;
  constexpr double kDepth = 100;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(-sizes.m_fWidth, sizes.m_fWidth, -sizes.m_fHeight, sizes.m_fHeight, -kDepth * r, kDepth * r);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  const Vector3& centre = camera.m_Centre;
  const Vector3& eye = camera.m_Eye;
  const Vector3& up = camera.m_Up;
  gluLookAt(eye.x, eye.y, eye.z, centre.x, centre.y, centre.z, up.x, up.y, up.z);
  Draw(grid, view);
}

void CModelPainter::Draw(const CGrid& grid, const CView& view) {
  // Loading a picture leaves texturing on.
  glDisable(GL_TEXTURE_2D);
  if ((view.m_uFlags & ModelFlag::kTexturedModel) != 0) DrawTexturedModel(grid, view);
  if ((view.m_uFlags & ModelFlag::kGrid) != 0) DrawGridLines(grid);
  if ((view.m_uFlags & ModelFlag::kCurves) != 0) Draw3DCntr(grid);
  if ((view.m_uFlags & ModelFlag::kPointConstraints) != 0) DrawPointConstraints(grid);
  DrawNormals(grid, view.m_uFlags);
  DrawLightMarkers(grid, grid.Relighting().RemovedLights());
  DrawLightMarkers(grid, grid.Relighting().AddedLights());
  glColor4f(1, 1, 1, 1);
}

void CModelPainter::DrawTexturedModel(const CGrid& grid, const CView& view) {
  // The new illumination carries the shading already, and the albedo is to be seen without. Without a light of its own
  // the model shows the photograph as it is.
  const bool computed = view.m_iDrawTexture == DrawnTexture::kIllumination || view.m_iDrawTexture == DrawnTexture::kKd;
  const bool lit = HasActiveLight(grid.Relighting().AddedLights()) && !computed;
  glColor4f(1, 1, 1, 1);
  if (lit) {
    EnableLighting(grid.Relighting().AddedLights());
    m_Arrays.RefreshNormals(grid);
    glEnableClientState(GL_NORMAL_ARRAY);
  } else {
    m_Arrays.RefreshSurface(grid);
  }
  if (view.m_pTextures != nullptr) EnableTexture(grid, *view.m_pTextures, view.m_iDrawTexture);
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_TEXTURE_COORD_ARRAY);
  // The surface is opaque, and a little behind what is drawn on it.
  glDisable(GL_BLEND);
  glDepthRange(kBehind, 1);
  // On a slope the half of a line that lies downhill of its middle would be in the surface all the same. Only with grid
  // lines, because it makes drawing slower.
  if ((view.m_uFlags & ModelFlag::kGrid) != 0) {
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(SlopeOffset(g_DrawingSettings.m_ModelView.m_fGridThickness), 0);
  }
  DrawSurface(grid, view, lit);
  glDisable(GL_POLYGON_OFFSET_FILL);
  glDepthRange(0, 1);
  glEnable(GL_BLEND);
  glDisableClientState(GL_NORMAL_ARRAY);
  glDisableClientState(GL_TEXTURE_COORD_ARRAY);
  glDisableClientState(GL_VERTEX_ARRAY);
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
  glColor4f(1, 1, 1, 1);
}

// With the arrays that are enabled.
void CModelPainter::DrawSurface(const CGrid& grid, const CView& view, bool lit) {
  constexpr GLsizei kStride = 3 * sizeof(float);
  if (lit) glNormalPointer(GL_FLOAT, 0, m_Arrays.Normals().data());
  glVertexPointer(3, GL_FLOAT, kStride, m_Arrays.Positions().data());
  glTexCoordPointer(2, GL_FLOAT, kStride, m_Arrays.Positions().data());
  if ((view.m_uFlags & (ModelFlag::kClosedTears | ModelFlag::kBehindTears)) == 0) {
    DrawElements(GL_TRIANGLES, m_Arrays.Triangles());
    return;
  }
  m_Closed.Refresh(grid, m_Arrays, (view.m_uFlags & ModelFlag::kBehindTears) != 0, lit);
  const CClosedTears& tears = m_Closed.Tears();
  DrawElements(GL_TRIANGLES, tears.PlainTriangles());
  if (lit) glNormalPointer(GL_FLOAT, 0, tears.Normals().data());
  glVertexPointer(3, GL_FLOAT, kStride, tears.Positions().data());
  glTexCoordPointer(2, GL_FLOAT, 0, tears.Shown().data());
  DrawElements(GL_TRIANGLES, tears.Triangles());
  DrawElements(GL_TRIANGLES, tears.Strips());
}

void CModelPainter::DrawGridLines(const CGrid& grid) {
  m_Arrays.RefreshLines(grid);
  glLineWidth(g_DrawingSettings.m_ModelView.m_fGridThickness);
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, m_Arrays.Positions().data());
  for (int level = 0; level <= grid.Surface().Lattice().Level(); ++level) {
    SetColour(g_DrawingSettings.m_bSpecificSubdivisionColours ? SubdivisionColour(level)
                                                              : g_DrawingSettings.m_GreyGrid);
    DrawElements(GL_LINES, m_Arrays.Lines(level));
  }
  glDisableClientState(GL_VERTEX_ARRAY);
}

void CModelPainter::DrawNormals(const CGrid& grid, std::uint32_t flags) {
  constexpr double kLength = 2.0;
  const double length = kLength * SizeUnit(grid);
  if ((flags & ModelFlag::kCellNormals) != 0) {
    m_Arrays.RefreshCellNormals(grid, length);
    DrawSegments(m_Arrays.CellNormals(), g_DrawingSettings.m_PositionColours.m_Unselected);
  }
  if ((flags & ModelFlag::kPointNormals) != 0) {
    m_Arrays.RefreshPointNormals(grid, length);
    DrawSegments(m_Arrays.PointNormals(), g_DrawingSettings.m_NormalColours.m_Unselected);
  }
  if ((flags & ModelFlag::kTexelNormals) != 0) DrawNormalsTexels(grid, length);
}

void CModelPainter::DrawNormalsTexels(const CGrid& grid, double length) {
  if (!grid.Relighting().Textures().HasPicture()) {
    Console() << "Error Cgrid::DrawNormalsTexels()\t\tNo texture loaded\n";
    return;
  }
  m_Texels.RefreshNormals(grid, length);
  DrawSegments(m_Texels.Normals(), kTexelNormalColour);
}

void CModelPainter::Draw3DCntr(const CGrid& grid) {
  m_Curves.Refresh(grid);
  // Nothing but soft ends would be left of pieces as short as these.
  glDisable(GL_LINE_SMOOTH);
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, m_Curves.Vertices().data());
  auto line = m_Curves.Lines().begin();
  std::span<const std::uint32_t> nodes = m_Curves.NodeVertices();
  for (const CCntrCtrl& curve : grid.Constraints().Curves()) {
    const CCurveArrays::CLine& vertices = *line++;
    if (IsDrawable(curve)) {
      DrawCurve(curve, vertices);
      DrawNodes(curve, nodes);
    }
    nodes = nodes.subspan(curve.Nodes().size());
  }
  glDisableClientState(GL_VERTEX_ARRAY);
  glEnable(GL_LINE_SMOOTH);
}
