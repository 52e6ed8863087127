// What the main window does about files: its choosers, what was open last, and what is dropped on it.

#include <string>
#include <utility>

#include <FL/Fl.H>

#include "editing/FilesToOpen.h"
#include "editing/RecentTexts.h"
#include "io/RegularFile.h"
#include "ui/window/CImageViewUI.h"

std::optional<std::string> CImageViewUI::ChooseFile(const CFileQuestion& question) {
  EndDrags();
  CLastFolders& folders = m_Commands.Files().Folders();
  CFileQuestion asked = question;
  if (asked.m_Start.empty()) asked.m_Start = folders.Of(question.m_Kind);
  std::optional<std::string> file = m_Dialogs.ChooseFile(asked);
  if (file.has_value()) folders.Note(question.m_Kind, *file);
  return file;
}

void CImageViewUI::TellSaved(const std::string& file) { Tell(FormatHelp(HelpText::kSaved, {file})); }

void CImageViewUI::TellCancelled(const std::string& file) { Tell(FormatHelp(HelpText::kCancelled, {file})); }

void CImageViewUI::TellNoReference(const std::string& file) {
  Tell(FormatHelp(HelpText::kSavedWithoutReference, {file}));
}

void CImageViewUI::OpenFiles(const CWorkFiles& files) {
  if (!files.m_Model.empty()) m_WaitingFiles.m_Model = files.m_Model;
  if (!files.m_Picture.empty()) m_WaitingFiles.m_Picture = files.m_Picture;
}

void CImageViewUI::OpenWaitingFiles() {
  if (Fl::pushed() != nullptr || Fl::modal() != nullptr || Fl::grab() != nullptr) return;
  if (m_WaitingFiles != CWorkFiles()) m_Commands.Open(std::exchange(m_WaitingFiles, {}));
}

void CImageViewUI::RefreshRecent() {
  m_aRecent = m_Commands.Files().Recent().List();
  Menu().SetRecent(RecentTexts(m_aRecent));
}

// A picture that has gone does not keep its model from being opened.
void CImageViewUI::OpenRecent(std::size_t place) {
  if (place >= m_aRecent.size()) return;
  CWorkFiles files = m_aRecent[place];
  if (!IsRegularFile(files.m_Picture)) files.m_Picture.clear();
  OpenFiles(files);
}

void CImageViewUI::OpenDropped(std::string_view text) {
  const CWorkFiles files = FilesToOpen(PathsIn(text));
  if (files == CWorkFiles()) return Tell(FormatHelp(HelpText::kNoFileDropped));
  OpenFiles(files);
}

// What is dropped belongs to the window, wherever in it, and not to the field that lies there.
int CImageViewUI::handle(int event) {
  switch (event) {
    case FL_DND_ENTER:
    case FL_DND_DRAG:
      Fl::belowmouse(this);
      return 1;
    case FL_DND_LEAVE:
    case FL_DND_RELEASE:
      return 1;
    case FL_PASTE:
      OpenDropped({Fl::event_text(), static_cast<std::size_t>(Fl::event_length())});
      return 1;
    default:
      return Fl_Window::handle(event);
  }
}
