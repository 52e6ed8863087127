#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editing/CommandWords.h"

namespace {

using CWords = std::vector<std::string>;

}  // namespace

TEST(CommandWords, BlanksPartThem) {
  EXPECT_EQ(CommandWords("  sh\t-c  a \n"), (CWords{"sh", "-c", "a"}));
  EXPECT_EQ(CommandWords(" \t"), CWords{});
}

TEST(CommandWords, QuotesKeepBlanks) {
  EXPECT_EQ(CommandWords("'a b'c \"d  e\" ''"), (CWords{"a bc", "d  e", ""}));
  EXPECT_EQ(CommandWords(R"('a\"b' "it's" "\"\\\n")"), (CWords{R"(a\"b)", "it's", R"("\\n)"}));
}

TEST(CommandWords, ABackslashMakesAnythingPlain) {
  EXPECT_EQ(CommandWords(R"(a\ b \' \\)"), (CWords{"a b", "'", "\\"}));
}

TEST(CommandWords, NothingElseHasAMeaning) {
  EXPECT_EQ(CommandWords("a;b $HOME `c` *|&>~"), (CWords{"a;b", "$HOME", "`c`", "*|&>~"}));
}

TEST(CommandWords, WhatStaysOpenIsNothing) {
  for (const char* line : {"'a", "\"a", "a 'b\" c", "a\\", R"("a\")"})
    EXPECT_EQ(CommandWords(line), std::nullopt) << line;
}

TEST(CommandWords, PlacesAreFilledOnce) {
  const std::map<std::string, std::string> values{{"{image}", "/a {depth}"}, {"{depth}", "/d"}};
  EXPECT_EQ(WithFilledPlaces("--in={image},{depth}{depth}", values), "--in=/a {depth},/d/d");
  EXPECT_EQ(WithFilledPlaces("{imag} {image {", values), "{imag} {image {");
}
