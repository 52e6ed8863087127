#include "solver/BasisEnergies.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <utility>

#include "solver/CCompressedRows.h"
#include "solver/CHierarchicalBasis.h"

namespace {

// An energy below this share of the magnitudes that have cancelled in it is rounding.
constexpr double kRoundingShare = 1e-12;

constexpr std::uint32_t kCorners = 4;

// Of each of so many parents.
constexpr std::array<double, 5> kShares{0.0, 1.0, 1.0 / 2, 1.0 / 3, 1.0 / 4};

// The counted parents of all unknowns, by number, and what each counts.
struct CParentTable {
  explicit CParentTable(const CHierarchicalBasis& basis) {
    m_auStart.reserve(basis.Size() + 1);
    m_auStart.push_back(0);
    for (std::size_t k = 0; k < basis.Size(); ++k) {
      for (const std::uint32_t place : basis.ParentsOf(k)) m_auParents.push_back(basis.UnknownAt(place));
      m_auStart.push_back(static_cast<std::uint32_t>(m_auParents.size()));
    }
  }
  std::span<const std::uint32_t> Of(std::size_t k) const {
    return std::span(m_auParents).subspan(m_auStart[k], m_auStart[k + 1] - m_auStart[k]);
  }
  double ShareOf(std::size_t k) const { return kShares[m_auStart[k + 1] - m_auStart[k]]; }

  std::vector<std::uint32_t> m_auStart;
  std::vector<std::uint32_t> m_auParents;
};

// The first unknown of those before `end` that can be left out together: none is a parent of another.
std::uint32_t BatchBefore(std::uint32_t end, const CParentTable& parents) {
  std::uint32_t highest = 0;
  std::uint32_t first = end;
  while (first > kCorners) {
    for (const std::uint32_t p : parents.Of(first - 1)) highest = std::max(highest, p);
    if (highest >= first - 1) break;
    --first;
  }
  return first;
}

// Adds up a row by column.
class CRowSum {
 public:
  explicit CRowSum(std::size_t columns) : m_aSlots(columns) {}

  void Begin() {
    ++m_uStamp;
    m_auColumns.clear();
    m_afValues.clear();
  }
  void Add(std::uint32_t column, double value) {
    CSlot& slot = m_aSlots[column];
    if (slot.m_uStamp == m_uStamp) {
      m_afValues[slot.m_uPlace] += value;
      return;
    }
    slot = {m_uStamp, static_cast<std::uint32_t>(m_auColumns.size())};
    m_auColumns.push_back(column);
    m_afValues.push_back(value);
  }
  std::span<const std::uint32_t> Columns() const { return m_auColumns; }
  std::span<const double> Values() const { return m_afValues; }

 private:
  struct CSlot {
    std::uint32_t m_uStamp = 0;
    std::uint32_t m_uPlace = 0;
  };
  std::vector<CSlot> m_aSlots;
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;
  std::uint32_t m_uStamp = 0;
};

// A matrix over the first unknowns.
struct CReducedMatrix {
  std::vector<std::uint32_t> m_auStart{0};
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;
};

// The points up to some level, with the energy of the surfaces that have no finer coefficients.
class CReduction {
 public:
  CReduction(const CCompressedRows& smoothness, const CHierarchicalBasis& basis)
      : m_pSmoothness(&smoothness),
        m_pBasis(&basis),
        m_Parents(basis),
        m_Sum(basis.Size()),
        m_uEnd(static_cast<std::uint32_t>(basis.Size())),
        m_afEnergies(basis.Size()) {}

  // Leaves out the unknowns from `first` on, none of which is a parent of another, and notes their energies.
  void LeaveOut(std::uint32_t first);
  std::vector<double> TakeEnergies() { return std::move(m_afEnergies); }
  const CParentTable& Parents() const { return m_Parents; }

 private:
  template <typename Visit>
  void ForRow(std::uint32_t row, const Visit& visit) const;
  void ListChildren(std::uint32_t first);
  void AddRow(std::uint32_t row, double weight, std::uint32_t first);

  const CCompressedRows* m_pSmoothness;
  const CHierarchicalBasis* m_pBasis;
  CParentTable m_Parents;
  CRowSum m_Sum;
  CReducedMatrix m_Matrix;  ///< empty as long as nothing has been left out
  std::uint32_t m_uEnd;     ///< the matrix is over the unknowns before this one
  std::vector<double> m_afEnergies;
  std::vector<std::uint32_t> m_auChildStart;
  std::vector<std::uint32_t> m_auChildren;
};

// Calls visit(column, value) for the entries of a row, by unknown.
template <typename Visit>
void CReduction::ForRow(std::uint32_t row, const Visit& visit) const {
  if (m_uEnd < m_pBasis->Size()) {
    for (std::uint32_t e = m_Matrix.m_auStart[row]; e < m_Matrix.m_auStart[row + 1]; ++e)
      visit(m_Matrix.m_auColumns[e], m_Matrix.m_afValues[e]);
    return;
  }
  const std::uint32_t place = m_pBasis->PlaceOf(row);
  const CCompressedRows::CColumns columns = m_pSmoothness->Columns(place);
  const std::span<const double> values = m_pSmoothness->Values(place);
  for (std::size_t e = 0; e < values.size(); ++e) visit(m_pBasis->UnknownAt(columns[e]), values[e]);
}

void CReduction::ListChildren(std::uint32_t first) {
  // Each start is moved back from the end to the beginning of its parent's children as they are filled in.
  m_auChildStart.assign(first + 1, 0);
  for (std::uint32_t k = first; k < m_uEnd; ++k) {
    for (const std::uint32_t p : m_Parents.Of(k)) ++m_auChildStart[p];
  }
  std::partial_sum(m_auChildStart.begin(), m_auChildStart.end(), m_auChildStart.begin());
  m_auChildren.resize(m_auChildStart[first]);
  for (std::uint32_t k = m_uEnd; k-- > first;) {
    for (const std::uint32_t p : m_Parents.Of(k)) m_auChildren[--m_auChildStart[p]] = k;
  }
}

void CReduction::AddRow(std::uint32_t row, double weight, std::uint32_t first) {
  ForRow(row, [&](std::uint32_t column, double value) {
    if (column < first) return m_Sum.Add(column, weight * value);
    const std::span<const std::uint32_t> parents = m_Parents.Of(column);
    const double share = weight * value * m_Parents.ShareOf(column);
    for (const std::uint32_t p : parents) m_Sum.Add(p, share);
  });
}

void CReduction::LeaveOut(std::uint32_t first) {
  for (std::uint32_t k = first; k < m_uEnd; ++k) {
    ForRow(k, [&](std::uint32_t column, double value) {
      if (column == k) m_afEnergies[k] = value;
    });
  }
  ListChildren(first);
  CReducedMatrix next;
  for (std::uint32_t k = 0; k < first; ++k) {
    m_Sum.Begin();
    AddRow(k, 1.0, first);
    for (std::uint32_t c = m_auChildStart[k]; c < m_auChildStart[k + 1]; ++c)
      AddRow(m_auChildren[c], m_Parents.ShareOf(m_auChildren[c]), first);
    next.m_auColumns.insert(next.m_auColumns.end(), m_Sum.Columns().begin(), m_Sum.Columns().end());
    next.m_afValues.insert(next.m_afValues.end(), m_Sum.Values().begin(), m_Sum.Values().end());
    next.m_auStart.push_back(static_cast<std::uint32_t>(next.m_auColumns.size()));
  }
  m_Matrix = std::move(next);
  m_uEnd = first;
}

// At least the sum of |b_i H_ij b_j| of every function: none is greater than 1 anywhere.
std::vector<double> MagnitudeBounds(const CCompressedRows& smoothness, const CHierarchicalBasis& basis) {
  std::vector<double> sums(basis.Size());
  for (std::size_t row = 0; row < sums.size(); ++row) {
    for (const double value : smoothness.Values(row)) sums[row] += std::abs(value);
  }
  std::vector<double> bounds(basis.Size());
  basis.invWTransposeTimes(sums, bounds);
  return bounds;
}

}  // namespace

std::vector<double> BasisEnergies(const CCompressedRows& smoothness, const CHierarchicalBasis& basis) {
  CReduction reduction(smoothness, basis);
  auto end = static_cast<std::uint32_t>(basis.Size());
  while (end > kCorners) {
    end = BatchBefore(end, reduction.Parents());
    reduction.LeaveOut(end);
  }
  reduction.LeaveOut(0);
  std::vector<double> energies = reduction.TakeEnergies();
  const std::vector<double> bounds = MagnitudeBounds(smoothness, basis);
  for (std::size_t k = 0; k < energies.size(); ++k) {
    if (!(energies[k] > kRoundingShare * bounds[k])) energies[k] = 0.0;
  }
  return energies;
}
