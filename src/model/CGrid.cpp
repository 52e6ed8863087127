#include "model/CGrid.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Console.h"
#include "model/Globals.h"

namespace {

constexpr int kIterationsPerTick = 9;

int SupportedMaxLevel() { return std::clamp(g_iMaxLevel, CLattice::kMinLevel, CLattice::kMaxLevel); }

}  // namespace

CGrid::CGrid(std::uint32_t seed)
    : m_Surface(SupportedMaxLevel()), m_Random(seed), m_Solver(m_Surface.Basis(), m_Random) {
  g_bHighRes = 0;
  Initialize(g_iBaseLevel, false, 0, 0, 100, 100);
}

void CGrid::FreeAll() {
  m_Surface.Free();
  m_PointConstraints.clear();
  m_GeneratedConstraints.clear();
  m_Curves.clear();
  m_iRefusedCurves = 0;
  m_iToldCurves = 0;
  m_PendingCurve.Drop();
  m_ListHeaders = {};
}

void CGrid::Reserve(int maxLevel) {
  if (m_Surface.HasReserve(maxLevel)) return;
  std::array<std::optional<CSubdivisionRecord>, 2> records;
  if (m_Subdivision->Depth() != maxLevel) {
    for (auto& record : records) record.emplace(maxLevel);
  }
  m_Surface.Reserve(maxLevel);
  m_aReservedSubdivisions = std::move(records);
}

void CGrid::DropReserve() {
  m_Surface.DropReserve();
  m_aReservedSubdivisions = {};
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
  m_iBaseLevel = std::clamp(level, 0, MaxLevel());
  m_Solver.RequestRebuild();
  m_Pending.Clear();
  m_iIterationsPerTick = kIterationsPerTick;
  Console() << x0 << ", " << x1 << ", " << y0 << ", " << y1 << '\n';
  SetRectangle(x0, x1, y0, y1);
  FillTree();
  SetSparseH();
  m_Relighting.RefreshMask(Interpolation());
  // The first tick rebuilds the system whatever was set up here.
  m_Solver.RequestRebuild();
}

void CGrid::TakeReservedSubdivisions() {
  auto records = std::exchange(m_aReservedSubdivisions, {});
  if (!records.front().has_value() || records.front()->Depth() != MaxLevel()) return;
  m_Subdivision = std::move(records.front());
  m_OtherSubdivision = std::move(records.back());
}

void CGrid::FillTree() {
  TakeReservedSubdivisions();
  if (!m_Subdivision.has_value() || m_Subdivision->Depth() != MaxLevel()) {
    m_Subdivision.emplace(MaxLevel());
    m_OtherSubdivision.emplace(MaxLevel());
  }
  m_Surface.ResetTree(m_iBaseLevel);
  Console() << "CGrid::Initialize\t\t\tlevel : " << m_iBaseLevel << '\n';
  for (auto* record : {&m_Subdivision, &m_OtherSubdivision}) (*record)->ClearSelection();
  m_Subdivision->SetStartLevel(m_iBaseLevel);
  m_OtherSubdivision->SetStartLevel(MaxLevel());
  if (g_bHighRes == 1) std::swap(m_Subdivision, m_OtherSubdivision);
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
  if (m_pHost != nullptr) m_pHost->ShowInterpolation(trace);
  return true;
}
