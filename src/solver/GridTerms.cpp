#include "solver/GridTerms.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "solver/CEnergyTerms.h"

namespace {

// What both areas are divided by; it sets the smoothness against the terms of the curves.
constexpr double kAreaDivisor = 16.0;
constexpr std::int32_t kNone = -1;

// What is known about one point, by scan position.
struct CPointSurroundings {
  // Scan positions of the neighbours that uncut leaf edges join to the point.
  std::int32_t m_iLeft = kNone;
  std::int32_t m_iRight = kNone;
  std::int32_t m_iBelow = kNone;
  std::int32_t m_iAbove = kNone;
  const CQuadT* m_pCell = nullptr;  ///< the leaf whose lower left corner the point is
};

// Builds the terms point after point in scan order, so that points with like surroundings get like rows, entry for
// entry.
template <typename Terms>
class CGridTermsBuilder {
 public:
  CGridTermsBuilder(const CQuadTree& tree, const CPointOrder& order, Terms& terms)
      : m_pTree(&tree), m_pOrder(&order), m_pTerms(&terms), m_aPoints(order.Count()) {}

  void SurveyLeaves();
  void AddTerms();

 private:
  std::int32_t ScanAt(int column, int row) const {
    const std::int32_t number = m_pOrder->NumberOf(m_pTree->Lattice().Index(column, row));
    return static_cast<std::int32_t>(m_pOrder->ScanOf(static_cast<std::size_t>(number)));
  }
  void Join(const CEdge& edge);
  void AddTwist(const CQuadT& cell);
  void AddSecondDifferences(std::uint32_t position);
  void AddSecondDifference(std::int32_t before, std::uint32_t here, std::int32_t after, double h1, double h2,
                           double area);

  const CQuadTree* m_pTree;
  const CPointOrder* m_pOrder;
  Terms* m_pTerms;
  std::vector<CPointSurroundings> m_aPoints;
};

// The area around every point.
void MeasureAreas(CQuadTree& tree) {
  CLattice& lattice = tree.Lattice();
  std::ranges::fill(lattice.Smoothness(), 0.0);
  for (const CLeaf& leaf : tree.Leaves()) {
    const CQuadT& cell = *leaf.m_pCell;
    const double cx = (cell.X0() + cell.X1()) / 2.0;
    const double cy = (cell.Y0() + cell.Y1()) / 2.0;
    for (int side = 0; side < 4; ++side) cell.Edge(side).AddAreaTerm(cx, cy, lattice);
  }
}

// One pass over the leaves: who is joined to whom, and which leaf stands where.
template <typename Terms>
void CGridTermsBuilder<Terms>::SurveyLeaves() {
  for (const CLeaf& leaf : m_pTree->Leaves()) {
    const CQuadT& cell = *leaf.m_pCell;
    for (int side = 0; side < 4; ++side) Join(cell.Edge(side));
    m_aPoints[static_cast<std::size_t>(ScanAt(cell.X0(), cell.Y0()))].m_pCell = &cell;
  }
}

template <typename Terms>
void CGridTermsBuilder<Terms>::Join(const CEdge& edge) {
  if (!edge.IsLeaf()) {
    Join(edge.Half(0));
    Join(edge.Half(1));
    return;
  }
  if (edge.HasBothMarks()) return;
  const std::int32_t a = ScanAt(edge.Xa(), edge.Ya());
  const std::int32_t b = ScanAt(edge.Xb(), edge.Yb());
  CPointSurroundings& atA = m_aPoints[static_cast<std::size_t>(a)];
  CPointSurroundings& atB = m_aPoints[static_cast<std::size_t>(b)];
  (edge.IsHorizontal() ? atA.m_iRight : atA.m_iAbove) = b;
  (edge.IsHorizontal() ? atB.m_iLeft : atB.m_iBelow) = a;
}

template <typename Terms>
void CGridTermsBuilder<Terms>::AddTerms() {
  for (std::uint32_t position = 0; position < m_aPoints.size(); ++position) {
    const CQuadT* cell = m_aPoints[position].m_pCell;
    if (cell != nullptr && !cell->HasFlag(CellFlag::kMarkable)) AddTwist(*cell);
    if (!m_pTree->Lattice().Has(m_pOrder->PointAtScan(position), PointFlag::kCrease)) AddSecondDifferences(position);
  }
}

// z00 + z11 - z10 - z01, model units: z_xy times the area of the cell, which is in the weight.
template <typename Terms>
void CGridTermsBuilder<Terms>::AddTwist(const CQuadT& cell) {
  const auto corner = [this](int column, int row) { return static_cast<std::uint32_t>(ScanAt(column, row)); };
  m_pTerms->Add(MixedDifferenceWeight(cell, m_pTree->Lattice()), {{corner(cell.X0(), cell.Y0()), 1.0},
                                                                  {corner(cell.X1(), cell.Y1()), 1.0},
                                                                  {corner(cell.X1(), cell.Y0()), -1.0},
                                                                  {corner(cell.X0(), cell.Y1()), -1.0}});
}

template <typename Terms>
void CGridTermsBuilder<Terms>::AddSecondDifferences(std::uint32_t position) {
  const CLattice& lattice = m_pTree->Lattice();
  const CPointSurroundings& p = m_aPoints[position];
  const std::uint32_t point = m_pOrder->PointAtScan(position);
  const double area = lattice.Smoothness()[point];
  // Both points lie on one lattice line, `stride` points apart per step.
  const auto steps = [&](std::int32_t from, std::int32_t to, std::uint32_t stride) {
    const std::uint32_t first = m_pOrder->PointAtScan(static_cast<std::size_t>(from));
    const std::uint32_t distance = (m_pOrder->PointAtScan(static_cast<std::size_t>(to)) - first) / stride;
    return static_cast<double>(distance);
  };
  const auto here = static_cast<std::int32_t>(position);
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  if (p.m_iLeft != kNone && p.m_iRight != kNone) {
    AddSecondDifference(p.m_iLeft, position, p.m_iRight, steps(p.m_iLeft, here, 1) * lattice.StepX(),
                        steps(here, p.m_iRight, 1) * lattice.StepX(), area);
  }
  if (p.m_iBelow != kNone && p.m_iAbove != kNone) {
    AddSecondDifference(p.m_iBelow, position, p.m_iAbove, steps(p.m_iBelow, here, side) * lattice.StepY(),
                        steps(here, p.m_iAbove, side) * lattice.StepY(), area);
  }
}

// The squared second difference on the points before, here and after, h1 and h2 model units apart. With
// z'' = ((z_after - z_here) / h2 - (z_here - z_before) / h1) / ((h1 + h2) / 2) the form is z'' times h1 h2
// (h1 + h2) / 2.
template <typename Terms>
void CGridTermsBuilder<Terms>::AddSecondDifference(std::int32_t before, std::uint32_t here, std::int32_t after,
                                                   double h1, double h2, double area) {
  m_pTerms->Add(
      SecondDifferenceWeight(h1, h2, area),
      {{static_cast<std::uint32_t>(after), h1}, {here, -(h1 + h2)}, {static_cast<std::uint32_t>(before), h2}});
}

// Where the energy of each term sits: that of a second difference at its middle point, that of a mixed difference at
// the four corners alike.
class CEnergyShares {
 public:
  CEnergyShares(std::span<const double> heights, std::span<double> shares) : m_afHeights(heights), m_afShares(shares) {}

  void Add(double weight, std::initializer_list<CEnergyTerms::CEntry> form) {
    double value = 0.0;
    for (const auto& [position, coef] : form) value += coef * m_afHeights[position];
    const double energy = weight * value * value / 2;
    if (form.size() == 3) {
      m_afShares[form.begin()[1].first] += energy;
    } else {
      for (const auto& [position, coef] : form) m_afShares[position] += energy / static_cast<double>(form.size());
    }
  }

 private:
  std::span<const double> m_afHeights;
  std::span<double> m_afShares;
};

}  // namespace

double SecondDifferenceWeight(double h1, double h2, double area) {
  // Turns the square of the form into z''^2, per model unit squared, and that into energy by the area.
  const double mean = (h1 + h2) * 0.5;
  return 1.0 / (mean * mean * (h1 * h2) * (h1 * h2)) * (area / kAreaDivisor);
}

double MixedDifferenceWeight(const CQuadT& leaf, const CLattice& lattice) {
  // Lattice steps squared, as for the second differences; the form over the area in model units is z_xy.
  const double area = static_cast<double>(leaf.Size()) * leaf.Size();
  const double modelArea = (leaf.Size() * lattice.StepX()) * (leaf.Size() * lattice.StepY());
  return area / (modelArea * modelArea) / kAreaDivisor;
}

void AddGridTerms(CQuadTree& tree, const CPointOrder& order, CEnergyTerms& terms) {
  MeasureAreas(tree);
  CGridTermsBuilder builder(tree, order, terms);
  builder.SurveyLeaves();
  builder.AddTerms();
}

std::vector<double> GridEnergyShares(const CQuadTree& tree, const CPointOrder& order, std::span<const double> heights) {
  std::vector<double> shares(order.Count(), 0.0);
  CEnergyShares terms(heights, shares);
  CGridTermsBuilder builder(tree, order, terms);
  builder.SurveyLeaves();
  builder.AddTerms();
  return shares;
}
