#include "ui/lights/CLightUI.h"

#include <algorithm>
#include <utility>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Light_Button.H>
#include <FL/Fl_Round_Button.H>

#include "base/Console.h"
#include "lighting/CLight.h"
#include "ui/drawing/CValueSlider.h"
#include "ui/drawing/ColourChoice.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/seams/ViewHost.h"

namespace {

constexpr int kAmbient = static_cast<int>(CLightSet::kAmbient);

// Entries of the toolkit's palette.
constexpr Fl_Color kRed = 1;
constexpr Fl_Color kGreen = 2;
constexpr Fl_Color kYellow = 3;

constexpr std::array<const char*, 5> kLightLabels{"Light 1", "Light 2", "Light 3", "Light 4", "Ambient light"};
constexpr std::array<const char*, 2> kCategoryLabels{"Removed Lights", "Added lights"};
constexpr std::array<const char*, 3> kColourLabels{"Red", "Green", "Blue"};
// In the order of the images.
constexpr std::array<const char*, 3> kTextureLabels{"Show Original texture", "Show Kd texture\nwithout added lights",
                                                    "Show New Illumination"};

Fl_Group* BeginFrame(int x, int y, int w, int h, const char* label) {
  auto* group = new Fl_Group(x, y, w, h, label);
  group->box(FL_ENGRAVED_FRAME);
  group->labelfont(FL_HELVETICA_BOLD);
  group->labelsize(13);
  return group;
}

Fl_Value_Slider* AddSlider(int x, int y, const char* label, double maximum, double step) {
  auto* slider = new CValueSlider(x, y, 229, 22, label);
  slider->type(FL_HOR_NICE_SLIDER);
  slider->box(FL_FLAT_BOX);
  slider->labelsize(12);
  slider->bounds(0, maximum);
  slider->step(step);
  return slider;
}

void SetActive(Fl_Widget& widget, bool active) {
  if (active) {
    widget.activate();
  } else {
    widget.deactivate();
  }
}

// Number of the button in its row that is on; the size of the row if none is.
template <class Buttons>
std::size_t Chosen(const Buttons& buttons) {
  const auto on = std::ranges::find_if(buttons, [](const auto* button) { return button->value() != 0; });
  return static_cast<std::size_t>(on - buttons.begin());
}

}  // namespace

CLightUI::CLightUI(ViewHost& views, const Fl_Window& mainWindow, VisibilityListener listener)
    : Fl_Double_Window(512, 439, "Light sources"),
      m_Views(views),
      m_MainWindow(mainWindow),
      m_Listener(std::move(listener)) {
  BuildChoices();
  BuildRecord();
  BuildPosition();
  BuildIntensity();
  BuildTextures();
  BuildUpdates();
  end();
  ScaleWidgets(*this);
  set_non_modal();
}

void CLightUI::BuildChoices() {
  Fl_Group* lights = BeginFrame(6, 24, 150, 158, "Light #");
  for (std::size_t k = 0; k < kLights; ++k) {
    m_apLights[k] = new Fl_Light_Button(12, 30 + 30 * static_cast<int>(k), 138, 26, kLightLabels[k]);
    m_apLights[k]->type(FL_RADIO_BUTTON);
    m_apLights[k]->callback(cb_Choice, this);
  }
  m_apLights[kAmbient]->selection_color(kGreen);
  lights->end();
  Fl_Group* categories = BeginFrame(164, 24, 164, 66, "Light category");
  for (std::size_t k = 0; k < m_apCategories.size(); ++k) {
    m_apCategories[k] = new Fl_Round_Button(170, 30 + 28 * static_cast<int>(k), 150, 26, kCategoryLabels[k]);
    m_apCategories[k]->type(FL_RADIO_BUTTON);
    m_apCategories[k]->callback(cb_Choice, this);
  }
  categories->end();
}

void CLightUI::BuildRecord() {
  m_pTubeColour = new Fl_Button(172, 98, 30, 26, "Color (of the tube)");
  m_pTubeColour->align(FL_ALIGN_RIGHT);
  m_pTubeColour->labelsize(12);
  m_pTubeColour->callback(cb_TubeColour, this);
  m_pActive = new Fl_Check_Button(164, 130, 164, 26, "Set the light active");
  m_pDrawn = new Fl_Check_Button(164, 158, 240, 26, "Draw the light in the 3D scene");
  for (Fl_Check_Button* button : {m_pActive, m_pDrawn}) button->callback(cb_Apply, this);
  m_pLive = new Fl_Check_Button(404, 158, 50, 26, "Live");
  m_pLive->callback(cb_Live, this);
  m_pSoft = new Fl_Check_Button(456, 158, 50, 26, "Soft");
  m_pSoft->callback(cb_Soft, this);
}

void CLightUI::BuildPosition() {
  m_pPosition = BeginFrame(6, 208, 245, 96, "Light position");
  m_pTheta = AddSlider(14, 213, "Theta angle", 180, 0.1);
  m_pTheta->callback(cb_Theta, this);
  m_pPhi = AddSlider(14, 258, "Phi angle", 360, 0.1);
  m_pPhi->callback(cb_Apply, this);
  m_pPosition->end();
}

void CLightUI::BuildIntensity() {
  Fl_Group* group = BeginFrame(261, 208, 245, 220, "Light intensity");
  for (std::size_t k = 0; k < m_apColour.size(); ++k) {
    m_apColour[k] = AddSlider(269, 216 + 55 * static_cast<int>(k), kColourLabels[k], 1, 0.01);
    m_apColour[k]->callback(cb_Colour, this);
  }
  m_pFixRatios = new Fl_Check_Button(310, 390, 150, 26, "Fix color ratios");
  m_pFixRatios->callback(cb_FixRatios, this);
  group->end();
}

void CLightUI::BuildTextures() {
  m_pTextures = BeginFrame(336, 24, 170, 130, "Texture Option");
  for (std::size_t k = 0; k < m_apTextures.size(); ++k) {
    m_apTextures[k] = new Fl_Round_Button(340, 30 + 40 * static_cast<int>(k), 162, 38, kTextureLabels[k]);
    m_apTextures[k]->type(FL_RADIO_BUTTON);
    m_apTextures[k]->labelsize(12);
    m_apTextures[k]->callback(cb_Texture, this);
  }
  m_apTextures[0]->value(1);
  m_pTextures->deactivate();
  m_pTextures->end();
}

void CLightUI::BuildUpdates() {
  Fl_Group* group = BeginFrame(6, 334, 245, 94, "Updates");
  const auto addButton = [this, group](int x, int w, const char* label, Fl_Callback* command) {
    auto* button = new Fl_Button(x, 342, w, 78, label);
    button->labelsize(12);
    button->callback(command, this);
    group->add(button);
  };
  addButton(12, 70, "Update\ntexels\nnormals", cb_UpdateNormals);
  addButton(85, 92, "Update\ntexels\nInterpolation", cb_UpdateInterpolation);
  addButton(180, 65, "Update\nKd", cb_UpdateKd);
  group->end();
}

void CLightUI::AttachGrid(LightingCommands& grid) {
  m_pGrid = &grid;
  Refresh();
}

void CLightUI::Open() {
  if (m_iCategory == 0) {
    m_apLights[0]->setonly();
    m_apCategories[0]->setonly();
    TakeChoice();
  } else {
    Refresh();
  }
  const bool wasShown = shown() != 0;
  OpenBeside(*this, m_MainWindow);
  if (!wasShown) m_Listener(true);
}

void CLightUI::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (wasShown) m_Listener(false);
}

int CLightUI::current_light() const {
  const std::size_t light = Chosen(m_apLights);
  if (light < kLights) return static_cast<int>(light);
  Console() << "Error CLightUI::current_light()\t\t\tinvalid type (no activated buttons)\n";
  return 0;
}

int CLightUI::current_category() const {
  constexpr std::array kCategories{int{kRemovedLights}, int{kAddedLights}, 0};
  return kCategories[Chosen(m_apCategories)];
}

const CLight* CLightUI::CurrentRecord() const {
  if (m_pGrid == nullptr || m_iCategory == 0) return nullptr;
  return m_pGrid->GetLightSource(m_iLight, m_iCategory);
}

std::array<double, 3> CLightUI::ColourOnSliders() const {
  return {m_apColour[0]->value(), m_apColour[1]->value(), m_apColour[2]->value()};
}

void CLightUI::Apply() {
  const CLight* record = CurrentRecord();
  if (record == nullptr) return;
  CLight light = *record;
  ::Apply({m_pActive->value() != 0,
           m_pDrawn->value() != 0,
           {m_pTheta->value(), m_pPhi->value()},
           ColourOnSliders(),
           m_aiTubeColour},
          light);
  m_pGrid->SetLight(m_iLight, m_iCategory, light);
  m_Views.RedrawModelView();
}

void CLightUI::TakeChoice() {
  Apply();
  m_iLight = current_light();
  m_iCategory = current_category();
  Refresh();
}

void CLightUI::Refresh() {
  RefreshChoice();
  RefreshTextures();
  if (m_pGrid != nullptr) {
    m_pLive->value(m_pGrid->IsLive() ? 1 : 0);
    m_pSoft->value(m_pGrid->RelitTone() == Tone::Soft ? 1 : 0);
  }
  const CLight* light = CurrentRecord();
  if (light != nullptr) RefreshRecord(ControlsOf(*light));
}

void CLightUI::RefreshChoice() {
  const bool ambient = m_iLight == kAmbient;
  SetActive(*m_pPosition, !ambient);
  SetActive(*m_pDrawn, !ambient);
  if (m_iCategory == 0) return;
  const Fl_Color colour = m_iCategory == kRemovedLights ? kRed : kYellow;
  for (std::size_t k = 0; k < CLightSet::kAmbient; ++k) {
    m_apLights[k]->selection_color(colour);
    m_apLights[k]->redraw();
  }
}

void CLightUI::RefreshRecord(const CLightControls& light) {
  m_pActive->value(light.m_bActive ? 1 : 0);
  m_pDrawn->value(light.m_bDrawn ? 1 : 0);
  m_pTheta->value(light.m_Angles.m_fTheta);
  m_pPhi->value(light.m_Angles.m_fPhi);
  RefreshPhi();
  RefreshColour(light.m_afColour);
  m_Ratios = CColourRatios(light.m_afColour);
  RefreshTubeColour(light.m_aiTubeColour);
}

void CLightUI::RefreshPhi() { SetActive(*m_pPhi, IsPhiFree(m_pTheta->value())); }

void CLightUI::RefreshColour(const std::array<double, 3>& colour) {
  for (std::size_t k = 0; k < colour.size(); ++k) m_apColour[k]->value(colour[k]);
}

void CLightUI::RefreshTubeColour(const std::array<int, 3>& bytes) {
  m_aiTubeColour = bytes;
  const auto entry = static_cast<Fl_Color>(ColourCubeEntry(bytes));
  m_pTubeColour->color(entry, entry);
  m_pTubeColour->redraw();
}

void CLightUI::RefreshTextures() {
  if (m_pGrid == nullptr) return;
  SetActive(*m_pTextures, m_pGrid->HasKd());
  m_apTextures[m_pGrid->ShownTexture()]->setonly();
}

void CLightUI::Update(void (LightingCommands::*update)()) {
  if (m_pGrid == nullptr) return;
  {
    const CBusyCursor busy;
    (m_pGrid->*update)();
  }
  RefreshTextures();
  m_Views.RedrawImageView();
  m_Views.RedrawModelView();
}

void CLightUI::cb_Choice(Fl_Widget* /*widget*/, void* panel) { static_cast<CLightUI*>(panel)->TakeChoice(); }

void CLightUI::cb_Apply(Fl_Widget* /*widget*/, void* panel) { static_cast<CLightUI*>(panel)->Apply(); }

void CLightUI::cb_Live(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  if (self.m_pGrid == nullptr) return;
  const bool live = self.m_pLive->value() != 0;
  self.m_pGrid->SetLive(live);
  if (live && self.m_pGrid->ShownTexture() == CTextureImages::kPhotograph)
    self.m_Views.ShowMessage(FormatHelp(HelpText::kLiveUnseen));
}

void CLightUI::cb_Soft(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  if (self.m_pGrid != nullptr) self.m_pGrid->SetTone(self.m_pSoft->value() != 0 ? Tone::Soft : Tone::Clipped);
}

// Phi stays where it is, so that a light dragged over the top comes down on the same side.
void CLightUI::cb_Theta(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  self.Apply();
  self.RefreshPhi();
}

// The proportions stay as they were taken, even where a channel has met its limit: moving back restores them.
void CLightUI::cb_Colour(Fl_Widget* widget, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  if (self.m_pFixRatios->value() != 0) {
    const auto moved = static_cast<std::size_t>(std::ranges::find(self.m_apColour, widget) - self.m_apColour.begin());
    const auto colour = self.m_Ratios.Follow(moved, self.m_apColour[moved]->value());
    if (colour.has_value()) {
      self.RefreshColour(*colour);
    } else {
      self.m_pFixRatios->value(0);
    }
  }
  self.Apply();
}

void CLightUI::cb_FixRatios(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  self.m_Ratios = CColourRatios(self.ColourOnSliders());
}

void CLightUI::cb_TubeColour(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  std::array<int, 3> bytes = self.m_aiTubeColour;
  if (!ChooseColour("Indicator : Color", bytes)) return;
  self.RefreshTubeColour(bytes);
  self.Apply();
}

void CLightUI::cb_Texture(Fl_Widget* /*widget*/, void* panel) {
  auto& self = *static_cast<CLightUI*>(panel);
  if (self.m_pGrid == nullptr) return;
  self.m_pGrid->ShowTexture(static_cast<CTextureImages::Which>(Chosen(self.m_apTextures)));
  self.m_Views.RedrawImageView();
  self.m_Views.RedrawModelView();
}

void CLightUI::cb_UpdateNormals(Fl_Widget* /*widget*/, void* panel) {
  static_cast<CLightUI*>(panel)->Update(&LightingCommands::UpdateTexelNormals);
}

void CLightUI::cb_UpdateInterpolation(Fl_Widget* /*widget*/, void* panel) {
  static_cast<CLightUI*>(panel)->Update(&LightingCommands::UpdateTexelInterpolation);
}

void CLightUI::cb_UpdateKd(Fl_Widget* /*widget*/, void* panel) {
  static_cast<CLightUI*>(panel)->Update(&LightingCommands::UpdateKd);
}
