#pragma once

/// Pixels per pixel of the design, for screens of high density: what RELIEVO_SCALE says, a number from 0.5 to 4 such as
/// 1.5; 1 if it is not set or is anything else.
double UiScale();
