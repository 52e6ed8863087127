#include "exports/PackedBytes.h"

#include <string>

#include "codecs/PngBytes.h"
#include "exports/CleanFileMesh.h"
#include "exports/ExportWriting.h"
#include "exports/HeightMaps.h"
#include "exports/MapExport.h"
#include "lighting/LitPicture.h"
#include "model/CGrid.h"

namespace {

constexpr int kBands = 8;
constexpr int kBandRows = 16;
// Of a PNG without pixels.
constexpr double kFrameBytes = 57;

// `bytesOf(first, count)` makes a picture of some rows of one of `rows`.
template <typename Bytes>
double FromBands(int rows, const Bytes& bytesOf) {
  if (rows <= kBands * kBandRows) return static_cast<double>(bytesOf(0, rows).size());
  double sum = 0;
  for (int band = 0; band < kBands; ++band)
    sum += static_cast<double>(bytesOf((rows - kBandRows) / (kBands - 1) * band, kBandRows).size()) - kFrameBytes;
  return kFrameBytes + sum * rows / (kBands * kBandRows);
}

}  // namespace

double PackedHeightBytes(const CGrid& grid, const CExportSettings& settings) {
  const CFileMesh mesh = OpenMesh(grid, settings);
  if (Refused(mesh, {}, settings)) return 0;
  const CSampleGrid samples = SamplesOf(grid, settings);
  // One for all bands.
  const CHeightCode code = HeightCodeOf(SampleHeights(mesh, SamplesOf(grid, {})));
  return FromBands(samples.m_iHeight, [&](int first, int count) {
    return HeightPngOf(SampleHeights(mesh, samples, {}, {first, count}), code, {});
  });
}

double PackedNormalBytes(const CGrid& grid, const CExportSettings& settings) {
  const CFileMesh mesh = OpenMesh(grid, settings);
  if (Refused(mesh, {}, settings)) return 0;
  const CSampleGrid samples = SamplesOf(grid, settings);
  return FromBands(samples.m_iHeight, [&](int first, int count) {
    return NormalPngOf(SampleNormals(mesh, samples, settings.m_bGreenDown, {}, {first, count}), {});
  });
}

double PackedLitBytes(const CGrid& grid, const CExportSettings& settings, ExportTexture which) {
  if (!CExportPictures(grid, settings.m_pPhotograph).TroubleWith(which).empty()) return 0;
  const CPicture& photograph = settings.m_pPhotograph->m_Picture;
  const CInterpolation surface = grid.Surface().Interpolation();
  const CRelighting& lights = grid.Relighting();
  const CLitScene scene{photograph, lights.RemovedLights(), lights.AddedLights(), surface, {}, lights.RelitTone()};
  const LitPicture lit = which == ExportTexture::Albedo ? LitPicture::Albedo : LitPicture::Relit;
  return FromBands(photograph.m_iHeight,
                   [&](int first, int count) { return PngOf(LitRowsOf(lit, scene, first, count)); });
}
