#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// A few lines that are kept from run to run in a small file. Trouble with it is nobody's error: the first of each kind
/// becomes a line on the console, and that is all.
class CKeptLines {
 public:
  /// An empty path keeps nothing. `what` is what the console calls it ("list of recent files").
  CKeptLines(std::filesystem::path file, std::string what) : m_File(std::move(file)), m_What(std::move(what)) {}

  /// What the file holds now, at most its first megabyte; nothing where it cannot be read.
  std::vector<std::string> Read() const;
  /// Replaces all of it; false where nothing is kept. The lines must contain no end of line.
  bool Write(const std::vector<std::string>& lines);
  /// To be called when a line makes no sense.
  void TellDamaged();

 private:
  std::filesystem::path m_File;
  std::string m_What;
  bool m_bToldDamaged = false;
  bool m_bToldUnwritable = false;
};
