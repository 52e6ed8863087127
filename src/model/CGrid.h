#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "base/CRandom.h"
#include "base/Memory.h"
#include "constraints/CContourAttributes.h"
#include "model/CConstraints.h"
#include "model/CGridBuilder.h"
#include "model/CGridRun.h"
#include "model/CRelighting.h"
#include "model/CSaveOutcome.h"
#include "model/CSketch.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"
#include "model/GridFileState.h"
#include "solver/CGridSolver.h"

/// The model: one height field over one picture, its constraints and its solution. There is one for the whole run; New
/// Grid and Load Grid initialise it again in place. It owns a part for each of its jobs and hands its operations on to
/// them; each section below names the source file that does so.
///
/// Places (x, y), heights z and distances are in model units, slopes dz/dx and dz/dy; masks are PtCstrKind or CurveType
/// bits. Operations on "the selected" one take the first and do nothing without one.
class CGrid {
 public:
  /// The default grid: base level 5, no constraints, 0..100 by 0..100, the current resolution the normal one.
  /// `seed` fixes the chance in the start values of the iteration.
  explicit CGrid(std::uint32_t seed = 1);
  CGrid(const CGrid&) = delete;
  CGrid& operator=(const CGrid&) = delete;
  ~CGrid() = default;

  // Beginning and end (CGrid.cpp).

  /// Starts over on the rectangle x0..x1 by y0..y1 (x0 < x1, y0 < y1) at a base level, with a flat surface at height 0.
  /// Without `keep` all constraints are dropped. The maximum level is the global default, held to
  /// CLattice::kMinLevel..kMaxLevel; `level` is held to 0..maximum. Allocates only when the maximum has changed.
  void Initialize(int level, bool keep, double x0, double y0, double x1, double y1);
  /// Frees the arrays and drops every constraint; `Initialize` must follow.
  void FreeAll();
  /// Sets the memory of lattice, tree, numbering and surfaces aside that the next `Initialize` needs for this maximum
  /// level, while the present model stays as it is. Nothing if it has been. Throws std::bad_alloc;
  /// `DropReserve` then gives back what has been had by then.
  void Reserve(int maxLevel);
  /// Gives back what has been set aside.
  void DropReserve();
  /// Bytes that `Reserve` sets aside for a level at most.
  static double BytesOf(int maxLevel);
  void SetRectangle(double x0, double x1, double y0, double y1) { m_Surface.SetExtent({x0, x1, y0, y1}); }

  // The document as a value (GridSketch.cpp).

  CSketch Sketch() const;
  /// Starts over with a sketch, on a flat surface at height 0, and gives new grids its levels. Nothing is made of it
  /// yet: `SetDiscMap` must follow. Picture and lights stay. Throws std::bad_alloc: with nothing changed where not even
  /// `Reserve` finds its memory, else with the constraints and levels of the sketch and `Initialize` due.
  void TakeOver(CSketch sketch);

  /// The program around the model, or null. Must outlive the grid or be detached.
  void AttachHost(GridHost* host) { m_Run.AttachHost(host); }

  // One tick of the solver, and what waits for it (GridUpdate.cpp).

  /// One tick's work: the pending operations, the system as far as it is out of date, ten iterations, the surface.
  /// Allocates nothing unless the system changes.
  void UpdateGrid();
  /// Performs the pending operations at once, without iterating, and brings heights and normals up to date.
  void PerformPendingWork();
  /// Leaves `operation` for the next tick. An edit of a model that had converged resumes the solver.
  void Post(Operation operation) { m_Run.Post(operation); }
  /// "Reset the grid": heights below 10 / points by chance, and a rebuild posted.
  void Reset();
  Operation NextOperation() const { return m_Run.NextOperation(); }
  bool IsRunning() const { return m_Run.IsRunning(); }
  void SetRunning(bool running) { m_Run.SetRunning(running); }
  /// -1: numbering and system must be rebuilt; 0: the iteration starts anew; above: iterations done.
  int IterationCounter() const { return m_Solver.Counter(); }
  int IterationsPerTick() const { return m_iIterationsPerTick; }

  // Resolution and extent.

  int BaseLevel() const { return m_Wanted.BaseLevel(); }
  int MaxLevel() const { return Lattice().Level(); }
  /// Points per side of the uniform grid of the base level and of the lattice.
  int BasePointsPerSide() const { return (1 << BaseLevel()) + 1; }
  int PointsPerSide() const { return Lattice().PointsPerSide(); }

  // The system and the surface (GridRebuild.cpp, CGrid.cpp); see CSurface.

  /// Rebuilds the tree from the wanted subdivision, the discontinuity maps and the whole system.
  void SetDiscMap();
  /// Sets up the system: with the counter at -1 renumbers the points, assembles the matrix and sets the counter to 0;
  /// in any case rebuilds the constraint rows.
  void SetSparseH() { m_Builder.SetSparseH(); }
  /// Numbers the points of the present subdivision and sets the coefficients from the height array.
  void BuildHNumerotation() { m_Builder.BuildHNumerotation(); }
  void ReplaySubdivision() { m_Builder.ReplaySubdivision(); }
  /// Number of unknowns.
  int ActivePointCount() const { return m_Surface.ActivePointCount(); }
  /// Converts the coefficients to the basis of `mode`; a running iteration starts anew.
  void SetWaveletMode(WaveletMode mode);
  /// Heights, normals and height range from the coefficients.
  void ReconstructSurface() { m_Surface.Reconstruct(); }
  /// Gives the unknowns, in their order, new heights in place of those of both resolutions; the iteration starts anew.
  void SetHeights(std::span<const double> heights);
  /// Highlights the ends of the border sub-edge that the height at (x, y) hangs on and has the host show what the
  /// interpolation is made of. False outside the model.
  bool TraceInterpolation(double x, double y);

  // Point constraints (GridConstraints.cpp). Adding and deleting posts Operation::kRebuild, changing kRestart.

  void AddPtCstr(const CPtCstr& record);
  /// Whether any constraint of the kind lies within reach of (x, y); those that do are highlighted, no others.
  bool HighlightPtCstrs(double x, double y, std::uint32_t mask);
  void SelectPtCstr(double x, double y, std::uint32_t mask);
  void SelectNextPtCstr(std::uint32_t mask) { m_Constraints.Points().SelectNext(mask); }
  void SelectPrevPtCstr(std::uint32_t mask) { m_Constraints.Points().SelectPrev(mask); }
  /// Curves and their nodes as well.
  void UnselectAll();
  void MoveSelectedPtCstr(double dx, double dy);
  /// 0 without a selected position constraint.
  double GetSelectedHeight();
  void SetSelectedHeight(double z);
  /// Adds to the slopes of the selected normal constraint. Posts kRestart even without one.
  void ChangeSelectedNormal(double dp, double dq);
  void DeleteSelectedPtCstr();
  Inactivity WhyInactive(const CPtCstr& constraint) const { return m_Constraints.WhyInactive(constraint); }
  int ActiveConstraintCount() const { return m_Constraints.ActiveCount(); }
  void RefreshNormalCstrHeights() { m_Constraints.RefreshHeights(); }
  /// Reach of the freeze brush at zoom 1; it grows with the zoom.
  static constexpr double kFreezeRadius = 4.0;
  /// Freezes, or with `freeze` false sets free, the points in use within reach of the freeze brush at (x, y).
  void PaintFreezeMap(double x, double y, bool freeze);
  /// Grows whenever the brush has painted; what is drawn of the freeze map is made anew only then.
  std::uint64_t FreezeRevision() const { return m_uFreezeRevision; }
  /// Height of the surface at fractional lattice indices; 0 outside.
  double GetHeightAt(double column, double row) const { return m_Surface.HeightAt(column, row); }

  // Curves (GridCurves.cpp). Where nothing is said, nothing is posted.

  /// How the half-made curve ended.
  enum class Validation {
    NeedsType,  ///< it is still in progress: no type has been chosen
    Dropped,    ///< fewer than two points make no curve
    Added,
  };

  /// Appends a curve through the points; without points nothing happens. Fewer than three make an open curve. Posts
  /// kNewCurve.
  void AddCurve(std::span<const CPtCstr> points, CurveType type, bool closed);
  /// The same for a path from texel to texel, of which only the nodes that matter are kept.
  void AddTracedCurve(std::span<const CPtCstr> points, CurveType type, bool closed);
  /// Ends the half-made curve at the cursor (x, y) or, if it is to close, at its first point; `close` closes it in any
  /// case. Unless a type is missing, nothing is in progress and nothing selected afterwards.
  Validation ValidatePendingCurve(double x, double y, bool close, CurveType type);
  /// Forgets the half-made curve and every selection.
  void CancelPendingCurve();
  CPendingCurve& PendingCurve() { return m_Constraints.PendingCurve(); }
  const CPendingCurve& PendingCurve() const { return m_Constraints.PendingCurve(); }
  /// Click selection of a node and its curve (see CCntrCtrlList::Pick); the type of the curve selected,
  /// kNone without one.
  CurveType PickCurve(double x, double y, CurveType mask);
  /// Whether a node lies within reach; such nodes and their curves are highlighted, no others.
  bool HighlightCurves(double x, double y, CurveType mask);
  /// Gives the selected curve another type; nothing for kNone.
  void SetSelectedCurveType(CurveType type);
  void MoveSelectedCurve(double dx, double dy, CurveType mask) { m_Constraints.Curves().MoveSelected(dx, dy, mask); }
  /// Deletes the selected node of every curve, or the selected curve. Posts kRebuildMaps in any case.
  void DeleteSelectedCurveNode();
  void DeleteSelectedCurve();
  void UnselectCurves(CurveType mask) { m_Constraints.Curves().Unselect(mask); }
  /// The first curve that has a node within `reach` of (x, y) (see CPtCstr::IsWithinReach); kNone if there is none.
  CurveId FindCurve(double x, double y, double reach) const;
  /// The curve of that name; null if there is none any more.
  const CCntrCtrl* Curve(CurveId curve) const { return m_Constraints.Curves().Find(curve); }
  /// Gives a curve the attributes and, unless it is kNone, the type; the weights go to the node of that number or to
  /// all nodes. Posts kRebuildMaps. Nothing for a curve or a node that has gone.
  void SetCurveAttributes(CurveId curve, std::size_t node, const CContourAttributes& attributes, CurveType type,
                          bool weightsToAllNodes);
  /// Makes the generated constraints of a curve the user's own, wants full resolution at each of them, and turns the
  /// curve's generation off. Posts kRebuildMaps. False, with nothing changed, if they would be more than
  /// CCntrCtrl::kMostGenerated.
  bool ExportCurveConstraints(CurveId curve);
  int TakeRefusedCurves() { return m_Constraints.TakeRefusedCurves(); }

  // The picture and its light: what CRelighting does, on the present surface.

  bool SetPicture(const CPicture& picture, double memory = AvailableMemory()) {
    return m_Relighting.SetPicture(picture, Interpolation(), memory);
  }
  CLight* GetLightSource(int index, int type) { return m_Relighting.GetLightSource(index, type); }
  void InitializeCoordsTexels() { m_Relighting.InitializeCoordsTexels(Interpolation()); }
  void LocateTexels() { m_Relighting.LocateTexels(Interpolation()); }
  void TestTexelsInDiscontinuity() { m_Relighting.TestTexelsInDiscontinuity(Interpolation()); }
  void ComputeCoefsTexels() { m_Relighting.ComputeCoefsTexels(Interpolation()); }
  void ComputeNormalsOnly() { m_Relighting.ComputeNormalsOnly(Interpolation()); }
  void GetKd() { m_Relighting.GetKd(Interpolation()); }

  // Files (GridFiles.cpp). What has failed is logged and told to the caller, who tells the user. A file that is written
  // keeps its old contents until the new ones are complete. Pending work must have been performed.

  /// Reads a grid file (see ReadGrid, and TroubleWith for what the user is to be told) in place of the model. A file
  /// that cannot be opened leaves the grid as it is.
  GridFileState Load(const std::string& filename);
  /// Writes a grid file. `withLights` is called when everything else is written; without it the file holds no lights.
  CSaveOutcome Save(const std::string& filename, const std::function<bool()>& withLights = nullptr) const;
  /// Writes the surface as a VRML scene (see WriteVrml).
  CSaveOutcome SaveVrml(const std::string& filename) const;
  /// Writes the surface as a height field (see WriteHeightField).
  CSaveOutcome SaveHeightField(const std::string& filename, int width, int height) const;
  CListHeaders& ListHeaders() { return m_Constraints.Headers(); }
  const CListHeaders& ListHeaders() const { return m_Constraints.Headers(); }

  // The parts.

  CSurface& Surface() { return m_Surface; }
  const CSurface& Surface() const { return m_Surface; }
  CLattice& Lattice() { return m_Surface.Lattice(); }
  const CLattice& Lattice() const { return m_Surface.Lattice(); }
  CQuadTree& Tree() { return m_Surface.Tree(); }
  const CQuadTree& Tree() const { return m_Surface.Tree(); }
  const CPointOrder& Order() const { return m_Surface.Order(); }
  const CGridSolver& Solver() const { return m_Solver; }
  /// The wanted subdivision of the current resolution.
  CSubdivisionRecord& Subdivision() { return m_Wanted.Current(); }
  const CSubdivisionRecord& Subdivision() const { return m_Wanted.Current(); }
  /// Point constraints of the user, and those that curves generate.
  CPtCstrList& PointConstraints() { return m_Constraints.Points(); }
  CPtCstrList& GeneratedConstraints() { return m_Constraints.Generated(); }
  CCntrCtrlList& Curves() { return m_Constraints.Curves(); }
  const CPtCstrList& PointConstraints() const { return m_Constraints.Points(); }
  const CPtCstrList& GeneratedConstraints() const { return m_Constraints.Generated(); }
  const CCntrCtrlList& Curves() const { return m_Constraints.Curves(); }
  CRelighting& Relighting() { return m_Relighting; }
  const CRelighting& Relighting() const { return m_Relighting; }

 private:
  CInterpolation Interpolation() const { return m_Surface.Interpolation(); }
  void ShowConstraintCount() const;
  void ConstraintsChanged(Operation operation);

  /// Whether anything was done.
  bool PerformOperations();
  void Dispatch(Operation operation);
  /// To the other resolution, which starts from the surface of this one.
  void Transmit(bool high);
  /// To the other resolution, with its own surface or, to transfer, with that of this one.
  void SwapResolution(bool high, bool transfer);
  void SubdivisionChanged();
  void CurvesChanged(Operation operation);

  int m_iIterationsPerTick = 0;
  std::uint64_t m_uFreezeRevision = 0;
  CSurface m_Surface;
  CWantedSubdivisions m_Wanted;
  CConstraints m_Constraints;
  CRelighting m_Relighting;
  CRandom m_Random;
  CGridSolver m_Solver;
  CGridRun m_Run;
  CGridBuilder m_Builder;
};
