// Fewer clicks and true shapes, by the mouse and the keys of the running program.

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "drawing/DisplayFlags.h"
#include "projects/ProjectFile.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"
#include "support/ProjectBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

class HeightsAlongRunTest : public RunTest {
 protected:
  static constexpr CPixel kFrom{120, 200};
  static constexpr CPixel kTo{420, 200};

  void DrawCurve(const std::string& type) const {
    m_User.ClickOn(Control::CurveConstraint);
    MovePointer(m_User.OnPhotograph(kFrom));
    m_User.Type(type);
    m_User.ClickAt(m_User.OnPhotograph(kFrom));
    MovePointer(m_User.OnPhotograph(kTo));
    m_Program.Rests();
    m_User.Type("Return");
  }
  // The panel with the keyboard in its first field.
  void OpenPanel() {
    m_User.ChooseEntry(MenuTitle::Edit, "h");
    const auto panel = m_Program.WaitForWindow("Heights along a curve");
    ASSERT_TRUE(panel.has_value());
    ASSERT_TRUE(WaitUntil([&] { return m_Program.Screen().HasFocus(*panel); }));
    m_Panel = *panel;
  }
  // Over what the field with the keyboard holds.
  static void Fill(const std::string& text) {
    PressKey("ctrl+a");
    TypeText(text);
  }
  void Place() const {
    PressKey("Return");
    ASSERT_TRUE(m_User.IsGone(m_Panel));
  }

  WindowId m_Panel = 0;
};

}  // namespace

TEST_F(HeightsAlongRunTest, ARowOfHeightsIsOneStroke) {
  DrawCurve("f");
  OpenPanel();
  Fill("4");
  PressKey("Tab");
  Fill("10");
  PressKey("Tab");
  Fill("25");
  m_Program.Rests();
  Place();
  EXPECT_TRUE(m_User.Reads("4 heights placed along the curve"));
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  const CPlanePoint from = InModel(kFrom);
  const CPlanePoint to = InModel(kTo);
  double k = 0;
  for (const CPtCstr& height : saved.m_Grid.Constraints().Points()) {
    EXPECT_NEAR(height.m_fX, std::lerp(from.x, to.x, k / 3), 1e-3);
    EXPECT_NEAR(height.m_fY, from.y, 1e-3);
    EXPECT_NEAR(height.m_fZ, 10 + 5 * k, 1e-6);
    ++k;
  }
  EXPECT_EQ(k, 4);
  MovePointer(m_User.OnPhotograph({300, 300}));
  m_User.Type("ctrl+z");
  EXPECT_TRUE(m_User.Reads("Undone: heights along a curve"));
  CTestGrid undone;
  ASSERT_TRUE(SaveModel("undone.grid") && undone.m_Grid.Load(File("undone.grid").string()) == GridFileState::Whole);
  EXPECT_TRUE(undone.m_Grid.Constraints().Points().empty());
}

TEST_F(HeightsAlongRunTest, ThePictureShowsWhereTheyWouldLie) {
  DrawCurve("p");
  m_User.Type("ctrl+g");
  MovePointer(m_User.PlaceOf(Control::HelpLine));
  m_Program.Rests();
  const CArea view = m_User.AreaOf(Control::ImageView);
  const std::size_t before = m_User.See(view).Count({255, 0, 0});
  OpenPanel();
  // On the tear itself they are left out.
  for (int field = 0; field < 5; ++field) PressKey("Tab");
  Fill("0");
  EXPECT_TRUE(WaitUntil([&] { return m_User.See(view).Count({255, 0, 0}) >= before + 8 * 20; }));
  PressKey("Escape");
  ASSERT_TRUE(m_User.IsGone(m_Panel));
  EXPECT_TRUE(WaitUntil([&] { return m_User.See(view).Count({255, 0, 0}) == before; }));
}

// When the menu has gone, the mouse is over the right view, which takes the keyboard from what is no text field. None
// of these panels begins with one.
TEST_F(HeightsAlongRunTest, PanelsWhoseEntryLiesOverTheModelGetTheKeyboard) {
  const CArea model = m_User.AreaOf(Control::ModelView);
  for (const auto& [row, title] : {std::pair(2, "Reference depth"), {3, "Constraint values"}}) {
    // Below the bar stand the rows of the menu, some pixels to the right of where the view begins.
    const CPixel overModel{model.m_iX + 40, model.m_iY + 6 + 21 * row};
    Click(m_User.PlaceOf(MenuTitle::Edit));
    m_Program.Rests();
    MovePointer(overModel);
    m_Program.Rests();
    Click(overModel);
    const auto panel = m_Program.WaitForWindow(title);
    ASSERT_TRUE(panel.has_value());
    EXPECT_TRUE(WaitUntil([&] { return m_Program.Screen().HasFocus(*panel); })) << title;
    m_Program.Rests();
    PressKey("Escape");
    EXPECT_TRUE(m_User.IsGone(*panel)) << title;
  }
}

TEST_F(HeightsAlongRunTest, NewHeightsStartAtTheLastValueWhereThatIsWanted) {
  m_User.ClickOn(Control::PositionConstraint);
  PlaceHeight({100, 100}, 86);
  PlaceHeight({300, 100}, 0);
  m_User.ChooseEntry(MenuTitle::Edit, "n");
  PlaceHeight({300, 300}, 0);
  PlaceHeight({500, 300}, 43);
  PlaceHeight({500, 100}, 0);
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  std::vector<double> heights;
  for (const CPtCstr& height : saved.m_Grid.Constraints().Points()) heights.push_back(height.m_fZ);
  ASSERT_EQ(heights.size(), 5U);
  for (const auto& [place, z] : {std::pair(0, 20.0), {1, 0.0}, {2, 20.0}, {3, 30.0}, {4, 30.0}})
    EXPECT_NEAR(heights[static_cast<std::size_t>(place)], z, 1e-3) << place;
}

namespace {

/// Of a model twice as wide as it is high, in which clicks place heights.
CProject WideProject() {
  const ConsoleCapture console;
  CGrid grid;
  grid.Initialize(3, false, 0, 0, 200, 100);
  CProject project;
  project.m_Model = StateOf(grid);
  project.m_Views.m_iEditingMode = static_cast<int>(EditingMode::Position);
  project.m_Views.m_uImageFlags = ImageFlag::kAtStart;
  project.m_Views.m_uModelFlags = ModelFlag::kGrid;
  project.m_Views.m_Centre = {100, 50, 0};
  project.m_Views.m_Eye = {100, 50, 100};
  project.m_Views.m_Up = {0, 100, 0};
  project.m_Views.m_fR = project.m_Views.m_fR0 = 100;
  return project;
}

}  // namespace

TEST(TrueProportionsRunTest, AreKeptWithTheProject) {
  const CTemporaryDirectory scratch;
  const std::string file = scratch.File("wide.relievo");
  ASSERT_TRUE(SaveProject(WideProject(), file));
  for (const CPixel press : {CPixel{300, 200}, CPixel{100, 160}}) {
    CRelievo program({file});
    const CUser user(program);
    if (press.m_iX == 300) user.ChooseEntry(MenuTitle::Inspect, "k");
    user.ClickAt(user.AreaOf(Control::ImageView).At(press));
    PressKey("ctrl+s");
    ASSERT_TRUE(user.Reads(file + " is saved"));
    const CProject saved = ReadProject(file).m_Project.value();
    EXPECT_EQ(saved.m_Views.m_uImageFlags, ImageFlag::kAtStart | ImageFlag::kProportions);
    EXPECT_EQ(saved.m_Views.m_uModelFlags, ModelFlag::kGrid | ModelFlag::kProportions);
    const CPtCstr& made = *std::prev(saved.m_Model.m_Document.m_Sketch.m_Points.end());
    constexpr double kPerPixel = 200.0 / 430;
    EXPECT_NEAR(made.m_fX, (press.m_iX + 0.5) * kPerPixel, 1e-3);
    EXPECT_NEAR(made.m_fY, 50 + (215 - press.m_iY - 0.5) * kPerPixel, 1e-3) << "a pixel is as high as it is wide";
  }
}

namespace {

// Width and height of all that is not black.
std::pair<int, int> DrawnSize(const CScreenshot& picture) {
  int left = picture.Width();
  int right = -1;
  int top = picture.Height();
  int bottom = -1;
  for (int y = 0; y < picture.Height(); ++y) {
    for (int x = 0; x < picture.Width(); ++x) {
      if (picture.At({x, y}) == kBlack) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  return {right - left + 1, bottom - top + 1};
}

}  // namespace

// The grid of the start is a square seen from the front.
TEST(TrueProportionsRunTest, ASquareIsASquareInBothViewsOfAnyWindow) {
  CRelievo program;
  const CUser user(program);
  const auto sizeIn = [&](std::size_t view) {
    const CArea area = program.ViewAreas().at(view);
    const CPixel corner = program.MainArea().At({area.m_iX, area.m_iY});
    return DrawnSize(user.See({corner.m_iX, corner.m_iY, area.m_iWidth, area.m_iHeight}));
  };
  const auto choose = [&] {
    user.ChooseEntry(MenuTitle::Inspect, "k");
    MovePointer(program.MainArea().At({5, program.MainArea().m_iHeight - 5}));
    ASSERT_TRUE(program.Rests());
  };
  for (const auto& [width, height] : {std::pair(800, 900), {1240, 700}, {800, 560}}) {
    program.Screen().AskForSize(program.MainWindow(), width, height);
    const auto fits = [&, wanted = height] { return program.MainArea().m_iHeight == wanted; };
    ASSERT_TRUE(WaitUntil(fits) && program.Rests());
    for (const std::size_t view : {0U, 1U}) {
      const auto [w, h] = sizeIn(view);
      EXPECT_GT(std::abs(w - h), 20) << view << " of " << width << " x " << height << ": " << w << " x " << h;
    }
    choose();
    const CArea image = program.ViewAreas().front();
    EXPECT_NEAR(sizeIn(0).first, std::min(image.m_iWidth, image.m_iHeight), 2) << "as large as fits";
    for (const std::size_t view : {0U, 1U}) {
      const auto [w, h] = sizeIn(view);
      EXPECT_GT(w, 100);
      EXPECT_NEAR(w, h, 1) << view << " of " << width << " x " << height;
    }
    choose();
  }
}

namespace {

class RememberedRunTest : public ::testing::Test {
 protected:
  // Until it has ended.
  static void Quit(CRelievo& program) {
    PressKey("ctrl+q");
    ASSERT_EQ(program.WaitForExit(), 0);
  }
  static bool HasSize(const CRelievo& program, int width, int height) {
    return WaitUntil([&] {
      const CArea area = program.MainArea();
      return area.m_iWidth == width && area.m_iHeight == height;
    });
  }

  CTemporaryDirectory m_State;
};

}  // namespace

TEST_F(RememberedRunTest, TheNextStartHasTheSameWindowAndOneByDefaultsHasNot) {
  CArea area;
  {
    CRelievo program({}, m_State.Path());
    const CUser user(program);
    user.ChooseEntry(MenuTitle::Edit, "m");
    program.Screen().AskForSize(program.MainWindow(), 1000, 720);
    ASSERT_TRUE(HasSize(program, 1000, 720) && program.Rests());
    area = program.MainArea();
    Quit(program);
  }
  for (int run = 0; run < 2; ++run) {
    CRelievo program({}, m_State.Path());
    EXPECT_TRUE(WaitUntil([&] { return program.MainArea() == area; })) << "run " << run << ": " << program.MainArea();
    Quit(program);
  }
  CRelievo program({"--defaults"}, m_State.Path());
  EXPECT_TRUE(HasSize(program, kDesignWidth, kDesignHeight));
  Quit(program);
  CRelievo again({}, m_State.Path());
  EXPECT_TRUE(WaitUntil([&] { return again.MainArea() == area; })) << "it is still remembered";
}

TEST_F(RememberedRunTest, TheMarksOfAProjectWinWhileItIsOpenAndAreNotRemembered) {
  const std::string file = m_State.File("wide.relievo");
  const std::string settings = m_State.Path() / "config" / "relievo" / "settings.json";
  const auto remembers = [&] {
    return BytesOf(settings).find("\"switch_keep_proportions\": true") != std::string::npos;
  };
  ASSERT_TRUE(SaveProject(WideProject(), file));
  {
    CRelievo program({}, m_State.Path());
    const CUser user(program);
    user.ChooseEntry(MenuTitle::Edit, "m");
    user.ChooseEntry(MenuTitle::Inspect, "k");
    Quit(program);
  }
  ASSERT_TRUE(remembers());
  {
    CRelievo program({file}, m_State.Path());
    const CUser user(program);
    user.ClickAt(user.AreaOf(Control::ImageView).At({300, 200}));
    PressKey("ctrl+s");
    ASSERT_TRUE(user.Reads(file + " is saved"));
    EXPECT_EQ(ReadProject(file).m_Project.value().m_Views.m_uImageFlags, ImageFlag::kAtStart);
    Quit(program);
  }
  EXPECT_TRUE(remembers());
}
