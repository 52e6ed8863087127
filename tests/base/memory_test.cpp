#include "base/Memory.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(Memory, ReleaseGivesTheCapacityBack) {
  std::vector<int> values(100);
  Release(values);
  EXPECT_EQ(values.capacity(), 0U);
}

TEST(Memory, TheMachineHasSomeLeft) {
  EXPECT_GT(AvailableMemory(), 1e6);
  EXPECT_LT(AvailableMemory(), 1e15);
}

}  // namespace
