#include "editing/CBackgroundTask.h"

#include <csignal>
#include <cstdint>
#include <system_error>
#include <utility>

#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

// Windows and solver come first.
constexpr int kNiceness = 10;

/// While it lives, threads are begun that get no signal: those belong to the thread that knows what to do.
class CSignalsHeld {
 public:
  CSignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_Before);
  }
  ~CSignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_Before, nullptr); }
  CSignalsHeld(const CSignalsHeld&) = delete;
  CSignalsHeld& operator=(const CSignalsHeld&) = delete;

 private:
  sigset_t m_Before{};
};

}  // namespace

CBackgroundTask::CBackgroundTask() : m_iDone(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

CBackgroundTask::~CBackgroundTask() {
  Wait();
  if (m_iDone >= 0) close(m_iDone);
}

void CBackgroundTask::Begin(std::function<bool()> work) {
  m_bDone = false;
  const auto run = [this, work = std::move(work)](bool aside) {
    // Of this thread alone, which the system calls a process.
    if (aside) setpriority(PRIO_PROCESS, 0, kNiceness);
    m_bAnswer = work();
    m_bDone = true;
    constexpr std::uint64_t kOne = 1;
    [[maybe_unused]] const ssize_t told = write(m_iDone, &kOne, sizeof(kOne));
  };
  const CSignalsHeld held;
  try {
    m_Thread = std::thread(run, true);
  } catch (const std::system_error&) {
    m_bAtOnce = true;
    run(false);
  }
}

std::optional<bool> CBackgroundTask::Take() { return m_bDone ? Wait() : std::nullopt; }

std::optional<bool> CBackgroundTask::Wait() {
  if (!IsBusy()) return {};
  if (m_Thread.joinable()) m_Thread.join();
  m_bAtOnce = false;
  m_bDone = false;
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t heard = read(m_iDone, &count, sizeof(count));
  return m_bAnswer;
}
