#include "ui/dialogs/Questions.h"

#include <FL/fl_ask.H>

std::string LabelText(std::string_view text) {
  std::string label;
  for (const char c : text) label.append(c == '@' ? 2 : 1, c);
  return label;
}

bool AskYesNo(const char* question) {
  return fl_choice("%s", fl_no, fl_yes, nullptr, LabelText(question).c_str()) == 1;
}
