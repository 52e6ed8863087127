#pragma once

#include "ui/Controls.h"

class CHelpLine;
class Fl_Widget;

// The toolkit's widgets for the rows of the table of controls.

/// A new widget for a control in one of the panels, with its label and start state, in no group. Its place and the
/// sizes of its texts come with the first layout.
Fl_Widget* MakeControl(const CControlRow& row, CHelpLine& helpLine);

/// Sets the sizes of a control's label and text for its present rectangle: those of the table times `scale`, the label
/// smaller where its text would not fit.
void SetTextSizes(Fl_Widget& widget, const CControlRow& row, double scale);
