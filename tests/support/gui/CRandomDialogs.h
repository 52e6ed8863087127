#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "ui/window/CToolkitDialogs.h"

class CDeedLog;
class CMonkey;

/// Answers the questions of the program at random: with good files, bad ones and none. Some are shown in the toolkit's
/// own dialogs, for the monkey to answer.
class CRandomDialogs : public UserDialogs {
 public:
  /// Puts the files to be loaded into the directory. The monkey must outlive the object.
  CRandomDialogs(CMonkey& monkey, std::filesystem::path directory);

  /// Has the log watch the files that are written.
  void ReportTo(CDeedLog& log) const;
  /// Whether the answers are always the same: yes, and the photograph or the grid that the run began with.
  void SetObedient(bool obedient) { m_bObedient = obedient; }
  /// The file of that grid.
  std::string FirstGrid() const { return InDirectory("first.grid"); }

  std::optional<std::string> ChooseFile(const CFileQuestion& question) override;
  bool Ask(const char* question) override;
  std::string AskText(const char* question) override;
  void Notice(const char* text) override;

 private:
  std::string InDirectory(const char* name) const { return (m_Directory / name).string(); }
  bool ShowsReally();

  CMonkey& m_Monkey;
  std::filesystem::path m_Directory;
  CToolkitDialogs m_Toolkit;
  bool m_bObedient = false;
};
