#include <string>

#include <gtest/gtest.h>

#include "editing/DebugTools.h"

namespace {

constexpr std::uint32_t kOther = DebugFlag::kSelectCells | DebugFlag::kHorizontalCoefs;

void ExpectTool(const CLevelTool& tool, std::uint32_t flags, const char* label, bool down) {
  EXPECT_EQ(tool.m_uDebugFlags, flags);
  EXPECT_STREQ(tool.m_pLabel, label);
  EXPECT_EQ(tool.m_bButtonDown, down);
}

}  // namespace

TEST(LevelToolTest, GoesFromNothingToLevelToAreaToNothing) {
  for (const std::uint32_t others : {0U, kOther}) {
    ExpectTool(NextLevelTool(others, true), others | 64, "SHOW\nH LEVEL", false);
    ExpectTool(NextLevelTool(others | 64, true), others | 32, "SHOW\nPOINT\nAREA", true);
    ExpectTool(NextLevelTool(others | 32, false), others, "", false);
  }
}

TEST(DebugReadOutsTest, InfluenceIsShownForEveryTermAndForTheArea) {
  for (const std::uint32_t flag : {2U, 4U, 8U, 32U}) EXPECT_TRUE(ReadOutsOf(flag).m_bInfluence) << flag;
  for (const std::uint32_t flag : {0U, 1U, 16U, 128U, 0x100U}) EXPECT_FALSE(ReadOutsOf(flag).m_bInfluence) << flag;
}

TEST(DebugReadOutsTest, LevelIsShownWheneverItsFlagIsSet) {
  for (std::uint32_t flags = 0; flags < 0x200; ++flags)
    EXPECT_EQ(ReadOutsOf(flags).m_bLevel, (flags & 64U) != 0) << flags;
}

TEST(DebugReadOutsTest, LevelAloneIsShownWithoutTheInfluence) {
  EXPECT_TRUE(ReadOutsOf(64).m_bLevel);
  EXPECT_FALSE(ReadOutsOf(64).m_bInfluence);
  EXPECT_FALSE(ReadOutsOf(32).m_bLevel);
}

TEST(DebugReadOutsTest, NoTwoAreEverInThePlaceOfThePoints) {
  for (std::uint32_t flags = 0; flags < 0x200; ++flags) {
    const CDebugReadOuts shown = ReadOutsOf(flags);
    EXPECT_EQ(shown.m_bPointCount + shown.m_bPointNumber + shown.m_bInterpolation, 1) << flags;
  }
}
