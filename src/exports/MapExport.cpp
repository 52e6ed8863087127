#include "exports/MapExport.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include <nlohmann/json.hpp>

#include "exports/CExportPictures.h"
#include "exports/CleanFileMesh.h"
#include "exports/ExportWriting.h"
#include "exports/HeightMaps.h"
#include "model/CGrid.h"

namespace {

CExportSteps Sampling(const CExportSettings& settings) { return Encoding(settings).Part(0, 0.5); }
CExportSteps Packing(const CExportSettings& settings) { return Encoding(settings).Part(0.5, 1); }

// Empty bytes are a lack of memory where the export has not been cancelled.
CSaveOutcome SaveMap(CNewFile file, const CExportSettings& settings) {
  if (!Packing(settings).Goes(1)) return Cancelled(file.m_Name);
  if (file.m_Bytes.empty()) throw std::bad_alloc();
  return SaveExport(std::array{std::move(file)}, settings);
}

// What is needed to make heights of the numbers again, and to place them: the unit is that of the heights.
std::string TextBeside(const CSurfaceSamples& samples, const CHeightCode& code, const CFileMesh& mesh,
                       const CExtent& extent) {
  nlohmann::ordered_json text;
  text["made by"] = "relievo";
  text["description"] = "height = offset + scale * number";
  text["offset"] = code.m_fOffset;
  text["scale"] = code.m_fScale;
  text["samples"] = {samples.m_Grid.m_iWidth, samples.m_Grid.m_iHeight};
  text["size"] = {(extent.x1 - extent.x0) * mesh.m_fScale, (extent.y1 - extent.y0) * mesh.m_fScale};
  return text.dump(2) + '\n';
}

using HeightBytes = std::string(const CSurfaceSamples& samples, const CExportSteps& steps);

CSaveOutcome WriteHeights(const CGrid& grid, const std::string& filename, const CExportSettings& settings,
                          HeightBytes* bytesOf) {
  const CFileMesh mesh = OpenMesh(grid, settings);
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CSurfaceSamples samples = SampleHeights(mesh, SamplesOf(grid, settings), Sampling(settings));
  if (!Sampling(settings).Goes(1)) return Cancelled(filename);
  return SaveMap({filename, bytesOf(samples, Packing(settings))}, settings);
}

bool IsFinite(const CLattice& lattice) {
  for (std::size_t point = 0; point < lattice.PointCount(); ++point) {
    if (lattice.Has(point, PointFlag::kInUse) && !std::isfinite(lattice.Heights()[point])) return false;
  }
  return true;
}

CSaveOutcome WritePicture(const CGrid& grid, ExportTexture which, const std::string& filename,
                          const CExportSettings& settings) {
  if (const auto refused = Refused(which, filename, settings)) return *refused;
  if (!IsFinite(grid.Surface().Lattice())) return NotFinite(filename);
  return SaveMap({filename, settings.m_pPictures->Encoded(which, Encoding(settings)).m_Bytes}, settings);
}

}  // namespace

// Seen from above, walls are nothing and what lies behind a tear is hidden.
CFileMesh OpenMesh(const CGrid& grid, const CExportSettings& settings) {
  CCleanMeshOptions options = MeshOptions(settings);
  options.m_Gap = TearGap::Open;
  return CleanFileMesh(grid, options, MakingMesh(settings));
}

CSampleGrid SamplesOf(const CGrid& grid, const CExportSettings& settings) {
  const int side = grid.Surface().Lattice().PointsPerSide();
  return settings.m_Resolution.value_or(CSampleGrid{side, side});
}

CSaveOutcome WriteHeightPng(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = OpenMesh(grid, settings);
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CSurfaceSamples samples = SampleHeights(mesh, SamplesOf(grid, settings), Sampling(settings));
  if (!Sampling(settings).Goes(1)) return Cancelled(filename);
  const CHeightCode code = HeightCodeOf(samples);
  CNewFile png{filename, HeightPngOf(samples, code, Packing(settings))};
  if (!Packing(settings).Goes(1)) return Cancelled(filename);
  if (png.m_Bytes.empty()) throw std::bad_alloc();
  CNewFile text{CompanionsOfHeightPng(filename, settings).front(),
                TextBeside(samples, code, mesh, grid.Surface().Lattice().Extent())};
  return SaveExport(std::array{std::move(text), std::move(png)}, settings);
}

std::vector<std::string> CompanionsOfHeightPng(const std::string& filename, const CExportSettings& /*settings*/) {
  return {filename + ".json"};
}

CSaveOutcome WriteHeightTiff(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  return WriteHeights(grid, filename, settings, HeightTiffOf);
}

CSaveOutcome WriteHeightPfm(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  return WriteHeights(grid, filename, settings, HeightPfmOf);
}

CSaveOutcome WriteNormalMap(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = OpenMesh(grid, settings);
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CSurfaceSamples samples =
      SampleNormals(mesh, SamplesOf(grid, settings), settings.m_bGreenDown, Sampling(settings));
  if (!Sampling(settings).Goes(1)) return Cancelled(filename);
  return SaveMap({filename, NormalPngOf(samples, Packing(settings))}, settings);
}

CSaveOutcome WriteAlbedo(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  return WritePicture(grid, ExportTexture::Albedo, filename, settings);
}

CSaveOutcome WriteRelit(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  return WritePicture(grid, ExportTexture::Relit, filename, settings);
}
