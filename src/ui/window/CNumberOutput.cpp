#include "ui/window/CNumberOutput.h"

#include <array>
#include <cmath>
#include <cstdio>

#include <FL/Fl.H>
#include <FL/fl_draw.H>

namespace {

constexpr std::size_t kRoom = 128;  // what the toolkit has for a number
constexpr int kDigits = 6;
constexpr double kLargestWhole = 1e15;
constexpr Fl_Fontsize kLeastSize = 6;

bool IsWhole(double value) { return std::abs(value) < kLargestWhole && value == std::floor(value); }

}  // namespace

bool CNumberOutput::Fits(const char* text, Fl_Fontsize size) const {
  fl_font(textfont(), size);
  return fl_width(text) <= w() - Fl::box_dw(box() != FL_NO_BOX ? box() : FL_DOWN_BOX);
}

int CNumberOutput::format(char* text) {
  if (IsWhole(value())) return std::snprintf(text, kRoom, "%.0f", value());
  int length = 0;
  for (int digits = kDigits; digits > 0; --digits) {
    length = std::snprintf(text, kRoom, "%.*g", digits, value());
    if (Fits(text, textsize())) break;
  }
  return length;
}

void CNumberOutput::draw() {
  std::array<char, kRoom> text{};
  format(text.data());
  const Fl_Fontsize size = textsize();
  while (textsize() > kLeastSize && !Fits(text.data(), textsize())) textsize(textsize() - 1);
  Fl_Value_Output::draw();
  textsize(size);
}
