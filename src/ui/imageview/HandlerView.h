#pragma once

#include "constraints/CCntrCtrl.h"

/// What the handlers of the image view's mouse and keys ask of the view itself.
class HandlerView {
 public:
  virtual ~HandlerView() = default;

  /// The type of new curves; kNone until one is chosen.
  virtual ::CurveType CurveType() const = 0;
  /// Another type of new curves from now on; every selection stays.
  virtual void KeepCurveType(::CurveType type) = 0;
  /// Switches the grid on. False if it was on already.
  virtual bool ShowGrid() = 0;
};
