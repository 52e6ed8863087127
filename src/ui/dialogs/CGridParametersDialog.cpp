#include "ui/dialogs/CGridParametersDialog.h"

#include <cstddef>
#include <string>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Counter.H>

#include "ui/dialogs/CNumberInput.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

constexpr double kLargestCoordinate = 2000;

struct CInputRow {
  const char* m_pLabel;
  const char* m_pName;
  int m_iX;
  int m_iY;
  double CExtent::*m_pValue;
};

constexpr std::array<CInputRow, 4> kInputs{{
    {"x0:", "x0", 50, 52, &CExtent::x0},
    {"x1:", "x1", 220, 52, &CExtent::x1},
    {"y0:", "y0", 50, 82, &CExtent::y0},
    {"y1:", "y1", 220, 82, &CExtent::y1},
}};

}  // namespace

CGridParametersDialog::CGridParametersDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(350, 150, "Grid Initial Parameters", views, mainWindow) {
  m_pStartLevel = new Fl_Counter(95, 12, 90, 25, "Start level:");
  m_pStartLevel->type(FL_SIMPLE_COUNTER);
  m_pStartLevel->align(FL_ALIGN_LEFT);
  m_pStartLevel->step(1);
  m_pStartLevel->bounds(3, 7);
  for (std::size_t k = 0; k < kInputs.size(); ++k) {
    m_apExtent[k] = new CNumberInput(kInputs[k].m_iX, kInputs[k].m_iY, 110, 25, kInputs[k].m_pLabel);
    m_apExtent[k]->maximum(kLargestCoordinate);
  }
  m_pKeep = new Fl_Check_Button(205, 5, 140, 40, "Keep the \nold constraints");
  AddOk(60, 115, 105, 28);
  AddCancel(185, 115, 105, 28);
  end();
  ScaleWidgets(*this);
  Refresh({});
}

std::optional<CGridParameters> CGridParametersDialog::Ask(const CExtent& present, int maxLevel) {
  m_iMaxLevel = maxLevel;
  CGridParameters offered;
  offered.m_Extent = present;
  Refresh(offered);
  if (!Run()) return std::nullopt;
  return m_Parameters;
}

void CGridParametersDialog::Refresh(const CGridParameters& parameters) {
  m_pStartLevel->value(parameters.m_iStartLevel);
  for (std::size_t k = 0; k < kInputs.size(); ++k) m_apExtent[k]->Preset(parameters.m_Extent.*kInputs[k].m_pValue);
  m_pKeep->value(parameters.m_bKeepConstraints ? 1 : 0);
}

bool CGridParametersDialog::ReadInput() {
  CGridParameters entered;
  entered.m_iStartLevel = static_cast<int>(m_pStartLevel->value());
  entered.m_bKeepConstraints = m_pKeep->value() != 0;
  if (!ReadExtent(entered.m_Extent)) return false;
  if (entered.m_iStartLevel > m_iMaxLevel) {
    Refuse(("The start level must not be above " + std::to_string(m_iMaxLevel) + ", the highest level of the grid.")
               .c_str());
    return false;
  }
  m_Parameters = entered;
  return true;
}

bool CGridParametersDialog::ReadExtent(CExtent& extent) {
  for (std::size_t k = 0; k < kInputs.size(); ++k) {
    const std::string name = kInputs[k].m_pName;
    const std::optional<double> number = m_apExtent[k]->Number();
    if (!number.has_value()) {
      Refuse((name + " must be a number.").c_str());
      return false;
    }
    if (*number > kLargestCoordinate) {
      Refuse((name + " must be at most 2000.").c_str());
      return false;
    }
    extent.*kInputs[k].m_pValue = *number;
  }
  const char* wrong = nullptr;
  if (extent.x0 >= extent.x1) wrong = "x0 must be less than x1.";
  if (extent.y0 >= extent.y1) wrong = "y0 must be less than y1.";
  if (wrong == nullptr && !IsUsable(extent)) wrong = "The sides are too short or too long to be divided.";
  if (wrong != nullptr) Refuse(wrong);
  return wrong == nullptr;
}
