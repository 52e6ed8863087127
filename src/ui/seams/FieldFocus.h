#pragma once

class Fl_Widget;

/// Whether the keyboard belongs to a text field of another window of the program than the one that `view` is part of.
/// A view that the mouse merely crosses leaves it there: a key that is meant for the field must not edit the model.
bool HasFieldFocusElsewhere(const Fl_Widget& view);
