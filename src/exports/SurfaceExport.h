#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/ExportProgress.h"
#include "codecs/PictureFormats.h"
#include "exports/CExportPictures.h"
#include "exports/CFileMesh.h"
#include "exports/SurfaceSamples.h"
#include "mesh/CCleanMesh.h"
#include "model/CSaveOutcome.h"

class CGrid;

/// What the user may say of a surface that goes to another program; each format looks at its own part of it.
struct CExportSettings {
  std::string m_Name;                           ///< what a file calls the model; empty: as the file without its suffix
  TearGap m_Gap = TearGap::Open;                ///< what lies between the sides of a tear; a solid always has walls
  std::optional<double> m_fUnderWidth;          ///< with TearGap::Under: how far, model units; none: UnderWidthOf
  std::optional<double> m_fScale;               ///< units of the file in a model unit, instead of those of the format
  double m_fHeightScale = 1.0;                  ///< what heights are multiplied by besides
  double m_fBase = 2.0;                         ///< thickness of a solid below its lowest point, units of the file
  std::optional<UpAxis> m_Up;                   ///< instead of that of the format
  const CReadPicture* m_pPhotograph = nullptr;  ///< null for none
  ExportTexture m_Texture = ExportTexture::Photograph;
  std::optional<CSampleGrid> m_Resolution;  ///< of maps, instead of the lattice's own points; meshes have none
  bool m_bGreenDown = false;                ///< in a map of normals green is y turned round
  /// Of the same photograph, kept from one export of a run to the next; null for none.
  CExportPictures* m_pPictures = nullptr;
  ExportProgress* m_pProgress = nullptr;  ///< told how far the export is; null where nobody asks
};

/// What a format looks at of the settings; the window offers no more than that.
namespace ExportSetting {
inline constexpr unsigned kTears = 1;
inline constexpr unsigned kUp = 2;
inline constexpr unsigned kScale = 4;
inline constexpr unsigned kHeightScale = 8;
inline constexpr unsigned kBase = 16;
inline constexpr unsigned kTexture = 32;
inline constexpr unsigned kResolution = 64;
inline constexpr unsigned kGreen = 128;
}  // namespace ExportSetting

/// What a format holds: the surface as triangles, a solid below it, or a picture with a sample of it in each pixel.
enum class ExportContent { Surface, Solid, Samples };

/// How many bytes the parts of a file take, in the mean where numbers are text or bytes are packed.
struct CExportBytes {
  double m_fFile = 0.0;  ///< whatever is in it
  double m_fVertex = 0.0;
  double m_fTriangle = 0.0;
  double m_fDigit = 0.0;  ///< for each triangle and each digit of the number of vertices
  double m_fSample = 0.0;
  double m_fPicture = 0.0;  ///< for each byte of the encoded texture; 0 where it is left out
  double m_fRelit = 0.0;    ///< for each byte of the picture in the added lights that is there besides
};

/// One format for other programs.
struct CExportFormat {
  using Write = CSaveOutcome(const CGrid& grid, const std::string& filename, const CExportSettings& settings);

  const char* m_pSuffix = "";
  const char* m_pName = "";
  double m_fScale = 1.0;  ///< units of the file in a model unit, where the user says nothing
  UpAxis m_Up = UpAxis::Z;
  Write* m_pWrite = nullptr;
  ExportContent m_Content = ExportContent::Surface;
  unsigned m_uReads = 0;     ///< ExportSetting bits
  const char* m_pUnit = "";  ///< that its lengths are in
  CExportBytes m_Bytes = {};
  /// The files that such an export may make beside its own; null for none.
  std::vector<std::string> (*m_pCompanions)(const std::string& filename, const CExportSettings& settings) = nullptr;
  /// About the bytes of packed samples, instead of so many for each; null where these tell.
  double (*m_pPackedBytes)(const CGrid& grid, const CExportSettings& settings) = nullptr;
  ExportTexture m_Picture = ExportTexture::None;  ///< the picture that the file is, for samples of nothing else
};

/// The mesh that a format with triangles writes.
CFileMesh MeshOf(const CGrid& grid, ExportContent content, const CExportSettings& settings,
                 const CExportSteps& steps = {});

/// What the user is told of a file with a surface, or with pictures of one, that the solver has not brought to its end.
std::string NotConvergedText(const std::string& filename);

/// The formats.
std::span<const CExportFormat> ExportFormats();

/// That of the longest suffix that fits the last part of a path, in capitals or not; null for none.
const CExportFormat* ExportFormatOf(const std::string& filename,
                                    std::span<const CExportFormat> formats = ExportFormats());

/// Writes the surface as it is. Nothing may be pending in the grid. Old files stay until the new ones are complete, and
/// of several files all are written or none. Refused, with a word, where a height is not finite. An export that its
/// progress cancels leaves nothing behind, and says so.
CSaveOutcome ExportSurface(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
