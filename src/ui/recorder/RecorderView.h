#pragma once

#include <string>

struct CFrameCamera;

/// What the animation recorder asks of the model view.
class RecorderView {
 public:
  virtual ~RecorderView() = default;

  /// What a frame keeps of the view.
  virtual CFrameCamera Camera() const = 0;
  /// Take these values as they are, and bring everything derived from them up to date.
  virtual void SetCamera(const CFrameCamera& camera) = 0;
  virtual void RequestRedraw() = 0;
  /// Draw now and save the frame just drawn, before it is swapped to the screen, as a 24-bit bitmap. False if the file
  /// cannot be written.
  virtual bool DrawAndSave(const std::string& fileName) = 0;
};
