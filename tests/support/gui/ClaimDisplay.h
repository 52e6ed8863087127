#pragma once

/// Gives this process, until it ends, and what it starts a display that no other test uses: a free one of
/// RELIEVO_TEST_DISPLAYS (a folder that holds, for each, a folder named by its number, with a home), whose DISPLAY and
/// HOME are set. Waits until one is free. Without the variable all tests take turns on the display that DISPLAY names.
/// Throws std::runtime_error.
void ClaimDisplay();
