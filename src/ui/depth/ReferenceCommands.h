#pragma once

/// What the panel of the reference depth asks of the program around it.
class ReferenceCommands {
 public:
  virtual ~ReferenceCommands() = default;

  /// Has the user choose a depth map, and takes it.
  virtual void LoadReference() = 0;
  /// Selects the height that the fitted map misses by most. Nothing without one.
  virtual void SelectWorst() = 0;
};
