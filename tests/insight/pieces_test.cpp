#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "insight/CPieces.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

using CEnds = std::pair<std::uint32_t, std::uint32_t>;

// What `CPieces` is to find, edge by edge.
class CAllEdges {
 public:
  explicit CAllEdges(const CTestTree& test) : m_Test(test) {
    test.m_Tree.ForEachLeaf([this](const CQuadT& leaf) {
      for (int side = 0; side < 4; ++side) Take(leaf, side, leaf.Edge(side));
    });
  }
  // The first point of the piece of each point.
  std::vector<std::uint32_t> Pieces() const {
    std::vector<std::uint32_t> first(m_Test.m_Order.Count());
    for (std::uint32_t point = 0; point < first.size(); ++point) first[point] = point;
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto& [a, b] : m_Joined) {
        changed = changed || first[a] != first[b];
        first[a] = first[b] = std::min(first[a], first[b]);
      }
    }
    return first;
  }
  const std::set<CEnds>& Cuts() const { return m_Cut; }
  // Of triangles in no tear, by one of their points, lattice cells.
  const std::map<std::uint32_t, double>& Areas() const { return m_Areas; }

 private:
  void Take(const CQuadT& leaf, int side, const CEdge& edge) {
    if (!edge.IsLeaf()) {
      Take(leaf, side, edge.Half(0));
      Take(leaf, side, edge.Half(1));
      return;
    }
    const CEnds ends{PointAt(edge.Xa(), edge.Ya()), PointAt(edge.Xb(), edge.Yb())};
    (edge.HasBothMarks() ? m_Cut : m_Joined).insert(ends);
    if (!leaf.HasFlag(1U << side)) m_Areas[ends.first] += edge.Length() * leaf.Size() / 4;
  }
  std::uint32_t PointAt(int column, int row) const {
    const auto number = m_Test.m_Order.NumberOf(m_Test.m_Lattice.Index(column, row));
    return m_Test.m_Order.ScanOf(static_cast<std::size_t>(number));
  }

  const CTestTree& m_Test;
  std::set<CEnds> m_Joined;
  std::set<CEnds> m_Cut;
  std::map<std::uint32_t, double> m_Areas;
};

RC_GTEST_PROP(PiecesProperty, AreWhatUncutEdgesJoin, (const std::vector<CTreeOp>& changes)) {
  CTestTree test(4, 2);
  for (const CTreeOp& change : changes) Apply(test.m_Tree, change);
  test.Settle();
  test.m_Tree.ListLeaves();
  CPieces pieces;
  pieces.Build(test.m_Tree, test.m_Order);
  const CAllEdges edges(test);
  const std::vector<std::uint32_t> first = edges.Pieces();
  RC_ASSERT(pieces.PointCount() == first.size());
  std::map<std::uint32_t, double> areas;
  for (const auto& [point, area] : edges.Areas()) areas[first[point]] += area;
  for (std::uint32_t point = 0; point < first.size(); ++point) {
    const std::uint32_t piece = pieces.PieceAt(point);
    RC_ASSERT(pieces.PointsOf(piece).front() == first[point]);
    const CLattice& lattice = test.m_Lattice;
    const double area = areas[first[point]] * lattice.StepX() * lattice.StepY();
    RC_ASSERT(std::abs(pieces[piece].m_fArea - area) <= 1e-9 * area);
  }
  std::set<CEnds> parting;
  for (const CEnds& cut : edges.Cuts()) {
    if (first[cut.first] != first[cut.second]) parting.insert(cut);
  }
  RC_ASSERT(std::ranges::equal(pieces.Cuts(), parting, [](const CPieces::CJoint& cut, const CEnds& ends) {
    return cut.m_uA == ends.first && cut.m_uB == ends.second;
  }));
}

}  // namespace
