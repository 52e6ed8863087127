#include "editing/CFilesAtHand.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <vector>

#include "formats/ProjectFile.h"
#include "io/CKeepOldFile.h"

namespace {

namespace fs = std::filesystem;

// One name for all that lead to the same file.
fs::path Target(const std::string& file) {
  std::error_code error;
  const fs::path target = fs::weakly_canonical(file, error);
  return error ? fs::path(file) : target;
}

}  // namespace

void CFilesAtHand::KeepIn(const fs::path& folder) {
  m_Recent = CRecentFiles(folder.empty() ? folder : folder / "recent-files");
  m_Folders = CLastFolders(folder.empty() ? folder : folder / "last-folders");
}

void CFilesAtHand::SetModel(const CModelName& name) {
  m_Model = name;
  m_bModelFree = false;
}

// A picture on show that came with another model is not this one's: it stays with the one that it is known with.
void CFilesAtHand::ModelOpened(const CModelName& name) {
  SetModel(name);
  m_Known.insert(Target(name.m_File));
  if (m_bPictureFree || name.m_bProject) return NotePair();
  m_bModelFree = true;
  const std::vector<CWorkFiles> list = m_Recent.List();
  const auto known = std::ranges::find(list, name.m_File, &CWorkFiles::m_Model);
  m_Recent.Note({name.m_File, known == list.end() ? "" : known->m_Picture});
}

void CFilesAtHand::ModelSaved(const CModelName& name) {
  SetModel(name);
  NotePair();
}

void CFilesAtHand::PictureOpened(const std::string& file) {
  m_Picture = file;
  if (m_bModelFree) return NotePair();
  m_bPictureFree = true;
  m_Recent.Note({"", file});
}

void CFilesAtHand::PictureCame(const std::string& file) {
  m_Picture = file;
  m_bPictureFree = false;
}

// A project holds its picture.
void CFilesAtHand::NotePair() {
  m_bModelFree = false;
  m_bPictureFree = false;
  m_Recent.Note({m_Model.m_File, m_Model.m_bProject ? "" : m_Picture});
}

std::string CFilesAtHand::Proposal(const std::string& suffix) const {
  fs::path file = m_Model.m_File.empty() ? m_Picture : m_Model.m_File;
  if (file.empty()) return {};
  // What is typed is what is written, so a model may have any suffix, but not that of the other kind.
  const bool another = m_Model.m_File.empty() || (file.extension() == kProjectSuffix) != (suffix == kProjectSuffix);
  return another ? file.replace_extension(suffix) : file;
}

bool CFilesAtHand::Write(const std::string& file, const std::function<bool()>& write) {
  std::optional<CKeepOldFile> keep;
  if (!m_Known.contains(Target(file))) keep.emplace(file);
  const bool written = write();
  if (written) m_Known.insert(Target(file));
  return written;
}
