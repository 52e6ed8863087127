#pragma once

#include <concepts>

#include <FL/Fl.H>

#include "support/gui/Input.h"
#include "support/gui/ToolkitTest.h"

/// Clicks at `place()`, again where the click came before the window was there, until `condition` holds; false if it
/// never did.
template <typename Place, std::predicate Condition>
bool ClickUntil(Place place, Condition condition) {
  constexpr double kSecondsToAnswer = 0.5;
  return RunToolkitUntil([&] {
    if (condition()) return true;
    Click(place());
    Fl::wait(kSecondsToAnswer);
    Fl::check();
    return condition();
  });
}
