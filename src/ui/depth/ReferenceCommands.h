#pragma once

#include <string>

struct CTearWishes;

/// What the panel of the reference depth asks of the program around it.
class ReferenceCommands {
 public:
  virtual ~ReferenceCommands() = default;

  /// Has the user choose a depth map, and takes it.
  virtual void LoadReference() = 0;
  /// Takes the depth map that the photograph carries. Nothing without one.
  virtual void TakeEmbedded() = 0;
  /// Shows the map in colours over the photograph, or shows it no more.
  virtual void ShowMap(bool shown) = 0;
  /// Selects the height that the fitted map misses by most. Nothing without one.
  virtual void SelectWorst() = 0;

  /// Starts the user's own estimator, whose command line is kept for later runs; takes what it writes once it has
  /// ended.
  virtual void Estimate(const std::string& commandLine) = 0;
  /// Ends it. Nothing if none runs.
  virtual void CancelEstimate() = 0;

  /// Shows tears in the image view, all of them taken until clicks drop them, in place of those that are shown.
  virtual void SuggestTears(const CTearWishes& wishes) = 0;
  /// Makes curves of those that are taken, in one step; none is shown afterwards.
  virtual void TakeTears() = 0;
  /// Shows them no more.
  virtual void DropTears() = 0;
};
