#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/CCompressedRows.h"
#include "solver/CRowFactor.h"

/// Replaces the right-hand sides d of constraint rows C by the nearest that some surface satisfies, both seen
/// multiplied by a diagonal matrix R.
///
/// What a row that depends on its neighbours contradicts is taken out of them together, by a factor of R C C^T R; what
/// then is left, by least squares with conjugate gradients [HestenesStiefel1952]. Targets that do not contradict each
/// other stay as they are, to the last bit; so do those of rows so close to each other that the search does not end.
/// Rows that are found to depend on none but their neighbours are searched no further, whatever their targets.
class CConsistentTargets {
 public:
  /// For rows in blocks, as for CRowFactor.
  void SetRows(const CCompressedRows& rows, std::span<const double> scale, std::span<const CRowBlock> blocks);
  /// Replaces the targets of those rows. With thousands of rows the first call after `SetRows` takes some tens of
  /// products with them, another only where they may contradict each other.
  void Apply(std::span<double> targets);

 private:
  /// Whether rows depend on each other that m_auDependent does not account for.
  enum class Others { kUnknown, kNone, kSome };

  void FindDependentRows(std::span<const CRowBlock> blocks);
  bool TakeOutDependent(std::vector<double>& values);
  void AddNullVectors(std::span<const double> shares, double factor, std::span<double> values);
  std::vector<double> OfNullVectors(std::span<const double> values);
  Others FindOthers();
  bool CanBeMet(std::span<const double> values);
  bool IsReached(std::vector<double> values, double share);
  void DropDependent(std::span<double> values) const;
  bool FindContradiction(std::vector<double>& missed) const;

  CCompressedRows m_Rows;  ///< multiplied by R, over those columns alone that occur in them
  std::size_t m_uColumns = 0;
  std::vector<double> m_afScale;
  CRowFactor m_Factor;
  std::vector<std::uint32_t> m_auDependent;  ///< rows that those before them almost make up
  Others m_Others = Others::kUnknown;
  std::vector<double> m_afWork;
};
