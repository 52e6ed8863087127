#pragma once

#include <array>
#include <optional>

#include "ui/CModalDialog.h"

class CNumberInput;
class Fl_Check_Button;
class Fl_Group;

/// What the dialog shows of one side of a curve: the weights of the node that was clicked, the auto bump of the curve.
struct CContourSide {
  double m_fCurvature = 0;
  double m_fTorsion = 0;
  bool m_bAutoBump = false;
  double m_fDistance = 5;     ///< between constraints, in grid units
  double m_fOrientation = 0;  ///< tilt in degrees; -80 to 80 in an answer
};

struct CContourAttributes {
  CContourSide m_Left;
  CContourSide m_Right;
  bool m_bClosed = false;
};

struct CContourAnswer {
  CContourAttributes m_Attributes;
  bool m_bAllNodes = false;  ///< the weights are meant for every node of the curve
  bool m_bExport = false;    ///< the generated constraints are to become the user's own
};

/// "Contour Attributes": weights, auto bump and ends of a curve.
class CContourAttributesDialog : public CModalDialog {
 public:
  CContourAttributesDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Waits for the answer, with the questions that follow from it; none if the user cancels. A fairness curve shows one
  /// pair of weights, the left one. What is not on show or not edited comes back as it was. An export that is not
  /// confirmed is an ordinary answer without one.
  std::optional<CContourAnswer> Ask(const CContourAttributes& present, bool fairness);

 protected:
  bool ReadInput() override;

 private:
  static constexpr int kNumbers = 4;
  struct CSideWidgets {
    Fl_Group* m_pWeights = nullptr;
    std::array<CNumberInput*, kNumbers> m_apNumbers{};  ///< curvature, torsion, distance, orientation
    Fl_Check_Button* m_pAutoBump = nullptr;
  };

  CSideWidgets BuildSide(int left, const char* weights, const char* autoBump);
  void Refresh(const CContourAttributes& attributes, bool fairness);
  static void RefreshSide(const CSideWidgets& widgets, const CContourSide& side);
  bool ReadSide(const CSideWidgets& widgets, const char* name, CContourSide& side);

  static void cb_Export(Fl_Widget* widget, void* dialog);

  CSideWidgets m_Left;
  CSideWidgets m_Right;
  Fl_Check_Button* m_pClosed = nullptr;
  bool m_bExport = false;
  CContourAttributes m_Entered;
};
