#pragma once

#include <functional>
#include <string>

#include "editing/CEstimate.h"
#include "ui/depth/CEstimateFields.h"

class CGrid;
class CImageViewUI;

/// The user's own estimator at work on the photograph, beside the window.
class CEstimateRun {
 public:
  /// `take` gets the map, and what it is called, between two events, while nothing is dragged and no dialog is open.
  CEstimateRun(CImageViewUI& window, const CGrid& grid,
               std::function<void(CReadDepthMap map, const std::string& file)> take);
  ~CEstimateRun();
  CEstimateRun(const CEstimateRun&) = delete;
  CEstimateRun& operator=(const CEstimateRun&) = delete;

  /// The command line that was used last, in this run or an earlier one; empty for none.
  std::string CommandLine() const;
  /// See ReferenceCommands.
  void Begin(const std::string& commandLine);
  void Cancel();
  CEstimateFields::CState State() const;

 private:
  void Look();
  void Tell(const std::string& text);
  static void cb_Look(void* run);

  CImageViewUI& m_Window;
  const CGrid& m_Grid;
  std::function<void(CReadDepthMap map, const std::string& file)> m_Take;
  CEstimate m_Estimate;
  std::string m_Photograph;  ///< that is being looked at
  std::string m_Outcome;     ///< of the last one
};
