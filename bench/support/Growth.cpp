#include "support/Growth.h"

#include <cstdio>
#include <map>
#include <memory>

namespace {

constexpr int kFirstLevel = 7;
constexpr int kLastLevel = 10;

// Collects the time per point of every run beside the ordinary console output.
class CCollector : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const auto items = run.counters.find("items");
      if (items == run.counters.end() || run.error_occurred) continue;
      m_afNanoseconds[run.run_name.function_name] =
          run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit) / items->second;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  double Get(const std::string& name) const {
    const auto found = m_afNanoseconds.find(name);
    return found == m_afNanoseconds.end() ? 0.0 : found->second;
  }

 private:
  std::map<std::string, double> m_afNanoseconds;
};

std::string NameOf(const std::string& operation, int level) { return operation + ":L" + std::to_string(level); }
std::string TriadNameOf(const std::string& operation, int level) { return "triad beside " + NameOf(operation, level); }

void RegisterOperation(const COperation& operation, int level) {
  benchmark::RegisterBenchmark(NameOf(operation.m_Name, level).c_str(), [operation, level](benchmark::State& state) {
    const std::function<void()> timed = operation.m_Prepare(level);
    timed();
    for (auto _ : state) timed();
    state.counters["items"] = static_cast<double>(PointCount(level));
  });
}

void RegisterTriad(const COperation& operation, int level) {
  const auto count = static_cast<std::size_t>(operation.m_WorkingSet(level) / (3 * sizeof(double)));
  benchmark::RegisterBenchmark(TriadNameOf(operation.m_Name, level).c_str(), [count](benchmark::State& state) {
    std::vector<double> a(count, 0.0);
    const std::vector<double> b(count, 1.0);
    const std::vector<double> c(count, 2.0);
    for (auto _ : state) {
      for (std::size_t i = 0; i < count; ++i) a[i] = b[i] + 0.5 * c[i];
      benchmark::DoNotOptimize(a.data());
      benchmark::ClobberMemory();
    }
    state.counters["items"] = static_cast<double>(count);
  });
}

void PrintTable(const std::vector<COperation>& operations, const CCollector& times) {
  std::printf("\n%-24s %9s %9s %9s %9s   %7s %7s %7s\n", "ns per point", "L7", "L8", "L9", "L10", "growth", "triad",
              "ratio");
  for (const COperation& operation : operations) {
    std::printf("%-24s", operation.m_Name.c_str());
    for (int level = kFirstLevel; level <= kLastLevel; ++level) {
      std::printf(" %9.3f", times.Get(NameOf(operation.m_Name, level)));
    }
    const double growth =
        times.Get(NameOf(operation.m_Name, kLastLevel)) / times.Get(NameOf(operation.m_Name, kFirstLevel));
    const double triad =
        times.Get(TriadNameOf(operation.m_Name, kLastLevel)) / times.Get(TriadNameOf(operation.m_Name, kFirstLevel));
    std::printf("   %7.2f %7.2f %7.2f\n", growth, triad, growth / triad);
  }
}

}  // namespace

std::size_t PointCount(int level) {
  const std::size_t side = (std::size_t{1} << level) + 1;
  return side * side;
}

int RunAndReport(int argc, char** argv, const std::vector<COperation>& operations) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  for (const COperation& operation : operations) {
    for (int level = kFirstLevel; level <= kLastLevel; ++level) {
      RegisterOperation(operation, level);
      RegisterTriad(operation, level);
    }
  }
  CCollector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  PrintTable(operations, collector);
  return 0;
}
