#include "quadtree/CQuadTree.h"

#include <algorithm>
#include <bit>

#include "base/Console.h"
#include "lattice/CLattice.h"
#include "quadtree/CSaveQuadT.h"

namespace {

// On each level every lattice line of that spacing carries one edge per cell side.
std::size_t EdgeCount(int rootLevel) {
  std::size_t count = 0;
  for (int level = 0; level <= rootLevel; ++level) {
    const std::size_t cells = std::size_t{1} << (rootLevel - level);
    count += 2 * cells * (cells + 1);
  }
  return count;
}

std::size_t CellCount(int rootLevel) { return ((std::size_t{4} << (2 * rootLevel)) - 1) / 3; }

// Bit b of the argument goes to bit 2b.
std::size_t SpreadBits(unsigned value) {
  std::size_t v = value;
  v = (v | (v << 8)) & 0x00FF00FF;
  v = (v | (v << 4)) & 0x0F0F0F0F;
  v = (v | (v << 2)) & 0x33333333;
  v = (v | (v << 1)) & 0x55555555;
  return v;
}

// For a constant and a changeable tree alike.
template <typename Cell>
Cell* ActiveLeafAt(Cell& root, double gx, double gy) {
  Cell* cell = &root;
  // Written as "outside" so that not-a-number coordinates pass and are reported below.
  if (gx < cell->X0() || gx > cell->X1() || gy < cell->Y0() || gy > cell->Y1()) return nullptr;
  while (!cell->IsActive()) {
    if (!cell->HasChildren()) {
      Console() << "Error CQuadT::PointInCell_g() stop == 0 but the highest level has been reached\n";
      return nullptr;
    }
    const int xm = cell->XMid();
    const int ym = cell->YMid();
    if (gx < xm && gy < ym) {
      cell = &cell->Child(0);
    } else if (gx >= xm && gy < ym) {
      cell = &cell->Child(1);
    } else if (gx >= xm && gy >= ym) {
      cell = &cell->Child(2);
    } else if (gx < xm && gy >= ym) {
      cell = &cell->Child(3);
    } else {
      Console() << "Error CQuadT::PointInCell_g() This message should NEVER appear !!\n";
      return nullptr;
    }
  }
  return cell;
}

}  // namespace

CQuadTree::CQuadTree(CLattice& lattice) : CQuadTree(lattice, lattice.Level()) {}

CQuadTree::CQuadTree(CLattice& lattice, int level) : m_pLattice(&lattice), m_Edges(EdgeCount(level)) {
  const int n = 1 << level;
  m_aCells.reserve(CellCount(level));
  m_aLevelStart.resize(static_cast<std::size_t>(level) + 1);
  CEdge* bottom = m_Edges.Add(CEdge(0, 0, n, 0));
  CEdge* right = m_Edges.Add(CEdge(n, 0, n, n));
  CEdge* top = m_Edges.Add(CEdge(0, n, n, n));
  CEdge* left = m_Edges.Add(CEdge(0, 0, 0, n));
  m_aCells.emplace_back(*this, 0, 0, level, std::array<CEdge*, 4>{bottom, right, top, left});
  std::size_t parent = 0;
  for (int l = level - 1; l >= 0; --l) {
    m_aLevelStart[static_cast<std::size_t>(l)] = m_aCells.size();
    for (const std::size_t end = m_aCells.size(); parent < end; ++parent) CreateChildren(m_aCells[parent]);
  }
}

void CQuadTree::CreateChildren(CQuadT& cell) {
  const int x0 = cell.X0();
  const int y0 = cell.Y0();
  const int x1 = cell.X1();
  const int y1 = cell.Y1();
  const int xm = cell.XMid();
  const int ym = cell.YMid();
  CEdge* lower = m_Edges.Add(CEdge(xm, y0, xm, ym));
  CEdge* upper = m_Edges.Add(CEdge(xm, ym, xm, y1));
  CEdge* left = m_Edges.Add(CEdge(x0, ym, xm, ym));
  CEdge* right = m_Edges.Add(CEdge(xm, ym, x1, ym));
  for (int side = 0; side < 4; ++side) cell.Edge(side).subdiv(m_Edges);
  const auto half = [&cell](Side side, int k) { return &cell.Edge(side).Half(k); };
  const int level = cell.Level() - 1;
  using Edges = std::array<CEdge*, 4>;
  cell.m_pChildren = &m_aCells.emplace_back(*this, x0, y0, level, Edges{half(kBottom, 0), lower, left, half(kLeft, 0)});
  m_aCells.emplace_back(*this, xm, y0, level, Edges{half(kBottom, 1), half(kRight, 0), right, lower});
  m_aCells.emplace_back(*this, xm, ym, level, Edges{right, half(kRight, 1), half(kTop, 1), upper});
  m_aCells.emplace_back(*this, x0, ym, level, Edges{left, upper, half(kTop, 0), half(kLeft, 1)});
}

// Within a level the cells lie depth-first, so that their numbers have a digit per generation [Gargantini1982]. Per bit
// of (i, j) the child order SW, SE, NE, NW makes the digit 2 j + (i xor j).
std::size_t CQuadTree::CellNumber(int level, int i, int j) const {
  const auto column = static_cast<unsigned>(i);
  const auto row = static_cast<unsigned>(j);
  return m_aLevelStart[static_cast<std::size_t>(level)] + (SpreadBits(column ^ row) | (SpreadBits(row) << 1));
}

const CEdge& CQuadTree::HorizontalEdge(int level, int x, int y) const {
  const int last = (1 << (Level() - level)) - 1;
  const int j = y >> level;
  return j <= last ? CellAt(level, x >> level, j).Edge(kBottom) : CellAt(level, x >> level, last).Edge(kTop);
}

const CEdge& CQuadTree::VerticalEdge(int level, int x, int y) const {
  const int last = (1 << (Level() - level)) - 1;
  const int i = x >> level;
  return i <= last ? CellAt(level, i, y >> level).Edge(kLeft) : CellAt(level, last, y >> level).Edge(kRight);
}

void CQuadTree::Reset(int depth) {
  for (CQuadT& cell : m_aCells) cell.ClearFlags(~0U);
  m_aiSelectedCorners.clear();
  RefreshEdgeMarks();
  SetStartLevel(depth);
}

void CQuadTree::SetStartLevel(int depth) {
  ForgetLeaves();
  m_pLattice->ClearAll(PointFlag::kInUse);
  for (CQuadT& cell : m_aCells) {
    cell.m_bStop = Level() - cell.Level() == depth;
    if (cell.m_bStop) cell.MarkCornersInUse();
  }
  // Each edge hangs below the cell that introduced it, the four outer ones below the root's side.
  for (int side = 0; side < 4; ++side) Root().Edge(side).SetLeafByDepth(depth);
  for (const CQuadT& cell : m_aCells) {
    if (!cell.HasChildren()) continue;
    const int generation = Level() - cell.Level();
    for (CEdge* edge : cell.InnerEdges()) edge->SetLeafByDepth(depth - generation - 1);
  }
}

void CQuadTree::Replay(const CSubdivisionRecord& wanted, int depth) {
  m_pLattice->ClearAll(PointFlag::kCrease);
  for (CQuadT& cell : m_aCells) cell.ClearFlags(~CellFlag::kSelected);
  SetStartLevel(depth);
  ReplayNode(Root(), wanted.Root());
}

void CQuadTree::ReplayNode(CQuadT& cell, const CSaveQuadT& saved) {
  if (saved.IsLeaf()) {
    if (!cell.IsActive()) Root().subdiv(cell.X0(), cell.Y0(), cell.X1(), cell.Y1(), 0);
    return;
  }
  if (cell.IsActive()) cell.subdiv(true);
  if (!cell.HasChildren()) return;
  for (int k = 0; k < 4; ++k) ReplayNode(cell.Child(k), saved.Child(k));
}

bool CQuadTree::IsReached(int level, int i, int j) const {
  const int cells = 1 << (Level() - level);
  if (i < 0 || j < 0 || i >= cells || j >= cells) return false;
  for (int up = 1; level + up <= Level(); ++up) {
    if (CellAt(level + up, i >> up, j >> up).IsActive()) return false;
  }
  return true;
}

const CEdge* CQuadTree::FindEdge(int xa, int ya, int xb, int yb) const {
  const int side = 1 << Level();
  if (xa < 0 || ya < 0 || xb > side || yb > side) return nullptr;
  const bool straight = (ya == yb && xb > xa) || (xa == xb && yb > ya);
  const int length = (xb - xa) + (yb - ya);
  if (!straight || !std::has_single_bit(static_cast<unsigned>(length))) return nullptr;
  const bool horizontal = ya == yb;
  if ((horizontal ? xa : ya) % length != 0 || (horizontal ? ya : xa) % length != 0) return nullptr;
  const int level = std::countr_zero(static_cast<unsigned>(length));
  const CEdge& edge = horizontal ? HorizontalEdge(level, xa, ya) : VerticalEdge(level, xa, ya);
  const int i = xa >> level;
  const int j = ya >> level;
  const bool reached = IsReached(level, i, j) || (horizontal ? IsReached(level, i, j - 1) : IsReached(level, i - 1, j));
  return reached ? &edge : nullptr;
}

const CQuadT* CQuadTree::PointInCell_g(double gx, double gy) const { return ActiveLeafAt(Root(), gx, gy); }

CQuadT* CQuadTree::PointInCell_g(double gx, double gy) { return ActiveLeafAt(Root(), gx, gy); }

const CQuadT* CQuadTree::PointInCell(double x, double y) const {
  const CExtent& e = m_pLattice->Extent();
  const bool inside = e.x0 < x && x < e.x1 && e.y0 < y && y < e.y1;
  return inside ? PointInCell_g(m_pLattice->ColumnOf(x), m_pLattice->RowOf(y)) : nullptr;
}

CQuadT* CQuadTree::getManualSetCell(double x, double y, CSaveQuadT*& saved) {
  if (PointInCell_g(x, y) == nullptr) {
    Console() << "Error CQuadT::getManualSetCell : The specified point " << x << ", " << y << "is not in the tree\n";
    return nullptr;
  }
  CQuadT* cell = &Root();
  while (!saved->IsLeaf() && saved->HasChildren()) {
    const bool right = x >= cell->XMid();
    const bool upper = y >= cell->YMid();
    const int k = right ? (upper ? 2 : 1) : (upper ? 3 : 0);
    saved = &saved->Child(k);
    cell = &cell->Child(k);
  }
  return cell;
}

bool CQuadTree::IsRectInOneCell(int x0, int y0, int x1, int y1) const {
  const auto within = [=](const CQuadT& cell) {
    return x0 >= cell.X0() && x1 <= cell.X1() && y0 >= cell.Y0() && y1 <= cell.Y1();
  };
  const CQuadT* cell = &Root();
  while (!cell->IsActive() && cell->HasChildren()) {
    const CQuadT* children = &cell->Child(0);
    const CQuadT* next = std::find_if(children, children + 4, within);
    if (next == children + 4) break;
    cell = next;
  }
  return within(*cell) && (cell->HasChildren() || cell->IsActive());
}

void CQuadTree::ForgetLeaves() {
  static std::uint64_t last = 0;
  m_bLeavesKnown = false;
  m_uRevision = ++last;
}

void CQuadTree::ListLeaves() {
  if (m_bLeavesKnown) return;
  m_aLeaves.clear();
  m_aCentres.clear();
  ForEachLeaf([this](const CQuadT& cell) {
    m_aLeaves.push_back({&cell, static_cast<std::uint32_t>(m_pLattice->Index(cell.X0(), cell.Y0())),
                         static_cast<std::uint32_t>(m_pLattice->CellIndex(cell.X0(), cell.Y0())), CLeaf::kMeanOfCorners,
                         static_cast<std::uint16_t>(cell.Size()),
                         static_cast<std::uint16_t>(cell.Flags() & CellFlag::kTriangles)});
    const auto split = [](const CEdge* edge) { return !edge->IsLeaf(); };
    if (cell.HasFlag(CellFlag::kTriangles) || std::ranges::any_of(cell.m_apEdges, split)) {
      m_aLeaves.back().m_uCentre = static_cast<std::uint32_t>(m_aCentres.size());
      m_aCentres.push_back(CentreWeightsOf(cell, *m_pLattice));
    }
  });
  m_bLeavesKnown = true;
}

int CQuadTree::LeafCount() const {
  int count = 0;
  ForEachLeaf([&count](const CQuadT&) { ++count; });
  return count;
}

void CQuadTree::RefreshEdgeMarks() {
  // Parents come before children in storage, as clearing a mark needs.
  for (CQuadT& cell : m_aCells) {
    cell.Edge(kBottom).Mark(EdgeMark::kAboveOrLeft, cell.HasFlag(1U << kBottom));
    cell.Edge(kRight).Mark(EdgeMark::kAboveOrLeft, cell.HasFlag(1U << kRight));
    cell.Edge(kTop).Mark(EdgeMark::kBelowOrRight, cell.HasFlag(1U << kTop));
    cell.Edge(kLeft).Mark(EdgeMark::kBelowOrRight, cell.HasFlag(1U << kLeft));
  }
  CQuadT& root = Root();
  root.Edge(kBottom).Mark(EdgeMark::kBelowOrRight, true);
  root.Edge(kRight).Mark(EdgeMark::kBelowOrRight, true);
  root.Edge(kTop).Mark(EdgeMark::kAboveOrLeft, true);
  root.Edge(kLeft).Mark(EdgeMark::kAboveOrLeft, true);
}
