#include "exports/ExportSurvey.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "exports/CExportPictures.h"
#include "exports/MapExport.h"
#include "exports/PackedBytes.h"
#include "model/CGrid.h"

namespace {

// Three digits, or all whole ones, the same under every locale.
std::string Rounded(double number) {
  std::array<char, 32> text{};
  constexpr int kDigits = 3;
  const double whole = std::pow(10.0, kDigits - 1);
  const auto end =
      std::abs(number) >= whole
          ? std::to_chars(text.data(), text.data() + text.size(), std::round(number), std::chars_format::fixed)
          : std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, kDigits);
  return {text.data(), end.ptr};
}

// Thousands apart, for eyes.
std::string Grouped(std::size_t count) {
  std::string text = std::to_string(count);
  for (std::size_t k = text.size(); k > 3; k -= 3) text.insert(k - 3, 1, ',');
  return text;
}

}  // namespace

std::string DescriptionText(const CExportDescription& description) {
  const auto& [across, up, heights] = description.m_afLength;
  if (!description.m_bFinite) return "The surface has heights that are no finite numbers.\nIt cannot be exported.";
  constexpr double kMegabyte = 1e6;
  std::string unit = description.m_pUnit;
  if (!unit.empty()) unit.insert(0, 1, ' ');
  std::string text;
  if (description.m_uVertices + description.m_uTriangles > 0) {
    text = Grouped(description.m_uVertices) + " vertices, " + Grouped(description.m_uTriangles) + " triangles\n" +
           Rounded(across) + " x " + Rounded(up) + " x " + Rounded(heights) + unit;
  } else {
    text = Grouped(static_cast<std::size_t>(description.m_aiSamples[0])) + " x " +
           Grouped(static_cast<std::size_t>(description.m_aiSamples[1])) + " pixels";
  }
  return text + "\nabout " + Rounded(std::max(description.m_fBytes / kMegabyte, 0.001)) + " MB";
}

const CExportSurvey::CCounts& CExportSurvey::Counts(ExportContent content, const CExportSettings& settings) {
  const TearGap gap = content == ExportContent::Solid ? TearGap::Wall : settings.m_Gap;
  const CKey key{content, gap, gap == TearGap::Under ? settings.m_fUnderWidth.value_or(0) : 0};
  if (const auto known = m_Counts.find(key); known != m_Counts.end()) return known->second;
  CExportSettings plain = settings;
  plain.m_fScale = 1;
  plain.m_fHeightScale = 1;
  plain.m_fBase = 0;
  const CFileMesh mesh = MeshOf(m_Grid, content, plain);
  CCounts counts{mesh.m_aPositions.size(), mesh.m_aTriangles.size()};
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();
  for (const std::array<float, 3>& p : mesh.m_aPositions) {
    counts.m_bFinite = counts.m_bFinite && std::isfinite(p[2]);
    low = std::min<double>(low, p[2]);
    high = std::max<double>(high, p[2]);
  }
  counts.m_fHeight = std::max(0.0, high - low);
  return m_Counts.emplace(key, counts).first->second;
}

double CExportSurvey::PictureBytes(ExportTexture which, const CExportSettings& settings) {
  if (which == ExportTexture::None) return 0;
  const auto [known, isNew] = m_PictureBytes.try_emplace(which);
  if (isNew && which != ExportTexture::Photograph) known->second = PackedLitBytes(m_Grid, settings, which);
  if (isNew && which == ExportTexture::Photograph) {
    CExportPictures pictures(m_Grid, settings.m_pPhotograph);
    known->second = static_cast<double>(pictures.Encoded(which).m_Bytes.size());
  }
  return known->second;
}

double CExportSurvey::SampleBytes(const CExportFormat& format, const CExportSettings& settings,
                                  const CExportDescription& description) {
  const auto [width, height] = description.m_aiSamples;
  if (format.m_pPackedBytes == nullptr) return format.m_Bytes.m_fSample * width * height;
  if (!description.m_bFinite) return 0;
  const CMapKey key{&format, width, height, settings.m_fHeightScale, settings.m_bGreenDown};
  const auto [known, isNew] = m_MapBytes.try_emplace(key);
  if (isNew) known->second = format.m_pPackedBytes(m_Grid, settings);
  return known->second;
}

void CExportSurvey::DescribeMesh(const CExportFormat& format, const CExportSettings& settings,
                                 CExportDescription& description) {
  const CCounts& counts = Counts(format.m_Content, settings);
  const CExtent& e = m_Grid.Surface().Lattice().Extent();
  const double scale = settings.m_fScale.value_or(format.m_fScale);
  description.m_uVertices = counts.m_uVertices;
  description.m_uTriangles = counts.m_uTriangles;
  description.m_afLength = {scale * (e.x1 - e.x0), scale * (e.y1 - e.y0),
                            scale * settings.m_fHeightScale * counts.m_fHeight};
  if (format.m_Content == ExportContent::Solid) description.m_afLength[2] += settings.m_fBase;
  description.m_bFinite = counts.m_bFinite;
}

void CExportSurvey::DescribeSamples(const CExportFormat& format, const CExportSettings& settings,
                                    CExportDescription& description) {
  const CLattice& lattice = m_Grid.Surface().Lattice();
  description.m_bFinite = std::ranges::all_of(lattice.Heights(), [](double z) { return std::isfinite(z); });
  if (format.m_Picture != ExportTexture::None) {
    if (settings.m_pPhotograph != nullptr)
      description.m_aiSamples = {settings.m_pPhotograph->m_Picture.m_iWidth,
                                 settings.m_pPhotograph->m_Picture.m_iHeight};
    return;
  }
  const CSampleGrid grid = SamplesOf(m_Grid, settings);
  description.m_aiSamples = {grid.m_iWidth, grid.m_iHeight};
}

CExportDescription CExportSurvey::DescribeExport(const CExportFormat& format, const CExportSettings& settings) {
  CExportDescription description;
  description.m_pUnit = format.m_pUnit;
  if (format.m_Content == ExportContent::Samples) {
    DescribeSamples(format, settings, description);
  } else {
    DescribeMesh(format, settings, description);
  }
  const CExportBytes& bytes = format.m_Bytes;
  const auto vertices = static_cast<double>(description.m_uVertices);
  const double digits = std::log10(std::max(vertices, 1.0));
  description.m_fBytes = bytes.m_fFile + bytes.m_fVertex * vertices +
                         (bytes.m_fTriangle + digits * bytes.m_fDigit) * static_cast<double>(description.m_uTriangles) +
                         SampleBytes(format, settings, description);
  const ExportTexture shown = format.m_Picture != ExportTexture::None ? format.m_Picture : settings.m_Texture;
  if (bytes.m_fPicture > 0) description.m_fBytes += bytes.m_fPicture * PictureBytes(shown, settings);
  if (bytes.m_fRelit > 0 && IsRelitBeside(shown))
    description.m_fBytes += bytes.m_fRelit * PictureBytes(ExportTexture::Relit, settings);
  return description;
}
