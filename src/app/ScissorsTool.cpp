#include "app/ScissorsTool.h"

#include <vector>

#include "base/CPlanePoint.h"
#include "model/CGrid.h"
#include "ui/scissors/CScissorsView.h"
#include "ui/scissors/ScissorsHost.h"
#include "ui/window/CImageViewUI.h"

namespace {

class CTracedCurves : public ScissorsHost {
 public:
  CTracedCurves(CImageViewUI& window, CGrid& grid) : m_Window(window), m_Grid(grid) {}

  bool AddTracedCurve(const std::vector<CPlanePoint>& points) override {
    std::vector<CPtCstr> nodes;
    for (const CPlanePoint& point : points) {
      nodes.emplace_back();
      nodes.back().m_fX = point.x;
      nodes.back().m_fY = point.y;
    }
    m_Grid.AddTracedCurve(nodes, CurveType::kPosition, false);
    return true;
  }
  void RefreshDisplays() override { m_Window.RequestRedraw(); }

 private:
  CImageViewUI& m_Window;
  CGrid& m_Grid;
};

class CScissorsWindow : private CTracedCurves, public CScissorsView {
 public:
  CScissorsWindow(CImageViewUI& window, CGrid& grid)
      : CTracedCurves(window, grid), CScissorsView(grid, static_cast<CTracedCurves&>(*this)) {}
};

}  // namespace

std::unique_ptr<ToolWindow> MakeScissorsTool(CImageViewUI& window, CGrid& grid) {
  return std::make_unique<CScissorsWindow>(window, grid);
}
