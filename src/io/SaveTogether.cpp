#include "io/SaveTogether.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <list>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "io/CFileReplacement.h"
#include "io/RandomName.h"

namespace {

namespace fs = std::filesystem;

CSaveOutcome NotWritten(const CNewFile& file) {
  return {"The file " + file.m_Name + " could not be written. If it existed before, it is unchanged."};
}

/// What a file was before it was replaced, under a second name beside it until the object goes.
class COldFile {
 public:
  explicit COldFile(fs::path target) : m_Target(std::move(target)) {
    struct stat present {};
    m_bExisted = lstat(m_Target.c_str(), &present) == 0;
    if (!m_bExisted) return;
    m_Second = m_Target.parent_path() / RandomName();
    if (link(m_Target.c_str(), m_Second.c_str()) == 0) return;
    // Some file systems know no second names.
    std::error_code error;
    m_bKept = fs::copy_file(m_Target, m_Second, error);
  }
  ~COldFile() {
    if (!m_Second.empty()) unlink(m_Second.c_str());
  }
  COldFile(const COldFile&) = delete;
  COldFile& operator=(const COldFile&) = delete;

  /// Whether it can come back.
  bool IsKept() const { return m_bKept; }
  bool Existed() const { return m_bExisted; }
  /// The file is again what it was.
  void TakeBack() const {
    if (m_bExisted) {
      [[maybe_unused]] const int done = std::rename(m_Second.c_str(), m_Target.c_str());
    } else {
      unlink(m_Target.c_str());
    }
  }

 private:
  fs::path m_Target;
  fs::path m_Second;  ///< empty where there was no file
  bool m_bExisted = false;
  bool m_bKept = true;
};

/// Tells how much of all files is written.
class CWrittenShare {
 public:
  CWrittenShare(std::span<const CNewFile> files, const std::function<bool(double)>& goes) : m_Goes(goes) {
    for (const CNewFile& file : files) m_uAll += file.m_Bytes.size();
  }
  // False where the rest is not wanted.
  bool Goes() const {
    return !m_Goes || m_Goes(m_uAll == 0 ? 1.0 : static_cast<double>(m_uDone) / static_cast<double>(m_uAll));
  }
  void Add(std::size_t count) { m_uDone += count; }

 private:
  const std::function<bool(double)>& m_Goes;
  std::size_t m_uAll = 0;
  std::size_t m_uDone = 0;
};

void WritePiece(std::string_view piece, CFileReplacement& replacement) {
  replacement.Write({reinterpret_cast<const unsigned char*>(piece.data()), piece.size()});
}

// False where it is not wanted any more.
bool WriteInBlocks(std::string_view bytes, CFileReplacement& replacement, CWrittenShare& share) {
  constexpr std::size_t kBlock = std::size_t{1} << 22;
  while (!bytes.empty()) {
    if (!share.Goes()) return false;
    const std::string_view block = bytes.substr(0, kBlock);
    WritePiece(block, replacement);
    share.Add(block.size());
    bytes.remove_prefix(block.size());
  }
  return share.Goes();
}

bool WriteContents(const CNewFile& file, CFileReplacement& replacement, CWrittenShare& share) {
  if (!file.m_Put) return WriteInBlocks(file.m_Bytes, replacement, share);
  CByteSink sink([&replacement](std::string_view block) { WritePiece(block, replacement); });
  if (!file.m_Put(sink)) return false;
  sink.Flush();
  return true;
}

CSaveOutcome CommitAll(std::span<const CNewFile> files, std::list<CFileReplacement>& replacements) {
  std::list<COldFile> olds;
  auto file = files.begin();
  for (CFileReplacement& replacement : replacements) {
    // A single one cannot be left half done.
    const bool kept = files.size() == 1 || olds.emplace_back(replacement.Target()).IsKept();
    if (!kept || !replacement.Commit()) {
      // The last one may be in place without being on the disk. Where there was none, what is there now may be
      // another's.
      if (!olds.empty() && !(kept && olds.back().Existed())) olds.pop_back();
      for (const COldFile& old : olds) old.TakeBack();
      return NotWritten(*file);
    }
    ++file;
  }
  return {};
}

}  // namespace

CSaveOutcome Cancelled(const std::string& filename) {
  return {"Cancelled. The file " + filename + " is not written.", true};
}

CSaveOutcome SaveTogether(std::span<const CNewFile> files, const std::function<bool(double)>& goes) {
  CWrittenShare share(files, goes);
  std::list<CFileReplacement> replacements;
  for (const CNewFile& file : files) {
    CFileReplacement& replacement = replacements.emplace_back(file.m_Name);
    if (!replacement.IsOpen()) return NotWritten(file);
    if (!WriteContents(file, replacement, share)) return Cancelled(files.back().m_Name);
    if (!replacement.Complete()) return NotWritten(file);
  }
  return CommitAll(files, replacements);
}
