#include "editing/CLastFolders.h"

#include <optional>
#include <system_error>
#include <vector>

#include "io/FileUri.h"

namespace {

// One line is a kind and the URI of its folder.
constexpr char kBetweenKindAndFolder = '\t';

}  // namespace

void CLastFolders::ReadOnce() {
  if (m_bRead) return;
  m_bRead = true;
  for (const std::string& line : m_Lines.Read()) {
    const std::size_t between = line.find(kBetweenKindAndFolder);
    const std::optional<std::string> folder = PathOf(line.substr(between == line.npos ? line.size() : between + 1));
    if (folder.has_value()) {
      m_Folders[line.substr(0, between)] = *folder;
    } else {
      m_Lines.TellDamaged();
    }
  }
}

std::string CLastFolders::Of(const std::string& kind) {
  ReadOnce();
  const auto found = m_Folders.find(kind);
  std::error_code ignored;
  const bool there = found != m_Folders.end() && std::filesystem::is_directory(found->second, ignored);
  return there ? found->second : "";
}

void CLastFolders::Note(const std::string& kind, const std::string& file) {
  ReadOnce();
  const std::string folder = std::filesystem::path(file).parent_path();
  std::string& known = m_Folders[kind];
  if (known == folder) return;
  known = folder;
  std::vector<std::string> lines;
  lines.reserve(m_Folders.size());
  for (const auto& [each, where] : m_Folders) lines.push_back(each + kBetweenKindAndFolder + UriOf(where));
  m_Lines.Write(lines);
}
