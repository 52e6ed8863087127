#include "ui/seams/FieldFocus.h"

#include <FL/Fl.H>
#include <FL/Fl_Input_.H>
#include <FL/Fl_Window.H>

bool HasFieldFocusElsewhere(const Fl_Widget& view) {
  auto* field = dynamic_cast<Fl_Input_*>(Fl::focus());
  if (field == nullptr || field->readonly() != 0 || field->active_r() == 0) return false;
  Fl_Window* window = field->top_window();
  return window != nullptr && window->shown() != 0 && window != view.top_window();
}
