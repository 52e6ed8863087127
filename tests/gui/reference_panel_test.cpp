// The panel "Reference depth" beside the main window, with estimators that are shell scripts.

#include <cmath>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>
#include <FL/Fl_Spinner.H>
#include <FL/Fl_Value_Slider.H>

#include "codecs/JpegFile.h"
#include "codecs/PngBytes.h"
#include "drawing/COverlay.h"
#include "support/BadDepthMaps.h"
#include "support/DepthBuilders.h"
#include "support/DepthInJpeg.h"
#include "support/FileBuilders.h"
#include "support/gui/ReferencePanelTest.h"

namespace {

constexpr const char* kRampScript =
    R"(printf 'Pf\n2 2\n-1.0\n\000\000\000\000\000\000\200\077\000\000\000\100\000\000\100\100' > "$2")";

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

TEST_F(ReferencePanelTest, AnotherModelEndsTheEstimate) {
  Estimate("sleep 1000");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Cancel"); }));
  static_cast<CommandHost&>(m_Window).GridReplaced();
  EXPECT_TRUE(HasEnded());
  EXPECT_TRUE(RunToolkitUntil([this] { return Says() == "The estimator was cancelled."; }));
  EXPECT_FALSE(Grid().Reference().HasMap());
}

TEST_F(ReferencePanelTest, HeightsThatSaySoSwitchNearIsBright) {
  Open();
  LoadStep();
  auto& bright = Find<Fl_Check_Button>(Panel(), "Near is bright");
  const auto fitted = [this] { return std::string(Find<Fl_Output>(Panel(), "Fitted").value()); };
  ASSERT_TRUE(RunToolkitUntil([&] { return bright.active() != 0; }));
  EXPECT_EQ(bright.value(), 1);
  const CExtent extent = Grid().Surface().Lattice().Extent();
  const double middle = 0.5 * (extent.y0 + extent.y1);
  for (const double share : {0.1, 0.2, 0.9}) {
    const double x = extent.x0 + share * (extent.x1 - extent.x0);
    Grid().AddPtCstr({x, middle, PtCstrKind::kPosition, share < 0.5 ? 10.0 : -10.0});
  }
  Grid().PerformPendingWork();
  EXPECT_TRUE(RunToolkitUntil([&] { return bright.value() == 0; })) << fitted();
  EXPECT_EQ(bright.active(), 0) << "the heights tell";
  EXPECT_EQ(fitted(), "to 3 heights, straight, near is dark");
  for (int k = 0; k < 3; ++k) m_Window.History().Take(UserStep::Undo);
  Grid().PerformPendingWork();
  EXPECT_TRUE(RunToolkitUntil([&] { return bright.value() == 1 && bright.active() != 0; })) << fitted();
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
  EXPECT_EQ(overlay->m_Map, ColourMap::Perceptual);
  EXPECT_EQ(overlay->m_Title, "Depth map");
  EXPECT_TRUE(overlay->m_bHasBar);
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
  Grid().AddPtCstr({30, 40, PtCstrKind::kPosition, 7});
  Grid().PerformPendingWork();
  const CDocument before = DocumentOf(Grid());
  for (const CBadDepthMap& bad : BadDepthMaps()) {
    m_Dialogs.m_asNotices.clear();
    m_Dialogs.m_File = (m_Directory.Path() / bad.m_Name).string();
    WriteText(*m_Dialogs.m_File, bad.m_Bytes);
    Push("Load...");
    ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U) << bad.m_Name;
    EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The file " + *m_Dialogs.m_File + " is not a depth map that can"))
        << m_Dialogs.m_asNotices[0];
    EXPECT_TRUE(DocumentOf(Grid()) == before) << bad.m_Name;
    EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << bad.m_Name;
  }
}

TEST_F(ReferencePanelTest, ABadMapInAPhotographIsRefusedAndNothingChanges) {
  Open();
  CPngSettings grey;
  grey.m_Kind = PngKind::Grey;
  const std::string whole = TestPng(GreySquare(16), grey);
  const std::vector<std::string> maps{whole.substr(0, whole.size() / 2), WithPngSize(whole, 16, 40),
                                      TestPng(GreySquare(1), grey), WithPngSize(whole, kImmenseSide, kImmenseSide)};
  for (std::size_t k = 0; k < maps.size(); ++k) {
    const std::string photograph = (m_Directory.Path() / ("portrait" + std::to_string(k) + ".jpg")).string();
    WriteText(photograph, WithPacket(JpegOf({4, 4, std::vector<std::uint8_t>(48, 100)}), DepthPacket(maps[k])));
    m_Dialogs.m_File = photograph;
    Menu().Choose(MenuEntry::LoadImage);
    ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take the photograph's own"); })) << k;
    const CDocument before = DocumentOf(Grid());
    m_Dialogs.m_asNotices.clear();
    Push("Take the photograph's own");
    ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U) << k;
    EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The file " + photograph + " is not a depth map that can"));
    EXPECT_TRUE(DocumentOf(Grid()) == before) << k;
    LoadPicture();
    ASSERT_TRUE(RunToolkitUntil([this] { return !IsActive("Take the photograph's own"); })) << k;
  }
}

// Over a ramp of 10 to 50 along the model, by sums of least squares written out.
TEST_F(ReferencePanelTest, ReadOutsAreThoseOfTheFit) {
  Open();
  const CExtent extent = Grid().Surface().Lattice().Extent();
  const double width = extent.x1 - extent.x0;
  Grid().ReferenceEdits().Load(SharedDepthMap(50, 50, [](double u, double) { return 10 + 40 * u; }), "/maps/ramp.pfm");
  // Shares of the width and heights; the slope over the middle takes no part.
  const std::vector<std::pair<double, double>> heights{{0.1, 3}, {0.3, 9}, {0.5, 8}, {0.75, 14}, {0.9, 24}};
  double n = 0.0;
  double v = 0.0;
  double vv = 0.0;
  double z = 0.0;
  double vz = 0.0;
  for (const auto& [share, height] : heights) {
    const double value = 10 + 40 * share;
    Grid().AddPtCstr({extent.x0 + share * width, 0.5 * (extent.y0 + extent.y1), PtCstrKind::kPosition, height});
    n += 1;
    v += value;
    vv += value * value;
    z += height;
    vz += value * height;
  }
  Grid().AddPtCstr({extent.x0 + 0.4 * width, extent.y0 + 1, PtCstrKind::kNormal, 0, 1, 1});
  Grid().PerformPendingWork();
  const double scale = (n * vz - v * z) / (n * vv - v * v);
  const double offset = (z - scale * v) / n;
  double squares = 0.0;
  double worst = 0.0;
  for (const auto& [share, height] : heights) {
    const double missed = height - offset - scale * (10 + 40 * share);
    squares += missed * missed;
    if (std::abs(missed) > std::abs(worst)) worst = missed;
  }
  const auto says = [this](const char* label) { return std::string(Find<Fl_Output>(Panel(), label).value()); };
  ASSERT_TRUE(RunToolkitUntil([&] { return says("Fitted") == "to 5 heights, straight"; })) << says("Fitted");
  EXPECT_NEAR(std::stod(says("Scale")), scale, 1e-5);
  EXPECT_NEAR(std::stod(says("Offset")), offset, 1e-4);
  EXPECT_NEAR(std::stod(says("Misfit (RMS)")), std::sqrt(squares / n), 1e-4);
  EXPECT_NEAR(std::stod(says("Worst misfit")), worst, 1e-4);
  Push("Select worst");
  int selected = 0;
  for (const CPtCstr& point : Grid().Constraints().Points()) {
    if (!point.HasState(PtCstrState::kSelected)) continue;
    ++selected;
    EXPECT_EQ(point.m_fZ, 24);
  }
  EXPECT_EQ(selected, 1);
  Push("Remove");
  EXPECT_TRUE(RunToolkitUntil([&] { return says("Fitted").empty() && says("Scale").empty(); }));
}

// Heights that are squares of the map's values. Scale and offset are those of a straight response.
TEST_F(ReferencePanelTest, ABentResponseIsToldAndIsTheUsersToRefuse) {
  Open();
  const CExtent extent = Grid().Surface().Lattice().Extent();
  Grid().ReferenceEdits().Load(SharedDepthMap(64, 64, [](double u, double) { return u; }), "/maps/ramp.pfm");
  for (int k = 0; k < 16; ++k) {
    const double u = (k + 0.5) / 16;
    const double x = extent.x0 + u * (extent.x1 - extent.x0);
    Grid().AddPtCstr({x, 0.5 * (extent.y0 + extent.y1), PtCstrKind::kPosition, 3 + 4 * u * u});
  }
  Grid().PerformPendingWork();
  const auto says = [this](const char* label) { return std::string(Find<Fl_Output>(Panel(), label).value()); };
  ASSERT_TRUE(RunToolkitUntil([&] { return says("Fitted") == "to 16 heights, bent"; })) << says("Fitted");
  EXPECT_LT(std::stod(says("Misfit (RMS)")), 1e-3);
  EXPECT_NEAR(std::stod(says("Scale")), 4, 1e-4);
  const double offset = std::stod(says("Offset"));
  auto& response = Find<Fl_Choice>(Panel(), "Response");
  const auto choose = [&](const char* text) {
    response.value(response.find_item(text));
    response.do_callback();
    Grid().PerformPendingWork();
  };
  choose("straight");
  EXPECT_TRUE(RunToolkitUntil([&] { return says("Fitted") == "to 16 heights, straight"; })) << says("Fitted");
  EXPECT_GT(std::stod(says("Misfit (RMS)")), 0.1);
  EXPECT_NEAR(std::stod(says("Scale")), 4, 1e-4);
  EXPECT_EQ(std::stod(says("Offset")), offset);
  choose("bent");
  EXPECT_TRUE(RunToolkitUntil([&] { return says("Fitted") == "to 16 heights, bent"; })) << says("Fitted");
}

// With a map of another strength and response before it, and nothing in between.
TEST_F(ReferencePanelTest, LoadingAMapIsUndoneAndDoneAgain) {
  Open();
  const auto load = [this](const char* name, double high) {
    m_Dialogs.m_File = (m_Directory.Path() / name).string();
    WriteText(*m_Dialogs.m_File, PfmOf(DepthMapOf(16, 6, [&](double u, double) { return high * u; })));
    Push("Load...");
    Grid().PerformPendingWork();
  };
  const auto undo = [this](const char* name) {
    Menu().Choose(MenuEntry::Undo);
    Grid().PerformPendingWork();
    EXPECT_EQ(HelpLine().value(), std::string("Undone: ") + name);
  };
  const auto redo = [this](const char* name) {
    Menu().Choose(MenuEntry::Redo);
    Grid().PerformPendingWork();
    EXPECT_EQ(HelpLine().value(), std::string("Done again: ") + name);
  };
  const auto& strength = Find<Fl_Value_Slider>(Panel(), "Strength");
  const auto& response = Find<Fl_Choice>(Panel(), "Response");
  const auto shows = [&](const char* file, double value, const char* text) {
    const auto& name = Find<Fl_Output>(Panel(), "Depth map");
    const bool shown = RunToolkitUntil([&] {
      return name.value() == std::string(file) && strength.value() == value && response.text() == std::string(text);
    });
    EXPECT_EQ(Grid().Reference().Value().m_Settings.m_fStrength, value);
    EXPECT_EQ(Grid().Solver().System().Load().empty(), !Grid().Reference().HasMap());
    return shown;
  };
  load("first.pfm", 1);
  Grid().ReferenceEdits().SetStrength(0.35);
  Grid().ReferenceEdits().SetResponse(ReferenceResponse::Straight);
  Fl::check();
  const CReference first = Grid().Reference().Value();
  EXPECT_TRUE(shows("first.pfm", 0.35, "straight"));
  load("second.pfm", 2);
  const CReference second = Grid().Reference().Value();
  EXPECT_TRUE(shows("second.pfm", 0.35, "straight"));
  undo("load reference depth");
  EXPECT_EQ(Grid().Reference().Value(), first);
  EXPECT_TRUE(shows("first.pfm", 0.35, "straight"));
  redo("load reference depth");
  EXPECT_EQ(Grid().Reference().Value(), second);
  undo("load reference depth");
  Push("Remove");
  Grid().PerformPendingWork();
  load("second.pfm", 2);
  EXPECT_TRUE(shows("second.pfm", 0.8, "automatic"));
  undo("load reference depth");
  EXPECT_EQ(Grid().Reference().Value(), CReference());
  EXPECT_TRUE(shows("", 0.8, "automatic"));
  undo("remove reference depth");
  EXPECT_EQ(Grid().Reference().Value(), first);
  EXPECT_TRUE(shows("first.pfm", 0.35, "straight"));
  redo("remove reference depth");
  redo("load reference depth");
  EXPECT_TRUE(shows("second.pfm", 0.8, "automatic"));
  EXPECT_EQ(Grid().Reference().Reading().High(), second.m_pMap->Values().back());
}
