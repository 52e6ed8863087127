#pragma once

#include "constraints/CCntrCtrl.h"
#include "drawing/DrawingSettings.h"

/// Colour of a curve by its type, in both views. White for a type that is none.
inline const CColour& CurveColour(CurveType type) {
  static constexpr CColour kTear{1, 0, 0.75};
  static constexpr CColour kCrease{1, 0.5, 0};
  static constexpr CColour kFairness{0.25, 0.75, 1};
  static constexpr CColour kNone{1, 1, 1};
  switch (type) {
    case CurveType::kPosition:
      return kTear;
    case CurveType::kNormal:
      return kCrease;
    case CurveType::kFairness:
      return kFairness;
    default:
      return kNone;
  }
}

/// Colour of the state of a curve or of one of its nodes: selected, highlighted, or that of its type.
template <typename Record>
const CColour& CurveStateColour(const Record& record, const CColour& plain) {
  // Curves are told apart by their types, so their states take the colours of those of point constraints.
  const CConstraintColours& states = g_DrawingSettings.m_PositionColours;
  if (record.HasState(PtCstrState::kSelected)) return states.m_Selected;
  return record.HasState(PtCstrState::kHighlighted) ? states.m_Highlighted : plain;
}
