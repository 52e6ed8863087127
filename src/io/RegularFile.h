#pragma once

#include <filesystem>
#include <string>
#include <system_error>

/// Whether there is a regular file of that name, links followed. Only such files are read: a folder holds no text, and
/// opening a pipe would wait for something to write into it.
inline bool IsRegularFile(const std::string& filename) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(filename, ignored);
}
