#include "ui/ColourChoice.h"

#include <algorithm>
#include <cmath>

#include <FL/Fl_Color_Chooser.H>

namespace {

constexpr double kLargestByte = 255;

int NearestStep(double channel, int largest) {
  return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * largest));
}

}  // namespace

Fl_Color NearestCubeColour(const CColour& colour) {
  return fl_color_cube(NearestStep(colour[0], FL_NUM_RED - 1), NearestStep(colour[1], FL_NUM_GREEN - 1),
                       NearestStep(colour[2], FL_NUM_BLUE - 1));
}

bool ChooseColour(const char* title, CColour& colour) {
  std::array<uchar, 3> bytes{};
  std::ranges::transform(colour, bytes.begin(),
                         [](double channel) { return static_cast<uchar>(NearestStep(channel, 255)); });
  if (fl_color_chooser(title, bytes[0], bytes[1], bytes[2]) == 0) return false;
  std::ranges::transform(bytes, colour.begin(), [](uchar byte) { return byte / kLargestByte; });
  return true;
}
