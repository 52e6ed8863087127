#include "app/CToolSet.h"

#include <utility>

#include "model/CGrid.h"
#include "ui/CImageViewUI.h"
#include "ui/DrawingSettings.h"

CToolSet::CToolSet(CImageViewUI& window)
    : m_DrawingOptions(g_DrawingSettings, window, window), m_GridParameters(window, window) {
  CWindowServices services;
  services.m_ShowDrawingOptions = [this] { m_DrawingOptions.Open(); };
  services.m_Model.m_AskNewGrid = [this](const CGrid& present) {
    return m_GridParameters.Ask(present.Lattice().Extent(), present.MaxLevel());
  };
  window.SetServices(std::move(services));
}
