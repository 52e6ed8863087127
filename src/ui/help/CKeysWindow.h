#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include <FL/Fl_Double_Window.H>

#include "ui/help/KeyList.h"

class Fl_Browser;
class Fl_Input;

/// "Keys and mouse": the list of all keys, clicks and drags, and a field that picks out those with some words.
class CKeysWindow : public Fl_Double_Window {
 public:
  /// Hidden. The main window must outlive it; `closed` is called once it has closed, by whatever means.
  CKeysWindow(const Fl_Window& mainWindow, std::function<void()> closed);

  /// Shows the window.
  void Open();
  void hide() override;

 private:
  void Show(std::string_view search);
  static void cb_Search(Fl_Widget* widget, void* window);

  const Fl_Window& m_MainWindow;
  std::function<void()> m_Closed;
  std::vector<CKeyLine> m_aLines;
  Fl_Input* m_pSearch = nullptr;
  Fl_Browser* m_pList = nullptr;
  std::vector<int> m_aiColumns;  ///< widths; the toolkit keeps the address
};
