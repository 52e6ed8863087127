#include "io/CFileReplacement.h"

#include <cerrno>
#include <optional>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "io/CBackup.h"
#include "io/CKeepOldFile.h"
#include "io/RandomName.h"

namespace {

namespace fs = std::filesystem;

// As many links in a row as the system itself follows.
constexpr int kMostLinks = 40;
// Two random names hardly ever collide; whatever makes this many of them fail is no accident.
constexpr int kMostNames = 1000;

/// The files that are beside their targets just now.
class CUnfinished {
 public:
  CUnfinished() = default;
  CUnfinished(const CUnfinished&) = delete;
  CUnfinished& operator=(const CUnfinished&) = delete;
  ~CUnfinished() { Remove(); }

  void Add(const fs::path& file) { m_Files.insert(file); }
  void Forget(const fs::path& file) { m_Files.erase(file); }
  void Remove() {
    for (const fs::path& file : m_Files) unlink(file.c_str());
    m_Files.clear();
  }

 private:
  std::set<fs::path> m_Files;
};

CUnfinished& Unfinished() {
  static CUnfinished unfinished;
  return unfinished;
}

/// An open file, closed with the object.
class CDescriptor {
 public:
  explicit CDescriptor(int descriptor) : m_iDescriptor(descriptor) {}
  ~CDescriptor() {
    if (IsOpen()) close(m_iDescriptor);
  }
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;
  bool IsOpen() const { return m_iDescriptor >= 0; }
  int Get() const { return m_iDescriptor; }

 private:
  int m_iDescriptor;
};

// Whether the folder is one in which the system shows open files as links, standard output for instance.
bool ShowsOpenFiles(const fs::path& folder) {
  std::error_code error;
  return fs::canonical(folder, error).native().starts_with("/proc/");
}

// The path behind all links, whether or not there is a file; nothing where they go round in a circle or lead to a file
// that a process has open: that process would not see another file in its place.
std::optional<fs::path> BehindLinks(fs::path path) {
  for (int k = 0; k < kMostLinks; ++k) {
    std::error_code error;
    const fs::path next = fs::read_symlink(path, error);
    if (error) return path;
    if (ShowsOpenFiles(path.parent_path())) return {};
    path = path.parent_path() / next;
  }
  return {};
}

// What is known of a regular file that may be written. Without waiting: opening a pipe would wait for its other end.
std::optional<struct stat> WritableFile(const fs::path& path) {
  const CDescriptor file(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  return status;
}

// Owner and group first, because giving a file away takes some of its permissions. A file that could not be given back
// to its owner must not run in the name of another one.
void TakeOver(int file, const struct stat& existing) {
  constexpr mode_t kAll = S_ISUID | S_ISGID | S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;
  constexpr mode_t kPlain = S_IRWXU | S_IRWXG | S_IRWXO;
  constexpr auto kUnchanged = static_cast<uid_t>(-1);
  const bool groupKept = fchown(file, kUnchanged, existing.st_gid) == 0;
  const bool ownerKept = fchown(file, existing.st_uid, kUnchanged) == 0;
  [[maybe_unused]] const int done = fchmod(file, existing.st_mode & (groupKept && ownerKept ? kAll : kPlain));
}

// Some file systems know no such call and answer that it makes no sense there.
bool Synchronise(int file) { return fsync(file) == 0 || errno == EINVAL || errno == EROFS; }

fs::path FolderOf(const fs::path& file) { return file.has_parent_path() ? file.parent_path() : fs::path("."); }

}  // namespace

CFileReplacement::CFileReplacement(const std::string& filename) : m_bKeepsOld(CKeepOldFile::IsWanted(filename)) {
  const std::optional<fs::path> target = BehindLinks(filename);
  if (!target.has_value()) return;
  m_Target = *target;
  struct stat present {};
  if (lstat(m_Target.c_str(), &present) != 0) {
    if (errno == ENOENT && m_Target.has_filename()) OpenBeside(nullptr);
    return;
  }
  if (const std::optional<struct stat> existing = WritableFile(m_Target)) OpenBeside(&*existing);
}

CFileReplacement::~CFileReplacement() {
  m_pFile.reset();
  if (m_Beside.empty()) return;
  unlink(m_Beside.c_str());
  Unfinished().Forget(m_Beside);
}

void CFileReplacement::OpenBeside(const struct stat* existing) {
  // What replaces a private file must not be readable for a moment either.
  constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;
  constexpr mode_t kNew = kPrivate | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  for (int k = 0; k < kMostNames && m_pFile == nullptr; ++k) {
    const fs::path beside = m_Target.parent_path() / RandomName();
    const int file =
        open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, existing != nullptr ? kPrivate : kNew);
    if (file < 0 && errno == EEXIST) continue;
    if (file < 0) return;
    m_Beside = beside;
    Unfinished().Add(m_Beside);
    if (existing != nullptr) TakeOver(file, *existing);
    m_pFile.reset(fdopen(file, "wb"));
    if (m_pFile == nullptr) close(file);
    return;
  }
}

void CFileReplacement::Write(std::span<const unsigned char> bytes) {
  m_bFailed = m_bFailed || std::fwrite(bytes.data(), 1, bytes.size(), m_pFile.get()) != bytes.size();
}

bool CFileReplacement::Complete() {
  if (m_pFile == nullptr) return !m_bFailed && !m_Beside.empty();
  // What is still in the buffer may find the disk full. The contents must be on the disk before the name is: after a
  // loss of power there would be neither the old file nor the new one.
  m_bFailed = std::fflush(m_pFile.get()) != 0 || !Synchronise(fileno(m_pFile.get())) || m_bFailed;
  m_bFailed = std::fclose(m_pFile.release()) != 0 || m_bFailed;
  return !m_bFailed;
}

bool CFileReplacement::Commit() {
  if (!Complete()) return false;
  std::optional<CBackup> old;
  if (m_bKeepsOld) old.emplace(m_Target);
  if (std::rename(m_Beside.c_str(), m_Target.c_str()) != 0) return false;
  if (old.has_value()) old->Commit();
  Unfinished().Forget(m_Beside);
  m_Beside.clear();
  // The file is in place. A folder that may not be read cannot be told to write itself down.
  const CDescriptor folder(open(FolderOf(m_Target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return !folder.IsOpen() || Synchronise(folder.Get());
}

void CFileReplacement::RemoveUnfinished() { Unfinished().Remove(); }
