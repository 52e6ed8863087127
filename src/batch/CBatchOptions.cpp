#include "batch/CBatchOptions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <string_view>

#include <CLI/CLI.hpp>

#include "batch/ExitStatus.h"
#include "batch/OutputConflict.h"
#include "io/HeightFieldExport.h"
#include "projects/ProjectFile.h"

namespace {

constexpr int kFewestSamples = 2;  // one alone would have no place between the borders

const std::map<std::string, WaveletMode> kModes{
    {"new", WaveletMode::New}, {"simple", WaveletMode::Simple}, {"no", WaveletMode::None}};
const std::map<std::string, CBatchOptions::Report> kReports{{"json", CBatchOptions::Report::Json},
                                                            {"text", CBatchOptions::Report::Text}};
const std::map<std::string, TearGap> kGaps{{"open", TearGap::Open}, {"wall", TearGap::Wall}, {"under", TearGap::Under}};
const std::map<std::string, ExportTexture> kTextures{{"photograph", ExportTexture::Photograph},
                                                     {"albedo", ExportTexture::Albedo},
                                                     {"relit", ExportTexture::Relit},
                                                     {"none", ExportTexture::None}};
const std::map<std::string, bool> kGreenDown{{"up", false}, {"down", true}};
const std::map<std::string, UpAxis> kAxes{{"y", UpAxis::Y}, {"z", UpAxis::Z}};

// Digits and nothing else, of a number that the type holds.
template <typename Whole>
bool ReadNumber(std::string_view text, Whole& number) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return !text.empty() && std::ranges::all_of(text, isDigit) &&
         std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

// Plain digits; above 0 and finite.
bool ReadPositive(std::string_view text, double& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(number) && number > 0;
}

// "200x100"
bool ReadSize(std::string_view text, int& width, int& height) {
  const std::size_t cross = text.find('x');
  return cross != std::string_view::npos && ReadNumber(text.substr(0, cross), width) &&
         ReadNumber(text.substr(cross + 1), height) && width >= kFewestSamples && height >= kFewestSamples;
}

// `Value` is the number's type or an optional of it.
template <typename Whole, typename Value>
CLI::Option* AddNumber(CLI::App& app, const std::string& name, Value& value, const std::string& description) {
  const auto read = [name, &value](const std::string& text) {
    Whole number = 0;
    if (!ReadNumber(text, number)) {
      const std::string most = std::to_string(std::numeric_limits<Whole>::max());
      throw CLI::ValidationError(name, "a whole number from 0 to " + most + " is expected, not '" + text + "'");
    }
    value = number;
  };
  return app.add_option_function<std::string>(name, read, description)->type_name("N");
}

CLI::Option* AddFile(CLI::App& app, const std::string& name, std::string& path, const std::string& description,
                     const std::string& placeholder) {
  const auto complaint = [](const std::string& text) {
    return std::string(text.empty() ? "the name of a file is expected" : "");
  };
  return app.add_option(name, path, description)->type_name(placeholder)->check(complaint);
}

template <typename Value>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, Value& value, const std::map<std::string, Value>& names,
                       const std::string& description) {
  CLI::Option* option = app.add_option_function<std::string>(
      name, [&value, &names](const std::string& text) { value = names.at(text); }, description);
  return option->check(CLI::IsMember(names));
}

void AddSolving(CLI::App& app, CBatchOptions& options) {
  CLI::Option* iterations = AddNumber<long>(app, "--iterations", options.m_Iterations,
                                            "Stop after N iterations, rounded up to whole ticks of ten");
  const std::string untilConverged = "Go on until the solver pauses itself (default)";
  app.add_flag("--until-converged", untilConverged)->excludes(iterations);
  AddNumber<long>(app, "--max-iterations", options.m_iMaxIterations, "Bound of going on until converged")
      ->default_str(std::to_string(options.m_iMaxIterations))
      ->excludes(iterations);
  const auto readSeconds = [&options](const std::string& text) {
    if (!ReadPositive(text, options.m_fMaxSeconds))
      throw CLI::ValidationError("--max-seconds", "a number above 0 is expected, not " + text);
  };
  app.add_option_function<std::string>("--max-seconds", readSeconds, "Bound of the time that solving may take")
      ->type_name("SECONDS");
  AddChoice(app, "--wavelets", options.m_Mode, kModes, "Basis to solve in: new (default), simple or no");
  app.add_flag("--settle", options.m_bSettle, "Give regions whose heights nothing settles a definite place");
  app.add_flag("--high-res", options.m_bHighRes, "Transfer to the highest resolution before solving");
  AddNumber<std::uint32_t>(app, "--seed", options.m_uSeed, "Seed of the random start")
      ->default_str(std::to_string(options.m_uSeed));
}

// From 0 to 1.
bool ReadShare(std::string_view text, double& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number >= 0 && number <= 1;
}

void AddReference(CLI::App& app, CBatchOptions& options) {
  AddFile(app, "--reference-depth", options.m_Reference,
          "Depth map that gives the shape between the constraints, instead of a project's", "MAP");
  const auto readStrength = [&options](const std::string& text) {
    double strength = 0;
    if (!ReadShare(text, strength))
      throw CLI::ValidationError("--reference-strength", "a number from 0 to 1 is expected, not '" + text + "'");
    options.m_ReferenceStrength = strength;
  };
  app.add_option_function<std::string>("--reference-strength", readStrength,
                                       "How much the depth map counts, 0 to 1 (default 0.8)")
      ->type_name("S");
  AddNumber<int>(app, "--suggest-tears", options.m_iSuggestedTears,
                 "Take the N longest gaps of the depth map for tears, before solving");
}

// What counts for a depth map needs one; only a project may have brought its own.
std::string MissingReference(const CBatchOptions& options) {
  if (!options.m_Reference.empty() || IsProjectFile(options.m_Model)) return {};
  if (options.m_ReferenceStrength.has_value()) return "--reference-strength requires --reference-depth";
  return options.m_iSuggestedTears > 0 ? "--suggest-tears requires --reference-depth" : "";
}

void AddSize(CLI::App& app, CWriteSettings& settings, CLI::Option& output) {
  const auto readSize = [&settings](const std::string& text) {
    if (!ReadSize(text, settings.m_iWidth, settings.m_iHeight))
      throw CLI::ValidationError("--size", "WxH with whole numbers from 2 on is expected, not '" + text + "'");
    if (!IsHeightFieldSize(settings.m_iWidth, settings.m_iHeight)) {
      const std::string most = std::to_string(kMostHeightSamples);
      throw CLI::ValidationError("--size", "a height field has at most " + most + " samples, not " + text);
    }
  };
  app.add_option_function<std::string>("--size", readSize, "Samples of the height field (default 200x200)")
      ->type_name("WxH")
      ->needs(&output);
}

void AddSetting(CLI::App& app, CWriteSettings& settings, WriteSetting setting, CLI::Option& output) {
  const auto withLights = [&settings] { settings.m_WithLights = [] { return true; }; };
  switch (setting) {
    case WriteSetting::Lights:
      app.add_flag_callback("--with-lights", withLights, "Write the lights into the model, too")->needs(&output);
      break;
    case WriteSetting::Size:
      AddSize(app, settings, output);
      break;
    case WriteSetting::None:
      break;
  }
}

void AddFactor(CLI::App& app, const std::string& name, const std::string& description,
               const std::function<void(double)>& set, CLI::Option& output) {
  const auto read = [name, set](const std::string& text) {
    double value = 0;
    if (!ReadPositive(text, value))
      throw CLI::ValidationError(name, "a number above 0 is expected, not '" + text + "'");
    set(value);
  };
  app.add_option_function<std::string>(name, read, description)->type_name("F")->needs(&output);
}

// What is wrong with the name of an export; empty where it tells the format.
std::string UnknownFormat(const std::string& filename) {
  if (ExportFormatOf(filename) != nullptr) return {};
  std::string text = "the name of a file is expected that ends with";
  for (const CExportFormat& format : ExportFormats())
    text += std::string(&format == ExportFormats().data() ? " " : ", ") + format.m_pSuffix;
  return text;
}

// What pictures are made for an export, and of how many samples.
void AddPictures(CLI::App& app, CExportSettings& settings, CLI::Option& output) {
  AddChoice(app, "--texture", settings.m_Texture, kTextures,
            "Picture on the surface in .glb, .html, .obj and .ply: photograph (default), albedo, relit or none")
      ->needs(&output);
  const auto readResolution = [&settings](const std::string& text) {
    CSampleGrid grid;
    if (!ReadSize(text, grid.m_iWidth, grid.m_iHeight) || std::max(grid.m_iWidth, grid.m_iHeight) > CSampleGrid::kMost)
      throw CLI::ValidationError("--resolution", "WxH with whole numbers from 2 to " +
                                                     std::to_string(CSampleGrid::kMost) + " is expected, not '" + text +
                                                     "'");
    settings.m_Resolution = grid;
  };
  const std::string resolution = "Samples of maps of heights and normals, instead of the points of the lattice";
  app.add_option_function<std::string>("--resolution", readResolution, resolution)->type_name("WxH")->needs(&output);
  AddChoice(app, "--green", settings.m_bGreenDown, kGreenDown,
            "Where green looks in a map of normals: up (default) or down")
      ->needs(&output);
}

// Why a resolution cannot be had: meshes keep that of the grid, whose leaves end at its tears.
std::string UselessResolution(const CBatchOptions& options) {
  const auto isMap = [](const std::string& filename) {
    return (ExportFormatOf(filename)->m_uReads & ExportSetting::kResolution) != 0;
  };
  if (!options.m_Exporting.m_Resolution.has_value() || std::ranges::any_of(options.m_asExports, isMap)) return {};
  return "--resolution is for maps of heights and normals (.png, .tif, .pfm, -normal.png); a mesh has the grid's own "
         "leaves";
}

void AddExports(CLI::App& app, CBatchOptions& options) {
  CExportSettings& settings = options.m_Exporting;
  std::string formats = "Write the surface for other programs, in the format of the name:";
  for (const CExportFormat& format : ExportFormats())
    formats += std::string(" ") + format.m_pSuffix + " (" + format.m_pName + ')';
  CLI::Option* output = app.add_option("--export", options.m_asExports, formats + ". May be given several times")
                            ->type_name("FILE")
                            ->check(UnknownFormat)
                            ->expected(1)
                            ->allow_extra_args(false)
                            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  AddChoice(app, "--tears", settings.m_Gap, kGaps,
            "What lies between the sides of a tear: open (default), wall or under")
      ->needs(output);
  app.add_option_function<std::string>(
         "--up", [&settings](const std::string& text) { settings.m_Up = kAxes.at(text); },
         "Axis that points up in .obj, .ply and .stl: y or z, instead of that of the format")
      ->check(CLI::IsMember(kAxes))
      ->needs(output);
  const auto width = [&settings](double value) { settings.m_fUnderWidth = value; };
  AddFactor(app, "--under-width",
            "How far the lower side runs on beneath the higher one with --tears under, model units (default an eighth "
            "of the larger side)",
            width, *output);
  const auto scale = [&settings](double value) { settings.m_fScale = value; };
  AddFactor(app, "--scale", "Units of the file in a model unit (default 0.01 metres in a .glb or .html, else 1)", scale,
            *output);
  const auto heights = [&settings](double value) { settings.m_fHeightScale = value; };
  AddFactor(app, "--height-scale", "Factor for heights (default 1)", heights, *output);
  const auto base = [&settings](double value) { settings.m_fBase = value; };
  AddFactor(app, "--base", "Thickness of a solid below its lowest point, units of the file (default 2)", base, *output);
  AddPictures(app, settings, *output);
}

void AddOutputs(CLI::App& app, CBatchOptions& options) {
  for (std::size_t k = 0; k < ModelFormats().size(); ++k) {
    const CModelFormat& format = ModelFormats()[k];
    CLI::Option* output = AddFile(app, format.m_pOption, options.m_asOutputs[k], format.m_pDescription,
                                  std::string("OUT") + format.m_pSuffix);
    AddSetting(app, options.m_Writing, format.m_Setting, *output);
  }
  AddExports(app, options);
  AddChoice(app, "--report", options.m_Report, kReports, "Report on standard output: json or text");
  app.add_flag("--quiet", options.m_bQuiet, "No progress and no lines of the model on standard error");
}

}  // namespace

std::string CBatchOptions::PictureOf(std::size_t format) const {
  const auto pictureOf = ModelFormats()[format].m_pPictureOf;
  const bool picture = !m_Image.empty() || IsProjectFile(m_Model);
  if (pictureOf == nullptr || !picture || m_asOutputs[format].empty()) return {};
  return pictureOf(m_asOutputs[format]);
}

CParsedOptions ParseOptions(int argc, const char* const* argv) {
  CParsedOptions parsed;
  CLI::App app{"Solves a relievo model without a window and exports its surface.", "relievo-batch"};
  app.set_version_flag("--version", "relievo-batch " RELIEVO_VERSION);
  AddFile(app, "MODEL", parsed.m_Options.m_Model, "Grid file or project to read", "MODEL")->required();
  AddFile(app, "--image", parsed.m_Options.m_Image,
          "Photograph, instead of a project's; becomes picture.jpg beside the VRML scene", "PHOTO");
  app.add_flag("--strict", parsed.m_Options.m_bStrict,
               "Refuse a damaged model instead of going on with what is whole; end with 6 where constraints contradict "
               "each other or a region floats");
  AddReference(app, parsed.m_Options);
  AddSolving(app, parsed.m_Options);
  AddOutputs(app, parsed.m_Options);
  try {
    app.parse(argc, argv);
    if (const std::string conflict = OutputConflict(parsed.m_Options); !conflict.empty())
      throw CLI::ValidationError(conflict);
    if (const std::string useless = UselessResolution(parsed.m_Options); !useless.empty())
      throw CLI::ValidationError(useless);
    if (const std::string missing = MissingReference(parsed.m_Options); !missing.empty())
      throw CLI::ValidationError(missing);
  } catch (const CLI::ParseError& end) {
    parsed.m_ExitStatus = app.exit(end) == 0 ? ExitStatus::kDone : ExitStatus::kUsage;
  }
  return parsed;
}
