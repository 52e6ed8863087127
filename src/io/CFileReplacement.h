#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

struct stat;

/// Replaces a file so that its old contents stay whole until the new ones are complete.
///
/// What is written goes to a file with a short random name beside the target, which takes the target's place in
/// `Commit`, with the target's owner, group and permissions as far as the system allows. Without a successful `Commit`
/// the target is as it was and nothing is left beside it. Links are followed, also those to files that do not exist. A
/// target that is no regular file (a folder, a device, a pipe) is refused. Where a CKeepOldFile of its name lives the
/// old file is kept.
class CFileReplacement {
 public:
  /// Opens a file beside `filename`. Where that fails nothing is thrown and `Commit` fails.
  explicit CFileReplacement(const std::string& filename);
  ~CFileReplacement();
  CFileReplacement(const CFileReplacement&) = delete;
  CFileReplacement& operator=(const CFileReplacement&) = delete;

  /// The file behind all links that is to be replaced.
  const std::filesystem::path& Target() const { return m_Target; }
  /// Whether the target may be written and there is room for a file beside it. Nothing may be written otherwise.
  bool IsOpen() const { return m_pFile != nullptr; }
  /// Appends bytes. A failure shows in `Commit`.
  void Write(std::span<const unsigned char> bytes);
  /// Brings the contents on the disk, for files of which all or none are to be put in place. Nothing may be written
  /// afterwards; false where anything went wrong.
  bool Complete();
  /// Completes the file and puts it in place, and all of that on the disk; false, with the target as it was, where
  /// anything went wrong.
  bool Commit();

  /// Removes the files beside their targets that are not in place yet, for a process that is about to end without
  /// destroying its objects. An ordinary end of the process does it by itself.
  static void RemoveUnfinished();

 private:
  struct CClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void OpenBeside(const struct stat* existing);

  std::filesystem::path m_Target;
  std::filesystem::path m_Beside;  ///< empty while there is no such file
  std::unique_ptr<std::FILE, CClose> m_pFile;
  bool m_bKeepsOld;
  bool m_bFailed = false;
};
