// Windowed tests: each process has a display to itself.
#include <gtest/gtest.h>

#include "support/gui/ClaimDisplay.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!testing::GTEST_FLAG(list_tests)) ClaimDisplay();
  return RUN_ALL_TESTS();
}
