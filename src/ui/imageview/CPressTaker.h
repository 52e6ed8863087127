#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "base/CPlanePoint.h"

class CViewMapping;

/// Takes a press of the left button away from the view for somebody who waits for one.
class CPressTaker {
 public:
  /// Is given the place of a press, or nothing where Escape was typed instead, and answers whether that was all.
  using Taker = std::function<bool(const std::optional<CPlanePoint>& place)>;

  /// The next press is `taker`'s; null: nobody waits.
  void Wait(Taker taker) { m_Taker = std::move(taker); }
  /// Whether the toolkit's current event was taken: the press, Escape, or what follows of a press that was. Presses
  /// with Shift are not.
  bool Handle(int event, const CViewMapping& mapping);

 private:
  Taker m_Taker;
  bool m_bHeld = false;  ///< the button that is held is no longer the view's
};
