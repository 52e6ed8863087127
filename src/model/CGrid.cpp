#include "model/CGrid.h"

#include <algorithm>
#include <cmath>

#include "base/Console.h"
#include "model/Globals.h"

namespace {

constexpr int kIterationsPerTick = 9;

int SupportedMaxLevel() { return std::clamp(g_iMaxLevel, CLattice::kMinLevel, CLattice::kMaxLevel); }

}  // namespace

CGrid::CGrid(std::uint32_t seed)
    : m_Surface(SupportedMaxLevel()),
      m_Constraints(m_Surface),
      m_Random(seed),
      m_Solver(m_Surface.Basis(), m_Random),
      m_Run(m_Solver),
      m_Builder(m_Surface, m_Wanted, m_Constraints, m_Solver, m_Run) {
  g_bHighRes = 0;
  Initialize(g_iBaseLevel, false, 0, 0, 100, 100);
}

void CGrid::FreeAll() {
  m_Surface.Free();
  m_Constraints.Clear();
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

double CGrid::BytesOf(int maxLevel) {
  const double points = std::pow((1 << maxLevel) + 1, 2);
  constexpr double kCellsPerPoint = 4.0 / 3;
  constexpr double kEdgesPerCell = 2.0;
  constexpr double kPerPoint = 6 * sizeof(double) + 2 * sizeof(Vector3) + 2 * sizeof(std::uint32_t);
  constexpr double kPerCell = sizeof(CQuadT) + kEdgesPerCell * sizeof(CEdge) + 2 * sizeof(CSaveQuadT);
  return points * (kPerPoint + kCellsPerPoint * kPerCell);
}

void CGrid::Initialize(int level, bool keep, double x0, double y0, double x1, double y1) {
  if (!keep) FreeAll();
  m_Surface.Initialize(SupportedMaxLevel());
  m_Solver.RequestRebuild();
  m_Run.DropPending();
  m_iIterationsPerTick = kIterationsPerTick;
  Console() << x0 << ", " << x1 << ", " << y0 << ", " << y1 << '\n';
  SetRectangle(x0, x1, y0, y1);
  const int baseLevel = std::clamp(level, 0, MaxLevel());
  m_Wanted.Initialize(MaxLevel(), baseLevel, g_bHighRes == 1);
  m_Surface.ResetTree(baseLevel);
  Console() << "CGrid::Initialize\t\t\tlevel : " << baseLevel << '\n';
  SetSparseH();
  m_Relighting.RefreshMask(Interpolation());
  // The first tick rebuilds the system whatever was set up here.
  m_Solver.RequestRebuild();
}

void CGrid::SetDiscMap() {
  m_Builder.SetDiscMap();
  // What else hangs on the tree per texel is made anew at its first use.
  TestTexelsInDiscontinuity();
}

void CGrid::Transmit(bool high) {
  Console() << "Transmit : m_iNbAPoints : " << ActivePointCount() << '\n';
  SwapResolution(high, true);
}

void CGrid::SwapResolution(bool high, bool transfer) {
  g_bHighRes = high ? 1 : 0;
  m_Wanted.Swap();
  m_Surface.SwapResolution(transfer);
  SetDiscMap();
  m_Wanted.Current().ShowSelection(Tree());
  ReconstructSurface();
  m_Run.Host().RequestRedraw();
}

void CGrid::SetWaveletMode(WaveletMode mode) {
  m_Surface.SetWaveletMode(mode);
  m_Solver.RequestRestart();
}

void CGrid::SetHeights(std::span<const double> heights) {
  m_Surface.SetHeights(heights);
  m_Solver.RequestRestart();
}

bool CGrid::TraceInterpolation(double x, double y) {
  CStencil stencil;
  CInterpolationTrace trace;
  Lattice().ClearAll(PointFlag::kTraced);
  if (!Interpolation().GetBilinearInterpolation(x, y, stencil, &trace)) return false;
  if (!trace.m_Triangle.IsCentre()) {
    Lattice().Set(trace.m_Triangle.m_uA, PointFlag::kTraced);
    Lattice().Set(trace.m_Triangle.m_uB, PointFlag::kTraced);
  }
  m_Run.Host().ShowInterpolation(trace);
  return true;
}
