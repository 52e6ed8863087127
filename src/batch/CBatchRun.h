#pragma once

#include <cstddef>
#include <string>

#include "batch/BatchReport.h"
#include "batch/CBatchOptions.h"
#include "codecs/PictureFormats.h"
#include "model/CGrid.h"
#include "model/GridHost.h"

class CTerminationSignals;

/// One run: reads the model, solves it, writes what was asked for.
class CBatchRun : private GridHost {
 public:
  /// `signals` is looked at after every tick and every file; one that has come ends the process.
  CBatchRun(const CBatchOptions& options, CTerminationSignals& signals);
  CBatchRun(const CBatchRun&) = delete;
  CBatchRun& operator=(const CBatchRun&) = delete;
  ~CBatchRun() override { m_Grid.Run().AttachHost(nullptr); }

  /// Does it all; answers with an ExitStatus.
  int Run();

 private:
  void CurvesRefused(int count) override;
  void PauseSolverConverged() override { m_Result.m_Stopped = StopReason::Converged; }
  void PauseSolverGaveUp() override { m_Result.m_Stopped = StopReason::GaveUp; }
  void ResumeAfterChange() override { m_Grid.Run().SetRunning(true); }

  bool ReadInputs();
  bool ReadReference();
  void TakeSuggestedTears();
  void Solve();
  bool IsAtBound(double seconds);
  void Tick();
  bool WriteOutputs();
  bool WriteExports();
  bool WriteOutput(std::size_t format);
  void EndIfAsked();
  int StatusOfStop() const;

  const CBatchOptions m_Options;
  CTerminationSignals& m_Signals;
  CGrid m_Grid;
  CReadPicture m_Photograph;
  std::string m_PhotographFile;  ///< that a project names; empty for none
  CBatchResult m_Result;
};
