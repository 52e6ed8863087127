#include "support/gui/ClaimDisplay.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

// Locks a file for the rest of the process unless another one has it. What the process starts does not inherit the
// lock.
bool Lock(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) throw std::runtime_error(file.native() + " cannot be opened");
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return true;
  close(descriptor);
  return false;
}

std::vector<std::filesystem::path> Displays(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> displays;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) displays.push_back(entry.path());
  if (displays.empty()) throw std::runtime_error(folder.native() + " has no display");
  std::sort(displays.begin(), displays.end());
  return displays;
}

template <class Claim>
void WaitFor(Claim claim) {
  while (!claim()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

void Use(const std::filesystem::path& display) {
  setenv("DISPLAY", (":" + display.filename().native()).c_str(), 1);
  setenv("HOME", (display / "home").c_str(), 1);
}

// The screen of the person who starts the tests.
std::filesystem::path LockOfScreen() {
  const char* const name = std::getenv("DISPLAY");
  const std::string screen = name == nullptr ? "" : name;
  return std::filesystem::temp_directory_path() /
         ("relievo-test-display-" + std::to_string(std::hash<std::string>{}(screen)));
}

// Set for what the process starts: tests of how it ends run in a copy of it.
constexpr const char* kClaimed = "RELIEVO_TEST_DISPLAY_CLAIMED";

void ClaimOneOf(const char* folder) {
  WaitFor([displays = Displays(folder)] {
    const auto free =
        std::find_if(displays.begin(), displays.end(), [](const auto& display) { return Lock(display / "lock"); });
    if (free == displays.end()) return false;
    Use(*free);
    return true;
  });
}

}  // namespace

void ClaimDisplay() {
  if (std::getenv(kClaimed) != nullptr) return;
  const char* const folder = std::getenv("RELIEVO_TEST_DISPLAYS");
  if (folder != nullptr) {
    ClaimOneOf(folder);
  } else {
    WaitFor([screen = LockOfScreen()] { return Lock(screen); });
  }
  setenv(kClaimed, "yes", 1);
}
