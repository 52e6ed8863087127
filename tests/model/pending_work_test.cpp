#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/CPendingWork.h"

namespace {

constexpr std::array kCodes{1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384};

bool IsEdit(int code) { return code == 1 || code == 2 || code == 4; }

std::vector<int> CodesOf(const std::vector<Operation>& operations) {
  std::vector<int> codes;
  codes.reserve(operations.size());
  for (const Operation operation : operations) codes.push_back(static_cast<int>(operation));
  return codes;
}

std::vector<int> Taken(const std::vector<int>& posted) {
  CPendingWork work;
  for (const int code : posted) work.Post(static_cast<Operation>(code));
  return CodesOf(work.Take());
}

bool Repeats(int code) { return code == 128 || code == 256; }

// Edits between two commands stand for one, the most thorough; a command posted twice in a row for one as well, but for
// a split and a merge, of which each counts.
std::vector<int> Wanted(const std::vector<int>& posted) {
  std::vector<int> wanted;
  for (const int code : posted) {
    const int last = wanted.empty() ? 0 : wanted.back();
    if (IsEdit(last) && IsEdit(code)) {
      wanted.back() = std::max(last, code);
    } else if (last != code || Repeats(code)) {
      wanted.push_back(code);
    }
  }
  return wanted;
}

TEST(PendingWorkTest, CodesArePowersOfTwo) {
  EXPECT_EQ(CodesOf({Operation::kNone}), (std::vector{0}));
  EXPECT_EQ(CodesOf({Operation::kRestart, Operation::kRebuild, Operation::kRebuildMaps}), (std::vector{1, 2, 4}));
  EXPECT_EQ(CodesOf({Operation::kTransferToHigh, Operation::kTransferToNormal}), (std::vector{8, 16}));
  EXPECT_EQ(CodesOf({Operation::kRestoreHigh, Operation::kRestoreNormal}), (std::vector{32, 64}));
  EXPECT_EQ(CodesOf({Operation::kSubdivide, Operation::kMerge}), (std::vector{128, 256}));
  EXPECT_EQ(CodesOf({Operation::kContourAttributes, Operation::kNewCurve}), (std::vector{512, 1024}));
  EXPECT_EQ(CodesOf({Operation::kLoadGrid, Operation::kNewGrid}), (std::vector{2048, 4096}));
  EXPECT_EQ(CodesOf({Operation::kSaveGrid, Operation::kLoadImage}), (std::vector{8192, 16384}));
}

TEST(PendingWorkTest, NothingIsPendingAtFirst) {
  CPendingWork work;
  EXPECT_EQ(work.Next(), Operation::kNone);
  EXPECT_TRUE(work.Take().empty());
}

TEST(PendingWorkTest, OfEachPairTheLastIsVisible) {
  for (const int first : kCodes) {
    for (const int second : kCodes) {
      CPendingWork work;
      work.Post(static_cast<Operation>(first));
      EXPECT_EQ(static_cast<int>(work.Next()), first);
      work.Post(static_cast<Operation>(second));
      EXPECT_EQ(static_cast<int>(work.Next()), second) << "after " << first;
    }
  }
}

TEST(PendingWorkTest, OfEachPairOfCommandsBothArePerformedInOrder) {
  for (const int first : kCodes) {
    for (const int second : kCodes) {
      if (first == second || (IsEdit(first) && IsEdit(second))) continue;
      EXPECT_EQ(Taken({first, second}), (std::vector{first, second}));
    }
  }
}

TEST(PendingWorkTest, EachPairOfEditsMergesToTheMostThorough) {
  for (const int first : {1, 2, 4}) {
    for (const int second : {1, 2, 4}) EXPECT_EQ(Taken({first, second}), (std::vector{std::max(first, second)}));
  }
}

TEST(PendingWorkTest, CodePostedTwiceIsPerformedOnce) {
  for (const int code : kCodes) {
    if (!Repeats(code)) {
      EXPECT_EQ(Taken({code, code}), (std::vector{code}));
    }
  }
}

TEST(PendingWorkTest, EachSplitAndEachMergeCounts) {
  EXPECT_EQ(Taken({128, 128, 128}), (std::vector{128, 128, 128}));
  EXPECT_EQ(Taken({256, 256}), (std::vector{256, 256}));
  EXPECT_EQ(Taken({128, 4, 1, 128, 256, 256}), (std::vector{128, 4, 128, 256, 256}));
}

TEST(PendingWorkTest, EditsDoNotMergeAcrossACommand) {
  EXPECT_EQ(Taken({4, 8, 1}), (std::vector{4, 8, 1}));
  EXPECT_EQ(Taken({1, 8192, 4, 2}), (std::vector{1, 8192, 4}));
  EXPECT_EQ(Taken({8, 1, 8}), (std::vector{8, 1, 8}));
}

TEST(PendingWorkTest, TakingLeavesNothing) {
  CPendingWork work;
  work.Post(Operation::kRestart);
  work.Post(Operation::kTransferToHigh);
  work.Take();
  EXPECT_EQ(work.Next(), Operation::kNone);
  EXPECT_TRUE(work.Take().empty());
}

TEST(PendingWorkTest, ClearingForgetsWhatWasOverwrittenToo) {
  CPendingWork work;
  work.Post(Operation::kRestart);
  work.Post(Operation::kTransferToHigh);
  work.Clear();
  EXPECT_EQ(work.Next(), Operation::kNone);
  EXPECT_TRUE(work.Take().empty());
}

TEST(PendingWorkTest, CodesPostedAfterTakingAreKept) {
  CPendingWork work;
  work.Post(Operation::kNewGrid);
  work.Take();
  work.Post(Operation::kRebuildMaps);
  EXPECT_EQ(work.Next(), Operation::kRebuildMaps);
  EXPECT_EQ(work.Take(), (std::vector{Operation::kRebuildMaps}));
}

TEST(PendingWorkTest, UnknownCodesAreKeptLikeCommands) { EXPECT_EQ(Taken({1, 3, 2}), (std::vector{1, 3, 2})); }

RC_GTEST_PROP(PendingWorkProperty, NothingPostedIsLost, ()) {
  const auto posted = *rc::gen::container<std::vector<int>>(rc::gen::elementOf(kCodes));
  CPendingWork work;
  for (const int code : posted) work.Post(static_cast<Operation>(code));
  RC_ASSERT(static_cast<int>(work.Next()) == (posted.empty() ? 0 : posted.back()));
  RC_ASSERT(CodesOf(work.Take()) == Wanted(posted));
}

TEST(PendingWorkTest, StepsWaitBehindTheCodesPostedBeforeThem) {
  CPendingWork work;
  EXPECT_FALSE(work.HasStep());
  for (const Operation code : {Operation::kRestart, Operation::kSubdivide}) work.Post(code);
  work.RequestStep(UserStep::Undo);
  EXPECT_TRUE(work.HasStep());
  EXPECT_EQ(work.Next(), Operation::kSubdivide);
  work.Post(Operation::kMerge);
  work.RequestStep(UserStep::Redo);
  work.RequestStep(UserStep::Undo);
  work.Post(Operation::kRebuild);
  const std::vector<CPendingRound> wanted{{{Operation::kRestart, Operation::kSubdivide}, UserStep::Undo},
                                          {{Operation::kMerge}, UserStep::Redo},
                                          {{}, UserStep::Undo},
                                          {{Operation::kRebuild}, UserStep::None}};
  EXPECT_EQ(work.TakeRounds(), wanted);
  EXPECT_FALSE(work.HasStep());
  EXPECT_TRUE(work.TakeRounds().empty());
}

TEST(PendingWorkTest, ACommandPostedAgainBehindAStepIsAnother) {
  CPendingWork work;
  work.Post(Operation::kNewGrid);
  work.RequestStep(UserStep::Undo);
  work.Post(Operation::kNewGrid);
  const std::vector<CPendingRound> wanted{{{Operation::kNewGrid}, UserStep::Undo},
                                          {{Operation::kNewGrid}, UserStep::None}};
  EXPECT_EQ(work.TakeRounds(), wanted);
}

TEST(PendingWorkTest, EditsMergeAcrossAStepIntoWhatComesFirst) {
  CPendingWork work;
  work.Post(Operation::kRestart);
  work.RequestStep(UserStep::Undo);
  work.Post(Operation::kRebuildMaps);
  work.Post(Operation::kRestart);
  const std::vector<CPendingRound> rounds = work.TakeRounds();
  ASSERT_FALSE(rounds.empty());
  EXPECT_EQ(rounds.front(), (CPendingRound{{Operation::kRebuildMaps}, UserStep::Undo}));
}

TEST(PendingWorkTest, ClearingForgetsSteps) {
  CPendingWork work;
  work.RequestStep(UserStep::Undo);
  work.Clear();
  EXPECT_FALSE(work.HasStep());
  EXPECT_TRUE(work.TakeRounds().empty());
}

}  // namespace
