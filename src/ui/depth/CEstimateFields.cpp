#include "ui/depth/CEstimateFields.h"

#include <FL/Fl_Button.H>
#include <FL/Fl_Input.H>

#include "ui/depth/PanelFields.h"
#include "ui/depth/ReferenceCommands.h"

CEstimateFields::CEstimateFields(int y, ReferenceCommands& commands)
    : Fl_Group(0, y, PanelField::kPanelWidth, kHeight), m_Commands(commands) {
  m_pCommandLine = AddField<Fl_Input>(y, PanelField::kWidth, "Estimator");
  m_pCommandLine->tooltip(
      "Command line of a program of yours, in which {image} is the photograph's file and {depth} "
      "the depth map that it writes");
  m_pBegin = new Fl_Button(PanelField::kLeft, y + PanelField::kRow, PanelField::kHalfWidth, PanelField::kButtonHeight,
                           "Estimate...");
  m_pBegin->callback(cb_Begin, this);
  m_pCancel = new Fl_Button(PanelField::kLeft + PanelField::kWidth - PanelField::kHalfWidth, y + PanelField::kRow,
                            PanelField::kHalfWidth, PanelField::kButtonHeight, "Cancel");
  m_pCancel->callback(cb_Cancel, this);
  m_pLine = AddReadOut(y + 2 * PanelField::kRow + 2, PanelField::kWidth, "It says");
  end();
}

void CEstimateFields::Show(const CState& state) {
  SetActive(*m_pBegin, state.m_bPossible && !state.m_bRunning);
  SetActive(*m_pCancel, state.m_bRunning);
  ShowText(*m_pLine, state.m_Line.c_str());
}

void CEstimateFields::SetCommandLine(const std::string& line) { m_pCommandLine->value(line.c_str()); }

void CEstimateFields::cb_Begin(Fl_Widget* /*widget*/, void* fields) {
  auto& self = *static_cast<CEstimateFields*>(fields);
  self.m_Commands.Estimate(self.m_pCommandLine->value());
}

void CEstimateFields::cb_Cancel(Fl_Widget* /*widget*/, void* fields) {
  static_cast<CEstimateFields*>(fields)->m_Commands.CancelEstimate();
}
