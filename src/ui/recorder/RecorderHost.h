#pragma once

/// What the animation recorder asks of the window around the model view.
class RecorderHost {
 public:
  virtual ~RecorderHost() = default;

  /// Hold the solver while the recorder is open, and end that.
  virtual void PauseForRecorder() = 0;
  virtual void EndRecorder() = 0;
  /// "Frame nb %4d recorded." in the help line.
  virtual void ShowFrameRecorded(int number) = 0;
};
