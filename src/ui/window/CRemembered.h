#pragma once

#include <map>
#include <optional>
#include <vector>

#include "ui/window/CMainMenu.h"

class CSettings;
class Fl_Window;

/// What of the window is the same in the next run, where the user wants that: its place and size, and which of the
/// menu's switches are on.
///
/// A switch is kept when the user changes it, together with those that it has changed. What a project switches is the
/// project's: while it is open the user's own are known, and what the user switches meanwhile becomes one of them.
class CRemembered {
 public:
  /// All must outlive the object.
  CRemembered(CMainMenu& menu, CSettings& settings, Fl_Window& window)
      : m_Menu(menu), m_Settings(settings), m_Window(window) {}

  /// Gives a window that is not shown yet its place and size of the last run, as far as the screen has room for them.
  void RestorePlace();
  /// The entries of the menu that are to be switched over, the one that says whether anything is kept first of all.
  std::vector<MenuEntry> ToBeSwitched();
  /// The user has chosen an entry of the menu, and all that follows has been done.
  void Chosen(MenuEntry entry);
  /// Switches may be others now, but not by the user.
  void Look();
  /// A project is about to bring its own marks.
  void LendToProject();
  /// The project has gone: the entries that are to be switched over, so that they are the user's own again.
  std::vector<MenuEntry> TakeBack();
  /// Whether marks are a project's.
  bool IsLent() const { return m_Own.has_value(); }
  /// Whether it is a switch that projects hold, too.
  static bool IsOfProjects(MenuEntry entry);
  /// The window closes.
  void KeepPlace();

 private:
  /// Of the user, whatever a project has on.
  bool OwnValue(MenuEntry entry) const;
  bool IsOn() const { return m_Menu.IsChecked(MenuEntry::Remember); }

  CMainMenu& m_Menu;
  CSettings& m_Settings;
  Fl_Window& m_Window;
  std::map<MenuEntry, bool> m_aSeen;               ///< the switches as they were last
  std::optional<std::map<MenuEntry, bool>> m_Own;  ///< the user's while a project has its own
};
