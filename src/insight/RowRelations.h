#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

class CConstraintRows;

/// Constraint rows that depend on each other: a combination of them that is 0 on every surface.
///
/// Rows count in heights: those of slopes as the difference of heights across their cell.
struct CRowRelation {
  /// By row number, ascending; the largest factor has magnitude 1.
  std::vector<std::pair<std::uint32_t, double>> m_aFactors;

  /// The rows that have a say in it: those whose factor is above 0.01.
  std::vector<std::uint32_t> NamedRows() const;
  /// What the same combination makes of their targets, model units: 0 unless they contradict each other.
  double GapOf(const CConstraintRows& rows) const;
  /// Whether it is 0 indeed: no entry is above 1e-8 of the largest entry in its rows, as stencils are exact to some
  /// 1e-10.
  bool Vanishes(const CConstraintRows& rows) const;
};

/// What a search for relations has found.
struct CRowRelations {
  /// One for each row that the rows before it make up, with that row as the last, which is in no other.
  std::vector<CRowRelation> m_aRelations;
  /// False where the search was cut short, so that there may be more.
  bool m_bWhole = true;
};

/// As many as take seconds at most, where rows share most of their points.
inline constexpr std::size_t kMostRelationProducts = 100'000'000;

/// All relations between rows.
///
/// Rows are eliminated one after the other, each by those before it that share points with it, with the largest entry
/// as the pivot. Where thousands lie so close together that this would take more than `mostProducts` products, the last
/// rows are not looked at.
CRowRelations FindRowRelations(const CConstraintRows& rows, std::size_t mostProducts = kMostRelationProducts);

/// What row `j` asks for and what `value`, the row's product with the surface, has of it, as a height that is missed:
/// for a slope that across its cell. Model units, positive where the surface is above or steeper.
double MissedHeight(const CConstraintRows& rows, std::size_t j, double value);
