#include "editing/CUserProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editing/ProcessTree.h"

namespace {

constexpr std::size_t kMostLine = 300;
// In one go, so that a program that never stops writing does not hold the window.
constexpr std::size_t kMostRead = std::size_t{1} << 18;
// Once it has ended: more than a pipe holds, unless an administrator has given it more.
constexpr std::size_t kMostLeft = std::size_t{1} << 21;
constexpr int kNotStarted = 127;
constexpr int kKilledBy = 128;

/// What both processes need after the fork, when memory may not be asked for any more.
struct CLaunch {
  std::vector<std::string> m_aWords;
  std::vector<char*> m_apWords;
  int m_iInput = -1;
  int m_iOutput = -1;
  pid_t m_iParent = -1;
};

int StatusOf(int status) { return WIFSIGNALED(status) ? kKilledBy + WTERMSIG(status) : WEXITSTATUS(status); }

void TellAndEnd(const char* program) {
  const char* reason = std::strerror(errno);
  for (const char* part : {program, ": ", reason, "\n"}) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, part, std::strlen(part));
  }
  _exit(kNotStarted);
}

void SetAllSignals(int how) {
  sigset_t all;
  sigfillset(&all);
  sigprocmask(how, &all, nullptr);
}

[[noreturn]] void Execute(const CLaunch& launch) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGXFSZ, SIGCHLD}) std::signal(signal, SIG_DFL);
  SetAllSignals(SIG_UNBLOCK);
  execvp(launch.m_apWords.front(), launch.m_apWords.data());
  TellAndEnd(launch.m_apWords.front());
  _exit(kNotStarted);
}

// The status of the program once it has ended; nothing where a signal asks for the end of all. What else ends meanwhile
// has lost its parent.
std::optional<int> Await(pid_t program) {
  sigset_t awaited;
  sigemptyset(&awaited);
  for (const int signal : {SIGCHLD, SIGHUP, SIGINT, SIGTERM}) sigaddset(&awaited, signal);
  for (;;) {
    int status = 0;
    for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;)
      if (ended == program) return StatusOf(status);
    const int signal = sigwaitinfo(&awaited, nullptr);
    if (signal > 0 && signal != SIGCHLD) return {};
  }
}

// The first process of the group waits for the user's program, ends what that has left behind, and ends as it did. When
// the process that has made it ends, even by a crash, the system sends it a signal, with which it ends all of them.
// Signals stay blocked here and are waited for.
[[noreturn]] void WatchOver(const CLaunch& launch) {
  setpgid(0, 0);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGCHLD}) std::signal(signal, SIG_DFL);
  prctl(PR_SET_PDEATHSIG, SIGHUP);
  // What leaves the group and loses its parent stays below this process, where it is found.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  if (getppid() != launch.m_iParent) _exit(kNotStarted);
  dup2(launch.m_iInput, STDIN_FILENO);
  dup2(launch.m_iOutput, STDOUT_FILENO);
  dup2(launch.m_iOutput, STDERR_FILENO);
  close_range(STDERR_FILENO + 1, ~0U, 0);
  const pid_t program = fork();
  if (program == 0) Execute(launch);
  if (program < 0) TellAndEnd("fork");
  const std::optional<int> status = Await(program);
  EndDescendants();
  if (!status.has_value()) kill(0, SIGKILL);
  _exit(status.value_or(kNotStarted));
}

}  // namespace

bool CUserProcess::Start(const std::vector<std::string>& words) {
  std::array<int, 2> pipe{-1, -1};
  CLaunch launch;
  launch.m_iInput = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (launch.m_iInput < 0) return false;
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
    close(launch.m_iInput);
    return false;
  }
  launch.m_iOutput = pipe[1];
  launch.m_iParent = getpid();
  launch.m_aWords = words;
  for (std::string& word : launch.m_aWords) launch.m_apWords.push_back(word.data());
  launch.m_apWords.push_back(nullptr);
  sigset_t before;
  sigemptyset(&before);
  sigprocmask(SIG_SETMASK, nullptr, &before);
  SetAllSignals(SIG_BLOCK);
  m_iPid = fork();
  if (m_iPid == 0) WatchOver(launch);
  if (m_iPid > 0) setpgid(m_iPid, m_iPid);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  close(launch.m_iInput);
  close(pipe[1]);
  m_iOutput = pipe[0];
  fcntl(m_iOutput, F_SETFL, O_NONBLOCK);
  m_Line.clear();
  m_LastLine.clear();
  if (!IsRunning()) End();
  return IsRunning();
}

std::optional<int> CUserProcess::Attend() {
  if (!IsRunning()) return {};
  // Looked at before the last of the output is read.
  siginfo_t information{};
  const bool ended = waitid(P_PID, static_cast<id_t>(m_iPid), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                     information.si_pid != 0;
  if (!ended) {
    ReadOutput(kMostRead);
    return {};
  }
  // Others of the group would go on writing behind the last line.
  kill(-m_iPid, SIGKILL);
  ReadOutput(kMostLeft);
  const int status = information.si_code == CLD_EXITED ? information.si_status : kKilledBy + information.si_status;
  Kill();
  return status;
}

void CUserProcess::ReadOutput(std::size_t most) {
  std::array<char, 4096> text{};
  for (std::size_t length = 0; length < most;) {
    const ssize_t more = read(m_iOutput, text.data(), text.size());
    if (more <= 0) return;
    TakeOutput({text.data(), static_cast<std::size_t>(more)});
    length += static_cast<std::size_t>(more);
  }
}

// What a program writes over its own line counts as lines, too.
void CUserProcess::TakeOutput(std::string_view text) {
  for (const char c : text) {
    if (c == '\n' || c == '\r') {
      m_Line.clear();
    } else if (m_Line.size() < kMostLine) {
      const bool control = static_cast<unsigned char>(c) < ' ' || c == '\x7f';
      m_Line += control ? ' ' : c;
    }
    if (m_Line.find_first_not_of(' ') != std::string::npos) m_LastLine = m_Line;
  }
}

// The first process is a zombie at least, so that its number is still that of the group.
void CUserProcess::Kill() {
  if (!IsRunning()) return;
  kill(m_iPid, SIGHUP);
  kill(m_iPid, SIGCONT);
  siginfo_t information{};
  while (waitid(P_PID, static_cast<id_t>(m_iPid), &information, WEXITED | WNOWAIT) < 0 && errno == EINTR) continue;
  kill(-m_iPid, SIGKILL);
  while (waitpid(m_iPid, nullptr, 0) < 0 && errno == EINTR) continue;
  End();
}

void CUserProcess::End() {
  m_iPid = -1;
  if (m_iOutput >= 0) close(m_iOutput);
  m_iOutput = -1;
}
