#include "editing/CRecentFiles.h"

#include <algorithm>
#include <fstream>

#include "io/CSafeFile.h"
#include "io/FileUri.h"
#include "io/RegularFile.h"

namespace {

// One entry is a line: the URIs of model and picture with a tab between them, nothing for the one that is missing.
constexpr char kBetween = '\t';

std::string FieldOf(const std::string& path) { return path.empty() ? path : UriOf(path); }

std::optional<std::string> PathOfField(const std::string& field) {
  return field.empty() ? std::optional<std::string>(field) : PathOf(field);
}

std::optional<CRecentWork> WorkOf(const std::string& line) {
  const std::size_t between = line.find(kBetween);
  if (between == std::string::npos) return {};
  const std::optional<std::string> model = PathOfField(line.substr(0, between));
  const std::optional<std::string> picture = PathOfField(line.substr(between + 1));
  if (!model.has_value() || !picture.has_value() || (model->empty() && picture->empty())) return {};
  return CRecentWork{*model, *picture};
}

bool IsReplacedBy(const CRecentWork& old, const CRecentWork& work) {
  if (!work.m_Model.empty() && old.m_Model == work.m_Model) return true;
  return old.m_Model.empty() && old.m_Picture == work.m_Picture;
}

}  // namespace

std::vector<CRecentWork> CRecentFiles::List() const {
  std::vector<CRecentWork> list;
  if (!IsRegularFile(m_File)) return list;
  std::ifstream in(m_File);
  for (std::string line; list.size() < kMost && std::getline(in, line);) {
    if (std::optional<CRecentWork> work = WorkOf(line); work.has_value()) list.push_back(std::move(*work));
  }
  return list;
}

bool CRecentFiles::Note(const CRecentWork& work) {
  std::vector<CRecentWork> list = List();
  std::erase_if(list, [&](const CRecentWork& old) { return IsReplacedBy(old, work); });
  list.insert(list.begin(), work);
  list.resize(std::min(list.size(), kMost));
  return Write(list);
}

bool CRecentFiles::Clear() { return Write({}); }

bool CRecentFiles::Write(const std::vector<CRecentWork>& list) {
  if (m_File.empty()) return true;
  CSafeFile file(m_File);
  if (!file.IsOpen()) return false;
  for (const CRecentWork& work : list) {
    file.Text() << FieldOf(work.m_Model) << kBetween << FieldOf(work.m_Picture) << '\n';
  }
  return file.Commit();
}
