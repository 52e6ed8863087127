#include "app/CToolSet.h"

#include <utility>

#include "model/CGrid.h"
#include "ui/CImageViewUI.h"
#include "ui/DrawingSettings.h"

CToolSet::CToolSet(CImageViewUI& window)
    : m_DrawingOptions(g_DrawingSettings, window, window),
      m_GridParameters(window, window),
      m_ContourAttributes(window, window) {
  CWindowServices services;
  services.m_ShowDrawingOptions = [this] { m_DrawingOptions.Open(); };
  services.m_Model.m_AskNewGrid = [this](const CGrid& present) {
    return m_GridParameters.Ask(present.Lattice().Extent(), present.MaxLevel());
  };
  services.m_Model.m_AskContourAttributes = [this](const CContourAttributes& present, bool fairness) {
    return m_ContourAttributes.Ask(present, fairness);
  };
  window.SetServices(std::move(services));
}
