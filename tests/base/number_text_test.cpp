#include <gtest/gtest.h>

#include "base/NumberText.h"

TEST(NumberText, RoundedHasSoManyDigitsAtMost) {
  EXPECT_EQ(RoundedText(-12345.678, 6, 1.0), "-12345.7");
  EXPECT_EQ(RoundedText(-12345.678, 9, 1.0), "-12345.678");
  EXPECT_EQ(RoundedText(2.5, 9, 1.0), "2.5");
  EXPECT_EQ(RoundedText(1234567.0, 3, 1.0), "1.23e+06");
}

TEST(NumberText, RoundedIsNothingBelowABillionthOfWhatMatters) {
  EXPECT_EQ(RoundedText(-1e-7, 6, 1000.0), "0");
  EXPECT_EQ(RoundedText(1e-7, 6, 1.0), "1e-07");
  EXPECT_EQ(RoundedText(1e-300, 6, 0.0), "1e-300");
}
