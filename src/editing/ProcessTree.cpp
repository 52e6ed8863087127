#include "editing/ProcessTree.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <span>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kMostRounds = 500;
constexpr timespec kPause{0, 2'000'000};  // nanoseconds

// The system lists the numbers of the children with a blank behind each. None of them can be another process by now, as
// only this one waits for them.
void KillChildren() {
  const int list = open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
  if (list < 0) return;
  std::array<char, 4096> text{};
  pid_t child = 0;
  for (ssize_t length = 0; (length = read(list, text.data(), text.size())) > 0;) {
    for (const char c : std::span(text).first(static_cast<std::size_t>(length))) {
      if (c >= '0' && c <= '9') {
        child = 10 * child + (c - '0');
      } else if (child > 0) {
        kill(child, SIGKILL);
        child = 0;
      }
    }
  }
  close(list);
}

}  // namespace

// The children of those that have ended are children of this process in the next round.
void EndDescendants() {
  for (int round = 0; round < kMostRounds; ++round) {
    KillChildren();
    pid_t ended = 0;
    while ((ended = waitpid(-1, nullptr, WNOHANG)) > 0) continue;
    if (ended < 0) return;
    nanosleep(&kPause, nullptr);
  }
}
