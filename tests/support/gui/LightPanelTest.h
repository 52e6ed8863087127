#pragma once

#include <array>
#include <string>
#include <vector>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Color_Chooser.H>
#include <FL/Fl_Light_Button.H>
#include <FL/Fl_Round_Button.H>
#include <FL/Fl_Value_Slider.H>

#include "lighting/CLight.h"
#include "support/ConsoleCapture.h"
#include "support/gui/PanelTest.h"
#include "ui/lights/CLightUI.h"
#include "ui/seams/CBusyCursor.h"

inline constexpr std::array kLights{"Light 1", "Light 2", "Light 3", "Light 4", "Ambient light"};
inline constexpr const char* kRemoved = "Removed Lights";
inline constexpr const char* kAdded = "Added lights";
inline constexpr const char* kActive = "Set the light active";
inline constexpr const char* kDrawn = "Draw the light in the 3D scene";
inline constexpr const char* kTheta = "Theta angle";
inline constexpr const char* kPhi = "Phi angle";
inline constexpr const char* kPosition = "Light position";
inline constexpr const char* kFixRatios = "Fix color ratios";
inline constexpr const char* kTube = "Color (of the tube)";
inline constexpr const char* kTextures = "Texture Option";
inline constexpr const char* kNoLightChosen =
    "Error CLightUI::current_light()\t\t\tinvalid type (no activated buttons)\n";

/// The model and the view behind the panel: the records, and what was asked of them.
class RecordingLighting : public LightingCommands {
 public:
  const CLight* GetLightSource(int index, int type) const override {
    const CLightSet& set = type == kRemovedLights ? m_Removed : m_Added;
    return &set.m_aLights.at(static_cast<std::size_t>(index));
  }
  void SetLight(int index, int type, const CLight& light) override {
    CLightSet& set = type == kRemovedLights ? m_Removed : m_Added;
    set.m_aLights.at(static_cast<std::size_t>(index)) = light;
  }
  void UpdateTexelNormals() override { Note("normals"); }
  void UpdateTexelInterpolation() override { Note("interpolation"); }
  void UpdateKd() override {
    Note("Kd");
    m_bHasKd = m_bKdSucceeds;
  }
  bool HasKd() const override { return m_bHasKd; }
  bool IsLive() const override { return m_bLive; }
  void SetLive(bool live) override { m_bLive = live; }
  Tone RelitTone() const override { return m_Tone; }
  void SetTone(Tone tone) override { m_Tone = tone; }
  CTextureImages::Which ShownTexture() const override { return m_Shown; }
  void ShowTexture(CTextureImages::Which mode) override { m_Shown = mode; }

  CLightSet m_Removed = CLightSet::Removed();
  CLightSet m_Added = CLightSet::Added();
  std::vector<std::string> m_asCommands;
  int m_iBusy = 0;  ///< commands that the mouse showed to be under way
  bool m_bKdSucceeds = true;
  bool m_bHasKd = false;
  bool m_bLive = false;
  Tone m_Tone = Tone::Clipped;
  CTextureImages::Which m_Shown = CTextureImages::kPhotograph;

 private:
  void Note(const char* command) {
    m_asCommands.emplace_back(command);
    m_iBusy += CBusyCursor::IsShown() ? 1 : 0;
  }
};

/// The light panel over such records.
class LightSourcesTest : public PanelTest {
 protected:
  LightSourcesTest() { m_Panel.AttachGrid(m_Lighting); }

  template <class Kind = Fl_Button>
  Kind& Widget(const char* label) {
    return Find<Kind>(m_Panel, label);
  }
  void Push(const char* label) { Press(Widget(label)); }
  bool IsOn(const char* label) { return Widget(label).value() != 0; }
  double Value(const char* label) { return Widget<Fl_Value_Slider>(label).value(); }
  void Move(const char* label, double value) {
    Widget<Fl_Value_Slider>(label).value(value);
    Widget<Fl_Value_Slider>(label).do_callback();
  }
  void ExpectColour(double red, double green, double blue) {
    EXPECT_DOUBLE_EQ(Value("Red"), red);
    EXPECT_DOUBLE_EQ(Value("Green"), green);
    EXPECT_DOUBLE_EQ(Value("Blue"), blue);
  }
  CLight& Removed(std::size_t k) { return m_Lighting.m_Removed.m_aLights[k]; }
  CLight& Added(std::size_t k) { return m_Lighting.m_Added.m_aLights[k]; }
  // Opens the panel on this colour of "Light 1" with the proportions fixed.
  void OpenFixed(const std::array<double, 3>& colour) {
    Removed(0).m_afColour = colour;
    m_Panel.Open();
    Push(kFixRatios);
  }
  void ChooseTubeColour(const std::array<double, 3>& colour, const char* button) {
    const CModalAnswers answers({[&](Fl_Window& window) {
      EXPECT_STREQ(window.label(), "Indicator : Color");
      for (Fl_Widget* widget : WidgetsIn(window)) {
        auto* chooser = dynamic_cast<Fl_Color_Chooser*>(widget);
        if (chooser != nullptr) chooser->rgb(colour[0], colour[1], colour[2]);
      }
      Press(Find<Fl_Button>(window, button));
    }});
    Push(kTube);
  }

  RecordingLighting m_Lighting;
  std::vector<bool> m_abVisible;
  CLightUI m_Panel{m_Views, m_MainWindow, [this](bool visible) { m_abVisible.push_back(visible); }};
};
