#include "io/SaveTogether.h"

#include <algorithm>
#include <cstddef>
#include <list>
#include <string_view>

#include "io/CFileReplacement.h"

namespace {

CSaveOutcome NotWritten(const CNewFile& file) {
  return {"The file " + file.m_Name + " could not be written. If it existed before, it is unchanged."};
}

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

// False where it is not wanted any more.
bool WriteInBlocks(std::string_view bytes, CFileReplacement& replacement, CWrittenShare& share) {
  constexpr std::size_t kBlock = std::size_t{1} << 22;
  while (!bytes.empty()) {
    if (!share.Goes()) return false;
    const std::string_view block = bytes.substr(0, kBlock);
    replacement.Write({reinterpret_cast<const unsigned char*>(block.data()), block.size()});
    share.Add(block.size());
    bytes.remove_prefix(block.size());
  }
  return share.Goes();
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
    if (!WriteInBlocks(file.m_Bytes, replacement, share)) return Cancelled(files.back().m_Name);
    if (!replacement.Complete()) return NotWritten(file);
  }
  auto file = files.begin();
  for (CFileReplacement& replacement : replacements) {
    if (!replacement.Commit()) return NotWritten(*file);
    ++file;
  }
  return {};
}
