#include "drawing/OpenGLDefaults.h"

#include <array>

#include <GL/gl.h>

void SetOpenGLDefaults() {
  glEnable(GL_LINE_SMOOTH);
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glShadeModel(GL_SMOOTH);

  constexpr std::array<GLfloat, 4> kSpecular{1.0F, 1.0F, 1.0F, 1.0F};
  constexpr GLfloat kShininess = 50.0F;
  constexpr std::array<GLfloat, 4> kDiffuse{0.0F, 0.0F, 1.0F, 0.0F};
  glMaterialfv(GL_FRONT, GL_SPECULAR, kSpecular.data());
  glMaterialf(GL_FRONT, GL_SHININESS, kShininess);
  glLightfv(GL_LIGHT0, GL_DIFFUSE, kDiffuse.data());

  glEnable(GL_DEPTH_TEST);
  glEnable(GL_COLOR_MATERIAL);
}
