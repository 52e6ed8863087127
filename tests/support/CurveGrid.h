#pragma once

#include <iterator>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"

inline const CPlaces kPath{{0, 21}, {4, 22}, {8, 24}};

/// A grid with a host, to be given curves: over -3.5..12.5 by 20..26 in steps of 1 by 0.375.
struct CCurveGrid : CTestGrid {
  CCurveGrid() : CTestGrid(4, 2) {}

  void Add(const CPlaces& places, CurveType type = kTear, bool closed = false) {
    m_Grid.AddCurve(PointsAt(places), type, closed);
  }
  void Click(const CPlaces& places) {
    for (const auto& [x, y] : places) m_Grid.CurveEdits().AppendPending(x, y);
  }
  CurveId At(double x, double y) const { return m_Grid.Constraints().FindCurve(x, y, 1); }
  CCntrCtrl& Curve(int place = 0) { return CurveAt(CStaging::Constraints(m_Grid).Curves(), place); }
  CCntrNode& Node(int k) { return *std::next(Curve().Nodes().begin(), k); }

  CActingHost m_Host{m_Grid};
};
