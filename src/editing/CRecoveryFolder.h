#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "editing/CFileLock.h"

/// The folder in which programs keep work that no file of the user's holds: one file for each program that runs, and
/// what those have left that did not end well.
///
/// Beside each file lies a lock, which its program holds while it runs. A file whose lock is free belongs to nobody and
/// may be taken over. All answers are those of a moment: other programs use the folder, too. While a thread writes,
/// another may do all the rest.
class CRecoveryFolder {
 public:
  static constexpr std::size_t kMostFiles = 10;
  static constexpr std::uintmax_t kMostBytes = 200'000'000;

  /// `folder` is made at the first writing. An empty one keeps nothing.
  explicit CRecoveryFolder(std::filesystem::path folder) : m_Folder(std::move(folder)) {}
  ~CRecoveryFolder();
  CRecoveryFolder(const CRecoveryFolder&) = delete;
  CRecoveryFolder& operator=(const CRecoveryFolder&) = delete;

  /// Puts these bytes into this program's file, in one piece or not at all: what it held before stays whole until they
  /// are on the disk. Files that belong to nobody then go, the oldest first, until there are no more than kMostFiles
  /// with kMostBytes. False, with everything as it was, where they cannot be written or are more than that.
  bool Write(std::span<const unsigned char> bytes);
  /// This program's file goes. Not while it is being written.
  void Forget();

  /// What this program's file holds is no longer what it works on: the file belongs to nobody from now on, and
  /// the next writing begins another. Not while it is being written. Its name; empty where nothing has been written.
  std::filesystem::path SetAside();

  /// The files that belong to nobody, and those that this program has claimed; the newest first.
  std::vector<std::filesystem::path> Left();
  /// Makes a file that belongs to nobody this program's, too, so that nobody else is offered it. Whether it is now.
  bool Claim(const std::filesystem::path& file);
  /// Lets go of a claimed file, which is nobody's again.
  void Release(const std::filesystem::path& file);
  /// Deletes a file that has been claimed or belongs to nobody; whether it is gone.
  bool Discard(const std::filesystem::path& file);

 private:
  bool BeginOwn();
  void Prune();
  void Sweep();

  std::recursive_mutex m_Mutex;  ///< of all below but the folder's name
  std::filesystem::path m_Folder;
  std::filesystem::path m_Own;  ///< empty before the first writing
  std::optional<CFileLock> m_OwnLock;
  bool m_bWritten = false;
  std::map<std::filesystem::path, CFileLock> m_Claimed;
};
