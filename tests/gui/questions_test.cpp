// Texts of the user, such as names of files, in the toolkit's boxes.

#include "ui/dialogs/Questions.h"

#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/gui/PanelTest.h"
#include "support/gui/Widgets.h"
#include "ui/window/CToolkitDialogs.h"

namespace {

class QuestionsTest : public PanelTest {
 protected:
  // Looks for the text as the toolkit has it, and closes the box.
  CModalAnswers::Action Expects(std::string_view label) {
    return [this, label](Fl_Window& window) {
      for (const Fl_Widget* widget : WidgetsIn(window))
        m_iFound += widget->label() != nullptr && widget->label() == label ? 1 : 0;
      window.hide();
    };
  }

  CToolkitDialogs m_Dialogs;
  int m_iFound = 0;
};

}  // namespace

TEST(LabelTextTest, EveryAtSignIsDoubled) {
  EXPECT_EQ(LabelText(""), "");
  EXPECT_EQ(LabelText("a plain name"), "a plain name");
  EXPECT_EQ(LabelText("@/home/me@work/@@.bmp@"), "@@/home/me@@work/@@@@.bmp@@");
}

// Somebody who looks for a question must not take a window for it that is just closing.
TEST_F(QuestionsTest, HaveAnEmptyTitleOnTheScreenWhichIsNotThatOfAWindowThatHasGone) {
  Fl_Window untitled(100, 100);
  untitled.end();
  untitled.show();
  ASSERT_TRUE(WorkUntil([&] { return m_Screen.FindWindow(getpid(), "").has_value(); }));
  const WindowId window = *m_Screen.FindWindow(getpid(), "");
  EXPECT_EQ(m_Screen.TitleOf(window), "");
  untitled.hide();
  ASSERT_TRUE(WorkUntil([&] { return m_Screen.AreaOf(window).m_iWidth == 0; }));
  EXPECT_EQ(m_Screen.TitleOf(window), std::nullopt);
}

TEST_F(QuestionsTest, NamesAreNotCutAtAnAtSign) {
  const std::string expected = "Cannot write /tmp/a@@b.bmp";
  const CModalAnswers answers({Expects(expected), Expects(expected), Expects(expected)});
  m_Dialogs.Notice("Cannot write /tmp/a@b.bmp");
  m_Dialogs.Ask("Cannot write /tmp/a@b.bmp");
  m_Dialogs.AskText("Cannot write /tmp/a@b.bmp");
  EXPECT_EQ(m_iFound, 3);
}
