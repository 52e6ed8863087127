#pragma once

#include <cmath>
#include <cstdint>

#include "base/SameBits.h"

/// Bits of `CPtCstr::m_uKind`.
namespace PtCstrKind {
inline constexpr std::uint32_t kPosition = 1;  ///< fixes the height at the point
inline constexpr std::uint32_t kNormal = 2;    ///< fixes the orientation at the point
inline constexpr std::uint32_t kDisabled = 4;  ///< lies in a discontinuity and constrains nothing
}  // namespace PtCstrKind

/// Bits of `CPtCstr::m_uState`.
namespace PtCstrState {
inline constexpr std::uint32_t kHighlighted = 1;  ///< the cursor is over it
inline constexpr std::uint32_t kSelected = 2;
inline constexpr std::uint32_t kChosen = 4;  ///< one of a group, whether selected or not
}  // namespace PtCstrState

/// A constraint that the surface must obey at one point of the picture.
struct CPtCstr {
  double m_fX = 0.0;           ///< model units
  double m_fY = 0.0;           ///< model units
  std::uint32_t m_uKind = 0;   ///< PtCstrKind bits
  double m_fZ = 0.0;           ///< height wanted, or for a normal constraint the present height under it
  double m_fP = 0.0;           ///< normal constraint: slope dz/dx wanted
  double m_fQ = 0.0;           ///< normal constraint: slope dz/dy wanted
  std::uint32_t m_uState = 0;  ///< PtCstrState bits
  std::uint32_t m_uIdle = 0;   ///< those of its kinds that the system has no row for

  /// Whether a click at (x, y) takes hold of the record; `reach` is a city-block distance in model units.
  bool IsWithinReach(double x, double y, double reach) const {
    return std::abs(x - m_fX) + std::abs(y - m_fY) <= reach;
  }
  bool HasKind(std::uint32_t mask) const { return (m_uKind & mask) != 0; }
  bool HasState(std::uint32_t mask) const { return (m_uState & mask) != 0; }
  void SetKind(std::uint32_t mask, bool on) { m_uKind = on ? m_uKind | mask : m_uKind & ~mask; }
  void SetState(std::uint32_t mask, bool on) { m_uState = on ? m_uState | mask : m_uState & ~mask; }
  /// Whether the system has a row for the record.
  bool IsActive() const { return ((PtCstrKind::kPosition | PtCstrKind::kNormal) & m_uKind & ~m_uIdle) != 0; }
  /// Whether the record constrains the surface in the way of `kind` (kPosition or kNormal).
  bool IsEnabled(std::uint32_t kind) const { return HasKind(kind) && !HasKind(PtCstrKind::kDisabled); }
  /// Whether both are the same to the user. Leaves aside the state and what follows from tree, system and surface:
  /// whether the record is disabled or has no row, and the height under a slope. Numbers count to the last bit.
  bool operator==(const CPtCstr& other) const;
};

/// Compares places, slopes and kinds but for the disabled bit; heights too, unless the surface gives them.
inline bool CPtCstr::operator==(const CPtCstr& other) const {
  if (((m_uKind ^ other.m_uKind) & ~PtCstrKind::kDisabled) != 0) return false;
  const bool ownHeight = !HasKind(PtCstrKind::kNormal) || HasKind(PtCstrKind::kPosition);
  return SameBits(m_fX, other.m_fX) && SameBits(m_fY, other.m_fY) && SameBits(m_fP, other.m_fP) &&
         SameBits(m_fQ, other.m_fQ) && (!ownHeight || SameBits(m_fZ, other.m_fZ));
}
