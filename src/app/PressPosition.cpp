#include "app/PressPosition.h"

#include <FL/Fl.H>
#include <FL/Fl_Window.H>
#include <FL/x.H>

namespace {

constexpr unsigned kAnyButton = Button1Mask | Button2Mask | Button3Mask;

// Asked about each event before the toolkit handles it; 0 leaves the event to the toolkit.
int OnSystemEvent(void* systemEvent, void* /*data*/) {
  const auto& event = *static_cast<const XEvent*>(systemEvent);
  if (event.type != ButtonPress || event.xbutton.button > Button3 || (event.xbutton.state & kAnyButton) != 0) return 0;
  Fl_Window* window = fl_find(event.xbutton.window);
  // A menu or a dialog sees its own movements only.
  if (window == nullptr || Fl::grab() != nullptr || Fl::modal() != nullptr) return 0;
  Fl::e_x = event.xbutton.x;
  Fl::e_y = event.xbutton.y;
  Fl::e_x_root = event.xbutton.x_root;
  Fl::e_y_root = event.xbutton.y_root;
  Fl::handle(FL_MOVE, window);
  return 0;
}

}  // namespace

void SendMovesBeforePresses() { Fl::add_system_handler(OnSystemEvent, nullptr); }
