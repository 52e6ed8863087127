#include "base/CTerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler can reach nothing but globals.
volatile std::sig_atomic_t g_iWriteEnd = -1;

extern "C" void SendToPipe(int signal) {
  const int error = errno;
  const auto byte = static_cast<unsigned char>(signal);
  // A full pipe already holds a signal, which is enough.
  [[maybe_unused]] const ssize_t written = write(g_iWriteEnd, &byte, 1);
  errno = error;
}

void SetAction(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

bool IsIgnored(int signal) {
  struct sigaction present {};
  return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

}  // namespace

CTerminationSignals::CTerminationSignals() {
  SetAction(SIGXFSZ, SIG_IGN);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  m_iReadEnd = ends[0];
  g_iWriteEnd = ends[1];
  for (const int signal : kSignals) {
    if (!IsIgnored(signal)) SetAction(signal, SendToPipe);
  }
}

CTerminationSignals::~CTerminationSignals() {
  if (m_iReadEnd < 0) return;
  for (const int signal : kSignals) {
    if (!IsIgnored(signal)) SetAction(signal, SIG_DFL);
  }
  close(m_iReadEnd);
  close(g_iWriteEnd);
  g_iWriteEnd = -1;
}

int CTerminationSignals::Take() const {
  unsigned char signal = 0;
  return read(m_iReadEnd, &signal, 1) == 1 ? signal : 0;
}

void CTerminationSignals::EndBy(int signal) {
  SetAction(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  sigprocmask(SIG_UNBLOCK, &only, nullptr);
  std::raise(signal);
  // Reached only if the signal does not end a process by default; the end was asked for all the same.
  std::_Exit(128 + signal);
}
