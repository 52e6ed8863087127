#include "model/CCellEdits.h"

#include "model/CEditGate.h"
#include "model/CGridRun.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"

void CCellEdits::RefineAt(double x, double y) {
  m_Gate.Do(Edit::RefineCell, [&] {
    const CLattice& lattice = m_Surface.Lattice();
    m_Wanted.Current().RefineAt(m_Surface.Tree(), lattice.ColumnOf(x), lattice.RowOf(y));
    ShowSelection();
  });
}

void CCellEdits::Select(double x0, double y0, double x1, double y1) {
  const CLattice& lattice = m_Surface.Lattice();
  m_Wanted.Current().SelectRectangle(m_Surface.Tree(), lattice.ColumnOf(x0), lattice.RowOf(y0), lattice.ColumnOf(x1),
                                     lattice.RowOf(y1));
  ShowSelection();
}

void CCellEdits::ClearSelection() { m_Wanted.Current().ClearSelection(); }

void CCellEdits::ShowSelection() { m_Wanted.Current().ShowSelection(m_Surface.Tree()); }

void CCellEdits::SplitSelected() { m_Run.Post(Operation::kSubdivide); }

void CCellEdits::MergeSelected() { m_Run.Post(Operation::kMerge); }
