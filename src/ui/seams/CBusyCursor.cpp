#include "ui/seams/CBusyCursor.h"

#include <FL/Fl.H>
#include <FL/Fl_Window.H>

namespace {

void Show(Fl_Cursor cursor) {
  if (Fl::first_window() == nullptr) return;
  for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window))
    window->cursor(cursor);
  // A query, which sends all that the toolkit holds back: otherwise the display would hear of nothing until the work is
  // done.
  int x = 0;
  int y = 0;
  Fl::get_mouse(x, y);
}

}  // namespace

CBusyCursor::CBusyCursor(bool wanted) : m_bWanted(wanted) {
  if (m_bWanted && s_iObjects++ == 0) Show(FL_CURSOR_WAIT);
}

CBusyCursor::~CBusyCursor() {
  if (m_bWanted && --s_iObjects == 0) Show(FL_CURSOR_DEFAULT);
}
