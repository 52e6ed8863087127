#include "io/SaveTogether.h"

#include <list>

#include "io/CFileReplacement.h"

namespace {

CSaveOutcome NotWritten(const CNewFile& file) {
  return {"The file " + file.m_Name + " could not be written. If it existed before, it is unchanged."};
}

}  // namespace

CSaveOutcome SaveTogether(std::span<const CNewFile> files) {
  std::list<CFileReplacement> replacements;
  for (const CNewFile& file : files) {
    CFileReplacement& replacement = replacements.emplace_back(file.m_Name);
    if (!replacement.IsOpen()) return NotWritten(file);
    replacement.Write({reinterpret_cast<const unsigned char*>(file.m_Bytes.data()), file.m_Bytes.size()});
    if (!replacement.Complete()) return NotWritten(file);
  }
  auto file = files.begin();
  for (CFileReplacement& replacement : replacements) {
    if (!replacement.Commit()) return NotWritten(*file);
    ++file;
  }
  return {};
}
