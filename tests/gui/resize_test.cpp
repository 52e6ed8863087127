// Whatever the size of the window, every control that is shown lies in it and on no other one.

#include <array>
#include <cstddef>

#include "support/LayoutBuilders.h"
#include "support/gui/WindowTest.h"

namespace {

constexpr std::array kWidths{800, 870, 1000, 1280, 1600};
constexpr std::array kHeights{300, 420, 660, 900, 1200};

class ResizeTest : public WindowTest {
 protected:
  void ShowOrHide(MenuEntry entry, bool show) {
    if (Menu().IsChecked(entry) != show) Menu().Choose(entry);
  }

  CRect RectOf(Control control) {
    const Fl_Widget& widget = Widget(control);
    return {widget.x(), widget.y(), widget.w(), widget.h()};
  }
  // The views give way first, down to nothing.
  static bool MayBeEmpty(Control control) { return control == Control::ImageView || control == Control::ModelView; }
  // The scissors take the recorder's place until there is a picture.
  static bool MayMeet(Control a, Control b, bool picture) {
    return !picture && a == Control::Recorder && b == Control::Scissors;
  }

  void ExpectInside(Control control) {
    const CRect rect = RectOf(control);
    const CRect parent = RowOf(control).m_Parent == Control::Window ? CRect{0, 0, m_Window.w(), m_Window.h()}
                                                                    : RectOf(RowOf(control).m_Parent);
    EXPECT_TRUE(rect.x >= parent.x && rect.y >= parent.y && rect.Right() <= parent.Right() &&
                rect.Bottom() <= parent.Bottom())
        << Where(control);
    EXPECT_TRUE(MayBeEmpty(control) || (rect.w > 0 && rect.h > 0)) << Where(control);
  }
  void ExpectApart(Control a, Control b) {
    const CRect r = RectOf(a);
    const CRect s = RectOf(b);
    EXPECT_TRUE(r.Right() <= s.x || s.Right() <= r.x || r.Bottom() <= s.y || s.Bottom() <= r.y)
        << Where(a) << " and " << Where(b);
  }
  void ExpectOrder(bool picture) {
    std::size_t shown = 0;
    for (const CControlRow& row : kControls) {
      if (!IsVisible(row.m_Control)) continue;
      ++shown;
      ExpectInside(row.m_Control);
      for (const CControlRow& other : kControls) {
        if (&other <= &row || other.m_Parent != row.m_Parent || !IsVisible(other.m_Control)) continue;
        if (!MayMeet(row.m_Control, other.m_Control, picture)) ExpectApart(row.m_Control, other.m_Control);
      }
    }
    EXPECT_GT(shown, kControlCount / 2);
  }
  void ExpectOrderAtEverySize(bool picture) {
    for (const bool debugZone : {true, false}) {
      ShowOrHide(MenuEntry::DebugInterface, debugZone);
      for (const bool helpLine : {true, false}) {
        ShowOrHide(MenuEntry::StatusBar, helpLine);
        for (const int width : kWidths) {
          for (const int height : kHeights) {
            m_Window.resize(0, 0, width, height);
            ExpectOrder(picture);
          }
        }
      }
    }
  }

 private:
  std::string Where(Control control) {
    const CRect rect = RectOf(control);
    return std::string(RowOf(control).m_pLabel) + " at " + std::to_string(rect.x) + ", " + std::to_string(rect.y) +
           " in a window of " + std::to_string(m_Window.w()) + " by " + std::to_string(m_Window.h());
  }
};

}  // namespace

TEST_F(ResizeTest, LowestWindowFits) { EXPECT_LE(FittingHeight({}), kHeights.front()); }

TEST_F(ResizeTest, EveryControlKeepsItsPlaceWithoutAPicture) { ExpectOrderAtEverySize(false); }

TEST_F(ResizeTest, EveryControlKeepsItsPlaceWithAPicture) {
  LoadPicture();
  ExpectOrderAtEverySize(true);
}

TEST_F(ResizeTest, FreezeToolHasItsPlaceToo) {
  LoadPicture();
  Menu().Choose(MenuEntry::FreezeMap);
  ASSERT_TRUE(IsVisible(Control::Freeze));
  ExpectOrderAtEverySize(true);
}
