// The controls of the main window as they are at the start: one table, and what a user sees of it.

#include <array>
#include <cmath>
#include <typeinfo>

#include <FL/Fl_Box.H>
#include <FL/Fl_Toggle_Button.H>

#include "support/gui/LabelSize.h"
#include "support/gui/WindowTest.h"
#include "ui/window/CNumberOutput.h"
#include "ui/window/HelpButtons.h"

namespace {

using enum Control;

struct CExpected {
  Control m_Control;
  const char* m_pLabel;
  const std::type_info& m_Kind;
  uchar m_uType;
  CRect m_Rect;
  int m_iHelp = -1;
  int m_iLargestLabel = 14;
  bool m_bVisible = true;
  bool m_bActive = true;
};

constexpr uchar kPlain = 0;
constexpr uchar kToggle = FL_TOGGLE_BUTTON;
constexpr uchar kRadio = FL_RADIO_BUTTON;
constexpr bool kHidden = false;

// clang-format off
const auto kTable = std::to_array<CExpected>({
  {Constraints, "Constraints:", typeid(Fl_Group), kPlain, {5, 476, 140, 66}},
  {PositionConstraint, "Position constraint", typeid(CHelpRoundButton), kRadio, {5, 478, 140, 20}, 2},
  {NormalConstraint, "Normal constraint", typeid(CHelpRoundButton), kRadio, {5, 498, 140, 20}, 3},
  {CurveConstraint, "Curve constraint", typeid(CHelpRoundButton), kRadio, {5, 518, 140, 20}, 4},
  {CurveType, "Curve Constraint Type :", typeid(Fl_Group), kPlain, {260, 476, 168, 80}},
  {PositionDiscontinuity, "[p] Position discontinuity", typeid(CHelpLightButton), kRadio, {265, 481, 158, 18}, 5, 12},
  {NormalDiscontinuity, "[n] Normal discontinuity", typeid(CHelpLightButton), kRadio, {265, 505, 158, 18}, 6, 12},
  {FairnessConstraint, "[f] Fairness constraint", typeid(CHelpLightButton), kRadio, {265, 529, 158, 18}, 7, 12},
  {Popup, "Popup", typeid(Fl_Button), kPlain, {150, 458, 38, 30}, -1, 10},
  {NormalTest, "Normal\ntest", typeid(Fl_Toggle_Button), kToggle, {195, 458, 38, 30}, -1, 10},
  {Select, "Select", typeid(CHelpButton), kToggle, {150, 493, 38, 30}, 10, 10},
  {Freeze, "Freeze", typeid(CHelpButton), kToggle, {195, 493, 38, 30}, 9, 10, kHidden},
  {ResetImageView, "Reset\nthe\n2D view", typeid(CHelpButton), kPlain, {150, 526, 83, 30}, 1, 10},
  {ConstraintCount, "Number of\nactive constraints", typeid(CNumberOutput), kPlain, {90, 545, 40, 15}},
  {DebugZone, "DEBUG ZONE:", typeid(Fl_Box), kPlain, {15, 565, 80, 18}},
  {CellCount, "Number of\nactive cells", typeid(CNumberOutput), kPlain, {203, 565, 50, 18}},
  {PointCount, "Number of\nactive points", typeid(CNumberOutput), kPlain, {203, 600, 50, 18}},
  {HorizontalCoefs, "HORIZ\nCOEFS", typeid(Fl_Toggle_Button), kToggle, {273, 558, 50, 32}},
  {VerticalCoefs, "VERT\n COEFS", typeid(Fl_Toggle_Button), kToggle, {325, 558, 50, 32}},
  {TorsionCells, "TORSION\nCELLS", typeid(Fl_Toggle_Button), kToggle, {377, 558, 50, 32}},
  {ShowLevel, "SHOW\nH LEVEL", typeid(Fl_Toggle_Button), kToggle, {377, 592, 50, 42}},
  {Influence, "Influence of\ncurrent point", typeid(CNumberOutput), kPlain, {315, 600, 50, 18}, -1, 14, kHidden},
  {Level, "H level", typeid(CNumberOutput), kPlain, {315, 600, 50, 18}, -1, 14, kHidden},
  {PointNumber, "H-Numerotation of\nselected point", typeid(CNumberOutput), kPlain, {203, 600, 50, 18}, -1, 14, kHidden},
  {TestInterpolation, "TEST\nINTERP", typeid(Fl_Toggle_Button), kToggle, {15, 600, 50, 30}},
  {PointerInside, "", typeid(Fl_Button), kPlain, {120, 565, 14, 14}, -1, 14, true, false},
  {Interpolation, "", typeid(Fl_Group), kPlain, {68, 594, 205, 40}, -1, 14, kHidden},
  {CentreName, "P1 : Number & coef", typeid(CPassiveOutput), FL_NORMAL_OUTPUT, {160, 595, 50, 12}, -1, 14, kHidden},
  {FirstNumber, "P2 : Number & coef", typeid(CNumberOutput), kPlain, {160, 608, 50, 12}, -1, 14, kHidden},
  {SecondNumber, "P3 : Number & coef", typeid(CNumberOutput), kPlain, {160, 621, 50, 12}, -1, 14, kHidden},
  {CentreCoef, "", typeid(CNumberOutput), kPlain, {212, 595, 60, 12}, -1, 14, kHidden},
  {FirstCoef, "", typeid(CNumberOutput), kPlain, {212, 608, 60, 12}, -1, 14, kHidden},
  {SecondCoef, "", typeid(CNumberOutput), kPlain, {212, 621, 60, 12}, -1, 14, kHidden},
  {ResetModelView, "Reset\nthe 3D view", typeid(CHelpButton), kPlain, {767, 513, 100, 49}, 14},
  {ResetSolver, "Reset\nthe solver", typeid(CHelpButton), kPlain, {767, 460, 100, 49}, 15},
  {TestWavelets, "Test\nW*invW", typeid(Fl_Button), kPlain, {685, 584, 80, 49}},
  {Interfaces, "Interfaces", typeid(Fl_Group), kPlain, {440, 476, 155, 66}},
  {LightSources, "Light sources", typeid(CHelpLightButton), kToggle, {444, 480, 146, 18}, 11, 14, kHidden},
  {Recorder, "Record an animation", typeid(CHelpLightButton), kToggle, {444, 504, 146, 18}, 12},
  {Scissors, "Intelligent scissors", typeid(CHelpLightButton), kToggle, {444, 504, 146, 18}, 13, 14, true, false},
  {SwitchResolution, "Switch to HR", typeid(CHelpButton), kPlain, {685, 460, 80, 49}, 16, 11},
  {SolverRun, "", typeid(Fl_Group), kPlain, {600, 513, 165, 49}},
  {StopSolver, "Stop the solver", typeid(CHelpLightButton), kRadio, {600, 513, 165, 24}, 17},
  {ResumeSolver, "Resume the solver", typeid(CHelpLightButton), kRadio, {600, 538, 165, 24}, 18},
  {Iterations, "Number of Iterations", typeid(CNumberOutput), kPlain, {650, 565, 50, 16}, -1, 12},
  {Slower, "-", typeid(Fl_Button), kPlain, {705, 565, 16, 16}},
  {Faster, "+", typeid(Fl_Button), kPlain, {722, 565, 16, 16}},
  {MenuBar, "", typeid(CMainMenu), kPlain, {0, 0, 870, 20}},
  {ImageView, "", typeid(CImageView), FL_WINDOW, {2, 23, 430, 430}},
  {ModelView, "", typeid(CGridView), FL_WINDOW, {438, 23, 430, 430}},
  {Control::HelpLine, "", typeid(CHelpLine), FL_NORMAL_OUTPUT, {0, 639, 870, 20}},
  {LeftPanel, "", typeid(Fl_Group), kPlain, {0, 456, 435, 180}},
  {RightPanel, "", typeid(Fl_Group), kPlain, {435, 456, 435, 180}},
});

const auto kHelp = std::to_array<const char*>({
  "",
  "Reset the left view",
  "Left-click on the left window to create new position constraints. Left-click and drag to move them, Right click and drag to change the height",
  "Left-click on the left window to create new normal constraints. Left-click and drag to move them, Right click and drag to change the orientation",
  "Left-click on the left window to start creating a curve. Right click on an existing curve do modify its parameters.",
  "Create Position Discontinuities to deal with depth gaps",
  "Create Normal Discontinuities to render sharp edges",
  "Create Fairing curves to smoothen the model along a line",
  "Left-Click on the left window to go on creating a piece-wise linear curve. Press Enter to validate it, or Escape to cancel it",
  "This feature hasn't been fully implemented yet",
  "Use this tool to modify the grid resolution manually",
  "Use this feature to extract and modify the illumination of the model",
  "Use this feature to record and save an animation",
  "Use this feature to draw discontinuities easier using intelligent scissors",
  "Reset the right view",
  "Reset the solver by setting the height field to 0",
  "Switch between normal grid resolution and highest grid resolution",
  "Manualy stop the solver",
  "Manualy resume the solver",
  "Click and drag to change the 3D view : left-click and right-click to rotate, middle-click to zoom",
  "Frame nb %4d recorded.",
});
// clang-format on

class WindowControlsTest : public WindowTest {
 protected:
  WindowControlsTest() {
    m_Window.SetServices(Services());
    for (const auto tool :
         {CImageViewUI::Tool::LightSources, CImageViewUI::Tool::Recorder, CImageViewUI::Tool::Scissors})
      AddTool(tool);
  }
  CRect RectOf(Control control) {
    const Fl_Widget& widget = Widget(control);
    return {widget.x(), widget.y(), widget.w(), widget.h()};
  }
  static const char* LabelOf(const Fl_Widget& widget) { return widget.label() == nullptr ? "" : widget.label(); }

  // Where the toolkit draws a label beside or above its control.
  CRect LabelRect(Control control) {
    const Fl_Widget& widget = Widget(control);
    const auto [width, height] = LabelSizeOf(widget);
    const Fl_Align align = widget.align();
    if ((align & FL_ALIGN_LEFT) != 0 && (align & (FL_ALIGN_INSIDE | FL_ALIGN_TOP)) == 0)
      return {widget.x() - 3 - width, widget.y() + (widget.h() - height) / 2, width, height};
    const int middle = widget.x() + (widget.w() - width) / 2;
    if ((align & FL_ALIGN_BOTTOM) != 0) return {middle, widget.y() + widget.h(), width, height};
    if ((align & FL_ALIGN_TOP) != 0) return {widget.x(), widget.y() - height, width, height};
    return {middle, widget.y() + (widget.h() - height) / 2, width, height};
  }
  static bool Contains(const CRect& outer, const CRect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.Right() <= outer.Right() &&
           inner.Bottom() <= outer.Bottom();
  }
  static bool Overlap(const CRect& a, const CRect& b) {
    return a.x < b.Right() && b.x < a.Right() && a.y < b.Bottom() && b.y < a.Bottom();
  }
  // No label is cut off by the window or lies on another control that shows something.
  void ExpectLabelsReadable() {
    for (const CExpected& row : kTable) {
      const Fl_Widget& widget = Widget(row.m_Control);
      if (!IsVisible(row.m_Control) || *LabelOf(widget) == '\0') continue;
      const CRect label = LabelRect(row.m_Control);
      EXPECT_TRUE(Contains({0, 0, m_Window.w(), m_Window.h()}, label)) << LabelOf(widget);
      for (const CExpected& other : kTable) {
        if (other.m_Control == row.m_Control || !IsVisible(other.m_Control)) continue;
        if (dynamic_cast<Fl_Group*>(&Widget(other.m_Control)) != nullptr) continue;
        if (row.m_Control == Scissors || other.m_Control == Scissors) continue;
        EXPECT_FALSE(Overlap(label, RectOf(other.m_Control)))
            << LabelOf(widget) << " on " << LabelOf(Widget(other.m_Control));
      }
    }
  }
};

}  // namespace

TEST_F(WindowControlsTest, TableHoldsEveryControl) { EXPECT_EQ(std::size(kTable), kControlCount); }

TEST_F(WindowControlsTest, AreOfTheirKindInTheirPlace) {
  for (const CExpected& row : kTable) {
    const Fl_Widget& widget = Widget(row.m_Control);
    EXPECT_TRUE(typeid(widget) == row.m_Kind) << row.m_pLabel;
    EXPECT_EQ(widget.type(), row.m_uType) << row.m_pLabel;
    EXPECT_STREQ(LabelOf(widget), row.m_pLabel);
    EXPECT_EQ(RectOf(row.m_Control), row.m_Rect) << row.m_pLabel;
  }
}

TEST_F(WindowControlsTest, StartAsTheTableSays) {
  for (const CExpected& row : kTable) {
    EXPECT_EQ(IsVisible(row.m_Control), row.m_bVisible) << row.m_pLabel;
    if (row.m_bVisible) {
      EXPECT_EQ(IsActive(row.m_Control), row.m_bActive) << row.m_pLabel;
    }
  }
}

TEST_F(WindowControlsTest, OnlyResumeIsOn) {
  for (const CExpected& row : kTable) {
    const auto* button = dynamic_cast<Fl_Button*>(&Widget(row.m_Control));
    if (button != nullptr) {
      EXPECT_EQ(button->value() != 0, row.m_Control == ResumeSolver) << row.m_pLabel;
    }
  }
}

TEST_F(WindowControlsTest, LabelsAreNoLargerThanStated) {
  for (const CExpected& row : kTable) EXPECT_LE(Widget(row.m_Control).labelsize(), row.m_iLargestLabel) << row.m_pLabel;
  EXPECT_EQ(Widget(Popup).labelsize(), 10);
}

TEST_F(WindowControlsTest, TextSizesAreAsStated) {
  EXPECT_EQ(HelpLine().textsize(), 9);
  EXPECT_EQ(static_cast<Fl_Value_Output&>(Widget(Iterations)).textsize(), 12);
}

TEST_F(WindowControlsTest, ReadOutsStartAsStated) {
  EXPECT_EQ(ReadOut(ConstraintCount), 0);
  EXPECT_EQ(ReadOut(Level), 0);
  EXPECT_EQ(ReadOut(PointNumber), -1);
  EXPECT_EQ(ReadOut(Iterations), 0);
  EXPECT_STREQ(static_cast<Fl_Output&>(Widget(CentreName)).value(), "Center");
}

TEST_F(WindowControlsTest, HelpTextsAreThoseOfTheTable) {
  ASSERT_EQ(std::size_t{HelpText::kFirstMessage}, std::size(kHelp));
  for (std::size_t k = 0; k < std::size(kHelp); ++k) EXPECT_STREQ(HelpTextOf(static_cast<int>(k)), kHelp[k]);
  EXPECT_STREQ(HelpTextOf(-1), "");
}

TEST_F(WindowControlsTest, ExplainThemselvesUnderTheMouse) {
  HelpLine().SetCurrentHelp(4);
  for (const CExpected& row : kTable) {
    if (row.m_iHelp < 0) continue;
    for (const int event : {FL_ENTER, FL_MOVE}) {
      EXPECT_EQ(Widget(row.m_Control).handle(event), 1);
      EXPECT_STREQ(HelpLine().value(), kHelp[static_cast<std::size_t>(row.m_iHelp)]) << row.m_pLabel;
    }
    EXPECT_EQ(Widget(row.m_Control).handle(FL_LEAVE), 1);
    EXPECT_STREQ(HelpLine().value(), kHelp[4]);
  }
}

TEST_F(WindowControlsTest, NeverTakeTheKeyboard) {
  ShowWindow();
  Fl::focus(&m_Window.ImageView());
  for (const CExpected& row : kTable) {
    if (row.m_Control == ImageView || row.m_Control == ModelView || !IsVisible(row.m_Control)) continue;
    if (row.m_iHelp >= 0) {
      EXPECT_EQ(Widget(row.m_Control).handle(FL_FOCUS), 0) << row.m_pLabel;
    }
    if (dynamic_cast<Fl_Group*>(&Widget(row.m_Control)) != nullptr || row.m_Control == MenuBar) continue;
    SendMouse(FL_PUSH, row.m_Control);
    EXPECT_EQ(Fl::focus(), &m_Window.ImageView()) << row.m_pLabel;
    Fl::pushed(nullptr);
  }
}

TEST_F(WindowControlsTest, WindowHasItsSizeTitleAndLimits) {
  EXPECT_EQ(m_Window.w(), 870);
  EXPECT_EQ(m_Window.h(), 660);
  EXPECT_STREQ(m_Window.label(), "Image View");
}

TEST_F(WindowControlsTest, LabelsAreReadableAtEverySize) {
  for (const int width : {800, 870, 1000, 1600}) {
    for (const MenuEntry toggled : {MenuEntry::StatusBar, MenuEntry::DebugInterface, MenuEntry::FreezeMap}) {
      m_Window.size(width, 300);
      ExpectLabelsReadable();
      Menu().Choose(toggled);
    }
  }
  LoadPicture();
  ExpectLabelsReadable();
}

TEST_F(WindowControlsTest, LabelsAreReadableWithEveryDebugTool) {
  for (const Control tool : {TestInterpolation, ShowLevel, HorizontalCoefs}) {
    ClickOn(tool);
    ExpectLabelsReadable();
  }
}

TEST_F(WindowControlsTest, ResetButtonHasTwoLinesWhereThereIsRoom) {
  m_Window.size(1200, 660);
  EXPECT_STREQ(Widget(ResetImageView).label(), "Reset\nthe 2D view");
  m_Window.size(870, 660);
  EXPECT_STREQ(Widget(ResetImageView).label(), "Reset\nthe\n2D view");
}

TEST_F(WindowControlsTest, ScaleEnlargesPlacesAndTexts) {
  setenv("RELIEVO_SCALE", "2", 1);
  CImageViewUI window(RegisterSolverTimer, &m_Dialogs);
  unsetenv("RELIEVO_SCALE");
  EXPECT_EQ(window.w(), 1740);
  EXPECT_EQ(window.h(), 1320);
  EXPECT_EQ(window.Widget(ResumeSolver).x(), 1200);
  EXPECT_EQ(window.Widget(ResumeSolver).h(), 48);
  EXPECT_EQ(window.Widget(Popup).labelsize(), 20);
  EXPECT_EQ(window.HelpLine().textsize(), 18);
}

TEST(HelpLineTest, RemembersWhatStays) {
  CHelpLine line(0, 0, 100, 20);
  EXPECT_STREQ(line.value(), "");
  line.SetCurrentHelp(2);
  line.ShowHelp(14);
  EXPECT_STREQ(line.value(), kHelp[14]);
  EXPECT_EQ(line.CurrentHelp(), 2);
  line.RestoreHelp();
  EXPECT_STREQ(line.value(), kHelp[2]);
}

TEST(HelpLineTest, AMessageStaysWhileTheMouseIsWhereItWas) {
  CHelpLine line(0, 0, 100, 20);
  line.SetCurrentHelp(2);
  line.ShowHelp(14);
  line.ShowMessage("height 44.8");
  EXPECT_STREQ(line.value(), "height 44.8");
  EXPECT_EQ(line.CurrentHelp(), 2);
  line.ShowHelp(14);
  EXPECT_STREQ(line.value(), "height 44.8");
  line.ShowHelp(15);
  EXPECT_STREQ(line.value(), kHelp[15]);
  line.ShowHelp(14);
  EXPECT_STREQ(line.value(), kHelp[14]);
}

TEST(HelpLineTest, AMessageGivesWayToTheTextThatStays) {
  CHelpLine line(0, 0, 100, 20);
  line.SetCurrentHelp(2);
  line.ShowMessage("height 44.8");
  line.RestoreHelp();
  EXPECT_STREQ(line.value(), kHelp[2]);
  line.ShowMessage("height 44.8");
  line.ShowHelp(2);
  EXPECT_STREQ(line.value(), kHelp[2]);
  line.ShowMessage("height 44.8");
  line.SetCurrentHelp(2);
  EXPECT_STREQ(line.value(), kHelp[2]);
}

TEST(HelpLineTest, FillsInTheFrame) {
  CHelpLine line(0, 0, 100, 20);
  line.SetCurrentHelp(3);
  for (const auto& [frame, text] : {std::pair{7, "Frame nb    7 recorded."}, {12345, "Frame nb 12345 recorded."}}) {
    line.ShowFrameRecorded(frame);
    EXPECT_STREQ(line.value(), text);
  }
  line.RestoreHelp();
  EXPECT_STREQ(line.value(), kHelp[3]);
}
