#pragma once

#include <string>

/// The questions and notices of the animation recorder, which wait for their answer. By default the toolkit's own.
class RecorderDialogs {
 public:
  virtual ~RecorderDialogs() = default;

  /// True only for yes.
  virtual bool AskYesNo(const char* question);
  /// One line of text; empty where none is given.
  virtual std::string AskText(const char* question);
  virtual void Notice(const char* text);
};
