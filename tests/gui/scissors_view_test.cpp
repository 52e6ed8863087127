// The window of the scissors: what it shows, and its mouse and keys.

#include <sstream>
#include <string>

#include "support/KeyTable.h"
#include "support/gui/ScissorsViewTest.h"

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
    // Keys zoom about the mouse, which on a large screen may rest so far away that the picture ends there.
    MovePointer(OnScreen({100, 100}));
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
