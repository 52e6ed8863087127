#include "io/GridFile.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

#include "base/SavedNumber.h"
#include "constraints/PtCstrText.h"
#include "model/CGrid.h"
#include "model/CSketch.h"
#include "model/Globals.h"

namespace {

// How far a saved place or height may be from the present one, in proportion to a side of the model.
constexpr double kTolerance = 1e-5;

double ToleranceOf(const CExtent& e) { return kTolerance * std::max(e.x1 - e.x0, e.y1 - e.y0); }

// Each side in its own measure: x0 < x1 and y0 < y1 must hold of what is read back, however narrow the model is.
void WriteRectangle(std::ostream& out, const CExtent& e) {
  WriteSavedNumber(out, e.x0, kTolerance * (e.x1 - e.x0));
  out << '\t';
  WriteSavedNumber(out, e.y0, kTolerance * (e.y1 - e.y0));
  out << '\t';
  WriteSavedNumber(out, e.x1, kTolerance * (e.x1 - e.x0));
  out << '\t';
  WriteSavedNumber(out, e.y1, kTolerance * (e.y1 - e.y0));
  out << '\n';
}

}  // namespace

void WriteSketch(std::ostream& out, const CSketch& sketch) {
  const double tolerance = ToleranceOf(sketch.m_Extent);
  const CListHeaders& headers = sketch.m_ListHeaders;
  WriteRectangle(out, sketch.m_Extent);
  out << headers.m_iPoints << '\t' << sketch.m_Points.size() << '\n';
  for (const CPtCstr& record : sketch.m_Points) {
    WritePtCstr(out, record, tolerance);
    out << '\n';
  }
  out << headers.m_iCurves << '\t' << sketch.m_Curves.size() << '\n';
  for (const CCntrCtrl& curve : sketch.m_Curves) {
    curve.Write(out, tolerance);
    out << '\n';
  }
  out << headers.m_iRegions << "\t0\n\n";
  out << "\n\nL\n" << sketch.m_iNewBaseLevel << '\n' << sketch.m_iMaxLevel;
  out << "\n\nT\n";
  sketch.m_aSubdivisions.front().Write(out);
}

CSolvedHeights SolvedHeights(const CGrid& grid) {
  const CPointOrder& order = grid.Surface().Order();
  CSolvedHeights solved;
  solved.m_aPlaces.reserve(order.Count());
  solved.m_afHeights.reserve(order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) {
    solved.m_aPlaces.push_back({order.ColumnOf(k), order.RowOf(k)});
    solved.m_afHeights.push_back(grid.Surface().Lattice().Heights()[order.PointOf(k)]);
  }
  return solved;
}

void WriteGrid(std::ostream& out, const CGrid& grid) {
  CSketch sketch = grid.Sketch();
  // The levels of a file are those that a new grid would get now.
  sketch.m_iMaxLevel = g_iMaxLevel;
  WriteGrid(out, sketch, SolvedHeights(grid));
}

void WriteGrid(std::ostream& out, const CSketch& sketch, const CSolvedHeights& solved) {
  WriteSketch(out, sketch);
  const double tolerance = ToleranceOf(sketch.m_Extent);
  out << "\n\nZ\n";
  for (const double height : solved.m_afHeights) {
    WriteSavedNumber(out, height, tolerance);
    out << '\n';
  }
  out << "\n\nN\n";
  for (const auto& [column, row] : solved.m_aPlaces) out << '(' << column << ", " << row << ")\n";
}

void WriteLights(std::ostream& out, const CGrid& grid) {
  WriteLights(out, grid.Relighting().RemovedLights(), grid.Relighting().AddedLights());
}

void WriteLights(std::ostream& out, const CLightSet& removed, const CLightSet& added) {
  out << "\n\nI\n" << removed << added;
}

void WriteNoLights(std::ostream& out) { out << "\n\nE\n"; }
