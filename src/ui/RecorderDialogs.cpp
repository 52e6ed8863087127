#include "ui/RecorderDialogs.h"

#include <FL/fl_ask.H>

bool RecorderDialogs::AskYesNo(const char* question) { return fl_choice("%s", fl_no, fl_yes, nullptr, question) == 1; }

std::string RecorderDialogs::AskText(const char* question) {
  const char* const text = fl_input("%s", "", question);
  return text == nullptr ? "" : text;
}

void RecorderDialogs::Notice(const char* text) { fl_message("%s", text); }
