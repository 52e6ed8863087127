#include "editing/RecentTexts.h"

#include <algorithm>
#include <filesystem>

#include "io/RegularFile.h"

namespace {

std::string Joined(const std::string& model, const std::string& picture) {
  return model + (model.empty() || picture.empty() ? "" : " + ") + picture;
}

std::string NameOf(const std::string& file, bool whole) {
  return whole ? file : std::filesystem::path(file).filename().native();
}

CRecentText TextOf(const CWorkFiles& work, bool whole) {
  const bool model = IsRegularFile(work.m_Model);
  const bool picture = IsRegularFile(work.m_Picture);
  std::string text = Joined(NameOf(work.m_Model, whole || !model), NameOf(work.m_Picture, whole || !picture));
  // Nothing that would begin another line.
  std::ranges::replace_if(
      text, [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, '?');
  if (model && !picture && !work.m_Picture.empty()) text += " (missing)";
  return {std::move(text), work.m_Model.empty() ? picture : model};
}

}  // namespace

std::vector<CRecentText> RecentTexts(std::span<const CWorkFiles> recent) {
  std::vector<CRecentText> texts;
  texts.reserve(recent.size());
  for (const CWorkFiles& work : recent) texts.push_back(TextOf(work, false));
  std::vector<CRecentText> told = texts;
  for (std::size_t k = 0; k < texts.size(); ++k) {
    if (std::ranges::count(texts, texts[k].m_Text, &CRecentText::m_Text) > 1) told[k] = TextOf(recent[k], true);
  }
  return told;
}
