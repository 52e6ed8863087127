#include "editing/FilesToOpen.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "formats/ModelFormats.h"
#include "formats/ProjectFile.h"
#include "io/FileKind.h"
#include "io/FileUri.h"
#include "io/RegularFile.h"

namespace {

namespace fs = std::filesystem;

bool SaysItIsAModel(const std::string& file) {
  if (!IsRegularFile(file)) return false;
  std::array<char, kKindBytes> beginning{};
  std::ifstream in(file, std::ios::binary);
  in.read(beginning.data(), beginning.size());
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(beginning.data());
  return KindOfBytes({bytes, static_cast<std::size_t>(in.gcount())}) == "a grid file";
}

bool IsModel(const std::string& file) {
  const fs::path suffix = fs::path(file).extension();
  return suffix == ModelFormats().front().m_pSuffix || suffix == kProjectSuffix || IsProjectFile(file) ||
         SaysItIsAModel(file);
}

std::string Absolute(const std::string& name) {
  std::error_code error;
  const fs::path path = fs::absolute(name, error);
  return error ? name : path.lexically_normal().native();
}

}  // namespace

std::vector<std::string> PathsIn(std::string_view dropped) {
  std::vector<std::string> paths;
  while (!dropped.empty()) {
    std::string_view line = dropped.substr(0, dropped.find('\n'));
    dropped.remove_prefix(std::min(line.size() + 1, dropped.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with('/')) paths.emplace_back(line);
    if (std::optional<std::string> path = PathOf(line); path.has_value()) paths.push_back(std::move(*path));
  }
  return paths;
}

CWorkFiles FilesToOpen(std::span<const std::string> names) {
  CWorkFiles files;
  for (const std::string& name : names) {
    if (name.empty()) continue;
    (IsModel(name) ? files.m_Model : files.m_Picture) = Absolute(name);
  }
  return files;
}
