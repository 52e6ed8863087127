#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "exports/SurfaceExport.h"

/// What an export would write.
struct CExportDescription {
  std::size_t m_uVertices = 0;  ///< 0 for pictures
  std::size_t m_uTriangles = 0;
  std::array<int, 2> m_aiSamples{};    ///< across and up, 0 for meshes
  std::array<double, 3> m_afLength{};  ///< of all, across, up the picture and along the heights, in the format's unit
  const char* m_pUnit = "";
  double m_fBytes = 0.0;  ///< of all files together, to a few percent where they hold text or a packed picture
  bool m_bFinite = true;  ///< all heights are; otherwise nothing would be written
};

/// The same as lines of text for a user.
std::string DescriptionText(const CExportDescription& description);

/// Tells what exports of a surface would write, without writing: for a dialog that shows it as options change.
///
/// Meshes are made once for each way to treat tears, and only counted; all else is a matter of a few products. Walls
/// that a scale makes too low for its floats, and which are left out, are counted all the same.
class CExportSurvey {
 public:
  /// The grid must outlive the object and not change meanwhile. Nothing may be pending in it.
  explicit CExportSurvey(const CGrid& grid) : m_Grid(grid) {}

  /// Takes as long as making the mesh at the first call for a way to treat tears, or as packing some rows at the first
  /// one for a map of some kind, and no time after that. Throws std::bad_alloc.
  CExportDescription DescribeExport(const CExportFormat& format, const CExportSettings& settings);

 private:
  /// A mesh in model units, without the base of a solid.
  struct CCounts {
    std::size_t m_uVertices = 0;
    std::size_t m_uTriangles = 0;
    double m_fHeight = 0.0;  ///< from its lowest point to its highest
    bool m_bFinite = true;
  };
  using CKey = std::tuple<ExportContent, TearGap, double>;  ///< with the width of what runs on beneath a tear

  const CCounts& Counts(ExportContent content, const CExportSettings& settings);
  double SampleBytes(const CExportFormat& format, const CExportSettings& settings,
                     const CExportDescription& description);
  double PictureBytes(ExportTexture which, const CExportSettings& settings);
  void DescribeMesh(const CExportFormat& format, const CExportSettings& settings, CExportDescription& description);
  void DescribeSamples(const CExportFormat& format, const CExportSettings& settings, CExportDescription& description);

  const CGrid& m_Grid;
  std::map<CKey, CCounts> m_Counts;
  /// By format, samples across and up, height scale, and whether green is down.
  using CMapKey = std::tuple<const CExportFormat*, int, int, double, bool>;
  std::map<CMapKey, double> m_MapBytes;
  std::map<ExportTexture, double> m_PictureBytes;
};
