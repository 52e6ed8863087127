#include <array>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Box.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CHeightFieldDialog.h"

namespace {

constexpr const char* kTitle = "Choose the dimention of the Height field";
using Sizes = std::vector<std::pair<int, int>>;

class HeightFieldDialogTest : public PanelTest {
 protected:
  // Opens the dialog, lets `use` have it and then presses a button that closes it.
  void Open(const CModalAnswers::Action& use, const char* button) {
    const CModalAnswers answers({[&](Fl_Window& window) {
      use(window);
      Press(Find<Fl_Button>(window, button));
    }});
    m_Dialog.Open();
  }
  static CModalAnswers::Action TypeSize(const char* width, const char* height) {
    return [width, height](Fl_Window& window) {
      Type(Find<Fl_Value_Input>(window, "Width"), width);
      Type(Find<Fl_Value_Input>(window, "Height"), height);
    };
  }
  static void Leave(Fl_Window& /*window*/) {}

  Sizes m_aExports;
  bool m_bOpenDuringExport = false;
  CHeightFieldDialog m_Dialog{m_Views, m_MainWindow, [this](int width, int height) {
                                m_aExports.emplace_back(width, height);
                                m_bOpenDuringExport = m_Dialog.shown() != 0;
                              }};
};

}  // namespace

TEST_F(HeightFieldDialogTest, HasItsTitleAndSizeAndStartsHidden) {
  EXPECT_STREQ(m_Dialog.label(), kTitle);
  EXPECT_EQ(m_Dialog.w(), 265);
  EXPECT_EQ(m_Dialog.h(), 255);
  EXPECT_FALSE(m_Dialog.shown());
}

TEST_F(HeightFieldDialogTest, WidgetsStandAtTheirPlaces) {
  const std::array places{std::pair{"Choose the sampling \n(Number of grid points)", CArea{35, 45, 195, 150}},
                          std::pair{"Width", CArea{105, 81, 110, 25}}, std::pair{"Height", CArea{105, 133, 110, 25}},
                          std::pair{"OK", CArea{25, 210, 105, 30}}, std::pair{"Cancel", CArea{140, 210, 105, 30}}};
  for (const auto& [label, area] : places) EXPECT_EQ(AreaOf(FindWidget(m_Dialog, label)), area) << label;
  EXPECT_NE(FindWidget(m_Dialog, places[0].first).box(), FL_NO_BOX);
}

TEST_F(HeightFieldDialogTest, StartsAtTwoHundredByTwoHundred) {
  for (const char* label : {"Width", "Height"}) EXPECT_EQ(Find<Fl_Value_Input>(m_Dialog, label).value(), 200) << label;
  Open(Leave, "OK");
  EXPECT_EQ(m_aExports, (Sizes{{200, 200}}));
}

TEST_F(HeightFieldDialogTest, OkExportsAndThenHides) {
  Open(TypeSize("30", "40"), "OK");
  EXPECT_EQ(m_aExports, (Sizes{{30, 40}}));
  EXPECT_TRUE(m_bOpenDuringExport);
  EXPECT_FALSE(m_Dialog.shown());
}

TEST_F(HeightFieldDialogTest, SizesAreTruncated) {
  Open(TypeSize("30.9", "2.999"), "OK");
  Open(TypeSize("0.5", "-0.5"), "OK");
  Open(TypeSize("1", "-3.7"), "OK");
  Open(TypeSize("2147483647", "-1e30"), "OK");
  EXPECT_EQ(m_aExports, (Sizes{{30, 2}, {0, 0}, {1, -3}, {2147483647, -2147483647 - 1}}));
}

TEST_F(HeightFieldDialogTest, CancelHidesWithoutExporting) {
  Open(TypeSize("30", "40"), "Cancel");
  EXPECT_TRUE(m_aExports.empty());
  EXPECT_FALSE(m_Dialog.shown());
}

TEST_F(HeightFieldDialogTest, OffersTheSizeOfTheLastExport) {
  Open(TypeSize("30", "40"), "OK");
  Open(TypeSize("50", "rubbish"), "Cancel");
  Open(Leave, "OK");
  EXPECT_EQ(m_aExports.back(), std::pair(30, 40));
}

TEST_F(HeightFieldDialogTest, BadInputIsNamedAndKept) {
  struct CRow {
    const char* m_pWidth;
    const char* m_pHeight;
    const char* m_pNotice;
  };
  for (const CRow& row :
       {CRow{"", "40", "Width must be a number."}, CRow{"30", "4e", "Height must be a number."},
        CRow{"3e9", "40", "Width must be at most 2147483647."}, CRow{"30", "1e999", "Height must be a number."},
        CRow{"10001", "10000", "A height field has at most 100000000 samples."},
        CRow{"2147483647", "2147483647", "A height field has at most 100000000 samples."}}) {
    m_Views.m_asNotices.clear();
    Open(
        [&](Fl_Window& window) {
          TypeSize(row.m_pWidth, row.m_pHeight)(window);
          Press(Find<Fl_Button>(window, "OK"));
          EXPECT_TRUE(window.shown());
          EXPECT_STREQ(Find<Fl_Value_Input>(window, "Width").input.value(), row.m_pWidth);
        },
        "Cancel");
    EXPECT_EQ(m_Views.m_asNotices, std::vector<std::string>{row.m_pNotice});
  }
  EXPECT_TRUE(m_aExports.empty());
}

TEST_F(HeightFieldDialogTest, OpensBesideTheMainWindow) {
  m_MainWindow.show();
  Open(
      [&](Fl_Window& window) {
        EXPECT_TRUE(Appears(kTitle));
        EXPECT_GE(window.x(), m_MainWindow.x() + m_MainWindow.w());
      },
      "Cancel");
}
