// The manual subdivision: "Select", and what the mouse and the keys do then.

#include <string>

#include "io/Bmp.h"
#include "support/BmpBuilders.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/gui/ImageViewTest.h"

namespace {

// Over 0..100 with 4 x 4 leaves of 25 x 25 model units, which may be split twice.
class ManualSubdivisionTest : public ImageViewTest {
 protected:
  ManualSubdivisionTest() {
    Attach();
    View().SetDebugFlags(DebugFlag::kSelectCells);
    Settle();
  }
  void Settle() {
    Grid().PerformPendingWork();
    TakeConsole();
    m_Host = {};
  }
  CSaveQuadT& Saved(int k, int child) { return CStaging::Subdivision(Grid()).Root().Child(k).Child(child); }
  // The leaves of the lower left quarter and their level-two children that are selected.
  int SelectedLeaves() { return CountSelected(Grid().Wanted().Current().Root()); }
  static int CountSelected(const CSaveQuadT& node) {
    int count = node.IsSelected() ? 1 : 0;
    for (int k = 0; node.HasChildren() && k < 4; ++k) count += CountSelected(node.Child(k));
    return count;
  }
  bool IsMarked(int level, int i, int j) {
    return Grid().Surface().Tree().CellAt(level, i, j).HasFlag(CellFlag::kSelected);
  }
  void DragOver(double x0, double y0, double x1, double y1) {
    Push(kLeftButton, x0, y0);
    Drag((x0 + x1) / 2, (y0 + y1) / 2);
    Drag(x1, y1);
    Release();
  }
  // As a keyboard types it: the key, and the text it makes.
  int TypeText(int key, const char* text, int state = 0) {
    std::string copy = text;
    Fl::e_text = copy.data();
    Fl::e_length = static_cast<int>(copy.size());
    const int used = Key(key, state);
    Fl::e_text = nullptr;
    Fl::e_length = 0;
    return used;
  }
};

}  // namespace

TEST_F(ManualSubdivisionTest, ClickRefinesDownToTheFinestLevel) {
  const int before = Grid().Surface().Tree().LeafCount();
  EXPECT_EQ(Push(kLeftButton, 10.5, 10.5), 1);
  EXPECT_EQ(Release(), 1);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  EXPECT_EQ(CodeOf(Operation::kRebuildMaps), 4);
  Grid().PerformPendingWork();
  EXPECT_EQ(Grid().Surface().Tree().LeafCount(), before + 3 + 3);
  const CLattice& lattice = Grid().Surface().Lattice();
  EXPECT_EQ(
      Grid().Surface().Tree().PointInCell(10.5, 10.5)->X1() - Grid().Surface().Tree().PointInCell(10.5, 10.5)->X0(), 1);
  EXPECT_EQ(lattice.PointsPerSide(), 17);
}

TEST_F(ManualSubdivisionTest, ThreePixelsAreStillAClick) {
  for (const auto& [dx, dy, click] : {std::tuple{3, -3, true}, {-3, 3, true}, {4, 0, false}, {0, -4, false}}) {
    Push(kLeftButton, 60.5, 60.5);
    Drag(60.5 + dx, 60.5 + dy);
    Release();
    EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), click ? 4 : 0) << dx << ", " << dy;
    EXPECT_EQ(SelectedLeaves() == 0, click) << dx << ", " << dy;
    Settle();
    Grid().Initialize(2, false, 0, 0, 100, 100);
    Settle();
  }
}

TEST_F(ManualSubdivisionTest, MouseThatComesBackHasClicked) {
  Push(kLeftButton, 60.5, 60.5);
  Drag(90.5, 90.5);
  Drag(61.5, 60.5);
  Release();
  EXPECT_EQ(SelectedLeaves(), 0);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(ManualSubdivisionTest, ClickBesideTheModelDoesNothing) {
  g_fZoom = 2;  // the model in the middle of the view
  Push(kLeftButton, 5.5, 50.5);
  Release();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(TakeConsole(), "");
}

TEST_F(ManualSubdivisionTest, DragSelectsTheRectangle) {
  DragOver(30.5, 10.5, 70.5, 40.5);
  EXPECT_EQ(SelectedLeaves(), 4);
  for (const auto& [i, j] : {std::pair{1, 0}, {2, 0}, {1, 1}, {2, 1}}) EXPECT_TRUE(IsMarked(2, i, j)) << i << j;
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
}

TEST_F(ManualSubdivisionTest, RectanglesAddUpAndMayBeDrawnFromAnyCorner) {
  DragOver(40.5, 20.5, 30.5, 10.5);
  EXPECT_EQ(SelectedLeaves(), 1);
  DragOver(90.5, 60.5, 80.5, 90.5);
  EXPECT_EQ(SelectedLeaves(), 3);
  EXPECT_TRUE(IsMarked(2, 1, 0));
  EXPECT_TRUE(IsMarked(2, 3, 2));
  EXPECT_TRUE(IsMarked(2, 3, 3));
}

TEST_F(ManualSubdivisionTest, PlusSplitsTheSelectionAndMinusMergesIt) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  EXPECT_EQ(TypeText('=', "+", FL_SHIFT), 1);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kSubdivide);
  Settle();
  EXPECT_EQ(SelectedLeaves(), 4);
  EXPECT_FALSE(Saved(0, 1).IsLeaf());
  EXPECT_TRUE(IsMarked(1, 2, 0));
  EXPECT_FALSE(IsMarked(2, 1, 0));
  EXPECT_EQ(TypeText('-', "-"), 1);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kMerge);
  Settle();
  EXPECT_EQ(SelectedLeaves(), 1);
  EXPECT_TRUE(Saved(0, 1).IsLeaf());
  EXPECT_TRUE(IsMarked(2, 1, 0));
}

TEST_F(ManualSubdivisionTest, KeysMayLieAnywhereOnTheKeyboard) {
  struct CRow {
    const char* m_pText;
    int m_iKey;
    int m_iCode;
  };
  for (const CRow& row : {CRow{"=", '=', 128},
                          {"+", '+', 128},
                          {"", '=', 128},
                          {"+", FL_KP + '+', 128},
                          {"-", '-', 256},
                          {"", '-', 256},
                          {"-", FL_KP + '-', 256}}) {
    EXPECT_EQ(TypeText(row.m_iKey, row.m_pText), 1);
    EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), row.m_iCode) << row.m_iKey;
    Settle();
  }
}

TEST_F(ManualSubdivisionTest, SplittingTheFinestCellsIsRefused) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  for (int k = 0; k < 2; ++k) {
    TypeText('=', "=");
    Settle();
  }
  TypeText('=', "=");
  Grid().PerformPendingWork();
  EXPECT_NE(TakeConsole().find("Attempt to subdivise a highest level cell"), std::string::npos);
  EXPECT_EQ(SelectedLeaves(), 16);
}

TEST_F(ManualSubdivisionTest, EscapeClearsTheSelection) {
  DragOver(30.5, 10.5, 70.5, 40.5);
  EXPECT_EQ(Key(FL_Escape), 1);
  EXPECT_EQ(SelectedLeaves(), 0);
  EXPECT_FALSE(IsMarked(2, 1, 0));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(ManualSubdivisionTest, EscapeEndsTheDrag) {
  Push(kLeftButton, 30.5, 10.5);
  Drag(70.5, 40.5);
  Key(FL_Escape);
  Drag(80.5, 50.5);
  Release();
  EXPECT_EQ(SelectedLeaves(), 0);
}

TEST_F(ManualSubdivisionTest, ClickKeepsTheSelectionElsewhere) {
  DragOver(30.5, 10.5, 70.5, 20.5);
  Push(kLeftButton, 30.5, 10.5);
  Release();
  Settle();
  EXPECT_EQ(SelectedLeaves(), 1);
  EXPECT_FALSE(IsMarked(2, 1, 0)) << "no leaf any more";
  EXPECT_TRUE(IsMarked(2, 2, 0));
}

TEST_F(ManualSubdivisionTest, OtherButtonsAndKeysDoNothing) {
  for (const int button : {FL_MIDDLE_MOUSE, FL_RIGHT_MOUSE}) {
    Push(button, 30.5, 10.5);
    Drag(70.5, 40.5);
    Release(button);
    Push(button, 30.5, 10.5);
    Release(button);
  }
  EXPECT_EQ(TypeText('-', "-", FL_CTRL), 0);
  EXPECT_EQ(TypeText('a', "a"), 0);
  EXPECT_EQ(SelectedLeaves(), 0);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(ManualSubdivisionTest, NoOtherToolGetsTheEvents) {
  View().SetMode(EditingMode::Position);
  Push(kLeftButton, 30.5, 10.5);
  Release();
  Push(kLeftButton, 30.5, 10.5, FL_SHIFT);
  Release();
  EXPECT_EQ(Grid().Constraints().Points().size(), 0U);
  EXPECT_EQ(m_Host.m_iPauses, 0);
}

TEST_F(ManualSubdivisionTest, SwitchingOffShowsAndClearsTheSelectionWithoutSplitting) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  Grid().Surface().Tree().CellAt(2, 1, 0).ClearFlags(CellFlag::kSelected);
  View().SetDebugFlags(0);
  EXPECT_TRUE(IsMarked(2, 1, 0));
  EXPECT_EQ(SelectedLeaves(), 0);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_TRUE(Saved(0, 1).IsLeaf());
  View().SetDebugFlags(DebugFlag::kSelectCells);
  EXPECT_FALSE(IsMarked(2, 1, 0)) << "nothing is selected now";
}

TEST_F(ManualSubdivisionTest, SwitchingOffEndsTheDrag) {
  Push(kLeftButton, 30.5, 10.5);
  Drag(70.5, 40.5);
  View().SetDebugFlags(0);
  View().SetDebugFlags(DebugFlag::kSelectCells);
  Release();
  EXPECT_EQ(SelectedLeaves(), 0);
}

TEST_F(ManualSubdivisionTest, EachResolutionShowsItsOwnSelection) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  for (const auto& [code, selected] : {std::pair{Operation::kTransferToHigh, 0}, {Operation::kRestoreNormal, 1}}) {
    Grid().Run().Post(code);
    Settle();
    EXPECT_EQ(SelectedLeaves(), selected) << CodeOf(code);
    EXPECT_EQ(IsMarked(2, 1, 0), selected == 1) << CodeOf(code);
    EXPECT_EQ(Grid().Surface().Tree().SelectedCorners().size(), 8U * static_cast<unsigned>(selected)) << CodeOf(code);
  }
}

TEST_F(ManualSubdivisionTest, NewGridStartsWithNothingSelected) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  Grid().Run().Post(Operation::kRestoreHigh);
  Settle();
  DragOver(30.5, 10.5, 40.5, 20.5);
  EXPECT_GT(SelectedLeaves(), 0);
  Grid().Initialize(2, true, 0, 0, 100, 100);
  for (const Operation code : {Operation::kRestoreNormal, Operation::kRestoreHigh}) {
    EXPECT_EQ(SelectedLeaves(), 0);
    EXPECT_TRUE(Grid().Surface().Tree().SelectedCorners().empty());
    Grid().Run().Post(code);
    Settle();
  }
}

TEST_F(ManualSubdivisionTest, OtherToolsLeaveTheSelectionAlone) {
  DragOver(30.5, 10.5, 40.5, 20.5);
  View().SetDebugFlags(DebugFlag::kSelectCells | DebugFlag::kHLevel);
  EXPECT_EQ(SelectedLeaves(), 1);
}

TEST_F(ManualSubdivisionTest, RectangleIsDrawnAsItGrows) {
  const CTemporaryDirectory scratch;
  m_Window.show();
  ASSERT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
  View().SetDisplayFlags(0);
  const auto litAt = [&](int x, int y) {
    EXPECT_TRUE(View().SaveFrame(scratch.File("frame.bmp")));
    const CPicture frame = Global::LoadBMP(scratch.File("frame.bmp"), 1)->m_Picture;
    return frame.m_aPixels[3 * static_cast<std::size_t>(y * kSize + x)] > 100;
  };
  Push(kLeftButton, 20.5, 20.5);
  Drag(22.5, 20.5);
  EXPECT_FALSE(litAt(20, 20));
  Drag(50.5, 60.5);
  EXPECT_TRUE(litAt(20, 40));
  EXPECT_TRUE(litAt(35, 60));
  Drag(80.5, 60.5);
  EXPECT_FALSE(litAt(50, 40));
  EXPECT_TRUE(litAt(80, 40));
  Release();
  EXPECT_FALSE(litAt(80, 40) && litAt(35, 60) && litAt(20, 40)) << "the cells are tinted, no line is left";
}
