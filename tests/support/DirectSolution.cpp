#include "support/DirectSolution.h"

#include <algorithm>
#include <cmath>

#include <Eigen/SparseLU>

#include "support/CStaging.h"
#include "support/DepthBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr double kConstraintWeight = 10.0;
constexpr double kAreaDivisor = 16.0;
// How far a probe may lie outside and still count as on the border, as a share of the extent.
constexpr double kBorderSlack = 1e-12;
// How far, in barycentric coordinates, a point on a side of a triangle may seem to lie outside it.
constexpr double kTriangleSlack = 1e-9;

void AddTo(CDirectSystem::CForm& form, const CDirectSystem::CForm& other, double factor) {
  for (const auto& [unknown, coef] : other) form[unknown] += factor * coef;
}

// The outer product of the form with itself.
void AddSquare(double weight, const CDirectSystem::CForm& form, std::vector<Eigen::Triplet<double>>& entries) {
  for (const auto& [row, a] : form) {
    for (const auto& [column, b] : form) entries.emplace_back(row, column, weight * a * b);
  }
}

double OntoBorder(double value, double low, double high) {
  const double slack = kBorderSlack * (high - low);
  if (value < low && value > low - slack) return low;
  return value > high && value < high + slack ? high : value;
}

double Cross(double ax, double ay, double bx, double by) { return ax * by - ay * bx; }

}  // namespace

CDirectSystem::CDirectSystem(const CQuadTree& tree)
    : m_iSide(tree.Lattice().PointsPerSide()),
      m_Extent(tree.Lattice().Extent()),
      m_abCorner(tree.Lattice().PointCount(), false),
      m_aiNumbers(tree.Lattice().PointCount(), 0),
      m_afAreas(tree.Lattice().PointCount(), 0.0) {
  CollectLeaves(tree);
  for (std::size_t point = 0; point < m_abCorner.size(); ++point) {
    m_abCrease.push_back(tree.Lattice().Has(point, PointFlag::kCrease));
    m_aiNumbers[point] = m_iUnknowns;
    if (m_abCorner[point]) ++m_iUnknowns;
  }
  FormEnergy(tree);
}

void CDirectSystem::CollectLeaves(const CQuadTree& tree) {
  tree.ForEachLeaf([this](const CQuadT& cell) {
    m_aLeaves.push_back({cell.X0(), cell.Y0(), cell.Size(), cell.Flags()});
    for (const int dy : {0, cell.Size()}) {
      for (const int dx : {0, cell.Size()}) m_abCorner[Index({cell.X0() + dx, cell.Y0() + dy})] = true;
    }
  });
}

// The points in use on a side (0 bottom, 1 right, 2 top, 3 left), by growing column or row.
std::vector<CDirectSystem::CPoint> CDirectSystem::PointsOnSide(const CRefLeaf& leaf, int side) const {
  std::vector<CPoint> points;
  for (int t = 0; t <= leaf.m_iSize; ++t) {
    const CPoint p = side % 2 == 0 ? CPoint{leaf.m_iX0 + t, leaf.m_iY0 + (side == 2 ? leaf.m_iSize : 0)}
                                   : CPoint{leaf.m_iX0 + (side == 1 ? leaf.m_iSize : 0), leaf.m_iY0 + t};
    if (m_abCorner[Index(p)]) points.push_back(p);
  }
  return points;
}

std::vector<CDirectSystem::CSegment> CDirectSystem::SegmentsOfSide(const CRefLeaf& leaf, int side) const {
  const std::vector<CPoint> points = PointsOnSide(leaf, side);
  std::vector<CSegment> segments;
  for (std::size_t k = 1; k < points.size(); ++k) segments.push_back({points[k - 1], points[k]});
  return segments;
}

// A segment lies inside a discontinuity where both cells of its own size have their triangle on it in one; beyond the
// border all is.
bool CDirectSystem::IsCut(const CQuadTree& tree, const CSegment& segment) const {
  const int length = segment.m_B[0] - segment.m_A[0] + segment.m_B[1] - segment.m_A[1];
  const int level = static_cast<int>(std::lround(std::log2(length)));
  const int cells = (m_iSide - 1) / length;
  const int i = segment.m_A[0] / length;
  const int j = segment.m_A[1] / length;
  const auto marked = [&](int column, int row, Side side) {
    if (column < 0 || row < 0 || column >= cells || row >= cells) return true;
    return tree.CellAt(level, column, row).HasFlag(1U << side);
  };
  if (segment.IsHorizontal()) return marked(i, j, kBottom) && marked(i, j - 1, kTop);
  return marked(i, j, kLeft) && marked(i - 1, j, kRight);
}

// Half of the triangle's area goes to each end.
void CDirectSystem::AddAreas(const CRefLeaf& leaf, const CSegment& segment) {
  const double area = std::abs(Cross(segment.m_A[0] - leaf.CentreX(), segment.m_A[1] - leaf.CentreY(),
                                     segment.m_B[0] - leaf.CentreX(), segment.m_B[1] - leaf.CentreY())) /
                      2;
  m_afAreas[Index(segment.m_A)] += area / 2;
  m_afAreas[Index(segment.m_B)] += area / 2;
}

void CDirectSystem::AddTwist(const CRefLeaf& leaf) {
  if ((leaf.m_uFlags & 63U) != 0) return;
  const int x1 = leaf.m_iX0 + leaf.m_iSize;
  const int y1 = leaf.m_iY0 + leaf.m_iSize;
  const double width = X(x1) - X(leaf.m_iX0);
  const double height = Y(y1) - Y(leaf.m_iY0);
  const double weight = leaf.m_iSize * leaf.m_iSize / std::pow(width * height, 2) / kAreaDivisor;
  const CForm form{{Number({leaf.m_iX0, leaf.m_iY0}), 1.0},
                   {Number({x1, y1}), 1.0},
                   {Number({x1, leaf.m_iY0}), -1.0},
                   {Number({leaf.m_iX0, y1}), -1.0}};
  m_aTerms.push_back({weight, form});
}

void CDirectSystem::AddSecondDifference(const CSegment& before, const CSegment& after) {
  const CPoint& here = before.m_B;
  if (m_abCrease[Index(here)]) return;
  const bool inX = before.IsHorizontal();
  const double h1 = inX ? X(here[0]) - X(before.m_A[0]) : Y(here[1]) - Y(before.m_A[1]);
  const double h2 = inX ? X(after.m_B[0]) - X(here[0]) : Y(after.m_B[1]) - Y(here[1]);
  const double m = (h1 + h2) * 0.5;
  const double weight = 1.0 / (m * m * std::pow(h1 * h2, 2)) * (m_afAreas[Index(here)] / kAreaDivisor);
  m_aTerms.push_back({weight, {{Number(after.m_B), h1}, {Number(here), -(h1 + h2)}, {Number(before.m_A), h2}}});
}

void CDirectSystem::FormEnergy(const CQuadTree& tree) {
  // The uncut segments by the point where they begin and end, for each of the two directions.
  std::array<std::map<CPoint, CSegment>, 2> beginning;
  std::array<std::map<CPoint, CSegment>, 2> ending;
  for (const CRefLeaf& leaf : m_aLeaves) {
    AddTwist(leaf);
    for (int side = 0; side < 4; ++side) {
      for (const CSegment& segment : SegmentsOfSide(leaf, side)) {
        AddAreas(leaf, segment);
        if (IsCut(tree, segment)) continue;
        const std::size_t direction = segment.IsHorizontal() ? 0 : 1;
        beginning[direction].insert_or_assign(segment.m_A, segment);
        ending[direction].insert_or_assign(segment.m_B, segment);
      }
    }
  }
  for (const std::size_t direction : {0U, 1U}) {
    for (const auto& [point, after] : beginning[direction]) {
      const auto before = ending[direction].find(point);
      if (before != ending[direction].end()) AddSecondDifference(before->second, after);
    }
  }
  CEntries entries;
  for (const CTerm& term : m_aTerms) AddSquare(term.m_fWeight, term.m_Form, entries);
  m_H.resize(m_iUnknowns, m_iUnknowns);
  m_H.setFromTriplets(entries.begin(), entries.end());
}

// The mean, over the sides outside discontinuities (over all four where there is none), of the midpoint where the side
// is split, else of the two corners.
CDirectSystem::CForm CDirectSystem::CentreForm(const CRefLeaf& leaf) const {
  const bool all = (leaf.m_uFlags & 15U) == 15U;
  CForm form;
  int sides = 0;
  for (int side = 0; side < 4; ++side) {
    if (!all && (leaf.m_uFlags >> side & 1U) != 0) continue;
    ++sides;
    const std::vector<CPoint> points = PointsOnSide(leaf, side);
    const CPoint& a = points.front();
    const CPoint& b = points.back();
    if (points.size() > 2) {
      form[Number({(a[0] + b[0]) / 2, (a[1] + b[1]) / 2})] += 1.0;
    } else {
      form[Number(a)] += 0.5;
      form[Number(b)] += 0.5;
    }
  }
  for (auto& entry : form) entry.second /= sides;
  return form;
}

// Barycentric in the triangle of the segment with the leaf's centre; nothing outside it.
std::optional<CDirectSystem::CForm> CDirectSystem::FormInTriangle(const CRefLeaf& leaf, const CSegment& segment,
                                                                  double gx, double gy) const {
  const double ax = segment.m_A[0] - leaf.CentreX();
  const double ay = segment.m_A[1] - leaf.CentreY();
  const double bx = segment.m_B[0] - leaf.CentreX();
  const double by = segment.m_B[1] - leaf.CentreY();
  const double px = gx - leaf.CentreX();
  const double py = gy - leaf.CentreY();
  const double ca = Cross(px, py, bx, by) / Cross(ax, ay, bx, by);
  const double cb = Cross(ax, ay, px, py) / Cross(ax, ay, bx, by);
  if (ca < -kTriangleSlack || cb < -kTriangleSlack || ca + cb > 1 + kTriangleSlack) return std::nullopt;
  CForm form;
  AddTo(form, CentreForm(leaf), 1 - ca - cb);
  form[Number(segment.m_A)] += ca;
  form[Number(segment.m_B)] += cb;
  return form;
}

std::optional<CDirectSystem::CForm> CDirectSystem::HeightForm(double x, double y) const {
  const double gx = Column(x);
  const double gy = Row(y);
  for (const CRefLeaf& leaf : m_aLeaves) {
    const bool apart =
        gx < leaf.m_iX0 || gy < leaf.m_iY0 || gx > leaf.m_iX0 + leaf.m_iSize || gy > leaf.m_iY0 + leaf.m_iSize;
    for (int side = 0; side < 4 && !apart; ++side) {
      for (const CSegment& segment : SegmentsOfSide(leaf, side)) {
        std::optional<CForm> form = FormInTriangle(leaf, segment, gx, gy);
        if (form) return form;
      }
    }
  }
  return std::nullopt;
}

// On a dividing line the right or upper leaf.
const CDirectSystem::CRefLeaf* CDirectSystem::LeafHolding(double gx, double gy) const {
  const int last = m_iSide - 1;
  if (gx < 0 || gy < 0 || gx > last || gy > last) return nullptr;
  const int column = std::min(static_cast<int>(gx), last - 1);
  const int row = std::min(static_cast<int>(gy), last - 1);
  return &*std::ranges::find_if(m_aLeaves, [=](const CRefLeaf& leaf) {
    return column >= leaf.m_iX0 && column < leaf.m_iX0 + leaf.m_iSize && row >= leaf.m_iY0 &&
           row < leaf.m_iY0 + leaf.m_iSize;
  });
}

void CDirectSystem::AppendNormalRows(const CPtCstr& constraint, std::vector<CRow>& rows) const {
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  const CRefLeaf* leaf = LeafHolding(Column(x), Row(y));
  if (leaf == nullptr) return;
  const double width = X(leaf->m_iX0 + leaf->m_iSize) - X(leaf->m_iX0);
  const double height = Y(leaf->m_iY0 + leaf->m_iSize) - Y(leaf->m_iY0);
  const auto probe = [&](double px, double py) {
    return HeightForm(OntoBorder(px, m_Extent.x0, m_Extent.x1), OntoBorder(py, m_Extent.y0, m_Extent.y1));
  };
  const auto above = probe(x, y + height / 2);
  const auto below = probe(x, y - height / 2);
  const auto right = probe(x + width / 2, y);
  const auto left = probe(x - width / 2, y);
  if (!above || !below || !right || !left) return;
  CForm slopeY;
  AddTo(slopeY, *above, kConstraintWeight / height);
  AddTo(slopeY, *below, -kConstraintWeight / height);
  rows.push_back({slopeY, kConstraintWeight * constraint.m_fQ});
  CForm slopeX;
  AddTo(slopeX, *right, kConstraintWeight / width);
  AddTo(slopeX, *left, -kConstraintWeight / width);
  rows.push_back({slopeX, kConstraintWeight * constraint.m_fP});
}

void CDirectSystem::SetConstraints(std::span<const CPtCstrList* const> lists) {
  std::vector<CRow> rows;
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& c : *list) {
      if ((c.m_uKind & 1U) == 0 || (c.m_uKind & 4U) != 0) continue;
      const std::optional<CForm> form = HeightForm(c.m_fX, c.m_fY);
      if (!form) continue;
      rows.push_back({{}, kConstraintWeight * c.m_fZ});
      AddTo(rows.back().m_Form, *form, kConstraintWeight);
    }
  }
  for (const CPtCstrList* list : lists) {
    for (const CPtCstr& c : *list) {
      if ((c.m_uKind & 2U) != 0 && (c.m_uKind & 4U) == 0) AppendNormalRows(c, rows);
    }
  }
  CEntries entries;
  m_Targets.resize(static_cast<Eigen::Index>(rows.size()));
  for (int j = 0; j < m_Targets.size(); ++j) {
    const CRow& row = rows[static_cast<std::size_t>(j)];
    m_Targets[j] = row.m_fTarget;
    for (const auto& [unknown, coef] : row.m_Form) entries.emplace_back(j, unknown, coef);
  }
  m_C.resize(m_Targets.size(), m_iUnknowns);
  m_C.setFromTriplets(entries.begin(), entries.end());
}

void CDirectSystem::SetShape(std::span<const double> heights) {
  m_Load = Eigen::VectorXd::Zero(m_iUnknowns);
  for (const CTerm& term : m_aTerms) {
    double form = 0.0;
    for (const auto& [unknown, coef] : term.m_Form) form += coef * heights[static_cast<std::size_t>(unknown)];
    if (std::isnan(form)) continue;
    for (const auto& [unknown, coef] : term.m_Form) m_Load[unknown] += term.m_fWeight * form * coef;
  }
}

Eigen::SparseMatrix<double> CDirectSystem::Bordered() const {
  using CEntry = Eigen::SparseMatrix<double>::InnerIterator;
  CEntries entries;
  for (int k = 0; k < m_iUnknowns; ++k) {
    for (CEntry e(m_H, k); e; ++e) entries.emplace_back(static_cast<int>(e.row()), k, e.value());
    for (CEntry e(m_C, k); e; ++e) {
      entries.emplace_back(m_iUnknowns + static_cast<int>(e.row()), k, e.value());
      entries.emplace_back(k, m_iUnknowns + static_cast<int>(e.row()), e.value());
    }
  }
  Eigen::SparseMatrix<double> bordered(m_iUnknowns + m_C.rows(), m_iUnknowns + m_C.rows());
  bordered.setFromTriplets(entries.begin(), entries.end());
  return bordered;
}

std::vector<double> CDirectSystem::Solve() const {
  const Eigen::SparseMatrix<double> bordered = Bordered();
  const Eigen::SparseLU<Eigen::SparseMatrix<double>> factors(bordered);
  if (factors.info() != Eigen::Success) return {};
  Eigen::VectorXd right = Eigen::VectorXd::Zero(bordered.rows());
  right.tail(m_Targets.size()) = m_Targets;
  if (m_Load.size() != 0) right.head(m_iUnknowns) = m_Load;
  Eigen::VectorXd solution = factors.solve(right);
  solution += factors.solve(right - bordered * solution);
  return {solution.data(), solution.data() + m_iUnknowns};
}

Eigen::MatrixXd Dense(const CCompressedRows& rows, std::size_t columns) {
  Eigen::MatrixXd dense(static_cast<Eigen::Index>(rows.RowCount()), static_cast<Eigen::Index>(columns));
  dense.setZero();
  for (std::size_t row = 0; row < rows.RowCount(); ++row) {
    for (std::size_t e = 0; e < rows.Columns(row).size(); ++e)
      dense(static_cast<Eigen::Index>(row), rows.Columns(row)[e]) += rows.Values(row)[e];
  }
  return dense;
}

std::vector<double> InUse(const CLattice& lattice, std::span<const double> byPoint) {
  std::vector<double> values;
  for (std::size_t point = 0; point < lattice.PointCount(); ++point) {
    if (lattice.Has(point, PointFlag::kInUse)) values.push_back(byPoint[point]);
  }
  return values;
}

void FollowRandomMap(CGrid& grid, std::uint32_t seed, double strength) {
  constexpr int kSide = 40;
  const std::vector<double> values = RandomValues(seed, static_cast<std::size_t>(kSide) * kSide);
  std::size_t next = 0;
  grid.ReferenceEdits().Load(SharedDepthMap(kSide, kSide, [&](double, double) { return values[next++]; }), "/random");
  grid.ReferenceEdits().SetStrength(strength);
}

std::vector<double> ShapeHeights(CGrid& grid) {
  CGridReference& reference = CStaging::Reference(grid);
  std::vector<double> heights = Copied(reference.Sample());
  const CReferenceFit& fit = reference.Fitted();
  for (double& height : heights) height = reference.Value().m_Settings.m_fStrength * fit.HeightOver(height);
  return heights;
}

CSolverGrid::CSolverGrid(int maxLevel, int baseLevel, const CExtent& extent, WaveletMode mode)
    : m_Scope(maxLevel, baseLevel) {
  m_Grid.Initialize(baseLevel, false, extent.x0, extent.y0, extent.x1, extent.y1);
  m_Grid.Builder().SetWaveletMode(mode);
  m_Console.Take();
}

bool CSolverGrid::Converge(int ticks) { return RunUntilPaused(m_Grid, ticks) && m_Grid.Solver().HasConverged(); }

std::vector<double> CSolverGrid::DirectHeights() {
  CDirectSystem system(m_Grid.Surface().Tree());
  system.SetConstraints(
      std::array<const CPtCstrList*, 2>{&m_Grid.Constraints().Points(), &m_Grid.Constraints().Generated()});
  m_Grid.PerformPendingWork();
  const std::vector<double> shape = ShapeHeights(m_Grid);
  if (!shape.empty()) system.SetShape(shape);
  return system.Solve();
}

double CSolverGrid::ErrorAgainst(const std::vector<double>& heights) const {
  if (heights.empty()) return HUGE_VAL;
  const auto [lowest, highest] = std::ranges::minmax(heights);
  return LargestDifference(InUse(m_Grid.Surface().Lattice(), m_Grid.Surface().Lattice().Heights()), heights) /
         (highest - lowest);
}
