#include "ui/depth/CReferencePanel.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Float_Input.H>

#include "model/CGrid.h"
#include "reference/StraightFit.h"
#include "ui/depth/PanelFields.h"
#include "ui/depth/ReferenceCommands.h"
#include "ui/drawing/CValueSlider.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/seams/HelpTexts.h"

namespace {

constexpr int kEstimateTop = 134;
constexpr int kSettingsTop = kEstimateTop + CEstimateFields::kHeight + 10;
constexpr int kFitTop = kSettingsTop + 158;
constexpr int kTearsTop = kFitTop + 158;
constexpr int kPanelHeight = kTearsTop + CTearFields::kHeight + 10;
constexpr int kFloatBits = 32;

Fl_Choice* AddChoice(int y, const char* label, std::initializer_list<const char*> texts) {
  auto* choice = AddField<Fl_Choice>(y, PanelField::kWidth, label);
  for (const char* text : texts) choice->add(text);
  return choice;
}

double LargerSide(const CGrid& grid) {
  const CExtent& extent = grid.Surface().Lattice().Extent();
  return std::max(extent.x1 - extent.x0, extent.y1 - extent.y0);
}

// Nothing where the text is not a number above 0.
std::optional<double> DepthIn(std::string_view text) {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  return whole && std::isfinite(value) && value > 0 ? std::optional(value) : std::nullopt;
}

std::string FittedText(const CReferenceFit& fit, bool nearIsBright) {
  std::string text = fit.m_bFitted ? "to " + std::to_string(fit.m_iHeights) + " heights" : "by the depth of the scene";
  text += fit.m_bBent ? ", bent" : ", straight";
  if (fit.m_bNearIsBright != nearIsBright) text += fit.m_bNearIsBright ? ", near is bright" : ", near is dark";
  return text;
}

CReferencePanel& Panel(void* panel) { return *static_cast<CReferencePanel*>(panel); }

}  // namespace

CReferencePanel::CReferencePanel(CGrid& grid, ReferenceCommands& commands, const Fl_Window& mainWindow,
                                 std::function<void()> closed)
    : Fl_Double_Window(PanelField::kPanelWidth, kPanelHeight, "Reference depth"),
      m_Grid(grid),
      m_Commands(commands),
      m_MainWindow(mainWindow),
      m_Closed(std::move(closed)) {
  BuildMap();
  m_pEstimate = new CEstimateFields(kEstimateTop, commands);
  BuildSettings(kSettingsTop);
  BuildFit(kFitTop);
  m_pTears = new CTearFields(kTearsTop, commands);
  end();
  ScaleWidgets(*this);
  set_non_modal();
  Refresh(grid);
}

void CReferencePanel::BuildMap() {
  m_pFile = AddReadOut(10, PanelField::kWidth, "Depth map");
  auto* load = new Fl_Button(PanelField::kLeft, 40, PanelField::kHalfWidth, 26, "Load...");
  load->callback(cb_Load, this);
  m_pRemove = new Fl_Button(PanelField::kLeft + PanelField::kWidth - PanelField::kHalfWidth, 40, PanelField::kHalfWidth,
                            26, "Remove");
  m_pRemove->callback(cb_Remove, this);
  m_pEmbedded = new Fl_Button(PanelField::kLeft, 70, PanelField::kWidth, 26, "Take the photograph's own");
  m_pEmbedded->callback(cb_Embedded, this);
  m_pShowMap =
      new Fl_Check_Button(PanelField::kLeft, 102, PanelField::kWidth, PanelField::kHeight, "Show over the photograph");
  m_pShowMap->callback(cb_ShowMap, this);
}

void CReferencePanel::BuildSettings(int y) {
  m_pStrength = AddField<CValueSlider>(y, PanelField::kWidth, "Strength");
  m_pStrength->type(FL_HOR_NICE_SLIDER);
  m_pStrength->box(FL_FLAT_BOX);
  m_pStrength->bounds(0, 1);
  m_pStrength->step(0.01);
  m_pStrength->callback(cb_Strength, this);
  m_pNearIsBright =
      new Fl_Check_Button(PanelField::kLeft, y + 30, PanelField::kWidth, PanelField::kHeight, "Near is bright");
  m_pNearIsBright->callback(cb_NearIsBright, this);
  m_pZero = AddChoice(y + 60, "0 in the map is", {"a depth", "unknown"});
  m_pZero->callback(cb_Zero, this);
  m_pResponse = AddChoice(y + 90, "Response", {"automatic", "straight", "bent"});
  m_pResponse->callback(cb_Response, this);
  m_pSceneDepth = AddField<Fl_Float_Input>(y + 120, PanelField::kHalfWidth, "Depth of the scene");
  m_pSceneDepth->when(FL_WHEN_ENTER_KEY | FL_WHEN_RELEASE);
  m_pSceneDepth->callback(cb_SceneDepth, this);
}

void CReferencePanel::BuildFit(int y) {
  m_pFitted = AddReadOut(y, PanelField::kWidth, "Fitted");
  m_pScale = AddReadOut(y + 30, PanelField::kHalfWidth, "Scale");
  m_pOffset = AddReadOut(y + 60, PanelField::kHalfWidth, "Offset");
  m_pRms = AddReadOut(y + 90, PanelField::kHalfWidth, "Misfit (RMS)");
  m_pWorst = AddReadOut(y + 120, PanelField::kHalfWidth, "Worst misfit");
  m_pSelectWorst = new Fl_Button(PanelField::kLeft + PanelField::kWidth - PanelField::kHalfWidth, y + 119,
                                 PanelField::kHalfWidth, 26, "Select worst");
  m_pSelectWorst->callback(cb_SelectWorst, this);
}

void CReferencePanel::Open() {
  Refresh(m_Grid);
  OpenBeside(*this, m_MainWindow);
}

void CReferencePanel::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (wasShown) m_Closed();
}

void CReferencePanel::Refresh(const CGrid& grid) {
  const CGridReference& reference = grid.Reference();
  const bool there = reference.HasMap();
  m_pFile->value(there ? std::filesystem::path(reference.Value().m_File).filename().c_str() : "");
  const bool whole = there && reference.Reading().Map().Bits() < kFloatBits;
  for (Fl_Widget* widget : std::initializer_list<Fl_Widget*>{m_pRemove, m_pStrength, m_pResponse})
    SetActive(*widget, there);
  SetActive(*m_pSceneDepth, there);
  SetActive(*m_pShowMap, there);
  SetActive(*m_pZero, whole);
  RefreshSettings(grid);
  if (there) {
    RefreshFit(grid);
  } else {
    ClearFit();
  }
}

// Only what has changed: under a button that is held the toolkit would take the press for none.
void CReferencePanel::ShowMapShown(bool shown) {
  if (std::exchange(m_bMapShown, shown) != shown) m_pShowMap->value(shown ? 1 : 0);
}

void CReferencePanel::ShowEmbedded(bool there) { SetActive(*m_pEmbedded, there); }

void CReferencePanel::RefreshSettings(const CGrid& grid) {
  const CReferenceSettings& settings = grid.Reference().Value().m_Settings;
  const double side = LargerSide(grid);
  m_pStrength->value(settings.m_fStrength);
  m_pZero->value(settings.m_bZeroIsUnknown ? 1 : 0);
  m_pResponse->value(static_cast<int>(settings.m_Response));
  ShowSceneDepth(HelpNumber(settings.m_SceneDepth.value_or(side / 3), side));
}

void CReferencePanel::ShowSceneDepth(const std::string& text) {
  if (text == m_SceneDepth) return;
  m_SceneDepth = text;
  m_pSceneDepth->value(text.c_str());
}

void CReferencePanel::RefreshFit(const CGrid& grid) {
  const CGridReference& reference = grid.Reference();
  const CReferenceFit& fit = reference.Fitted();
  const double side = LargerSide(grid);
  // Heights that tell the sign have the last word.
  const bool bright = fit.m_bFitted ? fit.m_bNearIsBright : reference.Value().m_Settings.m_bNearIsBright;
  m_pNearIsBright->value(bright ? 1 : 0);
  SetActive(*m_pNearIsBright, !fit.m_bFitted);
  m_pFitted->value(FittedText(fit, reference.Value().m_Settings.m_bNearIsBright).c_str());
  const CDepthReading& reading = reference.Reading();
  const CReferenceFit straight = StraightFit(grid.Constraints().Points(), grid.Surface().Lattice().Extent(), reading,
                                             reference.Value().m_Settings);
  m_pScale->value(HelpNumber(straight.Scale(reading), 0).c_str());
  m_pOffset->value(HelpNumber(straight.OffsetAtZero(reading), side).c_str());
  const bool heights = fit.m_iHeights > 0;
  m_pRms->value(heights ? HelpNumber(fit.m_fRms, side).c_str() : "");
  m_pWorst->value(heights ? HelpNumber(fit.m_fWorst, side).c_str() : "");
  SetActive(*m_pSelectWorst, fit.m_iWorst >= 0);
}

void CReferencePanel::ClearFit() {
  for (Fl_Output* output : {m_pFitted, m_pScale, m_pOffset, m_pRms, m_pWorst}) output->value("");
  m_pNearIsBright->value(m_Grid.Reference().Value().m_Settings.m_bNearIsBright ? 1 : 0);
  m_pNearIsBright->deactivate();
  m_pSelectWorst->deactivate();
}

void CReferencePanel::cb_Load(Fl_Widget* /*widget*/, void* panel) { Panel(panel).m_Commands.LoadReference(); }

void CReferencePanel::cb_ShowMap(Fl_Widget* /*widget*/, void* panel) {
  CReferencePanel& self = Panel(panel);
  self.m_bMapShown = self.m_pShowMap->value() != 0;
  self.m_Commands.ShowMap(self.m_bMapShown);
}

void CReferencePanel::cb_Embedded(Fl_Widget* /*widget*/, void* panel) { Panel(panel).m_Commands.TakeEmbedded(); }

void CReferencePanel::cb_Remove(Fl_Widget* /*widget*/, void* panel) { Panel(panel).m_Grid.ReferenceEdits().Remove(); }

void CReferencePanel::cb_Strength(Fl_Widget* /*widget*/, void* panel) {
  Panel(panel).m_Grid.ReferenceEdits().SetStrength(Panel(panel).m_pStrength->value());
}

void CReferencePanel::cb_NearIsBright(Fl_Widget* /*widget*/, void* panel) {
  Panel(panel).m_Grid.ReferenceEdits().SetNearIsBright(Panel(panel).m_pNearIsBright->value() != 0);
}

void CReferencePanel::cb_Zero(Fl_Widget* /*widget*/, void* panel) {
  Panel(panel).m_Grid.ReferenceEdits().SetZeroIsUnknown(Panel(panel).m_pZero->value() != 0);
}

void CReferencePanel::cb_Response(Fl_Widget* /*widget*/, void* panel) {
  const auto response = static_cast<ReferenceResponse>(Panel(panel).m_pResponse->value());
  Panel(panel).m_Grid.ReferenceEdits().SetResponse(response);
}

// A text that is no depth goes back to that of the model's size. One that nobody has changed is the rounded number
// of the model.
void CReferencePanel::cb_SceneDepth(Fl_Widget* /*widget*/, void* panel) {
  CReferencePanel& self = Panel(panel);
  const std::string text = self.m_pSceneDepth->value();
  if (text == self.m_SceneDepth) return;
  self.m_SceneDepth = text;
  self.m_Grid.ReferenceEdits().SetSceneDepth(DepthIn(text));
  self.RefreshSettings(self.m_Grid);
}

void CReferencePanel::cb_SelectWorst(Fl_Widget* /*widget*/, void* panel) { Panel(panel).m_Commands.SelectWorst(); }
