#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "formats/CFileMesh.h"
#include "formats/ExportProgress.h"
#include "formats/PictureFormats.h"
#include "mesh/CCleanMesh.h"
#include "model/CSaveOutcome.h"

class CGrid;

/// What the user may say of a surface that goes to another program; each format looks at its own part of it.
struct CExportSettings {
  TearGap m_Gap = TearGap::Open;                ///< what lies between the sides of a tear; a solid always has walls
  std::optional<double> m_fScale;               ///< units of the file in a model unit, instead of those of the format
  double m_fHeightScale = 1.0;                  ///< what heights are multiplied by besides
  double m_fBase = 2.0;                         ///< thickness of a solid below its lowest point, units of the file
  std::optional<UpAxis> m_Up;                   ///< instead of that of the format
  const CReadPicture* m_pPhotograph = nullptr;  ///< null for none
  ExportProgress* m_pProgress = nullptr;        ///< told how far the export is; null where nobody asks
};

/// One format for other programs.
struct CExportFormat {
  using Write = CSaveOutcome(const CGrid& grid, const std::string& filename, const CExportSettings& settings);

  const char* m_pSuffix = "";
  const char* m_pName = "";
  double m_fScale = 1.0;  ///< units of the file in a model unit, where the user says nothing
  UpAxis m_Up = UpAxis::Z;
  Write* m_pWrite = nullptr;
  /// The files that such an export makes beside its own; null for none.
  std::vector<std::string> (*m_pCompanions)(const std::string& filename) = nullptr;
};

/// The formats.
std::span<const CExportFormat> ExportFormats();

/// That of the longest suffix that fits a file's name, in capitals or not; null for none.
const CExportFormat* ExportFormatOf(const std::string& filename);

/// Writes the surface as it is. Nothing may be pending in the grid. Old files stay until the new ones are complete, and
/// of several files all are written or none. Refused, with a word, where a height is not finite. An export that its
/// progress cancels leaves nothing behind, and says so.
CSaveOutcome ExportSurface(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
