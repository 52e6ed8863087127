#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "base/CByteSink.h"

namespace {

std::string Pattern(std::size_t count) {
  std::string bytes;
  for (std::size_t k = 0; k < count; ++k) bytes += static_cast<char>(k % 251);
  return bytes;
}

// What comes out, and how long the pieces of it were.
struct CDrained {
  CByteSink Sink() {
    return CByteSink([this](std::string_view block) {
      m_Bytes += block;
      m_auPieces.push_back(block.size());
    });
  }
  std::string m_Bytes;
  std::vector<std::size_t> m_auPieces;
};

void Make(CByteSink& sink, std::string_view bytes) {
  const std::span<char> room = sink.Room();
  ASSERT_GE(room.size(), bytes.size());
  std::ranges::copy(bytes, room.begin());
  sink.Filled(bytes.size());
}

TEST(ByteSink, GivesNothingForNothing) {
  CDrained drained;
  CByteSink sink = drained.Sink();
  sink.Put("");
  sink.Filled(0);
  sink.Flush();
  EXPECT_TRUE(drained.m_auPieces.empty());
}

TEST(ByteSink, GivesAllThatIsPutInItsOrder) {
  const std::string bytes = Pattern(5 * CByteSink::kBlock / 2);
  for (const std::size_t first : {std::size_t{0}, std::size_t{1}, CByteSink::kBlock - 1, CByteSink::kBlock}) {
    CDrained drained;
    CByteSink sink = drained.Sink();
    sink.Put(std::string_view(bytes).substr(0, first));
    sink.Put(std::string_view(bytes).substr(first));
    sink.Flush();
    EXPECT_TRUE(drained.m_Bytes == bytes) << first;
  }
}

TEST(ByteSink, GivesAllThatIsMadeInPlaceInItsOrder) {
  const std::string bytes = Pattern(3 * CByteSink::kBlock / 2);
  CDrained drained;
  CByteSink sink = drained.Sink();
  for (std::size_t at = 0; at < bytes.size(); at += CByteSink::kLeastRoom)
    Make(sink, std::string_view(bytes).substr(at, CByteSink::kLeastRoom));
  sink.Flush();
  EXPECT_TRUE(drained.m_Bytes == bytes);
}

TEST(ByteSink, BeginsEveryPieceAtAWholeBlock) {
  CDrained drained;
  CByteSink sink = drained.Sink();
  std::string bytes = Pattern(35);
  for (std::size_t k = 0; k < CByteSink::kBlock / 35; ++k) Make(sink, bytes);
  Make(sink, bytes);
  sink.Put(Pattern(2 * CByteSink::kBlock));
  sink.Flush();
  for (const std::size_t piece : std::span(drained.m_auPieces).first(drained.m_auPieces.size() - 1))
    EXPECT_EQ(piece % CByteSink::kBlock, 0U);
  EXPECT_EQ(drained.m_Bytes.size(), (CByteSink::kBlock / 35 + 1) * 35 + 2 * CByteSink::kBlock);
}

}  // namespace
