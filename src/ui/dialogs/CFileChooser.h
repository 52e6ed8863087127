#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <FL/Fl_File_Chooser.H>

#include "editing/UserDialogs.h"

class Fl_Return_Button;

/// The toolkit's file chooser with a field for the name that leaves alone what is typed into it.
///
/// The toolkit's own field rewrites the name after every key: it makes it absolute, completes it, and puts the folder
/// it lists into it; at the first slash that folder is "", by which the toolkit means the list of file systems, and the
/// next keys end up around what it has written. Here the list follows the name and never the other way round until
/// something in it is clicked. Tab completes the name, Return takes it as it stands or opens the folder it names.
class CFileChooser {
 public:
  CFileChooser();

  /// Shows the chooser until it is answered: the file named by the user, new or existing, with its whole path; nothing
  /// if none is. It opens where the question says, or else in the folder it was left in; with the same name if a file
  /// of the same kind and pattern was asked for last, and nothing is to be saved. Of two patterns the first one is in
  /// force at first.
  std::optional<std::string> Choose(const CFileQuestion& question);

  /// The toolkit's own window of the chooser.
  Fl_Window& Window() const { return *m_Chooser.newButton->window(); }

 private:
  void FindWidgets();
  void Prepare(const CFileQuestion& question);
  void SetPatterns(const CFileQuestion& question);
  void Begin(const std::string& start);
  std::string Typed() const;
  std::string Full() const;
  /// To be called before a changed name is used, and whenever the chooser may have changed it itself.
  void NoteName();
  void NameChanged();
  void NameEntered();
  void List(const std::string& folder);
  void ShowMatches(const std::string& part);
  /// Whether Tab has added anything to the name.
  bool Complete();
  std::vector<std::string> ListedNames() const;
  static void cb_Name(Fl_Widget* widget, void* chooser);

  Fl_File_Chooser m_Chooser;
  Fl_File_Input* m_pName = nullptr;
  Fl_File_Browser* m_pList = nullptr;
  Fl_Return_Button* m_pOk = nullptr;
  std::string m_Asked;                    ///< kind and pattern of the last question
  std::map<std::string, int> m_Patterns;  ///< that were used last, by kind; counted from 0
  bool m_bRelative = false;               ///< whether the name was relative when it was last looked at
  std::string m_Folder;                   ///< what a relative name is relative to while it is typed
  std::string m_Listed;                   ///< the folder listed when the name was last looked at
  std::string m_ListedByName;             ///< the folder last listed for the name's sake, as the name has it
};
