#include "ui/seams/ViewMoves.h"

#include <cmath>

#include <FL/Fl.H>

namespace {

constexpr double kStep = 0.1;
constexpr double kFactorOfANotch = 1.25;

bool IsAnyButtonHeld() { return Fl::event_state(FL_BUTTONS) != 0; }

bool IsCtrlAlone() { return Fl::event_state(FL_CTRL | FL_SHIFT | FL_ALT | FL_META) == FL_CTRL; }

}  // namespace

std::optional<ViewMove> TypedViewMove() {
  if (!IsCtrlAlone() || IsAnyButtonHeld()) return std::nullopt;
  switch (Fl::event_key()) {
    case FL_Left:
      return ViewMove::Left;
    case FL_Right:
      return ViewMove::Right;
    case FL_Up:
      return ViewMove::Up;
    case FL_Down:
      return ViewMove::Down;
    case '0':
    case FL_KP + '0':
      return ViewMove::All;
    default:
      return std::nullopt;
  }
}

CViewStep StepOf(ViewMove move, double width, double height) {
  switch (move) {
    case ViewMove::Left:
      return {-kStep * width, 0};
    case ViewMove::Right:
      return {kStep * width, 0};
    case ViewMove::Up:
      return {0, kStep * height};
    case ViewMove::Down:
      return {0, -kStep * height};
    case ViewMove::All:
      break;
  }
  return {};
}

bool IsWheelZoom() { return Fl::event_state(FL_CTRL) != 0; }

bool IsPointerIn(int width, int height) {
  const int x = Fl::event_x();
  const int y = Fl::event_y();
  return x >= 0 && x < width && y >= 0 && y < height;
}

std::optional<double> WheelZoomFactor() {
  if (IsAnyButtonHeld() || Fl::event_dy() == 0) return std::nullopt;
  return std::pow(kFactorOfANotch, Fl::event_dy());
}
