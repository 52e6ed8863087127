#include <array>
#include <optional>
#include <string>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Counter.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CGridParametersDialog.h"
#include "ui/dialogs/CNumberInput.h"

namespace {

constexpr CExtent kPresentExtent{-10, 90.5, 20, 120.123456789};
constexpr int kMaxLevel = 7;

struct CExtentRow {
  const char* m_pLabel;
  double CExtent::*m_pValue;
};
constexpr std::array kExtentInputs{CExtentRow{"x0:", &CExtent::x0}, CExtentRow{"x1:", &CExtent::x1},
                                   CExtentRow{"y0:", &CExtent::y0}, CExtentRow{"y1:", &CExtent::y1}};

struct CRefusal {
  const char* m_pLabel;
  const char* m_pText;
  const char* m_pNotice;
};
constexpr std::array kRefusals{
    CRefusal{"x0:", "", "x0 must be a number."},        CRefusal{"x1:", "-", "x1 must be a number."},
    CRefusal{"y0:", "1e", "y0 must be a number."},      CRefusal{"y1:", "12.5.", "y1 must be a number."},
    CRefusal{"x1:", "1e999", "x1 must be a number."},   CRefusal{"x1:", "2000.5", "x1 must be at most 2000."},
    CRefusal{"x1:", "-10", "x0 must be less than x1."}, CRefusal{"x0:", "100", "x0 must be less than x1."},
    CRefusal{"y1:", "20", "y0 must be less than y1."},  CRefusal{"y0:", "300", "y0 must be less than y1."},
};

class GridParametersTest : public PanelTest {
 protected:
  // Opens the dialog, lets `use` have it and then presses a button that closes it.
  std::optional<CGridParameters> Ask(CModalAnswers::Action use, const char* button, int maxLevel = kMaxLevel) {
    const CModalAnswers answers({[&](Fl_Window& window) {
      use(window);
      Press(Find<Fl_Button>(window, button));
    }});
    return m_Dialog.Ask(kPresentExtent, maxLevel);
  }
  static void Leave(Fl_Window& /*window*/) {}

  CGridParametersDialog m_Dialog{m_Views, m_MainWindow};
};

void ExpectExtent(const CExtent& extent, const CExtent& expected) {
  for (const CExtentRow& row : kExtentInputs) EXPECT_EQ(extent.*row.m_pValue, expected.*row.m_pValue) << row.m_pLabel;
}

}  // namespace

TEST_F(GridParametersTest, HasItsTitleAndSizeAndStartsHidden) {
  EXPECT_STREQ(m_Dialog.label(), "Grid Initial Parameters");
  EXPECT_EQ(m_Dialog.w(), 350);
  EXPECT_EQ(m_Dialog.h(), 150);
  EXPECT_FALSE(m_Dialog.shown());
}

TEST_F(GridParametersTest, OffersTheDefaultsAndThePresentExtent) {
  Ask(
      [](Fl_Window& window) {
        const auto& level = Find<Fl_Counter>(window, "Start level:");
        EXPECT_EQ(level.value(), 5);
        EXPECT_EQ(level.minimum(), 3);
        EXPECT_EQ(level.maximum(), 7);
        EXPECT_EQ(level.step(), 1);
        EXPECT_EQ(Find<Fl_Check_Button>(window, "Keep the \nold constraints").value(), 0);
        for (const CExtentRow& row : kExtentInputs) {
          EXPECT_EQ(Find<Fl_Value_Input>(window, row.m_pLabel).value(), kPresentExtent.*row.m_pValue);
          EXPECT_EQ(Find<Fl_Value_Input>(window, row.m_pLabel).maximum(), 2000);
        }
      },
      "Cancel");
}

TEST_F(GridParametersTest, RowsHoldXAndY) {
  EXPECT_EQ(FindWidget(m_Dialog, "x0:").y(), FindWidget(m_Dialog, "x1:").y());
  EXPECT_EQ(FindWidget(m_Dialog, "y0:").y(), FindWidget(m_Dialog, "y1:").y());
  EXPECT_LT(FindWidget(m_Dialog, "x0:").y(), FindWidget(m_Dialog, "y0:").y());
  ExpectInsideGroups(m_Dialog);
}

TEST_F(GridParametersTest, UntouchedPresetsComeBackExactly) {
  const auto answer = Ask(Leave, "OK");
  ASSERT_TRUE(answer.has_value());
  ExpectExtent(answer->m_Extent, kPresentExtent);
  EXPECT_EQ(answer->m_iStartLevel, 5);
  EXPECT_FALSE(answer->m_bKeepConstraints);
}

TEST_F(GridParametersTest, EnteredValuesComeBack) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        Find<Fl_Counter>(window, "Start level:").value(6);
        Type(Find<Fl_Value_Input>(window, "x0:"), "-1.5");
        Type(Find<Fl_Value_Input>(window, "x1:"), "2000");
        Type(Find<Fl_Value_Input>(window, "y0:"), " +2.5e1 ");
        Type(Find<Fl_Value_Input>(window, "y1:"), "26");
        Press(Find<Fl_Button>(window, "Keep the \nold constraints"));
      },
      "OK");
  ASSERT_TRUE(answer.has_value());
  ExpectExtent(answer->m_Extent, {-1.5, 2000, 25, 26});
  EXPECT_EQ(answer->m_iStartLevel, 6);
  EXPECT_TRUE(answer->m_bKeepConstraints);
}

TEST_F(GridParametersTest, CancelGivesNothing) {
  EXPECT_FALSE(Ask([](Fl_Window& window) { Type(Find<Fl_Value_Input>(window, "x1:"), "500"); }, "Cancel").has_value());
  EXPECT_TRUE(m_Views.m_asNotices.empty());
}

TEST_F(GridParametersTest, ClosingTheWindowGivesNothing) {
  const CModalAnswers answers({[](Fl_Window& window) { window.do_callback(); }});
  EXPECT_FALSE(m_Dialog.Ask(kPresentExtent, kMaxLevel).has_value());
}

TEST_F(GridParametersTest, WhatWasCancelledIsForgotten) {
  Ask(
      [](Fl_Window& window) {
        Find<Fl_Counter>(window, "Start level:").value(3);
        Type(Find<Fl_Value_Input>(window, "x1:"), "nothing");
        Press(Find<Fl_Button>(window, "Keep the \nold constraints"));
      },
      "Cancel");
  const auto answer = Ask(Leave, "OK");
  ASSERT_TRUE(answer.has_value());
  ExpectExtent(answer->m_Extent, kPresentExtent);
  EXPECT_EQ(answer->m_iStartLevel, 5);
  EXPECT_FALSE(answer->m_bKeepConstraints);
}

TEST_F(GridParametersTest, BadInputIsNamedAndKept) {
  for (const CRefusal& row : kRefusals) {
    m_Views.m_asNotices.clear();
    const auto answer = Ask(
        [&](Fl_Window& window) {
          Find<Fl_Counter>(window, "Start level:").value(4);
          Type(Find<Fl_Value_Input>(window, row.m_pLabel), row.m_pText);
          Press(Find<Fl_Button>(window, "OK"));
          EXPECT_TRUE(window.shown());
          EXPECT_STREQ(Find<Fl_Value_Input>(window, row.m_pLabel).input.value(), row.m_pText);
          EXPECT_EQ(Find<Fl_Counter>(window, "Start level:").value(), 4);
        },
        "Cancel");
    EXPECT_EQ(m_Views.m_asNotices, std::vector<std::string>{row.m_pNotice}) << row.m_pLabel << row.m_pText;
    EXPECT_FALSE(answer.has_value());
  }
}

TEST_F(GridParametersTest, LevelAboveTheGridsHighestIsRefused) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        Find<Fl_Counter>(window, "Start level:").value(6);
        Press(Find<Fl_Button>(window, "OK"));
        Find<Fl_Counter>(window, "Start level:").value(5);
      },
      "OK", 5);
  EXPECT_EQ(m_Views.m_asNotices,
            std::vector<std::string>{"The start level must not be above 5, the highest level of the grid."});
  ASSERT_TRUE(answer.has_value());
  EXPECT_EQ(answer->m_iStartLevel, 5);
}

TEST_F(GridParametersTest, CorrectedInputIsAccepted) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        auto& input = Find<Fl_Value_Input>(window, "x1:");
        Type(input, "");
        Press(Find<Fl_Button>(window, "OK"));
        Type(input, "99");
      },
      "OK");
  ASSERT_TRUE(answer.has_value());
  EXPECT_EQ(answer->m_Extent.x1, 99);
}

TEST_F(GridParametersTest, NumbersAreTypedWithTheKeyboard) {
  const auto answer = Ask(
      [&](Fl_Window& window) {
        auto& input = Find<CNumberInput>(window, "x1:");
        input.take_focus();
        input.input.position(input.input.size(), 0);
        for (const char* key : {"8", "x", "1", ".", "5"}) TypeKey(input.input, key);
        EXPECT_STREQ(input.input.value(), "81.5") << "letters are no part of a number";
      },
      "OK");
  ASSERT_TRUE(answer.has_value());
  EXPECT_EQ(answer->m_Extent.x1, 81.5);
}

TEST_F(GridParametersTest, OpensBesideTheMainWindow) {
  m_MainWindow.show();
  Ask(
      [&](Fl_Window& window) {
        EXPECT_TRUE(Appears("Grid Initial Parameters"));
        EXPECT_GE(window.x(), m_MainWindow.x() + m_MainWindow.w());
        EXPECT_LT(window.x(), m_MainWindow.x() + m_MainWindow.w() + 50);
      },
      "Cancel");
}

TEST_F(GridParametersTest, TakesTheEventsFromAnOpenMenuWhileItIsOpen) {
  m_MainWindow.show();
  Fl::grab(&m_MainWindow);
  const CModalAnswers answers({[](Fl_Window& window) {
    EXPECT_EQ(Fl::grab(), nullptr);
    window.hide();
  }});
  m_Dialog.Ask(kPresentExtent, kMaxLevel);
  EXPECT_EQ(Fl::grab(), &m_MainWindow);
  Fl::grab(nullptr);
}
