#pragma once

#include <filesystem>

/// An empty directory that is gone, with all that came into it, when the object is.
class CTemporaryDirectory {
 public:
  CTemporaryDirectory();
  ~CTemporaryDirectory();
  CTemporaryDirectory(const CTemporaryDirectory&) = delete;
  CTemporaryDirectory& operator=(const CTemporaryDirectory&) = delete;

  const std::filesystem::path& Path() const { return m_Path; }

 private:
  std::filesystem::path m_Path;
};
