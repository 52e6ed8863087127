#include "drawing/CPlaneArrays.h"

#include <algorithm>
#include <bit>

#include "model/CGrid.h"

namespace {

constexpr std::uint8_t kInside = 0x80;

void Append(std::vector<float>& vertices, double column, double row) {
  vertices.push_back(static_cast<float>(column));
  vertices.push_back(static_cast<float>(row));
}

void AppendGaps(std::vector<float>& vertices, const CLeaf& leaf) {
  const CQuadT& cell = *leaf.m_pCell;
  const std::array<std::array<int, 2>, 5> corners{{{cell.X0(), cell.Y0()},
                                                   {cell.X1(), cell.Y0()},
                                                   {cell.X1(), cell.Y1()},
                                                   {cell.X0(), cell.Y1()},
                                                   {cell.X0(), cell.Y0()}}};
  for (std::size_t k = 0; k < 4; ++k) {
    if ((leaf.m_uMarked >> k & 1) == 0) continue;
    Append(vertices, corners[k][0], corners[k][1]);
    Append(vertices, corners[k + 1][0], corners[k + 1][1]);
    Append(vertices, (cell.X0() + cell.X1()) / 2.0, (cell.Y0() + cell.Y1()) / 2.0);
  }
}

}  // namespace

void CPlaneArrays::RefreshSubdivision(const CGrid& grid) {
  if (m_uTree == grid.Surface().Tree().Revision()) return;
  m_uTree = grid.Surface().Tree().Revision();
  m_iSide = grid.Surface().Lattice().PointsPerSide();
  m_auHorizontal.assign(grid.Surface().Lattice().PointCount(), 0);
  m_auVertical.assign(grid.Surface().Lattice().PointCount(), 0);
  m_afGaps.clear();
  for (const CLeaf& leaf : grid.Surface().Tree().Leaves()) {
    for (int side = 0; side < 4; ++side) Enter(leaf.m_pCell->Edge(side));
    AppendGaps(m_afGaps, leaf);
  }
  for (std::vector<float>& lines : m_aafLines) lines.clear();
  m_afInside.clear();
  const auto side = static_cast<std::size_t>(m_iSide);
  for (int line = 0; line < m_iSide; ++line) {
    const std::size_t start = static_cast<std::size_t>(line) * side;
    JoinSteps(std::span(m_auHorizontal).subspan(start, side), line, true);
    JoinSteps(std::span(m_auVertical).subspan(start, side), line, false);
  }
}

void CPlaneArrays::Enter(const CEdge& edge) {
  if (!edge.IsLeaf()) {
    Enter(edge.Half(0));
    Enter(edge.Half(1));
    return;
  }
  const bool horizontal = edge.IsHorizontal();
  const int length = horizontal ? edge.Xb() - edge.Xa() : edge.Yb() - edge.Ya();
  const int level = std::countr_zero(static_cast<unsigned>(length));
  const int start = horizontal ? edge.Ya() * m_iSide + edge.Xa() : edge.Xa() * m_iSide + edge.Ya();
  std::vector<std::uint8_t>& steps = horizontal ? m_auHorizontal : m_auVertical;
  std::fill_n(steps.begin() + start, length,
              static_cast<std::uint8_t>((1 + level) | (edge.HasBothMarks() ? kInside : 0)));
}

void CPlaneArrays::JoinSteps(std::span<const std::uint8_t> steps, int line, bool horizontal) {
  for (std::size_t first = 0; first < steps.size();) {
    const std::uint8_t code = steps[first];
    std::size_t end = first + 1;
    while (end < steps.size() && steps[end] == code) ++end;
    if (code != 0) {
      const bool inside = (code & kInside) != 0;
      std::vector<float>& lines = inside ? m_afInside : m_aafLines[code - std::size_t{1}];
      for (const std::size_t at : {first, end}) {
        const auto along = static_cast<double>(at);
        Append(lines, horizontal ? along : line, horizontal ? line : along);
      }
    }
    first = end;
  }
}

void CPlaneArrays::RefreshFrozen(const CGrid& grid) {
  if (m_uFrozenTree == grid.Surface().Tree().Revision() && m_uFrozenRevision == grid.Marks().FreezeRevision()) return;
  m_uFrozenTree = grid.Surface().Tree().Revision();
  m_uFrozenRevision = grid.Marks().FreezeRevision();
  m_afFrozen.clear();
  const CLattice& lattice = grid.Surface().Lattice();
  for (int row = 0; row < lattice.PointsPerSide(); ++row) {
    for (int column = 0; column < lattice.PointsPerSide(); ++column) {
      const std::size_t point = lattice.Index(column, row);
      if (lattice.Has(point, PointFlag::kFrozen) && lattice.Has(point, PointFlag::kInUse))
        Append(m_afFrozen, column, row);
    }
  }
}
