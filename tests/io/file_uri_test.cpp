#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "io/FileUri.h"

TEST(FileUriTest, PlainNamesStayReadable) {
  EXPECT_EQ(UriOf("/home/a-b_c.d~/x.grid"), "file:///home/a-b_c.d~/x.grid");
  EXPECT_EQ(UriOf("/a b&c%41/\xc3\xa4"), "file:///a%20b%26c%2541/%C3%A4");
}

TEST(FileUriTest, WhatOtherProgramsWriteIsRead) {
  struct CCase {
    const char* m_Uri;
    const char* m_Path;
  };
  for (const auto& [uri, path] : {CCase{"file:///a%20b", "/a b"}, CCase{"file://localhost/a", "/a"},
                                  CCase{"file:///a&b@c", "/a&b@c"}, CCase{"file:///%c3%a4", "/\xc3\xa4"}}) {
    EXPECT_EQ(PathOf(uri), path) << uri;
  }
}

TEST(FileUriTest, WhatNamesNoFileOfThisMachineIsRefused) {
  for (const char* uri : {"", "/a", "file:/", "file://", "http://x/a", "file://server/a", "file:///a%", "file:///a%2",
                          "file:///a%zz", "file:///a%00b", "file:///a%-1"}) {
    EXPECT_EQ(PathOf(uri), std::nullopt) << uri;
  }
}

RC_GTEST_PROP(FileUriProperty, EveryNameComesBack, (std::string name)) {
  std::erase(name, '\0');
  const std::string path = "/" + name;
  RC_ASSERT(PathOf(UriOf(path)) == path);
}
