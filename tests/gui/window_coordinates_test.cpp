// The line of coordinates below the views.

#include <string>

#include "support/UpdateBuilders.h"
#include "support/gui/WindowTest.h"
#include "ui/window/CCoordinateLine.h"

namespace {

class WindowCoordinatesTest : public WindowTest {
 protected:
  WindowCoordinatesTest() {
    m_Window.SetServices(Services());
    AddAll(Grid(), SomeConstraints());
    for (int k = 0; k < 50; ++k) Grid().UpdateGrid();
  }
  const CCoordinateLine& Line() { return m_Window.CoordinateLine(); }
  std::string Text() { return Line().label() == nullptr ? "" : Line().label(); }
  // At a pixel of a view, counted from its upper left corner.
  void Send(int event, Fl_Window& view, int x, int y) {
    Fl::e_x = x;
    Fl::e_y = y;
    Fl::e_state = 0;
    view.handle(event);
  }
};

}  // namespace

TEST_F(WindowCoordinatesTest, TheViewsLeaveItEighteenPixels) {
  const int height = m_Window.ImageView().h();
  EXPECT_FALSE(Line().visible());
  Menu().Choose(MenuEntry::Coordinates);
  EXPECT_TRUE(Line().visible());
  for (const Fl_Widget* view :
       {static_cast<Fl_Widget*>(&m_Window.ImageView()), static_cast<Fl_Widget*>(&m_Window.GridView())}) {
    EXPECT_EQ(view->h(), height - 18);
    EXPECT_GE(Line().y(), view->y() + view->h());
  }
  EXPECT_LE(Line().y() + Line().h(), Widget(Control::LeftPanel).y());
  EXPECT_GE(Line().h(), 15);
  Menu().Choose(MenuEntry::Coordinates);
  EXPECT_EQ(m_Window.ImageView().h(), height);
  EXPECT_FALSE(Line().visible());
}

TEST_F(WindowCoordinatesTest, SaysWhatIsUnderTheMouseInTheImageView) {
  Menu().Choose(MenuEntry::Coordinates);
  CImageView& view = m_Window.ImageView();
  Send(FL_MOVE, view, view.w() / 2, view.h() / 2);
  EXPECT_EQ(Text().substr(0, 2), "x ");
  EXPECT_NE(Text().find("dz/dy"), std::string::npos);
  const std::string before = Text();
  Send(FL_MOVE, view, view.w() / 3, view.h() / 2);
  EXPECT_NE(Text(), before);
  Send(FL_LEAVE, view, -1, view.h() / 2);
  EXPECT_EQ(Text(), "");
}

TEST_F(WindowCoordinatesTest, SaysWhatTheSurfaceHasUnderTheMouseInTheModelView) {
  Menu().Choose(MenuEntry::Coordinates);
  CGridView& view = m_Window.GridView();
  Send(FL_MOVE, view, view.w() / 2, view.h() / 2);
  // The camera looks at the middle from above.
  const CExtent& e = Grid().Surface().Lattice().Extent();
  EXPECT_NEAR(std::stod(Text().substr(2)), (e.x0 + e.x1) / 2, 0.1) << Text();
  Send(FL_MOVE, view, 1, 1);
  EXPECT_EQ(Text(), "") << "beside the surface";
}

TEST_F(WindowCoordinatesTest, SaysTheSlopesOfAPlaneInBothViews) {
  const auto numberAfter = [this](const std::string& name) {
    const std::size_t at = Text().find(name);
    EXPECT_NE(at, std::string::npos) << Text();
    return at == std::string::npos ? 0 : std::stod(Text().substr(at + name.size()));
  };
  SetSurface(Grid(), CRamp{0.75, -0.25, 9});
  Grid().ComputeNormalsOnly();
  Menu().Choose(MenuEntry::Coordinates);
  CImageView& image = m_Window.ImageView();
  Send(FL_MOVE, image, image.w() / 2, image.h() / 2);
  EXPECT_NEAR(numberAfter("dz/dx "), 0.75, 1e-3);
  EXPECT_NEAR(numberAfter("dz/dy "), -0.25, 1e-3);
  Send(FL_LEAVE, image, -1, image.h() / 2);
  CGridView& model = m_Window.GridView();
  Send(FL_MOVE, model, model.w() / 2, model.h() / 2);
  EXPECT_NEAR(numberAfter("dz/dx "), 0.75, 1e-3);
  EXPECT_NEAR(numberAfter("dz/dy "), -0.25, 1e-3);
}

TEST_F(WindowCoordinatesTest, TicksLeaveItAlone) {
  Menu().Choose(MenuEntry::Coordinates);
  CImageView& view = m_Window.ImageView();
  Send(FL_MOVE, view, view.w() / 2, view.h() / 2);
  const std::string before = Text();
  Grid().AddPtCstr(HeightCstr(6, 23, 90));
  for (int k = 0; k < 20; ++k) Grid().UpdateGrid();
  EXPECT_EQ(Text(), before);
  Send(FL_MOVE, view, view.w() / 2, view.h() / 2);
  EXPECT_NE(Text(), before);
}

TEST_F(WindowCoordinatesTest, WithoutItNothingIsLookedUp) {
  CImageView& view = m_Window.ImageView();
  Send(FL_MOVE, view, view.w() / 2, view.h() / 2);
  EXPECT_EQ(Text(), "");
}
