#include "constraints/TearScan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "base/Console.h"
#include "constraints/FinestCells.h"
#include "constraints/GridSegment.h"
#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

namespace {

constexpr std::uint32_t kBottomBit = 1U << kBottom;
constexpr std::uint32_t kRightBit = 1U << kRight;
constexpr std::uint32_t kTopBit = 1U << kTop;
constexpr std::uint32_t kLeftBit = 1U << kLeft;

// Triangles by the axis of the walk. Its columns run along the major axis, its rows across it.
struct CTriangles {
  std::uint32_t m_uBefore;  ///< on the side where a cell's column begins
  std::uint32_t m_uAfter;   ///< on the side where it ends
  std::uint32_t m_uBelow;
  std::uint32_t m_uAbove;
  std::uint32_t m_uLowerHalf;
  std::uint32_t m_uUpperHalf;
};
constexpr CTriangles kAlongX{kLeftBit, kRightBit, kBottomBit, kTopBit, kBottomBit | kRightBit, kTopBit | kLeftBit};
constexpr CTriangles kAlongY{kBottomBit, kTopBit, kLeftBit, kRightBit, kBottomBit | kLeftBit, kRightBit | kTopBit};

struct CPoint {
  double x;
  double y;
};

// The cell that holds a coordinate; at the far border, the last one.
int CellOf(double g, int cells) { return std::clamp(static_cast<int>(std::floor(g)), 0, cells - 1); }

// The triangles of the unit cell that a piece inside it passes, both where it runs along their common diagonal.
std::uint32_t PassedTriangles(const CTriangles& t, const CPoint& from, const CPoint& to) {
  // Distances from the two diagonals; between their zeros the piece stays in one triangle.
  const auto rising = [](const CPoint& p) { return p.x - p.y; };
  const auto falling = [](const CPoint& p) { return p.x + p.y - 1.0; };
  const auto zero = [](double a, double b) { return (a < 0) != (b < 0) ? a / (a - b) : 1.0; };
  std::array<double, 4> breaks{0.0, zero(rising(from), rising(to)), zero(falling(from), falling(to)), 1.0};
  std::ranges::sort(breaks);
  const bool isPoint = from.x == to.x && from.y == to.y;
  std::uint32_t passed = 0;
  for (std::size_t k = 0; k + 1 < breaks.size(); ++k) {
    if (breaks[k] == breaks[k + 1] && !isPoint) continue;
    const double middle = (breaks[k] + breaks[k + 1]) / 2;
    const CPoint p{from.x + middle * (to.x - from.x), from.y + middle * (to.y - from.y)};
    const double r = rising(p);
    const double f = falling(p);
    if (r >= 0 && f <= 0) passed |= t.m_uBelow;
    if (r >= 0 && f >= 0) passed |= t.m_uAfter;
    if (r <= 0 && f >= 0) passed |= t.m_uAbove;
    if (r <= 0 && f <= 0) passed |= t.m_uBefore;
  }
  return passed;
}

// Walks a chain of cells, each sharing a side with the next, from the cell of one end to that of the other. Every side
// that the chain steps over gets the triangles on both of its sides marked, which cuts it; and as consecutive segments
// share the cell of their node, no way through uncut edges leads across a curve. Where the line passes exactly through
// a lattice point, the chain changes row before it changes column.
class CTearWalk {
 public:
  CTearWalk(CQuadTree& tree, MajorAxis axis, const CGridSegment& s)
      : m_pTree(&tree),
        m_Axis(axis),
        m_Triangles(axis == MajorAxis::X ? kAlongX : kAlongY),
        m_S(s.x0 <= s.x1 ? s : s.Reversed()),
        m_iCells(tree.Lattice().PointsPerSide() - 1),
        m_iStep(m_S.y1 < m_S.y0 ? -1 : 1),
        m_fSlope(m_S.x1 > m_S.x0 ? (m_S.y1 - m_S.y0) / (m_S.x1 - m_S.x0) : 0.0) {}

  void Walk();

 private:
  double LineAt(double x) const { return m_S.y0 + (x - m_S.x0) * m_fSlope; }
  int RowAfter(int column, int row, int lastRow) const;
  std::uint32_t InnerMask(int row, int rowIn, int rowOut) const;
  std::uint32_t BorderTriangles(double x, double y) const;
  static CPoint WithinCell(double x, double y, int column, int row);
  void WalkColumn(int column, int rowIn, int rowOut, bool isFirst, bool isLast);
  void Mark(int column, int row, std::uint32_t mask);

  CQuadTree* m_pTree;
  MajorAxis m_Axis;
  const CTriangles& m_Triangles;
  CGridSegment m_S;
  int m_iCells;
  int m_iStep;
  double m_fSlope;
};

void CTearWalk::Walk() {
  const int last = CellOf(m_S.x1, m_iCells);
  const int lastRow = CellOf(m_S.y1, m_iCells);
  const int first = CellOf(m_S.x0, m_iCells);
  int row = CellOf(m_S.y0, m_iCells);
  for (int column = first; column <= last; ++column) {
    const int rowOut = column == last ? lastRow : RowAfter(column, row, lastRow);
    WalkColumn(column, row, rowOut, column == first, column == last);
    row = rowOut;
  }
}

// The row in which the line leaves a column.
int CTearWalk::RowAfter(int column, int row, int lastRow) const {
  const double y = LineAt(column + 1);
  const int after = static_cast<int>(m_iStep > 0 ? std::floor(y) : std::ceil(y) - 1.0);
  return std::clamp(after, std::min(row, lastRow), std::max(row, lastRow));
}

// The bits of a cell that the line passes from side to side: all where it stays in the row; the half towards the new
// row where it leaves the row, and the opposite half of the cell that it enters.
std::uint32_t CTearWalk::InnerMask(int row, int rowIn, int rowOut) const {
  if (rowIn == rowOut || (row != rowIn && row != rowOut)) return CellFlag::kTriangles;
  return (row == rowIn) == (m_iStep > 0) ? m_Triangles.m_uUpperHalf : m_Triangles.m_uLowerHalf;
}

// An end on the border of the model reaches it even where it only touches the triangle there, at a corner of its cell.
std::uint32_t CTearWalk::BorderTriangles(double x, double y) const {
  return (x == 0.0 ? m_Triangles.m_uBefore : 0U) | (x == m_iCells ? m_Triangles.m_uAfter : 0U) |
         (y == 0.0 ? m_Triangles.m_uBelow : 0U) | (y == m_iCells ? m_Triangles.m_uAbove : 0U);
}

// Relative to the cell's corner; rounding must not put a crossing outside the cell.
CPoint CTearWalk::WithinCell(double x, double y, int column, int row) {
  return {std::clamp(x - column, 0.0, 1.0), std::clamp(y - row, 0.0, 1.0)};
}

void CTearWalk::WalkColumn(int column, int rowIn, int rowOut, bool isFirst, bool isLast) {
  const auto columnAt = [this](double y) { return m_S.x0 + (y - m_S.y0) / m_fSlope; };
  const std::uint32_t ahead = m_iStep > 0 ? m_Triangles.m_uAbove : m_Triangles.m_uBelow;
  const std::uint32_t behind = m_iStep > 0 ? m_Triangles.m_uBelow : m_Triangles.m_uAbove;
  for (int row = rowIn;; row += m_iStep) {
    const bool starts = isFirst && row == rowIn;
    const bool ends = isLast && row == rowOut;
    std::uint32_t mask =
        (starts ? BorderTriangles(m_S.x0, m_S.y0) : 0U) | (ends ? BorderTriangles(m_S.x1, m_S.y1) : 0U);
    CPoint from = WithinCell(m_S.x0, m_S.y0, column, row);
    CPoint to = WithinCell(m_S.x1, m_S.y1, column, row);
    if (!starts && row == rowIn) {
      mask |= m_Triangles.m_uBefore;
      from = WithinCell(column, LineAt(column), column, row);
    } else if (!starts) {
      mask |= behind;
      const int border = m_iStep > 0 ? row : row + 1;
      from = WithinCell(columnAt(border), border, column, row);
    }
    if (!ends && row == rowOut) {
      mask |= m_Triangles.m_uAfter;
      to = WithinCell(column + 1, LineAt(column + 1), column, row);
    } else if (!ends) {
      mask |= ahead;
      const int border = m_iStep > 0 ? row + 1 : row;
      to = WithinCell(columnAt(border), border, column, row);
    }
    mask |= starts || ends ? PassedTriangles(m_Triangles, from, to) : InnerMask(row, rowIn, rowOut);
    Mark(column, row, mask);
    if (row == rowOut) return;
  }
}

void CTearWalk::Mark(int column, int row, std::uint32_t mask) {
  const int i = m_Axis == MajorAxis::X ? column : row;
  const int j = m_Axis == MajorAxis::X ? row : column;
  // The cell must be there before it is marked, or three marked triangles would not make four.
  RefineToCell(*m_pTree, i, j);
  m_pTree->Root().subdiv(i, j, i + 1, j + 1, mask);
}

}  // namespace

void ScanTear(CQuadTree& tree, MajorAxis axis, CGridSegment s) {
  if (!s.IsFinite()) {
    Console() << "Error ScanTear : a node is not at a finite place\n";
    return;
  }
  if (!s.Clip(tree.Lattice().PointsPerSide() - 1)) return;
  CTearWalk(tree, axis, axis == MajorAxis::X ? s : s.Transposed()).Walk();
}
