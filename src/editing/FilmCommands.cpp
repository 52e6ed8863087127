// The command that writes a film of the model.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "drawing/CCamera.h"
#include "editing/CCommandPause.h"
#include "editing/GridCommands.h"
#include "model/CGrid.h"

namespace {

// What each frame of a film of the recording is seen by.
std::vector<CCamera> RecordedCameras(const CProject& work, double seconds) {
  std::vector<CCamera> cameras;
  for (const std::size_t k : ResampledFrames(work.m_aRecording.size(), seconds)) {
    const CProjectFrame& frame = work.m_aRecording[k];
    CCamera camera;
    camera.m_Centre = frame.m_Target;
    camera.m_Eye = frame.m_Eye;
    camera.m_Up = frame.m_Up;
    camera.m_fR = frame.m_fHalfSize;
    cameras.push_back(camera);
  }
  return cameras;
}

// Turned about the vertical axis through the origin.
Vector3 Turned(const Vector3& v, double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {cosine * v.x + sine * v.z, v.y, cosine * v.z - sine * v.x};
}

// One turn, from what the model view shows. The frame after the last one would be the first.
std::vector<CCamera> TurningCameras(const CProjectViews& views, double seconds) {
  const auto count = static_cast<std::size_t>(std::lround(std::max(1.0, seconds * kFilmRate)));
  std::vector<CCamera> cameras(count);
  for (std::size_t k = 0; k < count; ++k) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(count);
    cameras[k].m_Centre = views.m_Centre;
    cameras[k].m_Eye = views.m_Centre + Turned(views.m_Eye - views.m_Centre, angle);
    cameras[k].m_Up = Turned(views.m_Up, angle);
    cameras[k].m_fR = views.m_fR;
  }
  return cameras;
}

std::vector<CCamera> CamerasOf(const CProject& work, const CFilmChoice& choice) {
  return choice.m_Source == FilmSource::Recording ? RecordedCameras(work, choice.m_fFrameSeconds)
                                                  : TurningCameras(work.m_Views, choice.m_fTurnSeconds);
}

}  // namespace

bool CGridCommands::CanExportFilm() const {
  const CExportServices& services = m_Services.m_Export;
  return services.m_AskFilm && services.m_DrawModels && services.m_ShowProgress;
}

void CGridCommands::ExportFilm() {
  if (m_pGrid == nullptr || !CanExportFilm()) return;
  const CExportServices& services = m_Services.m_Export;
  const CCommandPause pause(m_Solver);
  m_Host.EndDrags();
  m_pGrid->PerformPendingWork();
  CProject work;
  m_Host.AddTo(work);
  const std::optional<CFilmChoice> choice = services.m_AskFilm(work.m_aRecording.size());
  if (!choice.has_value()) return;
  const std::string suffix = choice->m_pFormat->m_pSuffix;
  std::optional<std::string> file = ChooseExport("please input a file name for the film", suffix.c_str(),
                                                 [this](const std::string& f) { return !IsPhotograph(f); });
  if (!file.has_value()) return;
  if (std::filesystem::path(*file).extension() != suffix) *file += suffix;
  if (IsPhotograph(*file)) return Tell("The export would overwrite the photograph " + *file + ". Choose another name.");
  const std::vector<CCamera> cameras = CamerasOf(work, *choice);
  const CExportServices::DrawModel draw = services.m_DrawModels(choice->m_iWidth, choice->m_iHeight);
  const CFilm film{choice->m_iWidth, choice->m_iHeight, cameras.size(),
                   [&](std::size_t k) { return draw(cameras[k]); }};
  CSaveOutcome outcome;
  m_Files.Write(*file, [&] {
    outcome = services.m_ShowProgress(
        "Writing " + std::filesystem::path(*file).filename().string(),
        [&](ExportProgress& progress) { return WriteFilm(*choice->m_pFormat, film, *file, &progress); });
    return static_cast<bool>(outcome);
  });
  TellExported(*file, outcome);
}
