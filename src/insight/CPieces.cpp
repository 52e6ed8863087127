#include "insight/CPieces.h"

#include <algorithm>
#include <array>
#include <utility>

#include "insight/CGroups.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"

namespace {

// The leaf edges along the sides of leaves, and between which points each lies.
class CLeafEdges {
 public:
  CLeafEdges(const CQuadTree& tree, const CPointOrder& order) : m_Tree(tree), m_Order(order) {}

  // visit(leaf, side, edge, ends); an edge between two leaves comes twice.
  template <typename Visit>
  void ForEach(const Visit& visit) const {
    for (const CLeaf& leaf : m_Tree.Leaves()) {
      for (int side = 0; side < 4; ++side) {
        VisitHalves(leaf.m_pCell->Edge(side),
                    [&](const CEdge& edge) { visit(leaf, static_cast<unsigned>(side), edge, EndsOf(edge)); });
      }
    }
  }

 private:
  template <typename Visit>
  static void VisitHalves(const CEdge& edge, const Visit& visit) {
    if (edge.IsLeaf()) return visit(edge);
    VisitHalves(edge.Half(0), visit);
    VisitHalves(edge.Half(1), visit);
  }
  std::uint32_t PointAt(int column, int row) const {
    return m_Order.ScanOf(static_cast<std::size_t>(m_Order.NumberOf(m_Tree.Lattice().Index(column, row))));
  }
  CPieces::CJoint EndsOf(const CEdge& edge) const {
    return {PointAt(edge.Xa(), edge.Ya()), PointAt(edge.Xb(), edge.Yb())};
  }

  const CQuadTree& m_Tree;
  const CPointOrder& m_Order;
};

}  // namespace

void CPieces::Build(const CQuadTree& tree, const CPointOrder& order) {
  const CLattice& lattice = tree.Lattice();
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  m_aPlaces.clear();
  for (std::size_t k = 0; k < order.Count(); ++k) {
    const std::uint32_t point = order.PointAtScan(k);
    const std::uint32_t row = point / side;
    m_aPlaces.push_back({lattice.XOf(point % side), lattice.YOf(row)});
  }
  CGroups groups(order.Count());
  m_aCuts.clear();
  CLeafEdges(tree, order).ForEach([&](const CLeaf& /*leaf*/, unsigned /*side*/, const CEdge& edge, const CJoint& ends) {
    if (edge.HasBothMarks()) {
      m_aCuts.push_back(ends);
    } else {
      groups.Join(ends.m_uA, ends.m_uB);
    }
  });
  std::vector<std::uint32_t> roots(order.Count());
  for (std::uint32_t point = 0; point < roots.size(); ++point) roots[point] = groups.Of(point);
  Number(roots);
  MeasureBoxes();
  MeasureAreas(tree, order);
}

// Pieces are numbered by their first points. Cut edges within a piece, at the end of a tear, part nothing.
void CPieces::Number(std::span<const std::uint32_t> roots) {
  m_auPiece.resize(roots.size());
  m_aPieces.clear();
  for (std::uint32_t point = 0; point < roots.size(); ++point) {
    if (roots[point] == point) {
      m_auPiece[point] = static_cast<std::uint32_t>(m_aPieces.size());
      m_aPieces.emplace_back();
    } else {
      m_auPiece[point] = m_auPiece[roots[point]];
    }
    ++m_aPieces[m_auPiece[point]].m_uEnd;
  }
  std::size_t first = 0;
  for (CPiece& piece : m_aPieces) {
    const std::size_t count = piece.m_uEnd;
    piece.m_uFirst = piece.m_uEnd = first;
    first += count;
  }
  m_auPoints.resize(roots.size());
  for (std::uint32_t point = 0; point < roots.size(); ++point) m_auPoints[m_aPieces[m_auPiece[point]].m_uEnd++] = point;
  std::erase_if(m_aCuts, [this](const CJoint& cut) { return m_auPiece[cut.m_uA] == m_auPiece[cut.m_uB]; });
  std::ranges::sort(m_aCuts, {}, [](const CJoint& cut) { return std::pair(cut.m_uA, cut.m_uB); });
  m_aCuts.erase(std::unique(m_aCuts.begin(), m_aCuts.end()), m_aCuts.end());
}

void CPieces::MeasureBoxes() {
  for (CPiece& piece : m_aPieces) {
    const CPlanePoint& first = m_aPlaces[m_auPoints[piece.m_uFirst]];
    piece.m_Box = {first.x, first.x, first.y, first.y};
    for (std::size_t k = piece.m_uFirst; k < piece.m_uEnd; ++k) {
      const CPlanePoint& place = m_aPlaces[m_auPoints[k]];
      piece.m_Box.x0 = std::min(piece.m_Box.x0, place.x);
      piece.m_Box.x1 = std::max(piece.m_Box.x1, place.x);
      piece.m_Box.y0 = std::min(piece.m_Box.y0, place.y);
      piece.m_Box.y1 = std::max(piece.m_Box.y1, place.y);
    }
  }
}

void CPieces::MeasureAreas(const CQuadTree& tree, const CPointOrder& order) {
  ForEachSlope(tree, order, [this](const CSlope& slope) {
    CPiece& piece = m_aPieces[m_auPiece[slope.m_Ends.m_uA]];
    piece.m_fArea += slope.m_fArea / 2;
    (slope.m_bAlongX ? piece.m_fAlongX : piece.m_fAlongY) += slope.m_fArea;
  });
}

void CPieces::ForEachSlope(const CQuadTree& tree, const CPointOrder& order,
                           const std::function<void(const CSlope&)>& visit) {
  const CLattice& lattice = tree.Lattice();
  CLeafEdges(tree, order).ForEach([&](const CLeaf& leaf, unsigned side, const CEdge& edge, const CJoint& ends) {
    if ((leaf.m_uMarked >> side & 1U) != 0) return;
    const bool alongX = edge.IsHorizontal();
    const double length = edge.Length() * (alongX ? lattice.StepX() : lattice.StepY());
    // Of a triangle whose tip is the centre of the leaf.
    const double depth = leaf.m_uSize * (alongX ? lattice.StepY() : lattice.StepX()) / 2;
    visit({ends, length, length * depth, alongX});
  });
}
