#include <array>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "support/ConsoleCapture.h"
#include "support/LayoutBuilders.h"

namespace {

bool IsShown(const CControlRow& row, const CLayoutOptions& options) {
  if (row.m_Control == Control::HelpLine) return options.m_bHelpLine;
  return options.m_bDebugZone || !IsInDebugZone(row.m_Control);
}

bool Overlap(const CRect& a, const CRect& b) {
  return a.x < b.Right() && b.x < a.Right() && a.y < b.Bottom() && b.y < a.Bottom();
}

// Whether one of the controls is around the other.
bool AreNested(const CControlRow& a, const CControlRow& b) {
  const auto contains = [](Control group, const CControlRow& row) {
    Control parent = row.m_Parent;
    while (parent != Control::Window && parent != group) parent = RowOf(parent).m_Parent;
    return parent == group;
  };
  return contains(a.m_Control, b) || contains(b.m_Control, a);
}

// Alternatives share a place in the design, and are never shown at the same time but for the tools.
bool ShareAPlace(const CControlRow& a, const CControlRow& b) { return Overlap(a.m_Design, b.m_Design); }

CLayoutOptions AnyOptions() {
  CLayoutOptions options;
  options.m_fScale = *rc::gen::element(1.0, 1.25, 1.5, 1.75, 2.0, 3.0, 0.75);
  const auto scaled = [&](int length) { return static_cast<int>(std::lround(length * options.m_fScale)); };
  options.m_iWidth = *rc::gen::inRange(scaled(kMinDesignWidth), scaled(2500));
  options.m_bDebugZone = *rc::gen::arbitrary<bool>();
  options.m_bHelpLine = *rc::gen::arbitrary<bool>();
  options.m_bPictureLoaded = *rc::gen::arbitrary<bool>();
  options.m_iHeight = *rc::gen::inRange(FittingHeight(options), scaled(2000));
  return options;
}

}  // namespace

TEST(WindowLayoutTest, DesignSizeGivesTheTable) {
  const CWindowLayout layout = ComputeLayout({});
  for (const CControlRow& row : kControls) EXPECT_EQ(layout.Of(row.m_Control), row.m_Design) << row.m_pLabel;
  EXPECT_FALSE(layout.m_bRoomyReset);
}

TEST(WindowLayoutTest, ScaleMultipliesTheTable) {
  const CWindowLayout layout = ComputeLayout({2 * 870, 2 * 660, 2.0});
  for (const CControlRow& row : kControls) {
    const CRect& design = row.m_Design;
    EXPECT_EQ(layout.Of(row.m_Control), (CRect{2 * design.x, 2 * design.y, 2 * design.w, 2 * design.h}));
  }
  EXPECT_FALSE(layout.m_bRoomyReset);
}

TEST(WindowLayoutTest, RowsStandInTheOrderOfTheControls) {
  for (std::size_t k = 0; k < kControlCount; ++k) {
    EXPECT_EQ(Index(kControls[k].m_Control), k);
    const Control parent = kControls[k].m_Parent;
    EXPECT_TRUE(parent == Control::Window || Index(parent) < k) << kControls[k].m_pLabel;
  }
}

RC_GTEST_PROP(WindowLayoutProperty, EverythingShownLiesInsideAndHasRoom, ()) {
  const CLayoutOptions options = AnyOptions();
  const CWindowLayout layout = ComputeLayout(options);
  for (const CControlRow& row : kControls) {
    if (!IsShown(row, options)) continue;
    const CRect& rect = layout.Of(row.m_Control);
    const bool isView = row.m_Control == Control::ImageView || row.m_Control == Control::ModelView;
    RC_ASSERT(rect.x >= 0 && rect.y >= 0);
    RC_ASSERT(rect.Right() <= options.m_iWidth);
    RC_ASSERT(rect.Bottom() <= options.m_iHeight);
    RC_ASSERT(rect.w > 0);
    RC_ASSERT(rect.h > 0 || (isView && rect.h == 0));
  }
}

RC_GTEST_PROP(WindowLayoutProperty, ControlsLieInsideTheirGroups, ()) {
  const CLayoutOptions options = AnyOptions();
  const CWindowLayout layout = ComputeLayout(options);
  for (const CControlRow& row : kControls) {
    if (row.m_Parent == Control::Window || !IsShown(row, options)) continue;
    const CRect& inside = layout.Of(row.m_Control);
    const CRect& group = layout.Of(row.m_Parent);
    RC_ASSERT(inside.x >= group.x && inside.y >= group.y);
    RC_ASSERT(inside.Right() <= group.Right() && inside.Bottom() <= group.Bottom());
  }
}

RC_GTEST_PROP(WindowLayoutProperty, NothingLiesOnAnythingElse, ()) {
  const CLayoutOptions options = AnyOptions();
  const CWindowLayout layout = ComputeLayout(options);
  for (const CControlRow& a : kControls) {
    for (const CControlRow& b : kControls) {
      if (a.m_Control >= b.m_Control || AreNested(a, b) || ShareAPlace(a, b)) continue;
      if (IsShown(a, options) && IsShown(b, options)) {
        RC_ASSERT(!Overlap(layout.Of(a.m_Control), layout.Of(b.m_Control)));
      }
    }
  }
}

RC_GTEST_PROP(WindowLayoutProperty, ViewsAreSideBySideAndEqual, ()) {
  const CWindowLayout layout = ComputeLayout(AnyOptions());
  const CRect& left = layout.Of(Control::ImageView);
  const CRect& right = layout.Of(Control::ModelView);
  RC_ASSERT(left.w == right.w && left.h == right.h && left.y == right.y);
  RC_ASSERT(left.Right() < right.x);
}

RC_GTEST_PROP(WindowLayoutProperty, ToolsHaveRowsOfTheirOwnOnceAPictureIsLoaded, ()) {
  CLayoutOptions options = AnyOptions();
  options.m_bPictureLoaded = true;
  const CWindowLayout layout = ComputeLayout(options);
  RC_ASSERT(layout.Of(Control::LightSources).Bottom() <= layout.Of(Control::Recorder).y);
  RC_ASSERT(layout.Of(Control::Recorder).Bottom() <= layout.Of(Control::Scissors).y);
  RC_ASSERT(layout.Of(Control::Scissors).Bottom() <= layout.Of(Control::Interfaces).Bottom());
}

RC_GTEST_PROP(WindowLayoutProperty, ColumnsFollowTheSplits, ()) {
  CLayoutOptions options = AnyOptions();
  options.m_fScale = 1.0;
  const CWindowLayout layout = ComputeLayout(options);
  const int left = layout.Of(Control::LeftPanel).w;
  const int right = layout.Of(Control::RightPanel).w;
  RC_ASSERT(left + right == options.m_iWidth);
  RC_ASSERT(layout.Of(Control::CurveType).w == SplitInThree(left - 14, 163.0F / 421.0F, 168.0F / 421.0F)[1]);
  const CThreeParts parts = SplitInThree(right - 18, 155.0F / 417.0F, 100.0F / 417.0F);
  RC_ASSERT(layout.Of(Control::Interfaces).w == parts[0]);
  RC_ASSERT(layout.Of(Control::ResetSolver).w == parts[1]);
}

TEST(WindowLayoutTest, UntilAPictureIsLoadedTheScissorsLieOnTheRecorder) {
  const CWindowLayout layout = ComputeLayout({1000, 700});
  EXPECT_EQ(layout.Of(Control::Scissors), layout.Of(Control::Recorder));
}

TEST(WindowLayoutTest, ViewsTakeTheRoomThatIsLeft) {
  const auto viewHeight = [](int height, bool debugZone, bool helpLine) {
    return ComputeLayout({870, height, 1.0, debugZone, helpLine}).Of(Control::ImageView).h;
  };
  EXPECT_EQ(viewHeight(760, true, true), 530);
  EXPECT_EQ(viewHeight(660, true, false), 453);
  EXPECT_EQ(viewHeight(660, false, true), 482);
  EXPECT_EQ(viewHeight(660, false, false), 505);
}

TEST(WindowLayoutTest, CoordinatesTakeEighteenPixelsFromTheViewsAndNothingElse) {
  for (const double scale : {1.0, 2.0}) {
    CLayoutOptions options{static_cast<int>(870 * scale), static_cast<int>(660 * scale), scale};
    const CWindowLayout without = ComputeLayout(options);
    EXPECT_EQ(without.m_Coordinates.h, 0);
    options.m_bCoordinates = true;
    const CWindowLayout with = ComputeLayout(options);
    for (const CControlRow& row : kControls) {
      const bool view = row.m_Control == Control::ImageView || row.m_Control == Control::ModelView;
      CRect expected = without.Of(row.m_Control);
      if (view) expected.h -= static_cast<int>(18 * scale);
      EXPECT_EQ(with.Of(row.m_Control), expected) << row.m_pLabel;
      EXPECT_FALSE(Overlap(with.m_Coordinates, with.Of(row.m_Control)) && row.m_Parent == Control::Window);
    }
    EXPECT_GE(with.m_Coordinates.h, 15 * scale);
  }
}

TEST(WindowLayoutTest, LowWindowsLoseTheViewsFirstAndThenTheBottom) {
  const int fits = FittingHeight({});
  EXPECT_EQ(fits, 230);
  EXPECT_EQ(ComputeLayout({800, fits}).Of(Control::ImageView).h, 0);
  const CWindowLayout lower = ComputeLayout({800, 190});
  EXPECT_EQ(lower.Of(Control::ImageView).h, 0);
  EXPECT_EQ(lower.Of(Control::HelpLine), ComputeLayout({800, fits}).Of(Control::HelpLine));
}

TEST(WindowLayoutTest, SmallestWindowFitsWithoutTheDebugZone) {
  CLayoutOptions options{800, 190};
  options.m_bDebugZone = false;
  EXPECT_LE(FittingHeight(options), 190);
}

TEST(WindowLayoutTest, ResetButtonGetsRoomInWiderWindowsAndWithoutTheDebugZone) {
  EXPECT_TRUE(ComputeLayout({1000, 660}).m_bRoomyReset);
  EXPECT_TRUE(ComputeLayout({870, 660, 1.0, false}).m_bRoomyReset);
  EXPECT_FALSE(ComputeLayout({800, 660}).m_bRoomyReset);
}

TEST(DebugZoneTest, TakesWhatDebugsAndLeavesTheTools) {
  using enum Control;
  for (const Control control : {Popup, NormalTest, ConstraintCount, DebugZone, CellCount, PointCount, HorizontalCoefs,
                                VerticalCoefs, TorsionCells, ShowLevel, Influence, Level, PointNumber,
                                TestInterpolation, PointerInside, Interpolation, TestWavelets}) {
    EXPECT_TRUE(IsInDebugZone(control)) << RowOf(control).m_pLabel;
  }
  for (const Control control : {Select, Freeze, ResetImageView, CurveType, FairnessConstraint, RightPanel, Iterations,
                                Slower, Faster, ResetSolver, LeftPanel, HelpLine}) {
    EXPECT_FALSE(IsInDebugZone(control)) << RowOf(control).m_pLabel;
  }
}

TEST(SplitInThreeTest, RaisesTheFirstOfEqualParts) {
  EXPECT_EQ(SplitInThree(10, 1.0F / 3, 1.0F / 3), (CThreeParts{4, 3, 3}));
}

TEST(SplitInThreeTest, LowersTheFirstOfEqualParts) { EXPECT_EQ(SplitInThree(5, 0.5F, 0.3F), (CThreeParts{2, 2, 1})); }

TEST(SplitInThreeTest, OfEqualErrorsTheFirstIsCorrected) {
  struct CSplit {
    CThreeParts m_Parts;
    std::array<double, 3> m_afErrors;
    int m_iLength;
    CThreeParts m_Corrected;
  };
  for (const CSplit& split :
       {CSplit{{3, 2, 1}, {0.5, 0.5, 0}, 5, {2, 2, 1}}, CSplit{{3, 2, 1}, {0, 0.5, 0.5}, 5, {3, 1, 1}},
        CSplit{{3, 2, 1}, {0.5, 0, 0.5}, 5, {2, 2, 1}}, CSplit{{3, 2, 1}, {0, 0, 0}, 5, {2, 2, 1}},
        CSplit{{3, 2, 1}, {-0.5, -0.5, 0}, 7, {4, 2, 1}}, CSplit{{3, 2, 1}, {0, -0.5, -0.5}, 7, {3, 3, 1}},
        CSplit{{3, 2, 1}, {-0.5, 0, -0.5}, 7, {4, 2, 1}}, CSplit{{3, 2, 1}, {0, 0, 0}, 7, {4, 2, 1}}}) {
    CThreeParts parts = split.m_Parts;
    CorrectSplit(parts, split.m_afErrors, split.m_iLength);
    EXPECT_EQ(parts, split.m_Corrected) << testing::PrintToString(split.m_afErrors);
  }
}

// Shares that are whole sixty-fourths of the length, so that no rounding decides between equal ones.
TEST(SplitInThreeTest, EqualSharesAreCorrectedFirstComeFirstServed) {
  EXPECT_EQ(SplitInThree(4, 0.375F, 0.375F), (CThreeParts{1, 2, 1})) << "both were rounded up";
  EXPECT_EQ(SplitInThree(4, 0.25F, 0.375F), (CThreeParts{1, 1, 2}));
  EXPECT_EQ(SplitInThree(8, 0.171875F, 0.171875F), (CThreeParts{2, 1, 5})) << "both were rounded down";
  EXPECT_EQ(SplitInThree(8, 0.65625F, 0.171875F), (CThreeParts{5, 2, 1}));
}

TEST(SplitInThreeTest, DesignWidthsComeOut) {
  EXPECT_EQ(SplitInThree(421, 163.0F / 421.0F, 168.0F / 421.0F), (CThreeParts{163, 168, 90}));
  EXPECT_EQ(SplitInThree(417, 155.0F / 417.0F, 100.0F / 417.0F), (CThreeParts{155, 100, 162}));
}

RC_GTEST_PROP(SplitInThreeProperty, PartsAddUpAndAreWithinOneOfTheirShare, ()) {
  const int length = *rc::gen::inRange(0, 10000);
  const float f1 = static_cast<float>(*rc::gen::inRange(0, 1000)) / 1000.0F;
  const float f2 = (1.0F - f1) * static_cast<float>(*rc::gen::inRange(0, 1000)) / 1000.0F;
  const ConsoleCapture console;
  const auto [a, b, c] = SplitInThree(length, f1, f2);
  RC_ASSERT(a + b + c == length);
  RC_ASSERT(std::abs(a - length * static_cast<double>(f1)) <= 1.5);
  RC_ASSERT(std::abs(b - length * static_cast<double>(f2)) <= 1.5);
}

TEST(SplitInThreeTest, SaysSoWhereNoPartCanBeCorrected) {
  ConsoleCapture console;
  CThreeParts parts{4, 4, 4};
  CorrectSplit(parts, {-0.1, -0.2, -0.3}, 11);
  EXPECT_EQ(console.Take(), "Erreur de repartition sum > t\n");
  CorrectSplit(parts, {0.1, 0.2, 0.3}, 13);
  EXPECT_EQ(console.Take(), "Erreur de repartition sum < t\n");
  EXPECT_EQ(parts, (CThreeParts{4, 4, 4}));
}
