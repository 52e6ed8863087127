#pragma once

#include <functional>

#include "ui/dialogs/CModalDialog.h"

class CNumberInput;

/// Asks for the size of a height field and has it exported.
class CHeightFieldDialog : public CModalDialog {
 public:
  /// Exports the surface on `width` x `height` samples. Called while the dialog is still open.
  using ExportCommand = std::function<void(int width, int height)>;

  /// Hidden until it is opened; the first two must outlive the dialog.
  CHeightFieldDialog(ViewHost& views, const Fl_Window& mainWindow, ExportCommand command);

  /// Shows the dialog with the size of the last export, 200 x 200 at first, and waits until it is closed.
  void Open();

 protected:
  /// Cuts fractions off. Sizes that make no sense are the export's affair.
  bool ReadInput() override;

 private:
  void Refresh();
  bool ReadSize(const CNumberInput& input, int& size);

  ExportCommand m_Export;
  CNumberInput* m_pWidth = nullptr;
  CNumberInput* m_pHeight = nullptr;
  int m_iWidth = 200;
  int m_iHeight = 200;
};
