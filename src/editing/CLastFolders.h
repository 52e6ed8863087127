#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "editing/CKeptLines.h"

/// The folder that a file of each kind was chosen in last, kept in a file from run to run. A kind is any short word
/// without tabs and ends of lines.
class CLastFolders {
 public:
  /// An empty path keeps nothing beyond the run. The file is read when the first folder is asked for or noted.
  explicit CLastFolders(std::filesystem::path file) : m_Lines(std::move(file), "list of last folders") {}

  /// Empty where no file of the kind was chosen yet, or where the folder is gone.
  std::string Of(const std::string& kind);
  /// A file of the kind, an absolute path, has been chosen.
  void Note(const std::string& kind, const std::string& file);

 private:
  void ReadOnce();

  CKeptLines m_Lines;
  bool m_bRead = false;
  std::map<std::string, std::string> m_Folders;  ///< by kind
};
