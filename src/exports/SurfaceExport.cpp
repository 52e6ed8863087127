#include "exports/SurfaceExport.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <new>
#include <string_view>
#include <utility>

#include "exports/CleanFileMesh.h"
#include "exports/ExportWriting.h"
#include "exports/GlbFile.h"
#include "exports/HtmlFile.h"
#include "exports/MapExport.h"
#include "exports/ObjFile.h"
#include "exports/PackedBytes.h"
#include "exports/PlyFile.h"
#include "exports/StlFile.h"

namespace {

namespace fs = std::filesystem;

// What the picture leaves of making the bytes of files.
CExportSteps EncodingMesh(const CExportSettings& settings) { return Encoding(settings).Part(0.5, 1); }

// A file whose bytes are made while they are written.
CSaveOutcome SavePut(const std::string& filename, const CExportSettings& settings,
                     std::function<bool(CByteSink&)> put) {
  return SaveExport(std::array{CNewFile{filename, {}, std::move(put)}}, settings);
}

std::string NameOf(const std::string& filename, const CExportSettings& settings) {
  return settings.m_Name.empty() ? fs::path(filename).stem().string() : settings.m_Name;
}

CSaveOutcome WriteGlb(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  if (const auto refused = Refused(settings.m_Texture, filename, settings)) return *refused;
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CEncodedPicture& picture = settings.m_pPictures->Encoded(settings.m_Texture, EncodingPicture(settings));
  if (!EncodingPicture(settings).Goes(1)) return Cancelled(filename);
  const std::optional<std::string> head = GlbHeadOf(mesh, picture, NameOf(filename, settings));
  if (!head.has_value()) return {"The model is too large for the format. The file " + filename + " is not written."};
  return SavePut(filename, settings, [&](CByteSink& sink) {
    sink.Put(*head);
    return PutGlbBody(mesh, picture, sink, Writing(settings));
  });
}

#ifdef RELIEVO_PAGE
// As the switch of the page calls it.
const char* NameOf(ExportTexture texture) {
  if (texture == ExportTexture::Albedo) return "Albedo";
  return texture == ExportTexture::Relit ? "Relit" : "Photograph";
}

CSaveOutcome WriteHtml(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  if (const auto refused = Refused(settings.m_Texture, filename, settings)) return *refused;
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CEncodedPicture& picture =
      settings.m_pPictures->Encoded(settings.m_Texture, EncodingPicture(settings).Part(0, 0.5));
  CEncodedPicture relit;
  if (IsRelitBeside(settings.m_Texture))
    relit = settings.m_pPictures->Encoded(ExportTexture::Relit, EncodingPicture(settings).Part(0.5, 1));
  const std::string title = NameOf(filename, settings);
  std::optional<std::string> glb = GlbOf(mesh, picture, title, EncodingMesh(settings).Part(0, 0.5));
  std::optional<std::string> page;
  if (glb.has_value()) {
    page = HtmlOf({title, std::move(*glb), NameOf(settings.m_Texture), std::move(relit)},
                  EncodingMesh(settings).Part(0.5, 0.95));
  }
  if (!Encoding(settings).Goes(1)) return Cancelled(filename);
  if (!page.has_value())
    return {"The model has more than the 300 MB that a page may hold. The file " + filename + " is not written."};
  return SaveExport(std::array{CNewFile{filename, std::move(*page)}}, settings);
}
#endif

// Other programs take a blank for the end of a name, a break for that of a line, and a dash in front for an option.
std::string CompanionOf(const std::string& filename, const char* suffix) {
  const auto ends = [](char c) { return (c >= '\0' && c <= ' ') || c == '\x7F'; };
  fs::path path(filename);
  std::string stem = path.stem();
  std::ranges::replace_if(stem, ends, '_');
  if (stem.starts_with('-')) stem.front() = '_';
  return path.replace_filename(stem + suffix);
}

constexpr const char* kMaterial = ".mtl";
constexpr const char* kJpeg = ".jpg";
// A map of heights beside it may have the plain name.
constexpr const char* kPng = "-texture.png";

std::vector<std::string> CompanionsOfObj(const std::string& filename, const CExportSettings& settings) {
  std::vector<std::string> companions{CompanionOf(filename, kMaterial)};
  // A photograph may be too large for a JPEG.
  if (settings.m_Texture == ExportTexture::Photograph) companions.push_back(CompanionOf(filename, kJpeg));
  if (settings.m_Texture != ExportTexture::None) companions.push_back(CompanionOf(filename, kPng));
  return companions;
}

CSaveOutcome WriteObj(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  if (const auto refused = Refused(settings.m_Texture, filename, settings)) return *refused;
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CEncodedPicture& picture = settings.m_pPictures->Encoded(settings.m_Texture, EncodingPicture(settings));
  const std::string material = CompanionOf(filename, kMaterial);
  std::vector<CNewFile> files;
  if (!picture.m_Bytes.empty())
    files.push_back({CompanionOf(filename, picture.m_MimeType == "image/jpeg" ? kJpeg : kPng), picture.m_Bytes});
  const std::string pictureName = files.empty() ? "" : fs::path(files.front().m_Name).filename().string();
  CObjTexts texts = ObjOf(mesh, fs::path(material).filename(), pictureName, *settings.m_Up, EncodingMesh(settings));
  files.push_back({material, std::move(texts.m_Material)});
  files.push_back({filename, std::move(texts.m_Model)});
  return SaveExport(files, settings);
}

CSaveOutcome WritePly(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  if (const auto refused = Refused(settings.m_Texture, filename, settings)) return *refused;
  const CFileMesh mesh = MeshOf(grid, ExportContent::Surface, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  const CPicture& picture = settings.m_pPictures->Pixels(settings.m_Texture, EncodingPicture(settings));
  return SavePut(filename, settings,
                 [&](CByteSink& sink) { return PutPly(mesh, picture, *settings.m_Up, sink, Writing(settings)); });
}

CSaveOutcome WriteStl(const CGrid& grid, const std::string& filename, const CExportSettings& settings) {
  const CFileMesh mesh = MeshOf(grid, ExportContent::Solid, settings, MakingMesh(settings));
  if (const auto refused = Refused(mesh, filename, settings)) return *refused;
  return SavePut(filename, settings,
                 [&](CByteSink& sink) { return PutStl(mesh, *settings.m_Up, sink, Writing(settings)); });
}

// Of the last part of a path; a file whose whole name is a suffix has none.
bool EndsWith(std::string_view path, std::string_view suffix) {
  const std::string_view name = path.substr(path.find_last_of('/') + 1);
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return name.size() > suffix.size() &&
         std::ranges::equal(name.substr(name.size() - suffix.size()), suffix, {}, lower, lower);
}

constexpr double kMetres = 0.01;
constexpr unsigned kSize = ExportSetting::kScale | ExportSetting::kHeightScale;
constexpr unsigned kMesh = ExportSetting::kTears | ExportSetting::kTexture | kSize;
constexpr unsigned kMap = kSize | ExportSetting::kResolution;
constexpr auto kFormats = std::to_array<CExportFormat>({
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
     .m_Bytes =
         {.m_fFile = 969000, .m_fVertex = 128.0 / 3, .m_fTriangle = 16, .m_fPicture = 4.0 / 3, .m_fRelit = 4.0 / 3}},
#endif
    {.m_pSuffix = ".png",
     .m_pName = "heights, 16 bits",
     .m_pWrite = WriteHeightPng,
     .m_Content = ExportContent::Samples,
     .m_uReads = kMap,
     .m_Bytes = {.m_fFile = 220},
     .m_pCompanions = CompanionsOfHeightPng,
     .m_pPackedBytes = PackedHeightBytes},
    {.m_pSuffix = ".tif",
     .m_pName = "heights, 32-bit floats",
     .m_pWrite = WriteHeightTiff,
     .m_Content = ExportContent::Samples,
     .m_uReads = kMap,
     .m_Bytes = {.m_fFile = 300, .m_fSample = 4}},
    {.m_pSuffix = ".pfm",
     .m_pName = "heights, 32-bit floats",
     .m_pWrite = WriteHeightPfm,
     .m_Content = ExportContent::Samples,
     .m_uReads = kMap,
     .m_Bytes = {.m_fFile = 20, .m_fSample = 4}},
    {.m_pSuffix = "-normal.png",
     .m_pName = "normal map",
     .m_pWrite = WriteNormalMap,
     .m_Content = ExportContent::Samples,
     .m_uReads = ExportSetting::kHeightScale | ExportSetting::kResolution | ExportSetting::kGreen,
     .m_pPackedBytes = PackedNormalBytes},
    {.m_pSuffix = "-albedo.png",
     .m_pName = "the photograph without its removed lights",
     .m_pWrite = WriteAlbedo,
     .m_Content = ExportContent::Samples,
     .m_Bytes = {.m_fPicture = 1},
     .m_Picture = ExportTexture::Albedo},
    {.m_pSuffix = "-relit.png",
     .m_pName = "the photograph in the added lights",
     .m_pWrite = WriteRelit,
     .m_Content = ExportContent::Samples,
     .m_Bytes = {.m_fPicture = 1},
     .m_Picture = ExportTexture::Relit},
});

}  // namespace

CFileMesh MeshOf(const CGrid& grid, ExportContent content, const CExportSettings& settings, const CExportSteps& steps) {
  return content == ExportContent::Solid ? CleanSolid(grid, MeshOptions(settings), settings.m_fBase, steps)
                                         : CleanFileMesh(grid, MeshOptions(settings), steps);
}

std::string NotConvergedText(const std::string& filename) {
  return "The solver has not converged yet: " + filename + " holds the surface as it is shown.";
}

std::span<const CExportFormat> ExportFormats() { return kFormats; }

const CExportFormat* ExportFormatOf(const std::string& filename, std::span<const CExportFormat> formats) {
  const CExportFormat* found = nullptr;
  for (const CExportFormat& format : formats) {
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
  CExportPictures pictures(grid, settings.m_pPhotograph);
  if (all.m_pPictures == nullptr) all.m_pPictures = &pictures;
  try {
    return format->m_pWrite(grid, filename, all);
  } catch (const std::bad_alloc&) {
    return {"The file " + filename + " needs more memory than there is. It is not written."};
  }
}
