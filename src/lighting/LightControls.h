#pragma once

#include <array>
#include <optional>

#include "lighting/LightAngles.h"

struct CLight;

/// One light as a panel of sliders and buttons shows it.
struct CLightControls {
  bool m_bActive = false;
  bool m_bDrawn = false;
  CLightAngles m_Angles;
  std::array<double, 3> m_afColour{};   ///< red, green, blue, 0 to 1
  std::array<int, 3> m_aiTubeColour{};  ///< red, green, blue, bytes
};

/// What the panel shows of a record, and the record that the panel shows.
CLightControls ControlsOf(const CLight& light);
void Apply(const CLightControls& controls, CLight& light);

/// The toolkit's palette entry nearest below a colour: a cube of five reds, eight greens and five blues from entry 56
/// on. Bytes.
int ColourCubeEntry(const std::array<int, 3>& rgb);

/// The proportions of a colour, kept so that moving one channel can take the other two along.
class CColourRatios {
 public:
  /// Stands for a ratio to a channel that is 0.
  static constexpr double kUnknown = -1.0;

  CColourRatios() = default;
  /// Of red, green and blue, 0 to 1.
  explicit CColourRatios(const std::array<double, 3>& rgb);

  /// Channel `k` over channel `to` (0 red, 1 green, 2 blue); kUnknown where that was 0.
  double Ratio(std::size_t k, std::size_t to) const { return m_aafRatios[k][to]; }
  /// The colour that `value` in channel `moved` brings along, each other channel at most 1; nothing where a ratio
  /// needed is unknown. The ratios stay, so that what the limit has bent can come back.
  std::optional<std::array<double, 3>> Follow(std::size_t moved, double value) const;

 private:
  std::array<std::array<double, 3>, 3> m_aafRatios{
      {{1, kUnknown, kUnknown}, {kUnknown, 1, kUnknown}, {kUnknown, kUnknown, 1}}};
};
