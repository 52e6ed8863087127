#include <array>
#include <limits>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include <GL/gl.h>
#include <sys/stat.h>

#include "base/Console.h"
#include "codecs/PictureFormats.h"
#include "model/PointProbe.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/gui/ImageViewTest.h"
#include "ui/seams/CBusyCursor.h"

namespace {

constexpr std::array kAllEditingModes{EditingMode::Unset, EditingMode::Position, EditingMode::Normal,
                                      EditingMode::Curve};

class ImageViewEventTest : public ImageViewTest {
 protected:
  ImageViewEventTest() { Attach(); }
};

/// Looks at the mouse whenever a line is written.
class CCursorWatch : public std::streambuf {
 public:
  int overflow(int letter) override {
    (CBusyCursor::IsShown() ? m_iBusy : m_iIdle) += letter == '\n' ? 1 : 0;
    return 0;
  }

  int m_iBusy = 0;
  int m_iIdle = 0;
};

// Forwards what the grid shows to the view, as the window does.
class CForwardingHost : public RecordingHost {
 public:
  CForwardingHost(CGrid& grid, CImageView& view) : m_Grid(grid), m_View(view) { grid.Run().AttachHost(this); }
  ~CForwardingHost() override { m_Grid.Run().AttachHost(nullptr); }
  CForwardingHost(const CForwardingHost&) = delete;
  CForwardingHost& operator=(const CForwardingHost&) = delete;
  void ShowInterpolation(const CInterpolationTrace& trace) override {
    RecordingHost::ShowInterpolation(trace);
    m_View.ShowInterpolation(trace);
  }

 private:
  CGrid& m_Grid;
  CImageView& m_View;
};

}  // namespace

TEST_F(ImageViewEventTest, StartState) {
  EXPECT_EQ(View().DisplayFlags(), 14U);
  EXPECT_EQ(View().DebugFlags(), 0U);
  EXPECT_EQ(View().Mode(), EditingMode::Unset);
  EXPECT_EQ(View().CurveType(), CurveType::kNone);
  EXPECT_EQ(View().TextureFileName(), "");
}

TEST_F(ImageViewTest, WithoutAGridEventsAreTheToolkits) {
  EXPECT_EQ(View().handle(FL_FOCUS), 0);
  EXPECT_EQ(Push(FL_LEFT_MOUSE, 20.5, 20.5), 0);
  EXPECT_EQ(Key(FL_Tab), 0);
  View().EndDrag();
  EXPECT_EQ(m_Host.m_iResumptions, 0);
}

TEST_F(ImageViewEventTest, TakesTheFocusInEveryModeAndWithEveryTool) {
  for (const std::uint32_t tool : {0U, DebugFlag::kSelectCells, DebugFlag::kFreeze}) {
    for (const EditingMode mode : kAllEditingModes) {
      View().SetDebugFlags(tool);
      View().SetMode(mode);
      Fl::focus(nullptr);
      SendAt(FL_ENTER, 20.5, 20.5);
      EXPECT_EQ(Fl::focus(), &View()) << tool;
      Fl::focus(nullptr);
      PushWithoutHovering(FL_RIGHT_MOUSE, 20.5, 20.5);
      EXPECT_EQ(Fl::focus(), &View()) << tool;
    }
  }
}

TEST_F(ImageViewEventTest, AnswersTheFocus) {
  EXPECT_EQ(View().handle(FL_FOCUS), 1);
  EXPECT_EQ(View().handle(FL_UNFOCUS), 1);
}

TEST_F(ImageViewEventTest, KeepsTabAndArrowsInEveryMode) {
  for (const EditingMode mode : kAllEditingModes) {
    View().SetMode(mode);
    for (const int key : {FL_Tab, FL_Left, FL_Right, FL_Up, FL_Down}) EXPECT_EQ(Key(key), 1) << key;
    EXPECT_EQ(Key('n', FL_ALT), 0);
  }
}

TEST_F(ImageViewEventTest, OtherEventsGoToTheToolkit) {
  m_Window.show();
  ASSERT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
  EXPECT_EQ(View().handle(FL_SHORTCUT), 0);
}

TEST_F(ImageViewEventTest, ModesPassEventsToTheirHandlers) {
  struct CCase {
    EditingMode m_Mode;
    std::uint32_t m_uCreated;  ///< kind of the constraint that a click creates; 0: none
  };
  for (const CCase& c : {CCase{EditingMode::Unset, PtCstrKind::kNormal},
                         {EditingMode::Position, PtCstrKind::kPosition},
                         {EditingMode::Normal, PtCstrKind::kNormal},
                         {EditingMode::Curve, 0}}) {
    CStaging::Constraints(Grid()).Points().clear();
    View().SetMode(c.m_Mode);
    EXPECT_EQ(Push(FL_LEFT_MOUSE, 20.5, 20.5), 1);
    EXPECT_EQ(Grid().Constraints().PendingCurve().IsIdle(), c.m_Mode != EditingMode::Curve);
    EXPECT_EQ(Grid().Constraints().Points().empty() ? 0 : Grid().Constraints().Points().begin()->m_uKind, c.m_uCreated);
    View().EndDrag();
  }
}

TEST_F(ImageViewEventTest, SelectingCellsKeepsEventsFromTheHandlers) {
  View().SetDebugFlags(DebugFlag::kSelectCells);
  EXPECT_EQ(Push(FL_LEFT_MOUSE, 20.5, 20.5), 1);
  EXPECT_EQ(Push(FL_LEFT_MOUSE, 20.5, 20.5, FL_SHIFT), 1);
  EXPECT_TRUE(Grid().Constraints().Points().empty());
  EXPECT_EQ(m_Host.m_iPauses, 0);
}

TEST_F(ImageViewEventTest, DebugZoneShowsWhetherTheMouseIsInThePicture) {
  Move(20.5, 20.5);
  EXPECT_TRUE(m_Host.m_abInside.empty());
  m_Host.m_bDebugZone = true;
  g_fZoom = 2;
  Move(0.5, 50.5);
  Move(50.5, 50.5);
  Key('a');
  EXPECT_EQ(m_Host.m_abInside, (std::vector<bool>{false, true, true}));
}

TEST_F(ImageViewEventTest, ToolsShowTheTermUnderTheMouse) {
  Grid().SetSparseH();
  const CPointProbe probe(Grid());
  const std::size_t point = Grid().Surface().Lattice().Index(8, 4);  // (50, 25)
  const double torsion = probe.MixedDifference(probe.LeafAt(49.5, 26.5)).m_fWeight;
  struct CCase {
    std::uint32_t m_uFlags;
    std::vector<double> m_afInfluences;
  };
  for (const CCase& c : {CCase{DebugFlag::kHorizontalCoefs, {probe.SecondDifference(point, true).m_fWeight}},
                         {DebugFlag::kVerticalCoefs, {probe.SecondDifference(point, false).m_fWeight}},
                         {DebugFlag::kTorsionCells, {torsion}},
                         {DebugFlag::kPointArea, {probe.Area(point)}},
                         {DebugFlag::kHLevel, {}}}) {
    View().SetDebugFlags(c.m_uFlags);
    m_Host = {};
    Move(49.5, 26.5);
    EXPECT_EQ(m_Host.m_afInfluences, c.m_afInfluences) << c.m_uFlags;
    EXPECT_EQ(m_Host.m_iNumber, Grid().Surface().Order().NumberOf(point));
    EXPECT_EQ(m_Host.m_iLevelCode, probe.LevelCodeOf(point));
    EXPECT_GT(m_Host.m_iModelRedraws, 0);
  }
}

TEST_F(ImageViewEventTest, ToolsTakeTheMouseAsWithinTheView) {
  View().SetDebugFlags(DebugFlag::kHLevel);
  SendAt(FL_DRAG, 500, -500);
  EXPECT_EQ(m_Host.m_iNumber, 1);
}

TEST_F(ImageViewEventTest, WithoutAToolNothingIsLookedUp) {
  View().SetDebugFlags(DebugFlag::kSelectCells | DebugFlag::kFreeze);
  Move(20.5, 20.5);
  EXPECT_EQ(m_Host.m_iNumber, -2);
  EXPECT_TRUE(m_Host.m_afInfluences.empty());
}

TEST_F(ImageViewEventTest, NormalTestLogsTheNormal) {
  Grid().Surface().Reconstruct();
  View().SetDebugFlags(DebugFlag::kNormalTest);
  Move(20.5, 20.5);
  EXPECT_EQ(TakeConsole(), "CImageView::handle\t\tnormal : 0, 0, 1\n");
}

TEST_F(ImageViewEventTest, InterpolationIsTracedUnderTheMouse) {
  const CForwardingHost host(Grid(), View());
  View().SetDebugFlags(DebugFlag::kInterpolation);
  Move(20.5, 21.5);
  ASSERT_EQ(host.m_aTraces.size(), 1U);
  EXPECT_EQ(host.m_aTraces[0].m_Triangle.m_pCell, Grid().Surface().Tree().PointInCell(20.5, 21.5));
}

TEST_F(ImageViewEventTest, ShiftPressHoldsTheSolverUntilTheRelease) {
  for (const int button : {FL_LEFT_MOUSE, FL_MIDDLE_MOUSE, FL_RIGHT_MOUSE}) {
    m_Host = {};
    EXPECT_EQ(Push(button, 20.5, 20.5, FL_SHIFT), 1);
    EXPECT_EQ(m_Host.m_iPauses, 1);
    EXPECT_EQ(Drag(30.5, 30.5), 1);
    EXPECT_EQ(m_Host.m_iResumptions, 0);
    EXPECT_EQ(Release(button), 1);
    EXPECT_EQ(m_Host.m_iResumptions, 1);
  }
  EXPECT_TRUE(Grid().Constraints().Points().empty());
}

TEST_F(ImageViewEventTest, MiddleDragZooms) {
  Push(FL_MIDDLE_MOUSE, 50.5, 50.5, FL_SHIFT);
  Drag(54.5, 56.5);
  EXPECT_DOUBLE_EQ(g_fZoom, 1.05);
  Drag(44.5, 50.5);
  EXPECT_DOUBLE_EQ(g_fZoom, 1.05 * 0.92);
  Drag(144.5, 50.5);
  EXPECT_DOUBLE_EQ(g_fZoom, 1.05 * 0.92 * 1.1);
}

TEST_F(ImageViewEventTest, LeftDragKeepsThePictureUnderTheMouse) {
  View().SetMode(EditingMode::Position);
  g_fZoom = 0.5;
  Push(FL_LEFT_MOUSE, 50.5, 50.5, FL_SHIFT);
  for (const double step : {10.0, 20.0, 30.0}) Drag(50.5 + step, 50.5 - step);
  Release();
  // What was under (50.5, 50.5) is under (80.5, 20.5) now.
  PushWithoutHovering(FL_LEFT_MOUSE, 80.5, 20.5);
  ASSERT_EQ(Grid().Constraints().Points().size(), 1U);
  EXPECT_NEAR(Grid().Constraints().Points().begin()->m_fX, 50 + 0.5 * 0.5, 1e-9);
  EXPECT_NEAR(Grid().Constraints().Points().begin()->m_fY, 50 + 0.5 * 0.5, 1e-9);
}

TEST_F(ImageViewEventTest, RightDragChangesNothing) {
  Push(FL_RIGHT_MOUSE, 50.5, 50.5, FL_SHIFT);
  Drag(90.5, 90.5);
  EXPECT_EQ(g_fZoom, 1.0);
}

TEST_F(ImageViewEventTest, PressWithoutShiftEndsTheViewDrag) {
  View().SetMode(EditingMode::Position);
  Push(FL_MIDDLE_MOUSE, 50.5, 50.5, FL_SHIFT);
  Push(FL_LEFT_MOUSE, 20.5, 20.5);
  EXPECT_EQ(m_Host.m_iResumptions, 1);
  Drag(40.5, 20.5);
  EXPECT_EQ(g_fZoom, 1.0);
  Release();
  EXPECT_EQ(m_Host.m_iResumptions, 1);
}

TEST_F(ImageViewEventTest, DialogEndsTheViewDrag) {
  Push(FL_MIDDLE_MOUSE, 50.5, 50.5, FL_SHIFT);
  View().EndDrag();
  EXPECT_EQ(m_Host.m_iResumptions, 1);
  Drag(60.5, 50.5);
  EXPECT_EQ(g_fZoom, 1.0);
}

TEST_F(ImageViewEventTest, ResetUndoesZoomAndPan) {
  View().SetMode(EditingMode::Position);
  Push(FL_LEFT_MOUSE, 50.5, 50.5, FL_SHIFT);
  Drag(70.5, 70.5);
  Release();
  g_fZoom = 3;
  View().ResetView();
  EXPECT_EQ(g_fZoom, 1.0);
  PushWithoutHovering(FL_LEFT_MOUSE, 30.5, 60.5);
  EXPECT_NEAR(Grid().Constraints().Points().begin()->m_fX, 30.5, 1e-9);
  EXPECT_NEAR(Grid().Constraints().Points().begin()->m_fY, 60.5, 1e-9);
}

namespace {

class LoadImageTest : public ImageViewTest {
 protected:
  LoadImageTest() {
    Attach();
    m_Window.show();
    EXPECT_TRUE(RunToolkitUntil([this] { return View().shown() != 0 && View().damage() == 0; }));
  }
  bool Load(const CBytes& bytes, const std::string& name = "picture.bmp") {
    WriteBytes(m_Scratch.File(name), bytes);
    TakeConsole();
    return View().LoadImage(m_Scratch.File(name));
  }

  /// That have come since this was asked last.
  std::vector<std::string> Notices() { return std::exchange(m_Host.m_aNotices, {}); }

  CTemporaryDirectory m_Scratch;
};

}  // namespace

TEST_F(LoadImageTest, TextureSizesAreTheNextPowersOfTwo) {
  for (const auto& [width, height, padded] : {std::tuple{300, 200, "new_width : 512, new_height : 256"},
                                              {256, 256, "new_width : 256, new_height : 256"},
                                              {1, 1, "new_width : 1, new_height : 1"},
                                              {5, 2, "new_width : 8, new_height : 2"}}) {
    EXPECT_TRUE(Load(BmpFile(SomePicture(width, height))));
    const std::string w = std::to_string(width);
    EXPECT_EQ(TakeConsole(), "Global::LoadBMP\t\twidth = " + w + "; padded_w = " + std::to_string(3 * width) +
                                 "; height = " + std::to_string(height) +
                                 "\nCImageView::LoadImage\tNew texture generated. " + padded +
                                 "\nCImageView::LoadImage\tglTexImage2D\t\t=> GL_ERROR : no error\n"
                                 "CGrid::TestTexelsInDiscontinuity()\t\t\t...done\n");
    EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), width);
    EXPECT_EQ(Grid().Relighting().Textures().PictureHeight(), height);
  }
  EXPECT_TRUE(m_Host.m_aNotices.empty());
}

TEST_F(LoadImageTest, TheMouseShowsThatAPictureIsBeingRead) {
  CCursorWatch watch;
  std::ostream stream(&watch);
  const CConsoleRedirect redirect(stream);
  WriteBytes(m_Scratch.File("picture.bmp"), BmpFile(SomePicture(3, 2)));
  ASSERT_TRUE(View().LoadImage(m_Scratch.File("picture.bmp")));
  EXPECT_GE(watch.m_iBusy, 3) << "from the first line on, which is that of the bitmap";
  EXPECT_EQ(watch.m_iIdle, 0);
  EXPECT_FALSE(CBusyCursor::IsShown());
}

TEST_F(LoadImageTest, FileNameIsKept) {
  ASSERT_TRUE(Load(BmpFile(SomePicture(3, 2)), "photograph.bmp"));
  EXPECT_EQ(View().TextureFileName(), m_Scratch.File("photograph.bmp"));
}

TEST_F(LoadImageTest, RefusedFileLeavesThePictureAndIsNamed) {
  ASSERT_TRUE(Load(BmpFile(SomePicture(3, 2))));
  const std::string name = View().TextureFileName();
  for (const CBytes& refused : {CBytes{}, BmpHeader(-3, 2), BmpHeader(3, -2), BmpHeader(60000, 60000)}) {
    m_Host = {};
    EXPECT_FALSE(Load(refused, "refused.bmp"));
    ASSERT_EQ(m_Host.m_aNotices.size(), 1U);
    EXPECT_NE(m_Host.m_aNotices[0].find(m_Scratch.File("refused.bmp")), std::string::npos);
  }
  EXPECT_FALSE(View().LoadImage(m_Scratch.File("missing.bmp")));
  EXPECT_EQ(m_Host.m_aNotices.size(), 2U);
  EXPECT_FALSE(Load({'G', 'I', 'F', '8', '9', 'a'}, "photo.gif"));
  EXPECT_EQ(m_Host.m_aNotices.back(), "The picture " + m_Scratch.File("photo.gif") +
                                          " cannot be read: this is a GIF; this build reads " + PictureFormatNames() +
                                          ".");
  EXPECT_EQ(View().TextureFileName(), name);
  EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), 3);
}

TEST_F(LoadImageTest, PictureBeyondTheGraphicsCardIsTakenUpAsAnyOther) {
  View().make_current();
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  EXPECT_TRUE(Load(BmpFile(SomePicture(limit + 1, 1))));
  EXPECT_TRUE(m_Host.m_aNotices.empty());
  EXPECT_EQ(View().TextureFileName(), m_Scratch.File("picture.bmp"));
  EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), limit + 1);
}

TEST_F(LoadImageTest, FileThatEndsEarlyIsTakenUpWithANotice) {
  EXPECT_TRUE(Load(BmpHeader(4, 4)));
  ASSERT_EQ(m_Host.m_aNotices.size(), 1U);
  EXPECT_NE(m_Host.m_aNotices[0].find("picture.bmp ends early"), std::string::npos);
  EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), 4);
}

TEST_F(LoadImageTest, ACutPhotographIsShownAsFarAsItGoes) {
  const std::string whole = BytesOf(RELIEVO_SAMPLES "/coffee.jpg");
  EXPECT_TRUE(Load({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2)}, "cut.jpg"));
  EXPECT_EQ(Notices(),
            std::vector{"The picture " + m_Scratch.File("cut.jpg") + " ends early: it is shown as far as it goes."});
  EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), 600);
  EXPECT_FALSE(Load({whole.begin(), whole.begin() + 100}, "nothing.jpg"));
  EXPECT_EQ(Notices(), std::vector{"The picture " + m_Scratch.File("nothing.jpg") +
                                   " cannot be read: this JPEG ends before anything of it can be shown."});
  EXPECT_EQ(Grid().Relighting().Textures().PictureWidth(), 600);
  EXPECT_EQ(View().TextureFileName(), m_Scratch.File("cut.jpg"));
}

TEST_F(LoadImageTest, FoldersAndPipesAreNotReadAndToldOf) {
  const std::string pipe = m_Scratch.File("pipe.jpg");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string reads = "; this build reads " + PictureFormatNames() + ".";
  for (const auto& [file, what] :
       {std::pair{m_Scratch.Path().string(), "this is a folder"}, {pipe, "this is no ordinary file"}}) {
    EXPECT_FALSE(View().LoadImage(file));
    EXPECT_EQ(Notices(), std::vector{"The picture " + file + " cannot be read: " + what + reads});
  }
  EXPECT_FALSE(Grid().Relighting().Textures().HasPicture());
}

TEST_F(LoadImageTest, EmptyPictureLeavesThePreviousOne) {
  ASSERT_TRUE(Load(BmpHeader(4, 4)));
  m_Host.m_aNotices.clear();
  EXPECT_FALSE(Load(BmpHeader(7, 0)));
  ASSERT_EQ(m_Host.m_aNotices.size(), 1U);
  EXPECT_NE(m_Host.m_aNotices[0].find("picture.bmp is empty"), std::string::npos);
  EXPECT_EQ(Grid().Relighting().Textures().PictureHeight(), 4);
}
