// Undo and redo in the window: the menu, the help line, keys over tool windows, lights, and a picture of nothing
// changed.

#include <string>
#include <vector>

#include <FL/Fl.H>
#include <FL/Fl_Input.H>

#include "support/ConstraintBuilders.h"
#include "support/KeyTable.h"
#include "support/gui/WindowTest.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CHelpLine.h"

namespace {

class WindowHistoryTest : public WindowTest {
 protected:
  // As the toolkit does once per round.
  void Round() { Fl::check(); }
  void Edit(double z) {
    Grid().AddPtCstr(HeightCstr(7, 21.5, z));
    Round();
  }
  // A key that no widget has used, over the main window or any other.
  static bool TypeUnused(const CTypedKey& key, Fl_Window& window) {
    return WithTypedKey(key, [&] { return Fl::handle(FL_KEYBOARD, &window) != 0; });
  }
  std::string TextOf(MenuEntry entry) {
    Menu().TakeShortcut();
    for (int k = 0; k < Menu().size(); ++k) {
      const Fl_Menu_Item& item = Menu().menu()[k];
      if (item.text != nullptr && item.argument() == static_cast<long>(entry)) return item.text;
    }
    return "";
  }
  std::size_t Count() { return Grid().Constraints().Points().size(); }

  const CTypedKey m_Undo{'z', FL_CTRL, "\032"};
  const CTypedKey m_Redo{'y', FL_CTRL, "\031"};
};

}  // namespace

TEST_F(WindowHistoryTest, TheMenuNamesTheSteps) {
  EXPECT_EQ(TextOf(MenuEntry::Undo), "&Undo");
  EXPECT_EQ(TextOf(MenuEntry::Redo), "&Redo");
  EXPECT_FALSE(Menu().IsActive(MenuEntry::Undo));
  EXPECT_FALSE(Menu().IsActive(MenuEntry::Redo));
  Edit(2);
  EXPECT_EQ(TextOf(MenuEntry::Undo), "&Undo add point");
  EXPECT_TRUE(Menu().IsActive(MenuEntry::Undo));
  Menu().Choose(MenuEntry::Undo);
  Round();
  EXPECT_EQ(Count(), 0U);
  EXPECT_EQ(TextOf(MenuEntry::Undo), "&Undo");
  EXPECT_EQ(TextOf(MenuEntry::Redo), "&Redo add point");
  EXPECT_FALSE(Menu().IsActive(MenuEntry::Undo));
  EXPECT_TRUE(Menu().IsActive(MenuEntry::Redo));
  Menu().Choose(MenuEntry::Redo);
  Round();
  EXPECT_EQ(Count(), 1U);
}

TEST_F(WindowHistoryTest, TheHelpLineAndTheConsoleSayWhatWasUndone) {
  Edit(2);
  m_Grid.m_Console.Take();
  Menu().Choose(MenuEntry::Undo);
  EXPECT_STREQ(m_Window.HelpLine().value(), "Undone: add point");
  EXPECT_NE(m_Grid.m_Console.Take().find("Undone: add point\n"), std::string::npos);
  Menu().Choose(MenuEntry::Redo);
  EXPECT_STREQ(m_Window.HelpLine().value(), "Done again: add point");
}

TEST_F(WindowHistoryTest, KeysWorkOverToolWindows) {
  ShowWindow();
  Edit(2);
  Fl_Window tool(200, 100);
  Fl_Input field(10, 10, 100, 25);
  tool.end();
  tool.show();
  Fl::focus(&tool);
  EXPECT_TRUE(TypeUnused(m_Undo, tool));
  EXPECT_EQ(Count(), 0U);
  EXPECT_TRUE(TypeUnused(m_Redo, tool));
  EXPECT_EQ(Count(), 1U);
  field.take_focus();
  TypeUnused(m_Undo, tool);
  EXPECT_EQ(Count(), 1U);
  Fl::focus(&tool);
  tool.hide();
  tool.set_modal();
  tool.show();
  TypeUnused(m_Undo, tool);
  EXPECT_EQ(Count(), 1U);
}

TEST_F(WindowHistoryTest, DuringADragNothingIsUndone) {
  Edit(2);
  Fl::pushed(&m_Window.ImageView());
  Menu().Choose(MenuEntry::Undo);
  Round();
  EXPECT_EQ(Count(), 1U);
  Fl::pushed(nullptr);
  Round();
  EXPECT_EQ(Count(), 1U);
}

TEST_F(WindowHistoryTest, ACurveInProgressKeepsItsHelpAndItsEnd) {
  m_Window.ImageView().SetMode(EditingMode::Curve);
  Grid().CurveEdits().AppendPending(1, 22);
  Round();
  Grid().CurveEdits().CancelPending();
  Round();
  Menu().Choose(MenuEntry::Undo);
  EXPECT_FALSE(Grid().Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(m_Window.HelpLine().CurrentHelp(), HelpText::kCurveInProgress);
  Menu().Choose(MenuEntry::Undo);
  EXPECT_TRUE(Grid().Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(m_Window.HelpLine().CurrentHelp(), HelpText::kCurves);
}

TEST_F(WindowHistoryTest, ACurveThatAnotherModeGaveUpGoesOnInItsOwn) {
  m_Window.ImageView().SetMode(EditingMode::Curve);
  Grid().CurveEdits().AppendPending(1, 22);
  Round();
  ClickOn(Control::PositionConstraint);
  Round();
  ASSERT_TRUE(Grid().Constraints().PendingCurve().IsIdle());
  Menu().Choose(MenuEntry::Undo);
  EXPECT_FALSE(Grid().Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(m_Window.ImageView().Mode(), EditingMode::Curve);
  EXPECT_TRUE(IsOn(Control::CurveConstraint));
  EXPECT_FALSE(IsOn(Control::PositionConstraint));
  EXPECT_TRUE(IsActive(Control::CurveType));
}

TEST_F(WindowHistoryTest, TheOtherResolutionTakesItsLabelAlong) {
  const Fl_Widget& button = m_Window.Widget(Control::SwitchResolution);
  Grid().Run().Post(Operation::kTransferToHigh);
  Round();
  ASSERT_EQ(g_bHighRes, 1);
  Menu().Choose(MenuEntry::Undo);
  EXPECT_STREQ(button.label(), "Switch to HR");
  Menu().Choose(MenuEntry::Redo);
  EXPECT_STREQ(button.label(), "Switch to LR");
}

TEST_F(WindowHistoryTest, AModeComesBackWithItsMark) {
  Menu().Choose(MenuEntry::SimpleWavelets);
  Grid().Reset();
  Round();
  Menu().Choose(MenuEntry::NoWavelets);
  Menu().Choose(MenuEntry::Undo);
  EXPECT_EQ(Grid().Surface().Mode(), WaveletMode::Simple);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::SimpleWavelets));
}

TEST_F(WindowHistoryTest, TheCameraComesBackWithItsRectangle) {
  CCamera camera = m_Window.GridView().Camera();
  camera.m_fTheta = 40;
  m_Window.GridView().SetCamera(camera);
  Grid().Gate().Do(Edit::NewGrid, [&] { Grid().Initialize(2, false, 0, 0, 1, 1); });
  m_Window.GridView().ResetCamera();
  EXPECT_NE(m_Window.GridView().Camera().m_fTheta, 40);
  Menu().Choose(MenuEntry::Undo);
  EXPECT_EQ(m_Window.GridView().Camera().m_fTheta, 40);
}
