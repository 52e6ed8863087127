#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "support/gui/LightPanelTest.h"

TEST_F(LightSourcesTest, LiveAndSoftAreOffAtTheStartAndShowWhatIs) {
  m_Panel.Open();
  EXPECT_FALSE(IsOn("Live") || IsOn("Soft"));
  Push("Live");
  EXPECT_TRUE(m_Lighting.IsLive());
  Push("Soft");
  EXPECT_EQ(m_Lighting.RelitTone(), Tone::Soft);
  EXPECT_TRUE(m_Lighting.m_asCommands.empty()) << "what follows is the model's matter";
  m_Lighting.SetLive(false);
  m_Lighting.SetTone(Tone::Clipped);
  m_Panel.Refresh();
  EXPECT_FALSE(IsOn("Live") || IsOn("Soft"));
}

TEST_F(LightSourcesTest, LiveSaysHowItIsSeenWhereThePhotographIsShown) {
  m_Panel.Open();
  Push("Live");
  EXPECT_EQ(m_Views.m_asMessages, std::vector{FormatHelp(HelpText::kLiveUnseen)});
  Push("Live");
  m_Lighting.m_Shown = CTextureImages::kIllumination;
  Push("Live");
  EXPECT_TRUE(m_Lighting.IsLive());
  EXPECT_EQ(m_Views.m_asMessages.size(), 1U);
}

TEST_F(LightSourcesTest, HasItsSizeAndStartsHidden) {
  EXPECT_EQ(m_Panel.w(), 512);
  EXPECT_EQ(m_Panel.h(), 439);
  EXPECT_FALSE(m_Panel.shown());
  ExpectInsideGroups(m_Panel);
}

TEST_F(LightSourcesTest, WidgetsHaveTheirKindsAndGroups) {
  const auto in = [this](const char* group) -> Fl_Group& { return Widget<Fl_Group>(group); };
  for (const char* label : {kActive, kDrawn}) EXPECT_NO_THROW(Widget<Fl_Check_Button>(label)) << label;
  for (const char* label : kLights) EXPECT_EQ(Find<Fl_Light_Button>(in("Light #"), label).type(), FL_RADIO_BUTTON);
  for (const char* label : {kRemoved, kAdded}) {
    EXPECT_EQ(Find<Fl_Round_Button>(in("Light category"), label).type(), FL_RADIO_BUTTON);
  }
  EXPECT_NO_THROW(Find<Fl_Check_Button>(in("Light intensity"), kFixRatios));
  for (const char* label :
       {"Show Original texture", "Show Kd texture\nwithout added lights", "Show New Illumination"}) {
    EXPECT_NO_THROW(Find<Fl_Round_Button>(in(kTextures), label)) << label;
  }
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation", "Update\nKd"}) {
    EXPECT_NO_THROW(Find<Fl_Button>(in("Updates"), label)) << label;
  }
}

TEST_F(LightSourcesTest, SlidersHaveTheirRanges) {
  struct CRow {
    const char* m_pGroup;
    const char* m_pLabel;
    double m_fMaximum;
  };
  constexpr std::array kRows{CRow{kPosition, kTheta, 180}, CRow{kPosition, kPhi, 360},
                             CRow{"Light intensity", "Red", 1}, CRow{"Light intensity", "Green", 1},
                             CRow{"Light intensity", "Blue", 1}};
  for (const CRow& row : kRows) {
    const auto& slider = Find<Fl_Value_Slider>(Widget<Fl_Group>(row.m_pGroup), row.m_pLabel);
    EXPECT_TRUE((slider.type() & FL_HORIZONTAL) != 0) << row.m_pLabel;
    EXPECT_EQ(slider.minimum(), 0) << row.m_pLabel;
    EXPECT_EQ(slider.maximum(), row.m_fMaximum) << row.m_pLabel;
  }
}

TEST_F(LightSourcesTest, IsBuiltWithoutALight) {
  for (const char* label : kLights) EXPECT_FALSE(IsOn(label)) << label;
  EXPECT_EQ(m_Panel.current_category(), 0);
  const ConsoleCapture console;
  EXPECT_EQ(m_Panel.current_light(), 0);
  EXPECT_EQ(console.Text(), kNoLightChosen);
}

TEST_F(LightSourcesTest, NothingIsAppliedWithoutALight) {
  const CLightSet removed = m_Lighting.m_Removed;
  const CLightSet added = m_Lighting.m_Added;
  for (const char* label : {kActive, kDrawn}) Push(label);
  for (const char* label : {kTheta, kPhi, "Red", "Green", "Blue"}) Move(label, 0.5);
  EXPECT_EQ(m_Lighting.m_Removed, removed);
  EXPECT_EQ(m_Lighting.m_Added, added);
  EXPECT_EQ(m_Views.m_iModelRedraws, 0);
}

TEST_F(LightSourcesTest, FirstOpeningChoosesTheFirstRemovedLight) {
  const ConsoleCapture console;
  m_Panel.Open();
  EXPECT_TRUE(Appears("Light sources"));
  EXPECT_TRUE(IsOn("Light 1"));
  EXPECT_TRUE(IsOn(kRemoved));
  EXPECT_EQ(m_Panel.current_light(), 0);
  EXPECT_EQ(m_Panel.current_category(), 1);
  EXPECT_EQ(console.Text(), "");
}

TEST_F(LightSourcesTest, LaterOpeningsKeepTheChoiceAndShowTheRecordAsItIs) {
  m_Panel.Open();
  Push("Light 3");
  Push(kAdded);
  m_Panel.hide();
  Added(2).m_afColour = {0.25, 0.5, 0.75};
  m_Panel.Open();
  EXPECT_TRUE(IsOn("Light 3"));
  EXPECT_TRUE(IsOn(kAdded));
  ExpectColour(0.25, 0.5, 0.75);
}

TEST_F(LightSourcesTest, EveryLightAndCategoryIsChosenAlone) {
  m_Panel.Open();
  for (int category = 1; category <= 2; ++category) {
    Push(category == 1 ? kRemoved : kAdded);
    for (std::size_t k = 0; k < kLights.size(); ++k) {
      Push(kLights[k]);
      EXPECT_EQ(m_Panel.current_light(), static_cast<int>(k));
      EXPECT_EQ(m_Panel.current_category(), category);
      for (const char* other : kLights) EXPECT_EQ(IsOn(other), other == kLights[k]) << other;
      EXPECT_NE(IsOn(kRemoved), IsOn(kAdded));
    }
  }
}

TEST_F(LightSourcesTest, ChangesGoIntoTheChosenRecordOnly) {
  for (int category = 1; category <= 2; ++category) {
    for (std::size_t k = 0; k < kLights.size(); ++k) {
      m_Panel.Open();
      Push(category == 1 ? kRemoved : kAdded);
      Push(kLights[k]);
      CLightSet removed = m_Lighting.m_Removed;
      CLightSet added = m_Lighting.m_Added;
      Push(kActive);
      Move("Green", 0.375);
      CLight& expected = (category == 1 ? removed : added).m_aLights[k];
      expected.m_bActive = true;
      expected.m_afColour[1] = 0.375;
      EXPECT_EQ(m_Lighting.m_Removed, removed) << kLights[k];
      EXPECT_EQ(m_Lighting.m_Added, added) << kLights[k];
    }
  }
}

TEST_F(LightSourcesTest, EveryWidgetIsAppliedAtOnceAndRedrawsTheModel) {
  m_Panel.Open();
  m_Views.m_iModelRedraws = 0;
  Push(kActive);
  EXPECT_TRUE(Removed(0).m_bActive);
  Push(kDrawn);
  EXPECT_TRUE(Removed(0).m_bDrawn);
  Move(kTheta, 90);
  EXPECT_NEAR(Removed(0).m_afDirection[0], 1, 1e-6);
  Move(kPhi, 90);
  EXPECT_NEAR(Removed(0).m_afDirection[1], 1, 1e-6);
  EXPECT_EQ(Removed(0).m_afDirection[3], 0);
  Move("Red", 0.25);
  Move("Green", 0.5);
  Move("Blue", 0.75);
  EXPECT_EQ(Removed(0).m_afColour, (std::array{0.25, 0.5, 0.75}));
  EXPECT_EQ(m_Views.m_iModelRedraws, 7);
  EXPECT_EQ(m_Views.m_iImageRedraws, 0);
}

TEST_F(LightSourcesTest, SwitchesGoOffAgain) {
  m_Panel.Open();
  for (const char* label : {kActive, kDrawn, kActive, kDrawn}) Push(label);
  EXPECT_FALSE(Removed(0).m_bActive);
  EXPECT_FALSE(Removed(0).m_bDrawn);
}

TEST_F(LightSourcesTest, ChoosingShowsTheRecord) {
  Added(1) = {true, true, {0, -2, 0, 0}, {0.1, 0.2, 0.3}, {0, 1, 0, 0.5}};
  m_Panel.Open();
  Push(kAdded);
  Push("Light 2");
  EXPECT_TRUE(IsOn(kActive));
  EXPECT_TRUE(IsOn(kDrawn));
  EXPECT_NEAR(Value(kTheta), 90, 1e-5);
  EXPECT_NEAR(Value(kPhi), 270, 1e-5);
  ExpectColour(0.1, 0.2, 0.3);
  EXPECT_EQ(Widget(kTube).color(), 56U + 7);
}

TEST_F(LightSourcesTest, ChoosingAnotherLightFirstAppliesTheOneBefore) {
  Removed(0).m_afDirection = {0, 0, 5, 0};
  m_Panel.Open();
  Push("Light 2");
  EXPECT_EQ(Removed(0).m_afDirection, (std::array{0.0, 0.0, 1.0, 0.0}));
}

TEST_F(LightSourcesTest, ThetaZeroIsStraightUpWhateverPhi) {
  m_Panel.Open();
  Move(kTheta, 30);
  Move(kPhi, 200);
  Move(kTheta, 0);
  EXPECT_EQ(Removed(0).m_afDirection[2], 1);
  EXPECT_NEAR(std::hypot(Removed(0).m_afDirection[0], Removed(0).m_afDirection[1]), 0, 1e-15);
  EXPECT_FALSE(Widget<Fl_Value_Slider>(kPhi).active());
  m_Panel.Refresh();
  EXPECT_EQ(Value(kPhi), 0);
  EXPECT_FALSE(Widget<Fl_Value_Slider>(kPhi).active());
}

TEST_F(LightSourcesTest, PhiIsFreeUnlessTheLightIsVertical) {
  m_Panel.Open();
  struct CRow {
    double m_fTheta;
    bool m_bPhiActive;
  };
  for (const CRow row : {CRow{0, false}, CRow{0.1, true}, CRow{90, true}, CRow{179.9, true}, CRow{180, false}}) {
    Move(kTheta, row.m_fTheta);
    EXPECT_EQ(Widget<Fl_Value_Slider>(kPhi).active() != 0, row.m_bPhiActive) << row.m_fTheta;
    m_Panel.Refresh();
    EXPECT_EQ(Widget<Fl_Value_Slider>(kPhi).active() != 0, row.m_bPhiActive) << row.m_fTheta << " read back";
    EXPECT_NEAR(Value(kTheta), row.m_fTheta, 1e-5);
  }
}

TEST_F(LightSourcesTest, DraggingThetaOverTheTopKeepsPhi) {
  m_Panel.Open();
  Move(kTheta, 30);
  Move(kPhi, 200);
  Move(kTheta, 0);
  Move(kTheta, 30);
  EXPECT_EQ(Value(kPhi), 200);
}

TEST_F(LightSourcesTest, NegativeYReadsBackAsPhiAboveAHalfTurn) {
  m_Panel.Open();
  Removed(0).m_afDirection = {1, -1, 1, 0};
  m_Panel.Refresh();
  EXPECT_NEAR(Value(kPhi), 315, 1e-4);
}

TEST_F(LightSourcesTest, AmbientLightHasNoPosition) {
  m_Panel.Open();
  Push("Ambient light");
  EXPECT_FALSE(Widget<Fl_Group>(kPosition).active());
  EXPECT_FALSE(Widget(kDrawn).active());
  Push("Light 4");
  EXPECT_TRUE(Widget<Fl_Group>(kPosition).active());
  EXPECT_TRUE(Widget(kDrawn).active());
}

TEST_F(LightSourcesTest, ButtonsOfTheLightsTakeTheColourOfTheCategory) {
  m_Panel.Open();
  for (const auto& [category, colour] : {std::pair{kRemoved, 1U}, {kAdded, 3U}, {kRemoved, 1U}}) {
    Push(category);
    for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(Widget(kLights[k]).selection_color(), colour) << kLights[k];
    EXPECT_EQ(Widget("Ambient light").selection_color(), 2U);
  }
}

TEST_F(LightSourcesTest, TextureOptionsWaitForTheirImages) {
  m_Panel.Open();
  EXPECT_FALSE(Widget<Fl_Group>(kTextures).active());
  m_Lighting.m_bKdSucceeds = false;
  Push("Update\nKd");
  EXPECT_FALSE(Widget<Fl_Group>(kTextures).active());
  m_Lighting.m_bKdSucceeds = true;
  Push("Update\nKd");
  EXPECT_TRUE(Widget<Fl_Group>(kTextures).active());
}

TEST_F(LightSourcesTest, NewPictureTakesTheTextureOptionsAway) {
  m_Panel.Open();
  Push("Update\nKd");
  Push("Show New Illumination");
  m_Lighting.m_bHasKd = false;
  m_Lighting.m_Shown = CTextureImages::kPhotograph;
  m_Panel.Refresh();
  EXPECT_FALSE(Widget<Fl_Group>(kTextures).active());
  EXPECT_TRUE(IsOn("Show Original texture"));
}

TEST_F(LightSourcesTest, TextureButtonsShowTheirTextureAndAreOnAlone) {
  m_Lighting.m_bHasKd = true;
  m_Panel.Open();
  EXPECT_TRUE(IsOn("Show Original texture"));
  const std::array buttons{std::pair{"Show Kd texture\nwithout added lights", CTextureImages::kKd},
                           std::pair{"Show New Illumination", CTextureImages::kIllumination},
                           std::pair{"Show Original texture", CTextureImages::kPhotograph}};
  for (const auto& [label, mode] : buttons) {
    for (int press = 0; press < 2; ++press) {
      Push(label);
      EXPECT_EQ(m_Lighting.m_Shown, mode) << label;
      for (const auto& [other, otherMode] : buttons) EXPECT_EQ(IsOn(other), mode == otherMode) << other;
    }
  }
}

TEST_F(LightSourcesTest, TextureButtonsRedrawBothViews) {
  m_Lighting.m_bHasKd = true;
  m_Panel.Open();
  m_Views.m_iImageRedraws = m_Views.m_iModelRedraws = 0;
  Push("Show New Illumination");
  EXPECT_EQ(m_Views.m_iImageRedraws, 1);
  EXPECT_EQ(m_Views.m_iModelRedraws, 1);
}

TEST_F(LightSourcesTest, UpdateButtonsRunTheirCommandsAndRedraw) {
  m_Panel.Open();
  for (const auto& [label, command] : {std::pair{"Update\ntexels\nnormals", "normals"},
                                       {"Update\ntexels\nInterpolation", "interpolation"},
                                       {"Update\nKd", "Kd"}}) {
    m_Lighting.m_asCommands.clear();
    m_Views.m_iModelRedraws = 0;
    Push(label);
    EXPECT_EQ(m_Lighting.m_asCommands, std::vector<std::string>{command});
    EXPECT_GE(m_Views.m_iModelRedraws, 1) << label;
  }
}

TEST_F(LightSourcesTest, WithoutAGridEveryButtonDoesNothing) {
  CLightUI panel(m_Views, m_MainWindow, [](bool /*visible*/) {});
  panel.Open();
  for (Fl_Widget* widget : WidgetsIn(panel)) {
    auto* button = dynamic_cast<Fl_Button*>(widget);
    if (button != nullptr && button->active_r() != 0 && widget->label() != std::string(kTube)) Press(*button);
  }
  EXPECT_TRUE(m_Lighting.m_asCommands.empty());
  EXPECT_EQ(m_Views.m_iModelRedraws, 0);
}

TEST_F(LightSourcesTest, RecordChangedFromOutsideIsShownWhileOpen) {
  m_Panel.Open();
  Removed(0).m_bActive = true;
  Removed(0).SetDirection({0, 1, 0});
  m_Panel.Refresh();
  EXPECT_TRUE(IsOn(kActive));
  EXPECT_NEAR(Value(kTheta), 90, 1e-5);
  EXPECT_NEAR(Value(kPhi), 90, 1e-5);
}

TEST_F(LightSourcesTest, OpeningAndClosingAreReported) {
  m_Panel.Open();
  m_Panel.Open();
  EXPECT_EQ(m_abVisible, std::vector{true});
  m_Panel.hide();
  EXPECT_EQ(m_abVisible, (std::vector{true, false}));
  m_Panel.hide();
  EXPECT_EQ(m_abVisible, (std::vector{true, false}));
}

TEST_F(LightSourcesTest, WindowButtonClosesAndIsReported) {
  m_Panel.Open();
  ASSERT_TRUE(Appears("Light sources"));
  m_Screen.AskToClose(*m_Screen.FindWindow(getpid(), "Light sources"));
  EXPECT_TRUE(WorkUntil([&] { return m_abVisible == std::vector{true, false}; }));
  EXPECT_FALSE(m_Panel.shown());
}

TEST_F(LightSourcesTest, OpensBesideTheMainWindowOnTheScreen) {
  m_MainWindow.show();
  m_Panel.Open();
  ASSERT_TRUE(Appears("Light sources"));
  EXPECT_GE(m_Panel.x(), m_MainWindow.x() + m_MainWindow.w());
  EXPECT_LE(m_Panel.x() + m_Panel.w(), Fl::w());
}

TEST_F(LightSourcesTest, MouseShowsThatAnUpdateIsUnderWay) {
  m_Panel.Open();
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation", "Update\nKd"}) {
    Push(label);
    EXPECT_FALSE(CBusyCursor::IsShown()) << label;
  }
  EXPECT_EQ(m_Lighting.m_iBusy, 3);
}
