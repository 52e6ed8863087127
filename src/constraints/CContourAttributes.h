#pragma once

#include <array>

#include "constraints/CCntrCtrl.h"

/// What the user sees and sets of one curve and one of its nodes.
struct CContourAttributes {
  bool m_bClosed = false;
  bool m_bLeftAutoBump = false;
  bool m_bRightAutoBump = false;
  std::array<CAutoBump, 2> m_aAutoBumps{};  ///< by side
  CNodeWeights m_Weights;                   ///< of the node

  /// What the curve and its node have now.
  static CContourAttributes Of(const CCntrCtrl& curve, const CCntrNode& node) {
    return {curve.IsClosed(),
            curve.HasOption(CurveOption::kLeftAutoBump),
            curve.HasOption(CurveOption::kRightAutoBump),
            {curve.AutoBump(CurveSide::Left), curve.AutoBump(CurveSide::Right)},
            node.m_Weights};
  }
  /// Gives the values to the curve and, of the weights, to the node alone; orientations are held to their range.
  void ApplyTo(CCntrCtrl& curve, CCntrNode& node) const {
    curve.SetClosed(m_bClosed);
    curve.SetOption(CurveOption::kLeftAutoBump, m_bLeftAutoBump);
    curve.SetOption(CurveOption::kRightAutoBump, m_bRightAutoBump);
    for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
      const CAutoBump& bump = m_aAutoBumps[static_cast<std::size_t>(side)];
      curve.SetDistance(side, bump.m_fDistance);
      curve.SetOrientation(side, bump.m_fOrientation);
    }
    node.m_Weights = m_Weights;
  }
};
