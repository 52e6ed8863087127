// Undo with the real keys where more than the main window is at work: dialogs, tool windows, other files.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "drawing/DisplayFlags.h"
#include "projects/ProjectFile.h"
#include "support/BmpBuilders.h"
#include "support/FileBuilders.h"
#include "support/ProjectBuilders.h"
#include "support/gui/CLightPanelUser.h"
#include "support/gui/Input.h"
#include "support/gui/UndoTest.h"
#include "support/gui/WaitUntil.h"

namespace {

class UndoToolsRunTest : public UndoTest {
 protected:
  void SetUp() override {
    UndoTest::SetUp();
    Prepare();
  }
  // The window of a tool or dialog once it is at rest.
  CArea Opened(const std::string& title) const {
    const std::optional<WindowId> window = m_Program.WaitForWindow(title);
    EXPECT_TRUE(window.has_value() && m_Program.Rests()) << title;
    return window.has_value() ? m_Program.Screen().AreaOf(*window) : CArea{};
  }
  // What the solver has done so far: the number in the window.
  CScreenshot Iterations() const {
    const CPixel middle = m_User.PlaceOf(Control::Iterations);
    return m_User.See({middle.m_iX - 25, middle.m_iY - 8, 50, 16});
  }
  // Lets the solver work until it has converged.
  void Solve() const {
    const CScreenshot before = Iterations();
    m_User.ClickOn(Control::ResumeSolver);
    ASSERT_TRUE(m_Program.Rests());
    ASSERT_FALSE(Iterations() == before);
  }
  // The pixels of both views, with the mouse elsewhere.
  CScreenshot Views() const {
    MovePointer(m_Program.MainArea().At({5, 640}));
    m_Program.Rests();
    const CPixel corner = m_Program.MainArea().At({2, 23});
    return m_User.See({corner.m_iX, corner.m_iY, 866, 430});
  }
  // Whether the views look like that again; what lay over them may have to be drawn first.
  bool Show(const CScreenshot& views) const {
    return WaitUntil([&] { return Views() == views; });
  }
  void OpenProject(const std::string& name) const {
    m_User.ChooseEntry(MenuTitle::File, 8);
    ASSERT_TRUE(m_User.ChooseFile("please input project file name", File(name)));
  }
  // Another model over another picture, seen from elsewhere.
  std::string OtherProject() const {
    CProject project = ProjectOfOneHeight();
    project.m_Views.m_iEditingMode = static_cast<int>(EditingMode::Normal);
    project.m_Views.m_uImageFlags = ImageFlag::kImage;
    project.m_Views.m_uModelFlags = ModelFlag::kGrid;
    project.m_Views.m_fR = project.m_Views.m_fR0 = 50;
    WriteBytes(File("other.bmp"), BmpFile(SomePicture(30, 20)));
    project.m_Picture = {File("other.bmp"), {}, std::make_shared<const std::string>(BytesOf(File("other.bmp")))};
    EXPECT_TRUE(SaveProject(project, File("other.relievo")));
    return BytesOf(File("other.relievo"));
  }
};

}  // namespace

TEST_F(UndoToolsRunTest, LightsAreTakenBackOverTheirPanel) {
  const std::string before = Saved("before.grid", true);
  m_User.ClickOn(Control::LightSources);
  const CArea area = Opened("Light sources");
  const CLightPanelUser panel(m_User, area);
  // Five steps each; then an added light goes again.
  panel.SetLights(CLightPanelUser::kRemoved, 55, 135, 0.6);
  panel.SetLights(CLightPanelUser::kAdded, 55, 90, 0.6);
  panel.ClickOn(CLightPanelUser::kAmbient);
  panel.ClickOn(CLightPanelUser::kActive);
  constexpr int kSteps = 11;
  const std::string after = Saved("after.grid", true);
  EXPECT_TRUE(after != before);
  panel.ClickOn(CLightPanelUser::kLight1);
  for (int step = 0; step < kSteps; ++step) UndoIs("light");
  EXPECT_TRUE(Saved("undone.grid", true) == before);
  panel.ClickOn(CLightPanelUser::kLight1);
  for (int step = 0; step < kSteps; ++step) RedoIs("light", "ctrl+y");
  EXPECT_TRUE(Saved("again.grid", true) == after);
}

TEST_F(UndoToolsRunTest, ALoadedGridMakesWayForTheOneBefore) {
  ASSERT_TRUE(SaveModel("other.grid"));
  m_User.ClickOn(Control::PositionConstraint);
  m_User.ClickAt(At(kFree));
  const std::string before = Saved("before.grid");
  PressKey("alt+o");
  ASSERT_TRUE(m_User.ChooseFile("please input grid file name", File("other.grid")) && m_Program.Rests());
  const std::string loaded = Saved("loaded.grid");
  EXPECT_TRUE(loaded != before);
  UndoIs("Load Grid");
  EXPECT_TRUE(Saved("undone.grid") == before);
  UndoIs("add point");
  RedoIs("add point", "ctrl+y");
  RedoIs("Load Grid", "ctrl+y");
  EXPECT_TRUE(Saved("again.grid") == loaded);
}

TEST_F(UndoToolsRunTest, AttributesOfACurveAreTakenBack) {
  constexpr CPixel kLeftCurvature{128, 42};
  constexpr CPixel kLeftAutoBump{60, 134};
  constexpr CPixel kExport{180, 295};
  const std::string before = Saved("before.grid");
  m_User.ClickAt(At(kNode), 3);
  const CArea dialog = Opened("Contour Attributes");
  m_User.ClickAt(dialog.At(kLeftCurvature));
  m_User.Type("ctrl+a");
  TypeText("0.25");
  m_User.ClickAt(dialog.At(kLeftAutoBump));
  PressKey("Return");
  ASSERT_TRUE(m_User.Answer(true)) << "for all nodes";
  ASSERT_TRUE(m_Program.Rests());
  const std::string changed = Saved("changed.grid");
  EXPECT_TRUE(changed != before);
  m_User.ClickAt(At(kNode), 3);
  m_User.ClickAt(Opened("Contour Attributes").At(kExport));
  ASSERT_TRUE(m_User.Answer(true)) << "there is a way";
  ASSERT_TRUE(m_Program.Rests());
  const std::string exported = Saved("exported.grid");
  EXPECT_TRUE(exported != changed);
  UndoIs("export constraints");
  EXPECT_TRUE(Saved("unexported.grid") == changed);
  UndoIs("curve attributes");
  EXPECT_TRUE(Saved("undone.grid") == before);
  RedoIs("curve attributes", "ctrl+y");
  RedoIs("export constraints", "ctrl+shift+z");
  EXPECT_TRUE(Saved("again.grid") == exported);
}

TEST_F(UndoToolsRunTest, OverAnOpenRecorderTheSolverStaysPaused) {
  Solve();
  m_User.ClickOn(Control::Recorder);
  const CArea recorder = Opened("Animation Record Interface");
  m_User.ClickAt(recorder.At({recorder.m_iWidth - 5, recorder.m_iHeight - 5}));
  const CScreenshot before = Iterations();
  UndoIs("tear");
  UndoIs("curve point");
  RedoIs("curve point", "ctrl+y");
  EXPECT_TRUE(Iterations() == before);
  m_User.ClickOn(Control::Recorder);
  Solve();
}

TEST_F(UndoToolsRunTest, WithTheFreezeBrushOnTheSolverStaysPaused) {
  Solve();
  m_User.ChooseEntry(MenuTitle::ImageView, 4);
  m_User.ClickOn(Control::Freeze);
  m_User.ClickAt(At(kFree));
  const CScreenshot before = Iterations();
  UndoIs("tear");
  EXPECT_TRUE(Iterations() == before) << "and the brush has made no step";
  m_User.ClickOn(Control::Freeze);
  Solve();
}

TEST_F(UndoToolsRunTest, ADamagedProjectIsToldAndChangesNothing) {
  const std::string whole = OtherProject();
  WriteText(File("cut.relievo"), whole.substr(0, whole.size() / 2));
  const std::string before = Saved("before.grid");
  const CScreenshot views = Views();
  OpenProject("cut.relievo");
  ASSERT_TRUE(m_User.Answer(true));
  EXPECT_TRUE(Show(views));
  EXPECT_TRUE(Saved("after.grid") == before);
  UndoIs("tear");
}

TEST_F(UndoToolsRunTest, AnOpenedProjectMakesWayForPhotographAndViews) {
  OtherProject();
  const std::string before = Saved("before.grid");
  const CScreenshot views = Views();
  OpenProject("other.relievo");
  const CScreenshot opened = Views();
  EXPECT_FALSE(opened == views);
  UndoIs("Open Project");
  EXPECT_TRUE(Show(views));
  EXPECT_TRUE(Saved("after.grid") == before);
  RedoIs("Open Project", "ctrl+y");
  EXPECT_TRUE(Show(opened));
}
