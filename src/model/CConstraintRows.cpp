#include "model/CConstraintRows.h"

#include <algorithm>

#include "model/CLattice.h"
#include "model/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/Interpolation.h"

namespace {

// A probe that rounding puts outside the model by no more than this share of the extent lies on the border; without it
// a normal in a border cell whose probe falls on the border would lose its rows by chance.
constexpr double kBorderSlack = 1e-12;

double OntoBorder(double value, double low, double high) {
  const double slack = kBorderSlack * (high - low);
  return value > low - slack && value < high + slack ? std::clamp(value, low, high) : value;
}

}  // namespace

void CConstraintRows::Clear() {
  m_Rows.Clear();
  m_afTargets.clear();
}

void CConstraintRows::Add(std::span<const CPtCstrList* const> lists, const CQuadTree& tree,
                          const CInterpolation& surface) {
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& constraint : *list) {
      if (constraint.IsEnabled(PtCstrKind::kPosition)) AddPosition(constraint, surface);
    }
  }
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& constraint : *list) {
      if (constraint.IsEnabled(PtCstrKind::kNormal)) AddNormal(constraint, tree, surface);
    }
  }
}

void CConstraintRows::AddPosition(const CPtCstr& constraint, const CInterpolation& surface) {
  CStencil stencil;
  if (!surface.GetBilinearInterpolation(constraint.m_fX, constraint.m_fY, stencil)) return;
  AppendStencil(stencil, kWeight, surface.Order());
  EndRow(kWeight * constraint.m_fZ);
}

void CConstraintRows::AddNormal(const CPtCstr& constraint, const CQuadTree& tree, const CInterpolation& surface) {
  const CLattice& lattice = surface.Lattice();
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  const CQuadT* cell = tree.PointInCell_g(lattice.ColumnOf(x), lattice.RowOf(y));
  if (cell == nullptr) return;
  const double width = cell->Size() * lattice.StepX();
  const double height = cell->Size() * lattice.StepY();
  const CExtent& e = lattice.Extent();
  const auto probe = [&](double dx, double dy, CStencil& stencil) {
    return surface.GetBilinearInterpolation(OntoBorder(x + dx, e.x0, e.x1), OntoBorder(y + dy, e.y0, e.y1), stencil);
  };
  CStencil above;
  CStencil below;
  CStencil left;
  CStencil right;
  if (!probe(0, height / 2, above) || !probe(0, -height / 2, below) || !probe(-width / 2, 0, left) ||
      !probe(width / 2, 0, right)) {
    return;
  }
  AppendStencil(above, kWeight / height, surface.Order());
  AppendStencil(below, -kWeight / height, surface.Order());
  EndRow(kWeight * constraint.m_fQ);
  AppendStencil(right, kWeight / width, surface.Order());
  AppendStencil(left, -kWeight / width, surface.Order());
  EndRow(kWeight * constraint.m_fP);
}

void CConstraintRows::AppendStencil(const CStencil& stencil, double factor, const CPointOrder& order) {
  for (std::size_t k = 0; k < stencil.m_auNodes.size(); ++k) {
    if (stencil.m_auNodes[k] == CStencil::kEmptySlot || stencil.m_afCoefs[k] == 0.0) continue;
    m_Rows.Append(order.ScanOf(stencil.m_auNodes[k]), factor * stencil.m_afCoefs[k]);
  }
}

void CConstraintRows::EndRow(double target) {
  m_Rows.EndRow();
  m_afTargets.push_back(target);
}
