#include "io/CBackup.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "base/Console.h"
#include "io/RandomName.h"
#include "io/RegularFile.h"

namespace {

namespace fs = std::filesystem;

fs::path BackupOf(const fs::path& target) { return target.native() + "~"; }

bool HasRoom(const fs::path& target) {
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  const long most = pathconf(folder.c_str(), _PC_NAME_MAX);
  return most < 0 || BackupOf(target).filename().native().size() <= static_cast<std::size_t>(most);
}

}  // namespace

CBackup::CBackup(fs::path target) : m_Target(std::move(target)) {
  if (!IsRegularFile(m_Target)) return;
  if (HasRoom(m_Target)) {
    KeepUnder(m_Target.parent_path() / RandomName());
  } else {
    Refuse("its name has no room for a ~");
  }
}

// A second name costs nothing. Some file systems know none, and some systems give none to other users' files.
void CBackup::KeepUnder(const fs::path& name) {
  std::error_code error;
  if (link(m_Target.c_str(), name.c_str()) != 0) fs::copy_file(m_Target, name, error);
  if (error) {
    Refuse(error.message().c_str());
    if (error != std::errc::file_exists) unlink(name.c_str());
  } else {
    m_Second = name;
  }
}

CBackup::~CBackup() {
  if (!m_Second.empty()) unlink(m_Second.c_str());
}

// Where NAME~ is another name of the same file nothing is renamed; then the destructor takes the second name away.
void CBackup::Commit() {
  if (m_Second.empty()) return;
  if (std::rename(m_Second.c_str(), BackupOf(m_Target).c_str()) != 0) {
    Refuse(std::generic_category().message(errno).c_str());
  }
}

void CBackup::Refuse(const char* why) const {
  Console() << "No copy of the old " << m_Target.native() << " is kept: " << why << '\n';
}
