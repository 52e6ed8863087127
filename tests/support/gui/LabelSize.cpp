#include "support/gui/LabelSize.h"

#include <FL/Fl_Widget.H>
#include <FL/fl_draw.H>

std::pair<int, int> LabelSizeOf(const Fl_Widget& widget) {
  int width = 0;
  int height = 0;
  fl_font(widget.labelfont(), widget.labelsize());
  fl_measure(widget.label(), width, height, 0);
  return {width, height};
}
