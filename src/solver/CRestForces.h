#pragma once

#include <cstddef>
#include <span>
#include <vector>

class CEnergyTerms;

/// Which function of the values at its points a shape at rest has for heights: linear * v + square * v * v. Both are 0
/// for none; a constant would make no difference.
struct CRestShape {
  double m_fLinear = 0.0;
  double m_fSquare = 0.0;
  /// Whether every height of it is 0.
  bool IsNone() const { return m_fLinear == 0.0 && m_fSquare == 0.0; }
};

/// The forces G p that leave a shape p without energy where the terms of an energy count from it: (z - p)^T G (z - p)
/// instead of z^T G z.
///
/// Terms with a point that has no value count from the plane, as if there were no shape: both their forces and their
/// energy are left out here, so that planes feel no force wherever values are missing.
class CRestForces {
 public:
  /// Takes the values (not a number for none), one per unknown, and all terms that there are. Linear in the terms.
  void Collect(const CEnergyTerms& terms, std::span<const double> values);
  /// No shape, and no memory.
  void Clear();
  /// Whether there is none.
  bool IsEmpty() const { return m_afLinear.empty(); }

  /// G p by unknown; nothing, not even memory, where there is no shape or it is none.
  void MakeLoad(const CRestShape& shape, std::vector<double>& load) const;
  /// p^T G p.
  double Energy(const CRestShape& shape) const;

 private:
  // Of v and of v * v: a shape is a combination of them.
  std::vector<double> m_afLinear;
  std::vector<double> m_afSquare;
  double m_fLinearEnergy = 0.0;
  double m_fMixedEnergy = 0.0;
  double m_fSquareEnergy = 0.0;
};
