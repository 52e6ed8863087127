#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Menu_Bar.H>

#include "editing/CRecentFiles.h"
#include "editing/RecentTexts.h"

/// The entries of the main window's menu.
enum class MenuEntry {
  NewGrid,
  LoadGrid,
  LoadImage,
  SaveProject,
  OpenProject,
  RecoverWork,
  FitPicture,
  ExportModel,
  ExportFilm,
  ImageGrid,
  ImagePicture,
  ImagePoints,
  ImageCurves,
  FreezeMap,
  DiscontinuityTexels,
  ModelGrid,
  ModelTexture,
  ModelPoints,
  ModelCurves,
  CellNormals,
  PointNormals,
  TexelNormals,
  ShootImage,
  ShootModel,
  DebugInterface,
  StatusBar,
  SubdivisionColours,
  DiscontinuityGap,
  DiscontinuityEdges,
  DrawingParameters,
  NewWavelets,
  SimpleWavelets,
  NoWavelets,
  SaveAgain,
  Recent,  ///< what was open last; there is an entry for each of CRecentFiles::kMost
  ClearRecent = Recent + CRecentFiles::kMost,
  Quit,
  Undo,
  Redo,
  ClosedTears,
  BehindTears,
  KeepProportions,
  ReferenceDepth,
  Coordinates,
  FloatingRegions,
  SettleFloating,
  InfluenceMap,
  Misfit,
  Bending,
  SaveOverlay,
  ConstraintValues,
  SelectSeveral,
  ConstraintReport,
  KeysAndMouse,
  Tutorial,
  About,
  HeightsAlongCurve,
  NewHeightsAtLast,
  Remember,
  Write,  ///< the model in the first of ModelFormats(); those of the others follow
};

/// The entry that writes the model in a format, by its place in ModelFormats().
inline constexpr MenuEntry WriteEntry(std::size_t format) {
  return static_cast<MenuEntry>(static_cast<std::size_t>(MenuEntry::Write) + format);
}

/// The entry of what was open last, by its place in the list.
inline constexpr MenuEntry RecentEntry(std::size_t place) {
  return static_cast<MenuEntry>(static_cast<std::size_t>(MenuEntry::Recent) + place);
}

/// The menu bar of the main window. What an entry does is the window's; check marks of toggle and radio entries are
/// changed before it is asked.
///
/// A shortcut belongs to one entry, with exactly its modifiers, before it may stand for the title of a menu; that of an
/// inactive entry does nothing. The titles "2D View" and "3D View" can be told to leave their digits to others.
class CMainMenu : public Fl_Menu_Bar {
 public:
  using Action = std::function<void(MenuEntry entry)>;

  /// Place and size in the window, screen pixels. `chosen` is called for what the user picks.
  CMainMenu(int x, int y, int w, int h, Action chosen);

  /// The tick before an entry, and whether it can be chosen.
  bool IsChecked(MenuEntry entry) const { return Item(entry).value() != 0; }
  void SetChecked(MenuEntry entry, bool checked);
  bool IsActive(MenuEntry entry) const { return Item(entry).active() != 0; }
  void Enable(MenuEntry entry, bool enable);
  /// Another text, in which "&" marks the shortcut.
  void SetText(MenuEntry entry, const std::string& text);
  /// Its text in the table of the menu, without the mark of its letter.
  static std::string TextOf(MenuEntry entry);
  /// The entries with a tick that outlive a run where the user wants that: those of "Edit" and "Inspect" but for the
  /// one that says so and the one that takes the mouse over, and what else the window shows or hides of itself.
  static std::vector<MenuEntry> Switches();
  /// As if the user had chosen the entry, even if it is inactive.
  void Choose(MenuEntry entry) { picked(&Item(entry)); }

  /// While `taken` answers true, Alt with a digit opens no menu: it belongs to somebody else.
  void LeaveDigitsWhile(std::function<bool()> taken) { m_DigitsTaken = std::move(taken); }

  /// Shows these in "Open Recent", at most CRecentFiles::kMost of them, with their texts as they are. Not while a menu
  /// is open.
  void SetRecent(const std::vector<CRecentText>& recent);
  /// `action` is called before a menu opens; before a key is looked for among the entries.
  void BeforeOpening(std::function<void()> action) { m_BeforeOpening = std::move(action); }
  void BeforeKeys(std::function<void()> action) { m_BeforeKeys = std::move(action); }
  /// Performs the entry that the key just typed belongs to; false where there is none. The titles are left alone, so
  /// that a key which another window has not used may be offered.
  bool TakeShortcut();

  int handle(int event) override;

 private:
  Fl_Menu_Item& Item(MenuEntry entry) { return m_aItems[m_auIndices[static_cast<std::size_t>(entry)]]; }
  const Fl_Menu_Item& Item(MenuEntry entry) const { return m_aItems[m_auIndices[static_cast<std::size_t>(entry)]]; }
  void BuildItems();
  void AddEntry(MenuEntry entry, Fl_Menu_Item item);
  void AddRecent(const char* title);
  static void cb_Item(Fl_Widget* bar, long entry);

  Action m_Chosen;
  std::function<bool()> m_DigitsTaken;
  std::function<void()> m_BeforeOpening;
  std::function<void()> m_BeforeKeys;
  std::vector<std::string> m_asRecent;   ///< labels of what was open last
  std::size_t m_uRecentTitle = 0;        ///< place of "Open Recent" among the items
  std::vector<Fl_Menu_Item> m_aItems;    ///< as the toolkit wants them, with titles and ends of menus
  std::vector<std::size_t> m_auIndices;  ///< of the entries among the items
  std::vector<std::string> m_asTexts;    ///< of entries that have been given another, by entry
};
