#include "picture/CModelPicture.h"

#include <iostream>
#include <string>

#include "base/CTerminationSignals.h"
#include "codecs/PngBytes.h"
#include "drawing/CCamera.h"
#include "drawing/CTextures.h"
#include "drawing/ModelPainter.h"
#include "drawing/OpenGLDefaults.h"
#include "drawing/SurfaceFit.h"
#include "io/CFileReplacement.h"
#include "picture/COffscreenCanvas.h"
#include "picture/PictureStatus.h"
#include "projects/ModelInput.h"

namespace {

void Complain(const std::string& text) { std::cerr << "relievo-picture: " << text << '\n'; }

void EndIfAsked(const CTerminationSignals& signals) {
  const int signal = signals.Take();
  if (signal == 0) return;
  CFileReplacement::RemoveUnfinished();
  CTerminationSignals::EndBy(signal);
}

bool Save(const std::string& filename, const CPicture& picture) {
  const std::string bytes = PngOf(picture);
  // Before there is an unfinished file a signal may end the program as it likes.
  const CTerminationSignals signals;
  CFileReplacement file(filename);
  if (bytes.empty() || !file.IsOpen()) return false;
  file.Write({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  const bool complete = file.Complete();
  EndIfAsked(signals);
  const bool saved = complete && file.Commit();
  EndIfAsked(signals);
  return saved;
}

CCamera CameraOf(const CGrid& grid, const CPictureOptions& options) {
  constexpr double kUpright = 90.0;
  const CSurface& surface = grid.Surface();
  const CExtent& extent = surface.Lattice().Extent();
  CCamera camera;
  camera.Reset({extent.x0, extent.y0, surface.MinHeight()}, {extent.x1, extent.y1, surface.MaxHeight()});
  camera.m_fTheta = kUpright - options.m_fElevation;
  camera.m_fPhi = options.m_fAzimuth;
  camera.UpdateEye();
  if (options.m_bFit) FitSurface(camera, grid, options.m_iWidth, options.m_iHeight);
  return camera;
}

}  // namespace

int CModelPicture::Make() {
  if (!Read()) return PictureStatus::kInput;
  const COffscreenCanvas canvas(m_Options.m_iWidth, m_Options.m_iHeight);
  if (!canvas.Trouble().empty()) {
    Complain(canvas.Trouble());
    return PictureStatus::kDrawing;
  }
  Draw();
  if (Save(m_Options.m_Output, canvas.Picture())) return m_bDamaged ? PictureStatus::kDamaged : PictureStatus::kDone;
  Complain("The file " + m_Options.m_Output + " could not be written.");
  return PictureStatus::kOutput;
}

bool CModelPicture::Read() {
  const CModelInput input = ReadModelInput(m_Grid, m_Options.m_Model, m_Options.m_Image);
  for (const std::string& notice : input.m_asNotices) Complain(notice);
  if (!input.m_bRead) return false;
  m_bDamaged = input.m_bDamaged;
  m_Grid.PerformPendingWork();
  const CPicture& photograph = input.m_Photograph.m_Picture;
  if (photograph.m_aPixels.empty() || m_Grid.Relighting().SetPicture(photograph)) return true;
  Complain("There is not enough memory for the photograph.");
  return false;
}

void CModelPicture::Draw() const {
  SetOpenGLDefaults();
  CTextures textures;
  CModelPainter painter;
  const CModelPainter::CView view{ModelFlag::kTexturedModel, DrawnTexture::kPhotograph, &textures};
  const CCamera camera = CameraOf(m_Grid, m_Options);
  painter.DrawScene(m_Grid, view, camera, camera.HalfSizes(m_Options.m_iWidth, m_Options.m_iHeight, true));
}
