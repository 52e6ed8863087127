#include "editing/CRecentFiles.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "io/FileUri.h"

namespace {

// One entry is a line: the URIs of model and picture with a tab between them, nothing for the one that is missing.
constexpr char kBetweenPaths = '\t';

std::string FieldOf(const std::string& path) { return path.empty() ? path : UriOf(path); }

std::optional<std::string> PathOfField(const std::string& field) {
  return field.empty() ? std::optional<std::string>(field) : PathOf(field);
}

std::optional<CWorkFiles> WorkOf(const std::string& line) {
  const std::size_t between = line.find(kBetweenPaths);
  if (between == std::string::npos) return {};
  const std::optional<std::string> model = PathOfField(line.substr(0, between));
  const std::optional<std::string> picture = PathOfField(line.substr(between + 1));
  if (!model.has_value() || !picture.has_value() || (model->empty() && picture->empty())) return {};
  return CWorkFiles{*model, *picture};
}

bool IsReplacedBy(const CWorkFiles& old, const CWorkFiles& work) {
  if (!work.m_Model.empty() && old.m_Model == work.m_Model) return true;
  return old.m_Model.empty() && old.m_Picture == work.m_Picture;
}

}  // namespace

std::vector<CWorkFiles> CRecentFiles::List() {
  if (m_bInMemory) return m_aInMemory;
  std::vector<CWorkFiles> list;
  for (const std::string& line : m_Lines.Read()) {
    if (list.size() == kMost) break;
    if (std::optional<CWorkFiles> work = WorkOf(line); work.has_value()) {
      list.push_back(std::move(*work));
    } else {
      m_Lines.TellDamaged();
    }
  }
  return list;
}

void CRecentFiles::Note(const CWorkFiles& work) {
  std::vector<CWorkFiles> list = List();
  std::erase_if(list, [&](const CWorkFiles& old) { return IsReplacedBy(old, work); });
  list.insert(list.begin(), work);
  list.resize(std::min(list.size(), kMost));
  Write(list);
}

void CRecentFiles::Clear() { Write({}); }

void CRecentFiles::Write(const std::vector<CWorkFiles>& list) {
  std::vector<std::string> lines;
  lines.reserve(list.size());
  for (const CWorkFiles& work : list) lines.push_back(FieldOf(work.m_Model) + kBetweenPaths + FieldOf(work.m_Picture));
  m_bInMemory = !m_Lines.Write(lines);
  m_aInMemory = list;
}
