#include "editing/CRecoveryFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "projects/ProjectFile.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSuffix = kProjectSuffix;
constexpr std::string_view kPart = ".part";
constexpr std::string_view kLock = ".lock";
constexpr int kMostNames = 1000;

fs::path LockOf(fs::path file) { return file.replace_extension(kLock); }
fs::path PartOf(fs::path file) { return file.replace_extension(kPart); }

/// Names, as a folder that changes or cannot be read gives them.
std::vector<fs::path> FilesIn(const fs::path& folder, std::string_view suffix) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (entry->path().extension() == suffix) files.push_back(entry->path());
  }
  return files;
}

fs::file_time_type TimeOf(const fs::path& file) {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(file, error);
  return error ? fs::file_time_type::min() : time;
}

std::uintmax_t SizeOf(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  return error ? 0 : size;
}

bool WriteAll(int file, std::span<const unsigned char> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

// Some file systems know no such call and answer that it makes no sense there.
bool Synchronise(int file) { return fsync(file) == 0 || errno == EINVAL; }

bool WriteFile(const fs::path& path, std::span<const unsigned char> bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
  if (file < 0) return false;
  const bool written = WriteAll(file, bytes) && Synchronise(file);
  return close(file) == 0 && written;
}

void SynchroniseFolder(const fs::path& folder) {
  const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  Synchronise(file);
  close(file);
}

// By time, so that a folder reads like a diary; the number tells programs apart that begin in the same second.
fs::path NameOf(int number) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S-", &local);
  return std::string(text.data()) + std::to_string(number) + std::string(kSuffix);
}

}  // namespace

CRecoveryFolder::~CRecoveryFolder() {
  if (!m_bWritten) Forget();
}

// The lock comes first: a file without one that is held is anybody's.
bool CRecoveryFolder::BeginOwn() {
  const std::scoped_lock lock(m_Mutex);
  if (m_OwnLock.has_value()) return true;
  if (m_Folder.empty()) return false;
  mkdir(m_Folder.c_str(), S_IRWXU);
  for (int k = 0; k < kMostNames; ++k) {
    const fs::path own = m_Folder / NameOf(k);
    std::error_code error;
    if (fs::exists(own, error) || error) continue;
    m_OwnLock = CFileLock::Take(LockOf(own));
    if (!m_OwnLock.has_value()) continue;
    m_Own = own;
    return true;
  }
  return false;
}

bool CRecoveryFolder::Write(std::span<const unsigned char> bytes) {
  if (bytes.size() > kMostBytes || !BeginOwn()) return false;
  // It takes its time, and the name stays.
  const fs::path part = PartOf(m_Own);
  if (!WriteFile(part, bytes) || std::rename(part.c_str(), m_Own.c_str()) != 0) {
    unlink(part.c_str());
    return false;
  }
  SynchroniseFolder(m_Folder);
  const std::scoped_lock lock(m_Mutex);
  m_bWritten = true;
  Sweep();
  Prune();
  return true;
}

void CRecoveryFolder::Forget() {
  const std::scoped_lock lock(m_Mutex);
  if (m_bWritten) unlink(m_Own.c_str());
  m_bWritten = false;
  // The next writing begins another file.
  if (m_OwnLock.has_value()) m_OwnLock->Remove();
  m_OwnLock.reset();
  m_Own.clear();
}

fs::path CRecoveryFolder::SetAside() {
  const std::scoped_lock lock(m_Mutex);
  if (!m_bWritten) return {};
  m_OwnLock.reset();
  m_bWritten = false;
  return std::exchange(m_Own, {});
}

std::vector<fs::path> CRecoveryFolder::Left() {
  const std::scoped_lock lock(m_Mutex);
  std::vector<std::pair<fs::file_time_type, fs::path>> found;
  for (fs::path& file : FilesIn(m_Folder, kSuffix)) {
    if (file == m_Own) continue;
    if (!m_Claimed.contains(file) && !CFileLock::Take(LockOf(file)).has_value()) continue;
    found.emplace_back(TimeOf(file), std::move(file));
  }
  std::ranges::sort(found, std::greater{});
  std::vector<fs::path> files;
  files.reserve(found.size());
  for (auto& [time, file] : found) files.push_back(std::move(file));
  return files;
}

bool CRecoveryFolder::Claim(const fs::path& file) {
  const std::scoped_lock mutexLock(m_Mutex);
  if (m_Claimed.contains(file)) return true;
  std::optional<CFileLock> lock = CFileLock::Take(LockOf(file));
  std::error_code error;
  if (!lock.has_value()) return false;
  if (!fs::exists(file, error)) {
    lock->Remove();
    return false;
  }
  m_Claimed.emplace(file, std::move(*lock));
  return true;
}

void CRecoveryFolder::Release(const fs::path& file) {
  const std::scoped_lock lock(m_Mutex);
  m_Claimed.erase(file);
}

bool CRecoveryFolder::Discard(const fs::path& file) {
  const std::scoped_lock lock(m_Mutex);
  if (!Claim(file)) return false;
  const bool gone = unlink(file.c_str()) == 0;
  if (gone) m_Claimed.at(file).Remove();
  m_Claimed.erase(file);
  return gone;
}

// What this program has claimed stays, as does what others hold.
void CRecoveryFolder::Prune() {
  std::vector<fs::path> left = Left();
  std::erase_if(left, [this](const fs::path& file) { return m_Claimed.contains(file); });
  std::size_t files = 0;
  std::uintmax_t bytes = 0;
  for (const fs::path& file : FilesIn(m_Folder, kSuffix)) {
    ++files;
    bytes += SizeOf(file);
  }
  for (; !left.empty() && (files > kMostFiles || bytes > kMostBytes); left.pop_back()) {
    const std::uintmax_t size = SizeOf(left.back());
    if (!Discard(left.back())) continue;
    --files;
    bytes -= size;
  }
}

// What programs have left that were ended in the middle of a writing, or before the first: parts and locks of files
// that nobody holds.
void CRecoveryFolder::Sweep() {
  for (const fs::path& lockFile : FilesIn(m_Folder, kLock)) {
    const fs::path file = fs::path(lockFile).replace_extension(kSuffix);
    if (file == m_Own || m_Claimed.contains(file)) continue;
    std::optional<CFileLock> lock = CFileLock::Take(lockFile);
    if (!lock.has_value()) continue;
    unlink(PartOf(file).c_str());
    std::error_code error;
    if (!fs::exists(file, error) && !error) lock->Remove();
  }
}
