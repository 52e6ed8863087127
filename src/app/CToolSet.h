#pragma once

#include <functional>

#include "ui/dialogs/CContourAttributesDialog.h"
#include "ui/dialogs/CDrawingOptionsDialog.h"
#include "ui/dialogs/CExportDialog.h"
#include "ui/dialogs/CFilmDialog.h"
#include "ui/dialogs/CGridParametersDialog.h"
#include "ui/dialogs/CHeightFieldDialog.h"

class CGrid;
class CImageViewUI;

/// The dialogs and tools of the program, connected to its window and its grid.
class CToolSet {
 public:
  /// Both must outlive the object.
  CToolSet(CImageViewUI& window, CGrid& grid);

 private:
  CExportServices ExportServices(CImageViewUI& window);
  void AskSize(const std::function<void(int width, int height)>& write);

  CDrawingOptionsDialog m_DrawingOptions;
  CGridParametersDialog m_GridParameters;
  CContourAttributesDialog m_ContourAttributes;
  std::function<void(int width, int height)> m_SizeChosen;
  CHeightFieldDialog m_HeightField;
  CExportDialog m_ExportModel;
  CFilmDialog m_ExportFilm;
};
