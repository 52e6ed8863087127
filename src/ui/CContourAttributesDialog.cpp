#include "ui/CContourAttributesDialog.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Group.H>

#include "ui/CNumberInput.h"
#include "ui/Questions.h"

namespace {

constexpr double kSteepestOrientation = 80;

struct CNumberRow {
  const char* m_pLabel;
  const char* m_pName;
  int m_iY;
  double CContourSide::*m_pValue;
};

constexpr std::size_t kWeights = 2;
constexpr std::array<CNumberRow, 4> kRows{{
    {"curvature:", "curvature", 30, &CContourSide::m_fCurvature},
    {"torsion:", "torsion", 60, &CContourSide::m_fTorsion},
    {"Intercons-\ntraint dist.", "constraint distance", 154, &CContourSide::m_fDistance},
    {"Normal\nOrientation", "normal orientation", 196, &CContourSide::m_fOrientation},
}};

bool SameWeights(const CContourSide& a, const CContourSide& b) {
  return a.m_fCurvature == b.m_fCurvature && a.m_fTorsion == b.m_fTorsion;
}

Fl_Group* BeginFrame(int x, int y, int h, const char* label) {
  auto* group = new Fl_Group(x, y, 170, h, label);
  group->box(FL_ENGRAVED_FRAME);
  return group;
}

}  // namespace

CContourAttributesDialog::CContourAttributesDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(359, 318, "Contour Attributes", views, mainWindow),
      m_Left(BuildSide(6, "Left Weights:", "Left Auto Bump")),
      m_Right(BuildSide(183, "Right Weights:", "Right Auto Bump")) {
  m_pClosed = new Fl_Check_Button(115, 246, 130, 25, "closed contour");
  AddOk(6, 280, 90, 30);
  auto* exportConstraints = new Fl_Button(102, 280, 155, 30, "Export Constraints");
  exportConstraints->callback(cb_Export, this);
  AddCancel(263, 280, 90, 30);
  end();
  Refresh({}, false);
}

CContourAttributesDialog::CSideWidgets CContourAttributesDialog::BuildSide(int left, const char* weights,
                                                                           const char* autoBump) {
  CSideWidgets widgets;
  const auto addNumber = [&](std::size_t k) {
    widgets.m_apNumbers[k] = new CNumberInput(left + 82, kRows[k].m_iY, 80, 25, kRows[k].m_pLabel);
    widgets.m_apNumbers[k]->labelsize(13);
  };
  widgets.m_pWeights = BeginFrame(left, 24, 68, weights);
  for (std::size_t k = 0; k < kWeights; ++k) addNumber(k);
  widgets.m_pWeights->end();
  Fl_Group* bump = BeginFrame(left, 116, 116, autoBump);
  widgets.m_pAutoBump = new Fl_Check_Button(left + 50, 122, 90, 25, "Enable");
  for (std::size_t k = kWeights; k < kRows.size(); ++k) addNumber(k);
  bump->end();
  return widgets;
}

std::optional<CContourAnswer> CContourAttributesDialog::Ask(const CContourAttributes& present, bool fairness) {
  m_bExport = false;
  Refresh(present, fairness);
  if (!Run()) return std::nullopt;
  CContourAnswer answer;
  answer.m_Attributes = m_Entered;
  if (!SameWeights(m_Entered.m_Left, present.m_Left) || !SameWeights(m_Entered.m_Right, present.m_Right)) {
    answer.m_bAllNodes = AskYesNo("weights applied to all contour nodes?");
  }
  if (m_bExport) {
    answer.m_bExport = AskYesNo(
        "You chose to transform auto generated constraints to manual constraints\n"
        "There is no way you can reverse that. Are you sure ?");
  }
  return answer;
}

void CContourAttributesDialog::Refresh(const CContourAttributes& attributes, bool fairness) {
  RefreshSide(m_Left, attributes.m_Left);
  RefreshSide(m_Right, attributes.m_Right);
  m_pClosed->value(attributes.m_bClosed ? 1 : 0);
  m_Left.m_pWeights->label(fairness ? "Weights" : "Left Weights:");
  if (fairness) {
    m_Right.m_pWeights->hide();
  } else {
    m_Right.m_pWeights->show();
  }
}

void CContourAttributesDialog::RefreshSide(const CSideWidgets& widgets, const CContourSide& side) {
  for (std::size_t k = 0; k < kRows.size(); ++k) widgets.m_apNumbers[k]->Preset(side.*kRows[k].m_pValue);
  widgets.m_pAutoBump->value(side.m_bAutoBump ? 1 : 0);
}

bool CContourAttributesDialog::ReadInput() {
  CContourAttributes entered;
  if (!ReadSide(m_Left, "left", entered.m_Left) || !ReadSide(m_Right, "right", entered.m_Right)) return false;
  entered.m_bClosed = m_pClosed->value() != 0;
  m_Entered = entered;
  return true;
}

bool CContourAttributesDialog::ReadSide(const CSideWidgets& widgets, const char* name, CContourSide& side) {
  for (std::size_t k = 0; k < kRows.size(); ++k) {
    const std::optional<double> number = widgets.m_apNumbers[k]->Number();
    if (!number.has_value()) {
      Refuse((std::string("The ") + name + ' ' + kRows[k].m_pName + " must be a number.").c_str());
      return false;
    }
    side.*kRows[k].m_pValue = *number;
  }
  side.m_fOrientation = std::clamp(side.m_fOrientation, -kSteepestOrientation, kSteepestOrientation);
  side.m_bAutoBump = widgets.m_pAutoBump->value() != 0;
  return true;
}

void CContourAttributesDialog::cb_Export(Fl_Widget* /*widget*/, void* dialog) {
  auto& self = *static_cast<CContourAttributesDialog*>(dialog);
  self.m_bExport = self.Accept();
}
