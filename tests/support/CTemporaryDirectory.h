#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

/// An empty directory that is gone, with all that came into it, when the object is.
class CTemporaryDirectory {
 public:
  CTemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "relievo-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    m_Path = name;
  }
  ~CTemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
  }
  CTemporaryDirectory(const CTemporaryDirectory&) = delete;
  CTemporaryDirectory& operator=(const CTemporaryDirectory&) = delete;

  const std::filesystem::path& Path() const { return m_Path; }
  std::string File(const std::string& name) const { return m_Path / name; }
  /// Names of what lies in it, in no order.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_Path)) names.push_back(entry.path().filename());
    return names;
  }

 private:
  std::filesystem::path m_Path;
};
