#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class CConstraintRows;

/// Constraint rows that depend on each other: a combination of them that is 0 on every surface.
///
/// Rows count in heights: those of slopes as the difference of heights across their cell.
struct CRowRelation {
  /// Rows with their factors, of which the largest has magnitude 1; by row number. Those below 1e-2 are left out.
  std::vector<std::uint32_t> m_auRows;
  std::vector<double> m_afFactors;
  /// What the same combination makes of their targets, model units: 0 unless they contradict each other.
  double m_fGap = 0.0;
};

/// All relations between rows, one for each row that the rows before it make up, with that row as the last. A
/// combination counts as 0 when no entry is above 1e-8 of the largest entry in the rows, as stencils are exact to some
/// 1e-10.
///
/// Rows are eliminated one after the other, each by those before it that share points with it, with the largest entry
/// as the pivot. Where thousands lie so close together that this would take longer than some tenths of a second,
/// relations of the last are not found.
std::vector<CRowRelation> FindRowRelations(const CConstraintRows& rows);

/// What row `j` asks for and what `value`, the row's product with the surface, has of it, as a height that is missed:
/// for a slope that across its cell. Model units, positive where the surface is above or steeper.
double MissedHeight(const CConstraintRows& rows, std::size_t j, double value);
