#include "ui/heights/CHeightsPanel.h"

#include <cmath>
#include <initializer_list>
#include <utility>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Output.H>
#include <FL/Fl_Return_Button.H>

#include "ui/dialogs/CNumberInput.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

constexpr int kFieldLeft = 150;
constexpr int kFieldWidth = 220;
constexpr int kNumberWidth = 100;
constexpr int kFieldHeight = 24;

// What `m_pBy` and `m_pSide` offer.
enum By { kCount, kDistance };
enum Side { kLeft, kRight, kBoth };

template <class Widget>
Widget* AddField(int y, int width, const char* label) {
  auto* widget = new Widget(kFieldLeft, y, width, kFieldHeight, label);
  widget->align(FL_ALIGN_LEFT);
  widget->labelsize(12);
  widget->textsize(12);
  return widget;
}

Fl_Output* AddReadOut(int y, const char* label) {
  auto* output = AddField<Fl_Output>(y, kFieldWidth, label);
  output->color(FL_BACKGROUND_COLOR);
  output->clear_visible_focus();
  return output;
}

Fl_Choice* AddChoice(int y, const char* label, std::initializer_list<const char*> texts) {
  auto* choice = AddField<Fl_Choice>(y, kFieldWidth, label);
  for (const char* text : texts) choice->add(text);
  choice->value(0);
  return choice;
}

// Whole numbers that a list may have.
std::optional<std::size_t> CountIn(const CNumberInput& input) {
  const std::optional<double> number = input.Number();
  const bool count = number && *number >= 1 && *number <= kMostCurvePlaces && std::floor(*number) == *number;
  return count ? std::optional(static_cast<std::size_t>(*number)) : std::nullopt;
}

CHeightsPanel& Panel(void* panel) { return *static_cast<CHeightsPanel*>(panel); }

}  // namespace

CHeightsPanel::CHeightsPanel(const Fl_Window& mainWindow, std::function<void()> place, std::function<void()> closed)
    : Fl_Double_Window(385, 322, "Heights along a curve"),
      m_MainWindow(mainWindow),
      m_Place(std::move(place)),
      m_Closed(std::move(closed)) {
  BuildSteps();
  BuildHeights();
  m_pPlan = AddReadOut(246, "Would be placed");
  BuildButtons();
  end();
  ScaleWidgets(*this);
  set_non_modal();
}

void CHeightsPanel::BuildButtons() {
  m_pPlace = new Fl_Return_Button(kFieldLeft, 284, 105, 28, "Place");
  m_pPlace->callback(cb_Place, this);
  auto* close = new Fl_Button(kFieldLeft + kFieldWidth - 105, 284, 105, 28, "Close");
  close->callback(cb_Close, this);
}

void CHeightsPanel::BuildSteps() {
  m_pCurve = AddReadOut(10, "Curve");
  m_pBy = AddChoice(40, "Divided by", {"number of heights", "distance between heights"});
  m_pBy->callback(cb_Changed, this);
  m_pSteps = AddField<CNumberInput>(68, kNumberWidth, "Number");
}

void CHeightsPanel::BuildHeights() {
  m_pFirst = AddField<CNumberInput>(100, kNumberWidth, "First height");
  m_pLast = AddField<CNumberInput>(128, kNumberWidth, "Last height");
  m_pFollow = new Fl_Check_Button(kFieldLeft, 154, kFieldWidth, kFieldHeight, "Follow the surface");
  m_pFollow->labelsize(12);
  m_pFollow->callback(cb_Changed, this);
  m_pSide = AddChoice(184, "Side", {"left, as it was drawn", "right, as it was drawn", "both"});
  m_pSide->callback(cb_Changed, this);
  m_pBeside = AddField<CNumberInput>(212, kNumberWidth, "Distance beside it");
}

void CHeightsPanel::Open(const CHeightsAlong& start) {
  if (visible() == 0) {
    Preset(start);
    m_pSteps->take_focus();
  }
  OpenBeside(*this, m_MainWindow);
}

void CHeightsPanel::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (wasShown) m_Closed();
}

void CHeightsPanel::Preset(const CHeightsAlong& start) {
  m_pBy->value(start.m_Steps.m_Distance ? kDistance : kCount);
  m_pSteps->Preset(start.m_Steps.m_Distance.value_or(static_cast<double>(start.m_Steps.m_uCount)));
  m_pFirst->Preset(start.m_fFirst);
  m_pLast->Preset(start.m_fLast);
  m_pFollow->value(start.m_bFollow ? 1 : 0);
  m_pSide->value(start.m_bLeft && start.m_bRight ? kBoth : start.m_bRight ? kRight : kLeft);
  m_pBeside->Preset(start.m_fBeside);
  RefreshActive();
}

void CHeightsPanel::RefreshActive() {
  for (Fl_Widget* widget : std::initializer_list<Fl_Widget*>{m_pFirst, m_pLast}) {
    if (m_pFollow->value() != 0) {
      widget->deactivate();
    } else {
      widget->activate();
    }
  }
  m_pSteps->label(m_pBy->value() == kCount ? "Number" : "Distance");
  redraw();
}

std::optional<CHeightsAlong> CHeightsPanel::Wanted() const {
  if (!Trouble().empty()) return std::nullopt;
  CHeightsAlong wanted;
  if (m_pBy->value() == kCount) {
    wanted.m_Steps.m_uCount = *CountIn(*m_pSteps);
  } else {
    wanted.m_Steps.m_Distance = m_pSteps->Number();
  }
  wanted.m_bFollow = m_pFollow->value() != 0;
  wanted.m_fFirst = m_pFirst->Number().value_or(0);
  wanted.m_fLast = m_pLast->Number().value_or(0);
  wanted.m_bLeft = m_pSide->value() != kRight;
  wanted.m_bRight = m_pSide->value() != kLeft;
  wanted.m_fBeside = *m_pBeside->Number();
  return wanted;
}

std::string CHeightsPanel::Trouble() const {
  if (m_pBy->value() == kCount && !CountIn(*m_pSteps))
    return "1 to " + std::to_string(kMostCurvePlaces) + " heights are possible";
  if (m_pBy->value() == kDistance && m_pSteps->Number().value_or(0) <= 0) return "the distance must be above 0";
  const bool heights = m_pFirst->Number() && m_pLast->Number();
  if (m_pFollow->value() == 0 && !heights) return "a height is no number";
  return m_pBeside->Number().value_or(-1) < 0 ? "the distance beside must be 0 or more" : "";
}

void CHeightsPanel::ShowCurve(const std::string& curve) { m_pCurve->value(curve.c_str()); }

void CHeightsPanel::PresetBeside(double beside) { m_pBeside->Preset(beside); }

void CHeightsPanel::ShowPlan(const std::string& plan, bool any) {
  m_pPlan->value(plan.c_str());
  if (any) {
    m_pPlace->activate();
  } else {
    m_pPlace->deactivate();
  }
}

void CHeightsPanel::cb_Changed(Fl_Widget* /*widget*/, void* panel) { Panel(panel).RefreshActive(); }

void CHeightsPanel::cb_Place(Fl_Widget* /*widget*/, void* panel) { Panel(panel).m_Place(); }

void CHeightsPanel::cb_Close(Fl_Widget* /*widget*/, void* panel) { Panel(panel).hide(); }
