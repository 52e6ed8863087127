#pragma once

#include <memory>
#include <optional>
#include <string>

#include "editing/UserDialogs.h"

class CFileChooser;

/// The toolkit's own dialogs.
class CToolkitDialogs : public UserDialogs {
 public:
  CToolkitDialogs();
  ~CToolkitDialogs() override;
  CToolkitDialogs(const CToolkitDialogs&) = delete;
  CToolkitDialogs& operator=(const CToolkitDialogs&) = delete;

  std::optional<std::string> ChooseFile(const CFileQuestion& question) override;
  bool Ask(const char* question) override;
  std::string AskText(const char* question) override;
  void Notice(const char* text) override;

 private:
  std::unique_ptr<CFileChooser> m_pChooser;  ///< once it has been asked for
};
