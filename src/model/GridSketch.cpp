// The grid's document and its whole state as values, and values as the grid's own.

#include <algorithm>
#include <iterator>
#include <utility>

#include "model/CGrid.h"
#include "model/CModelState.h"
#include "model/CSketch.h"
#include "model/Globals.h"

namespace {

// Whether the rows of the constraints belong to the same points, whatever these are to have.
bool HaveSameKinds(const CPtCstrList& a, const CPtCstrList& b) {
  const auto kind = [](const CPtCstr& c) { return c.m_uKind & ~PtCstrKind::kDisabled; };
  return std::ranges::equal(a, b, {}, kind, kind);
}

std::vector<std::size_t> FrozenPoints(const CLattice& lattice) {
  std::vector<std::size_t> points;
  for (std::size_t point = 0; point < lattice.PointCount(); ++point) {
    if (lattice.Has(point, PointFlag::kFrozen)) points.push_back(point);
  }
  return points;
}

}  // namespace

CSketch CGrid::Sketch() const {
  CSketch sketch;
  sketch.m_Extent = m_Surface.Lattice().Extent();
  sketch.m_iBaseLevel = m_Wanted.BaseLevel();
  sketch.m_iNewBaseLevel = g_iBaseLevel;
  sketch.m_iMaxLevel = m_Surface.Lattice().Level();
  sketch.m_bHighRes = g_bHighRes == 1;
  sketch.m_aSubdivisions = {m_Wanted.CurrentBits(), m_Wanted.OtherBits()};
  m_Constraints.AddTo(sketch);
  sketch.m_Reference = m_Reference.Value();
  return sketch;
}

void CGrid::TakeOver(CSketch sketch) {
  Reserve(sketch.m_iMaxLevel);
  FreeAll();
  m_Constraints.TakeFrom(sketch);
  m_Reference.Set(std::move(sketch.m_Reference));
  g_iBaseLevel = sketch.m_iNewBaseLevel;
  g_iMaxLevel = sketch.m_iMaxLevel;
  g_bHighRes = sketch.m_bHighRes ? 1 : 0;
  const CExtent& e = sketch.m_Extent;
  Initialize(sketch.m_iBaseLevel, true, e.x0, e.y0, e.x1, e.y1);
  sketch.m_aSubdivisions.front().ApplyTo(m_Wanted.Current());
  sketch.m_aSubdivisions.back().ApplyTo(m_Wanted.Other());
}

CDocument DocumentOf(const CGrid& grid) {
  const CRelighting& relighting = grid.Relighting();
  return {grid.Sketch(), relighting.RemovedLights(), relighting.AddedLights(), relighting.RelitTone(),
          grid.Wanted().SelectedCells()};
}

CModelState StateOf(const CGrid& grid) {
  CSolverState solver = grid.Solver().State();
  // Rows that an edit has put out of date are no longer what the iteration is to go on with.
  if (grid.Run().NextOperation() != Operation::kNone) solver.m_iCounter = std::min(solver.m_iCounter, 0);
  return {DocumentOf(grid),
          g_iMaxLevel,
          g_fPickTolerance,
          grid.LastHeight(),
          std::make_shared<const CSurfaceState>(grid.Surface().State()),
          std::make_shared<const CSolverState>(std::move(solver))};
}

void CRestoration::RestoreDocument(CGrid& grid, const CDocument& document) {
  grid.m_Gate.NoteRestored();
  const CSketch& sketch = document.m_Sketch;
  const bool cells = grid.m_Wanted.CurrentBits() != sketch.m_aSubdivisions.front() ||
                     grid.m_Wanted.OtherBits() != sketch.m_aSubdivisions.back();
  const bool maps = cells || grid.m_Constraints.Curves() != sketch.m_Curves;
  const bool rows = grid.m_Constraints.Points() != sketch.m_Points;
  const bool numbering = !HaveSameKinds(grid.m_Constraints.Points(), sketch.m_Points);
  const bool values = !grid.m_Reference.Value().HasSameValues(sketch.m_Reference);
  const bool reference = !(grid.m_Reference.Value() == sketch.m_Reference);
  grid.m_Constraints.Restore(sketch);
  if (reference) grid.m_Reference.Set(sketch.m_Reference);
  grid.m_Relighting.SetLights(document.m_RemovedLights, document.m_AddedLights);
  grid.m_Relighting.SetTone(document.m_Tone);
  if (cells) {
    sketch.m_aSubdivisions.front().ApplyTo(grid.m_Wanted.Current());
    sketch.m_aSubdivisions.back().ApplyTo(grid.m_Wanted.Other());
    grid.m_Wanted.Current().SelectNodes(document.m_auSelectedCells);
    grid.m_Wanted.Current().ShowSelection(grid.m_Surface.Tree());
  }
  if (rows && !maps) grid.m_Constraints.UpdateActivities();
  if (maps) {
    grid.m_Run.Post(Operation::kRebuildMaps);
  } else if (rows || reference) {
    grid.m_Run.Post(numbering || values ? Operation::kRebuild : Operation::kRestart);
  }
  grid.m_Run.Host().ShowConstraints(grid.m_Constraints.ActiveCount());
  grid.m_Run.Host().RequestRedraw();
}

void CRestoration::RestoreState(CGrid& grid, const CModelState& state) {
  const CDocument& document = state.m_Document;
  CLattice& lattice = grid.m_Surface.Lattice();
  // What the brush has painted is no part of the document, and stays where it is.
  const bool keep = lattice.Level() == document.m_Sketch.m_iMaxLevel && lattice.Extent() == document.m_Sketch.m_Extent;
  const std::vector<std::size_t> frozen = keep ? FrozenPoints(lattice) : std::vector<std::size_t>();
  grid.TakeOver(document.m_Sketch);
  grid.m_Gate.NoteRestored();
  for (const std::size_t point : frozen) lattice.Set(point, PointFlag::kFrozen);
  g_iMaxLevel = state.m_iNewMaxLevel;
  g_fPickTolerance = state.m_fPickTolerance;
  grid.m_Points.SetLastHeight(state.m_LastHeight);
  grid.m_Relighting.SetLights(document.m_RemovedLights, document.m_AddedLights);
  grid.m_Relighting.SetTone(document.m_Tone);
  grid.m_Wanted.Current().SelectNodes(document.m_auSelectedCells);
  if (state.m_pSurface != nullptr) grid.m_Surface.Restore(*state.m_pSurface);
  grid.SetDiscMap();
  grid.m_Wanted.Current().ShowSelection(grid.m_Surface.Tree());
  grid.m_Surface.Reconstruct();
  if (state.m_pSolver != nullptr) grid.m_Solver.Resume(*state.m_pSolver, grid.m_Surface.Coefficients());
  grid.m_Run.Host().ShowIterations(grid.m_Solver.Counter());
  grid.m_Run.Host().RequestRedraw();
}
