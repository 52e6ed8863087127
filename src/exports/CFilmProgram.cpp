#include "exports/CFilmProgram.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char* kProgram = "ffmpeg";
// What the started program calls the file that it writes.
constexpr int kFilmDescriptor = 3;
constexpr const char* kFilmName = "file:/dev/fd/3";

std::vector<std::string> Arguments(int width, int height, const std::vector<std::string>& encoding) {
  std::vector<std::string> arguments{kProgram, "-hide_banner", "-loglevel", "error", "-f", "rawvideo", "-pixel_format",
                                     "rgb24", "-video_size", std::to_string(width) + 'x' + std::to_string(height),
                                     "-framerate", "30", "-i", "pipe:0", "-an",
                                     // Players guess the colours of films that do not tell them.
                                     "-vf", "scale=out_color_matrix=bt709:out_range=tv", "-colorspace", "bt709",
                                     "-color_primaries", "bt709", "-color_trc", "bt709", "-pix_fmt", "yuv420p"};
  arguments.insert(arguments.end(), encoding.begin(), encoding.end());
  arguments.insert(arguments.end(), {"-y", kFilmName});
  return arguments;
}

}  // namespace

bool CFilmProgram::IsInstalled() {
  const char* const variable = std::getenv("PATH");
  std::string_view folders = variable == nullptr ? "" : variable;
  while (!folders.empty()) {
    const std::size_t end = folders.find(':');
    const std::filesystem::path program = std::filesystem::path(folders.substr(0, end)) / kProgram;
    std::error_code error;
    if (std::filesystem::is_regular_file(program, error) && access(program.c_str(), X_OK) == 0) return true;
    folders = end == std::string_view::npos ? "" : folders.substr(end + 1);
  }
  return false;
}

void CFilmProgram::CDescriptor::Take(int descriptor) {
  constexpr int kLowest = 10;
  Close();
  if (descriptor < 0) return;
  m_iDescriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, kLowest);
  close(descriptor);
}

void CFilmProgram::CDescriptor::Close() {
  if (IsOpen()) close(std::exchange(m_iDescriptor, -1));
}

void CFilmProgram::OpenUnnamed(CDescriptor& file) {
  std::error_code error;
  std::string name = (std::filesystem::temp_directory_path(error) / "relievo-XXXXXX").string();
  file.Take(mkostemp(name.data(), O_CLOEXEC));
  if (file.IsOpen()) unlink(name.c_str());
}

bool CFilmProgram::OpenAll(CDescriptor& theirs) {
  // A socket can be told not to send the signal that ends a process whose reader has gone.
  std::array<int, 2> ends{-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  m_Frames.Take(ends[0]);
  theirs.Take(ends[1]);
  OpenUnnamed(m_Film);
  OpenUnnamed(m_Errors);
  return m_Frames.IsOpen() && theirs.IsOpen() && m_Film.IsOpen() && m_Errors.IsOpen();
}

CFilmProgram::CFilmProgram(int width, int height, const std::vector<std::string>& encoding) {
  CDescriptor theirs;
  if (OpenAll(theirs)) Start(Arguments(width, height, encoding), theirs.Get());
}

void CFilmProgram::Start(std::vector<std::string> arguments, int theirs) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, theirs, STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, m_Errors.Get(), STDERR_FILENO);
  posix_spawn_file_actions_adddup2(&actions, m_Film.Get(), kFilmDescriptor);
  const int error = posix_spawnp(&m_Process, kProgram, &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  m_bMissing = error == ENOENT;
  if (error != 0) m_Process = -1;
}

CFilmProgram::~CFilmProgram() { End(); }

void CFilmProgram::End() {
  if (m_Process < 0) return;
  kill(m_Process, SIGKILL);
  waitpid(m_Process, &m_iStatus, 0);
  m_Process = -1;
}

bool CFilmProgram::Send(std::string_view pixels, const Goes& goes) {
  constexpr int kPatience = 100;  // milliseconds
  while (m_Process >= 0 && !pixels.empty()) {
    const ssize_t sent = send(m_Frames.Get(), pixels.data(), pixels.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) {
      pixels.remove_prefix(static_cast<std::size_t>(sent));
      continue;
    }
    if (errno != EAGAIN && errno != EINTR) return false;
    pollfd room{m_Frames.Get(), POLLOUT, 0};
    poll(&room, 1, kPatience);
    if (!goes()) return false;
  }
  return m_Process >= 0;
}

bool CFilmProgram::Finish(const Goes& goes) {
  constexpr int kInterval = 20;  // milliseconds
  m_Frames.Close();
  while (m_Process >= 0) {
    const pid_t ended = waitpid(m_Process, &m_iStatus, WNOHANG);
    if (ended == m_Process || (ended < 0 && errno != EINTR)) m_Process = -1;
    if (ended != 0) continue;
    if (!goes()) return false;
    poll(nullptr, 0, kInterval);
  }
  return WIFEXITED(m_iStatus) && WEXITSTATUS(m_iStatus) == 0;
}

void CFilmProgram::ForOutput(const std::function<void(std::span<const unsigned char>)>& take) const {
  std::array<unsigned char, std::size_t{1} << 16> block{};
  for (off_t at = 0;;) {
    const ssize_t count = pread(m_Film.Get(), block.data(), block.size(), at);
    if (count <= 0) return;
    take(std::span(block).first(static_cast<std::size_t>(count)));
    at += count;
  }
}

std::string CFilmProgram::Trouble() {
  if (m_bMissing) return "This kind of film needs the program ffmpeg, which is not installed.";
  // It may still be about to say why.
  m_Frames.Close();
  constexpr int kPatience = 50;
  constexpr int kInterval = 20;
  for (int k = 0; k < kPatience && m_Process >= 0; ++k) {
    if (waitpid(m_Process, &m_iStatus, WNOHANG) != 0) m_Process = -1;
    if (m_Process >= 0) poll(nullptr, 0, kInterval);
  }
  End();
  std::array<char, 512> text{};
  const ssize_t count = m_Errors.IsOpen() ? pread(m_Errors.Get(), text.data(), text.size(), 0) : 0;
  const std::string_view said(text.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
  const std::string line(said.substr(0, said.find('\n')));
  return line.empty() ? "The program ffmpeg has failed." : "The program ffmpeg has failed: " + line + '.';
}
