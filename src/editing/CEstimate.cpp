#include "editing/CEstimate.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "codecs/PngBytes.h"
#include "editing/CommandWords.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kImage = "{image}";
constexpr const char* kDepth = "{depth}";

fs::path ImageIn(const fs::path& folder) { return folder / "image.png"; }
fs::path DepthIn(const fs::path& folder) { return folder / "depth.png"; }

constexpr const char* kFolder = "relievo-estimate-";

// Of the process that has made a folder of that name; nothing where it is none of these.
std::optional<pid_t> OwnerIn(std::string_view name) {
  if (!name.starts_with(kFolder)) return {};
  name.remove_prefix(std::strlen(kFolder));
  pid_t owner = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), owner);
  const bool whole = error == std::errc() && owner > 0 && end != name.data() + name.size() && *end == '-';
  return whole ? std::optional(owner) : std::nullopt;
}

bool IsLeftOver(const fs::path& folder) {
  const std::optional<pid_t> owner = OwnerIn(folder.filename().native());
  struct stat status {};
  if (!owner.has_value() || lstat(folder.c_str(), &status) != 0) return false;
  return S_ISDIR(status.st_mode) && status.st_uid == geteuid() && kill(*owner, 0) != 0 && errno == ESRCH;
}

// Of processes that were killed before they could remove theirs.
void RemoveLeftOver(const fs::path& temporary) {
  std::error_code error;
  std::vector<fs::path> folders;
  for (fs::directory_iterator entry(temporary, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (IsLeftOver(entry->path())) folders.push_back(entry->path());
  }
  for (const fs::path& folder : folders) fs::remove_all(folder, error);
}

// Empty where none can be made. The name says whose it is.
fs::path MakeFolder() {
  std::error_code error;
  const fs::path temporary = fs::temp_directory_path(error);
  if (error) return {};
  RemoveLeftOver(temporary);
  std::string name = temporary / (kFolder + std::to_string(getpid()) + "-XXXXXX");
  return mkdtemp(name.data()) == nullptr ? fs::path() : fs::path(name);
}

// What is wrong with a command line, or nothing.
std::string TroubleWith(const std::string& line, const std::optional<std::vector<std::string>>& words) {
  if (!words.has_value()) return "The command line of the estimator has a quote that stays open.";
  if (words->empty())
    return "The estimator needs a command line, in which {image} is the photograph and {depth} the map that it writes.";
  if (line.find(kDepth) == std::string::npos)
    return "The command line of the estimator has no {depth}, the file that it is to write.";
  return {};
}

}  // namespace

CEstimate* CEstimate::s_pRunning = nullptr;

std::string CEstimate::WriteInput(const CPicture& photograph) {
  m_Folder = MakeFolder();
  if (m_Folder.empty()) return "No temporary folder can be made for the estimator.";
  const std::string bytes = PngOf(photograph);
  std::ofstream file(ImageIn(m_Folder), std::ios::binary);
  file << bytes;
  file.close();
  return bytes.empty() || !file ? "The photograph cannot be written for the estimator." : "";
}

std::string CEstimate::Begin(const std::string& commandLine, const CPicture& photograph) {
  std::optional<std::vector<std::string>> words = CommandWords(commandLine);
  std::string trouble = TroubleWith(commandLine, words);
  if (trouble.empty()) trouble = WriteInput(photograph);
  if (trouble.empty()) {
    const std::map<std::string, std::string> files{{kImage, ImageIn(m_Folder)}, {kDepth, DepthIn(m_Folder)}};
    for (std::string& word : *words) word = WithFilledPlaces(word, files);
    if (!m_Process.Start(*words)) trouble = "The estimator cannot be started.";
  }
  if (trouble.empty()) {
    s_pRunning = this;
  } else {
    RemoveFolder();
  }
  return trouble;
}

std::optional<CEstimate::CResult> CEstimate::Attend() {
  const std::optional<int> status = m_Process.Attend();
  if (!status.has_value()) return {};
  CResult result = ResultOf(*status);
  Cancel();
  return result;
}

CEstimate::CResult CEstimate::ResultOf(int status) const {
  CResult result;
  const fs::path file = DepthIn(m_Folder);
  std::error_code ignored;
  if (status != 0) {
    result.m_Trouble = "The estimator has failed with status " + std::to_string(status);
    result.m_Trouble += LastLine().empty() ? "." : ": " + LastLine();
  } else if (!fs::exists(file, ignored)) {
    result.m_Trouble = "The estimator has written no map to {depth}.";
  } else if (result.m_Map = ReadDepthMap(file); !result.m_Map) {
    result.m_Trouble = "What the estimator has written is not a depth map that can be read: " + result.m_Map.m_Reason;
    result.m_Trouble += '.';
  }
  return result;
}

void CEstimate::Cancel() {
  m_Process.Kill();
  RemoveFolder();
  if (s_pRunning == this) s_pRunning = nullptr;
}

void CEstimate::CancelAll() {
  if (s_pRunning != nullptr) s_pRunning->Cancel();
}

void CEstimate::RemoveFolder() {
  std::error_code ignored;
  if (!m_Folder.empty()) fs::remove_all(m_Folder, ignored);
  m_Folder.clear();
}
