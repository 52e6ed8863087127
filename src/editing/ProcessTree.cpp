#include "editing/ProcessTree.h"

#include <charconv>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Processes that start others faster than they are ended keep nobody waiting.
constexpr int kMostRounds = 50;

struct CProcess {
  pid_t m_iPid = -1;
  pid_t m_iParent = -1;
  bool m_bEnded = false;
};

std::optional<CProcess> ProcessAt(const fs::path& folder) {
  CProcess process;
  const std::string name = folder.filename();
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process.m_iPid);
  if (error != std::errc() || end != name.data() + name.size()) return {};
  std::ifstream file(folder / "stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  // The name of the program, in brackets, may hold anything.
  const std::size_t bracket = text.rfind(')');
  if (bracket == std::string::npos) return {};
  std::istringstream rest(text.substr(bracket + 1));
  char state = ' ';
  if (!(rest >> state >> process.m_iParent)) return {};
  process.m_bEnded = state == 'Z' || state == 'X';
  return process;
}

std::vector<CProcess> AllProcesses() {
  std::vector<CProcess> processes;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (const std::optional<CProcess> process = ProcessAt(entry->path())) processes.push_back(*process);
  }
  return processes;
}

// Those that have not ended yet.
std::vector<pid_t> DescendantsOf(pid_t ancestor) {
  const std::vector<CProcess> all = AllProcesses();
  std::vector<pid_t> family{ancestor};
  std::vector<pid_t> living;
  for (std::size_t k = 0; k < family.size(); ++k) {
    for (const CProcess& process : all) {
      if (process.m_iParent != family[k]) continue;
      family.push_back(process.m_iPid);
      if (!process.m_bEnded) living.push_back(process.m_iPid);
    }
  }
  return living;
}

}  // namespace

// What is ended may have started something since it was listed.
void KillDescendants(pid_t process) {
  for (int round = 0; round < kMostRounds; ++round) {
    const std::vector<pid_t> living = DescendantsOf(process);
    if (living.empty()) return;
    for (const pid_t descendant : living) kill(descendant, SIGKILL);
  }
}
