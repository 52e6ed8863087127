#include "solver/CurveTerms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "constraints/CCntrCtrlList.h"
#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/Interpolation.h"
#include "solver/CEnergyTerms.h"

namespace {

// Places nearer to each other than this, in lattice steps, are the same. Rounding leaves far less between the two
// borders that a line through a corner crosses there, and a term would grow with the inverse of the distance.
constexpr double kSamePlace = 1e-9;

struct CPoint {
  double x;
  double y;
};

// Shares of the way from `a` to `b` (lattice coordinates) at which the active leaves below `cell` are entered and left.
void CollectCrossings(const CQuadT& cell, const CPoint& a, const CPoint& b, std::vector<double>& shares) {
  double from = 0.0;
  double to = 1.0;
  const auto narrow = [&from, &to](double start, double end, double low, double high) {
    if (start == end) return low <= start && start <= high;
    // Where the line crosses the two sides of the cell in this direction.
    const auto [first, second] = std::minmax({(low - start) / (end - start), (high - start) / (end - start)});
    from = std::max(from, first);
    to = std::min(to, second);
    return from <= to;
  };
  if (!narrow(a.x, b.x, cell.X0(), cell.X1()) || !narrow(a.y, b.y, cell.Y0(), cell.Y1())) return;
  if (cell.IsActive() || !cell.HasChildren()) {
    shares.insert(shares.end(), {from, to});
    return;
  }
  for (int k = 0; k < 4; ++k) CollectCrossings(cell.Child(k), a, b, shares);
}

class CCurveTermsBuilder {
 public:
  CCurveTermsBuilder(const CQuadTree& tree, const CInterpolation& surface, CEnergyTerms& terms)
      : m_pTree(&tree), m_pSurface(&surface), m_pTerms(&terms) {}

  void AddSegment(const CCntrNode& a, const CCntrNode& b);

 private:
  struct CPlace {
    CPoint m_Point;  ///< model units
    bool m_bInModel;
    CStencil m_Stencil;
  };

  void FindShares(const CPoint& a, const CPoint& b);
  CPlace PlaceAt(const CCntrNode& a, const CCntrNode& b, double share) const;
  void AddTerm(double weight, const std::array<CPlace, 3>& places);

  const CQuadTree* m_pTree;
  const CInterpolation* m_pSurface;
  CEnergyTerms* m_pTerms;
  std::vector<double> m_afShares;  ///< of the present segment: its two ends and the crossings in between, ascending
};

void CCurveTermsBuilder::FindShares(const CPoint& a, const CPoint& b) {
  std::vector<double> crossings;
  CollectCrossings(m_pTree->Root(), a, b, crossings);
  std::ranges::sort(crossings);
  // The same distance as a share of the segment.
  const double same = kSamePlace / std::hypot(b.x - a.x, b.y - a.y);
  m_afShares.assign(1, 0.0);
  for (const double share : crossings) {
    if (share - m_afShares.back() > same && 1.0 - share > same) m_afShares.push_back(share);
  }
  m_afShares.push_back(1.0);
}

CCurveTermsBuilder::CPlace CCurveTermsBuilder::PlaceAt(const CCntrNode& a, const CCntrNode& b, double share) const {
  CPlace place{{a.m_fX + share * (b.m_fX - a.m_fX), a.m_fY + share * (b.m_fY - a.m_fY)}, false, {}};
  if (share > 0.0 && share < 1.0) {
    // Crossings lie in the model; rounding must not put one on its border outside.
    const CExtent& e = m_pSurface->Lattice().Extent();
    place.m_Point = {std::clamp(place.m_Point.x, e.x0, e.x1), std::clamp(place.m_Point.y, e.y0, e.y1)};
  }
  place.m_bInModel = m_pSurface->GetBilinearInterpolation(place.m_Point.x, place.m_Point.y, place.m_Stencil);
  return place;
}

void CCurveTermsBuilder::AddSegment(const CCntrNode& a, const CCntrNode& b) {
  const auto weightOf = [](const CCntrNode& node) {
    return (node.m_Weights.m_fLeftCurvature + node.m_Weights.m_fLeftTorsion) / 2;
  };
  const double weightA = weightOf(a);
  const double weightB = weightOf(b);
  const CLattice& lattice = m_pSurface->Lattice();
  const CPoint from{lattice.ColumnOf(a.m_fX), lattice.RowOf(a.m_fY)};
  const CPoint to{lattice.ColumnOf(b.m_fX), lattice.RowOf(b.m_fY)};
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if ((weightA == 0.0 && weightB == 0.0) || !std::isfinite(length) || length <= kSamePlace) return;
  FindShares(from, to);
  if (m_afShares.size() < 3) return;
  std::array<CPlace, 3> places{PlaceAt(a, b, m_afShares[0]), PlaceAt(a, b, m_afShares[1]), {}};
  for (std::size_t k = 1; k + 1 < m_afShares.size(); ++k) {
    places[2] = PlaceAt(a, b, m_afShares[k + 1]);
    // The weight at the middle one of the three places, linear between the nodes.
    AddTerm(weightA + m_afShares[k] * (weightB - weightA), places);
    places[0] = places[1];
    places[1] = places[2];
  }
}

void CCurveTermsBuilder::AddTerm(double weight, const std::array<CPlace, 3>& places) {
  const bool inModel = std::ranges::all_of(places, &CPlace::m_bInModel);
  if (!inModel || !(weight > 0.0) || !std::isfinite(weight)) return;
  const auto distance = [](const CPlace& p, const CPlace& q) {
    return std::hypot(q.m_Point.x - p.m_Point.x, q.m_Point.y - p.m_Point.y);
  };
  const double d1 = distance(places[0], places[1]);
  const double d2 = distance(places[1], places[2]);
  // d2 z0 - (d1 + d2) z1 + d1 z2, where z'' along the curve = that / (d1 d2 (d1 + d2) / 2), per model unit.
  const std::array<double, 3> factors{d2, -(d1 + d2), d1};
  std::array<CEnergyTerms::CEntry, 24> form;
  std::size_t count = 0;
  for (std::size_t k = 0; k < places.size(); ++k) {
    const CStencil& stencil = places[k].m_Stencil;
    for (std::size_t n = 0; n < stencil.m_auNodes.size(); ++n) {
      if (stencil.m_auNodes[n] == CStencil::kEmptySlot || stencil.m_afCoefs[n] == 0.0) continue;
      form[count++] = {m_pSurface->Order().ScanOf(stencil.m_auNodes[n]), factors[k] * stencil.m_afCoefs[n]};
    }
  }
  // w z''^2 (d1 + d2) / 2: the integral of w z''^2 over the part of the curve that is nearest to the middle place.
  m_pTerms->Add(weight / ((d1 + d2) * 0.5 * (d1 * d2) * (d1 * d2)), form.data(), form.data() + count);
}

}  // namespace

void AddCurveTerms(const CCntrCtrlList& curves, const CQuadTree& tree, const CInterpolation& surface,
                   CEnergyTerms& terms) {
  CCurveTermsBuilder builder(tree, surface, terms);
  for (const CCntrCtrl& curve : curves) {
    if (!curve.HasType(CurveType::kFairness)) continue;
    curve.ForEachSegment([&builder](const CCntrNode& a, const CCntrNode& b) { builder.AddSegment(a, b); });
  }
}
