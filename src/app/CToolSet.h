#pragma once

#include "ui/CContourAttributesDialog.h"
#include "ui/CDrawingOptionsDialog.h"
#include "ui/CGridParametersDialog.h"

class CImageViewUI;

/// The dialogs and tools of the program, connected to its window.
class CToolSet {
 public:
  /// The window must outlive the object.
  explicit CToolSet(CImageViewUI& window);

 private:
  CDrawingOptionsDialog m_DrawingOptions;
  CGridParametersDialog m_GridParameters;
  CContourAttributesDialog m_ContourAttributes;
};
