// The main job of the program, done by mouse and keyboard: a photograph, heights and slopes on it, the surface.

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/FileBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/Input.h"
#include "support/gui/Pictures.h"
#include "support/gui/RunTest.h"

namespace {

// On the photograph.
constexpr CPixel kLeftRim{186, 110};
constexpr CPixel kRightRim{396, 110};
constexpr CPixel kLeftSaucer{110, 210};
constexpr CPixel kRightSaucer{450, 220};
constexpr CPixel kTable{540, 70};
constexpr CPixel kCoffee{290, 140};
constexpr CPixel kCorner{60, 340};

constexpr int kRimDrag = 86;  // pixels; 20 model units
constexpr int kSaucerDrag = 43;

constexpr double kUnit = 100.0 / 430;  // model units per pixel of the view

class ModellingRunTest : public RunTest {
 protected:
  void PlaceFiveHeights() const {
    m_User.ClickOn(Control::PositionConstraint);
    PlaceHeight(kLeftRim, kRimDrag);
    PlaceHeight(kRightRim, kRimDrag);
    PlaceHeight(kLeftSaucer, kSaucerDrag);
    PlaceHeight(kRightSaucer, kSaucerDrag);
    PlaceHeight(kTable, 0);
  }
  void Solve() const {
    m_User.ClickOn(Control::ResumeSolver);
    EXPECT_TRUE(m_Program.Rests());
  }
  void DragConstraint(CPixel from, int dx, int dy, int button) const {
    const CPixel place = m_User.OnPhotograph(from);
    m_User.DragSlowly(place, {place.m_iX + dx, place.m_iY + dy}, button);
  }
  void DragModel(int dx, int dy, int button) const {
    const CPixel middle = m_User.AreaOf(Control::ModelView).Centre();
    m_User.DragSlowly(middle, {middle.m_iX + dx, middle.m_iY + dy}, button);
  }

  // What has been saved, in order: x, y, z.
  std::vector<std::array<double, 3>> SavedHeights() const {
    CTestGrid saved;
    EXPECT_TRUE(ReadModel(saved.m_Grid));
    std::vector<std::array<double, 3>> heights;
    for (const CPtCstr& record : saved.m_Grid.Constraints().Points()) {
      if (record.HasKind(PtCstrKind::kPosition)) heights.push_back({record.m_fX, record.m_fY, record.m_fZ});
    }
    return heights;
  }
  void ExpectHeight(const std::array<double, 3>& found, CPixel pixel, double z) const {
    const CPlanePoint place = InModel(pixel);
    EXPECT_NEAR(found[0], place.x, 1e-3);
    EXPECT_NEAR(found[1], place.y, 1e-3);
    EXPECT_NEAR(found[2], z, 1e-3);
  }

  void ExportScene() const {
    m_User.ChooseEntry(MenuTitle::File, 4);
    ASSERT_TRUE(m_User.ChooseFile("please input VRML file name", File("scene.wrl")));
    ASSERT_TRUE(m_User.Answer(true));
    EXPECT_EQ(m_User.Times("Saved succesfully"), 1U);
    const std::string scene = BytesOf(File("scene.wrl"));
    EXPECT_EQ(scene.rfind("#VRML V2.0 utf8\n", 0), 0U);
    // 33 by 33 points and the centres of 32 by 32 cells.
    const std::string points = scene.substr(scene.find("point ["), scene.find(']') - scene.find("point ["));
    EXPECT_EQ(std::count(points.begin(), points.end(), ','), 33 * 33 + 32 * 32);
  }
  void ExportHeightField() const {
    m_User.ChooseEntry(MenuTitle::File, 5);
    const auto dialog = m_Program.WaitForWindow("Choose the dimention of the Height field");
    ASSERT_TRUE(dialog.has_value() && m_Program.Rests());
    const CArea area = m_Program.Screen().AreaOf(*dialog);
    for (const auto& [y, number] : {std::pair(93, "41"), std::pair(145, "31")}) {
      m_User.ClickAt(area.At({160, y}));
      PressKey("ctrl+a");
      TypeText(number);
    }
    PressKey("Return");
    ASSERT_TRUE(m_User.ChooseFile("please input Height-Field file name", File("heights.txt")));
    ASSERT_TRUE(m_Program.Rests());

    std::ifstream file(File("heights.txt"));
    std::vector<std::vector<double>> rows;
    for (std::string line; std::getline(file, line);) {
      std::istringstream words(line);
      rows.emplace_back(std::istream_iterator<double>(words), std::istream_iterator<double>());
    }
    ASSERT_EQ(rows.size(), 31U);
    for (const auto& row : rows) ASSERT_EQ(row.size(), 41U);
    const CPlanePoint rim = InModel(kLeftRim);
    EXPECT_NEAR(
        rows[static_cast<std::size_t>(std::lround(rim.y * 0.3))][static_cast<std::size_t>(std::lround(rim.x * 0.4))],
        kRimDrag * kUnit, 1.5);
  }
};

}  // namespace

TEST_F(ModellingRunTest, PhotographShowsInTheImageView) {
  m_User.Type("ctrl+g");
  const CPicture shot = Shoot(0, "image.bmp");
  ASSERT_EQ(shot.m_iWidth, 430);
  ASSERT_EQ(shot.m_iHeight, 430);
  const CPicture photograph = Global::LoadBMP(kSamplePhotograph, 1)->m_Picture;
  for (const CPixel pixel : {kLeftRim, kLeftSaucer, kRightSaucer, kCoffee, kTable}) {
    const int x = pixel.m_iX * 430 / kPhotographWidth;
    const int y = 429 - pixel.m_iY * 430 / kPhotographHeight;
    const CRgb expected = PixelOf(photograph, pixel.m_iX, kPhotographHeight - 1 - pixel.m_iY);
    EXPECT_LT(Distance(PixelOf(shot, x, y), expected), 60) << pixel.m_iX << ' ' << pixel.m_iY;
  }
}

// The toolkit keeps back a movement of the mouse until it has read all that has come, and so after the press.
TEST_F(ModellingRunTest, ClickOnAProgramThatWasBusyCountsWhereItWasMade) {
  m_User.ClickOn(Control::PositionConstraint);
  PlaceHeight(kLeftRim, kRimDrag);
  PlaceHeight(kTable, 0);
  MovePointer(m_User.OnPhotograph(kLeftRim));
  ASSERT_TRUE(m_Program.Rests());
  kill(m_Program.Pid(), SIGSTOP);
  Click(m_User.OnPhotograph(kTable));
  kill(m_Program.Pid(), SIGCONT);
  ASSERT_TRUE(m_Program.Rests());
  m_User.Type("Delete");
  const auto left = SavedHeights();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_NEAR(left[0][0], InModel(kLeftRim).x, kUnit);
}

TEST_F(ModellingRunTest, SurfaceTakesUpHeightsAndSlopes) {
  PlaceFiveHeights();
  m_User.ClickOn(Control::NormalConstraint);
  m_User.ClickAt(m_User.OnPhotograph(kCoffee));
  m_User.ClickAt(m_User.OnPhotograph(kCorner));
  DragConstraint(kCorner, 10, 0, 3);
  Solve();
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  std::vector<CPtCstr> records(saved.m_Grid.Constraints().Points().begin(), saved.m_Grid.Constraints().Points().end());
  ASSERT_EQ(records.size(), 7U);
  for (std::size_t k = 0; k < 5; ++k) {
    const double z = (k < 2 ? kRimDrag : k < 4 ? kSaucerDrag : 0) * kUnit;
    EXPECT_NEAR(records[k].m_fZ, z, 1e-3) << k;
    EXPECT_NEAR(SurfaceHeight(saved.m_Grid, records[k].m_fX, records[k].m_fY), z, 0.01) << k;
  }
  EXPECT_EQ(records[5].m_fP, 0);
  EXPECT_NEAR(records[6].m_fP, -10 * kUnit / 2.5, 1e-3) << "a drag to the right lowers the slope";
  EXPECT_TRUE(records[5].HasKind(PtCstrKind::kNormal) && records[6].HasKind(PtCstrKind::kNormal));
}

TEST_F(ModellingRunTest, ConstraintsFollowTheMouseAsTheHelpSays) {
  PlaceFiveHeights();
  DragConstraint(kLeftRim, 30, 20, 1);
  DragConstraint(kTable, 43, 0, 3);
  const auto heights = SavedHeights();
  ASSERT_EQ(heights.size(), 5U);
  const CPlanePoint rim = InModel(kLeftRim);
  EXPECT_NEAR(heights[0][0], rim.x + 30 * kUnit, 1e-3);
  EXPECT_NEAR(heights[0][1], rim.y - 20 * kUnit, 1e-3);
  EXPECT_NEAR(heights[0][2], kRimDrag * kUnit, 1e-3) << "a move leaves the height";
  ExpectHeight(heights[4], kTable, 43 * kUnit);
}

TEST_F(ModellingRunTest, TabGoesFromOneToTheNextAndDeleteRemoves) {
  PlaceFiveHeights();
  m_User.ClickAt(m_User.OnPhotograph(kRightRim));
  m_User.Type("Tab");
  m_User.Type("Delete");
  m_User.ClickAt(m_User.OnPhotograph(kRightRim));
  m_User.Type("shift+Tab");
  m_User.Type("BackSpace");
  const auto heights = SavedHeights();
  ASSERT_EQ(heights.size(), 3U);
  ExpectHeight(heights[0], kRightRim, kRimDrag * kUnit);
  ExpectHeight(heights[1], kRightSaucer, kSaucerDrag * kUnit);
  ExpectHeight(heights[2], kTable, 0);
  EXPECT_GT(m_User.Times("CImageView::HandlePtPosCstr : FL_KEYBOARD"), 0U);
}

TEST_F(ModellingRunTest, ModelIsTurnedZoomedRolledAndShot) {
  PlaceFiveHeights();
  Solve();
  const CPicture front = Shoot(1, "front.bmp");
  ASSERT_EQ(front.m_iWidth, 430);
  EXPECT_EQ(PixelOf(front, 3, 3), kBlack);
  EXPECT_NE(PixelOf(front, 215, 215), kBlack);
  const std::size_t covered = Covered(front);
  EXPECT_GT(covered, 430U * 430U / 4);

  DragModel(0, -120, 1);
  const CPicture turned = Shoot(1, "turned.bmp");
  EXPECT_GT(Differing(front, turned), covered / 4);
  DragModel(60, 0, 2);
  const CPicture smaller = Shoot(1, "smaller.bmp");
  EXPECT_LT(Covered(smaller), Covered(turned));
  DragModel(60, 0, 3);
  const CPicture rolled = Shoot(1, "rolled.bmp");
  EXPECT_GT(Differing(smaller, rolled), Covered(smaller) / 8);

  DragConstraint(kLeftRim, 80, 0, 3);
  const CPicture edited = Shoot(1, "edited.bmp");
  EXPECT_GT(Differing(rolled, edited), 1000U) << "the surface follows the height";
}

TEST_F(ModellingRunTest, ModelIsTheSameInAFileSavedAfterLoading) {
  PlaceFiveHeights();
  Solve();
  // The recorder holds the solver, which would go on with the loaded surface.
  m_User.ClickOn(Control::Recorder);
  ASSERT_TRUE(m_Program.WaitForWindow("Animation Record Interface").has_value());
  ASSERT_TRUE(SaveModel("first.grid"));
  m_User.ChooseEntry(MenuTitle::File, 1);
  ASSERT_TRUE(m_User.ChooseFile("please input grid file name", File("first.grid")));
  ASSERT_TRUE(m_Program.Rests());
  ASSERT_TRUE(SaveModel("second.grid"));
  const std::string first = BytesOf(File("first.grid"));
  EXPECT_GT(first.size(), 10000U);
  EXPECT_TRUE(first == BytesOf(File("second.grid")));
}

TEST_F(ModellingRunTest, SurfaceIsExported) {
  PlaceFiveHeights();
  Solve();
  ExportScene();
  ExportHeightField();
}
