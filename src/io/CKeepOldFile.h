#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// While such an object lives, the files of these names stay beside their successors as NAME~ when they are replaced
/// (CBackup tells how). Only the last object counts.
class CKeepOldFile {
 public:
  /// The names as a CFileReplacement is given them.
  explicit CKeepOldFile(std::vector<std::string> filenames)
      : m_asBefore(std::exchange(s_asFilenames, std::move(filenames))) {}
  explicit CKeepOldFile(const std::string& filename) : CKeepOldFile(std::vector{filename}) {}
  ~CKeepOldFile() { s_asFilenames = std::move(m_asBefore); }
  CKeepOldFile(const CKeepOldFile&) = delete;
  CKeepOldFile& operator=(const CKeepOldFile&) = delete;

  /// Whether the file of that name is to be kept.
  static bool IsWanted(const std::string& filename) {
    return !filename.empty() && std::ranges::find(s_asFilenames, filename) != s_asFilenames.end();
  }

 private:
  static inline std::vector<std::string> s_asFilenames;
  std::vector<std::string> m_asBefore;
};
