#pragma once

#include <filesystem>
#include <optional>
#include <utility>

/// A file that this process alone holds, among all that lock files in this way. The system lets go of it when the
/// process ends, whatever ends it.
class CFileLock {
 public:
  /// Makes the file where there is none, for the user alone, and locks it. Nothing where another process, or another
  /// object, has it, or where it cannot be made.
  static std::optional<CFileLock> Take(const std::filesystem::path& file);

  /// Moved, a lock is held by the other object.
  CFileLock(CFileLock&& other) noexcept : m_File(std::move(other.m_File)), m_iFile(std::exchange(other.m_iFile, -1)) {}
  CFileLock& operator=(CFileLock&& other) noexcept;
  CFileLock(const CFileLock&) = delete;
  CFileLock& operator=(const CFileLock&) = delete;
  /// Lets go of the file, which stays.
  ~CFileLock();

  /// Deletes the file and lets go of it.
  void Remove();

 private:
  CFileLock(std::filesystem::path file, int descriptor) : m_File(std::move(file)), m_iFile(descriptor) {}

  std::filesystem::path m_File;
  int m_iFile;  ///< -1 for none
};
