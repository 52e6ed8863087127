#include "ui/help/CKeysWindow.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include <FL/Fl_Browser.H>
#include <FL/Fl_Input.H>

#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/seams/UiScale.h"

namespace {

constexpr int kWidth = 930;
constexpr int kHeight = 420;
constexpr std::size_t kLettersAcross = 66;

// In lines of at most so many letters.
std::vector<std::string> Wrapped(std::string_view text, std::size_t letters) {
  std::vector<std::string> lines;
  while (text.size() > letters) {
    std::size_t end = text.rfind(' ', letters);
    if (end == std::string_view::npos || end == 0) end = letters;
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(text.find_first_not_of(' ', end), text.size()));
  }
  lines.emplace_back(text);
  return lines;
}

}  // namespace

CKeysWindow::CKeysWindow(const Fl_Window& mainWindow, std::function<void()> closed)
    : Fl_Double_Window(kWidth, kHeight, "Keys and mouse"),
      m_MainWindow(mainWindow),
      m_Closed(std::move(closed)),
      m_aLines(KeyListIn(KeysText())) {
  m_pSearch = new Fl_Input(70, 8, 300, 26, "Search");
  m_pSearch->when(FL_WHEN_CHANGED);
  m_pSearch->callback(cb_Search, this);
  m_pList = new Fl_Browser(8, 42, kWidth - 16, kHeight - 50);
  m_pList->textsize(12);
  end();
  resizable(m_pList);
  ScaleWidgets(*this);
  const double scale = UiScale();
  m_aiColumns = {static_cast<int>(215 * scale), static_cast<int>(260 * scale), 0};
  m_pList->column_widths(m_aiColumns.data());
  m_pList->column_char('\t');
  size_range(w() / 2, h() / 2);
  set_non_modal();
  Show({});
}

void CKeysWindow::Open() { OpenBeside(*this, m_MainWindow); }

void CKeysWindow::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (wasShown) m_Closed();
}

// A place is named once. "@." keeps the list from taking signs in a text for its own.
void CKeysWindow::Show(std::string_view search) {
  m_pList->clear();
  std::string place;
  for (const CKeyLine& line : m_aLines) {
    if (!line.Matches(search)) continue;
    std::string where = line.m_Where == place ? "" : "@b@." + line.m_Where;
    std::string inputs = "@." + line.m_Inputs;
    place = line.m_Where;
    for (const std::string& effect : Wrapped(line.m_Effect, kLettersAcross)) {
      m_pList->add((std::exchange(where, "") + '\t' + std::exchange(inputs, "") + "\t@." + effect).c_str());
    }
  }
  if (m_pList->size() == 0) m_pList->add("@.Nothing is listed with these words");
}

void CKeysWindow::cb_Search(Fl_Widget* /*widget*/, void* window) {
  auto& self = *static_cast<CKeysWindow*>(window);
  self.Show(self.m_pSearch->value());
}
