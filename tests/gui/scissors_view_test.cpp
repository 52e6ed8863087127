#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "scissors/CScissorsTool.h"
#include "support/CStaging.h"
#include "support/ConsoleCapture.h"
#include "support/KeyTable.h"
#include "support/ScissorsBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/ToolkitTest.h"
#include "ui/scissors/CScissorsView.h"
#include "ui/scissors/ScissorsHost.h"

namespace {

constexpr CRgb kBackground{212, 208, 200};
constexpr CRgb kTraced{0, 128, 255};
constexpr CRgb kSelected{255, 128, 0};
constexpr CRgb kInProgress{0, 255, 0};
constexpr CRgb kLiveWire{255, 255, 0};
constexpr CRgb kKeyPoint{255, 0, 255};
constexpr CRgb kSeed{255, 0, 0};

class RecordingScissorsHost : public ScissorsHost {
 public:
  bool AddTracedCurve(const std::vector<CPlanePoint>& points) override {
    if (m_bTakes) m_aaCurves.push_back(points);
    return m_bTakes;
  }
  void RefreshDisplays() override { ++m_iRefreshes; }

  bool m_bTakes = true;
  std::vector<std::vector<CPlanePoint>> m_aaCurves;
  int m_iRefreshes = 0;
};

// The window on the screen with a picture, and the user's hands on mouse and keyboard.
class ScissorsViewTest : public ToolkitTest {
 protected:
  void SetUp() override { OpenWith(GreyPicture(200, 150)); }
  void TearDown() override { m_View.Close(); }

  void OpenWith(const CTopDownImage& picture) {
    m_View.Close();
    CPicture stored{picture.m_iWidth, picture.m_iHeight, {}};
    const std::size_t row = 3 * static_cast<std::size_t>(picture.m_iWidth);
    for (auto y = static_cast<std::size_t>(picture.m_iHeight); y-- > 0;) {
      const auto first = picture.m_aPixels.begin() + static_cast<std::ptrdiff_t>(y * row);
      stored.m_aPixels.insert(stored.m_aPixels.end(), first, first + static_cast<std::ptrdiff_t>(row));
    }
    CStaging::Textures(Grid()).SetPicture(stored);
    m_View.Open();
    ASSERT_TRUE(RunToolkitUntil([&] { return Window().has_value() && m_Screen.HasFocus(*Window()); }));
    ASSERT_TRUE(RunToolkitUntil([&] { return m_View.damage() == 0; }));
    m_Console.Take();
  }

  CScissorsTool& Tool() { return *m_View.Tool(); }
  const CScissorsContours& Contours() { return Tool().Contours(); }
  std::optional<WindowId> Window() { return m_Screen.FindWindow(getpid(), m_View.label()); }
  CPixel OnScreen(CPixelPosition place) { return m_Screen.AreaOf(*Window()).At({place.m_iColumn, place.m_iRow}); }
  bool SeesAt(CPixelPosition place, CRgb colour) {
    const CPixel p = OnScreen(place);
    return RunToolkitUntil([&] { return m_Screen.Capture({p.m_iX, p.m_iY, 1, 1}).IsAll(colour); });
  }

  void Point(CPixelPosition place) {
    MovePointer(OnScreen(place));
    const std::string wanted = "x = " + std::to_string(place.m_iColumn) + " y = " + std::to_string(place.m_iRow) + " ";
    ASSERT_TRUE(RunToolkitUntil([&] { return std::string(m_View.StatusText()).find(wanted) == 0; }))
        << m_View.StatusText();
  }
  // A click that makes `place` the seed.
  void ClickAt(CPixelPosition place) {
    Point(place);
    Click(OnScreen(place));
    ASSERT_TRUE(RunToolkitUntil([&] {
      return Contours().IsInProgress() &&
             Contours().Seed() == *m_View.Viewport().PixelAt(place.m_iColumn, place.m_iRow);
    }));
  }
  void Build() {
    ASSERT_TRUE(RunToolkitUntil([&] { return !Tool().IsBuilding(); }));
  }
  bool TypeUntil(const std::string& keys, const std::function<bool()>& condition) {
    PressKey(keys);
    return RunToolkitUntil(condition);
  }
  // A contour of a row of pixels, on which the model does not want to be torn.
  void TraceAndKeep(int row) {
    m_Host.m_bTakes = false;
    ClickAt({20, row});
    Point({60, row});
    ASSERT_TRUE(TypeUntil("Return", [&] { return !Contours().IsInProgress(); }));
  }

  ConsoleCapture m_Console;
  RecordingScissorsHost m_Host;
  CScissorsView m_View{Grid(), m_Host};
};

}  // namespace

TEST_F(ScissorsViewTest, HasItsTitleAndSize) {
  EXPECT_EQ(m_Screen.TitleOf(*Window()), "Click to set key points - Press Enter set the last point and finish");
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iWidth, 445);
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iHeight, 439);
}

TEST_F(ScissorsViewTest, OpeningLogsTheSizeOfThePicture) {
  m_View.Close();
  m_View.Open();
  EXPECT_EQ(m_Console.Take(), "Width 200\nHeight 150\n");
  m_View.Open();
  EXPECT_EQ(m_Console.Take(), "");
}

TEST_F(ScissorsViewTest, DoesNotOpenWithoutAPicture) {
  CTestGrid empty;
  CScissorsView view(empty.m_Grid, m_Host);
  view.Open();
  EXPECT_FALSE(view.IsOpen());
  EXPECT_FALSE(view.shown());
}

TEST_F(ScissorsViewTest, OpensUpToTheLongestSideThatPlacesAreKeptFor) {
  for (const int side : {CScissorsTool::kMostSide, CScissorsTool::kMostSide + 1}) {
    const auto bytes = 3 * static_cast<std::size_t>(side);
    for (const CPicture& picture :
         {CPicture{side, 1, std::vector<std::uint8_t>(bytes)}, CPicture{1, side, std::vector<std::uint8_t>(bytes)}}) {
      m_View.Close();
      CStaging::Textures(Grid()).SetPicture(picture);
      m_View.Open();
      EXPECT_EQ(m_View.IsOpen(), side == CScissorsTool::kMostSide) << picture.m_iWidth << " x " << picture.m_iHeight;
    }
  }
}

TEST_F(ScissorsViewTest, ShowsThePictureUprightAndTheBackgroundBesideIt) {
  OpenWith(TopDownImageOf(200, 150, [](int x, int y) { return y < 75 ? std::array{x, 0, 99} : std::array{0, x, 99}; }));
  EXPECT_TRUE(SeesAt({30, 10}, {30, 0, 99}));
  EXPECT_TRUE(SeesAt({180, 140}, {0, 180, 99}));
  EXPECT_TRUE(SeesAt({201, 20}, kBackground));
  EXPECT_TRUE(SeesAt({20, 151}, kBackground));
}

TEST_F(ScissorsViewTest, StatusFollowsTheMouse) {
  Point({30, 40});
  EXPECT_STREQ(m_View.StatusText(), "x = 30 y = 40 r = 90 g = 90 b = 90");
  Point({300, 200});
  EXPECT_STREQ(m_View.StatusText(), "x = 300 y = 200 r = 212 g = 208 b = 200");
}

TEST_F(ScissorsViewTest, ClicksBuildTheTreeAndTraceTheContour) {
  ClickAt({20, 30});
  Build();
  EXPECT_EQ(m_Console.Take(),
            "SeedSnap in iScissor: to be implemented for extra credits!\n"
            "current seed position: (   20 ,   30 ).\n30000 nodes expanded.minimun path tree is finished\n");
  ClickAt({60, 30});
  Build();
  EXPECT_EQ(m_Console.Take(),
            "current seed position: (   60 ,   30 ).\n30000 nodes expanded.minimun path tree is finished\n");
  EXPECT_EQ(Contours().InProgress().m_aPixels.size(), 41U);
}

TEST_F(ScissorsViewTest, ClickWithControlStartsANewContour) {
  ClickAt({20, 30});
  ClickAt({60, 30});
  Drag(OnScreen({90, 80}), OnScreen({90, 80}), 1, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return Contours().Seed() == CPixelPosition{90, 80}; }));
  EXPECT_EQ(Contours().InProgress().m_aPixels.size(), 1U);
}

TEST_F(ScissorsViewTest, ClickBesideThePictureDoesNothing) {
  Point({300, 200});
  Click(OnScreen({300, 200}));
  Point({301, 200});
  EXPECT_FALSE(Contours().IsInProgress());
}

TEST_F(ScissorsViewTest, EachKindOfPixelHasItsColour) {
  ClickAt({20, 30});
  ClickAt({60, 30});
  Point({60, 90});
  EXPECT_TRUE(SeesAt({40, 30}, kInProgress));
  EXPECT_TRUE(SeesAt({20, 30}, kKeyPoint));
  EXPECT_TRUE(SeesAt({60, 30}, kSeed));
  EXPECT_TRUE(SeesAt({60, 60}, kLiveWire));
  Point({100, 30});
  EXPECT_TRUE(SeesAt({80, 30}, kLiveWire));
  EXPECT_TRUE(SeesAt({60, 60}, {90, 90, 90})) << "the old live wire";
}

TEST_F(ScissorsViewTest, EnterExportsTheContour) {
  ClickAt({20, 30});
  Point({60, 30});
  m_Console.Take();
  ASSERT_TRUE(TypeUntil("Return", [&] { return m_Host.m_iRefreshes == 1; }));
  EXPECT_NE(m_Console.Take().find("CScissorsView::ExportContour()\n"), std::string::npos);
  ASSERT_EQ(m_Host.m_aaCurves.size(), 1U);
  EXPECT_EQ(m_Host.m_aaCurves[0].size(), 41U);
  const CExtent& extent = Grid().Surface().Lattice().Extent();
  EXPECT_DOUBLE_EQ(m_Host.m_aaCurves[0][0].x, extent.x0 + (extent.x1 - extent.x0) * 20.5 / 200);
  EXPECT_DOUBLE_EQ(m_Host.m_aaCurves[0][0].y, extent.y0 + (extent.y1 - extent.y0) * 119.5 / 150);
  EXPECT_TRUE(Contours().Traced().empty());
  EXPECT_FALSE(Contours().IsInProgress());
}

TEST_F(ScissorsViewTest, EnterWithControlClosesTheContour) {
  ClickAt({20, 30});
  ClickAt({60, 30});
  Point({80, 90});
  ASSERT_TRUE(TypeUntil("ctrl+KP_Enter", [&] { return m_Host.m_iRefreshes == 1; }));
  EXPECT_EQ(m_Host.m_aaCurves[0].size(), 81U);
  EXPECT_EQ(m_Host.m_aaCurves[0].front(), m_Host.m_aaCurves[0].back());
}

TEST_F(ScissorsViewTest, EnterOnTheSeedExportsASinglePixel) {
  ClickAt({20, 30});
  ASSERT_TRUE(TypeUntil("Return", [&] { return m_Host.m_iRefreshes == 1; }));
  EXPECT_EQ(m_Host.m_aaCurves[0].size(), 1U);
}

TEST_F(ScissorsViewTest, EnterWithTheMouseBesideThePictureExportsNothing) {
  ClickAt({20, 30});
  Build();
  Point({300, 200});
  m_Console.Take();
  ASSERT_TRUE(TypeUntil("Return", [&] { return m_Host.m_iRefreshes == 1; }));
  EXPECT_EQ(m_Console.Take(), "CScissorsView::ExportContour()\n");
  EXPECT_TRUE(m_Host.m_aaCurves.empty());
  EXPECT_TRUE(Contours().IsInProgress());
}

TEST_F(ScissorsViewTest, EnterWithoutAContourDoesNothing) {
  Point({20, 30});
  ASSERT_TRUE(TypeUntil("Return", [&] { return true; }));
  ClickAt({20, 30});
  EXPECT_EQ(m_Host.m_iRefreshes, 0);
}

TEST_F(ScissorsViewTest, ContourThatIsNotTakenIsSelectedAndRemoved) {
  TraceAndKeep(30);
  TraceAndKeep(60);
  Point({50, 100});
  EXPECT_EQ(Contours().Traced().size(), 2U);
  EXPECT_EQ(Contours().Selected(), CScissorsContours::kNone);
  EXPECT_TRUE(SeesAt({40, 30}, kTraced));
  Point({30, 60});
  EXPECT_EQ(Contours().Selected(), 1);
  EXPECT_TRUE(SeesAt({40, 60}, kSelected));
  EXPECT_TRUE(SeesAt({40, 30}, kTraced));
  EXPECT_TRUE(TypeUntil("BackSpace", [&] { return Contours().Traced().size() == 1; }));
  EXPECT_EQ(Contours().Selected(), CScissorsContours::kNone);
}

TEST_F(ScissorsViewTest, BackSpaceKeepsTheContoursWhileOneIsInProgress) {
  TraceAndKeep(30);
  Point({30, 30});
  ASSERT_EQ(Contours().Selected(), 0);
  ClickAt({90, 90});
  PressKey("BackSpace");
  Point({91, 91});
  EXPECT_EQ(Contours().Traced().size(), 1U);
}

TEST_F(ScissorsViewTest, KeysZoomAroundTheMouse) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  for (int zoom = 2; zoom <= 17; ++zoom) {
    ASSERT_TRUE(TypeUntil("ctrl+equal", [&] { return m_View.Viewport().Zoom() == std::min(zoom, 16); }));
  }
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
  for (int zoom = 15; zoom >= 0; --zoom) {
    ASSERT_TRUE(TypeUntil("ctrl+minus", [&] { return m_View.Viewport().Zoom() == std::max(zoom, 1); }));
  }
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
}

TEST_F(ScissorsViewTest, SignsOfTheNumberPadZoomToo) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  EXPECT_TRUE(TypeUntil("ctrl+KP_Add", [&] { return m_View.Viewport().Zoom() == 2; }));
  EXPECT_TRUE(TypeUntil("ctrl+KP_Subtract", [&] { return m_View.Viewport().Zoom() == 1; }));
}

TEST_F(ScissorsViewTest, WholeLargePictureIsShownReducedAndTracedAsItIs) {
  OpenWith(TopDownImageOf(1780, 1000, [](int x, int /*y*/) { return std::array{x % 4 == 0 ? 200 : 0, 80, 99}; }));
  Point({100, 50});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 4; }));
  EXPECT_TRUE(SeesAt({300, 200}, {50, 80, 99}));
  EXPECT_TRUE(SeesAt({300, 251}, kBackground));
  ClickAt({100, 50});
  EXPECT_EQ(Contours().Seed(), (CPixelPosition{402, 202}));
  ClickAt({110, 50});
  EXPECT_EQ(Contours().Seed(), (CPixelPosition{442, 202}));
  EXPECT_GT(Contours().InProgress().m_aPixels.size(), 40U);
  EXPECT_TRUE(SeesAt({105, 50}, kInProgress));
  Point({100, 60});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 1; }));
  EXPECT_EQ(m_View.Viewport().PixelAt(100, 60), (CPixelPosition{402, 242}));
}

TEST_F(ScissorsViewTest, FromTheReducedPictureKeysLeadToZoomOneOnly) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({100, 50});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 3; }));
  PressKey("ctrl+minus");
  ASSERT_TRUE(TypeUntil("ctrl+equal", [&] { return m_View.Viewport().Reduction() == 1; }));
  EXPECT_EQ(m_View.Viewport().Zoom(), 1);
  EXPECT_EQ(m_View.Viewport().PixelAt(100, 50), (CPixelPosition{301, 151}));
}

TEST_F(ScissorsViewTest, WheelWithCtrlZoomsAroundTheMouse) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  const auto turn = [this](int button, const char* keys) {
    HoldKeys(keys);
    Click(OnScreen({200, 160}), button);
    LetGoOfKeys(keys);
  };
  turn(4, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 2; }));
  turn(4, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 3; }));
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
  turn(5, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 2; }));
  turn(4, "shift");
  turn(5, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 1; }));
}

TEST_F(ScissorsViewTest, CurvesOfTheModelAreShownAndHiddenBelowTheContours) {
  const CExtent& extent = Grid().Surface().Lattice().Extent();
  const auto place = [&](double column, double row) {
    CPtCstr point;
    point.m_fX = extent.x0 + (extent.x1 - extent.x0) * (column + 0.5) / 200;
    point.m_fY = extent.y1 - (extent.y1 - extent.y0) * (row + 0.5) / 150;
    return point;
  };
  Grid().AddCurve(std::vector{place(20, 60), place(150, 60)}, CurveType::kNormal, false);
  Point({100, 100});
  EXPECT_TRUE(SeesAt({80, 60}, {90, 90, 90})) << "off at the opening";
  ASSERT_TRUE(TypeUntil("c", [&] { return m_View.ShowsCurves(); }));
  const CRgb crease{255, 128, 0};
  EXPECT_TRUE(SeesAt({80, 60}, crease));
  EXPECT_TRUE(SeesAt({80, 61}, {90, 90, 90})) << "thin";
  TraceAndKeep(60);
  EXPECT_TRUE(SeesAt({40, 60}, kTraced));
  Grid().AddCurve(std::vector{place(20, 120), place(150, 120)}, CurveType::kNormal, false);
  EXPECT_TRUE(SeesAt({80, 120}, crease)) << "it follows the model";
  Point({100, 100});
  PressKey("ctrl+c");
  PressKey("alt+c");
  ASSERT_TRUE(TypeUntil("c", [&] { return !m_View.ShowsCurves(); }));
  EXPECT_TRUE(SeesAt({80, 120}, {90, 90, 90}));
  ASSERT_TRUE(TypeUntil("c", [&] { return m_View.ShowsCurves(); }));
  m_View.Close();
  m_View.Open();
  EXPECT_FALSE(m_View.ShowsCurves());
}

TEST_F(ScissorsViewTest, SizeIsKeptForTheNextOpening) {
  m_Screen.AskForSize(*Window(), 700, 600);
  ASSERT_TRUE(RunToolkitUntil([&] { return m_View.w() == 700; }));
  OpenWith(GreyPicture(900, 800, 50));
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iWidth, 700);
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iHeight, 600);
  EXPECT_EQ(m_View.Viewport().VisibleSize(), (CPixelPosition{700, 578}));
}

TEST_F(ScissorsViewTest, RightDragMovesThePicture) {
  const CTopDownImage picture = RandomTopDownImage(900, 800, 3);
  OpenWith(picture);
  Drag(OnScreen({200, 160}), OnScreen({150, 140}), 3);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().First() == CPixelPosition{50, 20}; }));
  const auto colour = picture.ColourAt({60, 40});
  EXPECT_TRUE(SeesAt({10, 20}, {colour[0], colour[1], colour[2]}));
  EXPECT_FALSE(Contours().IsInProgress());
}

TEST_F(ScissorsViewTest, LargeTreeGrowsInSlicesAndShowsItsProgress) {
  OpenWith(RandomTopDownImage(1600, 1200, 3));
  ClickAt({20, 30});
  EXPECT_TRUE(Tool().IsBuilding());
  bool showedProgress = false;
  EXPECT_TRUE(RunToolkitUntil([&] {
    showedProgress = showedProgress || std::string(m_View.StatusText()).find("paths: ") != std::string::npos;
    return !Tool().IsBuilding();
  }));
  EXPECT_TRUE(showedProgress);
  EXPECT_EQ(std::string(m_View.StatusText()).find("paths: "), std::string::npos);
}

TEST_F(ScissorsViewTest, NextClickNeedNotWaitForTheTree) {
  OpenWith(RandomTopDownImage(1600, 1200, 3));
  ClickAt({20, 30});
  ClickAt({400, 380});
  EXPECT_TRUE(Tool().IsBuilding());
  EXPECT_GT(Contours().InProgress().m_aPixels.size(), 300U);
}

TEST_F(ScissorsViewTest, EveryWayOfClosingIsReported) {
  int closed = 0;
  m_View.OnClosed([&] { ++closed; });
  m_View.Close();
  EXPECT_EQ(closed, 1);
  OpenWith(GreyPicture(100, 100));
  m_View.PictureLoaded();
  EXPECT_EQ(closed, 2);
}

TEST_F(ScissorsViewTest, WindowButtonAndEscapeCloseIt) {
  int closed = 0;
  m_View.OnClosed([&] { ++closed; });
  ClickAt({20, 30});
  m_Screen.AskToClose(*Window());
  EXPECT_TRUE(RunToolkitUntil([&] { return !m_View.IsOpen(); }));
  EXPECT_FALSE(m_View.shown());
  EXPECT_EQ(closed, 1);
  m_View.Open();
  ASSERT_TRUE(RunToolkitUntil([&] { return Window().has_value() && m_Screen.HasFocus(*Window()); }));
  EXPECT_TRUE(TypeUntil("Escape", [&] { return closed == 2; }));
  EXPECT_FALSE(m_View.IsOpen());
}

TEST_F(ScissorsViewTest, ReopenedWindowStartsAfresh) {
  TraceAndKeep(30);
  m_View.Close();
  m_View.Open();
  EXPECT_TRUE(Contours().Traced().empty());
  EXPECT_EQ(m_View.Viewport().Zoom(), 1);
}

TEST_F(ScissorsViewTest, LargerWindowShowsMore) {
  OpenWith(GreyPicture(900, 800, 50));
  m_Screen.AskForSize(*Window(), 700, 600);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.w() == 700; }));
  EXPECT_EQ(m_View.Viewport().VisibleSize(), (CPixelPosition{700, 578}));
  EXPECT_TRUE(SeesAt({690, 570}, {50, 50, 50}));
}

namespace {

// What the user can bring about in the window, as a text.
class ScissorsKeysTest : public ScissorsViewTest {
 protected:
  static constexpr CPixelPosition kFirst{20, 30};
  static constexpr CPixelPosition kNext{60, 30};

  std::string State() {
    std::ostringstream out;
    const auto put = [&out](const CTracedContour& contour) {
      for (const CPathPixel& p : contour.m_aPixels)
        out << p.m_iColumn << ' ' << p.m_iRow << ' ' << p.m_bKeyPoint << ' ';
      out << contour.m_bClosed << '\n';
    };
    const CPixelViewport& viewport = m_View.Viewport();
    out << viewport.Zoom() << ' ' << viewport.Reduction() << m_View.ShowsCurves() << ' ' << viewport.First().m_iColumn
        << ' ' << viewport.First().m_iRow << '\n';
    put(Contours().InProgress());
    for (const CTracedContour& contour : Contours().Traced()) put(contour);
    for (const auto& curve : m_Host.m_aaCurves) out << curve.size() << ' ' << curve.back().x << '\n';
    return out.str();
  }
  template <typename Act>
  std::string Outcome(Act&& act) {
    const std::string before = State();
    act();
    return State() == before ? "" : State();
  }
  bool Type(const CTypedKey& key) {
    return WithTypedKey(key, [this] { return m_View.child(0)->handle(FL_KEYBOARD) != 0; });
  }
  // The window shows the picture twice as large, and a contour is in progress or one is selected.
  void Prepare(bool inProgress) {
    if (m_View.ShowsCurves()) Type({'c', 0, "c"});
    while (m_View.Viewport().Zoom() < 2) Type({'=', FL_CTRL, "="});
    while (m_View.Viewport().Zoom() > 2) Type({'-', FL_CTRL, "-"});
    while (!Contours().Traced().empty()) Tool().Contours().SelectAt(kFirst), Tool().Contours().RemoveSelected();
    m_Host.m_aaCurves.clear();
    Tool().Press(kFirst, true, m_View.Viewport());
    Tool().Press(kNext, false, m_View.Viewport());
    if (inProgress) return;
    Tool().Enter(kNext, false);
    Tool().Contours().SelectAt(kFirst);
  }
};

}  // namespace

// Escape goes on to the toolkit, which closes the window.
TEST_F(ScissorsKeysTest, KeysAreThoseListed) {
  Point({100, 100});
  ExpectKeysAreThoseListed(InputsAt({"scissors"}), [this](const CTypedKey& key) {
    std::string outcome;
    for (const bool inProgress : {true, false}) {
      Prepare(inProgress);
      outcome += Outcome([&] { Type(key); });
    }
    return outcome;
  });
}

TEST_F(ScissorsKeysTest, ClicksAndDragsAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"scissors"}), [this](const CKeyInput& input) {
    OpenWith(GreyPicture(800, 700));
    Prepare(true);
    const auto send = [this](int event, int place) {
      Fl::e_x = Fl::e_y = place;
      m_View.child(0)->handle(event);
    };
    return Outcome([&] {
      Fl::e_state = input.m_iModifiers;
      Fl::e_keysym = FL_Button + input.m_aiButtons[0];
      send(FL_PUSH, 120);
      const int end = input.m_Kind == CKeyInput::Kind::Drag ? 60 : 120;
      send(FL_DRAG, end);
      send(FL_RELEASE, end);
      Fl::e_state = 0;
    });
  });
}
