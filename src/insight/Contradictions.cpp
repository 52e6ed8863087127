#include "insight/Contradictions.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "solver/CConstraintRows.h"

namespace {

double FactorOf(const CRowRelation& relation, std::uint32_t row) {
  const auto at = std::ranges::lower_bound(relation.m_aFactors, row, {}, &std::pair<std::uint32_t, double>::first);
  return at != relation.m_aFactors.end() && at->first == row ? at->second : 0.0;
}

// Of both, what leaves the row out, which is in both.
CRowRelation Without(std::uint32_t row, const CRowRelation& a, const CRowRelation& b) {
  const double ofA = FactorOf(b, row);
  const double ofB = -FactorOf(a, row);
  CRowRelation both;
  double largest = 0.0;
  auto inA = a.m_aFactors.begin();
  auto inB = b.m_aFactors.begin();
  while (inA != a.m_aFactors.end() || inB != b.m_aFactors.end()) {
    const bool takeA = inB == b.m_aFactors.end() || (inA != a.m_aFactors.end() && inA->first <= inB->first);
    const bool takeB = inA == a.m_aFactors.end() || (inB != b.m_aFactors.end() && inB->first <= inA->first);
    const std::uint32_t of = takeA ? inA->first : inB->first;
    const double factor = (takeA ? ofA * inA++->second : 0.0) + (takeB ? ofB * inB++->second : 0.0);
    if (of == row) continue;
    both.m_aFactors.emplace_back(of, factor);
    largest = std::max(largest, std::abs(factor));
  }
  for (auto& [of, factor] : both.m_aFactors) factor /= largest;
  return both;
}

class CJudge {
 public:
  CJudge(std::span<const CRowRelation> relations, const CConstraintRows& rows, double least)
      : m_aRelations(relations),
        m_Rows(rows),
        m_fLeast(least),
        m_abContradicts(relations.size(), false),
        m_aauOfRow(rows.Count()),
        m_abSeen(rows.Count(), false) {}

  CJudgedRelations Judge();

 private:
  void TakeDisagreeing();
  void SpreadOver(std::uint32_t row, std::size_t from);

  std::span<const CRowRelation> m_aRelations;
  const CConstraintRows& m_Rows;
  double m_fLeast;
  std::vector<bool> m_abContradicts;                 ///< by relation
  std::vector<std::vector<std::size_t>> m_aauOfRow;  ///< by row: the relations in which it is named
  std::vector<bool> m_abSeen;                        ///< by row: all of those have been looked at
  CJudgedRelations m_Judged;
};

void CJudge::TakeDisagreeing() {
  for (std::size_t k = 0; k < m_aRelations.size(); ++k) {
    const double gap = m_aRelations[k].GapOf(m_Rows);
    m_abContradicts[k] = std::abs(gap) > m_fLeast;
    if (m_abContradicts[k]) m_Judged.m_aContradictions.push_back({m_aRelations[k], gap});
  }
  std::ranges::stable_sort(m_Judged.m_aContradictions, [](const CRowContradiction& a, const CRowContradiction& b) {
    return std::abs(a.m_fGap) > std::abs(b.m_fGap);
  });
}

// Contradiction `from` has the row; so have relations that agree.
void CJudge::SpreadOver(std::uint32_t row, std::size_t from) {
  for (const std::size_t k : m_aauOfRow[row]) {
    if (m_abContradicts[k]) continue;
    CRowRelation both = Without(row, m_aRelations[k], m_Judged.m_aContradictions[from].m_Relation);
    const double gap = both.GapOf(m_Rows);
    if (!(std::abs(gap) > m_fLeast) || !both.Vanishes(m_Rows)) continue;
    m_abContradicts[k] = true;
    m_Judged.m_aContradictions.push_back({std::move(both), gap});
  }
}

CJudgedRelations CJudge::Judge() {
  TakeDisagreeing();
  if (!m_Judged.m_aContradictions.empty()) {
    for (std::size_t k = 0; k < m_aRelations.size(); ++k) {
      for (const std::uint32_t row : m_aRelations[k].NamedRows()) m_aauOfRow[row].push_back(k);
    }
  }
  // It grows on the way.
  for (std::size_t k = 0; k < m_Judged.m_aContradictions.size(); ++k) {
    for (const std::uint32_t row : m_Judged.m_aContradictions[k].m_Relation.NamedRows()) {
      if (m_abSeen[row]) continue;
      m_abSeen[row] = true;
      SpreadOver(row, k);
    }
  }
  for (std::size_t k = 0; k < m_aRelations.size(); ++k) {
    if (!m_abContradicts[k]) m_Judged.m_auAgreeing.push_back(k);
  }
  return std::move(m_Judged);
}

}  // namespace

CJudgedRelations JudgeRelations(std::span<const CRowRelation> relations, const CConstraintRows& rows, double least) {
  return CJudge(relations, rows, least).Judge();
}
