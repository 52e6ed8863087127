#include "formats/SurfaceExport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <new>
#include <string_view>
#include <utility>

#include "formats/CleanFileMesh.h"
#include "formats/GlbFile.h"
#include "formats/HtmlFile.h"
#include "formats/JpegFile.h"
#include "formats/ObjFile.h"
#include "formats/PlyFile.h"
#include "formats/PngBytes.h"
#include "formats/StlFile.h"
#include "io/SaveTogether.h"

namespace {

namespace fs = std::filesystem;

bool IsFinite(const CFileMesh& mesh) {
  const auto isFinite = [](float coordinate) { return std::isfinite(coordinate); };
  return std::ranges::all_of(mesh.m_aPositions, [&](const auto& p) { return std::ranges::all_of(p, isFinite); });
}

CSaveOutcome NotFinite(const std::string& filename) {
  return {"The surface has coordinates that are no finite numbers. The file " + filename + " is not written."};
}

CCleanMeshOptions MeshOptions(const CExportSettings& settings) {
  return {settings.m_Gap, settings.m_fScale.value_or(1), settings.m_fScale.value_or(1) * settings.m_fHeightScale};
}

// What the parts of every export take: the mesh, the bytes of its files, and writing them.
CExportSteps Steps(const CExportSettings& settings) { return CExportSteps(settings.m_pProgress); }
CExportSteps MakingMesh(const CExportSettings& settings) { return Steps(settings).Part(0, 0.4); }
CExportSteps Encoding(const CExportSettings& settings) { return Steps(settings).Part(0.4, 0.7); }

CSaveOutcome Save(std::span<const CNewFile> files, const CExportSettings& settings) {
  const CExportSteps writing = Steps(settings).Part(0.7, 1);
  return SaveTogether(files, [&writing](double share) { return writing.Goes(share); });
}

// What is wrong with a mesh; nothing where it may be written.
std::optional<CSaveOutcome> Refused(const CFileMesh& mesh, const std::string& filename,
                                    const CExportSettings& settings) {
  if (!Encoding(settings).Goes(0)) return Cancelled(filename);
  if (!IsFinite(mesh)) return NotFinite(filename);
  return {};
}

CSaveOutcome WriteGlb(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  std::optional<std::string> bytes = GlbOf(mesh, TextureOf(settings), fs::path(filename).stem(), Encoding(settings));
  if (!Encoding(settings).Goes(1)) return Cancelled(filename);
  if (!bytes.has_value()) return {"The model is too large for the format. The file " + filename + " is not written."};
  return Save(std::array{CNewFile{filename, std::move(*bytes)}}, settings);
}

#ifdef RELIEVO_PAGE
CSaveOutcome WriteHtml(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const std::string title = fs::path(filename).stem();
  std::optional<std::string> glb = GlbOf(mesh, TextureOf(settings), title, Encoding(settings).Part(0, 0.5));
  std::optional<std::string> page;
  if (glb.has_value()) page = HtmlOf({title, std::move(*glb), "Photograph", {}}, Encoding(settings).Part(0.5, 0.95));
  if (!Encoding(settings).Goes(1)) return Cancelled(filename);
  if (!page.has_value())
    return {"The model has more than the 300 MB that a page may hold. The file " + filename + " is not written."};
  return Save(std::array{CNewFile{filename, std::move(*page)}}, settings);
}
#endif

// Other programs take a blank for the end of a name.
std::string CompanionOf(const std::string& filename, const char* suffix) {
  fs::path path(filename);
  std::string stem = path.stem();
  std::ranges::replace(stem, ' ', '_');
  return path.replace_filename(stem + suffix);
}

std::vector<std::string> CompanionsOfObj(const std::string& filename) {
  return {CompanionOf(filename, ".mtl"), CompanionOf(filename, ".jpg")};
}

CSaveOutcome WriteObj(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  CEncodedPicture picture = TextureOf(settings);
  const std::vector<std::string> companions = CompanionsOfObj(filename);
  const std::string pictureName = picture.m_Bytes.empty() ? "" : fs::path(companions[1]).filename().string();
  CObjTexts texts = ObjOf(mesh, fs::path(companions[0]).filename(), pictureName, *settings.m_Up, Encoding(settings));
  std::vector<CNewFile> files;
  if (!picture.m_Bytes.empty()) files.push_back({companions[1], std::move(picture.m_Bytes)});
  files.push_back({companions[0], std::move(texts.m_Material)});
  files.push_back({filename, std::move(texts.m_Model)});
  return Save(files, settings);
}

CSaveOutcome WritePly(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CPicture none;
  const CPicture& picture = settings.m_pPhotograph != nullptr ? settings.m_pPhotograph->m_Picture : none;
  return Save(std::array{CNewFile{filename, PlyOf(mesh, picture, *settings.m_Up, Encoding(settings))}}, settings);
}

CSaveOutcome WriteStl(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Solid, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  return Save(std::array{CNewFile{filename, StlOf(mesh, *settings.m_Up, Encoding(settings))}}, settings);
}

bool EndsWith(std::string_view name, std::string_view suffix) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return name.size() > suffix.size() &&
         std::ranges::equal(name.substr(name.size() - suffix.size()), suffix, {}, lower, lower);
}

}  // namespace

CFileMesh MeshOf(const CGrid& grid, ExportContent content, const CExportSettings& settings, const CExportSteps& steps) {
  return content == ExportContent::Solid ? CleanSolid(grid, MeshOptions(settings), settings.m_fBase, steps)
                                         : CleanFileMesh(grid, MeshOptions(settings), steps);
}

CEncodedPicture TextureOf(const CExportSettings& settings) {
  if (settings.m_pPhotograph == nullptr || settings.m_pPhotograph->m_Picture.m_aPixels.empty()) return {};
  if (settings.m_pPhotograph->m_pJpeg != nullptr) return {*settings.m_pPhotograph->m_pJpeg, "image/jpeg"};
  // A picture too large for a JPEG is none for a PNG.
  std::string jpeg = JpegOf(settings.m_pPhotograph->m_Picture);
  if (!jpeg.empty()) return {std::move(jpeg), "image/jpeg"};
  return {PngOf(settings.m_pPhotograph->m_Picture), "image/png"};
}

std::span<const CExportFormat> ExportFormats() {
  constexpr double kMetres = 0.01;
  constexpr unsigned kSize = ExportSetting::kScale | ExportSetting::kHeightScale;
  constexpr unsigned kMesh = ExportSetting::kTears | ExportSetting::kTexture | kSize;
  static constexpr auto kFormats = std::to_array<CExportFormat>({
      {.m_pSuffix = ".glb",
       .m_pName = "binary glTF",
       .m_fScale = kMetres,
       .m_Up = UpAxis::Y,
       .m_pWrite = WriteGlb,
       .m_uReads = kMesh,
       .m_pUnit = "m",
       .m_Bytes = {.m_fFile = 1100, .m_fVertex = 32, .m_fTriangle = 12, .m_fPicture = 1}},
      {.m_pSuffix = ".obj",
       .m_pName = "Wavefront OBJ",
       .m_Up = UpAxis::Y,
       .m_pWrite = WriteObj,
       .m_uReads = kMesh | ExportSetting::kUp,
       .m_Bytes = {.m_fFile = 200, .m_fVertex = 88, .m_fTriangle = 11, .m_fDigit = 9, .m_fPicture = 1},
       .m_pCompanions = CompanionsOfObj},
      {.m_pSuffix = ".ply",
       .m_pName = "PLY",
       .m_pWrite = WritePly,
       .m_uReads = kMesh | ExportSetting::kUp,
       .m_Bytes = {.m_fFile = 400, .m_fVertex = 35, .m_fTriangle = 13}},
      {.m_pSuffix = ".stl",
       .m_pName = "solid for printing",
       .m_pWrite = WriteStl,
       .m_Content = ExportContent::Solid,
       .m_uReads = kSize | ExportSetting::kUp | ExportSetting::kBase,
       .m_pUnit = "mm",
       .m_Bytes = {.m_fFile = 84, .m_fTriangle = 50}},
#ifdef RELIEVO_PAGE
      // Base64 takes four characters for three bytes of a .glb.
      {.m_pSuffix = ".html",
       .m_pName = "web page",
       .m_fScale = kMetres,
       .m_Up = UpAxis::Y,
       .m_pWrite = WriteHtml,
       .m_uReads = kMesh,
       .m_pUnit = "m",
       .m_Bytes = {.m_fFile = 969000, .m_fVertex = 128.0 / 3, .m_fTriangle = 16, .m_fPicture = 4.0 / 3}},
#endif
  });
  return kFormats;
}

const CExportFormat* ExportFormatOf(const std::string& filename) {
  const CExportFormat* found = nullptr;
  for (const CExportFormat& format : ExportFormats()) {
    const std::string_view suffix = format.m_pSuffix;
    if (EndsWith(filename, suffix) && (found == nullptr || suffix.size() > std::string_view(found->m_pSuffix).size()))
      found = &format;
  }
  return found;
}

CSaveOutcome ExportSurface(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CExportFormat* format = ExportFormatOf(filename);
  if (format == nullptr) return {"The name " + filename + " has the suffix of no format."};
  CExportSettings all = settings;
  if (!all.m_fScale.has_value()) all.m_fScale = format->m_fScale;
  if (!all.m_Up.has_value()) all.m_Up = format->m_Up;
  try {
    return format->m_pWrite(grid, filename, all);
  } catch (const std::bad_alloc&) {
    return {"The file " + filename + " needs more memory than there is. It is not written."};
  }
}
