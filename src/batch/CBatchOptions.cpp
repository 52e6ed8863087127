#include "batch/CBatchOptions.h"

#include <charconv>
#include <cmath>
#include <map>
#include <string_view>

#include <CLI/CLI.hpp>

#include "batch/ExitStatus.h"

namespace {

constexpr int kFewestSamples = 2;  // one alone would have no place between the borders

const std::map<std::string, WaveletMode> kModes{
    {"new", WaveletMode::New}, {"simple", WaveletMode::Simple}, {"no", WaveletMode::None}};
const std::map<std::string, CBatchOptions::Report> kReports{{"json", CBatchOptions::Report::Json},
                                                            {"text", CBatchOptions::Report::Text}};

bool ReadNumber(std::string_view text, int& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// Plain digits; above 0 and finite.
bool ReadSeconds(std::string_view text, double& seconds) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(seconds) && seconds > 0;
}

// "200x100"
bool ReadSize(std::string_view text, int& width, int& height) {
  const std::size_t cross = text.find('x');
  return cross != std::string_view::npos && ReadNumber(text.substr(0, cross), width) &&
         ReadNumber(text.substr(cross + 1), height) && width >= kFewestSamples && height >= kFewestSamples;
}

template <typename Value>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, Value& value, const std::map<std::string, Value>& names,
                       const std::string& description) {
  CLI::Option* option = app.add_option_function<std::string>(
      name, [&value, &names](const std::string& text) { value = names.at(text); }, description);
  return option->check(CLI::IsMember(names));
}

void AddSolving(CLI::App& app, CBatchOptions& options) {
  CLI::Option* iterations =
      app.add_option("--iterations", options.m_Iterations, "Stop after N iterations, rounded up to whole ticks of ten")
          ->type_name("N")
          ->check(CLI::NonNegativeNumber);
  const std::string untilConverged = "Go on until the solver pauses itself (default)";
  app.add_flag("--until-converged", untilConverged)->excludes(iterations);
  app.add_option("--max-iterations", options.m_iMaxIterations, "Bound of going on until converged")
      ->type_name("N")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber)
      ->excludes(iterations);
  const auto readSeconds = [&options](const std::string& text) {
    if (!ReadSeconds(text, options.m_fMaxSeconds))
      throw CLI::ValidationError("--max-seconds", "a number above 0 is expected, not " + text);
  };
  app.add_option_function<std::string>("--max-seconds", readSeconds, "Bound of the time that solving may take")
      ->type_name("SECONDS");
  AddChoice(app, "--wavelets", options.m_Mode, kModes, "Basis to solve in: new (default), simple or no");
  app.add_flag("--high-res", options.m_bHighRes, "Transfer to the highest resolution before solving");
  app.add_option("--seed", options.m_uSeed, "Seed of the random start")->type_name("N")->capture_default_str();
}

void AddOutputs(CLI::App& app, CBatchOptions& options) {
  CLI::Option* save = app.add_option("--save", options.m_GridOut, "Write the model")->type_name("OUT.grid");
  app.add_flag("--with-lights", options.m_bWithLights, "Write the lights into the model, too")->needs(save);
  app.add_option("--vrml", options.m_VrmlOut, "Write the surface as a VRML 2.0 scene")->type_name("OUT.wrl");
  CLI::Option* heights =
      app.add_option("--height-field", options.m_HeightFieldOut, "Write sampled heights")->type_name("OUT.txt");
  const auto readSize = [&options](const std::string& text) {
    if (!ReadSize(text, options.m_iWidth, options.m_iHeight))
      throw CLI::ValidationError("--size", "WxH with whole numbers from 2 on is expected, not " + text);
  };
  app.add_option_function<std::string>("--size", readSize, "Samples of the height field (default 200x200)")
      ->type_name("WxH")
      ->needs(heights);
  AddChoice(app, "--report", options.m_Report, kReports, "Report on standard output: json or text");
  app.add_flag("--quiet", options.m_bQuiet, "No progress and no lines of the model on standard error");
}

}  // namespace

CParsedOptions ParseOptions(int argc, const char* const* argv) {
  CParsedOptions parsed;
  CLI::App app{"Solves a relievo model without a window and exports its surface.", "relievo-batch"};
  app.set_version_flag("--version", "relievo-batch " RELIEVO_VERSION);
  app.add_option("MODEL", parsed.m_Options.m_Model, "Grid file to read")->required()->type_name("MODEL.grid");
  app.add_option("--image", parsed.m_Options.m_Image, "Photograph; becomes picture.jpg beside the VRML scene")
      ->type_name("PHOTO.bmp");
  app.add_flag("--strict", parsed.m_Options.m_bStrict, "Refuse a damaged model instead of going on with what is whole");
  AddSolving(app, parsed.m_Options);
  AddOutputs(app, parsed.m_Options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    parsed.m_ExitStatus = app.exit(end) == 0 ? ExitStatus::kDone : ExitStatus::kUsage;
  }
  return parsed;
}
