// A tear from one edge of the image view to the other, drawn with the real mouse, lets go right to the border.

#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "support/UpdateBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr int kHigh = 43;  // pixels of a drag; 10 model units
constexpr int kLow = -9;   // about -2

class TearRunTest : public RunTest {
 protected:
  // The image view as it is now, whatever the size of the window.
  CArea View() const { return m_Program.ViewAreas().at(0); }
  CPixel OnScreen(CPixel inView) const {
    const CArea view = View();
    return m_Program.MainArea().At(view.At(inView));
  }
  // Where a row of the view lies in the model.
  double InModel(int row) const { return 100 * (1 - (row + 0.5) / View().m_iHeight); }
  // The first row from `row` on that lies next to a lattice line: amid a step even an end off the border opens it.
  int LatticeRow(int row) const {
    const auto offset = [&] { return InModel(row) * 1.28 - std::floor(InModel(row) * 1.28); };
    while (offset() < 0.03 || offset() > 0.1) ++row;
    return row;
  }
  // A position discontinuity between two pixels of the view.
  void DrawTear(CPixel from, CPixel to) const {
    m_User.ClickAt(OnScreen(from));
    MovePointer(OnScreen(to));
    m_Program.Rests();
    m_User.Type("Return");
  }
  void Resize(int width, int height) const {
    m_Program.Screen().AskForSize(m_Program.MainWindow(), width, height);
    ASSERT_TRUE(WaitUntil([&] {
      const CArea area = m_Program.MainArea();
      return area.m_iWidth == width && area.m_iHeight == height;
    }));
    m_Program.Rests();
  }
  void ChooseTears() const {
    m_User.ClickOn(Control::CurveConstraint);
    m_User.ClickOn(Control::PositionDiscontinuity);
  }
  // Three heights above the line from the first to the last column and three below.
  void PlaceHeights() const {
    m_User.ClickOn(Control::PositionConstraint);
    for (const CPixel above : {CPixel{100, 60}, CPixel{300, 40}, CPixel{500, 80}}) PlaceHeight(above, kHigh);
    for (const CPixel below : {CPixel{100, 330}, CPixel{300, 360}, CPixel{500, 340}}) PlaceHeight(below, kLow);
  }
  // The steps across the tear, whose ends lie on these heights of the model at its left and right border.
  void ExpectWholeStep(double left, double right) const {
    m_User.ClickOn(Control::ResumeSolver);
    ASSERT_TRUE(m_Program.Rests());
    CTestGrid saved;
    ASSERT_TRUE(ReadModel(saved.m_Grid));
    ASSERT_EQ(saved.m_Grid.Constraints().Curves().size(), 1U);
    const double step = kUnit * (kHigh - kLow);
    for (const double x : {1.0, 10.0, 50.0, 90.0, 99.0}) {
      const double y = left + (right - left) * x / 100;
      EXPECT_NEAR(SurfaceHeight(saved.m_Grid, x, y + 3) - SurfaceHeight(saved.m_Grid, x, y - 3), step, 0.05) << x;
    }
  }

  static constexpr double kUnit = 100.0 / 430;
};

}  // namespace

TEST_F(TearRunTest, FromTheFirstToTheLastColumnOfTheView) {
  PlaceHeights();
  ChooseTears();
  const int row = LatticeRow(210);
  DrawTear({0, row}, {View().m_iWidth - 1, row});
  ExpectWholeStep(InModel(row), InModel(row));
}

TEST_F(TearRunTest, SlantingFromTheFirstToTheLastColumnOfTheView) {
  PlaceHeights();
  ChooseTears();
  const int left = LatticeRow(150);
  const int right = LatticeRow(270);
  DrawTear({0, left}, {View().m_iWidth - 1, right});
  ExpectWholeStep(InModel(left), InModel(right));
}

TEST_F(TearRunTest, FromTheFirstToTheLastColumnOfTheViewOfALargerWindow) {
  PlaceHeights();
  ChooseTears();
  const CArea before = View();
  Resize(1190, 900);
  EXPECT_GT(View().m_iWidth, before.m_iWidth);
  EXPECT_GT(View().m_iHeight, before.m_iHeight);
  const int row = LatticeRow(330);
  const double y = InModel(row);
  DrawTear({0, row}, {View().m_iWidth - 1, row});
  Resize(870, 660);
  ExpectWholeStep(y, y);
}
