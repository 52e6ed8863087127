#include "batch/OutputConflict.h"

#include <cstddef>
#include <filesystem>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;

struct CNamedFile {
  std::string m_Option;
  std::string m_Path;
};

// Where writing to a path would end, a link that leads to nothing yet included.
fs::path Target(const std::string& path) {
  std::error_code failed;
  fs::path target = fs::absolute(path, failed);
  for (int links = 0; links < kMostLinks && fs::is_symlink(target, failed); ++links)
    target = target.parent_path() / fs::read_symlink(target, failed);
  const fs::path canonical = fs::weakly_canonical(target, failed);
  return failed ? target.lexically_normal() : canonical;
}

bool IsOneFile(const std::string& a, const std::string& b) {
  std::error_code missing;
  return Target(a) == Target(b) || fs::equivalent(a, b, missing);
}

std::vector<CNamedFile> ExportsOf(const CBatchOptions& options) {
  std::vector<CNamedFile> exports;
  for (const std::string& file : options.m_asExports) {
    exports.push_back({"--export", file});
    const CExportFormat* format = ExportFormatOf(file);
    if (format->m_pCompanions == nullptr) continue;
    for (const std::string& companion : format->m_pCompanions(file, options.m_Exporting))
      exports.push_back({"a file beside --export " + file, companion});
  }
  return exports;
}

std::vector<CNamedFile> OutputsOf(const CBatchOptions& options) {
  std::vector<CNamedFile> outputs;
  const auto add = [&outputs](const std::string& option, const std::string& path) {
    if (!path.empty()) outputs.push_back({option, path});
  };
  for (std::size_t k = 0; k < ModelFormats().size(); ++k) {
    const std::string option = ModelFormats()[k].m_pOption;
    add(option, options.m_asOutputs[k]);
    add("the picture of " + option, options.PictureOf(k));
  }
  const std::vector<CNamedFile> exports = ExportsOf(options);
  outputs.insert(outputs.end(), exports.begin(), exports.end());
  return outputs;
}

std::string Conflict(const CNamedFile& a, const CNamedFile& b) {
  return a.m_Option + " and " + b.m_Option + " are one file: " + a.m_Path;
}

}  // namespace

std::string OutputConflict(const CBatchOptions& options) {
  const std::vector<CNamedFile> outputs = OutputsOf(options);
  const std::string own = ModelFormats().front().m_pOption;
  for (auto a = outputs.begin(); a != outputs.end(); ++a) {
    for (auto b = outputs.begin(); b != a; ++b) {
      if (IsOneFile(a->m_Path, b->m_Path)) return Conflict(*b, *a);
    }
    if (!options.m_Image.empty() && IsOneFile(a->m_Path, options.m_Image))
      return Conflict(*a, {"--image", options.m_Image});
    if (!options.m_Reference.empty() && IsOneFile(a->m_Path, options.m_Reference))
      return Conflict(*a, {"--reference-depth", options.m_Reference});
    if (a->m_Option != own && IsOneFile(a->m_Path, options.m_Model)) return Conflict(*a, {"MODEL", options.m_Model});
  }
  return {};
}

std::string PhotographConflict(const CBatchOptions& options, const std::string& photograph) {
  for (const CNamedFile& file : ExportsOf(options)) {
    std::error_code missing;
    if (fs::equivalent(file.m_Path, photograph, missing))
      return Conflict(file, {"the photograph of " + options.m_Model, photograph});
  }
  return {};
}
