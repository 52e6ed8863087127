#include "projects/ProjectDocument.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include "codecs/PictureFormats.h"
#include "io/FileUri.h"

using CJson = nlohmann::ordered_json;

namespace {

constexpr const char* kFormat = "relievo project";

/// Thrown by what reads a value that is not as it must be.
struct CDamage : std::runtime_error {
  CDamage() : std::runtime_error("damaged") {}
};

void Require(bool sound) {
  if (!sound) throw CDamage();
}

// Names of files are any bytes, and the text must not be.
CJson FileName(const std::string& path) { return path.starts_with('/') ? CJson(UriOf(path)) : CJson(); }

std::string FileNameOf(const CJson& value) {
  if (value.is_null()) return {};
  std::optional<std::string> path = PathOf(value.get<std::string>());
  Require(path.has_value());
  return std::move(*path);
}

template <typename Numbers>
void ReadNumbers(const CJson& value, Numbers& numbers) {
  Require(value.is_array() && value.size() == numbers.size());
  for (std::size_t k = 0; k < numbers.size(); ++k) {
    numbers[k] = value[k].get<double>();
    Require(std::isfinite(numbers[k]));
  }
}

double NumberOf(const CJson& value) {
  std::array<double, 1> number{};
  ReadNumbers(CJson::array({value}), number);
  return number.front();
}

// get<int> would cut off what an int does not hold.
int WholeOf(const CJson& value, int least, int most) {
  Require(value.is_number_integer());
  const auto number = value.get<std::int64_t>();
  Require(number >= least && number <= most);
  return static_cast<int>(number);
}

std::uint32_t BitsOf(const CJson& value) {
  Require(value.is_number_unsigned());
  const auto number = value.get<std::uint64_t>();
  Require(number <= UINT32_MAX);
  return static_cast<std::uint32_t>(number);
}

CJson Numbers(const Vector3& v) { return {v.x, v.y, v.z}; }

Vector3 VectorOf(const CJson& value) {
  std::array<double, 3> numbers{};
  ReadNumbers(value, numbers);
  return {numbers[0], numbers[1], numbers[2]};
}

CJson Lights(const CLightSet& lights) {
  CJson list = CJson::array();
  for (const CLight& light : lights.m_aLights)
    list.push_back({{"active", light.m_bActive},
                    {"drawn", light.m_bDrawn},
                    {"direction", light.m_afDirection},
                    {"colour", light.m_afColour},
                    {"tube_colour", light.m_afTubeColour}});
  return list;
}

void ReadLights(const CJson& list, CLightSet& lights) {
  Require(list.is_array() && list.size() == lights.m_aLights.size());
  for (std::size_t k = 0; k < list.size(); ++k) {
    CLight& light = lights.m_aLights[k];
    light.m_bActive = list[k].at("active").get<bool>();
    light.m_bDrawn = list[k].at("drawn").get<bool>();
    ReadNumbers(list[k].at("direction"), light.m_afDirection);
    ReadNumbers(list[k].at("colour"), light.m_afColour);
    ReadNumbers(list[k].at("tube_colour"), light.m_afTubeColour);
  }
}

CJson Model(const CModelState& model) {
  const CSketch& sketch = model.m_Document.m_Sketch;
  const CExtent& e = sketch.m_Extent;
  const CListHeaders& headers = sketch.m_ListHeaders;
  return {{"rectangle", {e.x0, e.y0, e.x1, e.y1}},
          {"level", sketch.m_iMaxLevel},
          {"base_level", sketch.m_iBaseLevel},
          {"high_resolution", sketch.m_bHighRes},
          {"wavelets", static_cast<int>(model.m_pSurface->m_Mode)},
          {"new_grids", {{"level", model.m_iNewMaxLevel}, {"base_level", sketch.m_iNewBaseLevel}}},
          {"pick_tolerance", model.m_fPickTolerance},
          {"list_headers", {headers.m_iPoints, headers.m_iCurves, headers.m_iRegions}},
          {"iterations", model.m_pSolver->m_iCounter},
          {"stopped", model.m_pSolver->m_bStopped},
          {"gave_up", model.m_pSolver->m_bGaveUp}};
}

WaveletMode ModeOf(int number) {
  const auto mode = static_cast<WaveletMode>(number);
  Require(mode == WaveletMode::None || mode == WaveletMode::Simple || mode == WaveletMode::New);
  return mode;
}

void ReadSketch(const CJson& value, CModelState& model) {
  CSketch& sketch = model.m_Document.m_Sketch;
  std::array<double, 4> corners{};
  ReadNumbers(value.at("rectangle"), corners);
  sketch.m_Extent = {corners[0], corners[2], corners[1], corners[3]};
  Require(IsUsable(sketch.m_Extent));
  constexpr int kMost = CLattice::kMaxLevel;
  sketch.m_iMaxLevel = WholeOf(value.at("level"), CLattice::kMinLevel, kMost);
  sketch.m_iBaseLevel = WholeOf(value.at("base_level"), 0, sketch.m_iMaxLevel);
  sketch.m_bHighRes = value.at("high_resolution").get<bool>();
  model.m_iNewMaxLevel = WholeOf(value.at("new_grids").at("level"), CLattice::kMinLevel, kMost);
  sketch.m_iNewBaseLevel = WholeOf(value.at("new_grids").at("base_level"), 0, kMost);
  const CJson& headers = value.at("list_headers");
  Require(headers.is_array() && headers.size() == 3);
  const auto header = [&headers](std::size_t k) { return WholeOf(headers[k], INT32_MIN, INT32_MAX); };
  sketch.m_ListHeaders = {header(0), header(1), header(2)};
}

void ReadModel(const CJson& value, CModelState& model) {
  ReadSketch(value, model);
  model.m_fPickTolerance = NumberOf(value.at("pick_tolerance"));
  Require(model.m_fPickTolerance > 0);
  CSurfaceState surface;
  surface.m_Mode = ModeOf(WholeOf(value.at("wavelets"), 0, INT32_MAX));
  model.m_pSurface = std::make_shared<const CSurfaceState>(std::move(surface));
  CSolverState solver;
  solver.m_iCounter = WholeOf(value.at("iterations"), -1, INT32_MAX / 2);
  solver.m_bStopped = value.at("stopped").get<bool>();
  solver.m_bGaveUp = value.at("gave_up").get<bool>();
  model.m_pSolver = std::make_shared<const CSolverState>(std::move(solver));
}

CJson Views(const CProjectViews& views) {
  return {{"editing_mode", views.m_iEditingMode},
          {"curve_type", views.m_uCurveType},
          {"image_flags", views.m_uImageFlags},
          {"model_flags", views.m_uModelFlags},
          {"texture", views.m_iTexture},
          {"zoom", views.m_fZoom},
          {"pan", {views.m_Pan.x, views.m_Pan.y}},
          {"camera",
           {{"centre", Numbers(views.m_Centre)},
            {"eye", Numbers(views.m_Eye)},
            {"up", Numbers(views.m_Up)},
            {"half_size", views.m_fR},
            {"half_size_at_reset", views.m_fR0},
            {"theta", views.m_fTheta},
            {"phi", views.m_fPhi},
            {"zeta", views.m_fZeta}}}};
}

void ReadViews(const CJson& value, CProjectViews& views) {
  views.m_iEditingMode = WholeOf(value.at("editing_mode"), 0, INT32_MAX);
  views.m_uCurveType = BitsOf(value.at("curve_type"));
  views.m_uImageFlags = BitsOf(value.at("image_flags"));
  views.m_uModelFlags = BitsOf(value.at("model_flags"));
  views.m_iTexture = WholeOf(value.at("texture"), 0, INT32_MAX);
  views.m_fZoom = NumberOf(value.at("zoom"));
  Require(views.m_fZoom > 0);
  std::array<double, 2> pan{};
  ReadNumbers(value.at("pan"), pan);
  views.m_Pan = {pan[0], pan[1]};
  const CJson& camera = value.at("camera");
  views.m_Centre = VectorOf(camera.at("centre"));
  views.m_Eye = VectorOf(camera.at("eye"));
  views.m_Up = VectorOf(camera.at("up"));
  views.m_fR = NumberOf(camera.at("half_size"));
  views.m_fR0 = NumberOf(camera.at("half_size_at_reset"));
  views.m_fTheta = NumberOf(camera.at("theta"));
  views.m_fPhi = NumberOf(camera.at("phi"));
  views.m_fZeta = NumberOf(camera.at("zeta"));
}

const char* NameOf(ReferenceResponse response) {
  switch (response) {
    case ReferenceResponse::Straight:
      return "straight";
    case ReferenceResponse::Bent:
      return "bent";
    default:
      return "automatic";
  }
}

CJson Reference(const CReference& reference) {
  const CReferenceSettings& settings = reference.m_Settings;
  const CDepthMap& map = *reference.m_pMap;
  CJson json{{"file", FileName(reference.m_File)},
             {"width", map.Width()},
             {"height", map.Height()},
             {"bits", map.Bits()},
             {"strength", settings.m_fStrength},
             {"near_is_bright", settings.m_bNearIsBright},
             {"zero_is_unknown", settings.m_bZeroIsUnknown},
             {"response", NameOf(settings.m_Response)}};
  if (settings.m_SceneDepth.has_value()) json["scene_depth"] = *settings.m_SceneDepth;
  return json;
}

void ReadReference(const CJson& value, CDocumentText& document) {
  CReference& reference = document.m_Project.m_Model.m_Document.m_Sketch.m_Reference;
  CReferenceSettings& settings = reference.m_Settings;
  reference.m_File = FileNameOf(value.at("file"));
  document.m_iReferenceWidth = WholeOf(value.at("width"), 2, kMostPictureSide);
  document.m_iReferenceHeight = WholeOf(value.at("height"), 2, kMostPictureSide);
  document.m_iReferenceBits = WholeOf(value.at("bits"), 8, 32);
  Require(document.m_iReferenceBits == 8 || document.m_iReferenceBits == 16 || document.m_iReferenceBits == 32);
  settings.m_fStrength = NumberOf(value.at("strength"));
  Require(settings.m_fStrength >= 0 && settings.m_fStrength <= 1);
  settings.m_bNearIsBright = value.at("near_is_bright").get<bool>();
  settings.m_bZeroIsUnknown = value.at("zero_is_unknown").get<bool>();
  const auto response = value.at("response").get<std::string>();
  settings.m_Response = response == "straight" ? ReferenceResponse::Straight
                        : response == "bent"   ? ReferenceResponse::Bent
                                               : ReferenceResponse::Automatic;
  Require(response == NameOf(settings.m_Response));
  if (!value.contains("scene_depth")) return;
  settings.m_SceneDepth = NumberOf(value.at("scene_depth"));
  Require(*settings.m_SceneDepth > 0);
}

CJson Photograph(const CProjectPicture& picture, const std::string& member) {
  if (member.empty() && picture.m_File.empty()) return {};
  CJson json{{"file", FileName(picture.m_File)}, {"project", FileName(picture.m_Project)}};
  if (!member.empty()) json["member"] = member;
  return json;
}

void ReadPhotograph(const CJson& value, CDocumentText& document) {
  if (value.is_null()) return;
  document.m_Project.m_Picture.m_File = FileNameOf(value.at("file"));
  document.m_Project.m_Picture.m_Project = FileNameOf(value.at("project"));
  if (value.contains("member")) document.m_Photograph = value.at("member").get<std::string>();
}

void ReadAll(const CJson& json, CDocumentText& document) {
  document.m_Note.m_iTime = json.at("time").get<std::int64_t>();
  CProject& project = document.m_Project;
  project.m_ModelFile = FileNameOf(json.at("model_file"));
  ReadModel(json.at("model"), project.m_Model);
  ReadLights(json.at("lights").at("removed"), project.m_Model.m_Document.m_RemovedLights);
  ReadLights(json.at("lights").at("added"), project.m_Model.m_Document.m_AddedLights);
  if (json.at("lights").contains("soft") && json.at("lights").at("soft").get<bool>())
    project.m_Model.m_Document.m_Tone = Tone::Soft;
  ReadViews(json.at("views"), project.m_Views);
  ReadPhotograph(json.at("photograph"), document);
  if (json.contains("reference")) ReadReference(json.at("reference"), document);
  document.m_Note.m_Model = project.m_ModelFile;
  document.m_Note.m_Picture = project.m_Picture.m_File;
}

}  // namespace

std::string DocumentText(const CProject& project, std::int64_t time, const std::string& photograph) {
  CJson json{{"format", kFormat}, {"version", kProjectVersion}, {"time", time}};
  json["model_file"] = FileName(project.m_ModelFile);
  json["model"] = Model(project.m_Model);
  const CDocument& document = project.m_Model.m_Document;
  json["lights"] = {{"removed", Lights(document.m_RemovedLights)}, {"added", Lights(document.m_AddedLights)}};
  if (document.m_Tone == Tone::Soft) json["lights"]["soft"] = true;
  json["views"] = Views(project.m_Views);
  json["photograph"] = Photograph(project.m_Picture, photograph);
  if (document.m_Sketch.m_Reference.m_pMap != nullptr) json["reference"] = Reference(document.m_Sketch.m_Reference);
  return json.dump(1) + '\n';
}

CDocumentText ReadDocumentText(const std::string& text) {
  CDocumentText document;
  const CJson json = CJson::parse(text, nullptr, false);
  if (!json.is_object() || json.value("format", CJson()) != kFormat) return document;
  try {
    document.m_State = DocumentState::Damaged;
    document.m_iVersion = WholeOf(json.at("version"), 1, INT32_MAX);
    if (document.m_iVersion > kProjectVersion) {
      document.m_State = DocumentState::Newer;
      return document;
    }
    ReadAll(json, document);
    document.m_State = DocumentState::Sound;
  } catch (const CJson::exception&) {
    return document;
  } catch (const CDamage&) {
    return document;
  }
  return document;
}
