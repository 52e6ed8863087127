#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

/// Writes a file anew so that its old contents stay whole until the new ones are complete.
///
/// What is written goes to a file beside the target, which takes the target's place in `Commit`. Without a successful
/// `Commit` the target is as it was and nothing is left beside it. A link is followed. A target that is no regular file
/// (a device, a pipe) cannot be replaced and is written directly.
class CFileReplacement {
 public:
  explicit CFileReplacement(const std::string& filename);
  ~CFileReplacement();
  CFileReplacement(const CFileReplacement&) = delete;
  CFileReplacement& operator=(const CFileReplacement&) = delete;

  /// Whether the target may be written and there is room for a file beside it. Nothing may be written otherwise.
  bool IsOpen() const { return m_pFile != nullptr; }
  /// Appends bytes. A failure shows in `Commit`.
  void Write(std::span<const unsigned char> bytes);
  /// Completes the file and puts it in place; false, with the target as it was, where anything went wrong.
  bool Commit();

 private:
  struct CClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void OpenBeside();

  std::filesystem::path m_Target;
  std::filesystem::path m_Beside;  ///< empty while there is no such file
  std::unique_ptr<std::FILE, CClose> m_pFile;
  bool m_bFailed = false;
};
