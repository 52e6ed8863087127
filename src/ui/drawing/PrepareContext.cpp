#include "ui/drawing/PrepareContext.h"

#include <FL/Fl_Gl_Window.H>
#include <GL/gl.h>

#include "drawing/OpenGLDefaults.h"

void PrepareContext(Fl_Gl_Window& view) {
  if (view.context_valid() == 0) SetOpenGLDefaults();
  if (view.valid() == 0) glViewport(0, 0, view.pixel_w(), view.pixel_h());
}
