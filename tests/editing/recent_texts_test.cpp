#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editing/RecentTexts.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

using Texts = std::vector<CRecentText>;

class RecentTextsTest : public ::testing::Test {
 protected:
  /// A file that there is.
  std::string File(const std::string& name) const {
    std::filesystem::create_directories(std::filesystem::path(m_Scratch.File(name)).parent_path());
    WriteText(m_Scratch.File(name), "x");
    return m_Scratch.File(name);
  }
  Texts Of(const std::vector<CWorkFiles>& recent) const { return RecentTexts(recent); }

  CTemporaryDirectory m_Scratch;
};

}  // namespace

// So that a failure shows texts.
void PrintTo(const CRecentText& text, std::ostream* out) { *out << text.m_Text << (text.m_bThere ? "" : " (grey)"); }

TEST_F(RecentTextsTest, NamesAreThoseOfTheFiles) {
  EXPECT_EQ(Of({{File("a.grid"), File("a.bmp")}, {"", File("b.bmp")}, {File("c.grid"), ""}}),
            (Texts{{"a.grid + a.bmp", true}, {"b.bmp", true}, {"c.grid", true}}));
}

TEST_F(RecentTextsTest, NamesAreShownAsTheyAre) {
  EXPECT_EQ(Of({{File("a & b @c\xc3\xa4/100% && @@.grid"), ""}}), (Texts{{"100% && @@.grid", true}}));
}

TEST_F(RecentTextsTest, NothingInANameBeginsAnotherLine) {
  EXPECT_EQ(Of({{File("a\nb\tc\x7f.grid"), ""}}), (Texts{{"a?b?c?.grid", true}}));
}

TEST_F(RecentTextsTest, WhatIsMissingHasItsPathAndCannotBeOpened) {
  EXPECT_EQ(Of({{"/no/a.grid", ""}, {"", "/no/a.bmp"}, {"/no/b.grid", File("b.bmp")}}),
            (Texts{{"/no/a.grid", false}, {"/no/a.bmp", false}, {"/no/b.grid + b.bmp", false}}));
}

TEST_F(RecentTextsTest, AModelWithoutItsPictureCanBeOpened) {
  EXPECT_EQ(Of({{File("a.grid"), "/no/a.bmp"}}), (Texts{{"a.grid + /no/a.bmp (missing)", true}}));
}

TEST_F(RecentTextsTest, WhatWouldReadAlikeHasItsPath) {
  const std::string first = File("x/a.grid");
  const std::string second = File("y/a.grid");
  EXPECT_EQ(Of({{first, ""}, {File("b.grid"), ""}, {second, ""}}),
            (Texts{{first, true}, {"b.grid", true}, {second, true}}));
}
