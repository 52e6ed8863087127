#include "solver/CHierarchicalBasis.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "base/Console.h"
#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"

namespace {

// A parent of a point: its lattice place and the edge that joins it to the point.
struct CParent {
  int m_iColumn;
  int m_iRow;
  const CEdge* m_pEdge;
};

struct CParents {
  std::array<CParent, 4> m_aParents;
  std::size_t m_uCount;
};

// Codes 2k and 2k + 1 belong to cells of level L + 1 - k, whose halves are 2^(L - k) steps long.
CParents FindParents(const CQuadTree& tree, int column, int row, int code) {
  const int level = tree.Level() - std::abs(code) / 2;
  const int s = 1 << level;
  const CParent left{column - s, row, nullptr};
  const CParent right{column + s, row, nullptr};
  const CParent below{column, row - s, nullptr};
  const CParent above{column, row + s, nullptr};
  const auto joined = [&](CParent parent) {
    const bool horizontal = parent.m_iRow == row;
    parent.m_pEdge = horizontal ? &tree.HorizontalEdge(level, std::min(column, parent.m_iColumn), row)
                                : &tree.VerticalEdge(level, column, std::min(row, parent.m_iRow));
    return parent;
  };
  if (code % 2 != 0) return {{joined(below), joined(right), joined(above), joined(left)}, 4};
  if (code > 0) return {{joined(left), joined(right)}, 2};
  return {{joined(below), joined(above)}, 2};
}

// Calls `body` with the number of parents as a compile-time constant.
template <typename Body>
void WithParentCount(std::uint32_t parents, Body&& body) {
  switch (parents) {
    case 0:
      return body(std::integral_constant<std::size_t, 0>{});
    case 1:
      return body(std::integral_constant<std::size_t, 1>{});
    case 2:
      return body(std::integral_constant<std::size_t, 2>{});
    case 3:
      return body(std::integral_constant<std::size_t, 3>{});
    default:
      return body(std::integral_constant<std::size_t, 4>{});
  }
}

template <std::size_t kCount>
double Mean(const double* values, const std::uint32_t* parents) {
  if constexpr (kCount == 0) {
    return 0.0;
  } else {
    double sum = values[parents[0]];
    for (std::size_t p = 1; p < kCount; ++p) sum += values[parents[p]];
    return sum * (1.0 / kCount);
  }
}

}  // namespace

void CHierarchicalBasis::Compile(const CPointOrder& order, const CQuadTree& tree, WaveletMode mode) {
  m_uSize = order.Count();
  m_Mode = mode;
  const std::vector<CRun> runs = std::exchange(m_aRuns, {});
  const std::vector<std::uint32_t> places = std::exchange(m_auPlace, {});
  const std::vector<std::uint32_t> parents = std::exchange(m_auParents, {});
  m_auParents.reserve(parents.size());
  LayOut(order, tree);
  static std::uint64_t revisions = 0;
  if (runs != m_aRuns || places != m_auPlace || parents != m_auParents) m_uRevision = ++revisions;
}

void CHierarchicalBasis::LayOut(const CPointOrder& order, const CQuadTree& tree) {
  m_auPlace.resize(m_uSize);
  m_auUnknown.resize(m_uSize);
  for (std::uint32_t k = 0; k < m_uSize; ++k) {
    m_auPlace[k] = order.ScanOf(k);
    m_auUnknown[m_auPlace[k]] = k;
  }
  if (m_Mode == WaveletMode::None) {
    m_aRuns.push_back({0, static_cast<std::uint32_t>(m_uSize), 0, 0});
    return;
  }
  constexpr std::uint32_t kCorners = 4;
  for (std::uint32_t k = 0; k < std::min<std::size_t>(kCorners, m_uSize); ++k) AddUnknown(k, {});
  for (std::uint32_t k = kCorners; k < m_uSize; ++k) {
    const int code = order.LevelCode(k);
    const int previous = order.LevelCode(k - 1);
    if (std::abs(code) < std::abs(previous)) {
      Console() << "CGrid::invWTransposeTimes Error : level not decreasing " << previous << ' ' << code << '\n';
    }
    const CParents parents = FindParents(tree, order.ColumnOf(k), order.RowOf(k), code);
    std::array<std::uint32_t, 4> counted{};
    std::size_t count = 0;
    for (std::size_t p = 0; p < parents.m_uCount; ++p) {
      const CParent& parent = parents.m_aParents[p];
      if (!parent.m_pEdge->IsContinuous(m_Mode)) continue;
      const std::int32_t number = order.NumberOf(tree.Lattice().Index(parent.m_iColumn, parent.m_iRow));
      counted[count++] = order.ScanOf(static_cast<std::size_t>(number));
    }
    AddUnknown(k, std::span(counted).first(count));
  }
}

void CHierarchicalBasis::AddUnknown(std::uint32_t k, std::span<const std::uint32_t> parents) {
  const auto count = static_cast<std::uint32_t>(parents.size());
  if (m_aRuns.empty() || m_aRuns.back().m_uParents != count) m_aRuns.push_back({k, k, count, m_auParents.size()});
  m_aRuns.back().m_uEnd = k + 1;
  m_auParents.insert(m_auParents.end(), parents.begin(), parents.end());
}

void CHierarchicalBasis::W(std::span<const double> heights, std::span<double> coefs) const {
  const double* z = heights.data();
  double* c = coefs.data();
  const std::uint32_t* place = m_auPlace.data();
  for (const CRun& run : m_aRuns) {
    WithParentCount(run.m_uParents, [&]<std::size_t kCount>(std::integral_constant<std::size_t, kCount>) {
      const std::uint32_t* parents = m_auParents.data() + run.m_uFirstParent;
      for (std::uint32_t k = run.m_uFirst; k < run.m_uEnd; ++k, parents += kCount) {
        c[k] = z[place[k]] - Mean<kCount>(z, parents);
      }
    });
  }
}

template <typename Coefficient>
void CHierarchicalBasis::Reconstruct(const Coefficient& coefficient, std::span<double> heights) const {
  double* z = heights.data();
  const std::uint32_t* place = m_auPlace.data();
  for (const CRun& run : m_aRuns) {
    WithParentCount(run.m_uParents, [&]<std::size_t kCount>(std::integral_constant<std::size_t, kCount>) {
      const std::uint32_t* parents = m_auParents.data() + run.m_uFirstParent;
      for (std::uint32_t k = run.m_uFirst; k < run.m_uEnd; ++k, parents += kCount) {
        z[place[k]] = coefficient(k) + Mean<kCount>(z, parents);
      }
    });
  }
}

void CHierarchicalBasis::invW(std::span<const double> coefs, std::span<double> heights) const {
  Reconstruct([c = coefs.data()](std::uint32_t k) { return c[k]; }, heights);
}

void CHierarchicalBasis::ScaledInvW(std::span<const double> coefs, std::span<const double> scale,
                                    std::span<double> heights) const {
  Reconstruct([c = coefs.data(), d = scale.data()](std::uint32_t k) { return d[k] * c[k]; }, heights);
}

// Backward, so that a point has collected the shares of all its children when its own turn comes.
template <typename Store>
void CHierarchicalBasis::Collect(std::span<double> heights, const Store& store) const {
  double* z = heights.data();
  const std::uint32_t* place = m_auPlace.data();
  for (std::size_t r = m_aRuns.size(); r-- > 0;) {
    const CRun& run = m_aRuns[r];
    WithParentCount(run.m_uParents, [&]<std::size_t kCount>(std::integral_constant<std::size_t, kCount>) {
      const std::uint32_t* parents = m_auParents.data() + run.m_uFirstParent + kCount * (run.m_uEnd - run.m_uFirst);
      for (std::uint32_t k = run.m_uEnd; k-- > run.m_uFirst;) {
        const double value = z[place[k]];
        store(k, value);
        if constexpr (kCount > 0) {
          parents -= kCount;
          const double share = value * (1.0 / kCount);
          for (std::size_t p = 0; p < kCount; ++p) z[parents[p]] += share;
        }
      }
    });
  }
}

void CHierarchicalBasis::invWTransposeTimes(std::span<double> heights, std::span<double> coefs) const {
  Collect(heights, [c = coefs.data()](std::uint32_t k, double value) { c[k] = value; });
}

void CHierarchicalBasis::ScaledInvWTransposeTimes(std::span<double> heights, std::span<const double> scale,
                                                  std::span<double> coefs) const {
  Collect(heights, [c = coefs.data(), d = scale.data()](std::uint32_t k, double value) { c[k] = d[k] * value; });
}

std::span<const std::uint32_t> CHierarchicalBasis::ParentsOf(std::size_t k) const {
  const auto run = std::ranges::upper_bound(m_aRuns, k, {}, &CRun::m_uEnd);
  const std::size_t first = run->m_uFirstParent + (k - run->m_uFirst) * run->m_uParents;
  return std::span(m_auParents).subspan(first, run->m_uParents);
}
