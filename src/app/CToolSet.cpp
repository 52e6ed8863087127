#include "app/CToolSet.h"

#include <memory>
#include <utility>

#include "app/CHeightsTool.h"
#include "app/CLightTool.h"
#include "app/CReferenceTool.h"
#include "app/HelpTool.h"
#include "app/RecorderTool.h"
#include "app/ReportTool.h"
#include "app/ScissorsTool.h"
#include "app/ValuesTool.h"
#include "drawing/DrawingSettings.h"
#include "editing/GridCommands.h"
#include "model/CGrid.h"
#include "projects/ProjectFile.h"
#include "ui/dialogs/CProgressDialog.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CImageViewUI.h"

CToolSet::CToolSet(CImageViewUI& window, CGrid& grid)
    : m_DrawingOptions(g_DrawingSettings, window, window),
      m_GridParameters(window, window),
      m_ContourAttributes(window, window),
      m_HeightField(window, window, [this](int width, int height) { m_SizeChosen(width, height); }),
      m_ExportModel(window, window),
      m_ExportFilm(window, window) {
  auto lights = std::make_unique<CLightTool>(window, grid);
  CWindowServices services;
  services.m_ShowDrawingOptions = [this] { m_DrawingOptions.Open(); };
  services.m_CurrentLight = [&panel = *lights] { return panel.CurrentLight(); };
  services.m_LightsMoved = [&panel = *lights] { panel.LightsMoved(); };
  services.m_Model.m_AskNewGrid = [this](const CGrid& present) {
    return m_GridParameters.Ask(present.Surface().Lattice().Extent(), present.Surface().Lattice().Level());
  };
  services.m_Model.m_LoadGrid = &CGrid::Load;
  services.m_Model.m_Write = WriteModel;
  services.m_Model.m_ReadProject = ReadProject;
  services.m_Model.m_SaveProject = SaveProject;
  services.m_Model.m_AskSize = [this](const std::function<void(int, int)>& write) { AskSize(write); };
  services.m_Model.m_AskContourAttributes = [this](const CContourAttributes& present, bool fairness) {
    return m_ContourAttributes.Ask(present, fairness);
  };
  services.m_Model.m_Export = ExportServices(window);
  services.m_OpenTutorial = [&window] { OpenTutorial(window); };
  services.m_About = AboutText;
  window.SetServices(std::move(services));
  window.SetTool(CImageViewUI::Tool::LightSources, std::move(lights));
  window.SetTool(CImageViewUI::Tool::Recorder, MakeRecorderTool(window));
  window.SetTool(CImageViewUI::Tool::Scissors, MakeScissorsTool(window, grid));
  window.SetTool(CImageViewUI::Tool::ReferenceDepth, std::make_unique<CReferenceTool>(window, grid));
  window.SetTool(CImageViewUI::Tool::ConstraintValues, MakeValuesTool(window, grid));
  window.SetTool(CImageViewUI::Tool::ConstraintReport, MakeReportTool(window, grid));
  window.SetTool(CImageViewUI::Tool::Keys, MakeKeysTool(window));
  window.SetTool(CImageViewUI::Tool::HeightsAlongCurve, std::make_unique<CHeightsTool>(window, grid));
}

CExportServices CToolSet::ExportServices(CImageViewUI& window) {
  CExportServices services;
  services.m_AskModel = [this](CExportSurvey& survey, const CExportSettings& given) {
    return m_ExportModel.Ask(survey, given);
  };
  services.m_ShowProgress = [&window](const std::string& title,
                                      const std::function<CSaveOutcome(ExportProgress&)>& work) {
    CProgressDialog progress(title, window);
    return work(progress);
  };
  services.m_AskFilm = [this](std::size_t recorded) { return m_ExportFilm.Ask(recorded, g_fTimerInterval); };
  services.m_DrawModels = [&view = window.GridView()](int width, int height) {
    return view.DrawPictures(width, height);
  };
  return services;
}

void CToolSet::AskSize(const std::function<void(int width, int height)>& write) {
  m_SizeChosen = write;
  m_HeightField.Open();
  // It holds what lived as long as the dialog.
  m_SizeChosen = nullptr;
}
