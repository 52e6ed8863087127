#include "support/gui/PanelTest.h"
#include "ui/drawing/DialogPlacement.h"

namespace {

class DialogPlacementTest : public PanelTest {
 protected:
  // Opens a dialog of this size while the main window covers `area`.
  void Open(CArea area, int width = 300, int height = 200) {
    m_MainWindow.resize(area.m_iX, area.m_iY, area.m_iWidth, area.m_iHeight);
    m_Dialog.size(width, height);
    OpenBeside(m_Dialog, m_MainWindow);
  }
  static int RightOf(const Fl_Window& window) { return window.x() + window.w(); }

  Fl_Window m_Dialog{300, 200, "Dialog"};
};

}  // namespace

TEST_F(DialogPlacementTest, RightSideComesFirst) {
  Open({400, 100, 500, 400});
  EXPECT_GE(m_Dialog.x(), RightOf(m_MainWindow));
  EXPECT_LE(RightOf(m_Dialog), Fl::w());
  EXPECT_EQ(m_Dialog.y(), 200);
}

TEST_F(DialogPlacementTest, LeftSideComesNext) {
  Open({Fl::w() - 520, 100, 500, 400});
  EXPECT_LE(RightOf(m_Dialog), m_MainWindow.x());
  EXPECT_GE(m_Dialog.x(), 0);
}

TEST_F(DialogPlacementTest, OverTheMiddleWithoutRoomBeside) {
  Open({50, 100, Fl::w() - 100, 400});
  EXPECT_EQ(m_Dialog.x() + m_Dialog.w() / 2, m_MainWindow.x() + m_MainWindow.w() / 2);
}

// A panel stays open, so it must not lie over the middle of a view.

TEST_F(DialogPlacementTest, APanelGoesBelowWithoutRoomBeside) {
  m_Dialog.set_non_modal();
  Open({50, 100, Fl::w() - 100, 400});
  EXPECT_GE(m_Dialog.y(), 500);
  EXPECT_EQ(m_Dialog.x() + m_Dialog.w() / 2, m_MainWindow.x() + m_MainWindow.w() / 2);
}

TEST_F(DialogPlacementTest, APanelGoesAboveWithoutRoomBelow) {
  m_Dialog.set_non_modal();
  Open({50, Fl::h() - 500, Fl::w() - 100, 480});
  EXPECT_LE(m_Dialog.y() + m_Dialog.h(), m_MainWindow.y());
  EXPECT_GE(m_Dialog.y(), 0);
}

TEST_F(DialogPlacementTest, APanelGoesToTheCornerWithoutAnyRoom) {
  m_Dialog.set_non_modal();
  Open({50, 60, Fl::w() - 100, Fl::h() - 100});
  EXPECT_LE(RightOf(m_Dialog), Fl::w());
  EXPECT_GT(RightOf(m_Dialog), Fl::w() - 40);
  EXPECT_LE(m_Dialog.y() + m_Dialog.h(), Fl::h());
  EXPECT_GT(m_Dialog.y() + m_Dialog.h(), Fl::h() - 60);
}

TEST_F(DialogPlacementTest, StaysOnTheScreen) {
  for (const CArea area : {CArea{-200, -300, 300, 100}, CArea{Fl::w() - 100, Fl::h() - 100, 600, 400}}) {
    Open(area);
    EXPECT_GE(m_Dialog.x(), 0);
    EXPECT_GE(m_Dialog.y(), 0);
    EXPECT_LE(RightOf(m_Dialog), Fl::w());
    EXPECT_LE(m_Dialog.y() + m_Dialog.h(), Fl::h());
    m_Dialog.hide();
  }
}

TEST_F(DialogPlacementTest, TooLargeADialogKeepsItsTitleBarOnTheScreen) {
  Open({100, 100, 400, 300}, Fl::w() + 100, Fl::h() + 100);
  EXPECT_EQ(m_Dialog.x(), 0);
  EXPECT_GT(m_Dialog.y(), 0);
  EXPECT_LT(m_Dialog.y(), 100);
}

TEST_F(DialogPlacementTest, OpenDialogStaysWhereItIs) {
  Open({400, 100, 500, 400});
  ASSERT_TRUE(Appears("Dialog"));
  m_Dialog.position(70, 80);
  OpenBeside(m_Dialog, m_MainWindow);
  EXPECT_EQ(m_Dialog.x(), 70);
  EXPECT_EQ(m_Dialog.y(), 80);
}
