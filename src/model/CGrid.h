#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/CRandom.h"
#include "insight/CSettler.h"
#include "model/CCellEdits.h"
#include "model/CConstraints.h"
#include "model/CCurveEdits.h"
#include "model/CEditGate.h"
#include "model/CGridBuilder.h"
#include "model/CGridReference.h"
#include "model/CGridRun.h"
#include "model/CPointMarks.h"
#include "model/CPtCstrEdits.h"
#include "model/CReferenceEdits.h"
#include "model/CRelighting.h"
#include "model/CSaveOutcome.h"
#include "model/CSketch.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"
#include "model/Globals.h"
#include "model/GridFileState.h"
#include "solver/CGridSolver.h"

/// The model: one height field over one picture, its constraints and its solution. There is one for the whole run; New
/// Grid and Load Grid initialise it again in place. It owns a part for each of its jobs and hands its operations on to
/// them; what an operation does is said there. Places (x, y), heights z and distances are in model units, slopes dz/dx
/// and dz/dy; masks are PtCstrKind or CurveType bits. The reach of picking follows the zoom of the image view.
class CGrid {
 public:
  /// The default grid: base level 5, no constraints, 0..100 by 0..100, the current resolution the normal one.
  /// `seed` fixes the random start values of the iteration.
  explicit CGrid(std::uint32_t seed = 1);
  CGrid(const CGrid&) = delete;
  CGrid& operator=(const CGrid&) = delete;
  ~CGrid() = default;

  // Beginning and end (CGrid.cpp), and the document as a value (GridSketch.cpp).
  /// Starts over on the rectangle x0..x1 by y0..y1 (x0 < x1, y0 < y1) at a base level, with a flat surface at height 0.
  /// Without `keep` all constraints are dropped. The maximum level is the global default, held to
  /// CLattice::kMinLevel..kMaxLevel; `level` is held to 0..maximum. Allocates only when the maximum has changed.
  void Initialize(int level, bool keep, double x0, double y0, double x1, double y1);
  /// Frees the arrays and drops every constraint; `Initialize` must follow.
  void FreeAll();
  /// Sets aside the memory that the next `Initialize` needs for this maximum level, while the present model stays as it
  /// is; nothing if it is set aside already. Throws std::bad_alloc; `DropReserve` then gives back what was had so far.
  void Reserve(int maxLevel);
  void DropReserve();
  CSketch Sketch() const;
  /// Starts over with a sketch, on a flat surface at height 0, and gives new grids its levels; picture and lights stay.
  /// `SetDiscMap` must follow. Throws std::bad_alloc: with the model as it was where `Reserve` does, else with the
  /// constraints and levels of the sketch and `Initialize` due.
  void TakeOver(CSketch sketch);

  // The run (see CGridRun) and its ticks (GridUpdate.cpp).
  /// One tick's work: the pending operations, the system as far as it is out of date, ten iterations, the surface.
  /// Allocates nothing unless the system changes.
  void UpdateGrid();
  /// Performs the pending operations at once, without iterating, and brings heights and normals up to date.
  void PerformPendingWork();
  /// "Reset the grid": random heights below 10 / points, and a rebuild posted.
  void Reset();
  /// Whether every tick ends with regions that nothing settles in a definite place (see CSettler); off at first.
  /// Switched on, they are moved there at once, if the system has been built.
  void SetSettling(bool on);
  bool IsSettling() const { return m_bSettling; }
  /// What would move the difference of two surfaces of the present system, settled both, from that of the same two
  /// unsettled; nothing while that is off, or where no region floats. The system must have been built.
  std::optional<CSettler> SettlerOfChanges();

  /// Surface and system (see CGridBuilder and CSurface; CGrid.cpp).
  void SetDiscMap();
  void SetSparseH() { m_Builder.SetSparseH(); }
  void BuildHNumerotation() { m_Builder.BuildHNumerotation(); }
  void UpdateConstraintsFormCurves() { m_Constraints.Generate(); }
  /// To the other resolution, which starts from the surface of this one.
  void Transmit(bool high);
  double GetHeightAt(double column, double row) const { return m_Surface.HeightAt(column, row); }
  void PaintFreezeMap(double x, double y, bool freeze);

  /// Point constraints (see CPtCstrEdits).
  void AddPtCstr(const CPtCstr& record) { m_Points.Add(record); }
  bool HighlightPtCstrs(double x, double y, std::uint32_t mask) { return m_Points.Highlight(x, y, mask, PickReach()); }
  void SelectPtCstr(double x, double y, std::uint32_t mask) { m_Points.Select(x, y, mask, PickReach()); }
  void SelectNextPtCstr(std::uint32_t mask) { m_Points.SelectNext(mask); }
  void SelectPrevPtCstr(std::uint32_t mask) { m_Points.SelectPrev(mask); }
  void MoveSelectedPtCstr(double dx, double dy) { m_Points.MoveSelected(dx, dy); }
  double GetSelectedHeight() const { return m_Points.SelectedHeight(); }
  void SetSelectedHeight(double z) { m_Points.SetSelectedHeight(z); }
  void ChangeSelectedNormal(double dp, double dq) { m_Points.ChangeSelectedNormal(dp, dq); }
  void AddHeightsAlongCurve(std::span<const CPtCstr> heights, std::optional<double> asked) {
    m_Points.AddAlongCurve(heights, asked);
  }
  std::optional<double> LastHeight() const { return m_Points.LastHeight(); }
  void DeleteSelectedPtCstr() { m_Points.DeleteSelected(); }
  void RefreshNormalCstrHeights() { m_Constraints.RefreshHeights(); }
  void UnselectAll() { m_Constraints.UnselectAll(); }

  /// Curves (see CCurveEdits).
  void AddCurve(std::span<const CPtCstr> points, CurveType type, bool closed) { m_Curves.Add(points, type, closed); }
  void AddTracedCurve(std::span<const CPtCstr> points, CurveType type, bool closed);
  CurveType PickCurve(double x, double y, CurveType mask) { return m_Curves.Pick(x, y, mask, PickReach()); }
  bool HighlightCurves(double x, double y, CurveType mask) { return m_Curves.Highlight(x, y, mask, PickReach()); }
  void MoveSelectedCurve(double dx, double dy, CurveType mask) { m_Curves.MoveSelected(dx, dy, mask); }
  void DeleteSelectedCurveNode() { m_Curves.DeleteSelectedNode(); }
  void DeleteSelectedCurve() { m_Curves.DeleteSelected(); }
  void UnselectCurves(CurveType mask) { m_Curves.Unselect(mask); }

  /// The picture and its light: what CRelighting does, on the present surface.
  const CLight* GetLightSource(int index, int type) const { return m_Relighting.GetLightSource(index, type); }
  /// Nothing where there is no such light, or where it is already like that.
  void SetLight(int index, int type, const CLight& light);
  /// How bright places of the new illumination become bytes.
  void SetTone(Tone tone);
  bool InitializeCoordsTexels() { return m_Relighting.InitializeCoordsTexels(); }
  void TestTexelsInDiscontinuity() { m_Relighting.TestTexelsInDiscontinuity(); }
  bool ComputeCoefsTexels() { return m_Relighting.ComputeCoefsTexels(); }
  bool ComputeNormalsOnly() { return m_Relighting.ComputeNormalsOnly(); }
  bool GetKd() { return m_Relighting.GetKd(); }

  // Files (GridFiles.cpp). What has failed is logged and told to the caller, who tells the user. A file that is written
  // keeps its old contents until the new ones are complete. Pending work must have been performed.
  /// Reads a grid file (see ReadGrid, and TroubleWith for what the user is to be told) in place of the model. A file
  /// that cannot be opened leaves the grid as it is.
  GridFileState Load(const std::string& filename);
  /// Writes a grid file. `withLights` is called when everything else is written; without it the file holds no lights.
  CSaveOutcome Save(const std::string& filename, const std::function<bool()>& withLights = nullptr) const;
  /// The surface as a VRML scene (see WriteVrml) and as a height field (see WriteHeightField).
  CSaveOutcome SaveVrml(const std::string& filename) const;
  CSaveOutcome SaveHeightField(const std::string& filename, int width, int height) const;

  /// The parts.
  CSurface& Surface() { return m_Surface; }
  const CSurface& Surface() const { return m_Surface; }
  const CGridSolver& Solver() const { return m_Solver; }
  CGridRun& Run() { return m_Run; }
  const CGridRun& Run() const { return m_Run; }
  CGridBuilder& Builder() { return m_Builder; }
  CRelighting& Relighting() { return m_Relighting; }
  const CRelighting& Relighting() const { return m_Relighting; }
  const CConstraints& Constraints() const { return m_Constraints; }
  CPtCstrEdits& PointEdits() { return m_Points; }
  CCurveEdits& CurveEdits() { return m_Curves; }
  CCellEdits& CellEdits() { return m_Cells; }
  const CGridReference& Reference() const { return m_Reference; }
  CReferenceEdits& ReferenceEdits() { return m_ReferenceEdits; }
  CEditGate& Gate() { return m_Gate; }
  const CWantedSubdivisions& Wanted() const { return m_Wanted; }
  CPointMarks& Marks() { return m_Marks; }
  const CPointMarks& Marks() const { return m_Marks; }

 private:
  friend struct CStaging;     // of the tests, for states that no operation leads to
  friend class CRestoration;  // makes the values of a model its own
  Performed PerformOperations();
  void Perform(const CPendingRound& round);
  void Dispatch(Operation operation);
  void SwapResolution(bool high, bool transfer);
  void SubdivisionChanged();
  void Settle();

  CSurface m_Surface;
  CWantedSubdivisions m_Wanted;
  CConstraints m_Constraints;
  CGridReference m_Reference;
  CRelighting m_Relighting;
  CRandom m_Random;
  CGridSolver m_Solver;
  CSettler m_Settler;
  bool m_bSettling = false;
  CGridRun m_Run;
  CGridBuilder m_Builder;
  CEditGate m_Gate;
  CPtCstrEdits m_Points;
  CCurveEdits m_Curves;
  CCellEdits m_Cells;
  CReferenceEdits m_ReferenceEdits;
  CPointMarks m_Marks;
};
