#include "editing/CFilesAtHand.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "io/CKeepOldFile.h"
#include "projects/ProjectFile.h"

namespace {

namespace fs = std::filesystem;

// One name for all that lead to the same file.
fs::path Target(const std::string& file) {
  std::error_code error;
  const fs::path target = fs::weakly_canonical(file, error);
  return error ? fs::path(file) : target;
}

// What a name leads to at the moment; zeros for nothing. A new file in the place of another differs from it.
using CIdentity = std::pair<dev_t, ino_t>;

CIdentity IdentityOf(const std::string& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 ? CIdentity{status.st_dev, status.st_ino} : CIdentity{};
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

bool CFilesAtHand::Write(const std::vector<std::string>& files, const std::function<bool()>& write) {
  std::vector<std::string> strange;
  std::vector<CIdentity> before;
  for (const std::string& file : files) {
    if (m_Known.contains(Target(file))) continue;
    strange.push_back(file);
    before.push_back(IdentityOf(file));
  }
  const CKeepOldFile keep(strange);
  if (!write()) return false;
  for (std::size_t k = 0; k < strange.size(); ++k) {
    if (IdentityOf(strange[k]) != before[k]) m_Known.insert(Target(strange[k]));
  }
  return true;
}
