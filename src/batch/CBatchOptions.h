#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "exports/SurfaceExport.h"
#include "io/ModelFormats.h"
#include "lattice/WaveletMode.h"

/// What a run without a window is asked to do.
struct CBatchOptions {
  /// What is written to standard output at the end: nothing, JSON, or lines of text.
  enum class Report { None, Json, Text };

  std::string m_Model;  ///< grid file or project to read
  std::string m_Image;  ///< photograph; empty for none
  bool m_bStrict =
      false;  ///< a damaged model is refused, and what is wrong with constraints ends with a status of its own
  std::optional<long> m_Iterations;                                ///< to do; until converged where there is no number
  long m_iMaxIterations = 200000;                                  ///< bound of going on until converged
  double m_fMaxSeconds = std::numeric_limits<double>::infinity();  ///< bound of solving, whatever else ends it
  WaveletMode m_Mode = WaveletMode::New;                           ///< to solve in
  bool m_bSettle = false;                                          ///< floating regions take a definite place
  bool m_bHighRes = false;                    ///< solve at the highest resolution, starting from the surface read
  std::string m_Reference;                    ///< depth map that the surface follows; empty for that of a project
  std::optional<double> m_ReferenceStrength;  ///< 0 to 1; that of a project, or of the beginning, where there is none
  int m_iSuggestedTears = 0;                  ///< tears to be taken from the depth map, at most
  /// The file to write in each of ModelFormats(); empty for none.
  std::vector<std::string> m_asOutputs = std::vector<std::string>(ModelFormats().size());
  CWriteSettings m_Writing;              ///< for all of them
  std::vector<std::string> m_asExports;  ///< files for other programs, each in the format of its suffix
  CExportSettings m_Exporting;           ///< for all of them; the photograph comes later
  std::uint32_t m_uSeed = 1;             ///< of the random start
  Report m_Report = Report::None;
  bool m_bQuiet = false;

  /// Where the photograph goes that belongs to the output in a format; empty where none is written.
  std::string PictureOf(std::size_t format) const;
};

/// Options from the command line, or the status to end with: help and version are printed and end with 0, misuse is
/// explained on standard error and ends with 1.
struct CParsedOptions {
  CBatchOptions m_Options;
  std::optional<int> m_ExitStatus;
};
CParsedOptions ParseOptions(int argc, const char* const* argv);
