// The menu Inspect by mouse and keyboard, in the running program.

#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

class InspectRunTest : public RunTest {
 protected:
  void SetUp() override {
    RunTest::SetUp();
    m_User.ClickOn(Control::PositionConstraint);
    for (const CPixel pixel : {CPixel{60, 60}, CPixel{400, 80}, CPixel{200, 300}}) PlaceHeight(pixel, 40);
    Rest();
  }
  // With the mouse where it changes nothing.
  void Rest() const {
    MovePointer(m_User.PlaceOf(Control::Iterations));
    m_Program.Rests();
  }
  // By the underlined letter.
  void Choose(const char* letter) const {
    m_User.ChooseEntry(MenuTitle::Inspect, letter);
    Rest();
  }
  bool Changes(const CScreenshot& before) const {
    return WaitUntil([&] { return !(m_User.See(m_User.AreaOf(Control::ImageView)) == before); });
  }
  bool ComesTo(const CScreenshot& wanted) const {
    return WaitUntil([&] { return m_User.See(m_User.AreaOf(Control::ImageView)) == wanted; });
  }
};

}  // namespace

TEST_F(InspectRunTest, OverlaysComeAndGoAndLeaveNothingBehind) {
  const CScreenshot before = m_User.See(m_User.AreaOf(Control::ImageView));
  for (const char* letter : {"e", "m", "f", "i"}) {
    Choose(letter);
    EXPECT_TRUE(Changes(before)) << letter;
    Choose(letter);
    EXPECT_TRUE(ComesTo(before)) << letter;
  }
}

TEST_F(InspectRunTest, CoordinatesTakeTheirLineAndGiveItBack) {
  const CScreenshot before = m_User.See(m_User.AreaOf(Control::ImageView));
  const CArea view = m_User.AreaOf(Control::ImageView);
  const CArea line{view.m_iX, view.m_iY + view.m_iHeight - 16, view.m_iWidth, 16};
  Choose("c");
  ASSERT_TRUE(Changes(before));
  const CScreenshot empty = m_User.See(line);
  MovePointer(m_User.OnPhotograph({200, 150}));
  EXPECT_TRUE(WaitUntil([&] { return !(m_User.See(line) == empty); }));
  Rest();
  EXPECT_TRUE(WaitUntil([&] { return m_User.See(line) == empty; }));
  Choose("c");
  EXPECT_TRUE(ComesTo(before));
}
