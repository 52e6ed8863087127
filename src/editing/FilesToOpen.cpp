#include "editing/FilesToOpen.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "codecs/PictureFormats.h"
#include "io/FileKind.h"
#include "io/FileUri.h"
#include "io/ModelFormats.h"
#include "io/RegularFile.h"
#include "projects/ProjectFile.h"

namespace {

namespace fs = std::filesystem;

/// Empty for what is no regular file.
std::string Beginning(const std::string& file) {
  if (!IsRegularFile(file)) return {};
  std::string bytes(kKindBytes, '\0');
  std::ifstream in(file, std::ios::binary);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

bool SaysItIsAModel(std::string_view beginning) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(beginning.data());
  return KindOfBytes({bytes, beginning.size()}) == "a grid file";
}

bool SaysItIsAPicture(std::string_view beginning) {
  const std::string_view bitmap = PictureFormats().front().m_apSuffixes.front();
  return beginning.starts_with("BM") || SuffixOfPicture(beginning) != bitmap;
}

// The name decides only where the contents say nothing, as of a file that is not there.
bool IsModel(const std::string& file) {
  const std::string beginning = Beginning(file);
  if (SaysItIsAPicture(beginning)) return false;
  if (IsProjectFile(file) || SaysItIsAModel(beginning)) return true;
  const fs::path suffix = fs::path(file).extension();
  return suffix == ModelFormats().front().m_pSuffix || suffix == kProjectSuffix;
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
