#include <cstdlib>
#include <memory>

#include <FL/Fl_Browser_.H>
#include <FL/Fl_Counter.H>
#include <FL/Fl_Input_.H>
#include <FL/Fl_Menu_.H>
#include <FL/Fl_Value_Input.H>
#include <FL/Fl_Value_Slider.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CContourAttributesDialog.h"
#include "ui/dialogs/CDrawingOptionsDialog.h"
#include "ui/dialogs/CFileChooser.h"
#include "ui/dialogs/CGridParametersDialog.h"
#include "ui/drawing/CValueSlider.h"
#include "ui/lights/CLightUI.h"

namespace {

class ScaleWidgetsTest : public PanelTest {
 protected:
  ~ScaleWidgetsTest() override { unsetenv("RELIEVO_SCALE"); }

  // Builds the same window at its own size and at twice that.
  template <class Build>
  void ExpectTwiceAsLarge(Build build) {
    const auto plain = build();
    setenv("RELIEVO_SCALE", "2", 1);
    const auto large = build();
    unsetenv("RELIEVO_SCALE");
    ExpectTwice(WindowOf(*plain), WindowOf(*large));
  }

 private:
  static Fl_Window& WindowOf(Fl_Window& window) { return window; }
  static Fl_Window& WindowOf(CFileChooser& chooser) { return chooser.Window(); }

  static void ExpectTwice(Fl_Window& plain, Fl_Window& large) {
    EXPECT_EQ(large.w(), 2 * plain.w());
    EXPECT_EQ(large.h(), 2 * plain.h());
    const auto before = WidgetsIn(plain);
    const auto after = WidgetsIn(large);
    ASSERT_EQ(after.size(), before.size());
    ASSERT_FALSE(after.empty());
    for (std::size_t k = 0; k < after.size(); ++k) {
      const CArea area = AreaOf(*before[k]);
      const CArea twice{2 * area.m_iX, 2 * area.m_iY, 2 * area.m_iWidth, 2 * area.m_iHeight};
      EXPECT_EQ(AreaOf(*after[k]), twice) << k;
      EXPECT_EQ(after[k]->labelsize(), 2 * before[k]->labelsize()) << k;
      ExpectTextTwiceAsLarge<Fl_Value_Input>(*before[k], *after[k]);
      ExpectTextTwiceAsLarge<Fl_Value_Slider>(*before[k], *after[k]);
      ExpectTextTwiceAsLarge<Fl_Counter>(*before[k], *after[k]);
      ExpectTextTwiceAsLarge<Fl_Input_>(*before[k], *after[k]);
      ExpectTextTwiceAsLarge<Fl_Browser_>(*before[k], *after[k]);
      ExpectTextTwiceAsLarge<Fl_Menu_>(*before[k], *after[k]);
    }
  }

  template <class Widget>
  static void ExpectTextTwiceAsLarge(Fl_Widget& before, Fl_Widget& after) {
    const auto* plain = dynamic_cast<Widget*>(&before);
    const auto* large = dynamic_cast<Widget*>(&after);
    if (plain != nullptr) {
      EXPECT_EQ(large->textsize(), 2 * plain->textsize());
    }
  }
};

}  // namespace

TEST_F(ScaleWidgetsTest, DialogsWithGroupsAndInputs) {
  ExpectTwiceAsLarge([&] { return std::make_unique<CContourAttributesDialog>(m_Views, m_MainWindow); });
  ExpectTwiceAsLarge([&] { return std::make_unique<CGridParametersDialog>(m_Views, m_MainWindow); });
}

TEST_F(ScaleWidgetsTest, PanelsWithSliders) {
  ExpectTwiceAsLarge([&] { return std::make_unique<CLightUI>(m_Views, m_MainWindow, [](bool) {}); });
  CDrawingSettings settings;
  ExpectTwiceAsLarge([&] { return std::make_unique<CDrawingOptionsDialog>(settings, m_Views, m_MainWindow); });
}

TEST_F(ScaleWidgetsTest, FileChooser) {
  ExpectTwiceAsLarge([] { return std::make_unique<CFileChooser>(); });
}

// Where a press sets the knob tells where the knob runs: here behind the number, over as many pixels in all.
TEST_F(ScaleWidgetsTest, NumbersOfSlidersHaveMoreRoomWhereTheirTextIsLarger) {
  constexpr int kTrack = 265;
  const auto pressed = [](Fl_Value_Slider& slider, int place) {
    slider.type(FL_HOR_SLIDER);
    slider.box(FL_FLAT_BOX);
    Fl::e_x = slider.x() + slider.w() - kTrack + place;
    Fl::e_y = slider.y() + 10;
    slider.handle(FL_PUSH);
    return slider.value();
  };
  for (const int place : {100, 132, 200}) {
    Fl_Value_Slider toolkits(40, 10, 35 + kTrack, 22);
    const double value = pressed(toolkits, place);
    EXPECT_GT(value, 0.3);
    for (const int textSize : {10, 15, 20}) {
      CValueSlider slider(40, 10, 35 * textSize / 10 + kTrack, 22);
      slider.textsize(textSize);
      EXPECT_EQ(pressed(slider, place), value) << textSize;
    }
  }
}
