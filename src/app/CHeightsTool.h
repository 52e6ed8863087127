#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "constraints/CCntrCtrl.h"
#include "model/HeightsAlong.h"
#include "ui/heights/CHeightsPanel.h"
#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// Heights along a curve as a tool of the window: for the selected curve, or the one drawn last. While its panel is
/// open, the image view shows where they would lie.
class CHeightsTool : public ToolWindow {
 public:
  /// Both must outlive the object.
  CHeightsTool(CImageViewUI& window, CGrid& grid);
  ~CHeightsTool() override;
  CHeightsTool(const CHeightsTool&) = delete;
  CHeightsTool& operator=(const CHeightsTool&) = delete;

  bool IsOpen() const override { return m_Panel.visible() != 0; }
  void Open() override;
  void Close() override { m_Panel.hide(); }

 private:
  /// What a plan follows from.
  struct CBasis {
    CurveId m_Curve = CurveId::kNone;
    CurveType m_Type = CurveType::kNone;
    std::optional<CHeightsAlong> m_Wanted;
    std::string m_sTrouble;  ///< why nothing is wanted
    std::uint64_t m_uEdits = 0;
    std::uint64_t m_uTree = 0;
    std::uint64_t m_uSurface = 0;  ///< 0 where its heights do not matter

    bool operator==(const CBasis&) const = default;
  };

  const CCntrCtrl* Curve() const;
  CBasis Basis() const;
  void Follow();
  void Plan();
  void Place();
  void Closed();
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CHeightsPanel m_Panel;
  std::optional<CBasis> m_Shown;  ///< nothing while the panel has just opened
  CPlannedHeights m_Plan;
};
