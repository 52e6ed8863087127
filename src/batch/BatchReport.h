#pragma once

#include <iosfwd>
#include <string>

#include "batch/CBatchOptions.h"

class CGrid;
struct CFindings;

/// Seconds that the phases of a run took.
struct CPhases {
  double m_fLoad = 0.0;
  double m_fSolve = 0.0;
  double m_fWrite = 0.0;
};

/// Why a run's solver has stopped: the first two by itself, then at the bound of iterations and at that of time.
enum class StopReason { Converged, GaveUp, Bound, Time };

/// What a run has come to.
struct CBatchResult {
  long m_iIterations = 0;
  StopReason m_Stopped = StopReason::Bound;
  bool m_bDamaged = false;    ///< the model could be read in part only
  int m_iSuggestedTears = 0;  ///< taken from the depth map
  CPhases m_Seconds;
};

/// A sentence on the constraints of the user that act on nothing; empty where all of them act.
std::string InactiveSummary(const CGrid& grid);

/// Prints the report on the model as it is; nothing for Report::None.
void PrintReport(std::ostream& out, CBatchOptions::Report form, const CGrid& grid, const CBatchResult& result,
                 const CFindings& findings);
