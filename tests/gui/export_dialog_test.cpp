// "Export Model": what is offered of each format, and what is told before anything is written.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <FL/Fl_Box.H>
#include <FL/Fl_Choice.H>

#include "support/BmpBuilders.h"
#include "support/CleanMeshBuilders.h"
#include "support/gui/PanelTest.h"
#include "ui/dialogs/CExportDialog.h"
#include "ui/dialogs/CNumberInput.h"

namespace {

class ExportDialogTest : public PanelTest {
 protected:
  ExportDialogTest() {
    SetRandomHeights(m_Grid.Lattice(), 3);
    m_Photograph.m_Picture = PlainPicture(8, 6, 10, 200, 30);
  }

  // Opens the dialog, lets `use` have it and then presses a button that closes it.
  std::optional<CExportChoice> Ask(const CModalAnswers::Action& use, const char* button = "Export...",
                                   bool photograph = true) {
    const CModalAnswers answers({[&](Fl_Window& window) {
      use(window);
      Press(Find<Fl_Button>(window, button));
    }});
    CExportSurvey survey(m_Grid.m_Grid);
    CExportSettings given;
    if (photograph) given.m_pPhotograph = &m_Photograph;
    CExportPictures pictures(m_Grid.m_Grid, given.m_pPhotograph);
    given.m_pPictures = &pictures;
    given.m_fUnderWidth = 3;
    return m_Dialog.Ask(survey, given);
  }
  static void Leave(Fl_Window& /*window*/) {}
  // As if the user had picked the entry that begins so.
  static void Pick(Fl_Window& window, const char* choice, std::string_view text) {
    auto& widget = Find<Fl_Choice>(window, choice);
    for (int k = 0; k + 1 < widget.size(); ++k) {
      if (!std::string_view(widget.text(k)).starts_with(text)) continue;
      widget.value(k);
      widget.do_callback();
      return;
    }
    ADD_FAILURE() << "no entry " << text;
  }
  // The text in the frame: the last label of lines.
  static std::string Description(Fl_Window& window) {
    std::string text;
    for (Fl_Widget* widget : WidgetsIn(window)) {
      if (widget->label() != nullptr && dynamic_cast<Fl_Box*>(widget) != nullptr) text = widget->label();
    }
    return text;
  }
  static bool IsActive(Fl_Window& window, const char* label) { return FindWidget(window, label).active() != 0; }

  CTornGrid m_Grid{{{{{3.25, 2}, {12, 13.5}}}}, 4, 4};
  CReadPicture m_Photograph;
  CExportDialog m_Dialog{m_Views, m_MainWindow};
};

}  // namespace

TEST_F(ExportDialogTest, OffersEveryFormatOfTheTable) {
  Ask([](Fl_Window& window) {
    const auto& formats = Find<Fl_Choice>(window, "Format:");
    ASSERT_EQ(static_cast<std::size_t>(formats.size() - 1), ExportFormats().size());
    for (std::size_t k = 0; k < ExportFormats().size(); ++k) {
      const CExportFormat& format = ExportFormats()[k];
      EXPECT_EQ(formats.text(static_cast<int>(k)), std::string(format.m_pName) + "  (" + format.m_pSuffix + ')');
    }
  });
}

TEST_F(ExportDialogTest, ActivatesWhatTheFormatLooksAt) {
  constexpr std::array kRows{std::pair("Tears:", ExportSetting::kTears),
                             std::pair("Texture:", ExportSetting::kTexture),
                             std::pair("Up axis:", ExportSetting::kUp),
                             std::pair("Scale:", ExportSetting::kScale),
                             std::pair("Height scale:", ExportSetting::kHeightScale),
                             std::pair("Base thickness:", ExportSetting::kBase),
                             std::pair("Resolution:", ExportSetting::kResolution),
                             std::pair("Green:", ExportSetting::kGreen)};
  Ask(
      [&](Fl_Window& window) {
        for (const CExportFormat& format : ExportFormats()) {
          Pick(window, "Format:", format.m_pName);
          for (const auto& [label, setting] : kRows)
            EXPECT_EQ(IsActive(window, label), (format.m_uReads & setting) != 0) << format.m_pSuffix << ' ' << label;
        }
      },
      "Cancel");
}

TEST_F(ExportDialogTest, HasNoTextureWithoutAPhotograph) {
  const auto choice = Ask([](Fl_Window& window) { EXPECT_FALSE(IsActive(window, "Texture:")); }, "Export...", false);
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->m_Settings.m_pPhotograph, nullptr);
  EXPECT_EQ(choice->m_Settings.m_Texture, ExportTexture::None);
}

TEST_F(ExportDialogTest, AnswersWithWhatWasEntered) {
  const auto choice = Ask([](Fl_Window& window) {
    Pick(window, "Format:", "Wavefront");
    Pick(window, "Tears:", "wall");
    Pick(window, "Up axis:", "z");
    Type(Find<CNumberInput>(window, "Scale:"), "0.25");
    Type(Find<CNumberInput>(window, "Height scale:"), "1.5");
  });
  ASSERT_TRUE(choice.has_value());
  EXPECT_STREQ(choice->m_pFormat->m_pSuffix, ".obj");
  EXPECT_EQ(choice->m_Settings.m_Gap, TearGap::Wall);
  EXPECT_EQ(choice->m_Settings.m_Up, UpAxis::Z);
  EXPECT_EQ(choice->m_Settings.m_fScale, 0.25);
  EXPECT_EQ(choice->m_Settings.m_fHeightScale, 1.5);
  EXPECT_EQ(choice->m_Settings.m_pPhotograph, &m_Photograph);
  EXPECT_FALSE(Ask(Leave, "Cancel").has_value());
}

TEST_F(ExportDialogTest, AsksForTheWidthUnderATear) {
  const auto usual = Ask([](Fl_Window& window) {
    EXPECT_FALSE(IsActive(window, "Under width:"));
    const std::string open = Description(window);
    Pick(window, "Tears:", "under");
    EXPECT_TRUE(IsActive(window, "Under width:"));
    EXPECT_EQ(Find<CNumberInput>(window, "Under width:").Number(), 3);
    EXPECT_NE(Description(window), open);
  });
  ASSERT_TRUE(usual.has_value());
  EXPECT_EQ(usual->m_Settings.m_Gap, TearGap::Under);
  EXPECT_EQ(usual->m_Settings.m_fUnderWidth, 3);
  const auto typed = Ask([](Fl_Window& window) {
    Type(Find<CNumberInput>(window, "Under width:"), "0");
    EXPECT_EQ(Description(window), "The width under a tear must be above 0.");
    Type(Find<CNumberInput>(window, "Under width:"), "1.5");
  });
  EXPECT_EQ(typed->m_Settings.m_fUnderWidth, 1.5);
  EXPECT_EQ(Ask(Leave)->m_Settings.m_fUnderWidth, 1.5);
}

TEST_F(ExportDialogTest, AsksForTheSamplesOfAMap) {
  const auto choice = Ask([](Fl_Window& window) {
    Pick(window, "Format:", "normal map");
    EXPECT_EQ(Description(window).substr(0, 14), "17 x 17 pixels") << "the points of the lattice";
    EXPECT_FALSE(IsActive(window, "Samples:"));
    Pick(window, "Resolution:", "other");
    EXPECT_TRUE(IsActive(window, "Samples:"));
    EXPECT_EQ(Description(window).substr(0, 16), "512 x 512 pixels");
    Type(Find<CNumberInput>(window, "Samples:"), "8193");
    EXPECT_EQ(Description(window), "Samples must be whole numbers from 2 to 8192.");
    Type(Find<CNumberInput>(window, "Samples:"), "300");
    Type(Find<CNumberInput>(window, "x"), "200");
    Pick(window, "Green:", "down");
  });
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->m_Settings.m_Resolution, (CSampleGrid{300, 200}));
  EXPECT_TRUE(choice->m_Settings.m_bGreenDown);
  Ask([](Fl_Window& window) {
    EXPECT_EQ(Find<CNumberInput>(window, "x").Number(), 200);
    Pick(window, "Resolution:", "the grid");
  });
  EXPECT_EQ(Ask(Leave)->m_Settings.m_Resolution, std::nullopt);
}

TEST_F(ExportDialogTest, TellsWhyAPictureCannotBeHad) {
  const std::string reason = "None of the removed lights is active, so that there is no albedo.";
  Ask(
      [&](Fl_Window& window) {
        Pick(window, "Texture:", "albedo");
        EXPECT_EQ(Description(window), reason);
        Press(Find<Fl_Button>(window, "Export..."));
        EXPECT_EQ(m_Views.m_asNotices, std::vector<std::string>{reason});
        Pick(window, "Texture:", "none");
        Pick(window, "Format:", "the photograph without");
        EXPECT_EQ(Description(window), reason);
      },
      "Cancel");
}

TEST_F(ExportDialogTest, RemembersTheLastSettingsAndTheScaleOfEachFormat) {
  Ask([](Fl_Window& window) {
    Pick(window, "Format:", "PLY");
    Pick(window, "Texture:", "none");
    Type(Find<CNumberInput>(window, "Scale:"), "7");
  });
  const auto choice = Ask([](Fl_Window& window) {
    EXPECT_EQ(Find<CNumberInput>(window, "Scale:").Number(), 7);
    EXPECT_STREQ(Find<Fl_Choice>(window, "Texture:").text(), "none");
    Pick(window, "Format:", "binary glTF");
    EXPECT_EQ(Find<CNumberInput>(window, "Scale:").Number(), 0.01) << "metres";
    Pick(window, "Format:", "PLY");
  });
  ASSERT_TRUE(choice.has_value());
  EXPECT_STREQ(choice->m_pFormat->m_pSuffix, ".ply");
  EXPECT_EQ(choice->m_Settings.m_fScale, 7);
}

TEST_F(ExportDialogTest, TellsWhatWouldBeWritten) {
  Ask([this](Fl_Window& window) {
    CExportSurvey survey(m_Grid.m_Grid);
    CExportSettings settings;
    settings.m_pPhotograph = &m_Photograph;
    EXPECT_EQ(Description(window), DescriptionText(survey.DescribeExport(ExportFormats().front(), settings)));
    Pick(window, "Tears:", "wall");
    settings.m_Gap = TearGap::Wall;
    settings.m_fScale = 0.5;
    Type(Find<CNumberInput>(window, "Scale:"), "0.5");
    EXPECT_EQ(Description(window), DescriptionText(survey.DescribeExport(ExportFormats().front(), settings)));
  });
}

TEST_F(ExportDialogTest, RefusesNumbersThatAreNone) {
  struct CRow {
    const char* m_pLabel;
    const char* m_pText;
    const char* m_pNotice;
  };
  constexpr std::array kRows{CRow{"Scale:", "", "The scale must be a number."},
                             CRow{"Scale:", "0", "The scale must be above 0."},
                             CRow{"Height scale:", "-1", "The height scale must be above 0."},
                             CRow{"Height scale:", "1e999", "The height scale must be a number."},
                             CRow{"Base thickness:", "2.", ""},
                             CRow{"Base thickness:", "1e", "The base thickness must be a number."}};
  for (const CRow& row : kRows) {
    m_Views.m_asNotices.clear();
    Ask(
        [&](Fl_Window& window) {
          Pick(window, "Format:", "solid");
          const std::string before = Find<CNumberInput>(window, row.m_pLabel).input.value();
          Type(Find<CNumberInput>(window, row.m_pLabel), row.m_pText);
          Press(Find<Fl_Button>(window, "Export..."));
          const bool refused = *row.m_pNotice != '\0';
          EXPECT_EQ(window.shown() != 0, refused) << row.m_pText;
          if (!refused) return;
          EXPECT_EQ(m_Views.m_asNotices, std::vector<std::string>{row.m_pNotice});
          EXPECT_EQ(Description(window), row.m_pNotice);
          Type(Find<CNumberInput>(window, row.m_pLabel), before.c_str());
        },
        "Cancel");
  }
}

TEST_F(ExportDialogTest, FitsIntoItself) { ExpectInsideGroups(m_Dialog); }
