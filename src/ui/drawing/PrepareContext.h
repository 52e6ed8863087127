#pragma once

class Fl_Gl_Window;

/// First step of a view's `draw()`: brings the current context up to date with its window. A new context gets the
/// defaults, a new size the viewport. A window that was hidden comes back with a new context, so nothing set in one may
/// be taken for kept.
void PrepareContext(Fl_Gl_Window& view);
