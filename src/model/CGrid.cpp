#include "model/CGrid.h"

#include <algorithm>
#include <cmath>

#include "base/Console.h"
#include "base/Memory.h"
#include "model/Globals.h"
#include "quadtree/TreeNormals.h"
#include "solver/TreeWalkTransform.h"

namespace {

constexpr int kIterationsPerTick = 9;

int SupportedMaxLevel() { return std::clamp(g_iMaxLevel, CLattice::kMinLevel, CLattice::kMaxLevel); }

}  // namespace

CGrid::CGrid(std::uint32_t seed) : m_Lattice(SupportedMaxLevel()), m_Random(seed), m_Solver(m_Basis, m_Random) {
  g_bHighRes = 0;
  Initialize(g_iBaseLevel, false, 0, 0, 100, 100);
}

void CGrid::FreeAll() {
  m_Lattice.Free();
  m_Order.Free();
  m_Basis = {};
  Release(m_pfWaveCoefGrid);
  Release(m_afNodalHeights);
  Release(m_afPresentSurface);
  Release(m_afOtherSurface);
  m_PointConstraints.clear();
  m_GeneratedConstraints.clear();
  m_Curves.clear();
  m_iRefusedCurves = 0;
  m_iToldCurves = 0;
  m_PendingCurve.Drop();
  m_ListHeaders = {};
}

void CGrid::Reserve(int maxLevel) {
  auto reserve = std::make_unique<CReserve>(maxLevel);
  reserve->m_Order.Reset(maxLevel);
  for (std::vector<double>& values : reserve->m_aSurfaces) values.assign(reserve->m_Lattice.PointCount(), 0.0);
  if (m_pTree->Level() != maxLevel) {
    reserve->m_pTree = std::make_unique<CQuadTree>(m_Lattice, maxLevel);
    reserve->m_Subdivision.emplace(maxLevel);
    reserve->m_OtherSubdivision.emplace(maxLevel);
  }
  m_pReserve = std::move(reserve);
}

double CGrid::BytesOf(int maxLevel) {
  const double points = std::pow((1 << maxLevel) + 1, 2);
  constexpr double kCellsPerPoint = 4.0 / 3;
  constexpr double kEdgesPerCell = 2.0;
  constexpr double kPerPoint = 6 * sizeof(double) + 2 * sizeof(Vector3) + 2 * sizeof(std::uint32_t);
  constexpr double kPerCell = sizeof(CQuadT) + kEdgesPerCell * sizeof(CEdge) + 2 * sizeof(CSaveQuadT);
  return points * (kPerPoint + kCellsPerPoint * kPerCell);
}

void CGrid::TakeReserve() {
  const std::unique_ptr<CReserve> reserve = std::move(m_pReserve);
  if (reserve == nullptr || reserve->m_Lattice.Level() != SupportedMaxLevel()) return;
  m_Lattice = std::move(reserve->m_Lattice);
  m_Order = std::move(reserve->m_Order);
  for (std::size_t k = 0; k < reserve->m_aSurfaces.size(); ++k) Surfaces()[k]->swap(reserve->m_aSurfaces[k]);
  if (reserve->m_pTree == nullptr) return;
  m_pTree = std::move(reserve->m_pTree);
  m_Subdivision = std::move(reserve->m_Subdivision);
  m_OtherSubdivision = std::move(reserve->m_OtherSubdivision);
}

void CGrid::Initialize(int level, bool keep, double x0, double y0, double x1, double y1) {
  if (!keep) FreeAll();
  TakeReserve();
  m_Lattice.Allocate(SupportedMaxLevel());
  m_iBaseLevel = std::clamp(level, 0, MaxLevel());
  m_Order.Reset(MaxLevel());
  for (std::vector<double>* values : Surfaces()) values->assign(m_Lattice.PointCount(), 0.0);
  m_bSurfaceCaptured = false;
  m_Solver.RequestRebuild();
  m_Pending.Clear();
  m_iIterationsPerTick = kIterationsPerTick;
  Console() << x0 << ", " << x1 << ", " << y0 << ", " << y1 << '\n';
  SetRectangle(x0, x1, y0, y1);
  FillTree();
  SetSparseH();
  m_Relighting.RefreshMask(Surface());
  // The first tick rebuilds the system whatever was set up here.
  m_Solver.RequestRebuild();
}

void CGrid::FillTree() {
  if (m_pTree == nullptr || m_pTree->Level() != MaxLevel()) {
    m_pTree = std::make_unique<CQuadTree>(m_Lattice);
    m_Subdivision.emplace(MaxLevel());
    m_OtherSubdivision.emplace(MaxLevel());
  }
  m_pTree->Reset(m_iBaseLevel);
  Console() << "CGrid::Initialize\t\t\tlevel : " << m_iBaseLevel << '\n';
  for (auto* record : {&m_Subdivision, &m_OtherSubdivision}) (*record)->ClearSelection();
  m_Subdivision->SetStartLevel(m_iBaseLevel);
  m_OtherSubdivision->SetStartLevel(MaxLevel());
  if (g_bHighRes == 1) std::swap(m_Subdivision, m_OtherSubdivision);
}

void CGrid::SetRectangle(double x0, double x1, double y0, double y1) {
  m_Lattice.SetExtent({x0, x1, y0, y1});
  m_fCellSize = m_Lattice.CellSize();
  RecomputeHeightRange();
  ++m_uSurfaceRevision;
}

void CGrid::RecomputeHeightRange() {
  m_fMinHeight = m_fMaxHeight = 0.0;
  const auto heights = std::span<const double>(m_afNodalHeights).first(m_Order.Count());
  if (heights.empty()) return;
  const auto [lowest, highest] = std::ranges::minmax(heights);
  m_fMinHeight = lowest;
  m_fMaxHeight = highest;
}

void CGrid::SetWaveletMode(WaveletMode mode) {
  m_Mode = mode;
  m_Basis.invW(m_pfWaveCoefGrid, m_afNodalHeights);
  m_Basis.Compile(m_Order, *m_pTree, mode);
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
  m_Solver.RequestRestart();
}

void CGrid::ReconstructSurface() {
  m_Basis.invW(m_pfWaveCoefGrid, m_afNodalHeights);
  SurfaceChanged();
}

void CGrid::SurfaceChanged() {
  ScatterNodalHeights();
  m_bSurfaceCaptured = false;
  ComputeNormals(*m_pTree);
  RecomputeHeightRange();
  ++m_uSurfaceRevision;
}

void CGrid::SetHeights(std::span<const double> heights) {
  std::ranges::fill(m_Lattice.Heights(), 0.0);
  std::ranges::fill(m_afOtherSurface, 0.0);
  for (std::size_t k = 0; k < m_Order.Count(); ++k) m_afNodalHeights[m_Order.ScanOf(k)] = heights[k];
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
  SurfaceChanged();
  m_Solver.RequestRestart();
}

double CGrid::TestWavelets() {
  std::vector<double> nodal(m_Order.Count());
  m_Basis.invW(m_pfWaveCoefGrid, nodal);
  std::vector<double> heights(m_Lattice.PointCount());
  std::vector<double> coefs(m_Lattice.PointCount());
  for (std::size_t i = 0; i < m_Order.Count(); ++i) heights[m_Order.PointAtScan(i)] = nodal[i];
  WalkW(*m_pTree, m_Mode, heights, coefs);
  double largest = 0.0;
  for (std::size_t k = 0; k < m_Order.Count(); ++k) {
    largest = std::max(largest, std::abs(coefs[m_Order.PointOf(k)] - m_pfWaveCoefGrid[k]));
  }
  Console() << "CGrid::TestWavelets\t\tlargest difference : " << largest << '\n';
  return largest;
}

bool CGrid::TraceInterpolation(double x, double y) {
  CStencil stencil;
  CInterpolationTrace trace;
  m_Lattice.ClearAll(PointFlag::kTraced);
  if (!Surface().GetBilinearInterpolation(x, y, stencil, &trace)) return false;
  if (!trace.m_Triangle.IsCentre()) {
    m_Lattice.Set(trace.m_Triangle.m_uA, PointFlag::kTraced);
    m_Lattice.Set(trace.m_Triangle.m_uB, PointFlag::kTraced);
  }
  if (m_pHost != nullptr) m_pHost->ShowInterpolation(trace);
  return true;
}
