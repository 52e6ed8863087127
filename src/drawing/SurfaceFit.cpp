#include "drawing/SurfaceFit.h"

#include <vector>

#include "drawing/CCamera.h"
#include "model/CGrid.h"
#include "model/CSurfaceMesh.h"

void FitSurface(CCamera& camera, const CGrid& grid, double width, double height) {
  constexpr double kMargin = 1.04;
  // Zoomed in to nothing, or through it, a camera has no size to begin with.
  if (camera.m_fR <= 0) camera.m_fR = camera.m_fR0;
  camera.UpdateEye();
  const CQuadTree& tree = grid.Surface().Tree();
  CSurfaceMesh mesh;
  std::vector<float> positions;
  mesh.Build(tree);
  mesh.Place(tree, positions);
  mesh.Raise<float>(tree, positions);
  camera.Fit(positions, width, height);
  camera.m_fR *= kMargin;
  camera.UpdateEye();
}
