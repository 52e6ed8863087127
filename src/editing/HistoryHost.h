#pragma once

#include <string>

#include "editing/CSurroundings.h"

/// What has become of the model by a step back or forward.
struct CTakenStep {
  bool m_bUndone = false;                      ///< or else done again
  std::string m_Name;                          ///< in words
  bool m_bLightsChanged = false;               ///< any light is another now, or how bright it may be
  bool m_bRectangleChanged = false;            ///< the model lies elsewhere than before
  const CSurroundings* m_pRestored = nullptr;  ///< of a step that has replaced the surface; null for others
};

/// What the history of a document asks of the window.
class HistoryHost {
 public:
  virtual ~HistoryHost() = default;

  /// Whether a mouse button is held.
  virtual bool IsDragging() const = 0;
  /// Whether the event under way is of a key or of the wheel.
  virtual bool IsTyping() const = 0;
  /// What is kept with a step that replaces the surface.
  virtual CSurroundings Surroundings() const = 0;
  /// And with one that replaces views, recording and photograph, too; only these are looked at.
  virtual CProject Work() const { return {}; }
  /// Show the model as it is now, and tell the user of the step.
  virtual void StepTaken(const CTakenStep& step) = 0;
  /// A step needs more memory than there is, and the model stays.
  virtual void StepFailed() = 0;
};
