#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

/// One of the settings.
using CSettingValue = std::variant<bool, double, std::string>;

/// What the user has chosen for every run to come, by name, kept in a small text file in JSON that people may edit.
///
/// What else stands in the file stays there. The file is read when the first setting is asked for or made, and again
/// before each writing, so that two runs leave each other's settings alone. Without one each setting is what it was
/// made in this run.
class CSettings {
 public:
  /// `tell` gets a line for the user where there is trouble with the file.
  explicit CSettings(std::function<void(const std::string& text)> tell);
  ~CSettings();
  CSettings(const CSettings&) = delete;
  CSettings& operator=(const CSettings&) = delete;

  /// An empty path keeps nothing beyond the run. What was known before is forgotten.
  void KeepIn(const std::filesystem::path& file);

  /// Nothing where there is none of that name, or one of another kind.
  std::optional<bool> Switch(const std::string& name);
  std::optional<double> Number(const std::string& name);
  std::optional<std::string> Text(const std::string& name);

  /// Makes settings and writes the file, if they change it; folders that are missing are made, for the user alone. A
  /// file that could not be understood is kept as NAME~. Numbers that are not finite are left out.
  void Set(const std::map<std::string, CSettingValue>& values);

 private:
  struct CContents;

  CContents& Contents();
  template <class Value>
  std::optional<Value> Find(const std::string& name);
  std::unique_ptr<CContents> Read();
  void Write();
  void TellTrouble(const std::string& trouble);

  std::function<void(const std::string& text)> m_Tell;
  std::filesystem::path m_File;
  std::unique_ptr<CContents> m_pContents;  ///< null until they are needed
  bool m_bFileInTrouble = false;           ///< it could not be read or understood when that was tried last
  std::string m_Told;                      ///< the trouble of which the user knows
};
