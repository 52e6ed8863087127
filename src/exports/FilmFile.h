#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/CPicture.h"
#include "base/ExportProgress.h"
#include "model/CSaveOutcome.h"

/// Frames in a second of every film.
inline constexpr int kFilmRate = 30;
/// Longest side of its frames.
inline constexpr int kMostFilmSide = 4096;

/// A film that is to be written. Its frames are asked for one after the other.
struct CFilm {
  int m_iWidth = 0;  ///< of every frame, pixels; both are even, at least 2 and at most kMostFilmSide
  int m_iHeight = 0;
  std::size_t m_uFrames = 0;
  /// A frame by its number; nothing where it cannot be drawn.
  std::function<std::optional<CPicture>(std::size_t)> m_Frame;
};

/// One format of films.
struct CFilmFormat {
  using Write = CSaveOutcome(const CFilm& film, const std::string& filename, const CExportSteps& steps);

  const char* m_pSuffix = "";
  const char* m_pName = "";
  bool m_bNeedsProgram = false;  ///< is written by ffmpeg, where that is installed
  Write* m_pWrite = nullptr;
};

/// The formats; that which needs no other program is the first.
std::span<const CFilmFormat> FilmFormats();

/// Whether the program is installed that some formats need.
bool HasFilmProgram();

/// Writes a film. The old file stays until the new one is complete; what is cancelled or fails leaves nothing behind,
/// and says so. The film has at least one frame.
CSaveOutcome WriteFilm(const CFilmFormat& format, const CFilm& film, const std::string& filename,
                       ExportProgress* progress = nullptr);

/// Which of so many recorded frames, each of which lasts some seconds, are to be seen in the frames of a film of the
/// same length.
std::vector<std::size_t> ResampledFrames(std::size_t count, double seconds);
