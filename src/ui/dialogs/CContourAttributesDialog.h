#pragma once

#include <array>
#include <optional>

#include "editing/CContourAnswer.h"
#include "ui/dialogs/CModalDialog.h"

class CNumberInput;
class Fl_Check_Button;
class Fl_Group;

/// "Contour Attributes": weights, auto bump and ends of a curve.
class CContourAttributesDialog : public CModalDialog {
 public:
  /// Hidden until it is asked; both must outlive the dialog.
  CContourAttributesDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Waits for the answer, with the questions that follow from it; none if the user cancels. A fairness curve shows one
  /// pair of weights, the left one. What is not on show or not edited comes back as it was. An export that is not
  /// confirmed is an ordinary answer without one.
  std::optional<CContourAnswer> Ask(const CContourAttributes& present, bool fairness);

 protected:
  bool ReadInput() override;

 private:
  void BuildSide(CurveSide side, int left, const char* weights, const char* autoBump);
  void Refresh(CContourAttributes attributes, bool fairness);

  static void cb_Export(Fl_Widget* widget, void* dialog);

  // By side.
  std::array<Fl_Group*, 2> m_apWeights{};
  std::array<Fl_Check_Button*, 2> m_apAutoBumps{};
  std::array<CNumberInput*, 8> m_apNumbers{};
  Fl_Check_Button* m_pClosed = nullptr;
  bool m_bExport = false;
  CContourAttributes m_Entered;
};
