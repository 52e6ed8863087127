#pragma once

class Fl_Widget;
class Fl_Window;

/// Whether the keyboard belongs to a text field of another window of the program than the one that `view` is part of,
/// or is about to belong to a window that has just been opened. A view that the mouse merely crosses leaves it there: a
/// key that is meant for the field must not edit the model.
bool HasFieldFocusElsewhere(const Fl_Widget& view);

/// A window is being opened: the window manager gives it the keyboard, a little later. Until it has it, or a second has
/// passed without, and until the mouse moves, it is taken for its owner. A menu that closes over a view looks to the
/// view like a mouse that crosses it, which would take the keyboard from the window that an entry of the menu has
/// opened.
void ExpectFocus(const Fl_Window& window);
