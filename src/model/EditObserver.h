#pragma once

#include "model/Edit.h"

/// Hears of every change that a hand or a command makes of the document, before it is made and after. One edit may lie
/// within another.
class EditObserver {
 public:
  virtual ~EditObserver() = default;

  /// The edit is about to be made; it has been made and posted.
  virtual void BeforeEdit(Edit edit) = 0;
  virtual void AfterEdit(Edit edit) = 0;
  /// A button has taken hold of something, and has let go of it.
  virtual void GestureBegins() = 0;
  virtual void GestureEnds() = 0;
};
