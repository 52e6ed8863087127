#include "solver/CEnergyTerms.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "solver/CCompressedRows.h"

namespace {

// Sums values by column without clearing between rows: a slot is fresh when its stamp is not the row's.
class CRowAccumulator {
 public:
  explicit CRowAccumulator(std::size_t columns) : m_auSlot(columns, 0), m_auStamp(columns, 0) {}

  void Begin() {
    ++m_uStamp;
    m_auColumns.clear();
    m_afValues.clear();
  }
  void Add(std::uint32_t column, double value) {
    if (m_auStamp[column] != m_uStamp) {
      m_auStamp[column] = m_uStamp;
      m_auSlot[column] = static_cast<std::uint32_t>(m_auColumns.size());
      m_auColumns.push_back(column);
      m_afValues.push_back(value);
    } else {
      m_afValues[m_auSlot[column]] += value;
    }
  }
  void WriteTo(CCompressedRows& matrix) const {
    for (std::size_t k = 0; k < m_auColumns.size(); ++k) matrix.Append(m_auColumns[k], m_afValues[k]);
    matrix.EndRow();
  }

 private:
  std::uint32_t m_uStamp = 0;
  std::vector<std::uint32_t> m_auSlot;
  std::vector<std::uint32_t> m_auStamp;
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;
};

}  // namespace

void CEnergyTerms::Clear() {
  m_afWeights.clear();
  m_auFormStart.assign(1, 0);
  m_auUnknowns.clear();
  m_afCoefs.clear();
  m_aMerged.clear();
}

void CEnergyTerms::Add(double weight, const CEntry* first, const CEntry* last) {
  m_afWeights.push_back(weight);
  const auto form = static_cast<std::ptrdiff_t>(m_auFormStart.back());
  const auto given = last - first;
  double magnitude = 0.0;
  for (; first != last; ++first) {
    magnitude += std::abs(first->second);
    // Each unknown once: the products of two coefficients then sum in the same order in both triangles of the matrix.
    const auto known = std::find(m_auUnknowns.begin() + form, m_auUnknowns.end(), first->first);
    if (known != m_auUnknowns.end()) {
      m_afCoefs[static_cast<std::size_t>(known - m_auUnknowns.begin())] += first->second;
    } else {
      m_auUnknowns.push_back(first->first);
      m_afCoefs.push_back(first->second);
    }
  }
  m_auFormStart.push_back(static_cast<std::uint32_t>(m_auUnknowns.size()));
  if (std::ssize(m_auUnknowns) - form < given) m_aMerged.emplace_back(Count() - 1, magnitude);
}

double CEnergyTerms::Magnitude(std::size_t t) const {
  using CMerged = std::pair<std::size_t, double>;
  const auto merged = std::ranges::lower_bound(m_aMerged, t, {}, &CMerged::first);
  if (merged != m_aMerged.end() && merged->first == t) return merged->second;
  double sum = 0.0;
  for (const double coef : Coefs(t)) sum += std::abs(coef);
  return sum;
}

CEnergyTerms CEnergyTerms::From(std::size_t first) const {
  CEnergyTerms rest;
  std::vector<CEntry> form;
  for (std::size_t t = first; t < Count(); ++t) {
    form.clear();
    for (std::size_t e = 0; e < Coefs(t).size(); ++e) form.emplace_back(Unknowns(t)[e], Coefs(t)[e]);
    rest.Add(m_afWeights[t], form.data(), form.data() + form.size());
  }
  for (const auto& [term, magnitude] : m_aMerged) {
    if (term >= first) rest.m_aMerged.emplace_back(term - first, magnitude);
  }
  return rest;
}

void CEnergyTerms::Assemble(std::size_t unknowns, CCompressedRows& matrix) const {
  // Which forms does an unknown occur in? Counted, then filled in term order, so that entries (i, j) and (j, i) sum the
  // same products in the same order.
  struct COccurrence {
    std::uint32_t m_uTerm;
    std::uint32_t m_uEntry;
  };
  std::vector<std::uint32_t> start(unknowns + 1, 0);
  for (const std::uint32_t unknown : m_auUnknowns) ++start[unknown + 1];
  for (std::size_t k = 0; k < unknowns; ++k) start[k + 1] += start[k];
  std::vector<COccurrence> occurrences(m_auUnknowns.size());
  std::vector<std::uint32_t> next(start.begin(), start.end() - 1);
  for (std::uint32_t term = 0; term < Count(); ++term) {
    for (std::uint32_t e = m_auFormStart[term]; e < m_auFormStart[term + 1]; ++e) {
      occurrences[next[m_auUnknowns[e]]++] = {term, e};
    }
  }

  matrix.Clear();
  CRowAccumulator row(unknowns);
  for (std::size_t i = 0; i < unknowns; ++i) {
    row.Begin();
    for (std::size_t o = start[i]; o < start[i + 1]; ++o) {
      const std::uint32_t term = occurrences[o].m_uTerm;
      const double coef = m_afCoefs[occurrences[o].m_uEntry];
      for (std::size_t e = m_auFormStart[term]; e < m_auFormStart[term + 1]; ++e) {
        row.Add(m_auUnknowns[e], m_afWeights[term] * (coef * m_afCoefs[e]));
      }
    }
    row.WriteTo(matrix);
  }
}
