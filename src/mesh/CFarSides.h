#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CTearPatch;
class CTearSides;

/// A point in lattice coordinates.
struct CCellPoint {
  double x = 0.0;
  double y = 0.0;
};

/// A cut side as seen from one of the pieces beside it, which lies to its left.
struct CFarSide {
  std::array<std::uint32_t, 2> m_auNear{};    ///< copies at its beginning and its end, of the piece to its left
  std::array<std::uint32_t, 2> m_auFar{};     ///< and of the one beyond
  std::array<CCellPoint, 2> m_aEnds;          ///< lattice coordinates
  std::array<double, 2> m_afWidths{};         ///< how far a strip reaches from there, model units
  std::array<double, 2> m_afRange{0.0, 1.0};  ///< the part of it where the far side is the lower one
};

/// The cut sides of a patch, and which of the two surfaces beside each is the lower one.
///
/// Where a tear ends inside the surface the width of a strip grows from 0 with the way along the tear.
class CFarSides {
 public:
  /// `width` of the strips, and lengths of a cell along both axes, model units. Linear in the patch.
  CFarSides(const CTearPatch& patch, const CTearSides& sides, double width, const std::array<double, 2>& cell);

  /// Each cut side from each of its pieces beyond which the surface is lower, with the part of it where that is so.
  /// `heights` by copy; `scale` is what they are multiplied by when they are written as floats, which decide. Steps of
  /// a millionth of the largest height are none.
  std::vector<CFarSide> Lower(std::span<const double> heights, double scale) const;
  /// Whether another surface is the lower one somewhere than with `before`, by more than `least`.
  bool HaveTurned(std::span<const double> before, std::span<const double> heights, double least) const;

 private:
  void FindWidths(const CTearPatch& patch, double width, const std::array<double, 2>& cell,
                  const std::vector<std::array<std::uint32_t, 2>>& vertices);

  std::vector<CFarSide> m_aSides;  ///< each once, from one of its pieces
};
