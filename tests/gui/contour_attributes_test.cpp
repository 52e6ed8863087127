#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Check_Button.H>

#include "support/gui/PanelTest.h"
#include "ui/dialogs/CContourAttributesDialog.h"
#include "ui/dialogs/CNumberInput.h"

namespace {

constexpr const char* kAllNodes = "weights applied to all contour nodes?";
constexpr const char* kExport =
    "You chose to transform auto generated constraints to manual constraints\n"
    "There is no way you can reverse that. Are you sure ?";

// Eight different numbers, so that none can stand in for another. One is longer than what an input shows.
constexpr CContourAttributes kPresent{true, true, false, {{{3.123456789, -14}, {7, 80}}}, {0.125, 5, 2.25, 6}};

using Attributes = CContourAttributes;

struct CInputRow {
  const char* m_pGroup;
  const char* m_pLabel;
  const char* m_pName;
  bool m_bWeight;
  double& (*m_pValue)(Attributes& attributes);
};

constexpr std::array kInputs{
    CInputRow{"Left Weights:", "curvature:", "left curvature", true,
              [](Attributes& a) -> double& { return a.m_Weights.m_fLeftCurvature; }},
    CInputRow{"Left Weights:", "torsion:", "left torsion", true,
              [](Attributes& a) -> double& { return a.m_Weights.m_fLeftTorsion; }},
    CInputRow{"Left Auto Bump", "Intercons-\ntraint dist.", "left constraint distance", false,
              [](Attributes& a) -> double& { return a.m_aAutoBumps[0].m_fDistance; }},
    CInputRow{"Left Auto Bump", "Normal\nOrientation", "left normal orientation", false,
              [](Attributes& a) -> double& { return a.m_aAutoBumps[0].m_fOrientation; }},
    CInputRow{"Right Weights:", "curvature:", "right curvature", true,
              [](Attributes& a) -> double& { return a.m_Weights.m_fRightCurvature; }},
    CInputRow{"Right Weights:", "torsion:", "right torsion", true,
              [](Attributes& a) -> double& { return a.m_Weights.m_fRightTorsion; }},
    CInputRow{"Right Auto Bump", "Intercons-\ntraint dist.", "right constraint distance", false,
              [](Attributes& a) -> double& { return a.m_aAutoBumps[1].m_fDistance; }},
    CInputRow{"Right Auto Bump", "Normal\nOrientation", "right normal orientation", false,
              [](Attributes& a) -> double& { return a.m_aAutoBumps[1].m_fOrientation; }},
};

constexpr std::array kBumps{std::pair{"Left Auto Bump", &Attributes::m_bLeftAutoBump},
                            std::pair{"Right Auto Bump", &Attributes::m_bRightAutoBump}};

class ContourAttributesTest : public PanelTest {
 protected:
  using Action = CModalAnswers::Action;

  // Lets `use` have the dialog, presses a button that closes it, and lets `questions` answer what follows.
  std::optional<CContourAnswer> Ask(const Action& use, const char* button, std::deque<Action> questions = {},
                                    bool fairness = false) {
    questions.push_front([use, button](Fl_Window& window) {
      use(window);
      Press(Find<Fl_Button>(window, button));
    });
    const CModalAnswers answers(std::move(questions));
    return m_Dialog.Ask(kPresent, fairness);
  }
  static void Leave(Fl_Window& /*window*/) {}
  static Action Answer(const char* question, const char* button) {
    return [question, button](Fl_Window& window) {
      EXPECT_NO_THROW(FindWidget(window, question));
      Press(Find<Fl_Button>(window, button));
    };
  }
  static Fl_Value_Input& Input(Fl_Window& window, const CInputRow& row) {
    return Find<Fl_Value_Input>(Find<Fl_Group>(window, row.m_pGroup), row.m_pLabel);
  }
  static Fl_Button& Enable(Fl_Window& window, const char* group) {
    return Find<Fl_Check_Button>(Find<Fl_Group>(window, group), "Enable");
  }
  static void ExpectAttributes(CContourAttributes actual, CContourAttributes expected) {
    for (const CInputRow& row : kInputs) EXPECT_EQ(row.m_pValue(actual), row.m_pValue(expected)) << row.m_pName;
    for (const auto& [group, enabled] : kBumps) EXPECT_EQ(actual.*enabled, expected.*enabled) << group;
    EXPECT_EQ(actual.m_bClosed, expected.m_bClosed);
  }

  CContourAttributesDialog m_Dialog{m_Views, m_MainWindow};
};

}  // namespace

TEST_F(ContourAttributesTest, HasItsTitleAndSizeAndStartsHidden) {
  EXPECT_STREQ(m_Dialog.label(), "Contour Attributes");
  EXPECT_EQ(m_Dialog.w(), 359);
  EXPECT_EQ(m_Dialog.h(), 318);
  EXPECT_FALSE(m_Dialog.shown());
  ExpectInsideGroups(m_Dialog);
}

TEST_F(ContourAttributesTest, ShowsTheNodeAndTheCurve) {
  Ask(
      [](Fl_Window& window) {
        CContourAttributes present = kPresent;
        for (const CInputRow& row : kInputs) EXPECT_EQ(Input(window, row).value(), row.m_pValue(present));
        for (const auto& [group, enabled] : kBumps) {
          EXPECT_EQ(Enable(window, group).value() != 0, present.*enabled) << group;
        }
        EXPECT_EQ(Find<Fl_Check_Button>(window, "closed contour").value(), 1);
      },
      "Cancel");
}

TEST_F(ContourAttributesTest, OkStandsBesideExportAndCancel) {
  const int y = FindWidget(m_Dialog, "OK").y();
  EXPECT_EQ(FindWidget(m_Dialog, "Export Constraints").y(), y);
  EXPECT_EQ(FindWidget(m_Dialog, "Cancel").y(), y);
}

TEST_F(ContourAttributesTest, OtherTypesShowBothPairsOfWeights) {
  Ask(Leave, "Cancel", {}, true);
  Ask(
      [](Fl_Window& window) {
        EXPECT_TRUE(FindWidget(window, "Left Weights:").visible());
        EXPECT_TRUE(FindWidget(window, "Right Weights:").visible());
      },
      "Cancel");
}

TEST_F(ContourAttributesTest, FairnessCurveShowsOnePairOfWeights) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        EXPECT_FALSE(FindWidget(window, "Right Weights:").visible());
        auto& weights = Find<Fl_Group>(window, "Weights");
        EXPECT_TRUE(weights.visible());
        EXPECT_EQ(Find<Fl_Value_Input>(weights, "curvature:").value(), kPresent.m_Weights.m_fLeftCurvature);
        EXPECT_TRUE(FindWidget(window, "Right Auto Bump").visible());
      },
      "OK", {}, true);
  ASSERT_TRUE(answer.has_value());
  ExpectAttributes(answer->m_Attributes, kPresent);
}

TEST_F(ContourAttributesTest, UntouchedValuesComeBackExactlyAndWithoutAQuestion) {
  const auto answer = Ask(Leave, "OK");
  ASSERT_TRUE(answer.has_value());
  ExpectAttributes(answer->m_Attributes, kPresent);
  EXPECT_FALSE(answer->m_bAllNodes);
  EXPECT_FALSE(answer->m_bExport);
}

TEST_F(ContourAttributesTest, EveryEnteredNumberComesBackInItsPlace) {
  for (const CInputRow& row : kInputs) {
    std::deque<Action> questions;
    if (row.m_bWeight) questions.push_back(Answer(kAllNodes, "No"));
    const auto answer = Ask([&](Fl_Window& window) { Type(Input(window, row), "-33.5"); }, "OK", questions);
    CContourAttributes expected = kPresent;
    row.m_pValue(expected) = -33.5;
    ASSERT_TRUE(answer.has_value());
    ExpectAttributes(answer->m_Attributes, expected);
  }
}

TEST_F(ContourAttributesTest, CheckButtonsComeBack) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        for (const auto& [group, enabled] : kBumps) Press(Enable(window, group));
        Press(Find<Fl_Check_Button>(window, "closed contour"));
      },
      "OK");
  ASSERT_TRUE(answer.has_value());
  EXPECT_FALSE(answer->m_Attributes.m_bLeftAutoBump);
  EXPECT_TRUE(answer->m_Attributes.m_bRightAutoBump);
  EXPECT_FALSE(answer->m_Attributes.m_bClosed);
}

TEST_F(ContourAttributesTest, OrientationsAreHeldToEightyDegrees) {
  struct CCase {
    const char* m_pText;
    double m_fStored;
  };
  for (const CCase& orientation : {CCase{"120", 80}, CCase{"80.5", 80}, CCase{"-81", -80}, CCase{"79.5", 79.5}}) {
    for (const CInputRow& row : {kInputs[3], kInputs[7]}) {
      auto answer = Ask([&](Fl_Window& window) { Type(Input(window, row), orientation.m_pText); }, "OK");
      ASSERT_TRUE(answer.has_value());
      EXPECT_EQ(row.m_pValue(answer->m_Attributes), orientation.m_fStored) << row.m_pName << orientation.m_pText;
    }
  }
}

TEST_F(ContourAttributesTest, ChangedWeightsAskWhetherAllNodesTakeThem) {
  for (const CInputRow& row : kInputs) {
    if (!row.m_bWeight) continue;
    for (const auto& [button, all] : {std::pair{"Yes", true}, {"No", false}}) {
      const auto answer =
          Ask([&](Fl_Window& window) { Type(Input(window, row), "9"); }, "OK", {Answer(kAllNodes, button)});
      ASSERT_TRUE(answer.has_value());
      EXPECT_EQ(answer->m_bAllNodes, all) << row.m_pName;
    }
  }
}

TEST_F(ContourAttributesTest, ExportIsConfirmed) {
  for (const auto& [button, exports] : {std::pair{"Yes", true}, {"No", false}}) {
    const auto answer = Ask([](Fl_Window& window) { Type(Input(window, kInputs[2]), "4"); }, "Export Constraints",
                            {Answer(kExport, button)});
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(answer->m_bExport, exports);
    EXPECT_EQ(answer->m_Attributes.m_aAutoBumps[0].m_fDistance, 4);
  }
}

TEST_F(ContourAttributesTest, ExportWithOtherWeightsAsksForThemFirst) {
  const auto answer = Ask([](Fl_Window& window) { Type(Input(window, kInputs[0]), "4"); }, "Export Constraints",
                          {Answer(kAllNodes, "Yes"), Answer(kExport, "Yes")});
  ASSERT_TRUE(answer.has_value());
  EXPECT_TRUE(answer->m_bAllNodes);
  EXPECT_TRUE(answer->m_bExport);
}

TEST_F(ContourAttributesTest, CancelGivesNothingAndIsForgotten) {
  const auto cancelled = Ask(
      [](Fl_Window& window) {
        Type(Input(window, kInputs[0]), "77");
        Press(Enable(window, "Right Auto Bump"));
      },
      "Cancel");
  EXPECT_FALSE(cancelled.has_value());
  const auto answer = Ask(Leave, "OK");
  ASSERT_TRUE(answer.has_value());
  ExpectAttributes(answer->m_Attributes, kPresent);
}

TEST_F(ContourAttributesTest, BadNumberIsNamedAndKept) {
  for (const CInputRow& row : kInputs) {
    m_Views.m_asNotices.clear();
    const auto answer = Ask(
        [&](Fl_Window& window) {
          Type(Input(window, row), "1e");
          Press(Find<Fl_Button>(window, "OK"));
          EXPECT_TRUE(window.shown());
          EXPECT_STREQ(Input(window, row).input.value(), "1e");
        },
        "Cancel");
    EXPECT_EQ(m_Views.m_asNotices, std::vector{std::string("The ") + row.m_pName + " must be a number."});
    EXPECT_FALSE(answer.has_value());
  }
}

TEST_F(ContourAttributesTest, RefusedExportDoesNotMakeTheNextOkAnExport) {
  const auto answer = Ask(
      [](Fl_Window& window) {
        Type(Input(window, kInputs[2]), "");
        Press(Find<Fl_Button>(window, "Export Constraints"));
        Type(Input(window, kInputs[2]), "5");
      },
      "OK");
  ASSERT_TRUE(answer.has_value());
  EXPECT_FALSE(answer->m_bExport);
  EXPECT_EQ(m_Views.m_asNotices.size(), 1U);
}

// A group under the pointer would take Return for a step to its next input.
TEST_F(ContourAttributesTest, ReturnIsOkAlsoWithThePointerOnAnInput) {
  bool wasOpen = false;
  const CModalAnswers answers({[&](Fl_Window& window) {
    Fl_Value_Input& input = Input(window, kInputs[2]);
    input.take_focus();
    Fl::belowmouse(&input);
    Fl::e_keysym = FL_Enter;
    Fl::e_state = 0;
    Fl::handle(FL_KEYBOARD, &window);
    wasOpen = window.shown() != 0;
    window.hide();
  }});
  EXPECT_TRUE(m_Dialog.Ask(kPresent, false).has_value());
  EXPECT_FALSE(wasOpen);
}

TEST_F(ContourAttributesTest, OpensBesideTheMainWindow) {
  m_MainWindow.show();
  Ask(
      [&](Fl_Window& window) {
        EXPECT_TRUE(Appears("Contour Attributes"));
        EXPECT_GE(window.x(), m_MainWindow.x() + m_MainWindow.w());
      },
      "Cancel");
}
