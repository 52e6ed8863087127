// Messages of the help line: what their patterns leave open is filled in.

#include <string>

#include <gtest/gtest.h>

#include "ui/window/HelpTexts.h"

TEST(HelpTexts, AMessageWithoutOpenPlacesStaysAsItIs) {
  EXPECT_EQ(FormatHelp(HelpText::kCurveTypeWanted), HelpTextOf(HelpText::kCurveTypeWanted));
  EXPECT_EQ(FormatHelp(HelpText::kCurveTypeWanted, {"unused"}), HelpTextOf(HelpText::kCurveTypeWanted));
}

TEST(HelpTexts, EveryMessageHasAText) {
  for (int k = HelpText::kFirstMessage; k < static_cast<int>(kHelpTexts.size()); ++k)
    EXPECT_STRNE(HelpTextOf(k), "") << k;
}

TEST(HelpTexts, AnUnknownIndexHasNoText) {
  EXPECT_STREQ(HelpTextOf(-1), "");
  EXPECT_STREQ(HelpTextOf(static_cast<int>(kHelpTexts.size())), "");
}
