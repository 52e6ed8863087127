#pragma once

#include <array>
#include <string>

#include "base/CPicture.h"
#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

class CGrid;
struct CReadPicture;

/// The picture that an exported surface shows.
enum class ExportTexture {
  Photograph,
  Albedo,  ///< the photograph without its removed lights
  Relit,   ///< that in the added lights
  None,
};

/// Whether a format that can hold two pictures has the one in the added lights beside this one.
inline bool IsRelitBeside(ExportTexture shown) { return shown != ExportTexture::Relit && shown != ExportTexture::None; }

/// The pictures that the exports of one run show, each made when it is first asked for and kept for the next export.
class CExportPictures {
 public:
  /// Both must outlive the object, and surface and lights stay as they are; a null or empty photograph is none.
  CExportPictures(const CGrid& grid, const CReadPicture* photograph);

  /// Why a picture cannot be had, as a sentence; empty where it can, and for one that nobody needs.
  std::string TroubleWith(ExportTexture which) const;
  /// Its pixels; empty for none, where there is trouble, and where it has been cancelled. Throws std::bad_alloc.
  const CPicture& Pixels(ExportTexture which, const CExportSteps& steps = {});
  /// The same as a file that any other program shows so: for the photograph its own bytes where they are one, else a
  /// JPEG, or where it is too large for that, a PNG; for all others a PNG.
  const CEncodedPicture& Encoded(ExportTexture which, const CExportSteps& steps = {});

 private:
  bool HasPhotograph() const;
  CEncodedPicture Encode(ExportTexture which, const CExportSteps& steps);

  const CGrid& m_Grid;
  const CReadPicture* m_pPhotograph;
  std::array<CPicture, 4> m_aPixels;
  std::array<CEncodedPicture, 4> m_aEncoded;
};
