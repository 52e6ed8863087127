// Every input that the fuzzer has been given or has found, read once more.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "fuzz/FuzzTarget.h"

namespace {

TEST(Corpus, HoldsNothingThatIsReadWrongly) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(RELIEVO_CORPUS)) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    const testing::ScopedTrace trace(__FILE__, __LINE__, entry.path().string());
    EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()), 0);
    ++inputs;
  }
  EXPECT_GE(inputs, 10);
}

}  // namespace
