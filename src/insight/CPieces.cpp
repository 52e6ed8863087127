#include "insight/CPieces.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "insight/CGroups.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"

namespace {

// One of the leaf edges along the sides of a leaf.
struct CSideEdge {
  CPieces::CJoint m_Ends;  // the left or lower one first
  double m_fLength;        // lattice steps
  bool m_bAlongX;
  bool m_bCut;
};

// The leaf edges along the sides of leaves, and between which points each lies.
class CLeafEdges {
 public:
  CLeafEdges(const CQuadTree& tree, const CPointOrder& order) : m_Tree(tree), m_auScanAt(tree.Lattice().PointCount()) {
    for (std::uint32_t k = 0; k < order.Count(); ++k) m_auScanAt[order.PointAtScan(k)] = k;
  }

  // visit(leaf, side, edge); an edge between two leaves comes twice.
  template <typename Visit>
  void ForEach(const Visit& visit) const {
    for (const CLeaf& leaf : m_Tree.Leaves()) {
      if (leaf.m_uSize == 1) {
        VisitNarrow(leaf, visit);
        continue;
      }
      for (unsigned side = 0; side < 4; ++side) {
        VisitHalves(leaf.m_pCell->Edge(static_cast<int>(side)), [&](const CEdge& edge) {
          visit(leaf, side, CSideEdge{EndsOf(edge), edge.Length(), edge.IsHorizontal(), edge.HasBothMarks()});
        });
      }
    }
  }

 private:
  // The sides of the narrowest leaves have no halves, and are cut only where their own triangle is in the tear: without
  // a look at the edges, which memory is slow to give.
  template <typename Visit>
  void VisitNarrow(const CLeaf& leaf, const Visit& visit) const {
    const std::size_t up = leaf.m_uPoint + static_cast<std::size_t>(m_Tree.Lattice().PointsPerSide());
    const std::uint32_t lowerLeft = m_auScanAt[leaf.m_uPoint];
    const std::uint32_t lowerRight = m_auScanAt[leaf.m_uPoint + 1];
    const std::uint32_t upperLeft = m_auScanAt[up];
    const std::uint32_t upperRight = m_auScanAt[up + 1];
    const auto isCut = [&leaf](int side) {
      return (leaf.m_uMarked >> side & 1U) != 0 && leaf.m_pCell->Edge(side).HasBothMarks();
    };
    visit(leaf, kBottom, CSideEdge{{lowerLeft, lowerRight}, 1.0, true, isCut(kBottom)});
    visit(leaf, kRight, CSideEdge{{lowerRight, upperRight}, 1.0, false, isCut(kRight)});
    visit(leaf, kTop, CSideEdge{{upperLeft, upperRight}, 1.0, true, isCut(kTop)});
    visit(leaf, kLeft, CSideEdge{{lowerLeft, upperLeft}, 1.0, false, isCut(kLeft)});
  }
  template <typename Visit>
  static void VisitHalves(const CEdge& edge, const Visit& visit) {
    if (edge.IsLeaf()) return visit(edge);
    VisitHalves(edge.Half(0), visit);
    VisitHalves(edge.Half(1), visit);
  }
  CPieces::CJoint EndsOf(const CEdge& edge) const {
    const CLattice& lattice = m_Tree.Lattice();
    return {m_auScanAt[lattice.Index(edge.Xa(), edge.Ya())], m_auScanAt[lattice.Index(edge.Xb(), edge.Yb())]};
  }

  const CQuadTree& m_Tree;
  std::vector<std::uint32_t> m_auScanAt;  // by lattice point, of those in use
};

// Every outer side of a triangle in no tear.
template <typename Visit>
void VisitSlopes(const CLattice& lattice, const CLeafEdges& edges, const Visit& visit) {
  edges.ForEach([&](const CLeaf& leaf, unsigned side, const CSideEdge& edge) {
    if ((leaf.m_uMarked >> side & 1U) != 0) return;
    const double length = edge.m_fLength * (edge.m_bAlongX ? lattice.StepX() : lattice.StepY());
    // Of a triangle whose tip is the centre of the leaf.
    const double depth = leaf.m_uSize * (edge.m_bAlongX ? lattice.StepY() : lattice.StepX()) / 2;
    visit(CPieces::CSlope{edge.m_Ends, length, length * depth, edge.m_bAlongX});
  });
}

}  // namespace

void CPieces::Build(const CQuadTree& tree, const CPointOrder& order) {
  const CLattice& lattice = tree.Lattice();
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  m_aPlaces.resize(order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) {
    const std::uint32_t point = order.PointAtScan(k);
    const std::uint32_t row = point / side;
    m_aPlaces[k] = {lattice.XOf(point % side), lattice.YOf(row)};
  }
  const CLeafEdges edges(tree, order);
  CGroups groups(order.Count());
  m_aCuts.clear();
  edges.ForEach([&](const CLeaf& /*leaf*/, unsigned /*side*/, const CSideEdge& edge) {
    if (edge.m_bCut) {
      m_aCuts.push_back(edge.m_Ends);
    } else {
      groups.Join(edge.m_Ends.m_uA, edge.m_Ends.m_uB);
    }
  });
  std::vector<std::uint32_t> roots(order.Count());
  for (std::uint32_t point = 0; point < roots.size(); ++point) roots[point] = groups.Of(point);
  Number(roots);
  MeasureBoxes();
  VisitSlopes(lattice, edges, [this](const CSlope& slope) {
    CPiece& piece = m_aPieces[m_auPiece[slope.m_Ends.m_uA]];
    piece.m_fArea += slope.m_fArea / 2;
    (slope.m_bAlongX ? piece.m_fAlongX : piece.m_fAlongY) += slope.m_fArea;
  });
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

void CPieces::ForEachSlope(const CQuadTree& tree, const CPointOrder& order,
                           const std::function<void(const CSlope&)>& visit) {
  VisitSlopes(tree.Lattice(), CLeafEdges(tree, order), visit);
}
