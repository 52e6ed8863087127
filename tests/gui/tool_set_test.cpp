// What the secondary windows have in common with the main window: the grid, the views and the files.

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Choice.H>
#include <FL/Fl_Output.H>
#include <FL/Fl_Value_Slider.H>

#include "app/CToolSet.h"
#include "drawing/DrawingSettings.h"
#include "io/Bmp.h"
#include "support/CStaging.h"
#include "support/FileBuilders.h"
#include "support/LightingBuilders.h"
#include "support/gui/ModelViewTest.h"
#include "support/gui/Pictures.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"

namespace {

constexpr const char* kOriginal = "Show Original texture";
constexpr const char* kKd = "Show Kd texture\nwithout added lights";
constexpr const char* kNewIllumination = "Show New Illumination";

class ToolSetTest : public WindowTest {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ShowWindow()); }
  void TearDown() override {
    // The tools report to the window, which goes after them.
    for (const Control control : {Control::LightSources, Control::Recorder}) {
      if (IsOn(control)) ClickOn(control);
    }
  }

  // The window with this title that is on the screen.
  Fl_Window& Panel(const char* title) {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && std::string(window->label()) == title) return *window;
    }
    throw std::runtime_error(title);
  }
  Fl_Window& OpenLights() {
    if (!IsOn(Control::LightSources)) ClickOn(Control::LightSources);
    return Panel("Light sources");
  }
  void Push(const char* label) { Press(Find<Fl_Button>(Panel("Light sources"), label)); }
  // Of the removed "Light 1", which is switched on.
  void SetRed(double red) {
    Find<Fl_Button>(Panel("Light sources"), "Set the light active").value(1);
    auto& slider = Find<Fl_Value_Slider>(Panel("Light sources"), "Red");
    slider.value(red);
    slider.do_callback();
  }
  double Value(const char* slider) { return Find<Fl_Value_Slider>(Panel("Light sources"), slider).value(); }
  // The command may wait for the solver's tick.
  void Choose(MenuEntry entry) {
    Menu().Choose(entry);
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Run().NextOperation() == Operation::kNone; }));
  }
  void SaveAndLoad(const char* name, bool withLights, const CLightSet& meanwhile) {
    m_Dialogs.m_File = (m_Directory.Path() / name).string();
    m_Dialogs.m_bYes = withLights;
    Choose(kSaveGrid);
    CStaging::AddedLights(Grid()) = CStaging::RemovedLights(Grid()) = meanwhile;
    Choose(MenuEntry::LoadGrid);
  }
  std::string Path(const char* name) const { return (m_Directory.Path() / name).string(); }
  // From model.grid to batch.grid.
  bool RunBatch(const std::string& options) const {
    const std::string files = Path("model.grid") + "' --save '" + Path("batch.grid") + "' ";
    return std::system(("'" RELIEVO_BATCH "' --quiet '" + files + options).c_str()) == 0;
  }
  // The heights in a grid file, and all that is written after its constraints but them.
  static std::pair<std::vector<double>, std::string> HeightsAndRest(const std::string& file) {
    const std::string text = BytesOf(file);
    const std::size_t level = text.find("\n\nL\n");
    const std::size_t from = text.find("\n\nZ\n") + 5;
    const std::size_t to = text.find("\n\nN\n");
    std::istringstream in(text.substr(from, to - from));
    const std::vector<double> heights{std::istream_iterator<double>(in), {}};
    return {heights, text.substr(level, from - level) + text.substr(to)};
  }
  bool IsDrawn() {
    return RunToolkitUntil([this] { return m_Window.GridView().damage() == 0; });
  }
  void Redraw() {
    m_Window.GridView().redraw();
    ASSERT_TRUE(IsDrawn());
  }

  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
  CToolSet m_Tools{m_Window, Grid()};
};

}  // namespace

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

// Lights.

TEST_F(ToolSetTest, LightsThatAreLoadedAreShownInTheOpenPanel) {
  LoadPicture();
  OpenLights();
  CLightSet saved = CLightSet::Removed();
  SwitchOn(saved, 0, {0.25, 0.5, 0.75}, {0, 1, 0});
  CStaging::RemovedLights(Grid()) = saved;
  SaveAndLoad("lit.grid", true, CLightSet::Removed());
  EXPECT_EQ(m_Dialogs.m_asQuestions, std::vector<std::string>{"Do you want to save lighting information ?"});
  EXPECT_EQ(Grid().Relighting().RemovedLights(), saved);
  EXPECT_NE(Find<Fl_Button>(Panel("Light sources"), "Set the light active").value(), 0);
  EXPECT_NEAR(Value("Theta angle"), 90, 1e-5);
  EXPECT_EQ(Value("Blue"), 0.75);
}

TEST_F(ToolSetTest, FileWithoutLightsLeavesThem) {
  LoadPicture();
  OpenLights();
  CLightSet meanwhile = CLightSet::Removed();
  SwitchOn(meanwhile, 0, {0.25, 0.5, 0.75});
  SaveAndLoad("unlit.grid", false, meanwhile);
  EXPECT_EQ(Grid().Relighting().RemovedLights(), meanwhile);
  EXPECT_EQ(Grid().Relighting().AddedLights(), meanwhile);
  EXPECT_EQ(Value("Green"), 0.5);
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

TEST_F(ToolSetTest, TextureButtonsShowWhatTheirLabelsSayUntilTheNextPicture) {
  LoadPicture();
  OpenLights();
  auto& options = Find<Fl_Group>(Panel("Light sources"), "Texture Option");
  EXPECT_FALSE(options.active());
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Push("Update\nKd");
  EXPECT_TRUE(options.active());
  for (const auto& [label, texture] : {std::pair{kOriginal, 3}, {kKd, 1}, {kNewIllumination, 2}}) {
    Push(label);
    EXPECT_EQ(m_Window.GridView().DrawTexture(), texture) << label;
  }
  LoadPicture();
  EXPECT_EQ(m_Window.GridView().DrawTexture(), 3);
  EXPECT_NE(Find<Fl_Button>(options, kOriginal).value(), 0);
  EXPECT_FALSE(options.active());
}

TEST_F(ToolSetTest, UpdatesFirstTakeTheNormalsOfTheTree) {
  LoadPicture();
  OpenLights();
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation"}) {
    SetHeights(Grid().Surface().Lattice(), CFlat{});
    Push(label);
    for (const Vector3& normal : Grid().Relighting().Texels().Normals()) EXPECT_NEAR(normal.z, 1, 1e-12) << label;
    SetHeights(Grid().Surface().Lattice(), CRamp{});
    Push(label);
    for (const Vector3& normal : Grid().Relighting().Texels().Normals()) EXPECT_LT(normal.z, 0.99) << label;
  }
}

TEST_F(ToolSetTest, UpdatesWithoutMemoryForTheTexelsAreTold) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Grid().Relighting().SetMemory([] { return 0.0; });
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation", "Update\nKd"}) {
    m_Dialogs.m_asNotices.clear();
    Push(label);
    ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U) << label;
    EXPECT_NE(m_Dialogs.m_asNotices[0].find("not enough memory for the texels"), std::string::npos);
  }
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
}

TEST_F(ToolSetTest, ImagesFollowALightTurnedInTheModelOnceTheyExist) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  const auto revision = [this] { return Grid().Relighting().Textures().Revision(CTextureImages::kKd); };
  const unsigned loaded = revision();
  m_Window.LightsMoved();
  DrawBoth();
  EXPECT_EQ(revision(), loaded) << "there is nothing computed yet";
  Push("Update\nKd");
  for (int turn = 0; turn < 2; ++turn) {
    const unsigned before = revision();
    m_Window.LightsMoved();
    EXPECT_TRUE(RunToolkitUntil([&] { return revision() == before + 1; }));
  }
}

TEST_F(ToolSetTest, LiveLightShowsALargePictureSmallerFirstAndComputesItBetweenEvents) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(1700, 1500));
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  const CTextureImages& images = Grid().Relighting().Textures();
  Push("Live");
  EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kIllumination) != nullptr; }));
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  EXPECT_TRUE(RunToolkitUntil([&] { return Grid().Relighting().Albedo().IsComputed(); }));
  EXPECT_EQ(images.PreviewOf(CTextureImages::kIllumination), nullptr);
  EXPECT_TRUE(Find<Fl_Group>(Panel("Light sources"), "Texture Option").active());
  // The next change drops what is under way.
  for (const double red : {0.75, 0.5}) {
    SetRed(red);
    EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kKd) != nullptr; })) << red;
  }
  EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kKd) == nullptr; }));
  const std::vector<std::uint8_t> live(images.Image(CTextureImages::kKd).begin(),
                                       images.Image(CTextureImages::kKd).end());
  Grid().GetKd();
  EXPECT_TRUE(std::ranges::equal(live, images.Image(CTextureImages::kKd)));
}

// A hand that drags briskly lets no pass over all of such a picture come to its end.
TEST_F(ToolSetTest, LiveLightAnswersWhileItChangesInEveryRoundOfTheToolkit) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(1000, 1000));
  OpenLights();
  for (CLightSet* lights : {&CStaging::RemovedLights(Grid()), &CStaging::AddedLights(Grid())}) {
    for (std::size_t light = 0; light < 4; ++light) {
      SwitchOn(*lights, light, {0.9, 0.8, 0.7}, {1.0 + static_cast<double>(light), -1, 2});
    }
  }
  const CTextureImages& images = Grid().Relighting().Textures();
  const unsigned first = images.Revision(CTextureImages::kIllumination);
  Push("Live");
  double red = 0;
  EXPECT_TRUE(RunToolkitUntil([&] {
    red = red < 0.9 ? red + 0.01 : 0.1;
    SetRed(red);
    return images.Revision(CTextureImages::kIllumination) >= first + 3;
  }));
  EXPECT_TRUE(RunToolkitUntil([&] {
    return Grid().Relighting().Albedo().IsComputed() && images.PreviewOf(CTextureImages::kIllumination) == nullptr;
  }));
  const std::vector<std::uint8_t> live(images.Image(CTextureImages::kIllumination).begin(),
                                       images.Image(CTextureImages::kIllumination).end());
  Grid().GetKd();
  EXPECT_TRUE(std::ranges::equal(live, images.Image(CTextureImages::kIllumination)));
}

TEST_F(ToolSetTest, LiveLightFollowsSwitchesColoursAndAnglesOfAllLights) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(40, 30));
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 1, {0.5, 0.5, 0.5});
  const CTextureImages& images = Grid().Relighting().Textures();
  const auto bytes = [&] {
    const auto image = images.Image(CTextureImages::kIllumination);
    return std::vector<std::uint8_t>(image.begin(), image.end());
  };
  unsigned seen = images.Revision(CTextureImages::kIllumination);
  const auto follows = [&](const char* what) {
    const bool done = RunToolkitUntil([&] { return images.Revision(CTextureImages::kIllumination) > seen; });
    EXPECT_TRUE(done) << what;
    const std::vector<std::uint8_t> live = bytes();
    Grid().GetKd();
    EXPECT_EQ(bytes(), live) << what << ": as Update Kd has it";
    seen = images.Revision(CTextureImages::kIllumination);
  };
  const auto slide = [&](const char* slider, double value) {
    auto& widget = Find<Fl_Value_Slider>(Panel("Light sources"), slider);
    widget.value(value);
    widget.do_callback();
    follows(slider);
  };
  Push("Live");
  follows("Live");
  for (const char* category : {"Removed Lights", "Added lights"}) {
    Push(category);
    for (const char* light : {"Light 1", "Ambient light"}) {
      Push(light);
      Push("Set the light active");
      follows("switched on");
      for (const char* channel : {"Red", "Green", "Blue"}) slide(channel, 0.25);
      if (light == std::string("Light 1")) {
        slide("Theta angle", 40);
        slide("Phi angle", 75);
      }
      Push("Set the light active");
      follows("switched off");
    }
  }
  Push("Soft");
  follows("Soft");
}

TEST_F(ToolSetTest, LiveLightStopsWithThePictureAndTellsWhereThereIsNoMemory) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Push("Live");
  LoadPicture();
  ASSERT_TRUE(IsDrawn());
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  Grid().Relighting().SetMemory([] { return 0.0; });
  m_Dialogs.m_asNotices.clear();
  SetRed(0.5);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_Dialogs.m_asNotices.size() == 1; }));
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  EXPECT_EQ(Find<Fl_Button>(Panel("Light sources"), "Live").value(), 0) << "it is not told with every change";
}

TEST_F(ToolSetTest, LightTurnedInTheModelIsThatOfThePanelAndItFollows) {
  LoadPicture();
  EXPECT_EQ(m_Window.CurrentLight(), -1) << "the panel is closed";
  OpenLights();
  Push("Light 3");
  EXPECT_EQ(m_Window.CurrentLight(), 2);
  CLight turned = *Grid().GetLightSource(2, kRemovedLights);
  turned.SetDirection({0, -1, 0});
  Grid().SetLight(2, kRemovedLights, turned);
  m_Window.LightsMoved();
  EXPECT_NEAR(Value("Theta angle"), 90, 1e-5);
  EXPECT_NEAR(Value("Phi angle"), 270, 1e-5);
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
