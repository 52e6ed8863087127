#include "picture/CPictureOptions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include <CLI/CLI.hpp>

#include "picture/COffscreenCanvas.h"
#include "picture/PictureStatus.h"

namespace {

constexpr double kSteepest = 90.0;

// All of the text is one number.
template <typename Number>
bool ReadNumber(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// Two numbers with a character between them.
template <typename Number>
bool ReadPair(std::string_view text, char between, Number& first, Number& second) {
  const std::size_t at = text.find(between);
  return at != std::string_view::npos && ReadNumber(text.substr(0, at), first) &&
         ReadNumber(text.substr(at + 1), second);
}

bool IsSide(int side) { return side >= 1 && side <= COffscreenCanvas::kLargestSide; }

void AddView(CLI::App& app, CPictureOptions& options) {
  const auto readSize = [&options](const std::string& text) {
    const bool read = ReadPair(text, 'x', options.m_iWidth, options.m_iHeight);
    if (!read || !IsSide(options.m_iWidth) || !IsSide(options.m_iHeight)) {
      const std::string most = std::to_string(COffscreenCanvas::kLargestSide);
      throw CLI::ValidationError("--size",
                                 "WxH with whole numbers from 1 to " + most + " is expected, not '" + text + "'");
    }
  };
  app.add_option_function<std::string>("--size", readSize, "Pixels of the picture (default 800x600)")->type_name("WxH");
  const auto readTurn = [&options](const std::string& text) {
    const bool read = ReadPair(text, ',', options.m_fAzimuth, options.m_fElevation);
    if (!read || !std::isfinite(options.m_fAzimuth) || !(std::abs(options.m_fElevation) <= kSteepest))
      throw CLI::ValidationError("--turn",
                                 "two numbers of degrees, the second from -90 to 90, are expected, not '" + text + "'");
  };
  app.add_option_function<std::string>("--turn", readTurn,
                                       "Degrees of the eye to the right and upwards (default 0,0: from the front)")
      ->type_name("AZIMUTH,ELEVATION");
  app.add_flag("--fit", options.m_bFit, "Fill the picture with the surface as it is seen");
}

}  // namespace

CParsedPictureOptions ParsePictureOptions(int argc, const char* const* argv) {
  CParsedPictureOptions parsed;
  CPictureOptions& options = parsed.m_Options;
  CLI::App app{"Draws a relievo model without a window.", "relievo-picture"};
  const auto complaint = [](const std::string& text) {
    return std::string(text.empty() ? "the name of a file is expected" : "");
  };
  app.set_version_flag("--version", "relievo-picture " RELIEVO_VERSION);
  app.add_option("MODEL", options.m_Model, "Grid file or project to draw")->required()->check(complaint)->type_name("");
  app.add_option("--image", options.m_Image, "Photograph, instead of a project's own")
      ->check(complaint)
      ->type_name("PHOTO");
  app.add_option("-o,--output", options.m_Output, "Picture to write")
      ->required()
      ->check(complaint)
      ->type_name("OUT.png");
  AddView(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    parsed.m_ExitStatus = app.exit(end) == 0 ? PictureStatus::kDone : PictureStatus::kUsage;
  }
  return parsed;
}
