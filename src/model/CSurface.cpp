#include "model/CSurface.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/CRandom.h"
#include "base/Console.h"
#include "base/Memory.h"
#include "quadtree/CSaveQuadT.h"
#include "quadtree/TreeNormals.h"
#include "solver/TreeWalkTransform.h"

void CSurface::Initialize(int maxLevel) {
  TakeReserve(maxLevel);
  m_Lattice.Allocate(maxLevel);
  m_Order.Reset(maxLevel);
  for (std::vector<double>* values : Surfaces()) values->assign(m_Lattice.PointCount(), 0.0);
  m_bCaptured = false;
}

void CSurface::SetExtent(const CExtent& extent) {
  m_Lattice.SetExtent(extent);
  RecomputeHeightRange();
  ++m_uRevision;
}

void CSurface::ResetTree(int baseLevel) {
  if (m_pTree == nullptr || m_pTree->Level() != m_Lattice.Level()) m_pTree = std::make_unique<CQuadTree>(m_Lattice);
  m_pTree->Reset(baseLevel);
}

void CSurface::Free() {
  m_Lattice.Free();
  m_Order.Free();
  m_Basis = {};
  for (std::vector<double>* values : Surfaces()) Release(*values);
}

void CSurface::Reserve(int maxLevel) {
  auto reserve = std::make_unique<CReserve>(maxLevel);
  reserve->m_Order.Reset(maxLevel);
  for (std::vector<double>& values : reserve->m_aSurfaces) values.assign(reserve->m_Lattice.PointCount(), 0.0);
  if (m_pTree->Level() != maxLevel) reserve->m_pTree = std::make_unique<CQuadTree>(m_Lattice, maxLevel);
  m_pReserve = std::move(reserve);
}

double CSurface::BytesOf(int maxLevel) {
  const double points = std::pow((1 << maxLevel) + 1, 2);
  constexpr double kCellsPerPoint = 4.0 / 3;
  constexpr double kEdgesPerCell = 2.0;
  constexpr double kPerPoint = 6 * sizeof(double) + 2 * sizeof(Vector3) + 2 * sizeof(std::uint32_t);
  return points * (kPerPoint + kCellsPerPoint * (sizeof(CQuadT) + kEdgesPerCell * sizeof(CEdge)));
}

void CSurface::TakeReserve(int maxLevel) {
  const std::unique_ptr<CReserve> reserve = std::move(m_pReserve);
  if (reserve == nullptr || reserve->m_Lattice.Level() != maxLevel) return;
  m_Lattice = std::move(reserve->m_Lattice);
  m_Order = std::move(reserve->m_Order);
  for (std::size_t k = 0; k < reserve->m_aSurfaces.size(); ++k) Surfaces()[k]->swap(reserve->m_aSurfaces[k]);
  if (reserve->m_pTree != nullptr) m_pTree = std::move(reserve->m_pTree);
}

void CSurface::Replay(const CSubdivisionRecord& wanted, int baseLevel) {
  if (!m_bCaptured) Capture();
  m_pTree->Replay(wanted, baseLevel);
  m_pTree->RefreshEdgeMarks();
}

void CSurface::BuildHNumerotation() {
  // Splits may have overwritten the height array at points that have a height of their own.
  ScatterNodalHeights();
  const std::vector<double>& surface = m_bCaptured ? m_afPresentSurface : m_Lattice.Heights();
  m_Order.Build(*m_pTree);
  m_Basis.Compile(m_Order, *m_pTree, m_Mode);
  Console() << ActivePointCount() << " points\n";
  for (std::size_t i = 0; i < m_Order.Count(); ++i) m_afNodalHeights[i] = surface[m_Order.PointAtScan(i)];
  ScatterNodalHeights();
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
}

void CSurface::SwapResolution(bool transfer) {
  if (!m_bCaptured) Capture();
  std::swap(m_afPresentSurface, m_afOtherSurface);
  if (transfer) m_afPresentSurface = m_afOtherSurface;
  // The capture of what is now the present surface stands: the replay sets the coefficients from it.
  m_bCaptured = true;
}

CSurfaceState CSurface::State() const {
  CSurfaceState state{m_afPresentSurface, m_afOtherSurface, m_Mode};
  if (!m_bCaptured) Interpolation().SampleLattice(state.m_afHeights);
  return state;
}

void CSurface::Restore(const CSurfaceState& state) {
  m_Mode = state.m_Mode;
  if (state.m_afHeights.size() != m_Lattice.PointCount() || state.m_afOtherHeights.size() != m_Lattice.PointCount())
    return;
  m_afPresentSurface = state.m_afHeights;
  m_afOtherSurface = state.m_afOtherHeights;
  m_bCaptured = true;
}

void CSurface::Capture() {
  ScatterNodalHeights();
  Interpolation().SampleLattice(m_afPresentSurface);
  m_bCaptured = true;
}

void CSurface::ScatterNodalHeights() {
  for (std::size_t i = 0; i < m_Order.Count(); ++i) m_Lattice.Heights()[m_Order.PointAtScan(i)] = m_afNodalHeights[i];
}

void CSurface::SetWaveletMode(WaveletMode mode) {
  m_Mode = mode;
  m_Basis.invW(m_pfWaveCoefGrid, m_afNodalHeights);
  m_Basis.Compile(m_Order, *m_pTree, mode);
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
}

void CSurface::Randomise(CRandom& random, double limit) {
  for (double& coef : m_pfWaveCoefGrid) coef = random.UpTo(limit);
}

void CSurface::Reconstruct() {
  m_Basis.invW(m_pfWaveCoefGrid, m_afNodalHeights);
  HeightsChanged();
}

void CSurface::HeightsChanged() {
  ScatterNodalHeights();
  m_bCaptured = false;
  ComputeNormals(*m_pTree);
  RecomputeHeightRange();
  ++m_uRevision;
}

void CSurface::SetHeights(std::span<const double> heights) {
  std::ranges::fill(m_Lattice.Heights(), 0.0);
  std::ranges::fill(m_afOtherSurface, 0.0);
  for (std::size_t k = 0; k < m_Order.Count(); ++k) m_afNodalHeights[m_Order.ScanOf(k)] = heights[k];
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
  HeightsChanged();
}

void CSurface::RecomputeHeightRange() {
  m_fMinHeight = m_fMaxHeight = 0.0;
  const auto heights = std::span<const double>(m_afNodalHeights).first(m_Order.Count());
  if (heights.empty()) return;
  const auto [lowest, highest] = std::ranges::minmax(heights);
  m_fMinHeight = lowest;
  m_fMaxHeight = highest;
}

double CSurface::TestWavelets() {
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
