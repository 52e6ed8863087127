#include "editing/CSettings.h"

#include <cmath>
#include <cstddef>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "codecs/FileBytes.h"
#include "io/CKeepOldFile.h"
#include "io/CSafeFile.h"

namespace {

namespace fs = std::filesystem;
using CJson = nlohmann::ordered_json;

// Reading and writing recurse once per level of what is nested.
constexpr int kMostLevels = 64;
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

// Discarded for what is not to be understood.
CJson Parse(const std::string& text) {
  bool shallow = true;
  const auto look = [&](int depth, CJson::parse_event_t /*event*/, CJson& /*value*/) {
    shallow = shallow && depth <= kMostLevels;
    return shallow;
  };
  CJson json = CJson::parse(text, look, false);
  return shallow && json.is_object() ? json : CJson(CJson::value_t::discarded);
}

CJson JsonOf(const CSettingValue& value) {
  return std::visit([](const auto& plain) { return CJson(plain); }, value);
}

bool CanBeWritten(const CSettingValue& value) {
  const double* number = std::get_if<double>(&value);
  return number == nullptr || std::isfinite(*number);
}

template <class Value>
bool IsOf(const CJson& json) {
  if constexpr (std::is_same_v<Value, bool>) return json.is_boolean();
  if constexpr (std::is_same_v<Value, double>) return json.is_number();
  return json.is_string();
}

}  // namespace

struct CSettings::CContents {
  CJson m_Json = CJson::object();
};

CSettings::CSettings(std::function<void(const std::string& text)> tell) : m_Tell(std::move(tell)) {}

CSettings::~CSettings() = default;

void CSettings::KeepIn(const fs::path& file) {
  m_File = file;
  m_pContents.reset();
  m_bFileInTrouble = false;
  m_Told.clear();
}

CSettings::CContents& CSettings::Contents() {
  if (m_pContents == nullptr) m_pContents = Read();
  if (m_pContents == nullptr) m_pContents = std::make_unique<CContents>();
  return *m_pContents;
}

template <class Value>
std::optional<Value> CSettings::Find(const std::string& name) {
  const CJson& all = Contents().m_Json;
  const auto found = all.find(name);
  if (found == all.end() || !IsOf<Value>(*found)) return {};
  return found->template get<Value>();
}

std::optional<bool> CSettings::Switch(const std::string& name) { return Find<bool>(name); }

std::optional<double> CSettings::Number(const std::string& name) { return Find<double>(name); }

std::optional<std::string> CSettings::Text(const std::string& name) { return Find<std::string>(name); }

// Null where the file gives no settings; that there is none is no trouble.
std::unique_ptr<CSettings::CContents> CSettings::Read() {
  m_bFileInTrouble = false;
  std::error_code ignored;
  if (m_File.empty() || !fs::exists(m_File, ignored)) return nullptr;
  const CFileBytes read = ReadFileBytes(m_File, kMostBytes + 1);
  auto contents = std::make_unique<CContents>();
  std::string trouble;
  if (read.m_pBytes == nullptr) {
    trouble = " cannot be read and are left out: " + read.m_Reason;
  } else if (read.m_pBytes->size() > kMostBytes) {
    trouble = " are too long and are left out";
  } else if (contents->m_Json = Parse(*read.m_pBytes); contents->m_Json.is_discarded()) {
    trouble = " are damaged and are left out";
  }
  if (trouble.empty()) return contents;
  m_bFileInTrouble = true;
  TellTrouble(trouble);
  return nullptr;
}

void CSettings::Set(const std::map<std::string, CSettingValue>& values) {
  Contents();
  if (std::unique_ptr<CContents> fresh = Read(); fresh != nullptr) m_pContents = std::move(fresh);
  const CJson before = m_pContents->m_Json;
  for (const auto& [name, value] : values) {
    if (CanBeWritten(value)) m_pContents->m_Json[name] = JsonOf(value);
  }
  if (m_pContents->m_Json != before) Write();
}

void CSettings::Write() {
  if (m_File.empty()) return;
  std::error_code ignored;
  const fs::path folder = m_File.parent_path();
  fs::create_directories(folder.parent_path(), ignored);
  mkdir(folder.c_str(), S_IRWXU);
  std::optional<CKeepOldFile> keep;
  if (m_bFileInTrouble) keep.emplace(m_File);
  CSafeFile file(m_File);
  bool written = false;
  if (file.IsOpen()) {
    file.Text() << m_pContents->m_Json.dump(2, ' ', false, CJson::error_handler_t::replace) << '\n';
    written = file.Commit();
  }
  if (!written) TellTrouble(" cannot be written");
}

void CSettings::TellTrouble(const std::string& trouble) {
  if (m_Told == trouble) return;
  m_Told = trouble;
  m_Tell("The settings in " + m_File.native() + trouble + ".");
}
