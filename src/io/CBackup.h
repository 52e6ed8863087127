#pragma once

#include <filesystem>

/// The old contents of a file that is about to be replaced, as NAME~ beside it.
///
/// They first get a second, random name, so that an older NAME~ goes only when the file has really been replaced. Where
/// the file system knows no second names they are copied. Where none can be kept, because NAME~ would be too long a
/// name or there is no room, a line on the console says so, and the file may be replaced all the same.
class CBackup {
 public:
  /// `target` lies behind all links. Nothing is kept of what is no regular file.
  explicit CBackup(std::filesystem::path target);
  ~CBackup();
  CBackup(const CBackup&) = delete;
  CBackup& operator=(const CBackup&) = delete;

  /// The file has been replaced: what was kept becomes NAME~. Otherwise nothing is left of it.
  void Commit();

 private:
  void KeepUnder(const std::filesystem::path& name);
  void Refuse(const char* why) const;

  std::filesystem::path m_Target;
  std::filesystem::path m_Second;  ///< the random name; empty while there is none
};
