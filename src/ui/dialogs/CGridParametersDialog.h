#pragma once

#include <array>
#include <optional>

#include "editing/CGridParameters.h"
#include "ui/dialogs/CModalDialog.h"

class CNumberInput;
class Fl_Check_Button;
class Fl_Counter;

/// "Grid Initial Parameters": level and rectangle of a new grid.
class CGridParametersDialog : public CModalDialog {
 public:
  /// Hidden until it is asked; both must outlive the dialog.
  CGridParametersDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Waits for the answer; none if the user cancels. `present` is offered as the new rectangle. A start level above
  /// `maxLevel`, the highest of the lattice, is refused.
  std::optional<CGridParameters> Ask(const CExtent& present, int maxLevel);

 protected:
  bool ReadInput() override;

 private:
  void Refresh(const CGridParameters& parameters);
  bool ReadExtent(CExtent& extent);

  Fl_Counter* m_pStartLevel = nullptr;
  std::array<CNumberInput*, 4> m_apExtent{};  ///< x0, x1, y0, y1
  Fl_Check_Button* m_pKeep = nullptr;
  int m_iMaxLevel = 0;
  CGridParameters m_Parameters;
};
