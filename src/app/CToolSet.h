#pragma once

#include "ui/CContourAttributesDialog.h"
#include "ui/CDrawingOptionsDialog.h"
#include "ui/CGridParametersDialog.h"
#include "ui/CHeightFieldDialog.h"

class CGrid;
class CImageViewUI;

/// The dialogs and tools of the program, connected to its window and its grid.
class CToolSet {
 public:
  /// Both must outlive the object.
  CToolSet(CImageViewUI& window, CGrid& grid);

 private:
  CDrawingOptionsDialog m_DrawingOptions;
  CGridParametersDialog m_GridParameters;
  CContourAttributesDialog m_ContourAttributes;
  CHeightFieldDialog m_HeightField;
};
