#include "support/gui/CLightPanelUser.h"

#include <cmath>

namespace {

constexpr CPixel kTheta{14, 224};
constexpr CPixel kPhi{14, 269};
constexpr CPixel kRed{269, 227};

constexpr int kBeforeTrack = 35;
constexpr int kKnob = 16;
constexpr int kTrack = 229 - kBeforeTrack;

}  // namespace

void CLightPanelUser::DragTheta(double from, double to) const {
  const auto place = [this](double degrees) {
    const double along = kBeforeTrack + kKnob / 2.0 + degrees / 180 * (kTrack - kKnob);
    return m_Panel.At({kTheta.m_iX + static_cast<int>(std::lround(along)), kTheta.m_iY});
  };
  m_User.DragSlowly(place(from), place(to), 1, "", 6);
}

// A click to the right of the knob brings its right edge under the mouse, so the value can only grow.
void CLightPanelUser::SetSlider(CPixel slider, double fraction) const {
  const double along = kBeforeTrack + kKnob + fraction * (kTrack - kKnob);
  ClickOn({slider.m_iX + static_cast<int>(std::lround(along)), slider.m_iY});
}

void CLightPanelUser::SetLights(CPixel category, double theta, double phi, double ambient) const {
  ClickOn(category);
  ClickOn(kLight1);
  ClickOn(kActive);
  SetSlider(kTheta, theta / 180);
  SetSlider(kPhi, phi / 360);
  ClickOn(kAmbient);
  ClickOn(kActive);
  ClickOn(kFixRatios);
  SetSlider(kRed, ambient);
  ClickOn(kFixRatios);
}
