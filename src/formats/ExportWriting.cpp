#include "formats/ExportWriting.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "formats/CExportPictures.h"

namespace {

CExportSteps Steps(const CExportSettings& settings) { return CExportSteps(settings.m_pProgress); }

// Of what is no finite number, nothing is left but what is no number; without a branch for each of millions.
bool IsFinite(const CFileMesh& mesh) {
  std::array<float, 3> sums{};
  for (const std::array<float, 3>& p : mesh.m_aPositions) {
    for (std::size_t k = 0; k < p.size(); ++k) sums[k] += 0.0F * p[k];
  }
  return std::ranges::none_of(sums, [](float sum) { return std::isnan(sum); });
}

}  // namespace

CSaveOutcome NotFinite(const std::string& filename) {
  return {"The surface has coordinates that are no finite numbers. The file " + filename + " is not written."};
}

CCleanMeshOptions MeshOptions(const CExportSettings& settings) {
  return {settings.m_Gap, settings.m_fScale.value_or(1), settings.m_fScale.value_or(1) * settings.m_fHeightScale,
          settings.m_fUnderWidth.value_or(0)};
}

CExportSteps MakingMesh(const CExportSettings& settings) { return Steps(settings).Part(0, 0.4); }

CExportSteps Encoding(const CExportSettings& settings) { return Steps(settings).Part(0.4, 0.7); }

CExportSteps EncodingPicture(const CExportSettings& settings) { return Steps(settings).Part(0.4, 0.55); }

CExportSteps Writing(const CExportSettings& settings) { return Steps(settings).Part(0.55, 1); }

std::optional<CSaveOutcome> Refused(const CFileMesh& mesh, const std::string& filename,
                                    const CExportSettings& settings) {
  if (!Encoding(settings).Goes(0)) return Cancelled(filename);
  if (!IsFinite(mesh)) return NotFinite(filename);
  return {};
}

std::optional<CSaveOutcome> Refused(ExportTexture texture, const std::string& filename,
                                    const CExportSettings& settings) {
  const std::string trouble = settings.m_pPictures->TroubleWith(texture);
  if (trouble.empty()) return {};
  return CSaveOutcome{trouble + " The file " + filename + " is not written."};
}

CSaveOutcome SaveExport(std::span<const CNewFile> files, const CExportSettings& settings) {
  const CExportSteps writing = Steps(settings).Part(0.7, 1);
  return SaveTogether(files, [&writing](double share) { return writing.Goes(share); });
}
