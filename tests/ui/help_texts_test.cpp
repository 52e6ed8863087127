// Messages of the help line: what their patterns leave open is filled in.

#include <clocale>
#include <string>

#include <gtest/gtest.h>

#include "ui/seams/HelpTexts.h"

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

TEST(HelpTexts, FillInTheirValuesInTheirOrder) {
  EXPECT_EQ(FormatHelp(HelpText::kHeightDragged, {"44.8", "6.8"}), "height 44.8, was 6.8");
  EXPECT_EQ(FormatHelp(HelpText::kSlopeDragged, {"1", "2", "3", "4"}), "slope (1, 2), was (3, 4)");
}

TEST(HelpTexts, SayHowAStoppedSolverGoesOn) {
  EXPECT_STREQ(HelpTextOf(HelpText::kSolverStopped), "The solver is stopped: Resume the solver lets it go on");
}

TEST(HelpNumberTest, HasSixDigitsOrFewer) {
  for (const auto& [value, text] :
       {std::pair{44.8, "44.8"}, {-0.1 - 0.2, "-0.3"}, {100.0 / 3, "33.3333"}, {1234567.0, "1.23457e+06"}, {0.0, "0"}})
    EXPECT_EQ(HelpNumber(value, 100), text);
}

TEST(HelpNumberTest, WhatIsRoundingIsNothing) {
  EXPECT_EQ(HelpNumber(-5e-17, 1), "0");
  EXPECT_EQ(HelpNumber(-0.0, 1), "0");
  EXPECT_EQ(HelpNumber(5e-8, 100), "0");
  EXPECT_EQ(HelpNumber(5e-8, 1), "5e-08");
  EXPECT_EQ(HelpNumber(-2e-7, 100), "-2e-07");
}

TEST(HelpNumberTest, HasAPointUnderEveryLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
  EXPECT_EQ(HelpNumber(44.8, 100), "44.8");
  std::setlocale(LC_NUMERIC, before.c_str());
}
