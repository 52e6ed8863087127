#include "app/Desktop.h"

#include <FL/Fl_Gl_Window.H>
#include <FL/Fl_Pixmap.H>
#include <FL/Fl_RGB_Image.H>
#include <FL/Fl_Window.H>
#include <FL/x.H>

#include "app/WindowIcon.xpm"

void IntroduceToDesktop() {
  Fl_Window::default_xclass("relievo");
  const Fl_Pixmap drawn(kWindowIcon);
  const Fl_RGB_Image icon(&drawn);
  Fl_Window::default_icon(&icon);
}

bool HasOpenGL() {
  fl_open_display();
  return Fl_Gl_Window::can_do(FL_RGB8 | FL_DOUBLE | FL_DEPTH) != 0;
}
