#include "quadtree/CEdge.h"

#include <cassert>
#include <cmath>

#include "base/Console.h"
#include "lattice/CLattice.h"

CEdge* CEdgeArena::Add(const CEdge& edge) {
  assert(m_aEdges.size() < m_aEdges.capacity());
  return &m_aEdges.emplace_back(edge);
}

void CEdge::LogOneStepError() const {
  Console() << "Error : CEdge::subdiv Attempt to subdivise a 1*1 cell" << m_iXa << ", " << m_iYa << ", " << m_iXb
            << ", " << m_iYb << '\n';
}

void CEdge::subdiv(CEdgeArena& arena) {
  if (IsOneStepLong()) {
    LogOneStepError();
    return;
  }
  if (HasHalves()) return;
  m_bLeaf = false;
  m_pHalves = arena.Add(CEdge(m_iXa, m_iYa, XMid(), YMid()));
  arena.Add(CEdge(XMid(), YMid(), m_iXb, m_iYb));
}

void CEdge::Open() {
  if (!HasHalves()) {
    LogOneStepError();
    return;
  }
  if (!m_bLeaf) return;
  m_bLeaf = false;
  Half(0).m_bLeaf = true;
  Half(1).m_bLeaf = true;
}

void CEdge::Close(CLattice& lattice) {
  m_bLeaf = true;
  if (!HasHalves()) return;
  Half(0).m_bLeaf = false;
  Half(1).m_bLeaf = false;
  lattice.Clear(MidpointIndex(lattice), PointFlag::kInUse);
}

void CEdge::SetLeafByDepth(int depth) {
  m_bLeaf = depth == 0;
  if (!HasHalves()) return;
  Half(0).SetLeafByDepth(depth - 1);
  Half(1).SetLeafByDepth(depth - 1);
}

void CEdge::Mark(std::uint32_t mark, bool on) {
  m_uMarks = static_cast<std::uint8_t>(on ? (m_uMarks | mark) : (m_uMarks & ~mark));
  if (!HasHalves()) return;
  Half(0).Mark(mark, true);
  Half(1).Mark(mark, true);
}

bool CEdge::IsContinuous(WaveletMode mode) const {
  if (mode != WaveletMode::New) return true;
  if (m_bLeaf || !HasHalves()) return !HasBothMarks();
  return Half(0).IsContinuous(mode) && Half(1).IsContinuous(mode);
}

double CEdge::Length() const { return m_iXb != m_iXa ? m_iXb - m_iXa : m_iYb - m_iYa; }

double CEdge::DistanceTo(double x, double y) const {
  return IsHorizontal() ? std::abs(y - m_iYa) : std::abs(x - m_iXa);
}

const CEdge* CEdge::FindLeaf(double t) const {
  const bool horizontal = IsHorizontal();
  const bool inside = (horizontal ? m_iXa : m_iYa) <= t && t <= (horizontal ? m_iXb : m_iYb);
  if (!inside) return nullptr;
  const CEdge* edge = this;
  while (!edge->m_bLeaf) {
    if (!edge->HasHalves()) return nullptr;
    edge = &edge->Half(t >= (horizontal ? edge->XMid() : edge->YMid()) ? 1 : 0);
  }
  return edge;
}

void CEdge::AddAreaTerm(double x, double y, CLattice& lattice) const {
  if (m_bLeaf) {
    const double share = Length() * DistanceTo(x, y) * 0.25;
    lattice.Smoothness()[lattice.Index(m_iXa, m_iYa)] += share;
    lattice.Smoothness()[lattice.Index(m_iXb, m_iYb)] += share;
  } else if (HasHalves()) {
    Half(0).AddAreaTerm(x, y, lattice);
    Half(1).AddAreaTerm(x, y, lattice);
  }
}

std::size_t CEdge::MidpointIndex(const CLattice& lattice) const { return lattice.Index(XMid(), YMid()); }

double CEdge::MeanOfJoinedEnds(std::span<const double> values, const CLattice& lattice, WaveletMode mode) const {
  double sum = 0.0;
  int count = 0;
  if (Half(0).IsContinuous(mode)) {
    sum += values[lattice.Index(m_iXa, m_iYa)];
    ++count;
  }
  if (Half(1).IsContinuous(mode)) {
    sum += values[lattice.Index(m_iXb, m_iYb)];
    ++count;
  }
  return count > 0 ? sum / count : 0.0;
}

void CEdge::ComputeEdgeIfNeeded(std::span<double> values, CLattice& lattice, WaveletMode mode) const {
  if (m_bLeaf || !HasHalves()) {
    Console() << "Error CEdge::ComputeEdgeIfNeeded ; current CEdge is a leaf and shouldn't be\n";
    return;
  }
  const std::size_t midpoint = MidpointIndex(lattice);
  if (lattice.Has(midpoint, PointFlag::kComputed)) return;
  values[midpoint] += MeanOfJoinedEnds(values, lattice, mode);
  lattice.Set(midpoint, PointFlag::kComputed);
}

void CEdge::ComputeEdgeIfNeeded_W(std::span<const double> heights, std::span<double> coefs, CLattice& lattice,
                                  WaveletMode mode) const {
  if (m_bLeaf || !HasHalves()) {
    Console() << "Error CEdge::ComputeEdgeIfNeeded_W ; current CEdge is a leaf and shouldn't be\n";
    return;
  }
  const std::size_t midpoint = MidpointIndex(lattice);
  if (lattice.Has(midpoint, PointFlag::kComputed)) return;
  coefs[midpoint] = heights[midpoint] - MeanOfJoinedEnds(heights, lattice, mode);
  lattice.Set(midpoint, PointFlag::kComputed);
}
