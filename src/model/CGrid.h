#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <vector>

#include "constraints/CPtCstr.h"
#include "lighting/CLight.h"
#include "model/CHierarchicalBasis.h"
#include "model/CLattice.h"
#include "model/CPointOrder.h"
#include "model/GridHost.h"
#include "model/WaveletMode.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/CSaveQuadT.h"
#include "quadtree/Interpolation.h"

/// The model: one height field over one picture, its constraints and its solution. There is one for the whole run; New
/// Grid and Load Grid initialise it again in place. It owns a part for each of its jobs and hands its operations on to
/// them.
class CGrid {
 public:
  /// The default grid: base level 5, no constraints, 0..100 by 0..100, the current resolution the normal one.
  /// `seed` fixes the chance in the start values of the iteration.
  explicit CGrid(std::uint32_t seed = std::mt19937::default_seed);
  CGrid(const CGrid&) = delete;
  CGrid& operator=(const CGrid&) = delete;

  /// Starts over on the rectangle x0..x1 by y0..y1 (model units, x0 < x1, y0 < y1) at a base level, with a flat surface
  /// at height 0. Without `keep` all constraints are dropped. The maximum level is the global default, held to
  /// CLattice::kMinLevel..kMaxLevel; `level` is held to 0..maximum. Allocates everything for the maximum level when
  /// that has changed or was freed. The next tick rebuilds the system.
  void Initialize(int level, bool keep, double x0, double y0, double x1, double y1);
  /// Frees the arrays and drops every constraint; `Initialize` must follow.
  void FreeAll();
  void SetRectangle(double x0, double x1, double y0, double y1);

  /// The program around the model, or null. Must outlive the grid or be detached.
  void AttachHost(GridHost* host) { m_pHost = host; }

  // The solver's control.
  bool IsRunning() const { return m_bRunning; }
  void SetRunning(bool running) { m_bRunning = running; }
  /// -1: numbering and system must be rebuilt; 0: the iteration starts anew; above: iterations done.
  int IterationCounter() const { return m_iIterations; }
  int IterationsPerTick() const { return m_iIterationsPerTick; }
  int NextOperation() const { return m_iNextOperation; }
  /// One tick's work.
  void UpdateGrid();

  // Resolution and extent.
  int BaseLevel() const { return m_iBaseLevel; }
  int MaxLevel() const { return m_Lattice.Level(); }
  /// Points per side of the uniform grid of the base level and of the lattice.
  int BasePointsPerSide() const { return (1 << m_iBaseLevel) + 1; }
  int PointsPerSide() const { return m_Lattice.PointsPerSide(); }
  /// The smaller side of a lattice cell, in model units.
  double CellSize() const { return m_fCellSize; }
  double MinHeight() const { return m_fMinHeight; }
  double MaxHeight() const { return m_fMaxHeight; }

  // The unknowns and the surface.
  /// Sets up the system: with the counter at -1 renumbers the points and sets the counter to 0.
  void SetSparseH();
  /// Numbers the points of the present subdivision and sets the coefficients so that the surface stays as it is.
  void BuildHNumerotation();
  /// Rebuilds the tree from the wanted subdivision; the surface stays as it is at every point in use afterwards.
  void ReplaySubdivision();
  int ActivePointCount() const { return static_cast<int>(m_Order.Count()); }
  WaveletMode Mode() const { return m_Mode; }
  /// Converts the coefficients to the basis of `mode`; a running iteration starts anew.
  void SetWaveletMode(WaveletMode mode);
  /// Coefficients of the unknowns, in the point order.
  std::span<double> Coefficients() { return std::span(m_afWaveCoefs).first(m_Order.Count()); }
  std::span<const double> Coefficients() const { return std::span(m_afWaveCoefs).first(m_Order.Count()); }
  /// Heights, normals and height range from the coefficients.
  void ReconstructSurface();
  /// Largest difference over the points between heights through the compiled inverse transform and back through the
  /// tree walk. Logs it.
  double TestWavelets();
  /// Highlights the points that the height at (x, y) (model units) hangs on and has the host show them. False outside
  /// the model.
  bool TraceInterpolation(double x, double y);

  // The parts.
  CLattice& Lattice() { return m_Lattice; }
  const CLattice& Lattice() const { return m_Lattice; }
  CQuadTree& Tree() { return *m_pTree; }
  const CQuadTree& Tree() const { return *m_pTree; }
  const CPointOrder& Order() const { return m_Order; }
  const CHierarchicalBasis& Basis() const { return m_Basis; }
  CInterpolation Surface() const { return {*m_pTree, m_Order}; }
  /// The wanted subdivision of the current resolution.
  CSubdivisionRecord& Subdivision() { return *m_Subdivision; }

  // Constraints and lights, in creation order.
  std::list<CPtCstr>& PointConstraints() { return m_PointConstraints; }
  std::list<CPtCstr>& GeneratedConstraints() { return m_GeneratedConstraints; }
  CLightSet& RemovedLights() { return m_RemovedLights; }
  CLightSet& AddedLights() { return m_AddedLights; }

 private:
  void FillTree();
  void CapturePresentSurface();
  void RecomputeHeightRange();
  void ScatterNodalHeights();

  bool m_bRunning = true;
  int m_iNextOperation = 0;
  int m_iIterations = -1;
  int m_iIterationsPerTick = 0;
  int m_iBaseLevel = 0;
  double m_fCellSize = 0.0;
  double m_fMinHeight = 0.0;
  double m_fMaxHeight = 0.0;
  WaveletMode m_Mode = WaveletMode::New;

  CLattice m_Lattice;
  std::unique_ptr<CQuadTree> m_pTree;
  std::optional<CSubdivisionRecord> m_Subdivision;       ///< of the current resolution
  std::optional<CSubdivisionRecord> m_OtherSubdivision;  ///< of the other one
  CPointOrder m_Order;
  CHierarchicalBasis m_Basis;

  // By unknown, one entry per lattice point so that no renumbering allocates.
  std::vector<double> m_afWaveCoefs;
  std::vector<double> m_afNodalHeights;
  // By lattice point: the whole surface as it was before the tree last changed, valid while m_bSurfaceCaptured.
  std::vector<double> m_afPresentSurface;
  bool m_bSurfaceCaptured = false;

  std::list<CPtCstr> m_PointConstraints;
  std::list<CPtCstr> m_GeneratedConstraints;
  CLightSet m_RemovedLights;
  CLightSet m_AddedLights;

  std::mt19937 m_Random;
  GridHost* m_pHost = nullptr;
};
