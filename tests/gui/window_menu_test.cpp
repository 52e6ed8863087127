// The menu of the main window: one table, its shortcuts, and the flags that it toggles.

#include <algorithm>
#include <array>
#include <optional>

#include "drawing/DrawingSettings.h"
#include "support/gui/WindowTest.h"

namespace {

enum class Kind { Command, Toggle, Radio };
using enum Kind;
constexpr int kAlt = FL_ALT;
constexpr int kShift = FL_SHIFT;
constexpr int kCtrl = FL_CTRL;

struct CExpectedEntry {
  const char* m_pPath;
  MenuEntry m_Entry;
  int m_iShortcut;
  Kind m_Kind;
  bool m_bChecked = false;
};

// clang-format off
const auto kEntries = std::to_array<CExpectedEntry>({
  {"&File/&New Grid", MenuEntry::NewGrid, kAlt | 'n', Command},
  {"&File/Load &Grid", MenuEntry::LoadGrid, kAlt | 'o', Command},
  {"&File/Load &Image", MenuEntry::LoadImage, kAlt | kShift | 'o', Command},
  {"&File/&Save Grid", kSaveGrid, kAlt | 's', Command},
  {"&File/Save &VRML", kSaveVrml, 0, Command},
  {"&File/Export &Height field", kExportHeightField, kAlt | 'e', Command},
  {"&File/Save &Again", MenuEntry::SaveAgain, kCtrl | 's', Command},
  {"&File/Save &Project", MenuEntry::SaveProject, 0, Command},
  {"&File/&Open Project...", MenuEntry::OpenProject, 0, Command},
  {"&File/Open &Recent/Clear list", MenuEntry::ClearRecent, 0, Command},
  {"&File/Recover Unsaved &Work", MenuEntry::RecoverWork, 0, Command},
  {"&File/Grid in the Pic&ture's Proportions", MenuEntry::FitPicture, 0, Command},
  {"&File/Export &Model...", MenuEntry::ExportModel, 0, Command},
  {"&File/Export &Film...", MenuEntry::ExportFilm, 0, Command},
  {"&File/&Quit", MenuEntry::Quit, kCtrl | 'q', Command},
  {"&2D View/Show &Grid", MenuEntry::ImageGrid, kCtrl | 'g', Toggle, true},
  {"&2D View/Show &Image", MenuEntry::ImagePicture, kCtrl | 'i', Toggle},
  {"&2D View/Show &Point Constraints", MenuEntry::ImagePoints, kCtrl | 'p', Toggle, true},
  {"&2D View/Show &Curve Constraints", MenuEntry::ImageCurves, kCtrl | 'c', Toggle, true},
  {"&2D View/Show &Freeze-map", MenuEntry::FreezeMap, 0, Toggle},
  {"&2D View/Show Texels in disc.", MenuEntry::DiscontinuityTexels, 0, Toggle},
  {"&3D View/Show &Grid", MenuEntry::ModelGrid, kCtrl | kAlt | 'g', Toggle, true},
  {"&3D View/Show &Textured Model", MenuEntry::ModelTexture, kCtrl | kAlt | 'i', Toggle},
  {"&3D View/Show &Point Constraints", MenuEntry::ModelPoints, kCtrl | kAlt | 'p', Toggle},
  {"&3D View/Show &Curve Constraints", MenuEntry::ModelCurves, kCtrl | kAlt | 'c', Toggle},
  {"&3D View/Show Cell &Normals", MenuEntry::CellNormals, kCtrl | kAlt | 'n', Toggle},
  {"&3D View/Show Point Normals", MenuEntry::PointNormals, kCtrl | kAlt | kShift | 'n', Toggle},
  {"&3D View/Show Texels Normals", MenuEntry::TexelNormals, kAlt | kShift | 'n', Toggle},
  {"&Shoot a frame/&2D view", MenuEntry::ShootImage, 0, Command},
  {"&Shoot a frame/&3D view", MenuEntry::ShootModel, 0, Command},
  {"A&dvanced/Show debugging &interface", MenuEntry::DebugInterface, 0, Toggle, true},
  {"A&dvanced/Show &status bar", MenuEntry::StatusBar, 0, Toggle, true},
  {"A&dvanced/Specific &colors for subdivision", MenuEntry::SubdivisionColours, 0, Toggle},
  {"A&dvanced/Show the position &discontinuity gap", MenuEntry::DiscontinuityGap, 0, Toggle},
  {"A&dvanced/Show the &edges inside a position discontinuity", MenuEntry::DiscontinuityEdges, 0, Toggle},
  {"A&dvanced/Adjust advanced drawing &parameters", MenuEntry::DrawingParameters, 0, Command},
  {"A&dvanced/&Way of convergence/New &Wavelet Transformation - default mode", MenuEntry::NewWavelets, 0, Radio, true},
  {"A&dvanced/&Way of convergence/Simple Wavelet &Transformation", MenuEntry::SimpleWavelets, 0, Radio},
  {"A&dvanced/&Way of convergence/&No Wavelet Transformation", MenuEntry::NoWavelets, 0, Radio},
  {"Edi&t/&Undo", MenuEntry::Undo, kCtrl | 'z', Command},
  {"Edi&t/&Redo", MenuEntry::Redo, kCtrl | kShift | 'z', Command},
  {"Edi&t/Reference &Depth...", MenuEntry::ReferenceDepth, 0, Command},
  {"Edi&t/Constraint &Values...", MenuEntry::ConstraintValues, 0, Command},
  {"Edi&t/Select &Several", MenuEntry::SelectSeveral, 0, Toggle},
  {"Edi&t/&Heights Along Curve...", MenuEntry::HeightsAlongCurve, 0, Command},
  {"Edi&t/&New Heights at the Last Value", MenuEntry::NewHeightsAtLast, 0, Toggle},
  {"Edi&t/Re&member Window and Switches", MenuEntry::Remember, 0, Toggle},
  {"&Inspect/Close the &gaps of tears", MenuEntry::ClosedTears, 0, Toggle},
  {"&Inspect/Continue &behind tears", MenuEntry::BehindTears, 0, Toggle},
  {"&Inspect/Show &coordinates", MenuEntry::Coordinates, 0, Toggle},
  {"&Inspect/Constraint &Report", MenuEntry::ConstraintReport, 0, Command},
  {"&Inspect/Show &floating regions", MenuEntry::FloatingRegions, 0, Toggle},
  {"&Inspect/Se&ttle floating regions", MenuEntry::SettleFloating, 0, Toggle},
  {"&Inspect/Show &Influence", MenuEntry::InfluenceMap, 0, Toggle},
  {"&Inspect/Show &misfit", MenuEntry::Misfit, 0, Toggle},
  {"&Inspect/Show b&ending", MenuEntry::Bending, 0, Toggle},
  {"&Inspect/Save &Overlay as PNG...", MenuEntry::SaveOverlay, 0, Command},
  {"&Inspect/&Keep proportions", MenuEntry::KeepProportions, 0, Toggle},
  {"&Help/&Keys and Mouse", MenuEntry::KeysAndMouse, FL_F + 1, Command},
  {"&Help/&Tutorial", MenuEntry::Tutorial, 0, Command},
  {"&Help/&About", MenuEntry::About, 0, Command},
});

struct CFlag {
  MenuEntry m_Entry;
  bool m_bModelView;
  std::uint32_t m_uFlag;
  bool m_bRedrawsBoth;
};
constexpr auto kFlags = std::to_array<CFlag>({
  {MenuEntry::ImageGrid, false, 2, false},
  {MenuEntry::ImagePicture, false, 64, false},
  {MenuEntry::ImagePoints, false, 4, false},
  {MenuEntry::ImageCurves, false, 8, false},
  {MenuEntry::FreezeMap, false, 32768, true},
  {MenuEntry::DiscontinuityTexels, false, 0x80000, true},
  {MenuEntry::ModelGrid, true, 2, false},
  {MenuEntry::ModelTexture, true, 64, false},
  {MenuEntry::ModelPoints, true, 4, false},
  {MenuEntry::ModelCurves, true, 8, false},
  {MenuEntry::CellNormals, true, 0x10000, true},
  {MenuEntry::PointNormals, true, 0x20000, true},
  {MenuEntry::TexelNormals, true, 0x40000, true},
  {MenuEntry::ClosedTears, true, 128, false},
  {MenuEntry::BehindTears, true, 256, false},
  {MenuEntry::DiscontinuityGap, false, 128, false},
  {MenuEntry::DiscontinuityEdges, false, 256, false},
});
// clang-format on

/// An entry as it lies in the menu, with the titles that lead to it.
struct CFound {
  std::string m_Path;
  const Fl_Menu_Item* m_pItem;
};

class WindowMenuTest : public WindowTest {
 protected:
  WindowMenuTest() { m_Window.SetServices(Services()); }

  // The entries in order.
  std::vector<CFound> Entries() {
    std::vector<CFound> found;
    std::vector<std::string> titles;
    const Fl_Menu_Item* items = Menu().menu();
    for (int k = 0; k < Menu().size(); ++k) {
      if (items[k].text == nullptr) {
        if (!titles.empty()) titles.pop_back();
      } else if (items[k].submenu() != 0) {
        titles.emplace_back(items[k].text);
      } else if (items[k].visible() != 0) {
        std::string path;
        for (const std::string& title : titles) path += title + "/";
        found.push_back({path + items[k].text, &items[k]});
      }
    }
    return found;
  }
  void TypeShortcut(int shortcut) {
    const int key = shortcut & FL_KEY_MASK;
    const int modifiers = shortcut & ~FL_KEY_MASK;
    const char upper = static_cast<char>((modifiers & kShift) != 0 ? key - 'a' + 'A' : key);
    Type(key, modifiers, std::string(1, (modifiers & kCtrl) != 0 ? static_cast<char>(key - 'a' + 1) : upper).c_str());
  }
  std::uint32_t Flags(bool modelView) {
    return modelView ? m_Window.GridView().DisplayFlags() : m_Window.ImageView().DisplayFlags();
  }
};

}  // namespace

TEST_F(WindowMenuTest, HasTheEntriesOfTheTable) {
  const std::vector<CFound> entries = Entries();
  ASSERT_EQ(entries.size(), std::size(kEntries));
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const CExpectedEntry& row = kEntries[k];
    const Fl_Menu_Item& item = *entries[k].m_pItem;
    EXPECT_EQ(entries[k].m_Path, row.m_pPath);
    EXPECT_EQ(item.shortcut_, row.m_iShortcut) << row.m_pPath;
    EXPECT_EQ(item.checkbox() != 0, row.m_Kind == Toggle) << row.m_pPath;
    EXPECT_EQ(item.radio() != 0, row.m_Kind == Radio) << row.m_pPath;
    EXPECT_EQ(Menu().IsChecked(row.m_Entry), row.m_bChecked) << row.m_pPath;
    EXPECT_EQ(item.value() != 0, row.m_bChecked) << row.m_pPath;
  }
}

TEST_F(WindowMenuTest, OnlyWhatHasNothingToWorkWithStartsInactive) {
  constexpr std::array kInactive{MenuEntry::ImagePicture,     MenuEntry::ModelTexture,
                                 MenuEntry::RecoverWork,      MenuEntry::FitPicture,
                                 MenuEntry::ReferenceDepth,   MenuEntry::ConstraintValues,
                                 MenuEntry::ConstraintReport, MenuEntry::KeysAndMouse,
                                 MenuEntry::Tutorial,         MenuEntry::About,
                                 MenuEntry::SaveOverlay,      MenuEntry::HeightsAlongCurve};
  for (const CExpectedEntry& row : kEntries) {
    const bool inactive = std::ranges::find(kInactive, row.m_Entry) != kInactive.end();
    EXPECT_EQ(Menu().IsActive(row.m_Entry), !inactive) << row.m_pPath;
  }
}

TEST_F(WindowMenuTest, WhatNobodyBringsIsInactive) {
  m_Window.SetServices({});
  for (const MenuEntry entry : {MenuEntry::NewGrid, MenuEntry::LoadGrid, kSaveGrid, kSaveVrml, kExportHeightField,
                                MenuEntry::SaveAgain, MenuEntry::SaveProject, MenuEntry::OpenProject,
                                MenuEntry::ExportModel, MenuEntry::ExportFilm, MenuEntry::DrawingParameters}) {
    EXPECT_FALSE(Menu().IsActive(entry));
  }
  EXPECT_TRUE(Menu().IsActive(MenuEntry::LoadImage));
}

TEST_F(WindowMenuTest, ShortcutsReachTheirEntries) {
  for (const CFlag& row : kFlags) Menu().Enable(row.m_Entry, true);
  for (const CExpectedEntry& row : kEntries) {
    if (row.m_iShortcut == 0 || row.m_Kind != Toggle) continue;
    const bool before = Menu().IsChecked(row.m_Entry);
    TypeShortcut(row.m_iShortcut);
    for (const CExpectedEntry& other : kEntries) {
      if (other.m_Entry == row.m_Entry) {
        EXPECT_NE(Menu().IsChecked(row.m_Entry), before) << row.m_pPath;
      }
      if (other.m_Entry != row.m_Entry && other.m_Kind == Toggle) {
        EXPECT_EQ(Menu().IsChecked(other.m_Entry), other.m_bChecked) << row.m_pPath << " and " << other.m_pPath;
      }
    }
    TypeShortcut(row.m_iShortcut);
  }
  EXPECT_TRUE(m_asDone.empty());
}

TEST_F(WindowMenuTest, ShortcutsReachTheCommands) {
  m_Dialogs.m_File = "missing";
  for (const int shortcut : {kAlt | 'n', kAlt | 'o', kAlt | 's', kAlt | 'e'}) TypeShortcut(shortcut);
  EXPECT_EQ(m_asDone, (std::vector<std::string>{"ask", "load", "save", "height field"}));
  TypeShortcut(kAlt | kShift | 'o');
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kLoadImage) << "waits for the solver, which the first one resumed";
}

TEST_F(WindowMenuTest, ExportsReachTheCommands) {
  for (const MenuEntry entry : {MenuEntry::ExportModel, MenuEntry::ExportFilm}) Menu().Choose(entry);
  EXPECT_EQ(m_asDone, (std::vector<std::string>{"export model", "export film"}));
}

TEST_F(WindowMenuTest, ShortcutOfAnInactiveEntryDoesNothing) {
  m_Window.SetServices({});
  for (const CExpectedEntry& row : kEntries) Menu().Enable(row.m_Entry, row.m_Entry == MenuEntry::NewGrid);
  bool asked = false;
  CWindowServices services;
  services.m_Model.m_AskNewGrid = [&asked](const CGrid&) {
    asked = true;
    return std::optional<CGridParameters>();
  };
  m_Window.SetServices(services);
  TypeShortcut(kAlt | kShift | 'n');
  EXPECT_FALSE(asked);
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::TexelNormals));
  TypeShortcut(kAlt | 'n');
  EXPECT_TRUE(asked);
}

TEST_F(WindowMenuTest, ShortcutNeedsExactlyItsModifiers) {
  for (const int shortcut : {kShift | 'g', 'g' | 0, kCtrl | kShift | 'g', kAlt | kCtrl | kShift | 'o'}) {
    TypeShortcut(shortcut);
  }
  EXPECT_EQ(Flags(false), 14U);
  EXPECT_EQ(Flags(true), 2U + 2048U);
  EXPECT_TRUE(m_Dialogs.m_aChoosers.empty());
}

TEST_F(WindowMenuTest, TogglesFlipTheirFlag) {
  for (const CFlag& row : kFlags) {
    const std::uint32_t before = Flags(row.m_bModelView);
    const std::uint32_t other = Flags(!row.m_bModelView);
    Menu().Choose(row.m_Entry);
    EXPECT_EQ(Flags(row.m_bModelView), before ^ row.m_uFlag) << row.m_uFlag;
    EXPECT_EQ(Menu().IsChecked(row.m_Entry), (before & row.m_uFlag) == 0) << row.m_uFlag;
    EXPECT_EQ(Flags(!row.m_bModelView), other);
    Menu().Choose(row.m_Entry);
    EXPECT_EQ(Flags(row.m_bModelView), before);
  }
}

TEST_F(WindowMenuTest, ProportionsAreKeptInBothViewsOrInNone) {
  ShowWindow();
  const std::uint32_t image = Flags(false);
  const std::uint32_t model = Flags(true);
  DrawBoth();
  Menu().Choose(MenuEntry::KeepProportions);
  EXPECT_EQ(Flags(false), image | ImageFlag::kProportions);
  EXPECT_EQ(Flags(true), model | ModelFlag::kProportions);
  EXPECT_NE(m_Window.ImageView().damage(), 0);
  EXPECT_NE(m_Window.GridView().damage(), 0);
  Menu().Choose(MenuEntry::KeepProportions);
  EXPECT_EQ(Flags(false), image);
  EXPECT_EQ(Flags(true), model);
}

TEST_F(WindowMenuTest, CheckMarkFollowsTheGridThatNormalConstraintsSwitchOn) {
  ShowWindow();
  m_Window.ImageView().SetMode(EditingMode::Normal);
  Menu().Choose(MenuEntry::ImageGrid);
  ASSERT_FALSE(Menu().IsChecked(MenuEntry::ImageGrid));
  SendMouse(FL_MOVE, Control::ImageView);
  EXPECT_EQ(m_Window.ImageView().DisplayFlags() & ImageFlag::kGrid, ImageFlag::kGrid);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::ImageGrid));
}

TEST_F(WindowMenuTest, TogglesRedrawTheirViewOrBoth) {
  ShowWindow();
  for (const CFlag& row : kFlags) {
    if (row.m_Entry == MenuEntry::FreezeMap) continue;  // shows a button, which has everything around it drawn
    DrawBoth();
    Menu().Choose(row.m_Entry);
    EXPECT_EQ(m_Window.ImageView().damage() != 0, !row.m_bModelView || row.m_bRedrawsBoth) << row.m_uFlag;
    EXPECT_EQ(m_Window.GridView().damage() != 0, row.m_bModelView || row.m_bRedrawsBoth) << row.m_uFlag;
  }
}

TEST_F(WindowMenuTest, WaveletEntriesSelectTheMode) {
  for (const auto& [entry, bit] :
       {std::pair{MenuEntry::SimpleWavelets, 1024U}, {MenuEntry::NoWavelets, 512U}, {MenuEntry::NewWavelets, 2048U}}) {
    Menu().Choose(entry);
    EXPECT_EQ(static_cast<std::uint32_t>(Grid().Surface().Mode()), bit);
    EXPECT_EQ(Flags(true), 2U + bit);
    for (const MenuEntry other : {MenuEntry::SimpleWavelets, MenuEntry::NoWavelets, MenuEntry::NewWavelets})
      EXPECT_EQ(Menu().IsChecked(other), other == entry);
  }
}

TEST_F(WindowMenuTest, SubdivisionColoursAreASetting) {
  EXPECT_FALSE(g_DrawingSettings.m_bSpecificSubdivisionColours);
  Menu().Choose(MenuEntry::SubdivisionColours);
  EXPECT_TRUE(g_DrawingSettings.m_bSpecificSubdivisionColours);
  Menu().Choose(MenuEntry::SubdivisionColours);
  EXPECT_FALSE(g_DrawingSettings.m_bSpecificSubdivisionColours);
}

TEST_F(WindowMenuTest, SubdivisionColoursRedrawBothViews) {
  ShowWindow();
  for (int k = 0; k < 2; ++k) {
    DrawBoth();
    Menu().Choose(MenuEntry::SubdivisionColours);
    EXPECT_NE(m_Window.ImageView().damage(), 0);
    EXPECT_NE(m_Window.GridView().damage(), 0);
  }
  g_DrawingSettings = CDrawingSettings{};
}

TEST_F(WindowMenuTest, DrawingParametersOpenTheirDialog) {
  Menu().Choose(MenuEntry::DrawingParameters);
  EXPECT_EQ(m_asDone, std::vector<std::string>{"options"});
}

TEST_F(WindowMenuTest, DebugZoneGoesAndComesBackAsItWas) {
  ClickOn(Control::TestInterpolation);
  Menu().Choose(MenuEntry::DebugInterface);
  EXPECT_FALSE(m_Window.ShowsDebugZone());
  for (const CControlRow& row : kControls) {
    if (IsInDebugZone(row.m_Control)) {
      EXPECT_FALSE(IsVisible(row.m_Control)) << row.m_pLabel;
    }
  }
  EXPECT_TRUE(IsVisible(Control::Select));
  EXPECT_TRUE(IsVisible(Control::ResetImageView));
  Menu().Choose(MenuEntry::DebugInterface);
  EXPECT_TRUE(IsVisible(Control::Popup));
  EXPECT_TRUE(IsVisible(Control::CentreCoef));
  for (const Control hidden : {Control::Influence, Control::Level, Control::PointNumber, Control::PointCount})
    EXPECT_FALSE(IsVisible(hidden));
}

TEST_F(WindowMenuTest, ToolThatComesWhileTheDebugZoneIsHiddenStaysHiddenWithIt) {
  Menu().Choose(MenuEntry::DebugInterface);
  Button(Control::HorizontalCoefs).value(1);
  Widget(Control::HorizontalCoefs).do_callback();
  EXPECT_FALSE(IsVisible(Control::Influence));
  Menu().Choose(MenuEntry::DebugInterface);
  EXPECT_TRUE(IsVisible(Control::Influence));
}

TEST_F(WindowMenuTest, StatusBarGivesItsRoomToTheViews) {
  Menu().Choose(MenuEntry::StatusBar);
  EXPECT_FALSE(IsVisible(Control::HelpLine));
  EXPECT_EQ(m_Window.ImageView().h(), 453);
  Menu().Choose(MenuEntry::StatusBar);
  EXPECT_TRUE(IsVisible(Control::HelpLine));
  EXPECT_EQ(m_Window.ImageView().h(), 430);
}
