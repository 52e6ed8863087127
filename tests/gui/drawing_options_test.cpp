#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include <FL/Fl_Color_Chooser.H>
#include <FL/Fl_Value_Slider.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CDrawingOptionsDialog.h"
#include "ui/drawing/ColourChoice.h"

namespace {

constexpr const char* kImageColumn = "2D view (left)";
constexpr const char* kModelColumn = "3D view (right)";

struct CSliderRow {
  const char* m_pColumn;
  const char* m_pLabel;
  double m_fMinimum;
  double m_fMaximum;
  double m_fBuilt;
  float CViewDrawing::*m_pSetting;
  double m_fStart;
  int m_iImageRedraws;
  int m_iModelRedraws;
};

using View = CViewDrawing;

constexpr std::array kSliders{
    CSliderRow{kModelColumn, "Adjust the thickness of grid lines           (3d view)", 0.5, 6, 1.3,
               &View::m_fGridThickness, 1.5, 0, 1},
    CSliderRow{kImageColumn, "Adjust the thickness of grid lines                  (2d view)", 1, 5, 1.0,
               &View::m_fGridThickness, 1.0, 1, 0},
    CSliderRow{kModelColumn, "Adjust the thickness of an unselected normal constraint", 1.3, 8, 5,
               &View::m_fUnselectedNormalThickness, 5.0, 1, 1},
    CSliderRow{kImageColumn, "Adjust the thickness of an unselected normal constraint", 1.3, 8, 5,
               &View::m_fUnselectedNormalThickness, 3.5, 1, 1},
    CSliderRow{kModelColumn, "Adjust the thickness of a selected     normal constraint", 1.3, 8, 5,
               &View::m_fSelectedNormalThickness, 3.5, 1, 1},
    CSliderRow{kImageColumn, "Adjust the thickness of a selected    normal constraint", 1.3, 8, 5,
               &View::m_fSelectedNormalThickness, 2.5, 1, 1},
    CSliderRow{kModelColumn, "Adjust the radius of a normal constraint", 1, 10, 1.5, &View::m_fNormalRadius, 4.0, 0, 1},
    CSliderRow{kImageColumn, "Adjust the radius of a normal constraint", 0.5, 5, 1.5, &View::m_fNormalRadius, 2.5, 1,
               0},
    CSliderRow{kModelColumn, "Adjust the size of a position constraint", 0.5, 8, 1.5, &View::m_fPositionSize, 5.0, 1,
               0},
    CSliderRow{kImageColumn, "Adjust the size of a position constraint", 0.5, 8, 1.5, &View::m_fPositionSize, 4.0, 1,
               0},
    CSliderRow{kModelColumn, "Adjust the thickness of an unselected position constraint", 8, 1, 1.5,
               &View::m_fUnselectedPositionThickness, 2.5, 0, 1},
    CSliderRow{kImageColumn, "Adjust the thickness of an unselected position constraint", 8, 1, 1.5,
               &View::m_fUnselectedPositionThickness, 3.5, 1, 0},
    CSliderRow{kModelColumn, "Adjust the thickness of a highlighted position constraint", 8, 1, 1.5,
               &View::m_fHighlightedPositionThickness, 3.5, 0, 1},
    CSliderRow{kImageColumn, "Adjust the thickness of a highlighted position constraint", 8, 1, 1.5,
               &View::m_fHighlightedPositionThickness, 4.5, 1, 0},
};

struct CColourRow {
  const char* m_pGroup;
  const char* m_pLabel;
  const char* m_pTitle;
  CColour m_Start;
  CColour (*m_pGet)(const CDrawingSettings& settings);
  int m_iImageRedraws;
  int m_iModelRedraws;
};

constexpr const char* kConstraintTitle = "Unselected postition constraint";
constexpr const char* kPositions = "Position Constraints Colors";
constexpr const char* kNormals = "Normal Constraints Colors";

const std::array kColours{
    CColourRow{kPositions,
               "Unselected",
               kConstraintTitle,
               {1, 1, 0},
               [](const CDrawingSettings& s) { return s.m_PositionColours.m_Unselected; },
               1,
               0},
    CColourRow{kPositions,
               "Highlighted",
               kConstraintTitle,
               {0, 0, 1},
               [](const CDrawingSettings& s) { return s.m_PositionColours.m_Highlighted; },
               1,
               0},
    CColourRow{kPositions,
               "Selected",
               kConstraintTitle,
               {0, 1, 0},
               [](const CDrawingSettings& s) { return s.m_PositionColours.m_Selected; },
               1,
               0},
    CColourRow{kNormals,
               "Unselected",
               kConstraintTitle,
               {1, 0, 0},
               [](const CDrawingSettings& s) { return s.m_NormalColours.m_Unselected; },
               1,
               0},
    CColourRow{kNormals,
               "Highlighted",
               kConstraintTitle,
               {0, 0, 1},
               [](const CDrawingSettings& s) { return s.m_NormalColours.m_Highlighted; },
               1,
               0},
    CColourRow{kNormals,
               "Selected",
               kConstraintTitle,
               {0, 1, 0},
               [](const CDrawingSettings& s) { return s.m_NormalColours.m_Selected; },
               1,
               0},
    CColourRow{"Grid Colors",
               "Background Color",
               "Background color",
               {0, 0, 0},
               [](const CDrawingSettings& s) -> CColour {
                 return {s.m_afBackground[0], s.m_afBackground[1], s.m_afBackground[2]};
               },
               1,
               1},
    CColourRow{"Grid Colors",
               "Grey Grid Color",
               "Grey Grid Color",
               {0.5, 0.5, 0.5},
               [](const CDrawingSettings& s) { return s.m_GreyGrid; },
               0,
               1},
};

class DrawingOptionsTest : public PanelTest {
 protected:
  Fl_Value_Slider& Slider(const CSliderRow& row) {
    return Find<Fl_Value_Slider>(Find<Fl_Group>(m_Dialog, row.m_pColumn), row.m_pLabel);
  }
  Fl_Button& Button(const CColourRow& row) {
    return Find<Fl_Button>(Find<Fl_Group>(m_Dialog, row.m_pGroup), row.m_pLabel);
  }
  CViewDrawing& ViewOf(const CSliderRow& row) {
    if (std::string_view(row.m_pColumn) == kModelColumn) return m_Settings.m_ModelView;
    return m_Settings.m_ImageView;
  }
  float& Setting(const CSliderRow& row) { return ViewOf(row).*row.m_pSetting; }
  void Move(const CSliderRow& row, double value) {
    Slider(row).value(value);
    Slider(row).do_callback();
  }
  // Presses a colour button and answers the chooser, which must have this title.
  void Choose(const CColourRow& row, const CColour& colour, const char* button) {
    const CModalAnswers answers({[&](Fl_Window& window) {
      EXPECT_STREQ(window.label(), row.m_pTitle);
      Chooser(window).rgb(colour[0], colour[1], colour[2]);
      Press(Find<Fl_Button>(window, button));
    }});
    Press(Button(row));
  }
  static Fl_Color_Chooser& Chooser(Fl_Window& window) {
    const std::vector<Fl_Widget*> widgets = WidgetsIn(window);
    const auto isChooser = [](Fl_Widget* widget) { return dynamic_cast<Fl_Color_Chooser*>(widget) != nullptr; };
    return dynamic_cast<Fl_Color_Chooser&>(**std::ranges::find_if(widgets, isChooser));
  }

  CDrawingSettings m_Settings;
  CDrawingOptionsDialog m_Dialog{m_Settings, m_Views, m_MainWindow};
};

std::string NameOf(const CSliderRow& row) { return std::string(row.m_pColumn) + ": " + row.m_pLabel; }

}  // namespace

TEST_F(DrawingOptionsTest, HasItsTitleAndSizeAndStartsHidden) {
  EXPECT_STREQ(m_Dialog.label(), "Advanced drawing options");
  EXPECT_EQ(m_Dialog.w(), 570);
  EXPECT_EQ(m_Dialog.h(), 730);
  EXPECT_FALSE(m_Dialog.shown());
}

TEST_F(DrawingOptionsTest, SlidersAreBuiltAsTheTableSays) {
  for (const CSliderRow& row : kSliders) {
    const Fl_Value_Slider& slider = Slider(row);
    EXPECT_EQ(slider.type(), FL_HOR_NICE_SLIDER) << NameOf(row);
    EXPECT_TRUE(slider.w() == 204 || slider.w() == 205) << NameOf(row);
    EXPECT_EQ(slider.h(), 25) << NameOf(row);
    EXPECT_EQ(slider.labelsize(), 11) << NameOf(row);
    EXPECT_EQ(slider.align() & FL_ALIGN_POSITION_MASK, FL_ALIGN_BOTTOM) << NameOf(row);
    EXPECT_DOUBLE_EQ(slider.step(), 0.01) << NameOf(row);
    EXPECT_EQ(slider.minimum(), row.m_fMinimum) << NameOf(row);
    EXPECT_EQ(slider.maximum(), row.m_fMaximum) << NameOf(row);
    EXPECT_EQ(slider.value(), row.m_fBuilt) << NameOf(row);
  }
}

TEST_F(DrawingOptionsTest, HasNoSliderBesidesThose) {
  const auto widgets = WidgetsIn(m_Dialog);
  EXPECT_EQ(std::ranges::count_if(widgets, [](auto* w) { return dynamic_cast<Fl_Value_Slider*>(w) != nullptr; }),
            static_cast<long>(kSliders.size()));
}

TEST_F(DrawingOptionsTest, ColumnsStandAtTheirPlacesWithTheirGroups) {
  EXPECT_EQ(FindWidget(m_Dialog, kImageColumn).x(), 2);
  EXPECT_EQ(FindWidget(m_Dialog, kModelColumn).x(), 260);
  for (const char* column : {kImageColumn, kModelColumn}) {
    for (const char* group : {"Normal Constraints", "Position Constraints"}) {
      EXPECT_NO_THROW(Find<Fl_Group>(Find<Fl_Group>(m_Dialog, column), group));
    }
  }
  EXPECT_NO_THROW(Find<Fl_Group>(m_Dialog, "Changing the colors"));
}

TEST_F(DrawingOptionsTest, OpensWithTheSettingsOfTheStart) {
  m_Dialog.Open();
  for (const CSliderRow& row : kSliders)
    EXPECT_FLOAT_EQ(static_cast<float>(Slider(row).value()), static_cast<float>(row.m_fStart)) << NameOf(row);
  for (const CColourRow& row : kColours) EXPECT_EQ(Button(row).color(), NearestCubeColour(row.m_Start)) << row.m_pLabel;
  EXPECT_TRUE(Appears("Advanced drawing options"));
}

TEST_F(DrawingOptionsTest, BackgroundStartsTransparent) { EXPECT_EQ(m_Settings.m_afBackground[3], 0); }

TEST_F(DrawingOptionsTest, OpensWithWhatWasChangedElsewhere) {
  for (const CSliderRow& row : kSliders) Setting(row) = 3.25F;
  m_Settings.m_GreyGrid = {1, 0, 1};
  m_Dialog.Open();
  for (const CSliderRow& row : kSliders) EXPECT_EQ(Slider(row).value(), 3.25) << NameOf(row);
  EXPECT_EQ(Button(kColours.back()).color(), fl_color_cube(4, 0, 4));
}

TEST_F(DrawingOptionsTest, EverySliderChangesItsSettingAndRedraws) {
  m_Dialog.Open();
  for (const CSliderRow& row : kSliders) {
    m_Views.m_iImageRedraws = m_Views.m_iModelRedraws = 0;
    Move(row, 3.75);
    EXPECT_EQ(Setting(row), 3.75F) << NameOf(row);
    EXPECT_EQ(m_Views.m_iImageRedraws, row.m_iImageRedraws) << NameOf(row);
    EXPECT_EQ(m_Views.m_iModelRedraws, row.m_iModelRedraws) << NameOf(row);
  }
}

TEST_F(DrawingOptionsTest, OneSliderLeavesTheOtherSettings) {
  m_Dialog.Open();
  for (const CSliderRow& row : kSliders) {
    Move(row, 4.25);
    Setting(row) = static_cast<float>(row.m_fStart);
    for (const CSliderRow& other : kSliders) EXPECT_FLOAT_EQ(Setting(other), static_cast<float>(other.m_fStart));
    m_Dialog.Refresh();
  }
}

TEST_F(DrawingOptionsTest, ThicknessesOfNormalConstraintsAreTakenTogether) {
  for (const CSliderRow& row : kSliders) Slider(row).value(2.0);
  Move(kSliders[2], 6.0);
  EXPECT_EQ(m_Settings.m_ImageView.m_fUnselectedNormalThickness, 2);
  EXPECT_EQ(m_Settings.m_ImageView.m_fSelectedNormalThickness, 2);
  EXPECT_EQ(m_Settings.m_ModelView.m_fUnselectedNormalThickness, 6);
  EXPECT_EQ(m_Settings.m_ModelView.m_fSelectedNormalThickness, 2);
  EXPECT_EQ(m_Settings.m_ModelView.m_fNormalRadius, 4);
}

TEST_F(DrawingOptionsTest, ThicknessOfAPositionConstraintFallsTowardsTheRight) {
  m_Dialog.Open();
  const CSliderRow& row = kSliders[10];
  DragAlong(Slider(row), 0.6, 0.8);
  const double before = Setting(row);
  DragAlong(Slider(row), 0.6, 1.0);
  EXPECT_LT(Setting(row), before);
  EXPECT_EQ(Setting(row), 1);
  DragAlong(Slider(row), 1.0, 0.0);
  EXPECT_EQ(Setting(row), 8);
}

TEST_F(DrawingOptionsTest, AcceptedColourIsSetAndShownAndRedraws) {
  m_Dialog.Open();
  for (const CColourRow& row : kColours) {
    m_Views.m_iImageRedraws = m_Views.m_iModelRedraws = 0;
    Choose(row, {51 / 255.0, 102 / 255.0, 1}, "OK");
    const CColour chosen = row.m_pGet(m_Settings);
    EXPECT_FLOAT_EQ(static_cast<float>(chosen[0]), 51 / 255.0F) << row.m_pGroup << row.m_pLabel;
    EXPECT_FLOAT_EQ(static_cast<float>(chosen[1]), 102 / 255.0F) << row.m_pGroup << row.m_pLabel;
    EXPECT_EQ(chosen[2], 1) << row.m_pGroup << row.m_pLabel;
    EXPECT_EQ(Button(row).color(), fl_color_cube(1, 3, 4)) << row.m_pGroup << row.m_pLabel;
    EXPECT_EQ(m_Views.m_iImageRedraws, row.m_iImageRedraws) << row.m_pGroup << row.m_pLabel;
    EXPECT_EQ(m_Views.m_iModelRedraws, row.m_iModelRedraws) << row.m_pGroup << row.m_pLabel;
  }
  EXPECT_EQ(m_Settings.m_afBackground[3], 0);
}

TEST_F(DrawingOptionsTest, RefusedColourChangesNothing) {
  m_Dialog.Open();
  for (const CColourRow& row : kColours) {
    Choose(row, {0.2, 0.4, 1}, "Cancel");
    EXPECT_EQ(row.m_pGet(m_Settings), row.m_Start) << row.m_pGroup << row.m_pLabel;
    EXPECT_EQ(Button(row).color(), NearestCubeColour(row.m_Start));
  }
  EXPECT_EQ(m_Views.m_iImageRedraws + m_Views.m_iModelRedraws, 0);
}

TEST_F(DrawingOptionsTest, ChooserStartsOnTheColourOfTheButton) {
  m_Dialog.Open();
  m_Settings.m_PositionColours.m_Selected = {1, 0.6, 0.2};
  const CModalAnswers answers({[&](Fl_Window& window) {
    EXPECT_NEAR(Chooser(window).r(), 1, 1e-9);
    EXPECT_NEAR(Chooser(window).g(), 0.6, 1e-9);
    EXPECT_NEAR(Chooser(window).b(), 0.2, 1e-9);
    Press(Find<Fl_Button>(window, "Cancel"));
  }});
  Press(Button(kColours[2]));
}

TEST_F(DrawingOptionsTest, OkAndCancelHideTheDialogAndKeepWhatWasSet) {
  for (const char* button : {"OK", "Cancel"}) {
    m_Dialog.Open();
    Move(kSliders[0], 2.5);
    Press(Find<Fl_Button>(m_Dialog, button));
    EXPECT_FALSE(m_Dialog.shown()) << button;
    EXPECT_EQ(m_Settings.m_ModelView.m_fGridThickness, 2.5F) << button;
  }
}

TEST_F(DrawingOptionsTest, OpensBesideTheMainWindowOnTheScreen) {
  m_MainWindow.show();
  m_Dialog.Open();
  ASSERT_TRUE(Appears("Advanced drawing options"));
  EXPECT_GE(m_Dialog.x(), m_MainWindow.x() + m_MainWindow.w());
  EXPECT_LE(m_Dialog.x() + m_Dialog.w(), Fl::w());
  EXPECT_GE(m_Dialog.y(), 0);
  EXPECT_LE(m_Dialog.y() + m_Dialog.h(), Fl::h());
}

TEST_F(DrawingOptionsTest, EveryWidgetLiesInsideItsGroup) { ExpectInsideGroups(m_Dialog); }

TEST(ColourChoiceTest, NearestCubeColourCountsInSteps) {
  EXPECT_EQ(NearestCubeColour({0, 0, 0}), 56U);
  EXPECT_EQ(NearestCubeColour({1, 1, 1}), 255U);
  EXPECT_EQ(NearestCubeColour({1, 0, 0}), 56U + 4 * 8);
  EXPECT_EQ(NearestCubeColour({0, 1, 0}), 56U + 7);
  EXPECT_EQ(NearestCubeColour({0, 0, 1}), 56U + 4 * 5 * 8);
  EXPECT_EQ(NearestCubeColour({-1, 2, 0}), NearestCubeColour({0, 1, 0}));
}

TEST(ColourChoiceTest, NoOtherCubeColourIsNearer) {
  for (const CColour& colour : {CColour{0.2, 0.2, 0.2}, CColour{0.5, 0.5, 0.5}, CColour{0.9, 0.1, 0.7}}) {
    const auto distance = [&colour](Fl_Color entry) {
      std::array<uchar, 3> bytes{};
      Fl::get_color(entry, bytes[0], bytes[1], bytes[2]);
      double sum = 0;
      for (std::size_t k = 0; k < 3; ++k) sum += std::abs(bytes[k] / 255.0 - colour[k]);
      return sum;
    };
    for (auto entry = static_cast<Fl_Color>(FL_COLOR_CUBE); entry < FL_COLOR_CUBE + 200; ++entry) {
      EXPECT_LE(distance(NearestCubeColour(colour)), distance(entry) + 0.02);
    }
  }
}
