#pragma once

#include <string>
#include <utility>

/// While such an object lives, the file of that name stays beside its successor as NAME~ when it is replaced
/// (CBackup tells how). Only the last object counts.
class CKeepOldFile {
 public:
  /// The name as a CFileReplacement is given it.
  explicit CKeepOldFile(std::string filename) : m_Before(std::exchange(s_Filename, std::move(filename))) {}
  ~CKeepOldFile() { s_Filename = std::move(m_Before); }
  CKeepOldFile(const CKeepOldFile&) = delete;
  CKeepOldFile& operator=(const CKeepOldFile&) = delete;

  /// Whether the file of that name is to be kept.
  static bool IsWanted(const std::string& filename) { return !filename.empty() && filename == s_Filename; }

 private:
  static inline std::string s_Filename;
  std::string m_Before;
};
