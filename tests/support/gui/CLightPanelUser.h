#pragma once

#include "support/gui/CUser.h"

/// The mouse at the open "Light sources" panel.
class CLightPanelUser {
 public:
  /// Places in the panel, in pixels from its corner.
  static constexpr CPixel kLight1{81, 43};
  static constexpr CPixel kAmbient{81, 163};
  static constexpr CPixel kRemoved{185, 43};
  static constexpr CPixel kAdded{185, 71};
  static constexpr CPixel kActive{174, 143};
  static constexpr CPixel kLive{414, 171};
  static constexpr CPixel kSoft{466, 171};
  static constexpr CPixel kFixRatios{320, 403};
  static constexpr CPixel kNewIllumination{350, 129};
  static constexpr CPixel kUpdateInterpolation{131, 381};
  static constexpr CPixel kUpdateKd{212, 381};

  CLightPanelUser(const CUser& user, const CArea& panel) : m_User(user), m_Panel(panel) {}

  void ClickOn(CPixel place) const { m_User.ClickAt(m_Panel.At(place)); }
  /// Moves the knob of the theta slider of the light being edited from the angle where it is to another, degrees.
  void DragTheta(double from, double to) const;
  /// Switches on "Light 1" and the ambient light of a category (kRemoved or kAdded). Angles are in degrees, the ambient
  /// light is grey of the given strength, from 0 to 1; all as near as a slider comes.
  void SetLights(CPixel category, double theta, double phi, double ambient) const;

 private:
  /// `fraction` of the way along a slider at its left end.
  void SetSlider(CPixel slider, double fraction) const;

  const CUser& m_User;
  CArea m_Panel;
};
