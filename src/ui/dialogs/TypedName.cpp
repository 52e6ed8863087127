#include "ui/dialogs/TypedName.h"

#include <algorithm>
#include <array>

#include <FL/filename.H>

std::string_view LastPart(std::string_view name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string_view::npos ? name : name.substr(slash + 1);
}

std::string FolderOf(const std::string& fullName) {
  const std::size_t slash = fullName.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : fullName.substr(0, slash);
}

bool IsRelative(std::string_view typed) { return !typed.empty() && typed.front() != '/' && typed.front() != '~'; }

std::string FullName(const std::string& folder, const std::string& typed) {
  std::array<char, FL_PATH_MAX> expanded{};
  fl_filename_expand(expanded.data(), static_cast<int>(expanded.size()), typed.c_str());
  std::string name = expanded.data();
  if (!name.empty() && name.front() == '/') return name;
  return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

std::string CommonStart(const std::string& part, const std::vector<std::string>& names) {
  std::string common = part;
  bool found = false;
  for (const std::string& name : names) {
    if (!name.starts_with(part)) continue;
    if (!found) common = name;
    found = true;
    const auto [end, other] = std::mismatch(common.begin(), common.end(), name.begin(), name.end());
    common.erase(end, common.end());
  }
  return common;
}
