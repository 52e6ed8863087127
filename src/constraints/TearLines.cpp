#include "constraints/TearLines.h"

#include <optional>
#include <utility>

#include "constraints/CCntrCtrlList.h"
#include "constraints/TearEnds.h"
#include "lattice/CLattice.h"

namespace {

class CLineList {
 public:
  explicit CLineList(const CLattice& lattice) : m_Lattice(lattice) {}

  void Add(const CPlanePoint& a, const CPlanePoint& b) {
    CGridSegment s{m_Lattice.ColumnOf(a.x), m_Lattice.RowOf(a.y), m_Lattice.ColumnOf(b.x), m_Lattice.RowOf(b.y)};
    const bool hasLength = s.x0 != s.x1 || s.y0 != s.y1;
    if (s.IsFinite() && hasLength && s.Clip(m_Lattice.PointsPerSide() - 1)) m_aLines.push_back(s);
  }
  void AddToBorder(const CPlanePoint& end) {
    const std::optional<CPlanePoint> border = BorderBeyond(m_Lattice, end);
    if (border) Add(end, *border);
  }

  const CLattice& m_Lattice;
  std::vector<CGridSegment> m_aLines;
};

CPlanePoint PlaceOf(const CPtCstr& node) { return {node.m_fX, node.m_fY}; }

}  // namespace

std::vector<CGridSegment> TearLines(const CCntrCtrlList& curves, const CLattice& lattice) {
  CLineList lines(lattice);
  for (const CCntrCtrl& curve : curves) {
    if (!curve.HasType(CurveType::kPosition) || curve.Nodes().size() < 2) continue;
    curve.ForEachSegment([&](const CPtCstr& a, const CPtCstr& b) { lines.Add(PlaceOf(a), PlaceOf(b)); });
    if (curve.IsClosed()) continue;
    lines.AddToBorder(PlaceOf(curve.Nodes().front()));
    lines.AddToBorder(PlaceOf(curve.Nodes().back()));
  }
  return std::move(lines.m_aLines);
}
