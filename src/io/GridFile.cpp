#include "io/GridFile.h"

#include <cstddef>
#include <ostream>

#include "constraints/PtCstrText.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "quadtree/SubdivisionText.h"

void WriteGrid(std::ostream& out, const CGrid& grid) {
  const CExtent& e = grid.Lattice().Extent();
  const CListHeaders& headers = grid.ListHeaders();
  out << e.x0 << '\t' << e.y0 << '\t' << e.x1 << '\t' << e.y1 << '\n';
  out << headers.m_iPoints << '\t' << grid.PointConstraints().size() << '\n';
  for (const CPtCstr& record : grid.PointConstraints()) {
    WritePtCstr(out, record);
    out << '\n';
  }
  out << headers.m_iCurves << '\t' << grid.Curves().size() << '\n';
  for (const CCntrCtrl& curve : grid.Curves()) {
    curve.Write(out);
    out << '\n';
  }
  out << headers.m_iRegions << "\t0\n\n";
  out << "\n\nL\n" << g_iBaseLevel << '\n' << g_iMaxLevel;
  out << "\n\nT\n";
  WriteSubdivision(out, grid.Subdivision());
  const CPointOrder& order = grid.Order();
  out << "\n\nZ\n";
  for (std::size_t k = 0; k < order.Count(); ++k) out << grid.Lattice().Heights()[order.PointOf(k)] << '\n';
  out << "\n\nN\n";
  for (std::size_t k = 0; k < order.Count(); ++k) out << '(' << order.ColumnOf(k) << ", " << order.RowOf(k) << ")\n";
}

void WriteLights(std::ostream& out, const CGrid& grid) {
  out << "\n\nI\n" << grid.RemovedLights() << grid.AddedLights();
}

void WriteNoLights(std::ostream& out) { out << "\n\nE\n"; }
