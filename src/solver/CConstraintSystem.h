#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "solver/CCompressedRows.h"
#include "solver/CConstraintRows.h"
#include "solver/CHierarchicalBasis.h"

/// The symmetric indefinite system that the solver works on: smoothness of the heights, bordered by the constraints,
///
///     | B^T H B   B^T C^T |  | x |       | B^T g |
///     | C B       0       |  | l |   =   | d     |
///
/// with x the N coefficients of the basis (heights z = B x, where B is the basis' invW) and l the M multipliers. The
/// load g is 0 but where the smoothness counts from a shape other than a plane.
class CConstraintSystem {
 public:
  /// The basis must outlive the system.
  explicit CConstraintSystem(const CHierarchicalBasis& basis) : m_pBasis(&basis) {}

  /// H, over the heights: one row and column per scan position.
  CCompressedRows& Smoothness() { return m_Smoothness; }
  const CCompressedRows& Smoothness() const { return m_Smoothness; }
  /// g, by scan position; empty for 0.
  std::vector<double>& Load() { return m_afLoad; }
  const std::vector<double>& Load() const { return m_afLoad; }
  /// C and d.
  CConstraintRows& Constraints() { return m_Constraints; }
  const CConstraintRows& Constraints() const { return m_Constraints; }

  /// B.
  const CHierarchicalBasis& Basis() const { return *m_pBasis; }

  /// N, M, and N + M, the size of all vectors of the iteration: x first, then l.
  std::size_t UnknownCount() const { return m_pBasis->Size(); }
  std::size_t ConstraintCount() const { return m_Constraints.Count(); }
  std::size_t Size() const { return UnknownCount() + ConstraintCount(); }

  /// Sizes the work space; must be called after any part has changed size and before `ApplySystem`.
  void Prepare() {
    m_afHeights.resize(UnknownCount());
    m_afForces.resize(UnknownCount());
  }
  /// out = (system) v. Both have `Size()` entries, the coefficients first, and must not overlap. Allocates nothing.
  void ApplySystem(std::span<const double> v, std::span<double> out) {
    ApplySystem(v.first(UnknownCount()), v.subspan(UnknownCount()), out);
  }
  void ApplySystem(std::span<const double> x, std::span<const double> multipliers, std::span<double> out);
  /// The same, with the load taken off: out = (system) (x, l) - (B^T g, 0).
  void ApplyLoaded(std::span<const double> x, std::span<const double> multipliers, std::span<double> out);
  /// out = B^T g, N entries.
  void ApplyLoad(std::span<double> out);
  /// out = B^T (|H| |B x| + |g|), both of N entries: the forces of the smoothness without what cancels in them.
  void ApplyMagnitudes(std::span<const double> x, std::span<double> out);
  /// The same in coefficients x = D y, with a diagonal matrix D: out = D (B^T H B D y + B^T C^T l) and C B D y.
  void ApplyScaled(std::span<const double> y, std::span<const double> scale, std::span<const double> multipliers,
                   std::span<double> out);
  /// out = B^T C^T l, N entries: the forces of the constraints.
  void ApplyTransposedRows(std::span<const double> multipliers, std::span<double> out);
  /// values = C B x, M entries: what the constraints have got.
  void ApplyRows(std::span<const double> x, std::span<double> values);

 private:
  const CHierarchicalBasis* m_pBasis;
  CCompressedRows m_Smoothness;
  CConstraintRows m_Constraints;
  std::vector<double> m_afLoad;
  std::vector<double> m_afHeights;
  std::vector<double> m_afForces;
};
