#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/gui/CRelievo.h"

namespace {

using Lines = std::vector<std::string>;

// The `count` lines from the one with index `first` on; fewer where there are no more.
Lines Part(const Lines& lines, std::size_t first, std::size_t count) {
  Lines part;
  for (std::size_t k = first; k < lines.size() && k < first + count; ++k) part.push_back(lines[k]);
  return part;
}

}  // namespace

TEST(StartUpConsoleTest, BeginsWithTheSelfTest) {
  const CRelievo program;
  const Lines selfTest{" 1.5 + 2 = 3.5",     " 2 + 1.5 = 3.5", " 3 * 1.5 = 4.5", " 1.5 * 3 = 4.5",
                       " 3 / 1.4 = 2.14286", " 1.5 / 3 = 0.5", "3 / 2 = 1"};
  EXPECT_EQ(Part(program.ConsoleLines(), 0, 7), selfTest);
}

TEST(StartUpConsoleTest, GoesOnWithTheDefaultGrid) {
  const CRelievo program;
  const Lines grid{"0, 100, 0, 100", "CGrid::Initialize\t\t\tlevel : 5"};
  EXPECT_EQ(Part(program.ConsoleLines(), 7, 2), grid);
}
