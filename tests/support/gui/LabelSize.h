#pragma once

#include <utility>

class Fl_Widget;

/// Width and height of a widget's label as the toolkit draws it, pixels.
std::pair<int, int> LabelSizeOf(const Fl_Widget& widget);
