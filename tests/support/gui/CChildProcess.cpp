#include "support/gui/CChildProcess.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/gui/WaitUntil.h"

namespace {

constexpr int kCannotStart = 127;
constexpr int kKilledBy = 128;

// In the child, where nothing may be allocated any more.
[[noreturn]] void Become(char* const* arguments, const char* directory, const char* output) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  // A test that was started aside may ignore what should end the program.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
  const int file = open(output, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file >= 0 && dup2(file, STDOUT_FILENO) >= 0 && dup2(file, STDERR_FILENO) >= 0 && chdir(directory) == 0) {
    execvp(arguments[0], arguments);
  }
  _exit(kCannotStart);
}

}  // namespace

CChildProcess::CChildProcess(const std::vector<std::string>& command, const std::filesystem::path& directory,
                             const std::filesystem::path& output) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  m_iPid = fork();
  if (m_iPid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (m_iPid == 0) Become(arguments.data(), directory.c_str(), output.c_str());
}

CChildProcess::~CChildProcess() {
  if (m_Status.has_value()) return;
  kill(m_iPid, SIGKILL);
  waitpid(m_iPid, nullptr, 0);
}

std::optional<int> CChildProcess::ExitStatus() {
  int status = 0;
  if (!m_Status.has_value() && waitpid(m_iPid, &status, WNOHANG) == m_iPid) {
    m_Status = WIFEXITED(status) ? WEXITSTATUS(status) : kKilledBy + WTERMSIG(status);
  }
  return m_Status;
}

std::optional<int> CChildProcess::WaitForExit() {
  WaitUntil([this] { return !IsRunning(); });
  return m_Status;
}
