#include "solver/CConstraintRows.h"

#include <algorithm>
#include <cstddef>

#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
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

// Where the probes lie that the slopes at a point are the differences of, and the size of the cell between them.
struct CProbePlaces {
  CPlanePoint m_Above{};
  CPlanePoint m_Below{};
  CPlanePoint m_Left{};
  CPlanePoint m_Right{};
  double m_fWidth = 0.0;
  double m_fHeight = 0.0;
};

// The same as stencils.
struct CProbes {
  CStencil m_Above;
  CStencil m_Below;
  CStencil m_Left;
  CStencil m_Right;
  double m_fWidth = 0.0;
  double m_fHeight = 0.0;
};

std::optional<CProbePlaces> ProbePlacesAround(double x, double y, const CQuadTree& tree, const CLattice& lattice) {
  const CQuadT* cell = tree.PointInCell_g(lattice.ColumnOf(x), lattice.RowOf(y));
  if (cell == nullptr) return std::nullopt;
  const double width = cell->Size() * lattice.StepX();
  const double height = cell->Size() * lattice.StepY();
  const CExtent& e = lattice.Extent();
  const auto place = [&](double dx, double dy) {
    return CPlanePoint{OntoBorder(x + dx, e.x0, e.x1), OntoBorder(y + dy, e.y0, e.y1)};
  };
  return CProbePlaces{
      place(0, height / 2), place(0, -height / 2), place(-width / 2, 0), place(width / 2, 0), width, height};
}

bool FindPlace(const CPtCstr& constraint, const CInterpolation& surface, CStencil& stencil) {
  return constraint.IsEnabled(PtCstrKind::kPosition) &&
         surface.GetBilinearInterpolation(constraint.m_fX, constraint.m_fY, stencil);
}

bool FindProbes(const CPtCstr& constraint, const CQuadTree& tree, const CInterpolation& surface, CProbes& probes) {
  if (!constraint.IsEnabled(PtCstrKind::kNormal)) return false;
  const auto places = ProbePlacesAround(constraint.m_fX, constraint.m_fY, tree, surface.Lattice());
  if (!places) return false;
  probes.m_fWidth = places->m_fWidth;
  probes.m_fHeight = places->m_fHeight;
  const auto probe = [&](const CPlanePoint& place, CStencil& stencil) {
    return surface.GetBilinearInterpolation(place.x, place.y, stencil);
  };
  return probe(places->m_Above, probes.m_Above) && probe(places->m_Below, probes.m_Below) &&
         probe(places->m_Left, probes.m_Left) && probe(places->m_Right, probes.m_Right);
}

}  // namespace

void CConstraintRows::Clear() {
  m_Rows.Clear();
  m_afTargets.clear();
  m_afSpans.clear();
  m_auBuiltKinds.clear();
}

void CConstraintRows::Add(std::span<const CPtCstrList* const> lists, const CQuadTree& tree,
                          const CInterpolation& surface) {
  const std::size_t first = m_auBuiltKinds.size();
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& constraint : *list)
      m_auBuiltKinds.push_back(AddPosition(constraint, surface) ? PtCstrKind::kPosition : 0);
  }
  auto built = m_auBuiltKinds.begin() + static_cast<std::ptrdiff_t>(first);
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& constraint : *list) *built++ |= AddNormal(constraint, tree, surface) ? PtCstrKind::kNormal : 0;
  }
}

std::uint32_t CConstraintRows::KindsWithRows(const CPtCstr& constraint, const CQuadTree& tree,
                                             const CInterpolation& surface) {
  CStencil place;
  CProbes probes;
  return (FindPlace(constraint, surface, place) ? PtCstrKind::kPosition : 0) |
         (FindProbes(constraint, tree, surface, probes) ? PtCstrKind::kNormal : 0);
}

std::optional<CPlanePoint> CConstraintRows::SlopesUnder(const CPtCstr& constraint, const CQuadTree& tree,
                                                        const CInterpolation& surface) {
  if ((KindsWithRows(constraint, tree, surface) & PtCstrKind::kNormal) == 0) return std::nullopt;
  const CLattice& lattice = surface.Lattice();
  const auto places = ProbePlacesAround(constraint.m_fX, constraint.m_fY, tree, lattice);
  const auto heightAt = [&](const CPlanePoint& place) {
    return surface.HeightAt(lattice.ColumnOf(place.x), lattice.RowOf(place.y));
  };
  return CPlanePoint{(heightAt(places->m_Right) - heightAt(places->m_Left)) / places->m_fWidth,
                     (heightAt(places->m_Above) - heightAt(places->m_Below)) / places->m_fHeight};
}

bool CConstraintRows::AddPosition(const CPtCstr& constraint, const CInterpolation& surface) {
  CStencil stencil;
  if (!FindPlace(constraint, surface, stencil)) return false;
  AppendStencil(stencil, kWeight, surface.Order());
  EndRow(kWeight * constraint.m_fZ, 0.0);
  return true;
}

bool CConstraintRows::AddNormal(const CPtCstr& constraint, const CQuadTree& tree, const CInterpolation& surface) {
  CProbes probes;
  if (!FindProbes(constraint, tree, surface, probes)) return false;
  AppendStencil(probes.m_Above, kWeight / probes.m_fHeight, surface.Order());
  AppendStencil(probes.m_Below, -kWeight / probes.m_fHeight, surface.Order());
  EndRow(kWeight * constraint.m_fQ, probes.m_fHeight);
  AppendStencil(probes.m_Right, kWeight / probes.m_fWidth, surface.Order());
  AppendStencil(probes.m_Left, -kWeight / probes.m_fWidth, surface.Order());
  EndRow(kWeight * constraint.m_fP, probes.m_fWidth);
  return true;
}

void CConstraintRows::AppendStencil(const CStencil& stencil, double factor, const CPointOrder& order) {
  for (std::size_t k = 0; k < stencil.m_auNodes.size(); ++k) {
    if (stencil.m_auNodes[k] == CStencil::kEmptySlot || stencil.m_afCoefs[k] == 0.0) continue;
    m_Rows.Append(order.ScanOf(stencil.m_auNodes[k]), factor * stencil.m_afCoefs[k]);
  }
}

void CConstraintRows::EndRow(double target, double span) {
  m_Rows.EndRow();
  m_afSpans.push_back(span);
  m_afTargets.push_back(target);
}
