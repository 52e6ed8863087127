#pragma once

#include "ui/window/WindowLayout.h"

/// The least height of the window at which nothing is cut off: the views give way first.
inline int FittingHeight(CLayoutOptions options) {
  constexpr int kHigh = 10'000;
  options.m_iHeight = kHigh;
  return kHigh - ComputeLayout(options).Of(Control::ImageView).h;
}
