#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// A model and the picture that it was used with. Absolute paths; one of them may be empty.
struct CRecentWork {
  std::string m_Model;
  std::string m_Picture;

  bool operator==(const CRecentWork&) const = default;
};

/// The models and pictures that were open last, the latest first, kept in a file from run to run. Several programs
/// share that file: each reads it again before it changes anything.
class CRecentFiles {
 public:
  static constexpr std::size_t kMost = 10;

  /// An empty path keeps nothing. The file need not exist.
  explicit CRecentFiles(std::filesystem::path file) : m_File(std::move(file)) {}

  /// What the file holds now; lines that make no sense are left out.
  std::vector<CRecentWork> List() const;
  /// Puts a model, a picture or both in front. Replaces the entry of the same model, and one of the same picture that
  /// has no model yet. False where the file cannot be written.
  bool Note(const CRecentWork& work);
  /// Forgets all. False where the file cannot be written.
  bool Clear();

 private:
  bool Write(const std::vector<CRecentWork>& list);

  std::filesystem::path m_File;
};
