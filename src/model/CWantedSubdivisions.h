#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "quadtree/CSaveQuadT.h"
#include "quadtree/CSubdivisionBits.h"

/// The wanted subdivisions of the current resolution and of the other one, records of the same depth, and the base
/// level that the tree begins with before one of them is played on it.
class CWantedSubdivisions {
 public:
  /// Starts over for a maximum level: nothing selected, leaves at `baseLevel` for the normal resolution and at the
  /// finest level for the high one. Begins with what has been set aside for that level, and allocates otherwise only if
  /// the level is another.
  void Initialize(int maxLevel, int baseLevel, bool highRes);
  /// Sets aside the memory that the next `Initialize` needs for this maximum level. Throws std::bad_alloc, with nothing
  /// changed.
  void Reserve(int maxLevel);
  void DropReserve() { m_aReserve = {}; }
  /// Bytes that `Reserve` sets aside for a level at most.
  static double BytesOf(int maxLevel);

  /// The level of the uniform subdivision to begin with, and what is wanted at the present resolution and at the
  /// other one.
  int BaseLevel() const { return m_iBaseLevel; }
  CSubdivisionRecord& Current() {
    m_CurrentBits.reset();
    m_SelectedCells.reset();
    return *m_Current;
  }
  const CSubdivisionRecord& Current() const { return *m_Current; }
  CSubdivisionRecord& Other() {
    m_OtherBits.reset();
    return *m_Other;
  }
  const CSubdivisionRecord& Other() const { return *m_Other; }
  /// The two as values. They are made only where a record may have changed since they were last asked for.
  const CSubdivisionBits& CurrentBits() const;
  const CSubdivisionBits& OtherBits() const;
  /// The selected nodes of the current one (see CSubdivisionRecord), likewise.
  const std::vector<std::uint32_t>& SelectedCells() const;
  /// To the other resolution.
  void Swap();

 private:
  void TakeReserve(int maxLevel);

  int m_iBaseLevel = 0;
  std::optional<CSubdivisionRecord> m_Current;
  std::optional<CSubdivisionRecord> m_Other;
  mutable std::optional<CSubdivisionBits> m_CurrentBits;  ///< of the record as it is, or nothing
  mutable std::optional<CSubdivisionBits> m_OtherBits;
  mutable std::optional<std::vector<std::uint32_t>> m_SelectedCells;
  std::array<std::optional<CSubdivisionRecord>, 2> m_aReserve;  ///< empty for the present level
};
