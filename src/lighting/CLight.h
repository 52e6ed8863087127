#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>

#include "base/SameBits.h"
#include "base/Vector3.h"

/// One light of a set: where it shines from, its colour, and how it is shown in the model view.
struct CLight {
  bool m_bActive = false;
  bool m_bDrawn = false;
  /// x, y, z towards the light and 0: a homogeneous position at infinity.
  std::array<double, 4> m_afDirection{0, 0, 1, 0};
  std::array<double, 3> m_afColour{1, 1, 1};         ///< red, green, blue, 0 to 1
  std::array<double, 4> m_afTubeColour{1, 1, 0, 1};  ///< RGBA of the marker, 0 to 1

  /// From the surface to the light, without the fourth component, which is 0.
  Vector3 Direction() const { return {m_afDirection[0], m_afDirection[1], m_afDirection[2]}; }
  void SetDirection(const Vector3& d) { m_afDirection = {d.x, d.y, d.z, 0}; }
  bool operator==(const CLight& other) const {
    return m_bActive == other.m_bActive && m_bDrawn == other.m_bDrawn && SameBits(m_afDirection, other.m_afDirection) &&
           SameBits(m_afColour, other.m_afColour) && SameBits(m_afTubeColour, other.m_afTubeColour);
  }
};

/// The lights of one set: four directional lights, then the ambient one.
struct CLightSet {
  static constexpr std::size_t kAmbient = 4;

  /// The sets as a run starts with them, all lights inactive and not drawn: those taken to have lit the photograph,
  /// with red markers, and those to light the model with instead, with yellow ones. The ambient lights are dim.
  static CLightSet Removed();
  static CLightSet Added();

  std::array<CLight, 5> m_aLights;
  bool operator==(const CLightSet&) const = default;
};

/// How a new illumination becomes bytes: what is brighter than white is cut off, or all that is bright runs into white
/// (see `Shouldered`).
enum class Tone { Clipped, Soft };

/// The two sets by their number.
enum LightType { kRemovedLights = 1, kAddedLights = 2 };

// Text form: per light the lines "active drawn", direction, colour and tube colour, a blank after every number but the
// second; per set its five lights, each followed by an empty line. Numbers in the stream's own format. Reading takes
// the numbers in the same order, separated by white space, and leaves its target as it was when one is missing.

/// In the text form above.
std::ostream& operator<<(std::ostream& out, const CLight& light);
std::ostream& operator<<(std::ostream& out, const CLightSet& lights);
std::istream& operator>>(std::istream& in, CLight& light);
std::istream& operator>>(std::istream& in, CLightSet& lights);
