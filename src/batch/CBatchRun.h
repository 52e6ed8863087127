#pragma once

#include "batch/BatchReport.h"
#include "batch/CBatchOptions.h"
#include "io/CPicture.h"
#include "model/CGrid.h"
#include "model/GridHost.h"

/// One run: reads the model, solves it, writes what was asked for.
class CBatchRun : private GridHost {
 public:
  explicit CBatchRun(const CBatchOptions& options);
  CBatchRun(const CBatchRun&) = delete;
  CBatchRun& operator=(const CBatchRun&) = delete;
  ~CBatchRun() override { m_Grid.AttachHost(nullptr); }

  /// Does it all; answers with an ExitStatus.
  int Run();

 private:
  bool Ask(const char* question) override;
  void Notice(const char* text) override;
  void ResumeAfterChange() override { m_Grid.SetRunning(true); }

  bool ReadInputs();
  void Solve();
  void Tick();
  bool WriteOutputs();

  const CBatchOptions m_Options;
  CGrid m_Grid;
  CPicture m_Picture;
  CBatchResult m_Result;
};
