#include "exports/CExportPictures.h"

#include <cstddef>
#include <new>
#include <span>
#include <utility>

#include "codecs/JpegFile.h"
#include "codecs/PictureFormats.h"
#include "codecs/PngBytes.h"
#include "exports/CleanFileMesh.h"
#include "exports/SurfaceSamples.h"
#include "lighting/CShading.h"
#include "lighting/LitPicture.h"
#include "model/CGrid.h"

namespace {

constexpr std::size_t IndexOf(ExportTexture which) { return static_cast<std::size_t>(which); }

}  // namespace

CExportPictures::CExportPictures(const CGrid& grid, const CReadPicture* photograph)
    : m_Grid(grid), m_pPhotograph(photograph) {}

bool CExportPictures::HasPhotograph() const {
  return m_pPhotograph != nullptr && !m_pPhotograph->m_Picture.m_aPixels.empty();
}

std::string CExportPictures::TroubleWith(ExportTexture which) const {
  if (which == ExportTexture::Photograph || which == ExportTexture::None) return {};
  const std::string picture = which == ExportTexture::Albedo ? "no albedo" : "no picture in other lights";
  if (!HasPhotograph()) return "Without a photograph there is " + picture + '.';
  if (!CShading(m_Grid.Relighting().RemovedLights()).IsAnyActive())
    return "None of the removed lights is active, so that there is " + picture + '.';
  if (which == ExportTexture::Relit && !CShading(m_Grid.Relighting().AddedLights()).IsAnyActive())
    return "None of the added lights is active, so that there is " + picture + '.';
  return {};
}

const CPicture& CExportPictures::Pixels(ExportTexture which, const CExportSteps& steps) {
  CPicture& pixels = m_aPixels[IndexOf(which)];
  if (!HasPhotograph() || which == ExportTexture::None || !TroubleWith(which).empty()) return pixels;
  if (which == ExportTexture::Photograph) return m_pPhotograph->m_Picture;
  if (!pixels.m_aPixels.empty()) return pixels;
  const CPicture& photograph = m_pPhotograph->m_Picture;
  const CInterpolation surface = m_Grid.Surface().Interpolation();
  // The albedo of a texel in a tear is that of its own side, as its triangle is in a mesh.
  const auto normalsOf = [&](std::span<const std::size_t> texels) {
    return NormalsAtPixels(CleanFileMesh(m_Grid, {}), photograph.m_iWidth, photograph.m_iHeight, texels);
  };
  const CRelighting& lights = m_Grid.Relighting();
  const CLitScene scene{photograph, lights.RemovedLights(), lights.AddedLights(), surface,
                        normalsOf,  lights.RelitTone()};
  pixels = LitPictureOf(which == ExportTexture::Albedo ? LitPicture::Albedo : LitPicture::Relit, scene,
                        [&steps](double share) { return steps.Goes(share); });
  return pixels;
}

const CEncodedPicture& CExportPictures::Encoded(ExportTexture which, const CExportSteps& steps) {
  CEncodedPicture& encoded = m_aEncoded[IndexOf(which)];
  if (encoded.m_Bytes.empty()) encoded = Encode(which, steps);
  return encoded;
}

CEncodedPicture CExportPictures::Encode(ExportTexture which, const CExportSteps& steps) {
  const CPicture& pixels = Pixels(which, steps.Part(0, 0.5));
  if (pixels.m_aPixels.empty()) return {};
  if (which == ExportTexture::Photograph) {
    if (m_pPhotograph->m_pJpeg != nullptr) return {*m_pPhotograph->m_pJpeg, "image/jpeg"};
    if (std::string jpeg = JpegOf(pixels); !jpeg.empty()) return {std::move(jpeg), "image/jpeg"};
  }
  const CExportSteps encoding = steps.Part(0.5, 1);
  std::string png = PngOf(pixels, [&encoding](double share) { return encoding.Goes(share); });
  if (png.empty() && encoding.Goes(1)) throw std::bad_alloc();
  return {std::move(png), "image/png"};
}
