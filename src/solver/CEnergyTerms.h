#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

class CCompressedRows;

/// A quadratic energy as a list of terms, each a weight times the square of a linear form of the unknowns:
/// E(z) = sum over t of w_t (a_t . z)^2, whose matrix is H = sum over t of w_t a_t a_t^T.
class CEnergyTerms {
 public:
  using CEntry = std::pair<std::uint32_t, double>;  ///< unknown number, coefficient

  /// Forgets all terms, keeps the memory.
  void Clear();
  /// Adds w (sum of coefficient x unknown)^2. An unknown may occur more than once in the form.
  void Add(double weight, std::initializer_list<CEntry> form) { Add(weight, form.begin(), form.end()); }
  void Add(double weight, const CEntry* first, const CEntry* last);

  /// Terms added since the last `Clear`.
  std::size_t Count() const { return m_afWeights.size(); }
  /// One of them: its weight, and its form as unknown numbers and their coefficients, each unknown once.
  double Weight(std::size_t term) const { return m_afWeights[term]; }
  std::span<const std::uint32_t> Unknowns(std::size_t term) const {
    return std::span(m_auUnknowns).subspan(m_auFormStart[term], m_auFormStart[term + 1] - m_auFormStart[term]);
  }
  std::span<const double> Coefs(std::size_t term) const {
    return std::span(m_afCoefs).subspan(m_auFormStart[term], m_auFormStart[term + 1] - m_auFormStart[term]);
  }
  /// The sum of the magnitudes of the coefficients of term `t` as they were added. What an unknown that occurred more
  /// than once keeps may be next to nothing beside that, and rounding.
  double Magnitude(std::size_t t) const;
  /// A copy of the terms from number `first` on.
  CEnergyTerms From(std::size_t first) const;

  /// The matrix H of the energy over `unknowns` unknowns: one row each, every column once, exactly symmetric.
  /// Row by row with an accumulator for one row [Gustavson1978]. Linear in the number of products a_i a_j of all terms.
  void Assemble(std::size_t unknowns, CCompressedRows& matrix) const;

 private:
  std::vector<double> m_afWeights;              ///< by term
  std::vector<std::uint32_t> m_auFormStart{0};  ///< by term, and the end
  std::vector<std::uint32_t> m_auUnknowns;      ///< of all forms
  std::vector<double> m_afCoefs;
  std::vector<std::pair<std::size_t, double>> m_aMerged;  ///< terms in which one did, and their magnitudes
};
