// Steps back and forward, and what becomes of the oldest when they take too much memory.

#include <string>

#include <gtest/gtest.h>

#include "editing/CUndoSteps.h"

namespace {

struct CSizedState {
  int m_iNumber = 0;
  std::size_t m_uBytes = 1;
  std::size_t Bytes() const { return m_uBytes; }
};

using CSteps = CUndoSteps<CSizedState>;

// With something of 500 bytes that others may hold, too.
struct CSharingState {
  const int* m_pThing = nullptr;
  static std::size_t Bytes() { return 1; }
  CSharedMemory Shared() const { return {m_pThing, 500}; }
};

CSteps Done(int count, std::size_t bytes = 1, std::size_t most = 1000) {
  CSteps steps(most);
  for (int k = 0; k < count; ++k) steps.Add("step " + std::to_string(k), {k, bytes});
  return steps;
}

}  // namespace

TEST(UndoStepsTest, AtFirstThereAreNone) {
  const CSteps steps(1000);
  EXPECT_FALSE(steps.CanUndo());
  EXPECT_FALSE(steps.CanRedo());
  EXPECT_EQ(steps.Bytes(), 0U);
}

TEST(UndoStepsTest, GoBackAndForwardThroughTheirStates) {
  CSteps steps = Done(3);
  EXPECT_EQ(steps.UndoName(), "step 2");
  EXPECT_EQ(steps.UndoState().m_iNumber, 2);
  steps.Undo({3});
  EXPECT_EQ(steps.UndoState().m_iNumber, 1);
  EXPECT_EQ(steps.RedoName(), "step 2");
  EXPECT_EQ(steps.RedoState().m_iNumber, 3);
  steps.Undo({2});
  EXPECT_EQ(steps.RedoName(), "step 1");
  EXPECT_EQ(steps.RedoState().m_iNumber, 2);
  steps.Redo({1});
  EXPECT_EQ(steps.UndoName(), "step 1");
  EXPECT_EQ(steps.UndoState().m_iNumber, 1);
  EXPECT_EQ(steps.RedoState().m_iNumber, 3);
}

TEST(UndoStepsTest, ANewStepDropsThoseTakenBack) {
  CSteps steps = Done(3);
  steps.Undo({3});
  steps.Undo({2});
  steps.Add("another", {5});
  EXPECT_FALSE(steps.CanRedo());
  EXPECT_EQ(steps.UndoCount(), 2U);
  EXPECT_EQ(steps.UndoName(), "another");
}

TEST(UndoStepsTest, TheOldestGoWhenTheyTakeTooMuch) {
  CSteps steps = Done(30, 100);
  EXPECT_EQ(steps.UndoCount(), 10U);
  EXPECT_EQ(steps.Bytes(), 1000U);
  EXPECT_EQ(steps.UndoState().m_iNumber, 29);
  for (int k = 0; k < 9; ++k) steps.Undo({30 - k, 100});
  EXPECT_EQ(steps.UndoState().m_iNumber, 20);
}

TEST(UndoStepsTest, OfStepsTakenBackTheFarthestGoFirst) {
  CSteps steps = Done(3);
  steps.Undo({3, 400});
  steps.Undo({2, 400});
  steps.Undo({1, 400});
  EXPECT_EQ(steps.RedoCount(), 2U);
  EXPECT_EQ(steps.RedoState().m_iNumber, 1);
  EXPECT_EQ(steps.Bytes(), 800U);
}

TEST(UndoStepsTest, TheLatestIsKeptHoweverLarge) {
  CSteps steps = Done(3, 5000);
  EXPECT_EQ(steps.UndoCount(), 1U);
  EXPECT_EQ(steps.UndoState().m_iNumber, 2);
}

TEST(UndoStepsTest, WhatTheyShareCountsOnce) {
  const int first = 0;
  const int second = 0;
  CUndoSteps<CSharingState> steps(1100);
  for (const int* thing : {&first, &first, &first}) steps.Add("step", {thing});
  EXPECT_EQ(steps.Bytes(), 503U);
  steps.Add("step", {&second});
  EXPECT_EQ(steps.Bytes(), 1004U);
  steps.Undo({nullptr});
  EXPECT_EQ(steps.Bytes(), 504U);
  steps.ForgetRedo();
  steps.DropUndo();
  EXPECT_EQ(steps.Bytes(), 502U);
  steps.Clear();
  EXPECT_EQ(steps.Bytes(), 0U);
}

TEST(UndoStepsTest, WhatThePresentHoldsWouldNotBeFreed) {
  const int kept = 0;
  const int removed = 0;
  CUndoSteps<CSharingState> steps(600);
  steps.SetHeld(&kept);
  for (int k = 0; k < 50; ++k) steps.Add("step", {&kept});
  EXPECT_EQ(steps.UndoCount(), 50U);
  steps.Add("step", {&removed});
  EXPECT_EQ(steps.UndoCount(), 51U);
  steps.SetHeld(nullptr);
  steps.Add("step", {});
  EXPECT_EQ(steps.UndoCount(), 2U) << "the oldest go";
}

TEST(UndoStepsTest, CountTheirMemoryWhereverTheyAre) {
  CSteps steps = Done(4, 10);
  steps.Undo({4, 30});
  EXPECT_EQ(steps.Bytes(), 60U);
  steps.DropUndo();
  EXPECT_EQ(steps.Bytes(), 50U);
  steps.ForgetRedo();
  EXPECT_EQ(steps.Bytes(), 20U);
  steps.Clear();
  EXPECT_EQ(steps.Bytes(), 0U);
}
