#include "app/CHeightsTool.h"

#include <algorithm>
#include <string>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/seams/HelpTexts.h"
#include "ui/window/CImageViewUI.h"

namespace {

std::string Describe(const CCntrCtrl& curve) {
  const char* type = curve.HasType(CurveType::kPosition) ? "tear"
                     : curve.HasType(CurveType::kNormal) ? "crease"
                                                         : "fairness";
  const double length = LengthOf(curve);
  return std::string(type) + (curve.IsClosed() ? ", closed, " : ", open, ") + HelpNumber(length, length) + " long";
}

std::string Counted(const CPlannedHeights& plan) {
  std::string placed = std::to_string(plan.m_aHeights.size()) + " heights";
  if (plan.m_aLeftOut.empty()) return placed;
  return placed + ", " + std::to_string(plan.m_aLeftOut.size()) + " left out";
}

}  // namespace

CHeightsTool::CHeightsTool(CImageViewUI& window, CGrid& grid)
    : m_Window(window),
      m_Grid(grid),
      m_Panel(
          window, [this] { Place(); }, [this] { Closed(); }) {}

CHeightsTool::~CHeightsTool() { Fl::remove_check(cb_Check, this); }

void CHeightsTool::Open() {
  CHeightsAlong start;
  if (!IsOpen()) {
    start.m_fFirst = start.m_fLast = m_Grid.LastHeight().value_or(MeanHeight(m_Grid.Surface()));
    m_Shown.reset();
    Fl::add_check(cb_Check, this);
  }
  m_Panel.Open(start);
  Follow();
}

void CHeightsTool::Closed() {
  Fl::remove_check(cb_Check, this);
  m_Window.ImageView().ShowPreview({});
  ReportClosed();
}

void CHeightsTool::cb_Check(void* tool) { static_cast<CHeightsTool*>(tool)->Follow(); }

const CCntrCtrl* CHeightsTool::Curve() const {
  const CCntrCtrlList& curves = m_Grid.Constraints().Curves();
  const auto selected =
      std::ranges::find_if(curves, [](const CCntrCtrl& curve) { return curve.HasState(PtCstrState::kSelected); });
  if (selected != curves.end()) return &*selected;
  return curves.empty() ? nullptr : &curves.back();
}

CHeightsTool::CBasis CHeightsTool::Basis() const {
  CBasis basis;
  if (const CCntrCtrl* curve = Curve()) {
    basis.m_Curve = curve->Id();
    basis.m_Type = curve->Type();
  }
  basis.m_Wanted = m_Panel.Wanted();
  basis.m_sTrouble = m_Panel.Trouble();
  basis.m_uEdits = m_Grid.Gate().Edits();
  basis.m_uTree = m_Grid.Surface().Tree().Revision();
  if (basis.m_Wanted && basis.m_Wanted->m_bFollow) basis.m_uSurface = m_Grid.Surface().Revision();
  return basis;
}

// Looked at each time the toolkit goes round, as curves are selected, moved and taken back by many hands.
void CHeightsTool::Follow() {
  const CBasis now = Basis();
  if (now == m_Shown) return;
  const CCntrCtrl* curve = Curve();
  m_Panel.ShowCurve(curve == nullptr ? "none yet" : Describe(*curve));
  if (!m_Shown || now.m_Curve != m_Shown->m_Curve || now.m_Type != m_Shown->m_Type)
    m_Panel.PresetBeside(curve == nullptr ? 0 : DefaultBeside(*curve, m_Grid.Surface()));
  Plan();
}

void CHeightsTool::Plan() {
  const CBasis& shown = m_Shown.emplace(Basis());
  const CCntrCtrl* curve = Curve();
  m_Plan = {};
  if (curve != nullptr && shown.m_Wanted)
    m_Plan = PlanHeightsAlong(*curve, *shown.m_Wanted, m_Grid.Surface(), m_Grid.Constraints());
  m_Panel.ShowPlan(shown.m_sTrouble.empty() ? Counted(m_Plan) : shown.m_sTrouble, !m_Plan.m_aHeights.empty());
  CPlacePreview preview;
  for (const CPtCstr& height : m_Plan.m_aHeights) preview.m_aPlaces.push_back({height.m_fX, height.m_fY});
  preview.m_aLeftOut = m_Plan.m_aLeftOut;
  m_Window.ImageView().ShowPreview(std::move(preview));
}

void CHeightsTool::Place() {
  static_cast<CommandHost&>(m_Window).EndDrags();
  // A tear that has just been drawn or moved opens its triangles with the next rebuild.
  m_Grid.PerformPendingWork();
  Plan();
  if (m_Plan.m_aHeights.empty()) return;
  const bool asked = !m_Shown->m_Wanted->m_bFollow;
  m_Grid.AddHeightsAlongCurve(m_Plan.m_aHeights, asked ? std::optional(m_Shown->m_Wanted->m_fLast) : std::nullopt);
  const std::string placed = std::to_string(m_Plan.m_aHeights.size());
  const std::string leftOut = std::to_string(m_Plan.m_aLeftOut.size());
  m_Window.Tell(m_Plan.m_aLeftOut.empty() ? FormatHelp(HelpText::kHeightsAlong, {placed})
                                          : FormatHelp(HelpText::kHeightsAlongBut, {placed, leftOut}));
  Close();
}
