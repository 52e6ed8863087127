#include "io/ModelFormats.h"

#include <array>
#include <filesystem>

#include "model/CGrid.h"

namespace {

CSaveOutcome SaveGrid(const CGrid& grid, const std::string& filename, const CWriteSettings& settings) {
  return grid.Save(filename, settings.m_WithLights);
}

CSaveOutcome SaveVrml(const CGrid& grid, const std::string& filename, const CWriteSettings& /*settings*/) {
  return grid.SaveVrml(filename);
}

CSaveOutcome SaveHeightField(const CGrid& grid, const std::string& filename, const CWriteSettings& settings) {
  return grid.SaveHeightField(filename, settings.m_iWidth, settings.m_iHeight);
}

// The name that the scene has for its texture.
std::string PictureOfVrml(const std::string& filename) {
  return std::filesystem::path(filename).replace_filename("picture.jpg");
}

}  // namespace

std::span<const CModelFormat> ModelFormats() {
  static constexpr auto kFormats = std::to_array<CModelFormat>({
      {.m_pSuffix = ".grid",
       .m_pWrite = SaveGrid,
       .m_Setting = WriteSetting::Lights,
       .m_pMenuText = "&Save Grid",
       .m_cKey = 's',
       .m_Operation = Operation::kSaveGrid,
       .m_pTitle = "please input grid file name",
       .m_pOption = "--save",
       .m_pDescription = "Write the model"},
      {.m_pSuffix = ".wrl",
       .m_pWrite = SaveVrml,
       .m_pPictureOf = PictureOfVrml,
       .m_pMenuText = "Save &VRML",
       .m_pTitle = "please input VRML file name",
       .m_bListsSuffix = true,
       .m_pNoPicture = "can't save as VRML without texture file",
       .m_pDone = "VRML complete. You need to get a jpeg version of the texture file, named picture.jpg, and put it in "
                  "the same directory as the wrl file.",
       .m_pOption = "--vrml",
       .m_pDescription = "Write the surface as a VRML 2.0 scene"},
      {.m_pSuffix = ".txt",
       .m_pWrite = SaveHeightField,
       .m_Setting = WriteSetting::Size,
       .m_pMenuText = "Export &Height field",
       .m_cKey = 'e',
       .m_bStopsSolver = true,
       .m_pTitle = "please input Height-Field file name",
       .m_pOption = "--height-field",
       .m_pDescription = "Write sampled heights"},
  });
  return kFormats;
}

CSaveOutcome WriteModel(const CModelFormat& format, const CGrid& grid, const std::string& filename,
                        const CWriteSettings& settings) {
  return format.m_pWrite(grid, filename, settings);
}
