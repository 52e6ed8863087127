#pragma once

#include <array>

#include "ui/window/Controls.h"

class CHelpLine;
class Fl_Widget;

// The toolkit's widgets for the rows of the table of controls.

/// A new widget for a control in one of the panels, with its label and start state, in no group. Its place and the
/// sizes of its texts come with the first layout.
Fl_Widget* MakeControl(const CControlRow& row, CHelpLine& helpLine);

/// The widgets of all controls, by control.
using CControlWidgets = std::array<Fl_Widget*, kControlCount>;

/// Sets the sizes of labels and texts for the present rectangles: those of the table times `scale`, labels smaller
/// where they would not fit. Inside a framed group they all take the smallest.
void SetTextSizes(const CControlWidgets& widgets, double scale);
