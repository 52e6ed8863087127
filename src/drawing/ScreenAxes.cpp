#include "drawing/ScreenAxes.h"

#include <GL/gl.h>

#include "model/CGrid.h"

CScreenAxes ScreenAxesNow() {
  std::array<double, 16> projection{};
  std::array<double, 16> modelView{};
  std::array<GLint, 4> viewport{};
  glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
  glGetDoublev(GL_MODELVIEW_MATRIX, modelView.data());
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return CScreenAxes::Of(projection, modelView, viewport[2], viewport[3]);
}

CReduction PictureReductionNow(const CGrid& grid) {
  const CTextureImages& images = grid.Relighting().Textures();
  const CExtent& extent = grid.Surface().Lattice().Extent();
  const CPlanePoint pixel{(extent.x1 - extent.x0) / images.PictureWidth(),
                          (extent.y1 - extent.y0) / images.PictureHeight()};
  return ReductionFor(PixelsPerScreenPixel(ScreenAxesNow(), pixel));
}
