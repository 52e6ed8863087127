#include "ui/dialogs/CContourAttributesDialog.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Group.H>

#include "ui/dialogs/CNumberInput.h"
#include "ui/dialogs/Questions.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

using Attributes = CContourAttributes;

struct CNumberRow {
  const char* m_pLabel;
  const char* m_pName;
  int m_iY;
  bool m_bWeight;
  double& (*m_pValue)(Attributes& attributes);
};

template <double CNodeWeights::*kWeight>
constexpr CNumberRow WeightRow(const char* label, const char* name, int y) {
  return {label, name, y, true, [](Attributes& a) -> double& { return a.m_Weights.*kWeight; }};
}

template <CurveSide kSide, double CAutoBump::*kValue>
constexpr CNumberRow BumpRow(const char* label, const char* name, int y) {
  return {label, name, y, false,
          [](Attributes& a) -> double& { return a.m_aAutoBumps[static_cast<std::size_t>(kSide)].*kValue; }};
}

constexpr std::size_t kPerSide = 4;
constexpr CurveSide kLeft = CurveSide::Left;
constexpr CurveSide kRight = CurveSide::Right;

// The numbers of the left side, then those of the right.
constexpr std::array<CNumberRow, 2 * kPerSide> kRows{{
    WeightRow<&CNodeWeights::m_fLeftCurvature>("curvature:", "left curvature", 30),
    WeightRow<&CNodeWeights::m_fLeftTorsion>("torsion:", "left torsion", 60),
    BumpRow<kLeft, &CAutoBump::m_fDistance>("Intercons-\ntraint dist.", "left constraint distance", 154),
    BumpRow<kLeft, &CAutoBump::m_fOrientation>("Normal\nOrientation", "left normal orientation", 196),
    WeightRow<&CNodeWeights::m_fRightCurvature>("curvature:", "right curvature", 30),
    WeightRow<&CNodeWeights::m_fRightTorsion>("torsion:", "right torsion", 60),
    BumpRow<kRight, &CAutoBump::m_fDistance>("Intercons-\ntraint dist.", "right constraint distance", 154),
    BumpRow<kRight, &CAutoBump::m_fOrientation>("Normal\nOrientation", "right normal orientation", 196),
}};

Fl_Group* BeginFrame(int x, int y, int h, const char* label) {
  auto* group = new Fl_Group(x, y, 170, h, label);
  group->box(FL_ENGRAVED_FRAME);
  return group;
}

}  // namespace

CContourAttributesDialog::CContourAttributesDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(359, 318, "Contour Attributes", views, mainWindow) {
  BuildSide(kLeft, 6, "Left Weights:", "Left Auto Bump");
  BuildSide(kRight, 183, "Right Weights:", "Right Auto Bump");
  m_pClosed = new Fl_Check_Button(115, 246, 130, 25, "closed contour");
  AddOk(6, 280, 90, 30);
  auto* exportConstraints = new Fl_Button(102, 280, 155, 30, "Export Constraints");
  exportConstraints->callback(cb_Export, this);
  add(exportConstraints);
  AddCancel(263, 280, 90, 30);
  end();
  ScaleWidgets(*this);
  Refresh({}, false);
}

void CContourAttributesDialog::BuildSide(CurveSide side, int left, const char* weights, const char* autoBump) {
  const auto index = static_cast<std::size_t>(side);
  const auto addNumbers = [&](bool weight) {
    for (std::size_t k = index * kPerSide; k < (index + 1) * kPerSide; ++k) {
      if (kRows[k].m_bWeight != weight) continue;
      m_apNumbers[k] = new CNumberInput(left + 82, kRows[k].m_iY, 80, 25, kRows[k].m_pLabel);
      m_apNumbers[k]->labelsize(13);
    }
  };
  m_apWeights[index] = BeginFrame(left, 24, 68, weights);
  addNumbers(true);
  m_apWeights[index]->end();
  Fl_Group* bump = BeginFrame(left, 116, 116, autoBump);
  m_apAutoBumps[index] = new Fl_Check_Button(left + 50, 122, 90, 25, "Enable");
  addNumbers(false);
  bump->end();
}

std::optional<CContourAnswer> CContourAttributesDialog::Ask(const CContourAttributes& present, bool fairness) {
  m_bExport = false;
  Refresh(present, fairness);
  if (!Run()) return std::nullopt;
  CContourAnswer answer;
  answer.m_Attributes = m_Entered;
  if (m_Entered.m_Weights != present.m_Weights) {
    answer.m_bAllNodes = AskYesNo("weights applied to all contour nodes?");
  }
  if (m_bExport) {
    answer.m_bExport = AskYesNo(
        "You chose to transform auto generated constraints to manual constraints\n"
        "There is no way you can reverse that. Are you sure ?");
  }
  return answer;
}

void CContourAttributesDialog::Refresh(CContourAttributes attributes, bool fairness) {
  for (std::size_t k = 0; k < kRows.size(); ++k) m_apNumbers[k]->Preset(kRows[k].m_pValue(attributes));
  m_apAutoBumps[0]->value(attributes.m_bLeftAutoBump ? 1 : 0);
  m_apAutoBumps[1]->value(attributes.m_bRightAutoBump ? 1 : 0);
  m_pClosed->value(attributes.m_bClosed ? 1 : 0);
  m_apWeights[0]->label(fairness ? "Weights" : "Left Weights:");
  if (fairness) {
    m_apWeights[1]->hide();
  } else {
    m_apWeights[1]->show();
  }
}

bool CContourAttributesDialog::ReadInput() {
  CContourAttributes entered;
  for (std::size_t k = 0; k < kRows.size(); ++k) {
    const std::optional<double> number = m_apNumbers[k]->Number();
    if (!number.has_value()) {
      Refuse((std::string("The ") + kRows[k].m_pName + " must be a number.").c_str());
      return false;
    }
    kRows[k].m_pValue(entered) = *number;
  }
  for (CAutoBump& bump : entered.m_aAutoBumps) {
    bump.m_fOrientation = std::clamp(bump.m_fOrientation, -CCntrCtrl::kMaxOrientation, CCntrCtrl::kMaxOrientation);
  }
  entered.m_bLeftAutoBump = m_apAutoBumps[0]->value() != 0;
  entered.m_bRightAutoBump = m_apAutoBumps[1]->value() != 0;
  entered.m_bClosed = m_pClosed->value() != 0;
  m_Entered = entered;
  return true;
}

void CContourAttributesDialog::cb_Export(Fl_Widget* /*widget*/, void* dialog) {
  auto& self = *static_cast<CContourAttributesDialog*>(dialog);
  self.m_bExport = self.Accept();
}
