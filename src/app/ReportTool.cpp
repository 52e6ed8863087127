#include "app/ReportTool.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

#include <FL/Fl.H>

#include "base/CPlanePoint.h"
#include "base/Vector3.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/report/CReportWindow.h"
#include "ui/report/ReportCommands.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/CMenuOverlay.h"

namespace {

constexpr double kSecondsBetweenLooks = 0.2;

class CReportTool : public ToolWindow, private ReportCommands {
 public:
  CReportTool(CImageViewUI& window, CGrid& grid)
      : m_Window(window), m_Grid(grid), m_Report(*this, window, [this] {
          Fl::remove_timeout(cb_Look, this);
          ReportClosed();
        }) {}
  ~CReportTool() override { Fl::remove_timeout(cb_Look, this); }
  CReportTool(const CReportTool&) = delete;
  CReportTool& operator=(const CReportTool&) = delete;

  bool IsOpen() const override { return m_Report.visible() != 0; }
  void Open() override;
  void Close() override { m_Report.hide(); }

 private:
  // What the report depends on.
  struct CSeen {
    std::uint64_t m_uEdits = 0;
    std::uint64_t m_uSurface = 0;
    bool m_bRunning = false;
    bool operator==(const CSeen&) const = default;
  };

  void ShowConstraint(const CConstraintLine& line) override;
  void ShowRegion(const CFloatingRegion& region) override;
  void SelectNodeNear(std::size_t curve, const CPlanePoint& place);
  void Centre(const CPlanePoint& place);
  void Look();
  static void cb_Look(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CConstraintReporter m_Reporter;
  std::optional<CSeen> m_Seen;
  std::optional<std::uint64_t> m_SettledEdits;  ///< of which the regions know
  CReportWindow m_Report;
};

void CReportTool::Open() {
  if (!IsOpen()) {
    m_Seen.reset();
    m_SettledEdits.reset();
    Fl::add_timeout(kSecondsBetweenLooks, cb_Look, this);
  }
  Look();
  m_Report.Open();
}

void CReportTool::cb_Look(void* tool) {
  static_cast<CReportTool*>(tool)->Look();
  Fl::repeat_timeout(kSecondsBetweenLooks, cb_Look, tool);
}

void CReportTool::Look() {
  if (!MayBeShown(m_Grid)) return;
  const CSeen present{m_Grid.Gate().Edits(), m_Grid.Surface().Revision(), m_Grid.Run().IsRunning()};
  if (m_Seen != present) {
    m_Seen = present;
    m_Report.ShowReport(m_Reporter.Report(m_Grid));
  }
  if (m_SettledEdits == present.m_uEdits) return;
  m_SettledEdits = present.m_uEdits;
  m_Report.ShowRegions(FloatingRegions(FreedomOf(m_Grid)));
}

// The list may have changed since the last look.
void CReportTool::ShowConstraint(const CConstraintLine& line) {
  const CPlanePoint place{line.m_fX, line.m_fY};
  if (line.m_Curve.has_value()) {
    SelectNodeNear(*line.m_Curve, place);
  } else {
    const CPtCstrList& points = m_Grid.Constraints().Points();
    if (line.m_uNumber >= points.size()) return;
    const CPtCstr& record = *std::next(points.begin(), static_cast<std::ptrdiff_t>(line.m_uNumber));
    if (record.m_fX != line.m_fX || record.m_fY != line.m_fY) return;
    m_Grid.PointEdits().SelectNumber(line.m_uNumber);
  }
  m_Window.RestoreHelp();
  Centre(place);
}

void CReportTool::SelectNodeNear(std::size_t curve, const CPlanePoint& place) {
  const CCntrCtrlList& curves = m_Grid.Constraints().Curves();
  if (curve >= curves.size()) return;
  std::size_t nearest = 0;
  std::size_t number = 0;
  double least = HUGE_VAL;
  for (const CCntrNode& node : std::next(curves.begin(), static_cast<std::ptrdiff_t>(curve))->Nodes()) {
    const double distance = std::hypot(node.m_fX - place.x, node.m_fY - place.y);
    if (distance < least) nearest = number;
    least = std::min(least, distance);
    ++number;
  }
  m_Grid.CurveEdits().SelectNumber(curve, nearest);
}

void CReportTool::ShowRegion(const CFloatingRegion& region) {
  Centre({(region.m_Box.x0 + region.m_Box.x1) / 2, (region.m_Box.y0 + region.m_Box.y1) / 2});
}

void CReportTool::Centre(const CPlanePoint& place) {
  const CLattice& lattice = m_Grid.Surface().Lattice();
  const CExtent& extent = lattice.Extent();
  m_Window.ImageView().SetZoomAndPan(g_fZoom,
                                     {place.x - (extent.x0 + extent.x1) / 2, place.y - (extent.y0 + extent.y1) / 2});
  CCamera camera = m_Window.GridView().Camera();
  const double height = m_Grid.GetHeightAt(lattice.ColumnOf(place.x), lattice.RowOf(place.y));
  camera.m_Centre = {place.x, place.y, std::isfinite(height) ? height : camera.m_Centre.z};
  camera.UpdateEye();
  m_Window.GridView().SetCamera(camera);
  m_Window.RequestRedraw();
}

}  // namespace

std::unique_ptr<ToolWindow> MakeReportTool(CImageViewUI& window, CGrid& grid) {
  return std::make_unique<CReportTool>(window, grid);
}
