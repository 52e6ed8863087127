#pragma once

#include <optional>
#include <string>

#include "editing/UserDialogs.h"

/// The toolkit's own dialogs.
class CToolkitDialogs : public UserDialogs {
 public:
  std::optional<std::string> ChooseFile(const char* title, const char* pattern) override;
  bool Ask(const char* question) override;
  std::string AskText(const char* question) override;
  void Notice(const char* text) override;
};
