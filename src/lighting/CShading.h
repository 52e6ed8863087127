#pragma once

#include <array>
#include <cstddef>

#include "base/Vector3.h"

struct CLightSet;

/// What a set of lights makes of a surface: a matt one [Lambert1760] under lights at infinity and an ambient term, no
/// fall-off with the distance, nothing specular. Holds the active lights of the set as they were at construction.
///
/// Colours are vectors of red, green and blue.
class CShading {
 public:
  /// Takes what the active lights of the set give; later changes of the set are not seen.
  explicit CShading(const CLightSet& lights);

  /// Whether any light of the set is active, whatever it shines on.
  bool IsAnyActive() const { return m_bAnyActive; }

  /// Shading of a unit normal: the sum of colour times cosine over the directional lights that it faces, and the colour
  /// of the ambient light. Not a number where the normal is not and a directional light is active.
  Vector3 Of(const Vector3& normal) const {
    Vector3 sum;
    for (std::size_t k = 0; k < m_uDirectional; ++k) {
      const double cosine = Dot(m_aDirectional[k].m_Direction, normal);
      // Not-a-number must pass.
      sum += (cosine <= 0 ? 0.0 : cosine) * m_aDirectional[k].m_Colour;
    }
    return sum += m_Ambient;
  }

  /// The sum of colour times direction, one vector per channel, over the directional lights that the normal faces. As
  /// long as it faces the same ones the shading of any normal n is this times n, plus the ambient term.
  std::array<Vector3, 3> ColourTimesDirection(const Vector3& normal) const;

 private:
  struct CDirectional {
    Vector3 m_Direction;
    Vector3 m_Colour;
  };

  std::array<CDirectional, 4> m_aDirectional;
  std::size_t m_uDirectional = 0;
  Vector3 m_Ambient;
  bool m_bAnyActive = false;
};
