#include <sstream>

#include <gtest/gtest.h>

#include "quadtree/CSubdivisionBits.h"
#include "support/ConsoleCapture.h"
#include "support/GridBuilders.h"

namespace {

constexpr const char* kError = "Error CSaveQuadT::ReadInFile\t\tNon valid Character";

std::string TextOf(const CSubdivisionRecord& record) {
  std::ostringstream out;
  CSubdivisionBits(record).Write(out);
  return out.str();
}

/// A record of `depth` that has read `text`, and what came of it.
struct CReading {
  explicit CReading(const std::string& text, int depth = 2) : m_Record(depth), m_In(text) {
    m_Record.SetStartLevel(depth);
    SavedNode(m_Record, {0}).SetSelected(true);
    if (depth > 1) SavedNode(m_Record, {3, 1}).SetSelected(true);
    CSubdivisionBits bits;
    m_Log = ConsoleTextOf([&] { m_bRead = bits.Read(m_In, depth); });
    bits.ApplyTo(m_Record);
  }
  std::string Rest() { return {std::istreambuf_iterator<char>(m_In), {}}; }

  CSubdivisionRecord m_Record;
  std::istringstream m_In;
  std::string m_Log;
  bool m_bRead = false;
};

TEST(SubdivisionText, IsWrittenDepthFirst) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  record.Root().Child(0).subdiv();
  EXPECT_EQ(TextOf(record), "bbNvNvNvNevNvNvNe");
  record.SetStartLevel(0);
  EXPECT_EQ(TextOf(record), "N");
}

TEST(SubdivisionText, ComesBackWithoutSelection) {
  for (std::uint32_t seed = 0; seed < 20; ++seed) {
    CSubdivisionRecord record(4);
    record.SetStartLevel(2);
    RandomiseRecord(record, seed);
    CReading reading(TextOf(record), 4);
    EXPECT_TRUE(reading.m_bRead);
    EXPECT_EQ(reading.m_Log, "");
    EXPECT_EQ(TextOf(reading.m_Record), TextOf(record));
    EXPECT_FALSE(SavedNode(reading.m_Record, {0}).IsSelected());
    EXPECT_FALSE(SavedNode(reading.m_Record, {3, 1}).IsSelected());
  }
}

TEST(SubdivisionText, ALeafClearsEverythingBelowIt) {
  CReading reading("N", 2);
  EXPECT_TRUE(reading.m_bRead);
  EXPECT_TRUE(reading.m_Record.Root().IsLeaf());
  for (int k = 0; k < 4; ++k) {
    EXPECT_FALSE(SavedNode(reading.m_Record, {k}).IsLeaf());
    EXPECT_FALSE(SavedNode(reading.m_Record, {k}).IsSelected());
    for (int j = 0; j < 4; ++j) {
      EXPECT_FALSE(SavedNode(reading.m_Record, {k, j}).IsLeaf());
      EXPECT_FALSE(SavedNode(reading.m_Record, {k, j}).IsSelected());
    }
  }
}

TEST(SubdivisionText, MayHaveBlanksBetweenItsTokens) {
  CReading reading(" b N\nv N\tv\nN v N e Z");
  EXPECT_TRUE(reading.m_bRead);
  EXPECT_EQ(reading.Rest(), " Z");
}

struct CBrokenRecord {
  const char* m_pText;
  const char* m_pRest;  ///< left unread
};

TEST(SubdivisionText, AnotherCharacterEndsTheReading) {
  const std::vector<CBrokenRecord> broken{{"bXvNvNvNe", "vNvNvNe"},
                                          {"bNNvNvNe", "vNvNe"},
                                          {"bNvNvNvNv", ""},
                                          {"bNvNvNeN", "N"},
                                          {"e", ""},
                                          {"bNvNvNvNN", ""},
                                          {"", ""},
                                          {"bNvN", ""}};
  for (const auto& [text, rest] : broken) {
    CReading reading(text);
    EXPECT_FALSE(reading.m_bRead) << text;
    EXPECT_EQ(reading.m_Log, kError) << text;
    EXPECT_EQ(reading.Rest(), rest) << text;
  }
}

TEST(SubdivisionText, WhatWasReadBeforeTheErrorStays) {
  CReading reading("bNvXvNvNe");
  EXPECT_FALSE(reading.m_Record.Root().IsLeaf());
  EXPECT_TRUE(SavedNode(reading.m_Record, {0}).IsLeaf());
  EXPECT_FALSE(SavedNode(reading.m_Record, {0, 2}).IsLeaf());
  EXPECT_TRUE(SavedNode(reading.m_Record, {2, 2}).IsLeaf());
}

TEST(SubdivisionText, DoesNotGoDeeperThanTheTree) {
  CReading reading("bbNvNvNvNevNvNvNe", 1);
  EXPECT_FALSE(reading.m_bRead);
  EXPECT_EQ(reading.m_Log, kError);
}

TEST(SubdivisionBits, AreEqualForTheSameLeavesOfTheSameDepth) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  record.Root().Child(2).subdiv();
  const CSubdivisionBits bits(record);
  CSubdivisionRecord copy(3);
  copy.SetStartLevel(2);
  EXPECT_NE(CSubdivisionBits(copy), bits);
  bits.ApplyTo(copy);
  EXPECT_EQ(CSubdivisionBits(copy), bits);
  copy.Root().Child(1).SetSelected(true);
  EXPECT_EQ(CSubdivisionBits(copy), bits);
  CSubdivisionRecord deeper(4);
  bits.ApplyTo(deeper);
  EXPECT_NE(CSubdivisionBits(deeper), bits);
}

TEST(SubdivisionBits, ThatHoldNothingChangeNothing) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  record.Root().Child(1).Child(1).SetSelected(true);
  const CSubdivisionBits bits(record);
  CSubdivisionBits().ApplyTo(record);
  EXPECT_EQ(CSubdivisionBits(record), bits);
  EXPECT_TRUE(record.Root().Child(1).Child(1).IsSelected());
}

TEST(SubdivisionBits, AreWrittenWithLeavesWhereTheReadingEnded) {
  std::istringstream in("bNvbX");
  CSubdivisionBits bits;
  ConsoleTextOf([&] { EXPECT_FALSE(bits.Read(in, 3)); });
  std::ostringstream out;
  bits.Write(out);
  EXPECT_EQ(out.str(), "bNvbNvNvNvNevNvNe");
}

}  // namespace
