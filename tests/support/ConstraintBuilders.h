#pragma once

#include <string>

#include "constraints/CPtCstrList.h"

/// The surface is to have height `z` at (x, y), model units.
inline CPtCstr HeightCstr(double x, double y, double z) { return {x, y, PtCstrKind::kPosition, z, 0, 0}; }

/// The surface is to have the slopes `p` = dz/dx and `q` = dz/dy at (x, y).
inline CPtCstr SlopeCstr(double x, double y, double p = 0, double q = 0) {
  return {x, y, PtCstrKind::kNormal, 0, p, q};
}

/// Both.
inline CPtCstr HeightAndSlopeCstr(double x, double y, double z, double p = 0, double q = 0) {
  return {x, y, PtCstrKind::kPosition | PtCstrKind::kNormal, z, p, q};
}

/// One digit per record, in order: 1 where one of the state bits is set.
inline std::string States(const CPtCstrList& list, std::uint32_t mask) {
  std::string digits;
  for (const CPtCstr& c : list) digits += c.HasState(mask) ? '1' : '0';
  return digits;
}
inline std::string Selection(const CPtCstrList& list) { return States(list, PtCstrState::kSelected); }
inline std::string Highlights(const CPtCstrList& list) { return States(list, PtCstrState::kHighlighted); }

/// Selects the records that have a 1 in `digits`, no others.
inline void SetSelection(CPtCstrList& list, const std::string& digits) {
  auto digit = digits.begin();
  for (CPtCstr& c : list) c.SetState(PtCstrState::kSelected, *digit++ == '1');
}

/// The record at a place of the list.
inline CPtCstr& RecordAt(CPtCstrList& list, int place) { return *std::next(list.begin(), place); }
inline const CPtCstr& RecordAt(const CPtCstrList& list, int place) { return *std::next(list.begin(), place); }
