// The panel "Reference depth" beside the main window, with estimators that are shell scripts.

#include <cmath>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>
#include <FL/Fl_Spinner.H>
#include <FL/Fl_Value_Slider.H>

#include "app/CReferenceTool.h"
#include "drawing/COverlay.h"
#include "formats/JpegFile.h"
#include "formats/PngBytes.h"
#include "support/DepthBuilders.h"
#include "support/DepthInJpeg.h"
#include "support/FileBuilders.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"

namespace {

constexpr const char* kRampScript =
    R"(printf 'Pf\n2 2\n-1.0\n\000\000\000\000\000\000\200\077\000\000\000\100\000\000\100\100' > "$2")";

class ReferencePanelTest : public WindowTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    m_Window.Settings().KeepIn(SettingsFile());
    m_Window.SetTool(CImageViewUI::Tool::ReferenceDepth, std::make_unique<CReferenceTool>(m_Window, Grid()));
  }
  void TearDown() override {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window != &m_Window) return window->hide();
    }
  }
  std::string SettingsFile() const { return (m_Directory.Path() / "config/settings.json").string(); }
  Fl_Window& Panel() {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && std::string(window->label()) == "Reference depth") return *window;
    }
    throw std::runtime_error("no panel");
  }
  void Open() { Menu().Choose(MenuEntry::ReferenceDepth); }
  bool IsActive(const char* button) { return Find<Fl_Button>(Panel(), button).active() != 0; }
  void Push(const char* button) { Press(Find<Fl_Button>(Panel(), button)); }
  std::string Says() { return Find<Fl_Output>(Panel(), "It says").value(); }

  /// Starts a script that gets the two files.
  void Estimate(const std::string& script) {
    WriteText(m_Directory.Path() / "an estimator.sh", script + "\n");
    Open();
    LoadPicture();
    Find<Fl_Input>(Panel(), "Estimator").value(CommandLine().c_str());
    ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Estimate..."); }));
    Push("Estimate...");
  }
  std::string CommandLine() const {
    return "sh '" + (m_Directory.Path() / "an estimator.sh").string() + "' {image} {depth}";
  }
  bool HasEnded() {
    return RunToolkitUntil([this] { return IsActive("Estimate...") && !IsActive("Cancel"); });
  }

  /// A step along the middle, with a rounded edge.
  void LoadStep() {
    const auto step = [](double x, double y) { return x + 0.03 * std::sin(6 * y) > 0.5 ? 1.0 : 0.0; };
    Grid().ReferenceEdits().Load(SharedDepthMap(64, 64, step), "/maps/step.pfm");
    Grid().PerformPendingWork();
  }
  std::size_t Curves() { return Grid().Constraints().Curves().size(); }
};

}  // namespace

TEST_F(ReferencePanelTest, WithoutAPhotographOrAMapThereIsNothingToStart) {
  Open();
  for (const char* button : {"Estimate...", "Cancel", "Suggest Tears", "Take", "Drop", "Remove", "Select worst"})
    EXPECT_FALSE(IsActive(button)) << button;
}

TEST_F(ReferencePanelTest, AnEstimateBecomesTheMap) {
  Estimate(std::string(kRampScript) + "; echo done");
  ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Reference().HasMap(); }));
  EXPECT_EQ(Grid().Reference().Reading().Width(), 2);
  EXPECT_TRUE(RunToolkitUntil([this] { return Says() == "done"; }));
  EXPECT_TRUE(HasEnded());
  EXPECT_STREQ(Find<Fl_Output>(Panel(), "Depth map").value(), "picture.bmp (estimate)");
  EXPECT_TRUE(m_Window.History().CanUndo());
}

TEST_F(ReferencePanelTest, TheCommandLineIsKeptForTheNextRun) {
  Estimate("true");
  EXPECT_TRUE(HasEnded());
  CSettings next([](const std::string& /*text*/) {});
  next.KeepIn(SettingsFile());
  EXPECT_EQ(next.Text("estimator"), CommandLine());
  Panel().hide();
  m_Window.Settings().KeepIn(SettingsFile());
  Open();
  EXPECT_EQ(Find<Fl_Input>(Panel(), "Estimator").value(), CommandLine());
}

TEST_F(ReferencePanelTest, OneThatFailsSaysSoAndAllStays) {
  LoadStep();
  const CReference before = Grid().Reference().Value();
  for (const char* script : {"echo no weights; exit 3", "true", "echo rubbish > \"$2\""}) {
    Estimate(script);
    EXPECT_TRUE(HasEnded()) << script;
    EXPECT_NE(Says(), "") << script;
    EXPECT_EQ(HelpLine().value(), Says()) << script;
    EXPECT_EQ(Grid().Reference().Value(), before) << script;
  }
}

TEST_F(ReferencePanelTest, OneThatHangsIsCancelled) {
  Estimate("echo waiting; sleep 1000");
  EXPECT_TRUE(RunToolkitUntil([this] { return Says() == "waiting"; }));
  EXPECT_FALSE(IsActive("Estimate..."));
  Push("Cancel");
  EXPECT_TRUE(HasEnded());
  EXPECT_TRUE(RunToolkitUntil([this] { return Says() == "The estimator was cancelled."; }));
  EXPECT_FALSE(Grid().Reference().HasMap());
}

TEST_F(ReferencePanelTest, AnotherPhotographEndsTheEstimate) {
  Estimate("sleep 1000");
  LoadPicture();
  EXPECT_TRUE(HasEnded());
}

TEST_F(ReferencePanelTest, SuggestedTearsAreTakenInOneStep) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  EXPECT_DOUBLE_EQ(Find<Fl_Value_Slider>(Panel(), "Gaps from (%)").value(), 7);
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  EXPECT_EQ(Curves(), 0U) << "nothing is made yet";
  Push("Take");
  EXPECT_GE(Curves(), 1U);
  EXPECT_TRUE(RunToolkitUntil([this] { return !IsActive("Take") && !IsActive("Drop"); }));
  m_Window.History().Take(UserStep::Undo);
  Grid().PerformPendingWork();
  EXPECT_EQ(Curves(), 0U);
  EXPECT_TRUE(Grid().Reference().HasMap());
}

TEST_F(ReferencePanelTest, ClosingThePanelTakesThem) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  Panel().hide();
  EXPECT_GE(Curves(), 1U);
}

TEST_F(ReferencePanelTest, DroppedOnesMakeNoCurve) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Drop"); }));
  Push("Drop");
  Panel().hide();
  EXPECT_EQ(Curves(), 0U);
}

TEST_F(ReferencePanelTest, AnotherMapDropsThoseOfTheFormer) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  Push("Remove");
  EXPECT_TRUE(RunToolkitUntil([this] { return !IsActive("Take"); }));
  Panel().hide();
  EXPECT_EQ(Curves(), 0U);
}

TEST_F(ReferencePanelTest, TheMapIsShownOverThePhotograph) {
  Open();
  LoadStep();
  const auto& check = Find<Fl_Check_Button>(Panel(), "Show over the photograph");
  ASSERT_TRUE(RunToolkitUntil([&] { return check.active() != 0; }));
  EXPECT_EQ(m_Window.ImageView().Overlay(), nullptr);
  Push("Show over the photograph");
  const COverlay* overlay = m_Window.ImageView().Overlay();
  ASSERT_NE(overlay, nullptr);
  EXPECT_EQ(overlay->m_Raster.m_iWidth, 64);
  EXPECT_EQ(overlay->m_fLow, 0);
  EXPECT_EQ(overlay->m_fHigh, 1);
  EXPECT_EQ(overlay->m_fOpacity, 0.5);
  Push("Show over the photograph");
  EXPECT_EQ(m_Window.ImageView().Overlay(), nullptr);
}

TEST_F(ReferencePanelTest, TheShownMapIsThatOfTheModel) {
  Open();
  LoadStep();
  const auto& check = Find<Fl_Check_Button>(Panel(), "Show over the photograph");
  ASSERT_TRUE(RunToolkitUntil([&] { return check.active() != 0; }));
  Push("Show over the photograph");
  Grid().ReferenceEdits().Load(SharedDepthMap(8, 4, [](double x, double /*y*/) { return 3 + x; }), "/maps/ramp.pfm");
  EXPECT_TRUE(RunToolkitUntil([this] { return m_Window.ImageView().Overlay()->m_Raster.m_iWidth == 8; }));
  Push("Remove");
  EXPECT_TRUE(RunToolkitUntil([this] { return m_Window.ImageView().Overlay() == nullptr; }));
  EXPECT_EQ(check.value(), 0);
}

TEST_F(ReferencePanelTest, AnotherOverlayOrClosingThePanelEndsIt) {
  Open();
  LoadStep();
  auto& check = Find<Fl_Check_Button>(Panel(), "Show over the photograph");
  ASSERT_TRUE(RunToolkitUntil([&] { return check.active() != 0; }));
  Push("Show over the photograph");
  Menu().Choose(MenuEntry::Misfit);
  EXPECT_TRUE(RunToolkitUntil([&] { return check.value() == 0; }));
  Push("Show over the photograph");
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::Misfit));
  Panel().hide();
  EXPECT_EQ(m_Window.ImageView().Overlay(), nullptr);
}

TEST_F(ReferencePanelTest, AMapThatThePhotographCarriesIsOfferedAndTaken) {
  Open();
  EXPECT_FALSE(IsActive("Take the photograph's own"));
  const CPicture map{2, 2, {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}};
  const std::string photograph = (m_Directory.Path() / "portrait.jpg").string();
  WriteText(photograph, WithPacket(JpegOf({4, 4, std::vector<std::uint8_t>(48, 100)}), DepthPacket(PngOf(map))));
  m_Dialogs.m_File = photograph;
  Menu().Choose(MenuEntry::LoadImage);
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take the photograph's own"); }));
  const std::string offer = "This photograph carries a depth map: Edit, Reference Depth, takes it";
  // Whatever the pointer lies over now.
  HelpLine().RestoreHelp();
  EXPECT_EQ(HelpLine().value(), offer);
  Push("Take the photograph's own");
  ASSERT_TRUE(Grid().Reference().HasMap());
  EXPECT_EQ(Grid().Reference().Reading().High(), 4);
  EXPECT_EQ(Grid().Reference().Value().m_File, photograph);
  HelpLine().RestoreHelp();
  EXPECT_NE(HelpLine().value(), offer) << "it has been taken";
  LoadPicture();
  EXPECT_TRUE(RunToolkitUntil([this] { return !IsActive("Take the photograph's own"); }));
}

TEST_F(ReferencePanelTest, BadFilesAreRefusedWithANoticeAndNothingChanges) {
  Open();
  LoadStep();
  const CReference before = Grid().Reference().Value();
  const std::string notANumber("\0\0\xC0\x7F", 4);
  const std::vector<std::pair<std::string, std::string>> bad{
      {"cut.pfm", "Pf\n4 4\n-1\n" + std::string(40, '\0')},
      {"another size.pfm", "Pf\n40 40\n-1\n" + std::string(64, '\0')},
      {"cut.png", PngOf({4, 4, std::vector<std::uint8_t>(48, 100)}).substr(0, 60)},
      {"single.pfm", "Pf\n1 1\n-1\n" + std::string(4, '\0')},
      {"single.png", PngOf({1, 1, {1, 1, 1}})},
      {"no numbers.pfm", "Pf\n2 2\n-1\n" + notANumber + notANumber + notANumber + notANumber},
      {"immense.pfm", "Pf\n20000 20000\n-1\n" + std::string(64, '\0')},
      {"empty.pfm", ""},
  };
  for (const auto& [name, bytes] : bad) {
    m_Dialogs.m_asNotices.clear();
    m_Dialogs.m_File = (m_Directory.Path() / name).string();
    WriteText(*m_Dialogs.m_File, bytes);
    Push("Load...");
    ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U) << name;
    EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The file " + *m_Dialogs.m_File + " is not a depth map that can"))
        << m_Dialogs.m_asNotices[0];
    EXPECT_EQ(Grid().Reference().Value(), before) << name;
  }
}

TEST_F(ReferencePanelTest, ANumberOfTearsIsTheMost) {
  Open();
  const auto steps = [](double x, double /*y*/) { return std::floor(4 * x); };
  Grid().ReferenceEdits().Load(SharedDepthMap(64, 64, steps), "/maps/steps.pfm");
  Grid().PerformPendingWork();
  auto& count = Find<Fl_Spinner>(Panel(), "Tears at most");
  EXPECT_EQ(count.value(), 15);
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  count.value(2);
  count.do_callback();
  Push("Take");
  EXPECT_EQ(Curves(), 2U);
}
