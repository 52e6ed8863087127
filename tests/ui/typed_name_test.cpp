#include <cstdlib>

#include <gtest/gtest.h>

#include "ui/dialogs/TypedName.h"

TEST(TypedName, PartsOfAName) {
  EXPECT_EQ(LastPart("/tmp/a.grid"), "a.grid");
  EXPECT_EQ(LastPart("/tmp/"), "");
  EXPECT_EQ(LastPart("a"), "a");
  EXPECT_EQ(FolderOf("/tmp/a.grid"), "/tmp");
  EXPECT_EQ(FolderOf("/tmp/"), "/tmp");
  EXPECT_EQ(FolderOf("/tmp"), "/");
  EXPECT_EQ(FolderOf("/"), "/");
}

TEST(TypedName, FullNameBeginsAtTheRoot) {
  EXPECT_EQ(FullName("/home", "/tmp/a.grid"), "/tmp/a.grid");
  EXPECT_EQ(FullName("/home", "sub/a.grid"), "/home/sub/a.grid");
  EXPECT_EQ(FullName("/", "a.grid"), "/a.grid");
  EXPECT_EQ(FullName("/home/", "a.grid"), "/home/a.grid");
  EXPECT_EQ(FullName("/home", ""), "/home/");
  const char* const home = std::getenv("HOME");
  ASSERT_NE(home, nullptr);
  EXPECT_EQ(FullName("/tmp", "~/a.grid"), std::string(home) + "/a.grid");
  EXPECT_EQ(FullName("/tmp", "a~b.grid"), "/tmp/a~b.grid");
}

TEST(TypedName, RelativeUnlessAtTheRootOrAtHome) {
  EXPECT_TRUE(IsRelative("a"));
  EXPECT_TRUE(IsRelative("../a"));
  EXPECT_FALSE(IsRelative("/a"));
  EXPECT_FALSE(IsRelative("~/a"));
  EXPECT_FALSE(IsRelative(""));
}

TEST(TypedName, CommonStartGoesNoFurtherThanAllNamesDo) {
  const std::vector<std::string> names{"cat 1.grid", "cat 2.grid", "cup/", "dog.grid"};
  EXPECT_EQ(CommonStart("d", names), "dog.grid");
  EXPECT_EQ(CommonStart("ca", names), "cat ");
  EXPECT_EQ(CommonStart("c", names), "c");
  EXPECT_EQ(CommonStart("cu", names), "cup/");
  EXPECT_EQ(CommonStart("x", names), "x");
  EXPECT_EQ(CommonStart("cat 1.grid", names), "cat 1.grid");
  EXPECT_EQ(CommonStart("cat", {}), "cat");
  // One of two names may begin the other.
  EXPECT_EQ(CommonStart("a", {"ab", "abc"}), "ab");
}
