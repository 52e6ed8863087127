#include "quadtree/CQuadT.h"

#include <bit>

#include "base/Console.h"
#include "lattice/CLattice.h"
#include "quadtree/CEdge.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/TreeNormals.h"

CQuadT::CQuadT(CQuadTree& tree, int x0, int y0, int level, const std::array<CEdge*, 4>& edges)
    : m_pTree(&tree),
      m_apEdges(edges),
      m_iX0(static_cast<std::int16_t>(x0)),
      m_iY0(static_cast<std::int16_t>(y0)),
      m_iLevel(static_cast<std::int8_t>(level)),
      m_bStop(level == 0) {
  for (CEdge* edge : m_apEdges) edge->SetLeaf(m_bStop);
}

CLattice& CQuadT::Lattice() const { return m_pTree->Lattice(); }

std::array<CEdge*, 4> CQuadT::InnerEdges() const {
  return {m_pChildren[0].m_apEdges[kRight], m_pChildren[1].m_apEdges[kTop], m_pChildren[3].m_apEdges[kRight],
          m_pChildren[0].m_apEdges[kTop]};
}

CCellRect CQuadT::ModelRect() const {
  const CLattice& lattice = Lattice();
  const double x = lattice.XOf(m_iX0);
  const double y = lattice.YOf(m_iY0);
  return {x, y, lattice.XOf(X1()) - x, lattice.YOf(Y1()) - y};
}

void CQuadT::SetFlags(std::uint32_t mask) {
  if ((mask & ~m_uFlags & CellFlag::kTriangles) != 0) m_pTree->ForgetLeaves();
  m_uFlags |= mask;
}

void CQuadT::ClearFlags(std::uint32_t mask) {
  if ((mask & m_uFlags & CellFlag::kTriangles) != 0) m_pTree->ForgetLeaves();
  m_uFlags &= ~mask;
}

CCellSurface CQuadT::Surface() const { return CellSurface(*this, Lattice()); }

Vector3 CQuadT::TriangleCentre(int k) const {
  const CCellRect r = ModelRect();
  const double cx = r.x + r.width / 2;
  const double cy = r.y + r.height / 2;
  const double z = Surface().m_afTriangleZ[static_cast<std::size_t>(k)];
  switch (k) {
    case kBottom:
      return {cx, (2 * r.y + cy) / 3, z};
    case kRight:
      return {(2 * (r.x + r.width) + cx) / 3, cy, z};
    case kTop:
      return {cx, (2 * (r.y + r.height) + cy) / 3, z};
    default:
      return {(2 * r.x + cx) / 3, cy, z};
  }
}

void CQuadT::MarkCornersInUse() {
  CLattice& lattice = Lattice();
  for (int k = 0; k < 4; ++k) {
    const auto [column, row] = Corner(k);
    lattice.Set(lattice.Index(column, row), PointFlag::kInUse);
  }
}

void CQuadT::InterpolateMidpoints() {
  CLattice& lattice = Lattice();
  std::vector<double>& z = lattice.Heights();
  const double z0 = z[lattice.Index(X0(), Y0())];
  const double z1 = z[lattice.Index(X1(), Y0())];
  const double z2 = z[lattice.Index(X1(), Y1())];
  const double z3 = z[lattice.Index(X0(), Y1())];
  const double bottom = z[lattice.Index(XMid(), Y0())] = (z0 + z1) / 2;
  const double top = z[lattice.Index(XMid(), Y1())] = (z3 + z2) / 2;
  const double left = z[lattice.Index(X0(), YMid())] = (z0 + z3) / 2;
  const double right = z[lattice.Index(X1(), YMid())] = (z1 + z2) / 2;
  z[lattice.Index(XMid(), YMid())] = (right + left + bottom + top) / 4;
}

void CQuadT::subdiv(bool interpolate) {
  if (!m_bStop) {
    Console() << "Error CQuadT::subdiv() Attempt to subdivise a non-leaf cell\n";
    return;
  }
  if (!HasChildren()) {
    Console() << "Error CQuadT::subdiv()  Attempt to subdivide a highest level cell\n";
    return;
  }
  m_pTree->ForgetLeaves();
  m_bStop = false;
  for (int k = 0; k < 4; ++k) {
    Child(k).m_bStop = true;
    Child(k).MarkCornersInUse();
  }
  if (interpolate) InterpolateMidpoints();
  for (CEdge* edge : m_apEdges) edge->Open();
  for (CEdge* edge : InnerEdges()) edge->SetLeaf(true);
}

CQuadT* CQuadT::subdiv(int x0, int y0, int x1, int y1, std::uint32_t flags) {
  const CQuadT& root = m_pTree->Root();
  if (x0 < root.X0() || x1 > root.X1() || y0 < root.Y0() || y1 > root.Y1()) return nullptr;
  CQuadT* cell = FindCell(x0, y0, x1, y1);
  if (cell == nullptr) return nullptr;
  if (!cell->HasRect(x0, y0, x1, y1)) return cell->subdiv_t(x0, y0, x1, y1, flags);
  if ((flags & CellFlag::kMarkable) != 0) {
    cell->SetFlags(flags);
    if (std::popcount(cell->m_uFlags & CellFlag::kTriangles) == 3) cell->SetFlags(CellFlag::kTriangles);
    return cell;
  }
  if (cell->m_bStop) return cell;
  if (cell->HasChildren()) return cell->subdiv_t2();
  Console() << "Error CQuadT::subdiv   stop = 0, but the cell is a leaf\n";
  return &m_pTree->Root();
}

CQuadT* CQuadT::subdiv_t(int x0, int y0, int x1, int y1, std::uint32_t flags) {
  CQuadT* cell = this;
  while (!cell->HasRect(x0, y0, x1, y1)) {
    if (!cell->HasChildren()) {
      Console() << "Error CQuadT::subdiv_t\t\tThis message should NEVER happen\n";
      return cell;
    }
    cell->subdiv(false);
    cell = cell->ChildHolding(x0, y0, x1, y1);
    if (cell == nullptr) return nullptr;
  }
  if ((flags & CellFlag::kMarkable) != 0) cell->SetFlags(flags);
  return cell;
}

CQuadT* CQuadT::subdiv_t2() {
  if (m_bStop) return this;
  if (!HasChildren()) {
    Console() << "Error CQuadT::subdiv_t2() The highest level has been reached without the stop barrier\n";
    return this;
  }
  m_pTree->ForgetLeaves();
  for (const int k : {0, 1, 3, 2}) Child(k).subdiv_t2();
  for (int k = 0; k < 4; ++k) Child(k).m_bStop = false;
  for (CEdge* edge : InnerEdges()) edge->SetLeaf(false);
  Lattice().Clear(Lattice().Index(XMid(), YMid()), PointFlag::kInUse);
  for (const int side : {kLeft, kRight, kTop, kBottom}) CloseSide(side);
  m_bStop = true;
  return this;
}

void CQuadT::CloseSide(int side) {
  const int dx = side == kLeft ? -Size() : side == kRight ? Size() : 0;
  const int dy = side == kBottom ? -Size() : side == kTop ? Size() : 0;
  const CQuadT* neighbour = m_pTree->Root().FindCell(X0() + dx, Y0() + dy, X1() + dx, Y1() + dy);
  const bool refined = neighbour != nullptr && !neighbour->m_bStop && neighbour->m_iLevel == m_iLevel;
  if (refined) {
    Edge(side).SetLeaf(false);
  } else {
    Edge(side).Close(Lattice());
  }
}

// Only the south-west quadrant checks the far sides: a rectangle that leaves another quadrant is refused one level
// further down.
CQuadT* CQuadT::ChildHolding(int x0, int y0, int x1, int y1) {
  if (x0 >= XMid()) return &Child(y0 < YMid() ? 1 : 2);
  if (y0 >= YMid()) return &Child(3);
  return x1 <= XMid() && y1 <= YMid() ? &Child(0) : nullptr;
}

CQuadT* CQuadT::FindCell(int x0, int y0, int x1, int y1) {
  CQuadT* cell = this;
  while (cell != nullptr) {
    const bool apart = x1 <= cell->X0() || x0 >= cell->X1() || y1 <= cell->Y0() || y0 >= cell->Y1();
    if (apart && cell->X0() == 0 && cell->Y0() == 0) return nullptr;
    if (x0 < cell->X0() || x1 > cell->X1() || y0 < cell->Y0() || y1 > cell->Y1()) {
      Console() << "Error : CQuadT::subdiv the cell you want is not in the current one\n";
      return nullptr;
    }
    if (cell->HasRect(x0, y0, x1, y1) || !cell->HasChildren() || cell->m_bStop) return cell;
    cell = cell->ChildHolding(x0, y0, x1, y1);
  }
  return nullptr;
}

bool CQuadT::IsPointInsideDiscontinuity(double gx, double gy) const {
  const CQuadT* cell = this;
  while (!cell->m_bStop) {
    if (!cell->HasChildren()) {
      Console() << "Error CQuadT::IsPointInsideDiscontinuity()\t\tstop == 0, but leaf cell\n";
      return true;
    }
    const bool right = gx >= (cell->X0() + cell->X1()) * 0.5;
    const bool upper = gy >= (cell->Y0() + cell->Y1()) * 0.5;
    cell = &cell->Child(right ? (upper ? 2 : 1) : (upper ? 3 : 0));
  }
  return cell->HasFlag(CellFlag::kTriangles);
}
