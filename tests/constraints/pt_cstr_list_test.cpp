#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CPtCstrList.h"
#include "support/ConstraintBuilders.h"

namespace {

constexpr std::uint32_t kPosition = PtCstrKind::kPosition;
constexpr std::uint32_t kNormal = PtCstrKind::kNormal;
constexpr std::uint32_t kBoth = kPosition | kNormal;

// One record per letter, all at (5, 5): p position, n normal, b both, - neither. The heights count from 0.
CPtCstrList Pile(std::string_view kinds) {
  CPtCstrList list;
  for (const char kind : kinds) {
    const std::uint32_t bits = kind == 'p' ? kPosition : kind == 'n' ? kNormal : kind == 'b' ? kBoth : 0;
    list.Add({5, 5, bits, static_cast<double>(list.size()), 0, 0});
  }
  return list;
}
CPtCstrList Pile(std::string_view kinds, const std::string& selection) {
  CPtCstrList list = Pile(kinds);
  SetSelection(list, selection);
  return list;
}
std::string Clicked(CPtCstrList list, std::uint32_t mask = kPosition) {
  list.Select(5, 5, mask, 1);
  return Selection(list);
}
std::string Next(CPtCstrList list, std::uint32_t mask = kPosition) {
  list.SelectNext(mask);
  return Selection(list);
}
std::string Prev(CPtCstrList list, std::uint32_t mask = kPosition) {
  list.SelectPrev(mask);
  return Selection(list);
}
// Selection after a deletion, '.' in front where nothing was deleted.
std::string Deleted(CPtCstrList list) {
  const bool any = list.DeleteSelected();
  return (any ? "" : ".") + Selection(list);
}
std::vector<double> HeightsOf(const CPtCstrList& list) {
  std::vector<double> heights;
  for (const CPtCstr& c : list) heights.push_back(c.m_fZ);
  return heights;
}

TEST(PtCstrTest, BitsAreSetClearedAndTestedByMask) {
  CPtCstr c;
  c.SetKind(5, true);
  EXPECT_EQ(c.m_uKind, 5U);
  EXPECT_TRUE(c.HasKind(kBoth));
  EXPECT_FALSE(c.HasKind(kNormal));
  c.SetKind(kPosition, false);
  EXPECT_EQ(c.m_uKind, PtCstrKind::kDisabled);
  c.SetState(3, true);
  c.SetState(PtCstrState::kHighlighted, false);
  EXPECT_EQ(c.m_uState, PtCstrState::kSelected);
  EXPECT_FALSE(c.HasState(PtCstrState::kHighlighted));
}

TEST(PtCstrTest, DisabledRecordConstrainsNothing) {
  CPtCstr c = HeightCstr(1, 2, 3);
  EXPECT_TRUE(c.IsEnabled(kPosition));
  EXPECT_FALSE(c.IsEnabled(kNormal));
  c.SetKind(PtCstrKind::kDisabled, true);
  EXPECT_FALSE(c.IsEnabled(kPosition));
}

TEST(PtCstrListTest, AddCopiesEverythingButTheState) {
  CPtCstrList list;
  CPtCstr& added = list.Add({1, 2, 7, 3, 4, 5, 3});
  EXPECT_EQ(&added, &*list.begin());
  EXPECT_EQ(added.m_fX, 1);
  EXPECT_EQ(added.m_fY, 2);
  EXPECT_EQ(added.m_uKind, 7U);
  EXPECT_EQ(added.m_fZ, 3);
  EXPECT_EQ(added.m_fP, 4);
  EXPECT_EQ(added.m_fQ, 5);
  EXPECT_EQ(added.m_uState, 0U);
}

TEST(PtCstrListTest, RecordsStandInCreationOrder) {
  CPtCstrList list = Pile("pnb");
  EXPECT_EQ(HeightsOf(list), (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(list.size(), 3U);
  list.clear();
  EXPECT_TRUE(list.empty());
}

TEST(PtCstrListTest, AddLeavesTheOtherRecordsSelected) {
  CPtCstrList list = Pile("pp", "01");
  list.Add(HeightCstr(5, 5, 2));
  EXPECT_EQ(Selection(list), "010");
}

// The distance is a city block's: along an axis the whole reach, along the diagonal half of it in each.
TEST(PtCstrListTest, ReachIsACityBlockDistance) {
  CPtCstrList list = Pile("p");
  const auto reaches = [&list](double x, double y, double reach) { return list.Highlight(x, y, kPosition, reach); };
  for (const double reach : {1.0, 2.0, 0.25}) {
    EXPECT_TRUE(reaches(5 + reach, 5, reach));
    EXPECT_TRUE(reaches(5, 5 - reach, reach));
    EXPECT_TRUE(reaches(5 - reach / 2, 5 + reach / 2, reach));
    EXPECT_FALSE(reaches(5 - 1.125 * reach, 5, reach));
    EXPECT_FALSE(reaches(5, 5 + 1.125 * reach, reach));
    EXPECT_FALSE(reaches(5 + 0.625 * reach, 5 + 0.625 * reach, reach));
  }
}

TEST(PtCstrListTest, HighlightMarksAllWithinReachAndNoOthers) {
  CPtCstrList list = Pile("pp");
  list.Add(HeightCstr(8, 5, 0)).SetState(PtCstrState::kHighlighted, true);
  EXPECT_TRUE(list.Highlight(5.5, 5, kPosition, 1));
  EXPECT_EQ(Highlights(list), "110");
  EXPECT_TRUE(list.Highlight(8, 5.5, kPosition, 1));
  EXPECT_EQ(Highlights(list), "001");
  EXPECT_FALSE(list.Highlight(6.5, 5, kPosition, 1));
  EXPECT_EQ(Highlights(list), "000");
}

TEST(PtCstrListTest, HighlightTakesTheKindsOfTheMask) {
  CPtCstrList list = Pile("pnb-");
  list.Highlight(5, 5, kPosition, 1);
  EXPECT_EQ(Highlights(list), "1010");
  list.Highlight(5, 5, kNormal, 1);
  EXPECT_EQ(Highlights(list), "0110");
  list.Highlight(5, 5, kBoth, 1);
  EXPECT_EQ(Highlights(list), "1110");
  EXPECT_FALSE(list.Highlight(5, 5, PtCstrKind::kDisabled, 1));
}

TEST(PtCstrListTest, HighlightAndSelectionDoNotTouchEachOther) {
  CPtCstrList list = Pile("pp", "10");
  list.Highlight(5, 5, kPosition, 1);
  EXPECT_EQ(Selection(list), "10");
  list.Select(9, 9, kPosition, 1);
  EXPECT_EQ(Highlights(list), "11");
}

TEST(PtCstrListTest, EmptyListIsNeitherHighlightedNorSelected) {
  CPtCstrList list;
  EXPECT_FALSE(list.Highlight(5, 5, kBoth, 1));
  list.Select(5, 5, kBoth, 1);
  list.SelectNext(kBoth);
  list.SelectPrev(kBoth);
  list.UnselectAll();
  EXPECT_FALSE(list.DeleteSelected());
  EXPECT_EQ(list.FirstSelected(), nullptr);
}

TEST(PtCstrListTest, ClickSelectsWhatIsWithinReachAlone) {
  CPtCstrList list = Pile("p", "1");
  list.Add(HeightCstr(8, 5, 0));
  list.Select(7.25, 5.25, kPosition, 1);
  EXPECT_EQ(Selection(list), "01");
  list.Select(6.5, 5, kPosition, 1);
  EXPECT_EQ(Selection(list), "00");
}

TEST(PtCstrListTest, ClickOnTheSelectedRecordKeepsIt) { EXPECT_EQ(Clicked(Pile("p", "1")), "1"); }

TEST(PtCstrListTest, ClicksOnTwoAtOneSpotSelectThemInTurn) {
  CPtCstrList list = Pile("pp");
  for (const std::string_view wanted : {"01", "10", "01", "10"}) {
    list.Select(5, 5, kPosition, 1);
    EXPECT_EQ(Selection(list), wanted);
  }
}

// The last candidate that is not selected yet wins.
TEST(PtCstrListTest, ClicksStepThroughAPile) {
  EXPECT_EQ(Clicked(Pile("ppp", "000")), "001");
  EXPECT_EQ(Clicked(Pile("ppp", "001")), "010");
  EXPECT_EQ(Clicked(Pile("ppp", "010")), "001");
  EXPECT_EQ(Clicked(Pile("ppp", "100")), "001");
  EXPECT_EQ(Clicked(Pile("pppp", "0001")), "0010");
}

TEST(PtCstrListTest, OfSeveralSelectedTheClickKeepsTheFirst) {
  EXPECT_EQ(Clicked(Pile("pp", "11")), "10");
  EXPECT_EQ(Clicked(Pile("ppp", "111")), "100");
  EXPECT_EQ(Clicked(Pile("ppp", "110")), "001");
  EXPECT_EQ(Clicked(Pile("ppp", "011")), "100");
}

TEST(PtCstrListTest, ClickUnselectsOtherKinds) {
  EXPECT_EQ(Clicked(Pile("np", "10")), "01");
  EXPECT_EQ(Clicked(Pile("n", "1")), "0");
  EXPECT_EQ(Clicked(Pile("pnb"), kNormal), "001");
  EXPECT_EQ(Clicked(Pile("pnb", "001"), kNormal), "010");
  EXPECT_EQ(Clicked(Pile("bpn", "100"), kPosition), "010");
}

TEST(PtCstrListTest, NextAndPrevStepAndWrap) {
  EXPECT_EQ(Next(Pile("ppp", "100")), "010");
  EXPECT_EQ(Next(Pile("ppp", "010")), "001");
  EXPECT_EQ(Next(Pile("ppp", "001")), "100");
  EXPECT_EQ(Prev(Pile("ppp", "100")), "001");
  EXPECT_EQ(Prev(Pile("ppp", "010")), "100");
  EXPECT_EQ(Prev(Pile("ppp", "001")), "010");
}

TEST(PtCstrListTest, WithoutASelectionNextTakesTheFirstAndPrevTheLast) {
  EXPECT_EQ(Next(Pile("nppn")), "0100");
  EXPECT_EQ(Prev(Pile("nppn")), "0010");
}

TEST(PtCstrListTest, TheOnlyOneOfItsKindStaysSelected) {
  EXPECT_EQ(Next(Pile("npn", "010")), "010");
  EXPECT_EQ(Prev(Pile("npn", "010")), "010");
}

TEST(PtCstrListTest, NextAndPrevPassOverOtherKinds) {
  EXPECT_EQ(Next(Pile("pnp", "100")), "001");
  EXPECT_EQ(Next(Pile("pnpn", "0010")), "1000");
  EXPECT_EQ(Prev(Pile("pnp", "001")), "100");
  EXPECT_EQ(Next(Pile("pnb", "001"), kNormal), "010");
  EXPECT_EQ(Next(Pile("pnb", "010"), kBoth), "001");
}

TEST(PtCstrListTest, NextLeavesOtherKindsAsTheyAre) {
  EXPECT_EQ(Next(Pile("npp", "110")), "101");
  EXPECT_EQ(Next(Pile("nn", "10")), "10");
  EXPECT_EQ(Prev(Pile("nn", "01")), "01");
  EXPECT_EQ(Next(Pile("nn")), "00");
  EXPECT_EQ(Next(Pile("np", "10")), "11");
}

// The walk takes the bit from each selected one that it meets, but not from the one that it has just selected.
TEST(PtCstrListTest, NextWithSeveralSelected) {
  EXPECT_EQ(Next(Pile("ppp", "110")), "001");
  EXPECT_EQ(Next(Pile("ppp", "011")), "100");
  EXPECT_EQ(Next(Pile("ppp", "101")), "110");
  EXPECT_EQ(Prev(Pile("ppp", "011")), "100");
  EXPECT_EQ(Prev(Pile("ppp", "101")), "011");
}

TEST(PtCstrListTest, UnselectAllClearsEveryKindAndNoHighlight) {
  CPtCstrList list = Pile("pnb-", "1111");
  list.Highlight(5, 5, kPosition, 1);
  list.UnselectAll();
  EXPECT_EQ(Selection(list), "0000");
  EXPECT_EQ(Highlights(list), "1010");
}

TEST(PtCstrListTest, FirstSelectedIsTheFirstOfTheMasksKind) {
  CPtCstrList list = Pile("pnpb-", "01111");
  EXPECT_EQ(list.FirstSelected(), &RecordAt(list, 1));
  EXPECT_EQ(list.FirstSelected(kPosition), &RecordAt(list, 2));
  EXPECT_EQ(list.FirstSelected(kNormal), &RecordAt(list, 1));
  EXPECT_EQ(list.FirstSelected(PtCstrKind::kDisabled), nullptr);
  SetSelection(list, "10000");
  EXPECT_EQ(list.FirstSelected(kNormal), nullptr);
}

TEST(PtCstrListTest, FirstSelectedNeedsNoKind) {
  CPtCstrList list = Pile("p-", "01");
  EXPECT_EQ(list.FirstSelected(), &RecordAt(list, 1));
}

TEST(PtCstrListTest, DeletionWithoutASelectionDoesNothing) { EXPECT_EQ(Deleted(Pile("pn")), ".00"); }

TEST(PtCstrListTest, DeletionSelectsTheNextOfItsKindCyclically) {
  EXPECT_EQ(Deleted(Pile("ppp", "100")), "10");
  EXPECT_EQ(Deleted(Pile("ppp", "010")), "01");
  EXPECT_EQ(Deleted(Pile("ppp", "001")), "10");
  EXPECT_EQ(Deleted(Pile("pnp", "100")), "01");
  EXPECT_EQ(Deleted(Pile("npn", "001")), "10");
}

TEST(PtCstrListTest, DeletingTheOnlyOneOfItsKindLeavesNothingSelected) {
  EXPECT_EQ(Deleted(Pile("p", "1")), "");
  EXPECT_EQ(Deleted(Pile("npn", "010")), "00");
}

// The position bit alone decides: one that is both is followed by positions.
TEST(PtCstrListTest, SuccessorHasTheSamePositionBit) {
  EXPECT_EQ(Deleted(Pile("bnp", "100")), "01");
  EXPECT_EQ(Deleted(Pile("pnb", "100")), "01");
  EXPECT_EQ(Deleted(Pile("nb-", "100")), "01");
}

TEST(PtCstrListTest, DeletionTakesTheFirstSelectedOfAnyKind) {
  EXPECT_EQ(Deleted(Pile("npn", "110")), "11");
  EXPECT_EQ(Deleted(Pile("ppp", "101")), "11");
}

TEST(PtCstrListTest, DeletionKeepsTheOrderOfTheOthers) {
  CPtCstrList list = Pile("pppp", "0100");
  EXPECT_TRUE(list.DeleteSelected());
  EXPECT_EQ(HeightsOf(list), (std::vector<double>{0, 2, 3}));
}

TEST(PtCstrListTest, HoldingDeleteEmptiesAKindOneByOne) {
  CPtCstrList list = Pile("npnpp", "00010");
  for (int left = 4; left >= 2; --left) {
    EXPECT_TRUE(list.DeleteSelected());
    EXPECT_EQ(list.size(), static_cast<std::size_t>(left));
  }
  EXPECT_FALSE(list.DeleteSelected());
  EXPECT_EQ(HeightsOf(list), (std::vector<double>{0, 2}));
}

}  // namespace
