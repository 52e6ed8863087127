#include "solver/GridTerms.h"

#include <algorithm>
#include <cstdint>
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
class CGridTermsBuilder {
 public:
  CGridTermsBuilder(CQuadTree& tree, const CPointOrder& order, CEnergyTerms& terms)
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

  CQuadTree* m_pTree;
  const CPointOrder* m_pOrder;
  CEnergyTerms* m_pTerms;
  std::vector<CPointSurroundings> m_aPoints;
};

// One pass over the leaves: who is joined to whom, which leaf stands where, and the area around every point.
void CGridTermsBuilder::SurveyLeaves() {
  CLattice& lattice = m_pTree->Lattice();
  std::ranges::fill(lattice.Smoothness(), 0.0);
  for (const CLeaf& leaf : m_pTree->Leaves()) {
    const CQuadT& cell = *leaf.m_pCell;
    const double cx = (cell.X0() + cell.X1()) / 2.0;
    const double cy = (cell.Y0() + cell.Y1()) / 2.0;
    for (int side = 0; side < 4; ++side) {
      Join(cell.Edge(side));
      cell.Edge(side).AddAreaTerm(cx, cy, lattice);
    }
    m_aPoints[static_cast<std::size_t>(ScanAt(cell.X0(), cell.Y0()))].m_pCell = &cell;
  }
}

void CGridTermsBuilder::Join(const CEdge& edge) {
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

void CGridTermsBuilder::AddTerms() {
  for (std::uint32_t position = 0; position < m_aPoints.size(); ++position) {
    const CQuadT* cell = m_aPoints[position].m_pCell;
    if (cell != nullptr && !cell->HasFlag(CellFlag::kMarkable)) AddTwist(*cell);
    if (!m_pTree->Lattice().Has(m_pOrder->PointAtScan(position), PointFlag::kCrease)) AddSecondDifferences(position);
  }
}

// z00 + z11 - z10 - z01, model units: z_xy times the area of the cell, which is in the weight.
void CGridTermsBuilder::AddTwist(const CQuadT& cell) {
  const auto corner = [this](int column, int row) { return static_cast<std::uint32_t>(ScanAt(column, row)); };
  m_pTerms->Add(MixedDifferenceWeight(cell, m_pTree->Lattice()), {{corner(cell.X0(), cell.Y0()), 1.0},
                                                                  {corner(cell.X1(), cell.Y1()), 1.0},
                                                                  {corner(cell.X1(), cell.Y0()), -1.0},
                                                                  {corner(cell.X0(), cell.Y1()), -1.0}});
}

void CGridTermsBuilder::AddSecondDifferences(std::uint32_t position) {
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
void CGridTermsBuilder::AddSecondDifference(std::int32_t before, std::uint32_t here, std::int32_t after, double h1,
                                            double h2, double area) {
  m_pTerms->Add(
      SecondDifferenceWeight(h1, h2, area),
      {{static_cast<std::uint32_t>(after), h1}, {here, -(h1 + h2)}, {static_cast<std::uint32_t>(before), h2}});
}

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
  CGridTermsBuilder builder(tree, order, terms);
  builder.SurveyLeaves();
  builder.AddTerms();
}
