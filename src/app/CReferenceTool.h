#pragma once

#include <utility>

#include "reference/CReference.h"
#include "reference/CReferenceFit.h"
#include "ui/depth/CReferencePanel.h"
#include "ui/depth/ReferenceCommands.h"
#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The panel of the reference depth as a tool of the window. While it is open it follows the model.
class CReferenceTool : public ToolWindow, private ReferenceCommands {
 public:
  /// Both must outlive the object.
  CReferenceTool(CImageViewUI& window, CGrid& grid);
  ~CReferenceTool() override;
  CReferenceTool(const CReferenceTool&) = delete;
  CReferenceTool& operator=(const CReferenceTool&) = delete;

  bool IsOpen() const override { return m_Panel.visible() != 0; }
  void Open() override;
  void Close() override { m_Panel.hide(); }
  void GridReplaced() override { m_Panel.Refresh(m_Grid); }

 private:
  void LoadReference() override;
  void SelectWorst() override;

  void Load(const std::string& file);
  void Follow();
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CReference m_Shown;        ///< with
  CReferenceFit m_ShownFit;  ///< this fit, in the panel
  CReferencePanel m_Panel;
};
