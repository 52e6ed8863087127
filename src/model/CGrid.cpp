#include "model/CGrid.h"

#include <algorithm>

#include "base/Console.h"
#include "model/Globals.h"

namespace {

int SupportedMaxLevel() { return std::clamp(g_iMaxLevel, CLattice::kMinLevel, CLattice::kMaxLevel); }

}  // namespace

CGrid::CGrid(std::uint32_t seed)
    : m_Surface(SupportedMaxLevel()),
      m_Constraints(m_Surface),
      m_Reference(m_Surface, m_Constraints),
      m_Relighting(m_Surface),
      m_Random(seed),
      m_Solver(m_Surface.Basis(), m_Random),
      m_Run(m_Solver),
      m_Builder(m_Surface, m_Wanted, m_Constraints, m_Reference, m_Solver, m_Run),
      m_Gate(m_Constraints, m_Reference, m_Run),
      m_Points(m_Constraints, m_Gate),
      m_Curves(m_Surface, m_Wanted, m_Constraints, m_Gate),
      m_Cells(m_Surface, m_Wanted, m_Run, m_Gate),
      m_ReferenceEdits(m_Reference, m_Gate),
      m_Marks(m_Surface, m_Run) {
  g_bHighRes = 0;
  Initialize(g_iBaseLevel, false, 0, 0, 100, 100);
}

void CGrid::SetLight(int index, int type, const CLight& light) {
  const CLight* present = GetLightSource(index, type);
  if (present == nullptr || *present == light) return;
  m_Gate.Do(Edit::SetLight, [&] { m_Relighting.SetLight(index, type, light); });
}

void CGrid::SetTone(Tone tone) {
  if (tone == m_Relighting.RelitTone()) return;
  m_Gate.Do(Edit::SetTone, [&] { m_Relighting.SetTone(tone); });
}

void CGrid::AddTracedCurve(std::span<const CPtCstr> points, CurveType type, bool closed) {
  m_Curves.AddTraced(points, type, closed);
}

void CGrid::FreeAll() {
  m_Surface.Free();
  m_Constraints.Clear();
  m_Points.SetLastHeight({});
  m_Reference.Set({});
}

void CGrid::Reserve(int maxLevel) {
  if (m_Surface.HasReserve(maxLevel)) return;
  m_Wanted.Reserve(maxLevel);
  m_Surface.Reserve(maxLevel);
}

void CGrid::DropReserve() {
  m_Surface.DropReserve();
  m_Wanted.DropReserve();
}

void CGrid::Initialize(int level, bool keep, double x0, double y0, double x1, double y1) {
  if (!keep) FreeAll();
  m_Surface.Initialize(SupportedMaxLevel());
  m_Solver.RequestRebuild();
  m_Run.DropPending();
  Console() << x0 << ", " << x1 << ", " << y0 << ", " << y1 << '\n';
  m_Surface.SetExtent({x0, x1, y0, y1});
  const int baseLevel = std::clamp(level, 0, m_Surface.Lattice().Level());
  m_Wanted.Initialize(m_Surface.Lattice().Level(), baseLevel, g_bHighRes == 1);
  m_Surface.ResetTree(baseLevel);
  Console() << "CGrid::Initialize\t\t\tlevel : " << baseLevel << '\n';
  m_Builder.SetSparseH();
  m_Relighting.RefreshMask();
  // The first tick rebuilds the system whatever was set up here.
  m_Solver.RequestRebuild();
}

void CGrid::SetDiscMap() {
  m_Builder.SetDiscMap();
  // What else depends on the tree per texel is remade when it is first used.
  TestTexelsInDiscontinuity();
}

void CGrid::Transmit(bool high) {
  Console() << "Transmit : m_iNbAPoints : " << m_Surface.ActivePointCount() << '\n';
  SwapResolution(high, true);
}

void CGrid::SwapResolution(bool high, bool transfer) {
  g_bHighRes = high ? 1 : 0;
  m_Wanted.Swap();
  m_Surface.SwapResolution(transfer);
  SetDiscMap();
  m_Wanted.Current().ShowSelection(m_Surface.Tree());
  m_Surface.Reconstruct();
  m_Run.Host().RequestRedraw();
}

void CGrid::PaintFreezeMap(double x, double y, bool freeze) {
  m_Marks.Paint(x, y, g_fZoom * CPointMarks::kFreezeRadius, freeze);
}
