#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/wait.h>

/// Runs a command of the shell in a directory, its output in the files "out" and "err" there; its exit status, or -1
/// where a signal ended it.
inline int RunIn(const std::filesystem::path& directory, const std::string& command) {
  const int status = std::system(("cd '" + directory.string() + "' && " + command + " >out 2>err </dev/null").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
