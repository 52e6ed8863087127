#include "ui/drawing/ColourChoice.h"

#include <algorithm>
#include <cmath>

#include <FL/Fl_Color_Chooser.H>

namespace {

constexpr int kLargestByte = 255;

int NearestStep(double channel, int largest) {
  return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * largest));
}

}  // namespace

Fl_Color NearestCubeColour(const CColour& colour) {
  return fl_color_cube(NearestStep(colour[0], FL_NUM_RED - 1), NearestStep(colour[1], FL_NUM_GREEN - 1),
                       NearestStep(colour[2], FL_NUM_BLUE - 1));
}

bool ChooseColour(const char* title, std::array<int, 3>& bytes) {
  auto red = static_cast<uchar>(bytes[0]);
  auto green = static_cast<uchar>(bytes[1]);
  auto blue = static_cast<uchar>(bytes[2]);
  if (fl_color_chooser(title, red, green, blue) == 0) return false;
  bytes = {red, green, blue};
  return true;
}

bool ChooseColour(const char* title, CColour& colour) {
  std::array<int, 3> bytes{};
  std::ranges::transform(colour, bytes.begin(), [](double channel) { return NearestStep(channel, kLargestByte); });
  if (!ChooseColour(title, bytes)) return false;
  std::ranges::transform(bytes, colour.begin(), [](int byte) { return byte / double{kLargestByte}; });
  return true;
}
