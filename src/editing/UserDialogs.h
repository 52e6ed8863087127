#pragma once

#include <optional>
#include <string>

/// Questions to the user that have to be answered before anything else goes on.
class UserDialogs {
 public:
  virtual ~UserDialogs() = default;

  /// The file named by the user, new or existing; nothing if none is. `pattern` may be null.
  virtual std::optional<std::string> ChooseFile(const char* title, const char* pattern) = 0;
  /// True only for yes.
  virtual bool Ask(const char* question) = 0;
  /// One line of text; empty where none is given.
  virtual std::string AskText(const char* question) = 0;
  virtual void Notice(const char* text) = 0;
};
