#include <cstdlib>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "base/SavedNumber.h"

namespace {

std::string Saved(double value, double tolerance) {
  std::ostringstream out;
  WriteSavedNumber(out, value, tolerance);
  return out.str();
}

TEST(SavedNumber, HasSixDigitsWhereTheySuffice) {
  EXPECT_EQ(Saved(1.0 / 3, 1e-3), "0.333333");
  EXPECT_EQ(Saved(99.99994, 1e-3), "99.9999");
  EXPECT_EQ(Saved(1e6, 1e-3), "1e+06");
  EXPECT_EQ(Saved(-12.5, 0.0), "-12.5");
  EXPECT_EQ(Saved(0.0, 0.0), "0");
  EXPECT_EQ(Saved(4500049.0, 1.0), "4.50005e+06");
}

TEST(SavedNumber, HasAsManyDigitsAsItTakesWhereTheyDoNot) {
  EXPECT_EQ(Saved(4500049.0, 1e-3), "4500049");
  EXPECT_EQ(Saved(99.9999999, 1e-12), "99.9999999");
  EXPECT_EQ(Saved(-123456.789, 1e-3), "-123456.789");
  for (const double value : {1.0 / 3, 4500049.123456789, -1e154 / 3, 5e-324, 0.1 + 0.2}) {
    EXPECT_EQ(std::strtod(Saved(value, 0.0).c_str(), nullptr), value);
  }
}

TEST(SavedNumber, TakesWhatIsNoNumberAsTheStreamDoes) {
  EXPECT_EQ(Saved(std::numeric_limits<double>::infinity(), 1e-3), "inf");
  EXPECT_EQ(Saved(-std::numeric_limits<double>::infinity(), 1e-3), "-inf");
  EXPECT_EQ(Saved(std::numeric_limits<double>::quiet_NaN(), 1e-3), "nan");
}

// Six digits would round this one beyond the largest number.
TEST(SavedNumber, KeepsTheLargestNumber) {
  const double largest = std::numeric_limits<double>::max();
  EXPECT_EQ(std::strtod(Saved(largest, 1e-3).c_str(), nullptr), largest);
}

}  // namespace
