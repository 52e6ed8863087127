#include "ui/depth/CTearFields.h"

#include <string>

#include <FL/Fl_Button.H>
#include <FL/Fl_Spinner.H>

#include "reference/SuggestTears.h"
#include "ui/depth/PanelFields.h"
#include "ui/depth/ReferenceCommands.h"
#include "ui/drawing/CValueSlider.h"

namespace {

constexpr double kPercent = 100;
constexpr double kLeastShare = 1;
constexpr double kMostShare = 30;
constexpr int kCountAtFirst = 15;
constexpr int kMostTears = 200;

std::string NumberText(const CTearFields::CState& state) {
  if (!state.m_bShown) return "";
  if (state.m_uSuggested == 0) return "none found";
  return std::to_string(state.m_uTaken) + " of " + std::to_string(state.m_uSuggested) + " taken";
}

}  // namespace

CTearFields::CTearFields(int y, ReferenceCommands& commands)
    : Fl_Group(0, y, PanelField::kPanelWidth, kHeight), m_Commands(commands) {
  m_pShare = AddField<CValueSlider>(y, PanelField::kWidth, "Gaps from (%)");
  m_pShare->type(FL_HOR_NICE_SLIDER);
  m_pShare->box(FL_FLAT_BOX);
  m_pShare->bounds(kLeastShare, kMostShare);
  m_pShare->step(1, 2);
  m_pShare->value(kPercent * CTearWishes::kShare);
  m_pShare->when(FL_WHEN_RELEASE);
  m_pShare->callback(cb_Wishes, this);
  m_pCount = AddField<Fl_Spinner>(y + PanelField::kRow, PanelField::kThirdWidth, "Tears at most");
  m_pCount->range(1, kMostTears);
  m_pCount->step(1);
  m_pCount->value(kCountAtFirst);
  m_pCount->callback(cb_Wishes, this);
  m_pNumber = new Fl_Output(PanelField::kLeft + PanelField::kWidth - PanelField::kHalfWidth, y + PanelField::kRow,
                            PanelField::kHalfWidth, PanelField::kHeight);
  m_pNumber->textsize(12);
  m_pNumber->color(FL_BACKGROUND_COLOR);
  m_pNumber->clear_visible_focus();
  const int buttons = y + 2 * PanelField::kRow;
  m_pSuggest =
      new Fl_Button(PanelField::kLeft, buttons, PanelField::kWidth, PanelField::kButtonHeight, "Suggest Tears");
  m_pSuggest->callback(cb_Suggest, this);
  m_pTake = new Fl_Button(PanelField::kLeft, buttons + PanelField::kRow, PanelField::kHalfWidth,
                          PanelField::kButtonHeight, "Take");
  m_pTake->callback(cb_Take, this);
  m_pDrop = new Fl_Button(PanelField::kLeft + PanelField::kWidth - PanelField::kHalfWidth, buttons + PanelField::kRow,
                          PanelField::kHalfWidth, PanelField::kButtonHeight, "Drop");
  m_pDrop->callback(cb_Drop, this);
  end();
}

void CTearFields::Show(const CState& state) {
  m_bShown = state.m_bShown;
  for (Fl_Widget* widget : {static_cast<Fl_Widget*>(m_pShare), static_cast<Fl_Widget*>(m_pCount)})
    SetActive(*widget, state.m_bPossible);
  SetActive(*m_pSuggest, state.m_bPossible);
  SetActive(*m_pTake, state.m_uTaken > 0);
  SetActive(*m_pDrop, state.m_bShown);
  ShowText(*m_pNumber, NumberText(state).c_str());
}

void CTearFields::Suggest() {
  m_Commands.SuggestTears({static_cast<int>(m_pCount->value()), m_pShare->value() / kPercent});
}

// Other tears are suggested at once.
void CTearFields::cb_Wishes(Fl_Widget* /*widget*/, void* fields) {
  auto& self = *static_cast<CTearFields*>(fields);
  if (self.m_bShown) self.Suggest();
}

void CTearFields::cb_Suggest(Fl_Widget* /*widget*/, void* fields) { static_cast<CTearFields*>(fields)->Suggest(); }

void CTearFields::cb_Take(Fl_Widget* /*widget*/, void* fields) {
  static_cast<CTearFields*>(fields)->m_Commands.TakeTears();
}

void CTearFields::cb_Drop(Fl_Widget* /*widget*/, void* fields) {
  static_cast<CTearFields*>(fields)->m_Commands.DropTears();
}
