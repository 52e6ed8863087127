// The menu Inspect by mouse and keyboard, in the running program.

#include <cmath>

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
  // By how much a part of the photograph is redder than it is blue, on average, from pixel `corner` of the picture on.
  double Redness(CPixel corner) const {
    constexpr int kSide = 30;
    const CPixel place = m_User.OnPhotograph(corner);
    const CScreenshot seen = m_User.See({place.m_iX, place.m_iY, kSide, kSide});
    double sum = 0;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) {
        const CRgb colour = seen.At({x, y});
        sum += colour.m_uRed - colour.m_uBlue;
      }
    }
    return sum / (kSide * kSide);
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

TEST_F(InspectRunTest, MisfitIsNothingRightAfterSavingAndRedWhereTheSurfaceHasRisen) {
  constexpr CPixel kBesideTheSecond{410, 90};
  constexpr CPixel kBesideTheThird{210, 310};
  m_User.ClickOn(Control::ResumeSolver);
  Rest();
  const CScreenshot photograph = m_User.See(m_User.AreaOf(Control::ImageView));
  ASSERT_TRUE(SaveModel("saved.grid"));
  Choose("m");
  ASSERT_TRUE(Changes(photograph));
  const double second = Redness(kBesideTheSecond);
  const double third = Redness(kBesideTheThird);
  // The second rises, the third falls.
  const CPixel right = m_User.OnPhotograph({400, 80});
  m_User.DragSlowly(right, {right.m_iX + 40, right.m_iY}, 3);
  const CPixel left = m_User.OnPhotograph({200, 300});
  m_User.DragSlowly(left, {left.m_iX - 40, left.m_iY}, 3);
  m_User.ClickOn(Control::ResumeSolver);
  Rest();
  EXPECT_TRUE(WaitUntil([&] { return Redness(kBesideTheSecond) > second + 10; })) << Redness(kBesideTheSecond) - second;
  EXPECT_TRUE(WaitUntil([&] { return Redness(kBesideTheThird) < third - 10; })) << Redness(kBesideTheThird) - third;
  ASSERT_TRUE(SaveModel("saved.grid"));
  Rest();
  EXPECT_TRUE(WaitUntil([&] { return std::abs(Redness(kBesideTheSecond) - second) < 1; })) << Redness(kBesideTheSecond);
  EXPECT_TRUE(WaitUntil([&] { return std::abs(Redness(kBesideTheThird) - third) < 1; })) << Redness(kBesideTheThird);
}
