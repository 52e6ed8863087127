#pragma once

class Fl_Gl_Window;

/// The drawing state that both views start from, set in the current OpenGL context: smooth blended lines, black
/// background of alpha 0, smooth shading, shiny front material, depth test, material colour from the current colour.
void SetOpenGLDefaults();

/// First step of a view's `draw()`: brings the current context up to date with its window. A new context gets the
/// defaults, a new size the viewport. A window that was hidden comes back with a new context, so nothing set in one may
/// be taken for kept.
void PrepareContext(Fl_Gl_Window& view);
