#include "ui/drawing/ScaleWidgets.h"

#include <cmath>

#include <FL/Fl_Browser_.H>
#include <FL/Fl_Counter.H>
#include <FL/Fl_Input_.H>
#include <FL/Fl_Menu_.H>
#include <FL/Fl_Value_Input.H>
#include <FL/Fl_Value_Output.H>
#include <FL/Fl_Value_Slider.H>
#include <FL/Fl_Window.H>

#include "ui/seams/UiScale.h"

namespace {

int Scaled(int length, double scale) { return static_cast<int>(std::lround(length * scale)); }

template <class Widget>
void ScaleText(Fl_Widget& widget, double scale) {
  if (auto* texted = dynamic_cast<Widget*>(&widget)) texted->textsize(Scaled(texted->textsize(), scale));
}

// Edges are scaled, not lengths, so that what touched goes on touching.
void ScaleWidget(Fl_Widget& widget, double scale) {
  const int x = Scaled(widget.x(), scale);
  const int y = Scaled(widget.y(), scale);
  const int w = Scaled(widget.x() + widget.w(), scale) - x;
  const int h = Scaled(widget.y() + widget.h(), scale) - y;
  widget.labelsize(Scaled(widget.labelsize(), scale));
  ScaleText<Fl_Input_>(widget, scale);
  ScaleText<Fl_Browser_>(widget, scale);
  ScaleText<Fl_Counter>(widget, scale);
  ScaleText<Fl_Menu_>(widget, scale);
  ScaleText<Fl_Value_Input>(widget, scale);
  ScaleText<Fl_Value_Output>(widget, scale);
  ScaleText<Fl_Value_Slider>(widget, scale);
  Fl_Group* group = widget.as_group();
  if (group == nullptr) {
    widget.resize(x, y, w, h);
    return;
  }
  // Without the group's own way of moving what is in it.
  group->Fl_Widget::resize(x, y, w, h);
  for (int k = 0; k < group->children(); ++k) ScaleWidget(*group->child(k), scale);
  group->init_sizes();
}

}  // namespace

void ScaleWidgets(Fl_Window& window) {
  const double scale = UiScale();
  if (scale == 1.0) return;
  for (int k = 0; k < window.children(); ++k) ScaleWidget(*window.child(k), scale);
  Fl_Widget* resizable = window.resizable();
  window.resizable(nullptr);
  window.size(Scaled(window.w(), scale), Scaled(window.h(), scale));
  window.resizable(resizable);
  window.init_sizes();
}
