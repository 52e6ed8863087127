#include "ui/window/CToolkitDialogs.h"

#include <FL/Fl_File_Chooser.H>
#include <FL/fl_ask.H>

#include "ui/dialogs/Questions.h"

std::optional<std::string> CToolkitDialogs::ChooseFile(const char* title, const char* pattern) {
  const char* file = fl_file_chooser(title, pattern, nullptr);
  if (file == nullptr || *file == '\0') return std::nullopt;
  return file;
}

bool CToolkitDialogs::Ask(const char* question) { return AskYesNo(question); }

std::string CToolkitDialogs::AskText(const char* question) {
  const char* const text = fl_input("%s", "", LabelText(question).c_str());
  return text == nullptr ? "" : text;
}

void CToolkitDialogs::Notice(const char* text) { fl_message("%s", LabelText(text).c_str()); }
