#pragma once

#include <array>
#include <cstddef>
#include <functional>

#include <FL/Fl_Double_Window.H>

#include "lighting/LightControls.h"
#include "ui/lights/LightingCommands.h"

class Fl_Button;
class Fl_Check_Button;
class Fl_Group;
class Fl_Light_Button;
class Fl_Round_Button;
class Fl_Value_Slider;
class ViewHost;

/// "Light sources": the panel that edits the removed and the added lights, one at a time, and starts what is computed
/// from them. Each change goes into the light's record at once.
class CLightUI : public Fl_Double_Window {
 public:
  /// Told whenever the panel opens (true) or closes by whatever means (false).
  using VisibilityListener = std::function<void(bool visible)>;

  /// Hidden, without lights to edit. `views` and `mainWindow` must outlive the panel.
  CLightUI(ViewHost& views, const Fl_Window& mainWindow, VisibilityListener listener);

  /// The lights to edit; they must outlive the panel.
  void AttachGrid(LightingCommands& grid);

  /// Shows the panel as the records are now. The first time, "Light 1" of "Removed Lights" is chosen.
  void Open();
  void hide() override;

  /// Brings the panel up to date. For everything that changes lights, pictures or textures from outside.
  void Refresh();
  /// The same for the textures alone.
  void RefreshTextures();

  /// 0-3 for "Light 1" to "Light 4", 4 for "Ambient light"; 0 and a line on the console when none is chosen.
  int current_light() const;
  /// kRemovedLights, kAddedLights, or 0 when neither is chosen.
  int current_category() const;

 private:
  static constexpr std::size_t kLights = 5;

  void BuildChoices();
  void BuildRecord();
  void BuildPosition();
  void BuildIntensity();
  void BuildTextures();
  void BuildUpdates();

  /// The record being edited; null while none is.
  const CLight* CurrentRecord() const;
  /// Panel to record. Nothing happens while no light is being edited.
  void Apply();
  /// Edits the light that the buttons name from now on.
  void TakeChoice();
  std::array<double, 3> ColourOnSliders() const;

  void RefreshChoice();
  void RefreshRecord(const CLightControls& light);
  void RefreshPhi();
  void RefreshColour(const std::array<double, 3>& colour);
  void RefreshTubeColour(const std::array<int, 3>& bytes);
  void Update(void (LightingCommands::*update)());

  static void cb_Choice(Fl_Widget* widget, void* panel);
  static void cb_Apply(Fl_Widget* widget, void* panel);
  static void cb_Live(Fl_Widget* widget, void* panel);
  static void cb_Soft(Fl_Widget* widget, void* panel);
  static void cb_Theta(Fl_Widget* widget, void* panel);
  static void cb_Colour(Fl_Widget* widget, void* panel);
  static void cb_FixRatios(Fl_Widget* widget, void* panel);
  static void cb_TubeColour(Fl_Widget* widget, void* panel);
  static void cb_Texture(Fl_Widget* widget, void* panel);
  static void cb_UpdateNormals(Fl_Widget* widget, void* panel);
  static void cb_UpdateInterpolation(Fl_Widget* widget, void* panel);
  static void cb_UpdateKd(Fl_Widget* widget, void* panel);

  ViewHost& m_Views;
  const Fl_Window& m_MainWindow;
  VisibilityListener m_Listener;
  LightingCommands* m_pGrid = nullptr;

  int m_iLight = 0;
  int m_iCategory = 0;                  ///< of the light being edited; 0: no light is
  CColourRatios m_Ratios;               ///< kept while "Fix color ratios" is on
  std::array<int, 3> m_aiTubeColour{};  ///< bytes; the button shows an entry of the colour cube only

  std::array<Fl_Light_Button*, kLights> m_apLights{};
  std::array<Fl_Round_Button*, 2> m_apCategories{};
  Fl_Check_Button* m_pActive = nullptr;
  Fl_Check_Button* m_pDrawn = nullptr;
  Fl_Check_Button* m_pLive = nullptr;
  Fl_Check_Button* m_pSoft = nullptr;
  Fl_Button* m_pTubeColour = nullptr;
  Fl_Group* m_pPosition = nullptr;
  Fl_Value_Slider* m_pTheta = nullptr;
  Fl_Value_Slider* m_pPhi = nullptr;
  std::array<Fl_Value_Slider*, 3> m_apColour{};
  Fl_Check_Button* m_pFixRatios = nullptr;
  Fl_Group* m_pTextures = nullptr;
  std::array<Fl_Round_Button*, 3> m_apTextures{};
};
