#pragma once

#include <array>
#include <optional>

#include "quadtree/CSaveQuadT.h"

/// The wanted subdivisions of the current resolution and of the other one, records of the same depth, and the base
/// level that the tree begins with before one of them is played on it.
class CWantedSubdivisions {
 public:
  /// Starts over for a maximum level: nothing selected, leaves at `baseLevel` for the normal resolution and at the
  /// finest level for the high one. Begins with what has been set aside for that level, and allocates otherwise only if
  /// the level is another.
  void Initialize(int maxLevel, int baseLevel, bool highRes);
  /// Sets the memory aside that the next `Initialize` needs for this maximum level. Throws std::bad_alloc, with nothing
  /// changed.
  void Reserve(int maxLevel);
  void DropReserve() { m_aReserve = {}; }
  /// Bytes that `Reserve` sets aside for a level at most.
  static double BytesOf(int maxLevel);

  /// The level of the uniform subdivision to begin with, and what is wanted at the present resolution and at the
  /// other one.
  int BaseLevel() const { return m_iBaseLevel; }
  CSubdivisionRecord& Current() { return *m_Current; }
  const CSubdivisionRecord& Current() const { return *m_Current; }
  CSubdivisionRecord& Other() { return *m_Other; }
  const CSubdivisionRecord& Other() const { return *m_Other; }
  /// To the other resolution.
  void Swap() { m_Current.swap(m_Other); }

 private:
  void TakeReserve(int maxLevel);

  int m_iBaseLevel = 0;
  std::optional<CSubdivisionRecord> m_Current;
  std::optional<CSubdivisionRecord> m_Other;
  std::array<std::optional<CSubdivisionRecord>, 2> m_aReserve;  ///< empty for the present level
};
