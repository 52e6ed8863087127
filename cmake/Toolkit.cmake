# relievo_toolkit: FLTK with its OpenGL window, OpenGL and GLU, as one target with system headers.
#
# FLTK's own package file names its static libraries; the shared ones are found here by hand. FLTK's OpenGL
# window is linked to libGL, so the program takes the same library instead of the newer libOpenGL.
set(OpenGL_GL_PREFERENCE LEGACY)
find_package(OpenGL REQUIRED)
if(NOT OPENGL_GLU_FOUND)
  message(FATAL_ERROR "GLU was not found (Debian: libglu1-mesa-dev)")
endif()

find_path(FLTK_HEADERS FL/Fl.H REQUIRED)
find_library(FLTK_LIBRARY fltk REQUIRED)
find_library(FLTK_GL_LIBRARY fltk_gl REQUIRED)
mark_as_advanced(FLTK_HEADERS FLTK_LIBRARY FLTK_GL_LIBRARY)

add_library(relievo_toolkit INTERFACE)
target_include_directories(relievo_toolkit SYSTEM INTERFACE "${FLTK_HEADERS}")
target_link_libraries(relievo_toolkit INTERFACE
  "${FLTK_GL_LIBRARY}" "${FLTK_LIBRARY}" OpenGL::GLU OpenGL::GL)
