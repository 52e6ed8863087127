#include "insight/RowRelations.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <utility>

#include "solver/CConstraintRows.h"

namespace {

// Of the largest entry: below it a combination of rows is 0.
constexpr double kVanishes = 1e-8;
// Of the largest entry: what is left of a row that may depend on those before it. A combination with factors that large
// is looked at closely, no other.
constexpr double kSuspicious = 1e-4;
// Rows with less than this share of the largest factor have no say in a relation.
constexpr double kNamed = 0.01;
constexpr std::uint32_t kNone = 0xFFFFFFFF;

// From a row as the solver has it to heights.
double UnitOf(const CConstraintRows& rows, std::size_t j) {
  return (rows.IsSlope(j) ? rows.Span(j) : 1.0) / CConstraintRows::kWeight;
}

using CEntry = std::pair<std::uint32_t, double>;
using CEntries = std::vector<CEntry>;

// Numbers in ascending or descending order, each once.
template <typename Order>
class CQueue {
 public:
  void Push(std::uint32_t number) { m_Queue.push(number); }
  bool Pop(std::uint32_t& number) {
    if (m_Queue.empty()) return false;
    number = m_Queue.top();
    while (!m_Queue.empty() && m_Queue.top() == number) m_Queue.pop();
    return true;
  }

 private:
  std::priority_queue<std::uint32_t, std::vector<std::uint32_t>, Order> m_Queue;
};

class CElimination {
 public:
  CElimination(const CConstraintRows& rows, std::size_t mostProducts);

  CRowRelations Run();

 private:
  // A row without what those before it make up of it.
  struct CReduced {
    CEntries m_aEntries;
    CEntries m_aEarlier;  ///< rows, as reduced, and the factors with which they were taken out
    std::uint32_t m_uPivot = kNone;
    double m_fPivot = 0.0;
  };

  void Reduce(std::uint32_t row);
  void AddTo(std::uint32_t column, double value, CQueue<std::greater<>>& open);
  CRowRelation CombinationOf(std::uint32_t row);
  bool LooksDependent(std::uint32_t row) const;
  void KeepPivot(std::uint32_t row);

  const CConstraintRows& m_Rows;
  std::vector<CReduced> m_aReduced;        ///< by row
  std::vector<std::uint32_t> m_auPivotOf;  ///< by column: the row
  std::vector<double> m_afWork;            ///< by column; 0 between two rows
  std::vector<std::uint32_t> m_auTouched;  ///< columns with something in the work
  std::vector<double> m_afFactors;         ///< by row; 0 between two combinations
  std::size_t m_uProducts = 0;
  std::size_t m_uMostProducts;
};

CElimination::CElimination(const CConstraintRows& rows, std::size_t mostProducts)
    : m_Rows(rows), m_aReduced(rows.Count()), m_afFactors(rows.Count(), 0.0), m_uMostProducts(mostProducts) {
  std::uint32_t columns = 0;
  for (std::size_t j = 0; j < rows.Count(); ++j) {
    for (const std::uint32_t column : rows.Rows().Columns(j)) columns = std::max(columns, column + 1);
  }
  m_auPivotOf.assign(columns, kNone);
  m_afWork.assign(columns, 0.0);
}

void CElimination::AddTo(std::uint32_t column, double value, CQueue<std::greater<>>& open) {
  if (m_afWork[column] == 0.0) {
    m_auTouched.push_back(column);
    if (m_auPivotOf[column] != kNone) open.Push(m_auPivotOf[column]);
  }
  m_afWork[column] += value;
}

// What comes in with a row that is taken out has its pivots in later ones.
void CElimination::Reduce(std::uint32_t row) {
  CQueue<std::greater<>> open;
  const std::span<const double> values = m_Rows.Rows().Values(row);
  for (std::size_t e = 0; e < values.size(); ++e)
    AddTo(m_Rows.Rows().Columns(row)[e], UnitOf(m_Rows, row) * values[e], open);
  for (std::uint32_t earlier = 0; open.Pop(earlier);) {
    const CReduced& by = m_aReduced[earlier];
    const double factor = m_afWork[by.m_uPivot] / by.m_fPivot;
    if (factor == 0.0) continue;
    m_aReduced[row].m_aEarlier.emplace_back(earlier, factor);
    for (const auto& [column, value] : by.m_aEntries) AddTo(column, -factor * value, open);
    m_afWork[by.m_uPivot] = 0.0;
    m_uProducts += by.m_aEntries.size();
  }
}

bool CElimination::LooksDependent(std::uint32_t row) const {
  double entry = 0.0;
  for (const double value : m_Rows.Rows().Values(row)) entry = std::max(entry, std::abs(UnitOf(m_Rows, row) * value));
  double left = 0.0;
  for (const std::uint32_t column : m_auTouched) left = std::max(left, std::abs(m_afWork[column]));
  return left <= kSuspicious * entry;
}

void CElimination::KeepPivot(std::uint32_t row) {
  CReduced& kept = m_aReduced[row];
  std::ranges::sort(m_auTouched);
  for (const std::uint32_t column : m_auTouched) {
    const double value = std::exchange(m_afWork[column], 0.0);
    if (value == 0.0) continue;
    kept.m_aEntries.emplace_back(column, value);
    if (std::abs(value) <= std::abs(kept.m_fPivot)) continue;
    kept.m_fPivot = value;
    kept.m_uPivot = column;
  }
  if (kept.m_uPivot != kNone) m_auPivotOf[kept.m_uPivot] = row;
}

// The row as it is, and with what factors those before it, as they are, make it up: in a combination that is next to 0.
CRowRelation CElimination::CombinationOf(std::uint32_t row) {
  CQueue<std::less<>> open;
  m_afFactors[row] = 1.0;
  open.Push(row);
  CRowRelation relation;
  for (std::uint32_t of = 0; open.Pop(of);) {
    const double weight = std::exchange(m_afFactors[of], 0.0);
    if (weight == 0.0) continue;
    relation.m_aFactors.emplace_back(of, weight);
    for (const auto& [earlier, factor] : m_aReduced[of].m_aEarlier) {
      if (m_afFactors[earlier] == 0.0) open.Push(earlier);
      m_afFactors[earlier] -= weight * factor;
    }
    m_uProducts += m_aReduced[of].m_aEarlier.size();
  }
  std::ranges::sort(relation.m_aFactors);
  double largest = 0.0;
  for (const auto& [of, factor] : relation.m_aFactors) largest = std::max(largest, std::abs(factor));
  for (auto& [of, factor] : relation.m_aFactors) factor /= largest;
  return relation;
}

CRowRelations CElimination::Run() {
  CRowRelations found;
  for (std::uint32_t row = 0; row < m_Rows.Count(); ++row) {
    if (m_uProducts >= m_uMostProducts) {
      found.m_bWhole = false;
      break;
    }
    Reduce(row);
    if (LooksDependent(row)) {
      CRowRelation relation = CombinationOf(row);
      if (relation.Vanishes(m_Rows)) {
        found.m_aRelations.push_back(std::move(relation));
        // What rounding has left of it must take nothing out of other rows.
        for (const std::uint32_t column : m_auTouched) m_afWork[column] = 0.0;
      }
    }
    KeepPivot(row);
    m_auTouched.clear();
  }
  return found;
}

}  // namespace

std::vector<std::uint32_t> CRowRelation::NamedRows() const {
  std::vector<std::uint32_t> named;
  for (const auto& [row, factor] : m_aFactors) {
    if (std::abs(factor) > kNamed) named.push_back(row);
  }
  return named;
}

double CRowRelation::GapOf(const CConstraintRows& rows) const {
  double gap = 0.0;
  for (const auto& [row, factor] : m_aFactors) gap += factor * UnitOf(rows, row) * rows.Targets()[row];
  return gap;
}

bool CRowRelation::Vanishes(const CConstraintRows& rows) const {
  double largest = 0.0;
  CEntries entries;
  for (const auto& [row, factor] : m_aFactors) {
    const std::span<const double> values = rows.Rows().Values(row);
    for (std::size_t e = 0; e < values.size(); ++e) {
      const double value = UnitOf(rows, row) * values[e];
      entries.emplace_back(rows.Rows().Columns(row)[e], factor * value);
      largest = std::max(largest, std::abs(value));
    }
  }
  std::ranges::sort(entries, {}, &CEntry::first);
  for (std::size_t e = 0; e < entries.size();) {
    const std::uint32_t column = entries[e].first;
    double sum = 0.0;
    for (; e < entries.size() && entries[e].first == column; ++e) sum += entries[e].second;
    if (!(std::abs(sum) <= kVanishes * largest)) return false;
  }
  return true;
}

CRowRelations FindRowRelations(const CConstraintRows& rows, std::size_t mostProducts) {
  return CElimination(rows, mostProducts).Run();
}

double MissedHeight(const CConstraintRows& rows, std::size_t j, double value) {
  return UnitOf(rows, j) * (value - rows.Targets()[j]);
}
