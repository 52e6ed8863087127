#pragma once

#include <optional>
#include <string>

/// A file that the user is to name.
struct CFileQuestion {
  const char* m_pTitle = "";
  const char* m_pPattern = nullptr;  ///< of the files that are listed; null for all
  std::string m_Kind;                ///< the word by which the folder of the answer is remembered (CLastFolders)
  bool m_bSaves = false;             ///< a name that was chosen before is not offered again
  std::string m_Start = {};          ///< an existing folder to begin in, or a file that is proposed; empty for neither
  /// A second pattern to choose from, with a name: "Pictures (*.{bmp,jpg})"; empty for none. The one used last for the
  /// kind is in force again.
  std::string m_OtherPattern = {};
};

/// Questions to the user that have to be answered before anything else goes on.
class UserDialogs {
 public:
  virtual ~UserDialogs() = default;

  /// The file named by the user, new or existing; nothing if none is.
  virtual std::optional<std::string> ChooseFile(const CFileQuestion& question) = 0;
  /// True only for yes.
  virtual bool Ask(const char* question) = 0;
  /// One line of text; empty where none is given.
  virtual std::string AskText(const char* question) = 0;
  virtual void Notice(const char* text) = 0;
};
