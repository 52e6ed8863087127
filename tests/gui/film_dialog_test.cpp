// "Export Film": what can be chosen, and how long the film would be.

#include <array>
#include <optional>
#include <string>

#include <FL/Fl_Box.H>
#include <FL/Fl_Choice.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CFilmDialog.h"
#include "ui/dialogs/CNumberInput.h"

namespace {

class FilmDialogTest : public PanelTest {
 protected:
  // Opens the dialog, lets `use` have it and then presses a button that closes it.
  std::optional<CFilmChoice> Ask(std::size_t recorded, const CModalAnswers::Action& use,
                                 const char* button = "Export...") {
    const CModalAnswers answers({[&](Fl_Window& window) {
      use(window);
      Press(Find<Fl_Button>(window, button));
    }});
    return m_Dialog.Ask(recorded, 0.02);
  }
  static void Leave(Fl_Window& /*window*/) {}
  static void Pick(Fl_Window& window, const char* choice, int entry) {
    auto& widget = Find<Fl_Choice>(window, choice);
    widget.value(entry);
    widget.do_callback();
  }
  // The text in the frame: the last label.
  static std::string Description(Fl_Window& window) {
    std::string text;
    for (Fl_Widget* widget : WidgetsIn(window)) {
      if (widget->label() != nullptr && dynamic_cast<Fl_Box*>(widget) != nullptr) text = widget->label();
    }
    return text;
  }

  CFilmDialog m_Dialog{m_Views, m_MainWindow};
};

}  // namespace

TEST_F(FilmDialogTest, OffersTheRecordingOnlyWhereOneIsThere) {
  const auto turn = Ask(0, [](Fl_Window& window) {
    const auto& source = Find<Fl_Choice>(window, "Movement:");
    EXPECT_STREQ(source.text(), "a turntable");
    EXPECT_FALSE(source.menu()[0].active());
    EXPECT_TRUE(FindWidget(window, "Time of a turn:").active());
  });
  ASSERT_TRUE(turn.has_value());
  EXPECT_EQ(turn->m_Source, FilmSource::Turntable);
  const auto again = Ask(60, [](Fl_Window& window) {
    EXPECT_TRUE(Find<Fl_Choice>(window, "Movement:").menu()[0].active());
    EXPECT_STREQ(Find<Fl_Choice>(window, "Movement:").text(), "a turntable") << "as it was last";
    Pick(window, "Movement:", 0);
    EXPECT_FALSE(FindWidget(window, "Time of a turn:").active());
    EXPECT_EQ(Description(window), "60 recorded frames become 36 frames at 30 a second\n1.2 seconds");
  });
  ASSERT_TRUE(again.has_value());
  EXPECT_EQ(again->m_Source, FilmSource::Recording);
  EXPECT_EQ(again->m_fFrameSeconds, 0.02);
}

TEST_F(FilmDialogTest, BeginsWithTheRecordingInTheFirstFormat) {
  const auto choice = Ask(3, Leave);
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->m_Source, FilmSource::Recording);
  EXPECT_STREQ(choice->m_pFormat->m_pSuffix, ".webp");
  EXPECT_EQ(choice->m_iWidth, 640);
  EXPECT_EQ(choice->m_iHeight, 480);
  EXPECT_FALSE(Ask(3, Leave, "Cancel").has_value());
}

TEST_F(FilmDialogTest, TellsHowLongATurnIs) {
  const auto choice = Ask(0, [](Fl_Window& window) {
    EXPECT_EQ(Description(window), "120 frames at 30 a second\n4 seconds");
    Type(Find<CNumberInput>(window, "Time of a turn:"), "0.5");
    EXPECT_EQ(Description(window), "15 frames at 30 a second\n0.5 seconds");
    Type(Find<CNumberInput>(window, "Size:"), "320");
    Type(Find<CNumberInput>(window, "x"), "200");
  });
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->m_fTurnSeconds, 0.5);
  EXPECT_EQ(choice->m_iWidth, 320);
  EXPECT_EQ(choice->m_iHeight, 200);
}

TEST_F(FilmDialogTest, RefusesNumbersThatAreNone) {
  struct CRow {
    const char* m_pLabel;
    const char* m_pText;
    const char* m_pNotice;
  };
  constexpr std::array kRows{
      CRow{"Time of a turn:", "", "The time of a turn must be a number."},
      CRow{"Time of a turn:", "0", "The time of a turn must be above 0 and at most 600 seconds."},
      CRow{"Time of a turn:", "601", "The time of a turn must be above 0 and at most 600 seconds."},
      CRow{"Size:", "641", "The width must be an even number from 2 to 4096."},
      CRow{"Size:", "4098", "The width must be an even number from 2 to 4096."},
      CRow{"x", "0", "The height must be an even number from 2 to 4096."},
      CRow{"x", "", "The height must be an even number from 2 to 4096."}};
  for (const CRow& row : kRows) {
    m_Views.m_asNotices.clear();
    Ask(
        0,
        [&](Fl_Window& window) {
          Type(Find<CNumberInput>(window, row.m_pLabel), row.m_pText);
          Press(Find<Fl_Button>(window, "Export..."));
          EXPECT_NE(window.shown(), 0);
          EXPECT_EQ(m_Views.m_asNotices, std::vector<std::string>{row.m_pNotice});
          EXPECT_EQ(Description(window), row.m_pNotice);
        },
        "Cancel");
  }
}

TEST_F(FilmDialogTest, FitsIntoItself) { ExpectInsideGroups(m_Dialog); }
