#pragma once

#include <string>

#include "app/CDepthOverlay.h"
#include "app/CEmbeddedMap.h"
#include "app/CEstimateRun.h"
#include "app/CTearSuggestions.h"
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
  /// What is estimated belongs to the photograph before.
  void PictureLoaded() override;
  /// And what is estimated to the model before.
  void GridReplaced() override;

 private:
  void LoadReference() override;
  void TakeEmbedded() override;
  void ShowMap(bool shown) override { m_Overlay.Show(shown); }
  void SelectWorst() override;
  void Estimate(const std::string& commandLine) override { m_Estimate.Begin(commandLine); }
  void CancelEstimate() override { m_Estimate.Cancel(); }
  void SuggestTears(const CTearWishes& wishes) override { m_Tears.Suggest(wishes); }
  void TakeTears() override { m_Tears.Take(); }
  void DropTears() override { m_Tears.Drop(); }

  void Closed();
  void Load(const std::string& file);
  void TakeRead(CReadDepthMap read, const std::string& file);
  void Take(CReadDepthMap read, const std::string& file);
  void Follow();
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CReference m_Shown;        ///< with
  CReferenceFit m_ShownFit;  ///< this fit, in the panel
  CEmbeddedMap m_Embedded;
  CEstimateRun m_Estimate;
  CTearSuggestions m_Tears;
  CDepthOverlay m_Overlay;
  CReferencePanel m_Panel;
};
