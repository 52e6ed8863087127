// What the secondary windows have in common with the main window: the grid, the views and the files.

#include <algorithm>
#include <string>
#include <vector>

#include <FL/Fl_Choice.H>
#include <FL/Fl_Output.H>
#include <FL/Fl_Value_Slider.H>

#include "io/Bmp.h"
#include "support/gui/ModelViewTest.h"
#include "support/gui/Pictures.h"
#include "support/gui/ToolSetTest.h"

// The reference depth.

TEST_F(ToolSetTest, ReferenceDepthIsLoadedSetAndRemoved) {
  Menu().Choose(MenuEntry::ReferenceDepth);
  Fl_Window& panel = Panel("Reference depth");
  EXPECT_FALSE(Find<Fl_Button>(panel, "Remove").active());
  WriteText(Path("ramp.pfm"), "Pf\n2 2\n-1\n" + std::string(8, '\0') + std::string("\0\0\x80\x3f\0\0\x80\x3f", 8));
  m_Dialogs.m_File = Path("ramp.pfm");
  Press(Find<Fl_Button>(panel, "Load..."));
  ASSERT_TRUE(Grid().Reference().HasMap());
  const auto& file = Find<Fl_Output>(panel, "Depth map");
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(file.value()) == "ramp.pfm"; }));
  EXPECT_FALSE(Find<Fl_Choice>(panel, "0 in the map is").active()) << "floats have no such 0";
  auto& strength = Find<Fl_Value_Slider>(panel, "Strength");
  EXPECT_EQ(strength.value(), 0.8);
  strength.value(0.25);
  strength.do_callback();
  EXPECT_EQ(Grid().Reference().Value().m_Settings.m_fStrength, 0.25);
  Press(Find<Fl_Button>(panel, "Remove"));
  EXPECT_FALSE(Grid().Reference().HasMap());
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(file.value()).empty(); }));
  panel.hide();
}

TEST_F(ToolSetTest, FileThatIsNoDepthMapIsToldAndNothingChanges) {
  Menu().Choose(MenuEntry::ReferenceDepth);
  Fl_Window& panel = Panel("Reference depth");
  WriteText(Path("rubbish.pfm"), "rubbish");
  m_Dialogs.m_File = Path("rubbish.pfm");
  Press(Find<Fl_Button>(panel, "Load..."));
  ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U);
  EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The file " + Path("rubbish.pfm") + " is not a depth map"));
  EXPECT_FALSE(Grid().Reference().HasMap());
  panel.hide();
}

// Files.

TEST_F(ToolSetTest, SavesBeforeAnyIterationTheBytesOfTheProgramWithoutAWindow) {
  WriteText(Path("model.grid"), GridText(CFullModel().m_Grid));
  m_Dialogs.m_File = Path("model.grid");
  Menu().Choose(MenuEntry::LoadGrid);
  m_Dialogs.m_File = Path("window.grid");
  // The solver's next tick saves before it iterates.
  Choose(kSaveGrid);
  ASSERT_TRUE(RunBatch("--iterations 0"));
  EXPECT_EQ(BytesOf(Path("window.grid")), BytesOf(Path("batch.grid")));
}

TEST_F(ToolSetTest, TornBorderIsThatOfTheProgramWithoutAWindowWhateverPictureAndWindow) {
  CTestGrid torn(5, 2);
  AddCurveThrough(torn.m_Grid, CurveType::kPosition, {{4, 20.0234}, {6, 25.9766}});
  torn.m_Grid.PerformPendingWork();
  WriteText(Path("model.grid"), GridText(torn.m_Grid));
  ASSERT_TRUE(RunBatch("--iterations 0"));
  const std::string batch = BytesOf(Path("batch.grid"));
  const auto saved = [this] {
    m_Dialogs.m_File = Path("model.grid");
    Menu().Choose(MenuEntry::LoadGrid);
    m_Dialogs.m_File = Path("window.grid");
    Choose(kSaveGrid);
    return BytesOf(Path("window.grid"));
  };
  EXPECT_EQ(saved(), batch);
  m_Window.size(1200, 900);
  EXPECT_EQ(saved(), batch) << "in a larger window";
  LoadPicture();
  EXPECT_EQ(saved(), batch) << "with a picture";
  m_Window.size(800, 420);
  EXPECT_EQ(saved(), batch) << "with a picture in a smaller window";
}

TEST_F(ToolSetTest, ConvergesToTheSurfaceOfTheProgramWithoutAWindow) {
  WriteText(Path("model.grid"), GridText(CFullModel().m_Grid));
  m_Dialogs.m_File = Path("model.grid");
  Choose(MenuEntry::LoadGrid);
  ASSERT_TRUE(RunToolkitUntil([this] { return !Grid().Run().IsRunning(); }));
  m_Dialogs.m_File = Path("window.grid");
  Choose(kSaveGrid);
  ASSERT_TRUE(RunBatch("--until-converged"));
  const auto [window, windowRest] = HeightsAndRest(Path("window.grid"));
  const auto [batch, batchRest] = HeightsAndRest(Path("batch.grid"));
  EXPECT_EQ(windowRest, batchRest);
  const auto [low, high] = std::ranges::minmax(window);
  EXPECT_LT(LargestDifference(window, batch), 1e-5 * (high - low));
}

TEST_F(ToolSetTest, LoadedGridHasItsWaveletModeInTheViewToo) {
  for (const MenuEntry before : {MenuEntry::SimpleWavelets, MenuEntry::NoWavelets}) {
    Choose(before);
    SaveAndLoad("mode.grid", false, CLightSet());
    EXPECT_EQ(m_Window.GridView().DisplayFlags() & 0xE00U, 0x800U);
    EXPECT_EQ(Grid().Surface().Mode(), WaveletMode::New);
    EXPECT_TRUE(Menu().IsChecked(MenuEntry::NewWavelets));
  }
}

TEST_F(ToolSetTest, FileThatCannotBeOpenedLeavesTheCamera) {
  CCamera camera = m_Window.GridView().Camera();
  camera.Rotate(10, 5);
  m_Window.GridView().SetCamera(camera);
  m_Dialogs.m_File = (m_Directory.Path() / "missing.grid").string();
  Choose(MenuEntry::LoadGrid);
  EXPECT_EQ(m_Window.GridView().Camera().m_Eye, camera.m_Eye);
  EXPECT_EQ(m_Dialogs.m_asNotices, std::vector<std::string>{"The file " + *m_Dialogs.m_File + " cannot be opened."});
}

TEST_F(ToolSetTest, ToolThatIsClosedByItsOwnWindowTurnsItsLampOff) {
  LoadPicture();
  for (const auto& [control, title] :
       {std::pair{Control::LightSources, "Light sources"}, {Control::Recorder, "Animation Record Interface"}}) {
    ClickOn(control);
    ASSERT_TRUE(IsOn(control)) << title;
    Panel(title).do_callback();
    EXPECT_FALSE(IsOn(control)) << title;
    ClickOn(control);
    ClickOn(control);
    EXPECT_FALSE(IsOn(control)) << title;
    EXPECT_THROW(Panel(title), std::runtime_error);
  }
}

// The recorder.

TEST_F(ToolSetTest, RecorderKeepsTheCameraOfEveryRedrawAndShowsIt) {
  ClickOn(Control::Recorder);
  const auto press = [this](int button) {
    Press(dynamic_cast<Fl_Button&>(*Panel("Animation Record Interface").child(button)));
  };
  ASSERT_TRUE(IsDrawn());
  press(0);
  ASSERT_NO_FATAL_FAILURE(Redraw());
  EXPECT_STRNE(HelpLine().value(), "Frame nb    1 recorded.") << "it starts with a pause";
  press(1);
  CCamera camera = m_Window.GridView().Camera();
  camera.Rotate(10, 5);
  camera.Zoom(3, 0);
  m_Window.GridView().SetCamera(camera);
  ASSERT_TRUE(IsDrawn());
  EXPECT_STREQ(HelpLine().value(), "Frame nb    1 recorded.");
  press(3);
  m_Window.GridView().ResetCamera();
  press(2);
  const CCamera& shown = m_Window.GridView().Camera();
  ASSERT_TRUE(RunToolkitUntil([&] { return shown.m_Eye == camera.m_Eye; }));
  EXPECT_EQ(shown.m_Centre, camera.m_Centre);
  EXPECT_EQ(shown.m_Up, camera.m_Up);
  EXPECT_EQ(shown.m_fR, camera.m_fR);
}

// What is looked at is the centre, which a pan has moved.
TEST_F(ToolSetTest, RecorderPlaysAPannedAndZoomedViewAndProjectsKeepIt) {
  CGridView& view = m_Window.GridView();
  ClickOn(Control::Recorder);
  const auto press = [this](int button) {
    Press(dynamic_cast<Fl_Button&>(*Panel("Animation Record Interface").child(button)));
  };
  ASSERT_TRUE(IsDrawn());
  CCamera turned = view.Camera();
  turned.Rotate(30, 20);
  view.SetCamera(turned);
  ASSERT_TRUE(IsDrawn());
  press(0);
  press(1);
  view.MoveView(ViewMove::Right);
  view.MoveView(ViewMove::Up);
  CCamera panned = view.Camera();
  panned.ZoomAbout(0.64, panned.m_Centre + Vector3{3, -2, 1});
  view.SetCamera(panned);
  ASSERT_TRUE(IsDrawn());
  press(3);
  ASSERT_GT(Length(panned.m_Centre - turned.m_Centre), 1);

  const CProject project = m_Window.Commands().Project();
  ASSERT_FALSE(project.m_aRecording.empty());
  const CProjectFrame& last = project.m_aRecording.back();
  EXPECT_EQ(last.m_Target, panned.m_Centre);
  EXPECT_EQ(last.m_Eye, panned.m_Eye);
  EXPECT_EQ(last.m_Up, panned.m_Up);
  EXPECT_EQ(last.m_fHalfSize, panned.m_fR);
  const CPicture recorded = FrameOf(view);
  view.ResetCamera();
  EXPECT_NE(FrameOf(view).m_aPixels, recorded.m_aPixels);
  press(2);
  ASSERT_TRUE(RunToolkitUntil([&] { return view.Camera().m_Centre == panned.m_Centre; }));
  ASSERT_TRUE(IsDrawn());
  EXPECT_EQ(FrameOf(view).m_aPixels, recorded.m_aPixels);
}

TEST_F(ToolSetTest, RecorderAsksThroughTheWindowAndExportsWhatTheViewDraws) {
  ClickOn(Control::Recorder);
  const auto press = [this](int button) {
    Press(dynamic_cast<Fl_Button&>(*Panel("Animation Record Interface").child(button)));
  };
  press(0);
  press(1);
  ASSERT_NO_FATAL_FAILURE(Redraw());
  press(3);
  m_Dialogs.m_bYes = true;
  m_Dialogs.m_Text = (m_Directory.Path() / "f").string();
  press(5);
  EXPECT_EQ(m_Dialogs.m_asNotices, std::vector<std::string>{"Export finished"});
  const auto frame = Global::LoadBMP(m_Dialogs.m_Text + "   0.bmp", 1);
  ASSERT_TRUE(frame.has_value());
  EXPECT_EQ(frame->m_Picture.m_iWidth, m_Window.GridView().w());
  EXPECT_GT(Covered(frame->m_Picture), 100U);
}

// Dialogs.

TEST_F(ToolSetTest, DrawingOptionsAreThoseOfBothViews) {
  Menu().Choose(MenuEntry::DrawingParameters);
  Fl_Window& dialog = Panel("Advanced drawing options");
  auto& thickness = Find<Fl_Value_Slider>(dialog, "Adjust the thickness of grid lines           (3d view)");
  EXPECT_EQ(thickness.value(), 1.5);
  thickness.value(2.5);
  thickness.do_callback();
  EXPECT_EQ(g_DrawingSettings.m_ModelView.m_fGridThickness, 2.5F);
  dialog.hide();
}

TEST_F(ToolSetTest, HeightFieldAsksForItsSizeAndThenForAFile) {
  m_Dialogs.m_File = (m_Directory.Path() / "heights.txt").string();
  const CModalAnswers answers({[](Fl_Window& window) {
    EXPECT_STREQ(window.label(), "Choose the dimention of the Height field");
    ::Type(Find<Fl_Value_Input>(window, "Width"), "3");
    ::Type(Find<Fl_Value_Input>(window, "Height"), "2");
    Press(Find<Fl_Button>(window, "OK"));
  }});
  Menu().Choose(kExportHeightField);
  EXPECT_EQ(m_Dialogs.m_aChoosers,
            (std::vector<std::pair<std::string, std::string>>{{"please input Height-Field file name", "none"}}));
  EXPECT_EQ(BytesOf(*m_Dialogs.m_File), "0 0 0 \n0 0 0 \n");
}

TEST_F(ToolSetTest, HeightFieldWithoutAFileIsNotWritten) {
  const CModalAnswers answers({[](Fl_Window& window) { Press(Find<Fl_Button>(window, "OK")); }});
  Menu().Choose(kExportHeightField);
  EXPECT_EQ(m_Dialogs.m_aChoosers.size(), 1U);
  EXPECT_TRUE(std::filesystem::is_empty(m_Directory.Path()));
  EXPECT_TRUE(m_Dialogs.m_asNotices.empty());
}
