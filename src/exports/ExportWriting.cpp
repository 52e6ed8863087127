#include "exports/ExportWriting.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "exports/CExportPictures.h"

namespace {

CExportSteps Steps(const CExportSettings& settings) { return CExportSteps(settings.m_pProgress); }

// Of what is no finite number, nothing is left but what is no number; without a branch for each of millions, and four
// positions at a time, which the processor takes together.
bool IsFinite(const CFileMesh& mesh) {
  constexpr std::size_t kAtOnce = 4;
  std::array<std::array<float, 3>, kAtOnce> sums{};
  const std::size_t count = mesh.m_aPositions.size();
  const std::size_t whole = count / kAtOnce * kAtOnce;
  for (std::size_t v = 0; v < whole; v += kAtOnce) {
    for (std::size_t lane = 0; lane < kAtOnce; ++lane) {
      for (std::size_t k = 0; k < 3; ++k) sums[lane][k] += 0.0F * mesh.m_aPositions[v + lane][k];
    }
  }
  for (std::size_t v = whole; v < count; ++v) {
    for (std::size_t k = 0; k < 3; ++k) sums[0][k] += 0.0F * mesh.m_aPositions[v][k];
  }
  return std::ranges::none_of(sums, [](const std::array<float, 3>& lane) {
    return std::ranges::any_of(lane, [](float sum) { return std::isnan(sum); });
  });
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
