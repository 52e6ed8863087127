#include "ui/window/CRemembered.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>

#include "editing/CSettings.h"
#include "ui/seams/UiScale.h"
#include "ui/window/Controls.h"
#include "ui/window/FlagEntries.h"

namespace {

constexpr const char* kOn = "remember";
constexpr const char* kLeft = "window_left";
constexpr const char* kTop = "window_top";
constexpr const char* kWidth = "window_width";
constexpr const char* kHeight = "window_height";

// Text of the menu as a name in the file: small letters, digits and underscores.
std::string NameOf(const std::string& text) {
  std::string name = "switch_";
  for (const char c : text) {
    if (c >= 'A' && c <= 'Z') {
      name += static_cast<char>(c - 'A' + 'a');
    } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
      name += c;
    } else if (c == ' ') {
      name += '_';
    }
  }
  return name;
}

std::optional<int> Pixels(CSettings& settings, const char* name) {
  constexpr double kMost = 100'000;
  const std::optional<double> number = settings.Number(name);
  if (!number || !(std::abs(*number) <= kMost)) return std::nullopt;
  return static_cast<int>(std::lround(*number));
}

int Scaled(int length) { return static_cast<int>(std::lround(length * UiScale())); }

int Within(int place, int size, int start, int room) { return std::max(start, std::min(place, start + room - size)); }

}  // namespace

void CRemembered::RestorePlace() {
  if (!m_Settings.Switch(kOn).value_or(false)) return;
  const std::optional<int> left = Pixels(m_Settings, kLeft);
  const std::optional<int> top = Pixels(m_Settings, kTop);
  const std::optional<int> width = Pixels(m_Settings, kWidth);
  const std::optional<int> height = Pixels(m_Settings, kHeight);
  if (!left || !top || !width || !height) return;
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;
  Fl::screen_work_area(x, y, w, h, *left + *width / 2, *top + *height / 2);
  const int fittingWidth = std::clamp(*width, std::min(Scaled(kMinDesignWidth), w), w);
  const int fittingHeight = std::clamp(*height, std::min(Scaled(kMinDesignHeight), h), h);
  m_Window.resize(Within(*left, fittingWidth, x, w), Within(*top, fittingHeight, y, h), fittingWidth, fittingHeight);
}

std::vector<MenuEntry> CRemembered::ToBeSwitched() {
  if (!m_Settings.Switch(kOn).value_or(false)) return {};
  std::vector<MenuEntry> entries{MenuEntry::Remember};
  for (const MenuEntry entry : m_Menu.Switches()) {
    const std::optional<bool> kept = m_Settings.Switch(NameOf(m_Menu.TextOf(entry)));
    if (kept.has_value() && *kept != m_Menu.IsChecked(entry)) entries.push_back(entry);
  }
  return entries;
}

void CRemembered::Chosen(MenuEntry entry) {
  const bool turned = entry == MenuEntry::Remember;
  std::map<std::string, CSettingValue> values;
  if (turned) values[kOn] = IsOn();
  for (const MenuEntry row : m_Menu.Switches()) {
    const bool on = m_Menu.IsChecked(row);
    const auto seen = m_aSeen.find(row);
    const bool changed = seen == m_aSeen.end() || seen->second != on;
    if (changed && m_Own && IsOfProjects(row)) (*m_Own)[row] = on;
    if (turned || changed) values[NameOf(m_Menu.TextOf(row))] = OwnValue(row);
  }
  Look();
  if (IsOn()) {
    m_Settings.Set(values);
  } else if (turned) {
    m_Settings.Set({{kOn, false}});
  }
}

void CRemembered::Look() {
  for (const MenuEntry entry : m_Menu.Switches()) m_aSeen[entry] = m_Menu.IsChecked(entry);
}

// One project may follow another.
void CRemembered::LendToProject() {
  Look();
  if (m_Own) return;
  m_Own.emplace();
  for (const MenuEntry entry : m_Menu.Switches()) {
    if (IsOfProjects(entry)) (*m_Own)[entry] = m_Menu.IsChecked(entry);
  }
}

std::vector<MenuEntry> CRemembered::TakeBack() {
  std::vector<MenuEntry> entries;
  if (!m_Own) return entries;
  for (const auto& [entry, own] : *m_Own) {
    if (own != m_Menu.IsChecked(entry)) entries.push_back(entry);
  }
  m_Own.reset();
  return entries;
}

bool CRemembered::IsOfProjects(MenuEntry entry) {
  const std::vector<MenuEntry> switches = CMainMenu::Switches();
  return std::ranges::find(switches, entry) != switches.end() &&
         std::ranges::find(kFlagEntries, entry, &CFlagEntry::m_Entry) != kFlagEntries.end();
}

bool CRemembered::OwnValue(MenuEntry entry) const {
  if (!m_Own || !m_Own->contains(entry)) return m_Menu.IsChecked(entry);
  return m_Own->at(entry);
}

// Not one that is hidden, or fills the screen for a while.
void CRemembered::KeepPlace() {
  if (!IsOn() || m_Window.shown() == 0 || m_Window.fullscreen_active() != 0) return;
  const auto number = [](int pixels) { return static_cast<double>(pixels); };
  m_Settings.Set({{kLeft, number(m_Window.x())},
                  {kTop, number(m_Window.y())},
                  {kWidth, number(m_Window.w())},
                  {kHeight, number(m_Window.h())}});
}
