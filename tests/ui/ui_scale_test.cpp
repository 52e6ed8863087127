#include <cstdlib>

#include <gtest/gtest.h>

#include "ui/seams/UiScale.h"

namespace {

class UiScaleTest : public ::testing::Test {
 protected:
  ~UiScaleTest() override { unsetenv("RELIEVO_SCALE"); }
  static double ScaleFor(const char* text) {
    setenv("RELIEVO_SCALE", text, 1);
    return UiScale();
  }
};

}  // namespace

TEST_F(UiScaleTest, IsOneUnlessSet) {
  unsetenv("RELIEVO_SCALE");
  EXPECT_EQ(UiScale(), 1.0);
}

TEST_F(UiScaleTest, IsWhatTheVariableSays) {
  EXPECT_EQ(ScaleFor("1.5"), 1.5);
  EXPECT_EQ(ScaleFor("2"), 2.0);
  EXPECT_EQ(ScaleFor("0.5"), 0.5);
  EXPECT_EQ(ScaleFor("4"), 4.0);
}

TEST_F(UiScaleTest, NonsenseIsIgnored) {
  for (const char* text : {"", "large", "1.5x", "1,5", "0", "-1", "0.4", "4.1", "nan", "inf", " 2"})
    EXPECT_EQ(ScaleFor(text), 1.0) << text;
}
