#include "ui/window/CMainMenu.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <FL/Fl.H>

#include "io/ModelFormats.h"

namespace {

/// A menu with its title, the end of the innermost open menu, an entry, another key for one, a command for each of
/// ModelFormats() with a line below the last one, or the menu of what was open last.
enum class RowKind { Menu, End, Command, Toggle, Checked, Radio, CheckedRadio, OtherKey, Formats, RecentFiles };

struct CMenuRow {
  RowKind m_Kind;
  const char* m_pText;
  int m_iShortcut;
  MenuEntry m_Entry;
};

using enum RowKind;

constexpr std::string_view kEditTitle = "Edi&t";
constexpr std::string_view kInspectTitle = "&Inspect";

constexpr int kModifiers = FL_SHIFT | FL_CTRL | FL_ALT | FL_META;

// clang-format off
constexpr auto kRows = std::to_array<CMenuRow>({
  {Menu, "&File", 0, {}},
  {Command, "&New Grid", FL_ALT + 'n', MenuEntry::NewGrid},
  {Command, "Load &Grid", FL_ALT + 'o', MenuEntry::LoadGrid},
  {Command, "Load &Image", FL_ALT + FL_SHIFT + 'o', MenuEntry::LoadImage},
  {Formats, nullptr, 0, {}},
  {Command, "Save &Again", FL_CTRL + 's', MenuEntry::SaveAgain},
  {Command, "Save &Project", 0, MenuEntry::SaveProject},
  {Command, "&Open Project...", 0, MenuEntry::OpenProject},
  {RecentFiles, "Open &Recent", 0, {}},
  {Command, "Recover Unsaved &Work", 0, MenuEntry::RecoverWork},
  {Command, "Grid in the Pic&ture's Proportions", 0, MenuEntry::FitPicture},
  {Command, "Export &Model...", 0, MenuEntry::ExportModel},
  {Command, "Export &Film...", 0, MenuEntry::ExportFilm},
  {Command, "&Quit", FL_CTRL + 'q', MenuEntry::Quit},
  {End, nullptr, 0, {}},
  {Menu, "&2D View", 0, {}},
  {Checked, "Show &Grid", FL_CTRL + 'g', MenuEntry::ImageGrid},
  {Toggle, "Show &Image", FL_CTRL + 'i', MenuEntry::ImagePicture},
  {Checked, "Show &Point Constraints", FL_CTRL + 'p', MenuEntry::ImagePoints},
  {Checked, "Show &Curve Constraints", FL_CTRL + 'c', MenuEntry::ImageCurves},
  {Toggle, "Show &Freeze-map", 0, MenuEntry::FreezeMap},
  {Toggle, "Show Texels in disc.", 0, MenuEntry::DiscontinuityTexels},
  {End, nullptr, 0, {}},
  {Menu, "&3D View", 0, {}},
  {Checked, "Show &Grid", FL_CTRL + FL_ALT + 'g', MenuEntry::ModelGrid},
  {Toggle, "Show &Textured Model", FL_CTRL + FL_ALT + 'i', MenuEntry::ModelTexture},
  {Toggle, "Show &Point Constraints", FL_CTRL + FL_ALT + 'p', MenuEntry::ModelPoints},
  {Toggle, "Show &Curve Constraints", FL_CTRL + FL_ALT + 'c', MenuEntry::ModelCurves},
  {Toggle, "Show Cell &Normals", FL_CTRL + FL_ALT + 'n', MenuEntry::CellNormals},
  {Toggle, "Show Point Normals", FL_CTRL + FL_ALT + FL_SHIFT + 'n', MenuEntry::PointNormals},
  {Toggle, "Show Texels Normals", FL_ALT + FL_SHIFT + 'n', MenuEntry::TexelNormals},
  {End, nullptr, 0, {}},
  {Menu, "&Shoot a frame", 0, {}},
  {Command, "&2D view", 0, MenuEntry::ShootImage},
  {Command, "&3D view", 0, MenuEntry::ShootModel},
  {End, nullptr, 0, {}},
  {Menu, "A&dvanced", 0, {}},
  {Checked, "Show debugging &interface", 0, MenuEntry::DebugInterface},
  {Checked, "Show &status bar", 0, MenuEntry::StatusBar},
  {Toggle, "Specific &colors for subdivision", 0, MenuEntry::SubdivisionColours},
  {Toggle, "Show the position &discontinuity gap", 0, MenuEntry::DiscontinuityGap},
  {Toggle, "Show the &edges inside a position discontinuity", 0, MenuEntry::DiscontinuityEdges},
  {Command, "Adjust advanced drawing &parameters", 0, MenuEntry::DrawingParameters},
  {Menu, "&Way of convergence", 0, {}},
  {CheckedRadio, "New &Wavelet Transformation - default mode", 0, MenuEntry::NewWavelets},
  {Radio, "Simple Wavelet &Transformation", 0, MenuEntry::SimpleWavelets},
  {Radio, "&No Wavelet Transformation", 0, MenuEntry::NoWavelets},
  {End, nullptr, 0, {}},
  {End, nullptr, 0, {}},
  {Menu, "Edi&t", 0, {}},
  {Command, "&Undo", FL_CTRL + 'z', MenuEntry::Undo},
  {Command, "&Redo", FL_CTRL + FL_SHIFT + 'z', MenuEntry::Redo},
  {OtherKey, "&Redo", FL_CTRL + 'y', MenuEntry::Redo},
  {Command, "Reference &Depth...", 0, MenuEntry::ReferenceDepth},
  {Command, "Constraint &Values...", 0, MenuEntry::ConstraintValues},
  {Toggle, "Select &Several", 0, MenuEntry::SelectSeveral},
  {Command, "&Heights Along Curve...", 0, MenuEntry::HeightsAlongCurve},
  {Toggle, "&New Heights at the Last Value", 0, MenuEntry::NewHeightsAtLast},
  {Toggle, "Re&member Window and Switches", 0, MenuEntry::Remember},
  {End, nullptr, 0, {}},
  {Menu, "&Inspect", 0, {}},
  {Toggle, "Close the &gaps of tears", 0, MenuEntry::ClosedTears},
  {Toggle, "Continue &behind tears", 0, MenuEntry::BehindTears},
  {Toggle, "Show &coordinates", 0, MenuEntry::Coordinates},
  {Command, "Constraint &Report", 0, MenuEntry::ConstraintReport},
  {Toggle, "Show &floating regions", 0, MenuEntry::FloatingRegions},
  {Toggle, "Se&ttle floating regions", 0, MenuEntry::SettleFloating},
  {Toggle, "Show &Influence", 0, MenuEntry::InfluenceMap},
  {Toggle, "Show &misfit", 0, MenuEntry::Misfit},
  {Toggle, "Show b&ending", 0, MenuEntry::Bending},
  {Command, "Save &Overlay as PNG...", 0, MenuEntry::SaveOverlay},
  {Toggle, "&Keep proportions", 0, MenuEntry::KeepProportions},
  {End, nullptr, 0, {}},
  {Menu, "&Help", 0, {}},
  {Command, "&Keys and Mouse", FL_F + 1, MenuEntry::KeysAndMouse},
  {Command, "&Tutorial", 0, MenuEntry::Tutorial},
  {Command, "&About", 0, MenuEntry::About},
  {End, nullptr, 0, {}},
  {End, nullptr, 0, {}},
});
// clang-format on

// On either part of the keyboard.
bool IsDigit(int key) { return (key >= '0' && key <= '9') || (key >= FL_KP + '0' && key <= FL_KP + '9'); }

int FlagsOf(RowKind kind) {
  switch (kind) {
    case Toggle:
      return FL_MENU_TOGGLE;
    case Checked:
      return FL_MENU_TOGGLE | FL_MENU_VALUE;
    case Radio:
      return FL_MENU_RADIO;
    case OtherKey:
      return FL_MENU_INVISIBLE;
    case CheckedRadio:
      return FL_MENU_RADIO | FL_MENU_VALUE;
    default:
      return 0;
  }
}

// The toolkit takes "&" for the mark of a key and "@" for the name of a picture, but not where they are doubled.
std::string EntryText(const std::string& text) {
  std::string label;
  for (const char c : text) label.append(c == '@' || c == '&' ? 2 : 1, c);
  return label;
}

int Shortcut(const CModelFormat& format) { return format.m_cKey == '\0' ? 0 : FL_ALT + format.m_cKey; }

Fl_Menu_Item MakeItem(const char* text, int shortcut, int flags) {
  Fl_Menu_Item item{};
  item.text = text;
  item.shortcut_ = shortcut;
  item.flags = flags;
  return item;
}

}  // namespace

CMainMenu::CMainMenu(int x, int y, int w, int h, Action chosen) : Fl_Menu_Bar(x, y, w, h), m_Chosen(std::move(chosen)) {
  BuildItems();
  menu(m_aItems.data());
  clear_visible_focus();
}

void CMainMenu::BuildItems() {
  const std::span<const CModelFormat> formats = ModelFormats();
  m_auIndices.resize(static_cast<std::size_t>(WriteEntry(formats.size())));
  m_asTexts.resize(m_auIndices.size());
  for (const CMenuRow& row : kRows) {
    switch (row.m_Kind) {
      case End:
        m_aItems.emplace_back();
        break;
      case Menu:
        m_aItems.push_back(MakeItem(row.m_pText, 0, FL_SUBMENU));
        break;
      case Formats:
        for (std::size_t k = 0; k < formats.size(); ++k)
          AddEntry(WriteEntry(k), MakeItem(formats[k].m_pMenuText, Shortcut(formats[k]), 0));
        m_aItems.back().flags |= FL_MENU_DIVIDER;
        break;
      case RecentFiles:
        AddRecent(row.m_pText);
        break;
      case OtherKey:
        m_aItems.push_back(MakeItem(row.m_pText, row.m_iShortcut, FlagsOf(row.m_Kind)));
        m_aItems.back().callback(cb_Item, static_cast<long>(row.m_Entry));
        break;
      default:
        AddEntry(row.m_Entry, MakeItem(row.m_pText, row.m_iShortcut, FlagsOf(row.m_Kind)));
    }
  }
}

void CMainMenu::AddEntry(MenuEntry entry, Fl_Menu_Item item) {
  item.callback(cb_Item, static_cast<long>(entry));
  m_auIndices[static_cast<std::size_t>(entry)] = m_aItems.size();
  m_aItems.push_back(item);
}

void CMainMenu::AddRecent(const char* title) {
  m_uRecentTitle = m_aItems.size();
  m_aItems.push_back(MakeItem(title, 0, FL_SUBMENU | FL_MENU_INACTIVE));
  for (std::size_t k = 0; k < CRecentFiles::kMost; ++k)
    AddEntry(RecentEntry(k), MakeItem("", 0, FL_MENU_INVISIBLE | FL_MENU_INACTIVE));
  AddEntry(MenuEntry::ClearRecent, MakeItem("Clear list", 0, 0));
  m_aItems.emplace_back();
}

void CMainMenu::SetRecent(const std::vector<CRecentText>& recent) {
  const std::size_t count = std::min(recent.size(), CRecentFiles::kMost);
  m_asRecent.clear();
  for (std::size_t k = 0; k < count; ++k) m_asRecent.push_back(EntryText(recent[k].m_Text));
  for (std::size_t k = 0; k < CRecentFiles::kMost; ++k) {
    Fl_Menu_Item& item = Item(RecentEntry(k));
    const bool there = k < count;
    item.text = there ? m_asRecent[k].c_str() : "";
    item.flags = there ? 0 : FL_MENU_INVISIBLE;
    if (!there || !recent[k].m_bThere) item.flags |= FL_MENU_INACTIVE;
    if (k + 1 == count) item.flags |= FL_MENU_DIVIDER;
  }
  Fl_Menu_Item& title = m_aItems[m_uRecentTitle];
  count == 0 ? title.deactivate() : title.activate();
}

void CMainMenu::cb_Item(Fl_Widget* bar, long entry) {
  static_cast<CMainMenu*>(bar)->m_Chosen(static_cast<MenuEntry>(entry));
}

void CMainMenu::SetChecked(MenuEntry entry, bool checked) {
  Fl_Menu_Item& item = Item(entry);
  if (checked && item.radio() != 0) {
    item.setonly();
  } else if (checked) {
    item.set();
  } else {
    item.clear();
  }
}

std::string CMainMenu::TextOf(MenuEntry entry) {
  const auto hasText = [entry](const CMenuRow& row) {
    return row.m_Entry == entry && row.m_Kind != Menu && row.m_Kind != End && row.m_pText != nullptr;
  };
  const auto* const row = std::ranges::find_if(kRows, hasText);
  std::string text = row == kRows.end() ? "" : row->m_pText;
  std::erase(text, '&');
  return text;
}

std::vector<MenuEntry> CMainMenu::Switches() {
  std::vector<MenuEntry> switches{MenuEntry::DebugInterface, MenuEntry::StatusBar};
  bool kept = false;
  for (const CMenuRow& row : kRows) {
    if (row.m_Kind == Menu) kept = row.m_pText == kEditTitle || row.m_pText == kInspectTitle;
    const bool ticked = row.m_Kind == Toggle || row.m_Kind == Checked;
    if (kept && ticked && row.m_Entry != MenuEntry::Remember && row.m_Entry != MenuEntry::SelectSeveral)
      switches.push_back(row.m_Entry);
  }
  return switches;
}

void CMainMenu::SetText(MenuEntry entry, const std::string& text) {
  std::string& kept = m_asTexts[static_cast<std::size_t>(entry)];
  kept = text;
  Item(entry).text = kept.c_str();
}

void CMainMenu::Enable(MenuEntry entry, bool enable) {
  if (enable) {
    Item(entry).activate();
  } else {
    Item(entry).deactivate();
  }
}

bool CMainMenu::TakeShortcut() {
  if (m_BeforeKeys) m_BeforeKeys();
  const int pressed = (Fl::event_state() & kModifiers) | Fl::event_key();
  for (Fl_Menu_Item& item : m_aItems) {
    if (item.text == nullptr || item.shortcut_ != pressed) continue;
    if (item.active() != 0) picked(&item);
    return true;
  }
  return false;
}

int CMainMenu::handle(int event) {
  const bool opens = event == FL_PUSH || (event == FL_SHORTCUT && (Fl::event_state() & kModifiers) == FL_ALT);
  if (opens && m_BeforeOpening) m_BeforeOpening();
  if (event != FL_SHORTCUT) return Fl_Menu_Bar::handle(event);
  if (TakeShortcut()) return 1;
  const int modifiers = Fl::event_state() & kModifiers;
  if (modifiers == FL_ALT && IsDigit(Fl::event_key()) && m_DigitsTaken && m_DigitsTaken()) return 1;
  // Titles of menus. The toolkit would also try the entries, and take some with modifiers that they do not have.
  return modifiers == FL_ALT ? Fl_Menu_Bar::handle(event) : 0;
}
