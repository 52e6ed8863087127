#pragma once

#include <filesystem>
#include <vector>

#include "editing/CKeptLines.h"
#include "editing/CWorkFiles.h"

/// The models and pictures that were open last, the latest first, kept in a file from run to run. Several programs
/// share that file: each reads it again before it changes anything.
class CRecentFiles {
 public:
  static constexpr std::size_t kMost = 10;

  /// With an empty path, or where the file cannot be written, the list lasts as long as the run. The file need not
  /// exist.
  explicit CRecentFiles(std::filesystem::path file) : m_Lines(std::move(file), "list of recent files") {}

  /// What the list holds now; lines of the file that make no sense are left out.
  std::vector<CWorkFiles> List();
  /// Puts a model, a picture or both in front. Replaces the entry of the same model, and one of the same picture that
  /// has no model yet.
  void Note(const CWorkFiles& work);
  void Clear();

 private:
  void Write(const std::vector<CWorkFiles>& list);

  CKeptLines m_Lines;
  bool m_bInMemory = false;  ///< the file could not be written
  std::vector<CWorkFiles> m_aInMemory;
};
