// Whatever is done to a model, the way back leads through the same documents, and the way forward to the last, while
// the solver goes on.

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "io/GridFile.h"
#include "model/Globals.h"
#include "support/HistoryBuilders.h"

namespace {

/// Chance for one course of edits.
class CChance {
 public:
  explicit CChance(std::uint32_t seed) : m_Random(seed) {}
  int Below(int count) { return static_cast<int>(m_Random() % static_cast<std::uint32_t>(count)); }
  double Between(double low, double high) { return low + (high - low) * (Below(1000) / 999.0); }

 private:
  std::mt19937 m_Random;
};

/// A user who acts by chance, on the rectangle that the model has by then.
class CRandomUser {
 public:
  CRandomUser(CTestHistory& test, std::uint32_t seed) : m_Test(test), m_Chance(seed) {}

  void Act() {
    static constexpr std::array kActs{
        &CRandomUser::AddPoint,      &CRandomUser::AddPoint,   &CRandomUser::SelectPoint, &CRandomUser::DragPoint,
        &CRandomUser::RaisePoint,    &CRandomUser::TurnSlope,  &CRandomUser::DeletePoint, &CRandomUser::DrawPoint,
        &CRandomUser::DrawPoint,     &CRandomUser::EndCurve,   &CRandomUser::GiveUpCurve, &CRandomUser::Trace,
        &CRandomUser::DragNode,      &CRandomUser::ChangeType, &CRandomUser::DeleteNode,  &CRandomUser::DeleteCurve,
        &CRandomUser::SetAttributes, &CRandomUser::Export,     &CRandomUser::Refine,      &CRandomUser::SplitCells,
        &CRandomUser::MergeCells,    &CRandomUser::SetLight,   &CRandomUser::Switch,      &CRandomUser::Reset,
        &CRandomUser::NewGrid};
    (this->*kActs[static_cast<std::size_t>(m_Chance.Below(static_cast<int>(kActs.size())))])();
  }
  // Lets time go by, in which the solver works or does not.
  void Wait() {
    m_Test.m_fTime += 2.0;
    m_Test.Round();
    g_nSolverTimers = m_Chance.Below(2);
    for (int tick = m_Chance.Below(3); tick > 0 && g_nSolverTimers == 1; --tick) Grid().UpdateGrid();
    if (g_nSolverTimers == 1 && Grid().Run().HasPending()) Grid().UpdateGrid();
    m_Test.Round();
  }
  // The step is taken by the tick, where one is registered.
  void Take(UserStep step) {
    m_Test.m_History.Request(step);
    if (g_nSolverTimers == 1) Grid().UpdateGrid();
    m_Test.Round();
  }

 private:
  CGrid& Grid() { return m_Test.Grid(); }
  double X() {
    const CExtent& e = Grid().Surface().Lattice().Extent();
    return m_Chance.Between(e.x0, e.x1);
  }
  double Y() {
    const CExtent& e = Grid().Surface().Lattice().Extent();
    return m_Chance.Between(e.y0, e.y1);
  }
  CurveType Type() { return static_cast<CurveType>(1 << m_Chance.Below(3)); }
  // The node of some curve, selected; none where there are no curves.
  void PickSome() {
    const CCntrCtrlList& curves = Grid().Constraints().Curves();
    if (curves.empty()) return;
    const CCntrCtrl& curve = *std::next(curves.begin(), m_Chance.Below(static_cast<int>(curves.size())));
    if (curve.Nodes().empty()) return;
    const CCntrNode& node = *std::next(curve.Nodes().begin(), m_Chance.Below(static_cast<int>(curve.Nodes().size())));
    Grid().PickCurve(node.m_fX, node.m_fY, CurveType::kAll);
  }
  CurveId SomeCurve() {
    PickSome();
    const CCntrCtrlList& curves = Grid().Constraints().Curves();
    return curves.empty() ? CurveId::kNone
                          : std::next(curves.begin(), m_Chance.Below(static_cast<int>(curves.size())))->Id();
  }

  void AddPoint() {
    CPtCstr point = PlaceAt(X(), Y());
    point.m_uKind = m_Chance.Below(2) == 0 ? PtCstrKind::kPosition : PtCstrKind::kNormal;
    point.m_fZ = m_Chance.Between(-3, 3);
    Grid().AddPtCstr(point);
  }
  void SelectPoint() { Grid().SelectNextPtCstr(PtCstrKind::kPosition | PtCstrKind::kNormal); }
  void DragPoint() {
    Grid().Gate().BeginGesture(CEditGate::Hold::Other);
    for (int k = 0; k < 3; ++k) Grid().MoveSelectedPtCstr(m_Chance.Between(-1, 1), m_Chance.Between(-1, 1));
    Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  }
  void RaisePoint() { Grid().SetSelectedHeight(m_Chance.Between(-5, 5)); }
  void TurnSlope() { Grid().ChangeSelectedNormal(m_Chance.Between(-1, 1), m_Chance.Between(-1, 1)); }
  void DeletePoint() { Grid().DeleteSelectedPtCstr(); }
  void DrawPoint() { Grid().CurveEdits().AppendPending(X(), Y()); }
  void EndCurve() { Grid().CurveEdits().ValidatePending(X(), Y(), m_Chance.Below(2) == 0, Type()); }
  void GiveUpCurve() { Grid().CurveEdits().CancelPending(); }
  void Trace() {
    CPlaces places;
    for (int k = m_Chance.Below(5); k > 0; --k) places.push_back({X(), Y()});
    Grid().AddTracedCurve(PointsAt(places), Type(), false);
  }
  void DragNode() {
    PickSome();
    Grid().Gate().BeginGesture(CEditGate::Hold::Curve);
    for (int k = 0; k < 3; ++k) Grid().MoveSelectedCurve(m_Chance.Between(-1, 1), 0.25, CurveType::kAll);
    Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  }
  void ChangeType() {
    PickSome();
    Grid().Gate().BeginGesture(CEditGate::Hold::Curve);
    Grid().CurveEdits().SetSelectedType(Type());
    Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  }
  void DeleteNode() { PickSome(), Grid().DeleteSelectedCurveNode(); }
  void DeleteCurve() { PickSome(), Grid().DeleteSelectedCurve(); }
  void SetAttributes() {
    CContourAttributes attributes;
    attributes.m_bClosed = m_Chance.Below(2) == 0;
    attributes.m_bLeftAutoBump = true;
    attributes.m_aAutoBumps[0] = {2.0, m_Chance.Between(-80, 80)};
    attributes.m_Weights.m_fLeftCurvature = m_Chance.Between(0, 2);
    Grid().CurveEdits().SetAttributes(SomeCurve(), 0, attributes, CurveType::kNone, m_Chance.Below(2) == 0);
  }
  void Export() { Grid().CurveEdits().ExportConstraints(SomeCurve()); }
  void Refine() { Grid().CellEdits().RefineAt(X(), Y()); }
  void SplitCells() {
    Grid().CellEdits().Select(X(), Y(), X(), Y());
    Grid().CellEdits().SplitSelected();
  }
  void MergeCells() {
    Grid().CellEdits().Select(X(), Y(), X(), Y());
    Grid().CellEdits().MergeSelected();
  }
  void SetLight() {
    CLight light;
    light.m_afColour[0] = m_Chance.Between(0, 1);
    Grid().SetLight(m_Chance.Below(5), 1 + m_Chance.Below(2), light);
  }
  void Switch() {
    const bool transfer = m_Chance.Below(2) == 0;
    if (g_bHighRes == 1) {
      Grid().Run().Post(transfer ? Operation::kTransferToNormal : Operation::kRestoreNormal);
    } else {
      Grid().Run().Post(transfer ? Operation::kTransferToHigh : Operation::kRestoreHigh);
    }
  }
  void Reset() { Grid().Reset(); }
  void NewGrid() {
    const double x = m_Chance.Between(-5, 5);
    m_Test.NewGrid(m_Chance.Below(4), {x, x + 10, 0, m_Chance.Between(5, 20)}, m_Chance.Below(2) == 0);
  }

  CTestHistory& m_Test;
  CChance m_Chance;
};

/// What the way back is compared with: the document and the surface before a step.
struct CMilestone {
  CDocument m_Document;
  std::vector<double> m_afHeights;
};

void ExpectSurface(const CGrid& grid, const CMilestone& wanted) {
  const auto [low, high] = std::ranges::minmax(wanted.m_afHeights);
  RC_ASSERT(LargestDifference(SurfaceOnLattice(grid), wanted.m_afHeights) <= 1e-9 * std::max(1e-3, high - low));
}

}  // namespace

RC_GTEST_PROP(HistoryPropertyTest, TheWayBackAndForwardLeadsThroughTheSameDocuments, (std::uint32_t seed)) {
  CTestHistory test;
  CRandomUser user(test, seed);
  // A state by chance to begin with.
  for (int k = 0; k < 6; ++k) user.Act(), user.Wait();
  test.m_History.Clear();
  std::vector<CMilestone> milestones;
  for (int k = 0; k < 25; ++k) {
    const CMilestone before{DocumentOf(test.Grid()), SurfaceOnLattice(test.Grid())};
    user.Act();
    user.Wait();
    RC_ASSERT(test.Count() == milestones.size() || test.Count() == milestones.size() + 1);
    if (test.Count() > milestones.size()) milestones.push_back(before);
  }
  const CDocument last = DocumentOf(test.Grid());
  for (std::size_t k = milestones.size(); k-- > 0;) {
    const bool surface = test.m_History.Steps().UndoState().ReplacesSurface();
    user.Take(UserStep::Undo);
    RC_ASSERT(DocumentOf(test.Grid()) == milestones[k].m_Document);
    if (surface && g_nSolverTimers == 0) ExpectSurface(test.Grid(), milestones[k]);
    user.Wait();
    RC_ASSERT(DocumentOf(test.Grid()) == milestones[k].m_Document);
  }
  RC_ASSERT(!test.m_History.CanUndo());
  for (std::size_t k = 1; k <= milestones.size(); ++k) {
    user.Take(UserStep::Redo);
    user.Wait();
    RC_ASSERT(DocumentOf(test.Grid()) == (k < milestones.size() ? milestones[k].m_Document : last));
  }
  RC_ASSERT(!test.m_History.CanRedo());
}

namespace {

// What a file holds but for the heights of the surface and those kept with slopes, which go on from the present
// surface.
std::string FileOf(const CGrid& grid) {
  CSketch sketch = grid.Sketch();
  for (CPtCstr& point : sketch.m_Points) {
    if (!point.HasKind(PtCstrKind::kPosition)) point.m_fZ = 0;
  }
  std::ostringstream out;
  WriteSketch(out, sketch);
  const CPointOrder& order = grid.Surface().Order();
  for (std::size_t k = 0; k < order.Count(); ++k) out << '(' << order.ColumnOf(k) << ',' << order.RowOf(k) << ")\n";
  WriteLights(out, grid);
  return out.str();
}

}  // namespace

RC_GTEST_PROP(HistoryPropertyTest, TheFileAfterUndoIsThatBeforeTheEdit, (std::uint32_t seed)) {
  CTestHistory test;
  CRandomUser user(test, seed);
  for (int k = 0; k < 12; ++k) user.Act();
  g_nSolverTimers = 0;
  test.Round();
  test.m_History.Clear();
  const std::string before = FileOf(test.Grid());
  const int count = 1 + static_cast<int>(seed % 4);
  for (int k = 0; k < count; ++k) {
    test.m_fTime += 2;
    user.Act();
    test.Round();
  }
  while (test.m_History.CanUndo()) test.Undo();
  test.Grid().PerformPendingWork();
  RC_ASSERT(FileOf(test.Grid()) == before);
}
