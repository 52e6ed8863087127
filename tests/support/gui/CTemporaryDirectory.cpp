#include "support/gui/CTemporaryDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

CTemporaryDirectory::CTemporaryDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "relievo-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  m_Path = name;
}

CTemporaryDirectory::~CTemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(m_Path, ignored);
}
