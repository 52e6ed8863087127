#include "editing/CFileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// As often as another process may delete the file between our opening and our locking it.
constexpr int kMostTries = 100;

bool IsFileOf(int descriptor, const std::filesystem::path& path) {
  struct stat held {};
  struct stat named {};
  return fstat(descriptor, &held) == 0 && stat(path.c_str(), &named) == 0 && held.st_dev == named.st_dev &&
         held.st_ino == named.st_ino;
}

}  // namespace

std::optional<CFileLock> CFileLock::Take(const std::filesystem::path& file) {
  for (int k = 0; k < kMostTries; ++k) {
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (descriptor < 0) return {};
    CFileLock lock(file, descriptor);
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return {};
    if (IsFileOf(descriptor, file)) return lock;
  }
  return {};
}

CFileLock& CFileLock::operator=(CFileLock&& other) noexcept {
  std::swap(m_File, other.m_File);
  std::swap(m_iFile, other.m_iFile);
  return *this;
}

CFileLock::~CFileLock() {
  if (m_iFile >= 0) close(m_iFile);
}

void CFileLock::Remove() {
  if (m_iFile < 0) return;
  unlink(m_File.c_str());
  close(std::exchange(m_iFile, -1));
}
