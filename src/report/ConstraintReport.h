#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "constraints/Inactivity.h"
#include "insight/RowRelations.h"
#include "solver/CCompressedRows.h"

class CConstraintRows;
class CGrid;

/// What has become of a constraint.
enum class ConstraintState {
  Kept,         ///< missed by at most 1e-4 of the height range
  NotYet,       ///< missed by more, and the solver goes on
  Missed,       ///< missed by more, and the solver has stopped
  Contradicts,  ///< it and others cannot all be kept
  Repeats,      ///< others ask for the same
  Inactive,     ///< lies in a tear, on the border or outside, and has no row
};

/// One constraint, as far as it is of one kind: a record that fixes height and orientation makes two lines.
struct CConstraintLine {
  /// The curve that generates it, by its number in the list; nothing for the user's own.
  std::optional<std::size_t> m_Curve;
  std::size_t m_uNumber = 0;  ///< in the user's list, or among the generated ones
  std::uint32_t m_uKind = 0;  ///< PtCstrKind::kPosition or kNormal
  double m_fX = 0.0;          ///< model units
  double m_fY = 0.0;
  std::array<double, 2> m_afWanted{};  ///< the height and 0, or the slopes p and q
  std::array<double, 2> m_afKept{};    ///< the same of the surface; 0 for slopes that have no row
  double m_fMissed =
      0.0;  ///< model units, never negative; slopes by the height missed across their cell, 0 where inactive
  double m_fShare = 0.0;  ///< of the height range
  ConstraintState m_State = ConstraintState::Kept;
  Inactivity m_Why = Inactivity::None;
  std::vector<std::size_t> m_auOthers;  ///< lines that it contradicts or repeats
};

/// Lines that cannot all be kept.
struct CContradiction {
  std::vector<std::size_t> m_auLines;
  double m_fGap = 0.0;  ///< by how much they disagree, model units
};

/// All constraints and what the surface makes of them.
struct CConstraintReport {
  double m_fRange = 0.0;                  ///< the height range that shares are of, model units, above 0
  std::vector<CConstraintLine> m_aLines;  ///< those of the user's list, then the generated ones
  std::vector<CContradiction> m_aContradictions;
  bool m_bSearchedAll = true;  ///< otherwise there may be more contradictions and repetitions than it knows of

  /// The numbers of the lines, those that miss most first.
  std::vector<std::size_t> ByMissed() const;
};

/// Makes reports on the constraints of a grid, one after the other. How rows depend on each other, which takes most of
/// the time, is found anew only where they are other rows than those of the report before.
class CConstraintReporter {
 public:
  /// See `FindRowRelations`.
  explicit CConstraintReporter(std::size_t mostProducts = kMostRelationProducts) : m_uMostProducts(mostProducts) {}

  /// The report on the constraints as they are now, on the surface as it is now. Changes nothing of the grid and may be
  /// asked for between two ticks.
  CConstraintReport Report(const CGrid& grid);
  /// How often it has searched for relations.
  int SearchCount() const { return m_iSearches; }

 private:
  void SearchIn(const CConstraintRows& rows);

  std::size_t m_uMostProducts;
  int m_iSearches = 0;
  // What the relations are those of.
  CCompressedRows m_Rows;
  std::vector<double> m_afSpans;
  CRowRelations m_Relations;
};

/// A single one.
CConstraintReport ReportOnConstraints(const CGrid& grid);

/// The state as users read it, with the reason where it is inactive ("in a tear").
std::string StateText(const CConstraintLine& line);
