#include "drawing/Quadrics.h"

#include <array>
#include <cstdlib>
#include <iostream>

#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include "support/gui/ModelViewTest.h"

namespace {

bool g_bNoQuadrics = false;
bool g_bWrongStyle = false;

}  // namespace

// What the program calls in this executable; see CMakeLists.txt.
extern "C" {
GLUquadric* __real_gluNewQuadric();
void __real_gluQuadricDrawStyle(GLUquadric* quadric, GLenum style);
GLUquadric* __wrap_gluNewQuadric() { return g_bNoQuadrics ? nullptr : __real_gluNewQuadric(); }
void __wrap_gluQuadricDrawStyle(GLUquadric* quadric, GLenum style) {
  __real_gluQuadricDrawStyle(quadric, g_bWrongStyle ? GL_RGBA : style);
}
}

namespace {

// Draws in red into a view that shows -10 .. 10 in every direction.
class QuadricsTest : public ModelViewTest {
 protected:
  void SetUp() override {
    ModelViewTest::SetUp();
    View().make_current();
  }
  void TearDown() override { g_bNoQuadrics = g_bWrongStyle = false; }

  template <typename Draw>
  CPicture Drawn(const Draw& draw) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-10, 10, -10, 10, -100, 100);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glColor3f(1, 0, 0);
    draw();
    CPicture picture{kSize, kSize, std::vector<std::uint8_t>(std::size_t{3} * kSize * kSize)};
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kSize, kSize, GL_RGB, GL_UNSIGNED_BYTE, picture.m_aPixels.data());
    return picture;
  }
  CPicture Cylinder(double x, double y, double z) {
    return Drawn([&] { draw_cylinder(0, 0, 0, x, y, z, 6, 20, 1); });
  }
  static CRgb At(const CPicture& picture, double x, double y) {
    return PixelOf(picture, static_cast<int>((x + 10) / 20 * kSize), static_cast<int>((y + 10) / 20 * kSize));
  }
};

}  // namespace

TEST_F(QuadricsTest, CylinderPointsAlongItsDirection) {
  for (const auto& [dx, dy] : {std::array{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.0}}) {
    const CPicture picture = Cylinder(dx, dy, 0);
    // The cap at the far end, and nothing behind the near one.
    EXPECT_EQ(At(picture, 5.98 * dx, 5.98 * dy), kRed) << dx << ", " << dy;
    EXPECT_EQ(At(picture, -1 * dx, -1 * dy), kBlack);
    EXPECT_EQ(At(picture, 6.3 * dx, 6.3 * dy), kBlack);
  }
}

TEST_F(QuadricsTest, LengthOfTheDirectionDoesNotMatter) {
  EXPECT_EQ(Cylinder(1, 2, 2).m_aPixels, Cylinder(10, 20, 20).m_aPixels);
}

TEST_F(QuadricsTest, SlantedCylinderIsForeshortened) {
  const CPicture picture = Cylinder(3, 0, 4);
  EXPECT_GT(CountPixels(picture, kRed), 0);
  EXPECT_EQ(At(picture, 6 * 0.6 + 1.2, 0), kBlack);
  EXPECT_EQ(At(Cylinder(3, 0, -4), 6 * 0.6 + 1.2, 0), kBlack);
}

TEST_F(QuadricsTest, StraightDownIsDrawnAsStraightUp) {
  const CPicture up = Cylinder(0, 0, 1);
  EXPECT_EQ(Cylinder(0, 0, -1).m_aPixels, up.m_aPixels);
  EXPECT_GT(CountPixels(up, kRed), 0);
  // Its axis runs to +z, not to -z: what lies in front of z = 3 hides all but the upper half.
  const auto covered = [&](double dz) {
    return Drawn([&] {
      draw_cylinder(0, 0, 0, 0, 0, dz, 6, 20, 1);
      glColor3f(0, 0, 1);
      glDisable(GL_BLEND);
      glBegin(GL_QUADS);
      for (const auto& [x, y] : {std::array{-5, -5}, {5, -5}, {5, 5}, {-5, 5}}) glVertex3i(x, y, 3);
      glEnd();
      glEnable(GL_BLEND);
    });
  };
  EXPECT_GT(CountPixels(covered(-1), kRed), 0);
}

TEST_F(QuadricsTest, StateIsAsBefore) {
  GLint depth = 0;
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
  Cylinder(1, 1, 1);
  GLint after = 0;
  glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &after);
  EXPECT_EQ(after, depth);
  EXPECT_TRUE(glIsEnabled(GL_BLEND));
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(QuadricsTest, DiscIsAFilledRing) {
  const CPicture ring = Drawn([] { draw_disc(2, 1, 0, 0, 0, 1, 4, 1); });
  EXPECT_EQ(At(ring, 2, 1), kBlack);
  EXPECT_EQ(At(ring, 2 + 3.5, 1), kRed);
  EXPECT_EQ(At(ring, 2, 1 - 3.5), kRed);
  EXPECT_EQ(At(ring, 2 + 4.2, 1), kBlack);
  EXPECT_EQ(At(ring, 2 + 2.8, 1), kBlack);
}

TEST_F(QuadricsTest, DiscAsThickAsItsRadiusHasNoHole) {
  EXPECT_EQ(At(Drawn([] { draw_disc(2, 1, 0, 0, 0, 1, 4, 4); }), 2.05, 1.05), kRed);
  EXPECT_EQ(At(Drawn([] { draw_disc(2, 1, 0, 0, 0, 1, 4, 9); }), 2.05, 1.05), kRed);
}

TEST_F(QuadricsTest, DiscIsSquareToItsDirection) {
  const CPicture disc = Drawn([] { draw_disc(0, 0, 0, 1, 0, 1, 4, 4); });
  EXPECT_EQ(At(disc, 0, 3.5), kRed);
  EXPECT_EQ(At(disc, 2.6, 0), kRed);
  EXPECT_EQ(At(disc, 3.2, 0), kBlack);
}

TEST_F(QuadricsTest, WithoutAQuadricNothingIsDrawnAndALineSaysSo) {
  g_bNoQuadrics = true;
  m_Grid.m_Console.Take();
  EXPECT_EQ(CountPixels(Cylinder(1, 0, 0), kBlack), kSize * kSize);
  EXPECT_EQ(m_Grid.m_Console.Take(), "Error draw_cylinder\t\tUnable to create a GLUquadricObj\n");
  EXPECT_EQ(CountPixels(Drawn([] { draw_disc(0, 0, 0, 0, 0, 1, 4, 1); }), kBlack), kSize * kSize);
  EXPECT_EQ(m_Grid.m_Console.Take(), "Error draw_disc\t\tUnable to create a GLUquadricObj\n");
}

TEST_F(QuadricsTest, ErrorOfAQuadricEndsTheProgram) {
  // The other style would fork a process whose drawing threads are missing.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  g_bWrongStyle = true;
  const auto fail = [] {
    const CConsoleRedirect redirect(std::cerr);
    draw_cylinder(0, 0, 0, 1, 0, 0, 6, 20, 1);
  };
  EXPECT_EXIT(fail(), ::testing::ExitedWithCode(0), "Erreur de Quadrique \\*{34}\n");
}
