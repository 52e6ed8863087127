#pragma once

#include <memory>

struct COverlay;

/// What makes an overlay of the image view. The window asks it again and again while its overlay is the one that is
/// shown.
class OverlaySource {
 public:
  virtual ~OverlaySource() = default;

  /// The overlay as it is now; null where it is what this has answered last since `Begin`. That must be cheap to find
  /// out. Called between two events, when the leaves of the tree are listed.
  virtual std::shared_ptr<const COverlay> Update() = 0;
  /// Whether the answer is still being worked out: it is then asked without a pause, and works for a few milliseconds
  /// each time.
  virtual bool IsBusy() const { return false; }
  /// Whether edits alone make it another one, and no tick of the solver.
  virtual bool FollowsEditsAlone() const { return false; }
  /// Its overlay is to be shown from now on: the next answer is not null.
  virtual void Begin() = 0;
  /// It is shown no more: another one is, or none.
  virtual void End() {}
};
