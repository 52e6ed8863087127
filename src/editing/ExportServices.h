#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "base/ExportProgress.h"
#include "exports/ExportSurvey.h"
#include "exports/FilmFile.h"
#include "exports/SurfaceExport.h"
#include "model/CSaveOutcome.h"

struct CCamera;

/// What is to be exported for other programs, and how.
struct CExportChoice {
  const CExportFormat* m_pFormat = nullptr;
  CExportSettings m_Settings;  ///< without its progress
};

/// Where the movement of a film comes from: what the recorder holds, or one turn about the vertical axis.
enum class FilmSource { Recording, Turntable };

/// What is to be exported as a film, and how.
struct CFilmChoice {
  const CFilmFormat* m_pFormat = nullptr;
  FilmSource m_Source = FilmSource::Turntable;
  double m_fTurnSeconds = 4.0;   ///< of a turn
  double m_fFrameSeconds = 0.0;  ///< of each recorded frame
  int m_iWidth = 640;            ///< pixels, even
  int m_iHeight = 480;
};

/// What exports ask of others. Where something is empty, the commands that need it are unavailable.
struct CExportServices {
  /// Asks what is to be exported; nothing if the user cancels. The survey tells what would be written; `given` has the
  /// photograph, null where there is none, its pictures, and the width under a tear that suits the grid, and so has the
  /// answer.
  std::function<std::optional<CExportChoice>(CExportSurvey& survey, const CExportSettings& given)> m_AskModel;
  /// Does work that may take long, and shows meanwhile how far it is; `title` is what the user is told of it.
  std::function<CSaveOutcome(const std::string& title, const std::function<CSaveOutcome(ExportProgress&)>& work)>
      m_ShowProgress;
  /// Asks what film is to be exported; nothing if the user cancels. The recorder holds so many frames.
  std::function<std::optional<CFilmChoice>(std::size_t recorded)> m_AskFilm;
  /// Draws what the model view shows as another camera sees it.
  using DrawModel = std::function<std::optional<CPicture>(const CCamera& camera)>;
  /// The same in pictures of one size; a picture is nothing where it cannot be drawn.
  std::function<DrawModel(int width, int height)> m_DrawModels;
};
