#include <array>
#include <memory>
#include <utility>

#include <FL/Fl_Gl_Window.H>
#include <GL/gl.h>
#include <unistd.h>

#include "app/SolverTimer.h"
#include "drawing/DisplayFlags.h"
#include "support/gui/ToolkitTest.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CImageViewUI.h"

namespace {

using Colour = std::array<GLfloat, 4>;

class ViewsTest : public ToolkitTest {
 protected:
  void Show() {
    m_Window.show();
    m_Window.AttachGrid(Grid());
  }
  std::array<Fl_Gl_Window*, 2> Views() { return {&m_Window.ImageView(), &m_Window.GridView()}; }
  // Has a view drawn and makes its context the current one.
  static void DrawAndEnter(Fl_Gl_Window& view) {
    view.redraw();
    ASSERT_TRUE(RunToolkitUntil([&] { return view.damage() == 0; }));
    view.make_current();
  }

  // What the user sees of a view.
  bool SeesAll(const Fl_Gl_Window& view, CRgb colour) {
    return RunToolkitUntil([&] {
      const auto window = m_Screen.FindWindow(getpid(), m_Window.label());
      if (!window.has_value()) return false;
      const CPixel corner = m_Screen.AreaOf(*window).At({view.x(), view.y()});
      return m_Screen.Capture({corner.m_iX, corner.m_iY, view.w(), view.h()}).IsAll(colour);
    });
  }

  CImageViewUI m_Window{RegisterSolverTimer};
};

// Of the buffer that is drawn to, in the current context.
void FillRed() {
  glClearColor(1, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glClearColor(0, 0, 0, 0);
}

Colour Get(GLenum name) {
  Colour colour{};
  glGetFloatv(name, colour.data());
  return colour;
}

int GetInteger(GLenum name) {
  std::array<GLint, 4> values{};
  glGetIntegerv(name, values.data());
  return values[0];
}

void ExpectDefaults() {
  for (const GLenum capability : std::to_array<GLenum>({GL_LINE_SMOOTH, GL_BLEND, GL_DEPTH_TEST, GL_COLOR_MATERIAL})) {
    EXPECT_TRUE(glIsEnabled(capability)) << capability;
  }
  EXPECT_EQ(GetInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
  EXPECT_EQ(GetInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
  EXPECT_EQ(GetInteger(GL_SHADE_MODEL), GL_SMOOTH);
  EXPECT_EQ(Get(GL_COLOR_CLEAR_VALUE), (Colour{0, 0, 0, 0}));
  Colour specular{};
  glGetMaterialfv(GL_FRONT, GL_SPECULAR, specular.data());
  EXPECT_EQ(specular, (Colour{1, 1, 1, 1}));
  GLfloat shininess = 0;
  glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
  EXPECT_EQ(shininess, 50);
  Colour diffuse{};
  glGetLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse.data());
  EXPECT_EQ(diffuse, (Colour{0, 0, 1, 0}));
}

}  // namespace

TEST_F(ViewsTest, ContextsHaveTheDefaultsOnceDrawn) {
  Show();
  for (Fl_Gl_Window* view : Views()) {
    DrawAndEnter(*view);
    ExpectDefaults();
  }
}

TEST_F(ViewsTest, ViewThatWasHiddenHasTheDefaultsAgain) {
  Show();
  for (Fl_Gl_Window* view : Views()) {
    DrawAndEnter(*view);
    view->hide();
    view->show();
    DrawAndEnter(*view);
    ExpectDefaults();
  }
}

TEST_F(ViewsTest, ViewDrawnBeforeAGridIsAttachedHasTheDefaultsToo) {
  m_Window.show();
  for (Fl_Gl_Window* view : Views()) {
    DrawAndEnter(*view);
    ExpectDefaults();
  }
}

TEST_F(ViewsTest, ViewportFollowsTheSize) {
  Show();
  for (Fl_Gl_Window* view : Views()) DrawAndEnter(*view);
  m_Window.size(1000, 700);
  for (Fl_Gl_Window* view : Views()) {
    DrawAndEnter(*view);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, view->w(), view->h()}));
    EXPECT_GT(view->w(), 430);
  }
}

TEST_F(ViewsTest, DrawingClearsWhatWasThere) {
  Show();
  m_Window.GridView().SetFlag(ModelFlag::kGrid, false);
  m_Window.ImageView().SetMode(EditingMode::Position);
  m_Window.ImageView().SetDisplayFlags(0);
  for (Fl_Gl_Window* view : Views()) {
    DrawAndEnter(*view);
    FillRed();
    view->swap_buffers();
    ASSERT_TRUE(SeesAll(*view, {255, 0, 0}));
    FillRed();
    view->redraw();
    EXPECT_TRUE(SeesAll(*view, kBlack));
  }
}

TEST_F(ViewsTest, ModelViewHasColourDepthAndTwoBuffers) {
  Show();
  DrawAndEnter(m_Window.GridView());
  for (const GLenum bits : std::to_array<GLenum>({GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS}))
    EXPECT_GE(GetInteger(bits), 8);
  EXPECT_GT(GetInteger(GL_DEPTH_BITS), 0);
  EXPECT_TRUE(GetInteger(GL_DOUBLEBUFFER));
}

TEST_F(ViewsTest, DisplayFlagsStartWithGridAndNoTransformation) { EXPECT_EQ(m_Window.GridView().DisplayFlags(), 514U); }

TEST_F(ViewsTest, AttachingSelectsTheNewMode) {
  Grid().Builder().SetWaveletMode(WaveletMode::Simple);
  m_Window.AttachGrid(Grid());
  EXPECT_EQ(Grid().Surface().Mode(), WaveletMode::New);
  EXPECT_EQ(m_Window.GridView().DisplayFlags(), 2U + 2048U);
}

TEST_F(ViewsTest, WordCarriesExactlyTheGridsMode) {
  m_Window.AttachGrid(Grid());
  for (const auto& [mode, bit] : {std::pair{WaveletMode::Simple, 1024U}, {WaveletMode::None, 512U}}) {
    m_Window.GridView().SelectWaveletMode(mode);
    EXPECT_EQ(m_Window.GridView().DisplayFlags(), 2U + bit);
    EXPECT_EQ(Grid().Surface().Mode(), mode);
  }
}

TEST_F(ViewsTest, GridHasBothViewsDrawnAgain) {
  Show();
  for (Fl_Gl_Window* view : Views()) DrawAndEnter(*view);
  GiveWork();
  Grid().Run().SetRunning(false);
  Grid().UpdateGrid();
  for (Fl_Gl_Window* view : Views()) EXPECT_NE(view->damage(), 0);
}

TEST_F(ViewsTest, RunningSolverHasTheViewsDrawnButNotForEveryTick) {
  constexpr int kTicks = 1000;
  Show();
  Grid().Run().SetRunning(true);
  for (Fl_Gl_Window* view : Views()) {
    int drawings = 0;
    for (int tick = 0; tick < kTicks; ++tick) {
      m_Window.RequestRedraw();
      drawings += view->damage() != 0 ? 1 : 0;
      view->clear_damage();
    }
    EXPECT_LT(drawings, kTicks / 2);
  }
}

TEST_F(ViewsTest, InterpolationIsShownInTheImageViewOnly) {
  Show();
  for (Fl_Gl_Window* view : Views()) DrawAndEnter(*view);
  ASSERT_TRUE(Grid().Marks().TraceInterpolation(kOblong.x0, kOblong.y0));
  EXPECT_NE(m_Window.ImageView().damage(), 0);
  EXPECT_EQ(m_Window.GridView().damage(), 0);
}

TEST_F(ViewsTest, GridOutlivesItsWindow) {
  std::make_unique<CImageViewUI>(RegisterSolverTimer)->AttachGrid(Grid());
  GiveWork();
  Grid().UpdateGrid();
  EXPECT_GE(Grid().Solver().Counter(), 0);
}
