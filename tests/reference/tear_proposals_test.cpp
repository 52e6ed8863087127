#include <vector>

#include <gtest/gtest.h>

#include "reference/CTearProposals.h"

namespace {

/// A path along x = 10 and a triangle farther right.
CTearProposals TwoTears() {
  CTearProposals proposals;
  proposals.Set({{{{10, 10}, {10, 50}}, false}, {{{20, 10}, {40, 10}, {40, 30}}, true}});
  return proposals;
}

std::vector<bool> TakenOf(const CTearProposals& proposals) {
  std::vector<bool> taken;
  for (const CTearProposals::CItem& item : proposals.Items()) taken.push_back(item.m_bTaken);
  return taken;
}

}  // namespace

TEST(TearProposals, AllAreTakenAtFirst) {
  EXPECT_EQ(TakenOf(TwoTears()), (std::vector<bool>{true, true}));
  EXPECT_EQ(TwoTears().TakenCount(), 2U);
}

TEST(TearProposals, OneWithinReachIsSwitchedBackAndForth) {
  CTearProposals proposals = TwoTears();
  EXPECT_TRUE(proposals.SwitchAt(9, 30, 1));
  EXPECT_EQ(TakenOf(proposals), (std::vector<bool>{false, true}));
  EXPECT_TRUE(proposals.SwitchAt(10.5, 50.5, 1));
  EXPECT_EQ(TakenOf(proposals), (std::vector<bool>{true, true}));
}

TEST(TearProposals, BeyondReachNothingIs) {
  CTearProposals proposals = TwoTears();
  EXPECT_FALSE(proposals.SwitchAt(8.9, 30, 1));
  EXPECT_FALSE(proposals.SwitchAt(10, 51.5, 1));
  EXPECT_EQ(proposals.TakenCount(), 2U);
}

TEST(TearProposals, TheNearestOfTwoIs) {
  CTearProposals proposals = TwoTears();
  EXPECT_TRUE(proposals.SwitchAt(16, 10, 10));
  EXPECT_EQ(TakenOf(proposals), (std::vector<bool>{true, false}));
}

TEST(TearProposals, TheSideThatClosesAPathCounts) {
  CTearProposals proposals = TwoTears();
  EXPECT_TRUE(proposals.SwitchAt(30, 20, 0.1));
  EXPECT_EQ(TakenOf(proposals), (std::vector<bool>{true, false}));
}

TEST(TearProposals, AfterClearingThereAreNone) {
  CTearProposals proposals = TwoTears();
  proposals.Clear();
  EXPECT_TRUE(proposals.Items().empty());
  EXPECT_FALSE(proposals.SwitchAt(10, 30, 100));
}
