#include "ui/window/CToolkitDialogs.h"

#include <FL/fl_ask.H>

#include "ui/dialogs/CFileChooser.h"
#include "ui/dialogs/Questions.h"

CToolkitDialogs::CToolkitDialogs() = default;
CToolkitDialogs::~CToolkitDialogs() = default;

std::optional<std::string> CToolkitDialogs::ChooseFile(const CFileQuestion& question) {
  if (m_pChooser == nullptr) m_pChooser = std::make_unique<CFileChooser>();
  return m_pChooser->Choose(question);
}

bool CToolkitDialogs::Ask(const char* question) { return AskYesNo(question); }

std::string CToolkitDialogs::AskText(const char* question) {
  const char* const text = fl_input("%s", "", LabelText(question).c_str());
  return text == nullptr ? "" : text;
}

void CToolkitDialogs::Notice(const char* text) { fl_message("%s", LabelText(text).c_str()); }
