// Who has the keyboard while a text field of another window is open, with the real mouse and keys.

#include <optional>
#include <string>

#include <FL/Fl_Input.H>
#include <FL/Fl_Window.H>
#include <unistd.h>

#include "support/gui/ClickUntil.h"
#include "support/gui/Input.h"
#include "support/gui/WindowTest.h"

namespace {

class FieldFocusTest : public WindowTest {
 protected:
  void SetUp() override {
    // The windows of the test before may still be on the screen.
    const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    m_Window.copy_label((test + " main").c_str());
    m_Tool.copy_label(test.c_str());
    m_Window.position(20, 40);
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    // A new window may be given the keyboard late, which would take it from the field again.
    ASSERT_TRUE(RunToolkitUntil([this] { return HasKeyboard(m_Window.label()); }));
    ClickOn(Control::PositionConstraint);
    Grid().AddPtCstr({20, 20, PtCstrKind::kPosition, 5});
    Grid().SelectNextPtCstr(PtCstrKind::kPosition);
    m_Tool.position(920, 100);
    m_Tool.show();
    ASSERT_TRUE(RunToolkitUntil([this] { return m_Tool.damage() == 0 && AreaOf(m_Tool.label()).m_iX > 900; }));
    // The window manager may still be about to place it.
    ASSERT_TRUE(ClickUntil(
        [this] {
          return AreaOf(m_Tool.label()).At({60, 22});
        },
        [this] { return Fl::focus() == m_pField && HasKeyboard(m_Tool.label()); }));
    m_pField->value("12");
  }

  static CPixel Middle(const Fl_Window& view) { return {view.x_root() + view.w() / 2, view.y_root() + view.h() / 2}; }
  bool FieldBecomes(const std::string& text) {
    return RunToolkitUntil([&] { return m_pField->value() == text; });
  }
  bool PointerComesTo(Fl_Window& view) {
    const CPixel middle = Middle(view);
    MovePointer({middle.m_iX - 9, middle.m_iY - 9});
    MovePointer(middle);
    return RunToolkitUntil([&] { return Fl::belowmouse() == &view && Fl::event_x_root() == middle.m_iX; });
  }
  // From the window manager, which gives it later than the toolkit.
  bool HasKeyboard(const char* title) {
    const std::optional<WindowId> window = m_Screen.FindWindow(getpid(), title);
    return window.has_value() && m_Screen.HasFocus(*window);
  }
  CArea AreaOf(const char* title) {
    const std::optional<WindowId> window = m_Screen.FindWindow(getpid(), title);
    return window.has_value() ? m_Screen.AreaOf(*window) : CArea{};
  }
  std::size_t Count() { return Grid().Constraints().Points().size(); }

  Fl_Window m_Tool{200, 60};
  Fl_Input* m_pField = nullptr;

  FieldFocusTest() {
    m_Tool.begin();
    m_pField = new Fl_Input(10, 10, 100, 25);
    m_Tool.end();
  }
};

}  // namespace

TEST_F(FieldFocusTest, CrossingAViewLeavesTheKeyboardToTheField) {
  std::string text = "12";
  for (Fl_Window* view :
       {static_cast<Fl_Window*>(&m_Window.ImageView()), static_cast<Fl_Window*>(&m_Window.GridView())}) {
    ASSERT_TRUE(PointerComesTo(*view));
    PressKey("BackSpace");
    text.pop_back();
    EXPECT_TRUE(FieldBecomes(text));
    EXPECT_EQ(Count(), 1U);
  }
}

TEST_F(FieldFocusTest, PressInAViewTakesTheKeyboard) {
  for (Fl_Window* view :
       {static_cast<Fl_Window*>(&m_Window.GridView()), static_cast<Fl_Window*>(&m_Window.ImageView())}) {
    m_pField->take_focus();
    ASSERT_TRUE(PointerComesTo(*view));
    EXPECT_EQ(Fl::focus(), m_pField);
    // With this button nothing is made or turned.
    Click(Middle(*view), 2);
    EXPECT_TRUE(RunToolkitUntil([this] { return Fl::focus() == &m_Window.ImageView(); }));
  }
  PressKey("BackSpace");
  EXPECT_TRUE(RunToolkitUntil([this] { return Count() == 0; }));
  EXPECT_STREQ(m_pField->value(), "12");
}

TEST_F(FieldFocusTest, WithoutAFieldCrossingTakesTheKeyboard) {
  Fl::focus(&m_Tool);
  m_Window.ImageView().handle(FL_ENTER);
  EXPECT_EQ(Fl::focus(), &m_Window.ImageView());
  m_pField->take_focus();
  m_Window.GridView().handle(FL_MOVE);
  EXPECT_EQ(Fl::focus(), m_pField);
  m_pField->readonly(1);
  m_Window.GridView().handle(FL_MOVE);
  EXPECT_EQ(Fl::focus(), &m_Window.ImageView()) << "nothing can be typed there";
}
