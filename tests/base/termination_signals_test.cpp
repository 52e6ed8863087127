#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>

#include "base/CTerminationSignals.h"
#include "support/CTemporaryDirectory.h"

namespace {

class TerminationSignals : public testing::TestWithParam<int> {
 protected:
  // Signals may be ignored in the shell that started the tests.
  TerminationSignals() : m_Before(std::signal(GetParam(), SIG_DFL)) {}
  ~TerminationSignals() override { std::signal(GetParam(), m_Before); }

 private:
  void (*m_Before)(int);
};

bool IsReadable(int descriptor) {
  pollfd file{descriptor, POLLIN, 0};
  return poll(&file, 1, 0) == 1;
}

TEST_P(TerminationSignals, AreReadInsteadOfEndingTheProcess) {
  CTerminationSignals signals;
  EXPECT_EQ(signals.Take(), 0);
  EXPECT_FALSE(IsReadable(signals.Descriptor()));
  std::raise(GetParam());
  EXPECT_TRUE(IsReadable(signals.Descriptor()));
  EXPECT_EQ(signals.Take(), GetParam());
  EXPECT_EQ(signals.Take(), 0);
}

TEST_P(TerminationSignals, EndTheProcessInTheEnd) {
  const auto end = [] {
    CTerminationSignals signals;
    std::raise(GetParam());
    CTerminationSignals::EndBy(signals.Take());
  };
  EXPECT_EXIT(end(), testing::KilledBySignal(GetParam()), "");
}

TEST_P(TerminationSignals, EndTheProcessAlsoWhereTheyAreBlocked) {
  const auto end = [] {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
    CTerminationSignals::EndBy(GetParam());
  };
  EXPECT_EXIT(end(), testing::KilledBySignal(GetParam()), "");
}

TEST_P(TerminationSignals, StayIgnoredWhereTheyWere) {
  const auto before = std::signal(GetParam(), SIG_IGN);
  {
    CTerminationSignals signals;
    std::raise(GetParam());
    EXPECT_EQ(signals.Take(), 0);
  }
  EXPECT_EQ(std::signal(GetParam(), before), SIG_IGN);
}

TEST_P(TerminationSignals, EndTheProcessAtOnceWhenNobodyReadsThem) {
  { const CTerminationSignals signals; }
  EXPECT_EXIT(std::raise(GetParam()), testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Each, TerminationSignals, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(TerminationSignalsAll, ManyOfThemDoNotBlock) {
  CTerminationSignals signals;
  for (int k = 0; k < 100000; ++k) std::raise(SIGTERM);
  EXPECT_EQ(signals.Take(), SIGTERM);
}

TEST(TerminationSignalsAll, FileThatGrowsTooLargeIsAnErrorOfTheWrite) {
  const CTemporaryDirectory directory;
  const auto end = [&directory] {
    std::signal(SIGXFSZ, SIG_DFL);
    const CTerminationSignals signals;
    const rlimit limit{10, 10};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::FILE* file = std::fopen(directory.File("out").c_str(), "wb");
    std::setvbuf(file, nullptr, _IONBF, 0);
    for (int k = 0; k < 20; ++k) std::fputc('x', file);
    std::_Exit(std::ferror(file) != 0 ? 7 : 0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(7), "");
}

}  // namespace
