#include "base/Console.h"

#include <iostream>
#include <sstream>

#include <gtest/gtest.h>

namespace {

// Takes over what goes to std::cout while it lives.
class StandardOutputCapture {
 public:
  StandardOutputCapture() : m_pPrevious(std::cout.rdbuf(m_Text.rdbuf())) {}
  ~StandardOutputCapture() { std::cout.rdbuf(m_pPrevious); }
  StandardOutputCapture(const StandardOutputCapture&) = delete;
  StandardOutputCapture& operator=(const StandardOutputCapture&) = delete;

  std::string Text() const { return m_Text.str(); }

 private:
  std::ostringstream m_Text;
  std::streambuf* m_pPrevious;
};

TEST(ConsoleTest, LinesGoToStandardOutput) {
  const StandardOutputCapture output;
  Console() << "CGrid::Load\t\tReading the height field...\n";
  EXPECT_EQ(output.Text(), "CGrid::Load\t\tReading the height field...\n");
}

TEST(ConsoleTest, RedirectTakesTheLinesAwayFromStandardOutput) {
  const StandardOutputCapture output;
  std::ostringstream elsewhere;
  {
    const CConsoleRedirect redirect(elsewhere);
    Console() << "redirected";
  }
  Console() << "not redirected";
  EXPECT_EQ(elsewhere.str(), "redirected");
  EXPECT_EQ(output.Text(), "not redirected");
}

TEST(ConsoleTest, RedirectsNest) {
  std::ostringstream outer;
  std::ostringstream inner;
  const CConsoleRedirect outerRedirect(outer);
  Console() << 1;
  {
    const CConsoleRedirect innerRedirect(inner);
    Console() << 2;
  }
  Console() << 3;
  EXPECT_EQ(outer.str(), "13");
  EXPECT_EQ(inner.str(), "2");
}

TEST(ConsoleTest, NumbersHaveSixSignificantDigits) {
  const StandardOutputCapture output;
  Console() << 2.142857142857143 << ' ' << 1234567.0 << ' ' << 100.0 << ' ' << 1e-30;
  EXPECT_EQ(output.Text(), "2.14286 1.23457e+06 100 1e-30");
}

}  // namespace
