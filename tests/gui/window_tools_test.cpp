// The other windows that the main window opens, the picture they work on, and frames.

#include "support/gui/WindowCommandsTest.h"

TEST_F(WindowCommandsTest, WithoutToolsTheirButtonsAreInactive) {
  EXPECT_FALSE(IsActive(Control::Recorder));
  EXPECT_FALSE(IsActive(Control::Scissors));
  EXPECT_FALSE(IsVisible(Control::LightSources));
}

TEST_F(WindowCommandsTest, UntilAPictureIsLoadedAClickOnTheScissorsGoesToTheRecorder) {
  TestTool& recorder = AddTool(Tool::Recorder);
  TestTool& scissors = AddTool(Tool::Scissors);
  ClickOn(Control::Scissors);
  EXPECT_TRUE(recorder.m_bOpen);
  EXPECT_FALSE(scissors.m_bOpen);
}

TEST_F(WindowCommandsTest, RecorderHoldsTheSolverAndTheEditing) {
  StartSolver();
  m_Window.Solver().PauseForRecorder();
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::Recorder);
  ExpectRunControl(false);
  EXPECT_FALSE(IsActive(Control::PositionConstraint));
  m_Window.Solver().EndRecorder();
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  ExpectRunControl(true);
  EXPECT_TRUE(IsActive(Control::PositionConstraint));
}

TEST_F(WindowCommandsTest, EveryWayOfClosingTheRecorderTurnsItsLampOff) {
  TestTool& recorder = AddTool(Tool::Recorder);
  for (const bool byButton : {true, false}) {
    ClickOn(Control::Recorder);
    EXPECT_TRUE(recorder.m_bOpen);
    EXPECT_TRUE(IsOn(Control::Recorder));
    if (byButton) {
      ClickOn(Control::Recorder);
    } else {
      recorder.Close();
    }
    EXPECT_FALSE(recorder.m_bOpen);
    EXPECT_FALSE(IsOn(Control::Recorder));
  }
}

TEST_F(WindowCommandsTest, PictureBringsTheTools) {
  ShowWindow();
  for (const Tool tool : {Tool::LightSources, Tool::Recorder, Tool::Scissors}) AddTool(tool);
  LoadPicture();
  for (const Control control : {Control::LightSources, Control::Recorder, Control::Scissors}) {
    EXPECT_TRUE(IsVisible(control));
    EXPECT_TRUE(IsActive(control));
  }
  EXPECT_LE(Widget(Control::Recorder).y() + Widget(Control::Recorder).h(), Widget(Control::Scissors).y());
}

TEST_F(WindowCommandsTest, PictureIsShownInBothViews) {
  ShowWindow();
  LoadPicture();
  for (const MenuEntry entry : {MenuEntry::ImagePicture, MenuEntry::ModelTexture}) {
    EXPECT_TRUE(Menu().IsActive(entry));
    EXPECT_TRUE(Menu().IsChecked(entry));
  }
  EXPECT_EQ(ImageFlags(), 14U + 64U);
  EXPECT_EQ(m_Window.GridView().DisplayFlags(), 2U + 64U + 2048U);
  LoadPicture();
  EXPECT_EQ(ImageFlags(), 14U + 64U) << "a second picture leaves what is on";
}

TEST_F(WindowCommandsTest, PictureThatCannotBeReadChangesNothing) {
  ShowWindow();
  m_Dialogs.m_File = (m_Directory.Path() / "missing.bmp").string();
  Menu().Choose(MenuEntry::LoadImage);
  EXPECT_FALSE(Menu().IsActive(MenuEntry::ImagePicture));
  EXPECT_FALSE(IsVisible(Control::LightSources));
  EXPECT_EQ(ImageFlags(), 14U);
}

TEST_F(WindowCommandsTest, ToolsAreToldOfAPictureAndTheScissorsClose) {
  ShowWindow();
  TestTool& lights = AddTool(Tool::LightSources);
  TestTool& scissors = AddTool(Tool::Scissors);
  LoadPicture();
  ClickOn(Control::LightSources);
  ClickOn(Control::Scissors);
  EXPECT_TRUE(lights.m_bOpen && scissors.m_bOpen);
  LoadPicture();
  EXPECT_EQ(lights.m_iPictures, 2);
  EXPECT_TRUE(lights.m_bOpen);
  EXPECT_FALSE(scissors.m_bOpen);
  EXPECT_FALSE(IsOn(Control::Scissors));
}

TEST_F(WindowCommandsTest, ScissorsStopTheSolver) {
  ShowWindow();
  TestTool& scissors = AddTool(Tool::Scissors);
  LoadPicture();
  Grid().Run().SetRunning(true);
  ClickOn(Control::Scissors);
  EXPECT_TRUE(scissors.m_bOpen);
  EXPECT_TRUE(IsOn(Control::Scissors));
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  ClickOn(Control::Scissors);
  EXPECT_FALSE(IsOn(Control::Scissors));
  EXPECT_FALSE(Grid().Run().IsRunning());
}

TEST_F(WindowCommandsTest, ScissorsThatDoNotTakeThePictureSaySoAndStopNothing) {
  ShowWindow();
  AddTool(Tool::Scissors).m_bOpens = false;
  LoadPicture();
  Grid().Run().SetRunning(true);
  ClickOn(Control::Scissors);
  EXPECT_EQ(m_Dialogs.m_asNotices, Texts{"The picture is too large for the scissors: its sides must not be longer than "
                                         "32767 pixels, and the memory must hold it a second time."});
  EXPECT_FALSE(IsOn(Control::Scissors));
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(WindowCommandsTest, LightSourcesGoOnAndOffWithTheirButton) {
  ShowWindow();
  TestTool& lights = AddTool(Tool::LightSources);
  LoadPicture();
  for (const bool open : {true, false}) {
    ClickOn(Control::LightSources);
    EXPECT_EQ(lights.m_bOpen, open);
    EXPECT_EQ(IsOn(Control::LightSources), open);
  }
}

// Frames.

TEST_F(WindowCommandsTest, ShotsAskForAFileAndKeepTheSolver) {
  ShowWindow();
  StartSolver();
  for (const MenuEntry entry : {MenuEntry::ShootImage, MenuEntry::ShootModel}) {
    Menu().Choose(entry);
    EXPECT_EQ(m_Dialogs.m_aChoosers.back(),
              (std::pair<std::string, std::string>("give a name for current frame buffer:", "*.bmp")));
    EXPECT_TRUE(Grid().Run().IsRunning());
  }
}

TEST_F(WindowCommandsTest, ShotsBringTheOtherViewBack) {
  ShowWindow();
  m_Dialogs.m_File = (m_Directory.Path() / "frame.bmp").string();
  for (const MenuEntry entry : {MenuEntry::ShootImage, MenuEntry::ShootModel}) {
    Menu().Choose(entry);
    EXPECT_TRUE(m_Window.ImageView().visible());
    EXPECT_TRUE(m_Window.GridView().visible());
  }
}
